// XML messages: the tags that a script names.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "CollectorErrors.h"
#include "ComparisonBench.h"
#include "DataScript.h"
#include "KelLib.h"
#include "MessageModels.h"
#include "NullReferenceTo.h"
#include "TraceRecorder.h"
#include "ZetNorvBuilders.h"

namespace {

struct Tag {
  const char* name;
  const char* father;
  const char* attributs = nullptr;
};

using Texts = std::vector<std::string>;

const Texts kStepsToParse = {"Before CreateMemBufInputSourceFromOstr ",
                             "Before KelXMLParseServices::XMLParse ",
                             "After KelXMLParseServices::XMLParse"};

Texts with(Texts lines, const std::string& last) {
  lines.push_back(last);
  return lines;
}

}  // namespace

class ZetNorvBuildersXmlTest : public testing::Test {
 protected:
  ZetNorvBuildersXmlTest() : script("XML_"), collector(1) {}

  void declare(const std::vector<Tag>& tags) {
    for (const Tag& tag : tags) {
      DataBalise balise(tag.name, tag.father);
      balise.setAttributs(tag.attributs);
      script.addBalise(&balise);
    }
    trace.clear();
  }

  // Builds the message from a buffer that ends where `bytes` do.
  long buildBytes(const std::string& bytes, DataScript& tags, CollectorErrors* findings) {
    const std::vector<char> buffer(bytes.begin(), bytes.end());
    const char nothing = 0;
    return ZetNorvBuilders::builderMessage(buffer.empty() ? &nothing : buffer.data(),
                                           static_cast<int>(buffer.size()), &tags, msg, findings);
  }
  long buildBytes(const std::string& bytes, CollectorErrors* findings) {
    return buildBytes(bytes, script, findings);
  }
  long build(const std::string& xml) { return buildBytes(message(40, xml), &collector); }
  long buildWith(const std::string& xml, DataScript& tags) {
    return buildBytes(message(40, xml), tags, &collector);
  }

  TraceRecorder trace;
  DataScript script;
  MsgXML msg;
  CollectorErrors collector;
};

TEST_F(ZetNorvBuildersXmlTest, TakesTheTagsThatTheScriptNamesGroupedByEntry) {
  declare({{"Reference", "Document", "Name"}, {"Document", "Answer", "Id"}});
  EXPECT_EQ(build("<Answer><Document Id=\"1\"><Reference Name=\"a\"/></Document>"
                  "<Document Id=\"2\"><Reference Name=\"b\"/><Other/></Document></Answer>"),
            S_OK);
  EXPECT_EQ(describe(msg), (Texts{"Reference[Name=a]", "Reference[Name=b]",
                                  "Document[Id=1](Reference)", "Document[Id=2](Reference Other)"}));
  EXPECT_EQ(findingsOf(collector), Texts{});
  EXPECT_EQ(trace.texts(), with(kStepsToParse, "Before datascript.getSize() "));
  for (const TraceRecorder::Line& line : trace.lines()) EXPECT_EQ(line.level, 2) << line.text;
}

TEST_F(ZetNorvBuildersXmlTest, TakesElementsAtAnyDepthTheRootIncluded) {
  declare({{"A", ""}});
  EXPECT_EQ(build("<A><B><A/></B><A><A/></A></A>"), S_OK);
  EXPECT_EQ(describe(msg), (Texts{"A(B A)", "A", "A(A)", "A"}));
}

TEST_F(ZetNorvBuildersXmlTest, TagNamesAreExact) {
  declare({{"Doc", ""}});
  EXPECT_EQ(build("<a><Document/><doc/><Do/></a>"), S_OK);
  EXPECT_EQ(describe(msg), Texts{});
  EXPECT_EQ(findingsOf(collector), Texts{"0 No Found BaliseXML|Doc"});
}

TEST_F(ZetNorvBuildersXmlTest, AnEntryNamedTwiceTakesItsElementsTwice) {
  declare({{"A", "", "x"}, {"A", "", "y"}});
  EXPECT_EQ(build("<A x=\"1\" y=\"2\"/>"), S_OK);
  EXPECT_EQ(describe(msg), (Texts{"A[x=1]", "A[y=2]"}));
}

TEST_F(ZetNorvBuildersXmlTest, AStarIsNoName) {
  declare({{"*", ""}});
  EXPECT_EQ(build("<a/>"), S_OK);
  EXPECT_EQ(describe(msg), Texts{});
  EXPECT_EQ(findingsOf(collector), Texts{"0 No Found BaliseXML|*"});
}

