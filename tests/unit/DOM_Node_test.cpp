#include "DOM_Node.h"

#include <gtest/gtest.h>

#include "DOM_Attr.h"
#include "DOM_Element.h"
#include "DOM_NodeList.h"
#include "ParsedXml.h"

namespace {

class DOM_NodeTest : public ::testing::Test {
 protected:
  DOM_Document _document = parsed(
      "<!-- before --><root a='1'>text<child/><![CDATA[<data>]]><?target some data?><?bare?>"
      "<!--note--></root><?after it?>");
  DOM_Element _root = _document.getDocumentElement();

  DOM_Node child(unsigned int index) const { return _root.getChildNodes().item(index); }
};

TEST_F(DOM_NodeTest, NamesAndTypesAreThoseOfDomLevel1) {
  struct Expectation {
    DOM_Node node;
    short type;
    const char* name;
  };
  const Expectation expectations[] = {
      {_document, 9, "#document"}, {_root, 1, "root"},     {_root.getAttributeNode("a"), 2, "a"},
      {child(0), 3, "#text"},      {child(1), 1, "child"}, {child(2), 4, "#cdata-section"},
      {child(3), 7, "target"},     {child(4), 7, "bare"},  {child(5), 8, "#comment"},
  };
  for (const Expectation& expected : expectations) {
    EXPECT_EQ(expected.node.getNodeType(), expected.type) << expected.name;
    EXPECT_EQ(expected.node.getNodeName().utf8(), expected.name);
  }
}

TEST_F(DOM_NodeTest, ValuesAreTheTexts) {
  EXPECT_EQ(_root.getAttributeNode("a").getNodeValue().utf8(), "1");
  EXPECT_EQ(child(0).getNodeValue().utf8(), "text");
  EXPECT_EQ(child(2).getNodeValue().utf8(), "<data>");
  EXPECT_EQ(child(3).getNodeValue().utf8(), "some data");
  EXPECT_EQ(child(5).getNodeValue().utf8(), "note");
}

TEST_F(DOM_NodeTest, AnInstructionWithoutDataHasAnEmptyValue) {
  EXPECT_FALSE(child(4).getNodeValue().isNull());
  EXPECT_EQ(child(4).getNodeValue().length(), 0u);
}

TEST_F(DOM_NodeTest, ElementsAndDocumentsHaveNoValue) {
  EXPECT_TRUE(_root.getNodeValue().isNull());
  EXPECT_TRUE(_document.getNodeValue().isNull());
}

TEST_F(DOM_NodeTest, ChildrenFollowTheDocument) {
  EXPECT_EQ(outline(_document),
            "#document(#comment=[ before ] root(#text=[text] child #cdata-section=[<data>] "
            "target=[some data] bare=[] #comment=[note]) after=[it])");
}

TEST_F(DOM_NodeTest, SiblingsAndTheListOfChildrenAreTheSame) {
  const DOM_NodeList children = _root.getChildNodes();
  ASSERT_EQ(children.getLength(), 6u);
  DOM_Node sibling = _root.getFirstChild();
  for (unsigned int i = 0; i < children.getLength(); ++i) {
    EXPECT_EQ(sibling.node(), children.item(i).node());
    EXPECT_EQ(sibling.getParentNode().node(), _root.node());
    sibling = sibling.getNextSibling();
  }
  EXPECT_TRUE(sibling.isNull());
}

TEST_F(DOM_NodeTest, TheParentOfTheRootIsTheDocument) {
  EXPECT_EQ(_root.getParentNode().node(), _document.node());
  EXPECT_TRUE(_document.getParentNode().isNull());
  EXPECT_TRUE(_document.getNextSibling().isNull());
}

TEST_F(DOM_NodeTest, AnAttributeIsNoChildOfItsElement) {
  const DOM_Document document = parsed("<a x='1' y='2'/>");
  const DOM_Attr first = document.getDocumentElement().getAttributeNode("x");
  EXPECT_TRUE(first.getParentNode().isNull());
  EXPECT_TRUE(first.getNextSibling().isNull());
  EXPECT_TRUE(first.getFirstChild().isNull());
  EXPECT_TRUE(document.getDocumentElement().getFirstChild().isNull());
}

TEST_F(DOM_NodeTest, ANodeWithoutChildrenHasAnEmptyList) {
  EXPECT_FALSE(child(0).getChildNodes().isNull());
  EXPECT_EQ(child(0).getChildNodes().getLength(), 0u);
  EXPECT_TRUE(child(1).getFirstChild().isNull());
}

TEST_F(DOM_NodeTest, CopiesAreTheSameNode) {
  const DOM_Node copy = child(1);
  EXPECT_EQ(copy.node(), child(1).node());
}

TEST_F(DOM_NodeTest, ANullHandleGivesNothing) {
  const DOM_Node null;
  EXPECT_TRUE(null.isNull());
  EXPECT_EQ(null.getNodeType(), 0);
  EXPECT_TRUE(null.getNodeName().isNull());
  EXPECT_TRUE(null.getNodeValue().isNull());
  EXPECT_TRUE(null.getParentNode().isNull());
  EXPECT_TRUE(null.getFirstChild().isNull());
  EXPECT_TRUE(null.getNextSibling().isNull());
  EXPECT_TRUE(null.getChildNodes().isNull());
  EXPECT_EQ(null.getChildNodes().getLength(), 0u);
}

}  // namespace
