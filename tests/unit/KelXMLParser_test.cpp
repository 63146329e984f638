#include "KelXMLParser.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "DOM_Element.h"
#include "KelLib.h"
#include "ParsedXml.h"

namespace {

TEST(KelXMLParserTest, AnOrdinaryDocumentComesBackAsItWas) {
  const std::string_view texts[] = {
      "<a/>",
      "<a>text</a>",
      "<a z=\"1\" a=\"2\" m=\"3\"/>",
      "<a>\n  <b/>\n\t<c>x</c> \n</a>",
      "<!--before--><?p d?><a><!--in--><?q?><![CDATA[<&>]]></a><!--after--><?r s?>",
      "<a>&amp;&lt;&gt;\"'</a>",
      "<a x=\"&amp;&lt;>&quot;'\"/>",
      "<a x=\"&#9;&#10;&#13; \">&#13;</a>",
      "<?xml version=\"1.0\"?><a/>",
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a/>",
      "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?><a/>",
      "<?xml version=\"1.0\" standalone=\"no\"?><a/>",
      "<?xml version=\"1.1\"?><a x=\"&#1;&#133;&#8232;\">&#1;&#127;&#133;&#159;&#8232;\t\n</a>",
      "<!DOCTYPE a><a/>",
      "<!DOCTYPE a SYSTEM \"x.dtd\"><a/>",
      "<!DOCTYPE a SYSTEM 'say \"x\"'><a/>",
      "<!DOCTYPE a PUBLIC \"it's\" \"x.dtd\"><a/>",
      "<!DOCTYPE a SYSTEM \"\"><a/>",
      "<!--1--><!DOCTYPE a><!--2--><a/>",
      "<!--1--><?p?><!DOCTYPE a><a/>",
      "<a><![CDATA[]]></a>",
      "<a>\xC2\x85\xE2\x80\xA8\x7F\xF0\x9F\x98\x80</a>",
      "<a xmlns:x=\"u\" x:y=\"1\"><x:b/></a>",
  };
  for (const std::string_view text : texts) EXPECT_EQ(rewritten(text), text);
}

TEST(KelXMLParserTest, WritesOneFormOfWhatCanBeWrittenInSeveral) {
  EXPECT_EQ(rewritten("<a x = 'it'   ></a >"), "<a x=\"it\"/>");
  EXPECT_EQ(rewritten("<a>]]&gt;>&#38;&#x3c;</a>"), "<a>]]&gt;&gt;&amp;&lt;</a>");
  EXPECT_EQ(rewritten("<a>&#xE9;</a>"), "<a>\xC3\xA9</a>");
  EXPECT_EQ(rewritten("<?p   d ?>\n<a/>\n"), "<?p d ?><a/>");
}

TEST(KelXMLParserTest, TheEncodingBecomesUtf8WhereOneWasDeclared) {
  EXPECT_EQ(rewritten("<?xml version='1.0' encoding='ISO-8859-1' standalone='no'?><a>\xE9</a>"),
            "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?><a>\xC3\xA9</a>");
}

TEST(KelXMLParserTest, TheDocumentTypeLosesItsInternalSubset) {
  EXPECT_EQ(
      rewritten("<!DOCTYPE a [<!--c--><?p?><!ENTITY e 'x'><!ATTLIST a d CDATA 'y'>]><a>&e;</a>"),
      "<!DOCTYPE a><a d=\"y\">x</a>");
}

TEST(KelXMLParserTest, WritesAnyNode) {
  const DOM_Document document =
      parsed("<?xml version='1.0'?><!DOCTYPE r><r><a x='1&amp;2'>t&lt;<b/></a><!--c--><?p d?></r>");
  const DOM_Element root = document.getDocumentElement();
  const DOM_Element a(root.getFirstChild().node());
  EXPECT_EQ(written(a), "<a x=\"1&amp;2\">t&lt;<b/></a>");
  EXPECT_EQ(written(a.getFirstChild()), "t&lt;");
  EXPECT_EQ(written(a.getAttributeNode("x")), "x=\"1&amp;2\"");
  EXPECT_EQ(written(a.getNextSibling()), "<!--c-->");
  EXPECT_EQ(written(a.getNextSibling().getNextSibling()), "<?p d?>");
}

TEST(KelXMLParserTest, ReplacesTheText) {
  const DOM_Document document = parsed("<a/>");
  std::string text = "before";
  EXPECT_EQ(KelXMLParser::WriteXML(document, text), S_OK);
  EXPECT_EQ(text, "<a/>");
}

TEST(KelXMLParserTest, ANullNodeLeavesTheTextAlone) {
  std::string text = "before";
  EXPECT_EQ(KelXMLParser::WriteXML(DOM_Node(), text), E_FAIL);
  EXPECT_EQ(KelXMLParser::WriteXML(DOM_Document(), text), E_FAIL);
  EXPECT_EQ(text, "before");
}

TEST(KelXMLParserTest, WritesTheDeepestAndTheWidestTrees) {
  const std::string deep = repeated("<a>", 1000) + "x" + repeated("</a>", 1000);
  EXPECT_EQ(rewritten(deep), deep);
  const std::string wide = "<a>" + repeated("<b/>x", 20000) + "</a>";
  EXPECT_EQ(rewritten(wide), wide);
}

// What an entity brings in can stand where it could not be written: the text comes back, in another
// form where there has to be one, and stays as it is from then on.
TEST(KelXMLParserTest, WhatEntitiesBringInIsWrittenInAFormThatStays) {
  const std::string_view texts[] = {
      "<!DOCTYPE a [<!ENTITY e '<!--x&#13;y-->'>]><a>&e;</a>",
      "<!DOCTYPE a [<!ENTITY e '<?p x&#13;y?>'>]><a>&e;</a>",
      "<!DOCTYPE a [<!ENTITY e '<![CDATA[x&#13;y<]]>'>]><a>&e;</a>",
      "<!DOCTYPE a [<!ENTITY e 'x&#13;&#10;y'>]><a b='&e;'>&e;</a>",
      "<!DOCTYPE a [<!ENTITY e '&#60;b/>'>]><a>&e;</a>",
      "<?xml version='1.1'?><!DOCTYPE a [<!ENTITY e '<![CDATA[x&#133;y]]>'>]><a>&e;</a>",
      "<?xml version='1.1'?><!DOCTYPE a [<!ENTITY e 'x&#133;&#8232;y'>]><a b='&e;'>&e;</a>",
  };
  for (const std::string_view text : texts) {
    const std::string once = rewritten(text);
    EXPECT_EQ(rewritten(once), once) << text;
  }
  EXPECT_EQ(rewritten("<!DOCTYPE a [<!ENTITY e '<![CDATA[x&#13;y<]]>'>]><a>&e;</a>"),
            "<!DOCTYPE a><a>x&#13;y&lt;</a>");
}

}  // namespace