TEST_F(ZetNorvBuildersXmlTest, AnEntryWithoutNameFindsNothing) {
  declare({{"", ""}, {nullptr, nullptr}});
  EXPECT_EQ(build("<a/>"), S_OK);
  EXPECT_EQ(findingsOf(collector), (Texts{"0 No Found BaliseXML|", "0 No Found BaliseXML|"}));
  EXPECT_FALSE(trace.has("addError: details == NULL"));
}

TEST_F(ZetNorvBuildersXmlTest, TakesTheAttributesInTheOrderOfTheEntry) {
  declare({{"A", "", "c a b"}});
  EXPECT_EQ(build("<A a=\"1\" b=\"2\" c=\"3\" d=\"4\"/>"), S_OK);
  EXPECT_EQ(describe(msg), Texts{"A[c=3 a=1 b=2]"});
  EXPECT_EQ(findingsOf(collector), Texts{});
}

TEST_F(ZetNorvBuildersXmlTest, AnAbsentOrEmptyAttributeIsAFindingAndNotInTheTag) {
  declare({{"A", "", "a b c"}});
  EXPECT_EQ(build("<A a=\"\" c=\"3\"/>"), S_OK);
  EXPECT_EQ(describe(msg), Texts{"A[c=3]"});
  EXPECT_EQ(findingsOf(collector), (Texts{"0 No Found AttributXML|a", "0 No Found AttributXML|b"}));
}

TEST_F(ZetNorvBuildersXmlTest, AnEmptyAttributeNameIsNeverFound) {
  declare({{"A", "", "a  b"}});
  EXPECT_EQ(build("<A a=\"1\" b=\"2\"/>"), S_OK);
  EXPECT_EQ(describe(msg), Texts{"A[a=1 b=2]"});
  EXPECT_EQ(findingsOf(collector), Texts{"0 No Found AttributXML|"});
}

TEST_F(ZetNorvBuildersXmlTest, AnEmptySlotInTheListOfNamesIsPassedOver) {
  declare({{"A", "", "a b"}});
  delete script._balises[0]->_attributs[0];
  script._balises[0]->_attributs[0] = nullptr;
  EXPECT_EQ(build("<A a=\"1\" b=\"2\"/>"), S_OK);
  EXPECT_EQ(describe(msg), Texts{"A[b=2]"});
}

TEST_F(ZetNorvBuildersXmlTest, ChecksTheValuesItTakes) {
  declare({{"A", "", "a b"}});
  EXPECT_EQ(build("<A a=\"0FFFF\" b=\"FfFfFf\" ignored=\"FFFFFFFF\"/>"), S_OK);
  EXPECT_EQ(findingsOf(collector), Texts{"10 Problem value FFFFF... |0FFFF"});
}

TEST_F(ZetNorvBuildersXmlTest, ValuesAreCutAtALineFeedInTheModelOnly) {
  declare({{"A", "", "a b"}});
  EXPECT_EQ(build("<A a=\"&#10;x\" b=\"y&#10;FFFF\"/>"), S_OK);
  EXPECT_EQ(describe(msg), Texts{"A[a= b=y]"});
  EXPECT_EQ(findingsOf(collector), Texts{"10 Problem value FFFFF... |y"});
}

TEST_F(ZetNorvBuildersXmlTest, EveryChildNodeIsAChild) {
  declare({{"A", ""}});
  EXPECT_EQ(build("<A>\n <B x=\"1\"><C/></B><!-- c -->text<![CDATA[d]]><?target data?><B/></A>"),
            S_OK);
  EXPECT_EQ(describe(msg), Texts{"A(#text B #comment #text #cdata-section target B)"});
}

TEST_F(ZetNorvBuildersXmlTest, FindingsComeInTheOrderOfEntriesAndElements) {
  declare({{"A", "", "x"}, {"B", ""}, {"C", "", "y"}});
  EXPECT_EQ(build("<r><C/><A/><A x=\"FFFF\"/></r>"), S_OK);
  EXPECT_EQ(findingsOf(collector),
            (Texts{"0 No Found AttributXML|x", "10 Problem value FFFFF... |FFFF",
                   "0 No Found BaliseXML|B", "0 No Found AttributXML|y"}));
}

