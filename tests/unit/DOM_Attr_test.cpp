#include "DOM_Attr.h"

#include <gtest/gtest.h>

#include "DOM_Element.h"
#include "ParsedXml.h"

namespace {

TEST(DOM_AttrTest, HasNameAndValue) {
  const DOM_Document document = parsed("<a first='1' second=''/>");
  const DOM_Element element = document.getDocumentElement();
  EXPECT_EQ(element.getAttributeNode("first").getName().utf8(), "first");
  EXPECT_EQ(element.getAttributeNode("first").getValue().utf8(), "1");
  EXPECT_FALSE(element.getAttributeNode("second").getValue().isNull());
  EXPECT_EQ(element.getAttributeNode("second").getValue().utf8(), "");
}

TEST(DOM_AttrTest, SetValueShowsEverywhere) {
  const DOM_Document document = parsed("<a x='1' y='2'/>");
  DOM_Attr attribute = document.getDocumentElement().getAttributeNode("x");
  const DOM_Attr other = document.getDocumentElement().getAttributeNode("x");
  attribute.setValue("a longer value <&\">");
  EXPECT_EQ(other.getValue().utf8(), "a longer value <&\">");
  EXPECT_EQ(written(document), "<a x=\"a longer value &lt;&amp;&quot;>\" y=\"2\"/>");
}

TEST(DOM_AttrTest, SetValueTakesShorterAndEmptyTexts) {
  const DOM_Document document = parsed("<a x='long'/>");
  DOM_Attr attribute = document.getDocumentElement().getAttributeNode("x");
  for (const char* value : {"abc", "z", "", "again", "ag"}) {
    attribute.setValue(value);
    EXPECT_EQ(attribute.getValue().utf8(), value);
  }
}

TEST(DOM_AttrTest, SetValueLeavesTextsReadBeforeAlone) {
  const DOM_Document document = parsed("<a x='before'/>");
  DOM_Attr attribute = document.getDocumentElement().getAttributeNode("x");
  const DOMString before = attribute.getValue();
  attribute.setValue("after!");
  EXPECT_EQ(before.utf8(), "before");
  EXPECT_EQ(attribute.getValue().utf8(), "after!");
}

TEST(DOM_AttrTest, SetValueDoesNotReachItsNeighbours) {
  const DOM_Document document = parsed("<a x='1' y='2' z='3'>text</a>");
  document.getDocumentElement().getAttributeNode("y").setValue("a value longer than all before");
  EXPECT_EQ(written(document), "<a x=\"1\" y=\"a value longer than all before\" z=\"3\">text</a>");
}

TEST(DOM_AttrTest, ANullTextSetsAnEmptyValue) {
  const DOM_Document document = parsed("<a x='1'/>");
  DOM_Attr attribute = document.getDocumentElement().getAttributeNode("x");
  attribute.setValue(DOMString());
  EXPECT_FALSE(attribute.getValue().isNull());
  EXPECT_EQ(written(document), "<a x=\"\"/>");
}

TEST(DOM_AttrTest, ANullHandleDoesNothing) {
  DOM_Attr null;
  null.setValue("x");
  EXPECT_TRUE(null.getName().isNull());
  EXPECT_TRUE(null.getValue().isNull());
}

TEST(DOM_AttrTest, SetsNoValueOfOtherNodes) {
  const DOM_Document document = parsed("<a>text</a>");
  DOM_Attr element(document.getDocumentElement().node());
  DOM_Attr text(document.getDocumentElement().getFirstChild().node());
  element.setValue("x");
  text.setValue("x");
  EXPECT_EQ(written(document), "<a>text</a>");
}

}  // namespace
