#include "DOM_NodeList.h"

#include <gtest/gtest.h>

#include <limits>

#include "DOM_Element.h"
#include "ParsedXml.h"

namespace {

TEST(DOM_NodeListTest, WithoutAListIsNullAndEmpty) {
  const DOM_NodeList none;
  EXPECT_TRUE(none.isNull());
  EXPECT_EQ(none.getLength(), 0u);
  EXPECT_TRUE(none.item(0).isNull());
}

TEST(DOM_NodeListTest, AnEmptyListIsNotNull) {
  const DOM_Document document = parsed("<a/>");
  const DOM_NodeList empty = document.getElementsByTagName("b");
  EXPECT_FALSE(empty.isNull());
  EXPECT_EQ(empty.getLength(), 0u);
  EXPECT_TRUE(empty.item(0).isNull());
}

TEST(DOM_NodeListTest, BeyondTheEndIsANullHandle) {
  const DOM_Document document = parsed("<a><b/><b/></a>");
  const DOM_NodeList list = document.getElementsByTagName("b");
  ASSERT_EQ(list.getLength(), 2u);
  EXPECT_FALSE(list.item(1).isNull());
  EXPECT_TRUE(list.item(2).isNull());
  EXPECT_TRUE(list.item(std::numeric_limits<unsigned int>::max()).isNull());
}

TEST(DOM_NodeListTest, OutlivesTheSearchAndIsSharedByCopies) {
  const DOM_Document document = parsed("<a><b n='1'/></a>");
  DOM_NodeList copy;
  {
    const DOM_NodeList list = document.getElementsByTagName("b");
    copy = list;
  }
  ASSERT_EQ(copy.getLength(), 1u);
  EXPECT_EQ(copy.item(0).getNodeName().utf8(), "b");
}

}  // namespace