TEST_F(ZetNorvBuildersXmlTest, WithoutACollectorNothingIsReported) {
  declare({{"A", "", "x y"}, {"B", ""}});
  EXPECT_EQ(buildBytes(message(40, "<A x=\"FFFFFFFF\"/>"), nullptr), S_OK);
  EXPECT_EQ(describe(msg), Texts{"A[x=FFFFFFFF]"});
  EXPECT_FALSE(trace.has("checkFFFFF: str == NULL || collect == NULL"));
}

TEST_F(ZetNorvBuildersXmlTest, SkipsTheFourHeaderBytesWhateverTheyAre) {
  declare({{"A", ""}});
  EXPECT_EQ(buildBytes("<<<<<A/>", &collector), S_OK);
  EXPECT_EQ(describe(msg), Texts{"A"});
}

TEST_F(ZetNorvBuildersXmlTest, ADocumentMayBeFollowedByNuls) {
  declare({{"A", ""}});
  EXPECT_EQ(build(std::string("<A/>\0\0", 6)), S_OK);
  EXPECT_EQ(describe(msg), Texts{"A"});
}

TEST_F(ZetNorvBuildersXmlTest, TextThatIsNoDocumentIsAParseFailure) {
  declare({{"A", ""}});
  for (const std::string& xml :
       {std::string(), std::string(" "), std::string("A"), std::string("<A>"),
        std::string("<A></B>"), std::string("<A/><A/>"), std::string("<A/>\0x", 6),
        std::string("\0<A/>", 5)}) {
    trace.clear();
    EXPECT_EQ(build(xml), E_FAIL) << xml;
    EXPECT_EQ(trace.texts(), with(kStepsToParse, "Out ... XMLParse")) << xml;
    for (const TraceRecorder::Line& line : trace.lines()) {
      if (line.text == "Out ... XMLParse") {
        EXPECT_EQ(line.level, 1);
      }
    }
  }
  EXPECT_EQ(describe(msg), Texts{});
  EXPECT_EQ(findingsOf(collector), Texts{});
}

TEST_F(ZetNorvBuildersXmlTest, ARefusedMessageIsCalledAfterTheBuilder) {
  declare({{"A", ""}});
  EXPECT_EQ(build("<A>"), E_FAIL);
  EXPECT_EQ(trace.refusedDocument(), "msg builderMessage");
}

TEST_F(ZetNorvBuildersXmlTest, FewerThanFourBytesAreAParseFailure) {
  declare({{"A", ""}});
  for (const char* bytes : {"", "a", "ab", "abc", "abcd"}) {
    trace.clear();
    EXPECT_EQ(buildBytes(bytes, &collector), E_FAIL);
    EXPECT_EQ(trace.texts(), with(kStepsToParse, "Out ... XMLParse"));
  }
  for (const int size : {-1, INT_MIN}) {
    trace.clear();
    EXPECT_EQ(ZetNorvBuilders::builderMessage("abcd", size, &script, msg, &collector), E_FAIL);
    EXPECT_EQ(trace.texts(), with(kStepsToParse, "Out ... XMLParse"));
  }
}

TEST_F(ZetNorvBuildersXmlTest, ANullBufferIsTraced) {
  declare({{"A", ""}});
  EXPECT_EQ(ZetNorvBuilders::builderMessage(nullptr, 8, &script, msg, &collector), E_FAIL);
  EXPECT_EQ(trace.texts(), Texts{"builderMessage: tmp == NULL"});
  EXPECT_EQ(trace.lines().front().level, 2);
}

TEST_F(ZetNorvBuildersXmlTest, ANullMessageIsTraced) {
  declare({{"A", ""}});
  const std::string bytes = message(40, "<A/>");
  EXPECT_EQ(ZetNorvBuilders::builderMessage(bytes.data(), static_cast<int>(bytes.size()), &script,
                                            nullReferenceTo<MsgXML>(), &collector),
            E_FAIL);
  EXPECT_EQ(trace.texts(), Texts{"builderMessage: msg == NULL"});
}

TEST_F(ZetNorvBuildersXmlTest, ANullScriptFailsAfterTheParsing) {
  trace.clear();
  const std::string bytes = message(40, "<A/>");
  EXPECT_EQ(ZetNorvBuilders::builderMessage(bytes.data(), static_cast<int>(bytes.size()), nullptr,
                                            msg, &collector),
            E_FAIL);
  EXPECT_EQ(trace.texts(), with(kStepsToParse, "Before datascript.getSize() "));
}

