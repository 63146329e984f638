#include "DOM_Element.h"

#include <gtest/gtest.h>

#include <string>

#include "ParsedXml.h"

namespace {

std::string namesOf(const DOM_NodeList& list) {
  std::string names;
  for (unsigned int i = 0; i < list.getLength(); ++i) {
    const DOM_Element element(list.item(i).node());
    names += element.getTagName().utf8() + element.getAttribute("n").utf8() + " ";
  }
  return names;
}

TEST(DOM_ElementTest, AnAbsentAttributeIsNullAndAnEmptyOneEmpty) {
  const DOM_Document document = parsed("<a empty='' full='x'/>");
  const DOM_Element element = document.getDocumentElement();
  EXPECT_TRUE(element.getAttribute("absent").isNull());
  EXPECT_TRUE(element.getAttributeNode("absent").isNull());
  EXPECT_FALSE(element.getAttribute("empty").isNull());
  EXPECT_EQ(element.getAttribute("empty").utf8(), "");
  EXPECT_EQ(element.getAttribute("full").utf8(), "x");
}

TEST(DOM_ElementTest, AttributeNamesMatchWhole) {
  const DOM_Document document = parsed("<a name='1' Name='2' nam='3' x:name='4'/>");
  const DOM_Element element = document.getDocumentElement();
  EXPECT_EQ(element.getAttribute("name").utf8(), "1");
  EXPECT_EQ(element.getAttribute("Name").utf8(), "2");
  EXPECT_EQ(element.getAttribute("nam").utf8(), "3");
  EXPECT_EQ(element.getAttribute("x:name").utf8(), "4");
  EXPECT_TRUE(element.getAttribute("na").isNull());
  EXPECT_TRUE(element.getAttribute("").isNull());
  EXPECT_TRUE(element.getAttribute(DOMString()).isNull());
}

TEST(DOM_ElementTest, SetAttributeReplacesInPlace) {
  const DOM_Document document = parsed("<a x='1' y='2' z='3'/>");
  document.getDocumentElement().setAttribute("y", "new");
  EXPECT_EQ(written(document), "<a x=\"1\" y=\"new\" z=\"3\"/>");
}

TEST(DOM_ElementTest, SetAttributeAddsBehindTheOthers) {
  const DOM_Document document = parsed("<a x='1'><b/></a>");
  DOM_Element element = document.getDocumentElement();
  element.setAttribute("b", "2");
  element.setAttribute("a", "3");
  DOM_Element(element.getFirstChild().node()).setAttribute("only", "");
  EXPECT_EQ(written(document), "<a x=\"1\" b=\"2\" a=\"3\"><b only=\"\"/></a>");
  EXPECT_EQ(element.getAttribute("a").utf8(), "3");
}

TEST(DOM_ElementTest, SetAttributeWithoutANameDoesNothing) {
  const DOM_Document document = parsed("<a/>");
  DOM_Element element = document.getDocumentElement();
  element.setAttribute("", "1");
  element.setAttribute(DOMString(), "1");
  EXPECT_EQ(written(document), "<a/>");
}

TEST(DOM_ElementTest, FindsElementsAtAnyDepthInDocumentOrder) {
  const DOM_Document document =
      parsed("<b n='0'><b n='1'><a><b n='2'/></a><c/><b n='3'/></b>text<!--<b/>--><b n='4'/></b>");
  const DOM_Element root = document.getDocumentElement();
  EXPECT_EQ(namesOf(root.getElementsByTagName("b")), "b1 b2 b3 b4 ");
  EXPECT_EQ(namesOf(root.getElementsByTagName("*")), "b1 a b2 c b3 b4 ");
  EXPECT_EQ(namesOf(root.getElementsByTagName("none")), "");
}

TEST(DOM_ElementTest, SearchesOnlyBelowItself) {
  const DOM_Document document = parsed("<r><a><b n='1'/></a><b n='2'/><a><b n='3'/></a></r>");
  const DOM_NodeList branches = document.getElementsByTagName("a");
  const DOM_Element first(branches.item(0).node());
  const DOM_Element second(branches.item(1).node());
  EXPECT_EQ(namesOf(first.getElementsByTagName("b")), "b1 ");
  EXPECT_EQ(namesOf(second.getElementsByTagName("b")), "b3 ");
  EXPECT_EQ(namesOf(second.getElementsByTagName("*")), "b3 ");
  const DOM_Element leaf(first.getFirstChild().node());
  EXPECT_EQ(leaf.getElementsByTagName("*").getLength(), 0u);
  EXPECT_FALSE(leaf.getElementsByTagName("*").isNull());
}

TEST(DOM_ElementTest, FindsNoOtherNodesOfThatName) {
  const DOM_Document document = parsed("<r x='1'>t<?x y?><!--c--><![CDATA[d]]></r>");
  const DOM_Element root = document.getDocumentElement();
  for (const char* name : {"x", "#text", "#comment", "#cdata-section", "r", ""}) {
    EXPECT_EQ(root.getElementsByTagName(name).getLength(), 0u) << name;
  }
}

TEST(DOM_ElementTest, KeepsManyNamesApart) {
  std::string text = "<r>";
  for (int i = 0; i < 2000; ++i)
    text += "<e" + std::to_string(i) + " a" + std::to_string(i) + "=''/>";
  const DOM_Document document = parsed(text + "</r>");
  for (int i = 0; i < 2000; ++i) {
    const DOM_NodeList found = document.getElementsByTagName(("e" + std::to_string(i)).c_str());
    ASSERT_EQ(found.getLength(), 1u) << i;
    const DOM_Element element(found.item(0).node());
    EXPECT_FALSE(element.getAttribute(("a" + std::to_string(i)).c_str()).isNull());
  }
}

TEST(DOM_ElementTest, NamesMayBeAnyCharactersOfXml) {
  const DOM_Document document = parsed("<\xC3\xA9l\xC3\xA9ment _.-\xC2\xB7:\xE4\xBD\xA0='1'/>");
  const DOM_Element root = document.getDocumentElement();
  EXPECT_EQ(root.getTagName().utf8(), "\xC3\xA9l\xC3\xA9ment");
  EXPECT_EQ(root.getAttribute("_.-\xC2\xB7:\xE4\xBD\xA0").utf8(), "1");
}

TEST(DOM_ElementTest, LongNamesAreKept) {
  const std::string name(5000, 'n');
  const DOM_Document document = parsed("<" + name + " " + name + "='1'/>");
  EXPECT_EQ(document.getDocumentElement().getTagName().utf8(), name);
  EXPECT_EQ(document.getDocumentElement().getAttribute(std::string_view(name)).utf8(), "1");
}

TEST(DOM_ElementTest, ANullHandleGivesNothing) {
  DOM_Element null;
  null.setAttribute("a", "b");
  EXPECT_TRUE(null.getTagName().isNull());
  EXPECT_TRUE(null.getAttribute("a").isNull());
  EXPECT_TRUE(null.getAttributeNode("a").isNull());
  EXPECT_TRUE(null.getElementsByTagName("*").isNull());
}

TEST(DOM_ElementTest, AHandleOfAnotherNodeGivesNothing) {
  const DOM_Document document = parsed("<a>text</a>");
  DOM_Element text(document.getDocumentElement().getFirstChild().node());
  text.setAttribute("a", "b");
  EXPECT_TRUE(text.getAttribute("a").isNull());
  EXPECT_TRUE(text.getElementsByTagName("*").isNull());
  EXPECT_EQ(written(document), "<a>text</a>");
}

}  // namespace
