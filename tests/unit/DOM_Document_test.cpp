#include "DOM_Document.h"

#include <gtest/gtest.h>

#include "ParsedXml.h"

namespace {

TEST(DOM_DocumentTest, TheRootIsFoundBesideCommentsAndInstructions) {
  const DOM_Document document = parsed("<!--c--><?p?><root/><!--d-->");
  EXPECT_EQ(document.getDocumentElement().getTagName().utf8(), "root");
}

TEST(DOM_DocumentTest, SearchesIncludeTheRoot) {
  const DOM_Document document = parsed("<a n='1'><a n='2'/><b/></a>");
  const DOM_NodeList found = document.getElementsByTagName("a");
  ASSERT_EQ(found.getLength(), 2u);
  EXPECT_EQ(found.item(0).node(), document.getDocumentElement().node());
  EXPECT_EQ(DOM_Element(found.item(1).node()).getAttribute("n").utf8(), "2");
  EXPECT_EQ(document.getElementsByTagName("*").getLength(), 3u);
}

TEST(DOM_DocumentTest, AListIsMadeOnce) {
  const DOM_Document document = parsed("<a/>");
  const DOM_NodeList before = document.getElementsByTagName("a");
  document.getDocumentElement().setAttribute("x", "1");
  EXPECT_EQ(before.getLength(), 1u);
  EXPECT_EQ(DOM_Element(before.item(0).node()).getAttribute("x").utf8(), "1");
}

TEST(DOM_DocumentTest, TheDocumentLivesAsLongAsOneOfItsHandles) {
  DOM_Document kept;
  {
    const DOM_Document document = parsed("<a x='1'/>");
    kept = document;
  }
  EXPECT_EQ(kept.getDocumentElement().getAttribute("x").utf8(), "1");
}

TEST(DOM_DocumentTest, WithoutATreeIsNull) {
  const DOM_Document null(nullptr);
  EXPECT_TRUE(null.isNull());
  EXPECT_TRUE(DOM_Document().isNull());
  EXPECT_TRUE(null.getDocumentElement().isNull());
  EXPECT_TRUE(null.getElementsByTagName("*").isNull());
}

}  // namespace
