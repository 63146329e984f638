#include "KelXMLParseServices.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "KelLib.h"
#include "ParsedXml.h"
#include "TraceRecorder.h"

namespace {

DOMString rootAttribute(std::string_view document, const char* name) {
  return parsed(document).getDocumentElement().getAttribute(name);
}

TEST(KelXMLParseServicesTest, AWholeDocumentIsAccepted) {
  EXPECT_EQ(outline(parsed("<?xml version='1.0' encoding='UTF-8'?>\n<a x='1'>\n  <b/>\n</a>\n")),
            "#document(a(#text=[\n  ] b #text=[\n]))");
}

TEST(KelXMLParseServicesTest, ARefusedDocumentLeavesNoDocumentBehind) {
  DOM_Document document = parsed("<old/>");
  const TraceRecorder trace;
  const KelInputSource broken(std::string_view("<a><b></a>"), "broken");
  EXPECT_EQ(KelXMLParseServices::XMLParse(broken, document), E_FAIL);
  EXPECT_TRUE(document.isNull());
}

TEST(KelXMLParseServicesTest, ARefusalNamesSourceLineColumnAndReason) {
  const TraceRecorder trace;
  const KelInputSource source(std::string_view("<a>\n<b>\n</a>"), "msgBuildTemp");
  DOM_Document document;
  EXPECT_EQ(KelXMLParseServices::XMLParse(source, document), E_FAIL);
  ASSERT_EQ(trace.lines().size(), 1u);
  EXPECT_EQ(trace.lines().front().trace, "KelXML");
  EXPECT_EQ(trace.lines().front().level, 2);
  EXPECT_EQ(trace.lines().front().text, "msgBuildTemp: line 3, column 3: expected end of tag 'b'");
}

TEST(KelXMLParseServicesTest, WhatIsNotWellFormedIsRefused) {
  const std::string_view texts[] = {
      "",
      " ",
      "\n",
      "text",
      "<",
      "<a",
      "<a>",
      "</a>",
      "<a></b>",
      "<a/><b/>",
      "<a/>text",
      "text<a/>",
      "<a/>&amp;",
      "<a/><![CDATA[x]]>",
      "<a><b></a></b>",
      "<a x=1/>",
      "<a x/>",
      "<a x='1' x='2'/>",
      "<a x='1'y='2'/>",
      "<a x='<'/>",
      "<a x='&'/>",
      "<a x='1/>",
      "<a>&</a>",
      "<a>&undeclared;</a>",
      "<a x='&undeclared;'/>",
      "<a>&#0;</a>",
      "<a>&#1;</a>",
      "<a>&#xD800;</a>",
      "<a>&#x110000;</a>",
      "<a>&#xFFFE;</a>",
      "<a>]]></a>",
      "<a>\x01</a>",
      "<a>\xEF\xBF\xBE</a>",
      "<a><!-- -- --></a>",
      "<a><!-- --->x</a>",
      "<a><?xml version='1.0'?></a>",
      "<a><?XML x?></a>",
      " <?xml version='1.0'?><a/>",
      "<?xml?><a/>",
      "<?xml encoding='UTF-8'?><a/>",
      "<?xml version='1.0' standalone='maybe'?><a/>",
      "<?xml version='1.0' standalone='yes' encoding='UTF-8'?><a/>",
      "<?xml version='1.0'?>",
      "<!-- only -->",
      "<!DOCTYPE a>",
      "<!DOCTYPE a><!DOCTYPE a><a/>",
      "<a/><!DOCTYPE a>",
      "<!DOCTYPE a [<!ELEMENT>]><a/>",
      "<!DOCTYPE a [<!ENTITY e '<b>'>]><a>&e;</a>",
      "<!DOCTYPE a [<!ENTITY e '</a><a>'>]><a>&e;</a>",
      "<!DOCTYPE a [<!ENTITY e '&e;'>]><a>&e;</a>",
      "<!DOCTYPE a [<!ENTITY e '&f;'><!ENTITY f '&e;'>]><a x='&e;'/>",
      "<!DOCTYPE a [<!ENTITY e '&#60;'>]><a x='&e;'/>",
      "<!DOCTYPE a [<!NOTATION n SYSTEM 'n'><!ENTITY e SYSTEM 'e' NDATA n>]><a>&e;</a>",
      "<1/>",
      "<a:b",
      "< a/>",
      "<a / >",
      "<a></ a>",
  };
  for (const std::string_view text : texts) {
    const std::string line = refusalOf(text);
    EXPECT_TRUE(line.starts_with("test: line ")) << text << ": " << line;
  }
}

TEST(KelXMLParseServicesTest, NothingIsValidated) {
  EXPECT_EQ(outline(parsed("<!DOCTYPE b [<!ELEMENT a EMPTY><!ATTLIST a x CDATA #REQUIRED>]>"
                           "<a>text<undeclared/></a>")),
            "#document(a(#text=[text] undeclared))");
}

TEST(KelXMLParseServicesTest, NamespacesAreOff) {
  EXPECT_EQ(outline(parsed("<p:a xmlns:q='u' r:x='1'><q:b/></p:a>")), "#document(p:a(q:b))");
  EXPECT_EQ(rootAttribute("<p:a r:x='1'/>", "r:x").utf8(), "1");
  EXPECT_EQ(rootAttribute("<a xmlns='u'/>", "xmlns").utf8(), "u");
}

TEST(KelXMLParseServicesTest, AdjacentCharactersAreOneText) {
  EXPECT_EQ(outline(parsed("<a>one &amp; &#116;wo &lt;&gt;&apos;&quot; three\n</a>")),
            "#document(a(#text=[one & two <>'\" three\n]))");
}

TEST(KelXMLParseServicesTest, InternalEntitiesAreExpandedIntoTheText) {
  EXPECT_EQ(outline(parsed("<!DOCTYPE a [<!ENTITY e 'mid'><!ENTITY f '[&e;]'>]>"
                           "<a x='-&f;-'>be&f;hind</a>")),
            "#document(a(#text=[be[mid]hind]))");
  EXPECT_EQ(rootAttribute("<!DOCTYPE a [<!ENTITY e 'mid'>]><a x='-&e;-'/>", "x").utf8(), "-mid-");
}

TEST(KelXMLParseServicesTest, EntitiesMayHoldElements) {
  EXPECT_EQ(outline(parsed("<!DOCTYPE a [<!ENTITY e '1<b>&#38;amp;</b>2'>]><a>0&e;3</a>")),
            "#document(a(#text=[01] b(#text=[&]) #text=[23]))");
}

TEST(KelXMLParseServicesTest, ParameterEntitiesDeclare) {
  EXPECT_EQ(outline(parsed("<!DOCTYPE a [<!ENTITY % p \"<!ENTITY e 'x'>\">%p;]><a>&e;</a>")),
            "#document(a(#text=[x]))");
}

TEST(KelXMLParseServicesTest, UndeclaredEntitiesAreRefusedWhateverWasNotRead) {
  EXPECT_NE(refusalOf("<!DOCTYPE a SYSTEM 'x.dtd'><a>&u;</a>").find("'u'"), std::string::npos);
  EXPECT_NE(refusalOf("<!DOCTYPE a SYSTEM 'x.dtd'><a b='&u;'/>").find("'u'"), std::string::npos);
  EXPECT_NE(refusalOf("<!DOCTYPE a [<!ENTITY % p ''>%p;]><a>&u;</a>").find("'u'"),
            std::string::npos);
  EXPECT_NE(
      refusalOf("<!DOCTYPE a [<!ENTITY % p ''>%p;<!ATTLIST a b CDATA '&u;'>]><a/>").find("'u'"),
      std::string::npos);
  EXPECT_NE(refusalOf("<!DOCTYPE a [<!ENTITY e '&u;'><!ENTITY % p ''>%p;]><a>&e;</a>").find("'u'"),
            std::string::npos);
}

TEST(KelXMLParseServicesTest, DefaultAttributesCountAsAttributes) {
  const std::string_view text = "<!DOCTYPE a [<!ATTLIST a d CDATA 'def' x CDATA 'y'>]><a x='1'/>";
  EXPECT_EQ(rootAttribute(text, "d").utf8(), "def");
  EXPECT_EQ(rootAttribute(text, "x").utf8(), "1");
}

TEST(KelXMLParseServicesTest, SectionsStayApart) {
  EXPECT_EQ(outline(parsed("<a>x<![CDATA[1]]><![CDATA[2]]><![CDATA[]]>y</a>")),
            "#document(a(#text=[x] #cdata-section=[1] #cdata-section=[2] #cdata-section=[] "
            "#text=[y]))");
  EXPECT_EQ(outline(parsed("<a><![CDATA[<&>\"']] ]>]]></a>")),
            "#document(a(#cdata-section=[<&>\"']] ]>]))");
}

TEST(KelXMLParseServicesTest, CommentsAndInstructionsSplitText) {
  EXPECT_EQ(outline(parsed("<a>x<!--c-->y<?p  d ?>z</a>")),
            "#document(a(#text=[x] #comment=[c] #text=[y] p=[d ] #text=[z]))");
}

TEST(KelXMLParseServicesTest, LineEndsBecomeLineFeeds) {
  EXPECT_EQ(outline(parsed("<a>1\r\n2\r3\n4\r\r5\n\r6&#13;7<!--x\r\ny--><![CDATA[x\ry]]></a>")),
            "#document(a(#text=[1\n2\n3\n4\n\n5\n\n6\r7] #comment=[x\ny] #cdata-section=[x\ny]))");
}

TEST(KelXMLParseServicesTest, WhiteSpaceInAttributesBecomesBlanks) {
  EXPECT_EQ(rootAttribute("<a x=' 1\t2\n3\r\n4\r5 '/>", "x").utf8(), " 1 2 3 4 5 ");
  EXPECT_EQ(rootAttribute("<a x='1&#9;2&#10;3&#13;4'/>", "x").utf8(), "1\t2\n3\r4");
  EXPECT_EQ(
      rootAttribute("<!DOCTYPE a [<!ATTLIST a x NMTOKENS #IMPLIED>]><a x='  b   c '/>", "x").utf8(),
      "b c");
}

TEST(KelXMLParseServicesTest, AnyCharacterOfXmlIsKept) {
  const std::string all =
      "\x7F\xC2\x80\xC2\x85\xC2\x9F\xC2\xA0\xC3\xBF\xE2\x80\xA8\xED\x9F\xBF"
      "\xEE\x80\x80\xEF\xBF\xBD\xF0\x90\x80\x80\xF0\x9F\x98\x80\xF4\x8F\xBF\xBD";
  EXPECT_EQ(outline(parsed("<a>" + all + "</a>")), "#document(a(#text=[" + all + "]))");
  EXPECT_EQ(rootAttribute("<a x='" + all + "'/>", "x").utf8(), all);
  EXPECT_EQ(outline(parsed("<a>&#x10000;&#x1F600;&#x10FFFD;&#233;</a>")),
            "#document(a(#text=[\xF0\x90\x80\x80\xF0\x9F\x98\x80\xF4\x8F\xBF\xBD\xC3\xA9]))");
}

TEST(KelXMLParseServicesTest, Xml11IsAccepted) {
  EXPECT_EQ(outline(parsed("<?xml version='1.1'?><a>&#1;&#x1F;|\xC2\x85|\xE2\x80\xA8|&#x85;</a>")),
            "#document(a(#text=[\x01\x1F|\n|\n|\xC2\x85]))");
  EXPECT_FALSE(isAccepted("<?xml version='1.1'?><a>\x01</a>"));
  EXPECT_FALSE(isAccepted("<?xml version='1.1'?><a>&#0;</a>"));
}

TEST(KelXMLParseServicesTest, OtherVersionsAreRefused) {
  for (const std::string version : {"1.2", "2.0", "1.10", "1", "0.9", "1.", "", "1.0 ", "x"}) {
    EXPECT_FALSE(isAccepted("<?xml version='" + version + "'?><a/>")) << version;
  }
  EXPECT_EQ(refusalOf("<?xml version='1.2'?><a/>"),
            "test: line 1, column 22: XML 1.2 is neither XML 1.0 nor XML 1.1");
}

TEST(KelXMLParseServicesTest, LongTextsArriveWhole) {
  for (const int length : {1000, 16383, 16384, 16385, 49151, 49152, 100000, 3000000}) {
    const std::string text = repeated("\xC3\xA9x", length / 2);
    const DOM_Document document = parsed("<a x='" + text + "'>" + text + "<!--" + text +
                                         "--><![CDATA[" + text + "]]><?p " + text + "?></a>");
    EXPECT_TRUE(outline(document) == "#document(a(#text=[" + text + "] #comment=[" + text +
                                         "] #cdata-section=[" + text + "] p=[" + text + "]))")
        << length;
    EXPECT_TRUE(document.getDocumentElement().getAttribute("x").utf8() == text) << length;
  }
}

TEST(KelXMLParseServicesTest, AFailureLeavesNothingBehindForTheNextDocument) {
  const std::string_view broken[] = {
      "<!DOCTYPE a [<!ENTITY e 'old'><!ATTLIST a x CDATA 'old'>]><a>&e;<b>",
      "<?xml version='1.1' standalone='yes'?><a>&#1;<b></a>",
      "<!DOCTYPE a [<!ENTITY e 'old'>]><a>&e;&f;</a>",
      "<a><![CDATA[",
      "<a b='",
  };
  for (const std::string_view text : broken) {
    refusalOf(text);
    EXPECT_EQ(rewritten("<a>new</a>"), "<a>new</a>");
    EXPECT_FALSE(isAccepted("<a>&e;</a>"));
    EXPECT_FALSE(isAccepted("<a>&#1;</a>"));
  }
}

TEST(KelXMLParseServicesTest, SeveralThreadsMayParse) {
  const std::string text = "<a>" + repeated("<b x='1'>text</b>", 200) + "</a>";
  std::vector<unsigned int> found(8);
  std::vector<std::thread> threads;
  for (unsigned int& count : found) {
    threads.emplace_back([&text, &count] {
      for (int i = 0; i < 20; ++i) {
        const KelInputSource source(std::string_view(text), "thread");
        DOM_Document document;
        if (KelXMLParseServices::XMLParse(source, document) != S_OK) return;
        count += document.getElementsByTagName("b").getLength();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const unsigned int count : found) EXPECT_EQ(count, 20u * 200u);
}

}  // namespace
