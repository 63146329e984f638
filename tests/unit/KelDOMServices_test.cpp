#include "KelDOMServices.h"

#include <gtest/gtest.h>

#include <limits>
#include <string_view>

#include "ParsedXml.h"

namespace {

using namespace std::string_view_literals;

TEST(KelDOMServicesTest, AnElementIsAnElement) {
  const DOM_Document document = parsed("<a x='1'>text</a>");
  const DOM_Node root = document.getDocumentElement();
  EXPECT_EQ(KelDOMServices::NodeToElement(root).getTagName().utf8(), "a");
}

TEST(KelDOMServicesTest, OtherNodesAreNone) {
  const DOM_Document document = parsed("<a x='1'>text<!--c--></a>");
  const DOM_Element root = document.getDocumentElement();
  EXPECT_TRUE(KelDOMServices::NodeToElement(document).isNull());
  EXPECT_TRUE(KelDOMServices::NodeToElement(root.getFirstChild()).isNull());
  EXPECT_TRUE(KelDOMServices::NodeToElement(root.getAttributeNode("x")).isNull());
  EXPECT_TRUE(KelDOMServices::NodeToElement(DOM_Node()).isNull());
}

TEST(KelDOMServicesTest, ReadsDecimalNumbers) {
  struct Row {
    std::string_view text;
    int number;
  };
  const Row rows[] = {{"0", 0},
                      {"1", 1},
                      {"42", 42},
                      {"-7", -7},
                      {"+7", 7},
                      {"007", 7},
                      {"  12 ", 12},
                      {"\t\r\n3\n", 3},
                      {"2147483647", std::numeric_limits<int>::max()},
                      {"-2147483648", std::numeric_limits<int>::min()}};
  for (const Row& row : rows) EXPECT_EQ(KelDOMServices::DOM2Int(row.text), row.number) << row.text;
}

TEST(KelDOMServicesTest, AnythingElseIsZero) {
  const std::string_view texts[] = {
      "",    " ",    "abc",        "12abc",       "a12",  "1 2",
      "1.5", "0x10", "+",          "-",           "+-1",  "-+1",
      "--1", "++1",  "2147483648", "-2147483649", "$var", "99999999999999999",
      "1,0", "1\0"sv};
  for (const std::string_view text : texts) EXPECT_EQ(KelDOMServices::DOM2Int(text), 0) << text;
  EXPECT_EQ(KelDOMServices::DOM2Int(DOMString()), 0);
}

TEST(KelDOMServicesTest, WritesDecimalNumbers) {
  EXPECT_EQ(KelDOMServices::Int2DOM(0).utf8(), "0");
  EXPECT_EQ(KelDOMServices::Int2DOM(321).utf8(), "321");
  EXPECT_EQ(KelDOMServices::Int2DOM(-5).utf8(), "-5");
  EXPECT_EQ(KelDOMServices::Int2DOM(std::numeric_limits<int>::min()).utf8(), "-2147483648");
  EXPECT_FALSE(KelDOMServices::Int2DOM(0).isNull());
}

TEST(KelDOMServicesTest, ANumberSurvivesTheWayThere) {
  for (const int number : {0, 1, -1, 12345, std::numeric_limits<int>::max()}) {
    EXPECT_EQ(KelDOMServices::DOM2Int(KelDOMServices::Int2DOM(number)), number);
  }
}

}  // namespace
