#include "KelInputSource.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace {

using namespace std::string_view_literals;

TEST(KelInputSourceTest, BorrowsAView) {
  const std::string text = "<a/>";
  const KelInputSource source(std::string_view(text), "name");
  EXPECT_EQ(source.text().data(), text.data());
  EXPECT_EQ(source.text().size(), 4u);
  EXPECT_EQ(source.name(), "name");
}

TEST(KelInputSourceTest, OwnsAStringHandedOver) {
  std::string text = "<a/>";
  const KelInputSource source(std::move(text), "name");
  text = "something else";
  EXPECT_EQ(source.text(), "<a/>");
}

TEST(KelInputSourceTest, KeepsNulBytes) {
  EXPECT_EQ(KelInputSource("a\0b"sv, "name").text(), "a\0b"sv);
  EXPECT_EQ(KelInputSource(std::string("a\0b"sv), "name").text(), "a\0b"sv);
}

TEST(KelInputSourceTest, ANullNameIsEmpty) {
  EXPECT_EQ(KelInputSource("x"sv, nullptr).name(), "");
  EXPECT_EQ(KelInputSource(std::string("x"), nullptr).name(), "");
}

}  // namespace
