#include "DOMString.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using namespace std::string_view_literals;

TEST(DOMStringTest, IsNullWithoutText) {
  EXPECT_TRUE(DOMString().isNull());
  EXPECT_TRUE(DOMString(static_cast<const char*>(nullptr)).isNull());
  EXPECT_EQ(DOMString().length(), 0u);
  EXPECT_EQ(DOMString().utf8(), "");
}

TEST(DOMStringTest, AnEmptyTextIsNotNull) {
  EXPECT_FALSE(DOMString("").isNull());
  EXPECT_FALSE(DOMString(""sv).isNull());
  EXPECT_FALSE(DOMString(std::string_view()).isNull());
  EXPECT_EQ(DOMString("").length(), 0u);
}

TEST(DOMStringTest, CountsBytesNotCharacters) {
  EXPECT_EQ(DOMString("\xC3\xA9\xF0\x9F\x98\x80").length(), 6u);
}

TEST(DOMStringTest, KeepsItsOwnCopy) {
  std::string text = "before";
  const DOMString kept(std::string_view{text});
  text = "after!";
  EXPECT_EQ(kept.utf8(), "before");
}

TEST(DOMStringTest, TranscodeGivesATextOfItsOwn) {
  const DOMString text("na\xC3\xAFve");
  const std::unique_ptr<char[]> copy(text.transcode());
  EXPECT_STREQ(copy.get(), "na\xC3\xAFve");
  copy[0] = 'N';
  EXPECT_EQ(text.utf8(), "na\xC3\xAFve");
}

TEST(DOMStringTest, TranscodeOfANullTextIsNull) { EXPECT_EQ(DOMString().transcode(), nullptr); }

TEST(DOMStringTest, TranscodeOfAnEmptyTextIsATerminator) {
  const std::unique_ptr<char[]> copy(DOMString("").transcode());
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy[0], '\0');
}

TEST(DOMStringTest, ComparesByCharacters) {
  EXPECT_EQ(DOMString("a").compareString("a"), 0);
  EXPECT_LT(DOMString("a").compareString("b"), 0);
  EXPECT_GT(DOMString("b").compareString("a"), 0);
  EXPECT_LT(DOMString("a").compareString("ab"), 0);
  EXPECT_GT(DOMString("\xC3\xA9").compareString("z"), 0);
}

TEST(DOMStringTest, ANullTextComparesLikeAnEmptyOne) {
  EXPECT_EQ(DOMString().compareString(""), 0);
  EXPECT_EQ(DOMString("").compareString(DOMString()), 0);
  EXPECT_LT(DOMString().compareString("a"), 0);
}

}  // namespace
