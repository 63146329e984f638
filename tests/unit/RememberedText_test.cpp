#include "RememberedText.h"

#include <gtest/gtest.h>

#include <string>

using zetnorv::RememberedText;

TEST(RememberedTextTest, KnowsNothingAtFirst) {
  const RememberedText<int> remembered;
  EXPECT_EQ(remembered.find(""), nullptr);
  EXPECT_EQ(remembered.find("text"), nullptr);
}

TEST(RememberedTextTest, FindsWhatWasMadeOfTheSameBytes) {
  RememberedText<int> remembered;
  const int* kept = remembered.keep("text", std::make_unique<const int>(7));
  ASSERT_NE(kept, nullptr);
  EXPECT_EQ(*kept, 7);
  EXPECT_EQ(remembered.find(std::string("text")), kept);
}

TEST(RememberedTextTest, FindsNothingForOtherBytes) {
  RememberedText<int> remembered;
  remembered.keep("text", std::make_unique<const int>(7));
  EXPECT_EQ(remembered.find("texT"), nullptr);  // the same length
  EXPECT_EQ(remembered.find("tex"), nullptr);
  EXPECT_EQ(remembered.find("text "), nullptr);
  EXPECT_EQ(remembered.find(std::string_view("text\0", 5)), nullptr);
}

TEST(RememberedTextTest, TellsTextsApartBehindANul) {
  RememberedText<int> remembered;
  remembered.keep(std::string_view("a\0b", 3), std::make_unique<const int>(7));
  EXPECT_EQ(remembered.find(std::string_view("a\0c", 3)), nullptr);
  EXPECT_NE(remembered.find(std::string_view("a\0b", 3)), nullptr);
}

TEST(RememberedTextTest, KeepsTheLastTextOnly) {
  RememberedText<int> remembered;
  remembered.keep("first", std::make_unique<const int>(1));
  remembered.keep("second", std::make_unique<const int>(2));
  EXPECT_EQ(remembered.find("first"), nullptr);
  ASSERT_NE(remembered.find("second"), nullptr);
  EXPECT_EQ(*remembered.find("second"), 2);
}