TEST_F(ZetNorvBuildersXmlTest, AScriptWithoutEntriesGivesAnEmptyMessage) {
  for (const char* kind : {"XML_", "CHAR", "OTHER"}) {
    DataScript empty(kind);
    EXPECT_EQ(buildWith("<A/>", empty), S_OK) << kind;
    EXPECT_EQ(describe(msg), Texts{}) << kind;
    EXPECT_EQ(findingsOf(collector), Texts{}) << kind;
  }
}

TEST_F(ZetNorvBuildersXmlTest, ACharacterScriptReadsNoXmlMessage) {
  DataScript fields("CHAR");
  const DataComposant composant("A", 4, nullptr, 1, "S", "");
  fields.addComposant(&composant);
  trace.clear();
  EXPECT_EQ(buildWith("<A/>", fields), E_FAIL);
  EXPECT_EQ(trace.texts(), with(with(kStepsToParse, "Before datascript.getSize() "),
                                "ZetNorvBuilders::builderMessage balise Not Found"));
  EXPECT_EQ(trace.lines().back().level, 2);
}

TEST_F(ZetNorvBuildersXmlTest, TagsOfAScriptThatSaysToBeOfAnotherKindReadNoMessage) {
  for (const char* kind : {"CHAR", "XML_2", "XML", ""}) {
    DataScript tags("XML_");
    const DataBalise balise("A", "");
    tags.addBalise(&balise);
    tags.type = MString(kind);
    EXPECT_EQ(buildWith("<A/>", tags), E_FAIL) << kind;
    EXPECT_EQ(describe(msg), Texts{}) << kind;
    EXPECT_EQ(trace.texts().back(), "ZetNorvBuilders::builderMessage balise Not Found") << kind;
  }
}

TEST_F(ZetNorvBuildersXmlTest, TagsBeforeAnEmptySlotOfTheScriptStay) {
  declare({{"A", ""}, {"B", ""}, {"C", ""}});
  delete script._balises[1];
  script._balises[1] = nullptr;
  EXPECT_EQ(build("<r><A/><B/><C/></r>"), E_FAIL);
  EXPECT_EQ(describe(msg), Texts{"A"});
  EXPECT_TRUE(trace.has("ZetNorvBuilders::builderMessage balise Not Found"));
}

TEST_F(ZetNorvBuildersXmlTest, AMessageCutAtAnyByteIsAParseFailure) {
  declare({{"Document", "Answer", "Id"}, {"Reference", "Document"}});
  const std::string whole =
      message(40, "<Answer><Document Id=\"é\"><Reference/>text</Document></Answer>");
  for (std::size_t length = 0; length < whole.size(); ++length) {
    trace.clear();
    EXPECT_EQ(buildBytes(whole.substr(0, length), &collector), E_FAIL) << length;
    EXPECT_EQ(trace.texts().back(), "Out ... XMLParse") << length;
  }
  EXPECT_EQ(describe(msg), Texts{});
  EXPECT_EQ(buildBytes(whole, &collector), S_OK);
}

TEST_F(ZetNorvBuildersXmlTest, ThousandsOfAttributesAndChildrenAreKept) {
  constexpr int kMany = 3000;
  std::string names;
  std::string attributes;
  std::string children;
  for (int i = 0; i < kMany; ++i) {
    const std::string name = "a" + std::to_string(i);
    names += (i == 0 ? "" : " ") + name;
    attributes += " " + name + "=\"" + std::to_string(i) + "\"";
    children += "<c/>";
  }
  declare({{"A", "", names.c_str()}});
  EXPECT_EQ(build("<A" + attributes + ">" + children + "</A>"), S_OK);
  ASSERT_EQ(msg.getNbBalises(), 1);
  EXPECT_EQ(msg.getBalise(0)->getNbAttributs(), kMany);
  EXPECT_EQ(msg.getBalise(0)->getNbChildren(), kMany);
  EXPECT_STREQ(msg.getBalise(0)->getAttributP(kMany - 1)->_value.gchar(), "2999");
  // Grown in steps of 5 from 2.
  EXPECT_EQ(msg.getBalise(0)->_capacityAttributs, 3002);
  EXPECT_EQ(msg.getBalise(0)->_capacityChildren, 3002);
  EXPECT_EQ(findingsOf(collector), Texts{});
}
