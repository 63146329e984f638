#include "ZetNorvMod.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "ComparisonBench.h"
#include "ConsoleCapture.h"
#include "DataScript.h"
#include "Files.h"
#include "KelLib.h"
#include "TraceRecorder.h"

namespace {

using Texts = std::vector<std::string>;

constexpr const char* kScripts = R"(<Scripts>
  <MessageChar value="12">
    <Composant name="Number" size="4" compare="1" type="I"/>
    <Composant name="Body" size="8" compare="1"/>
  </MessageChar>
  <MessageChar value="13">
    <Composant name="Number" size="4" compare="0"/>
    <Composant name="Body" size="8" compare="1"/>
  </MessageChar>
  <MessageChar value="15">
    <Composant name="$Length" size="4" compare="1"/>
    <Composant name="Body" size="$Length" compare="1"/>
  </MessageChar>
  <MessageXML value="40">
    <Composant name="Document" father="Answer" attributs="Identifier Type"/>
    <Composant name="Reference" father="Document" attributs="Name"/>
  </MessageXML>
  <MessageXML value="41">
    <Composant name="A" father="A" attributs=""/>
  </MessageXML>
  <MessageXML value="325"/>
</Scripts>
)";

constexpr const char* kXml =
    R"(<Answer><Document Identifier="1" Type="t"><Reference Name="n"/></Document></Answer>)";

const Texts kBegin = {"ZetNorvMod: Creation du CollectorErrors",
                      "ZetNorvMod: Creation du DataScript"};
const Texts kScriptBuilt = {"ZetNorvScript_Pool: 0", "MicroMod: Extraction fichier de reference"};
const Texts kParsed = {"Before CreateMemBufInputSourceFromOstr ",
                       "Before KelXMLParseServices::XMLParse ",
                       "After KelXMLParseServices::XMLParse", "Before datascript.getSize() "};
const Texts kNotParsed = {"Before CreateMemBufInputSourceFromOstr ",
                          "Before KelXMLParseServices::XMLParse ",
                          "After KelXMLParseServices::XMLParse", "Out ... XMLParse"};
const Texts kCompared = {"Builder::restructMessage msg", "Builder::restructMessage msgRef",
                         "ZetNorvMod: Builder::checkFather msg", "ZetNorvMod: msg->operator =="};
const Texts kXmlEnd = {"ZetNorvMod:  End of if(MsgXML)", "ZetNorvMod: End"};
const Texts kCharBuilt = {"ZetNorvMod: Msg * msg = Builder::builderMessage",
                          "ZetNorvMod: Msg * msgRef = Builder::builderMessage"};

Texts join(const std::vector<Texts>& parts) {
  Texts all;
  for (const Texts& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

// The lines of a run that compares two XML messages; `differences` are those of the comparison.
Texts xmlRun(const Texts& differences = {}) {
  return join({kBegin,
               kScriptBuilt,
               {"ZetNorvMod: Builder::builderMessage msg"},
               kParsed,
               {"ZetNorvMod: Builder::builderMessage msgRef"},
               kParsed,
               kCompared,
               differences,
               kXmlEnd});
}

Texts charRun() { return join({kBegin, kScriptBuilt, kCharBuilt, {"ZetNorvMod: End"}}); }

}  // namespace

class ZetNorvModTest : public testing::Test {
 protected:
  ZetNorvModTest() {
    bench.script(kScripts);
    EXPECT_EQ(DataScript::_nbInstances, 0);
  }
  ~ZetNorvModTest() override {
    EXPECT_EQ(DataScript::_nbInstances, 0);
    EXPECT_EQ(DataComposant::_nbInstances, 0);
    EXPECT_EQ(DataBalise::_nbInstances, 0);
    EXPECT_EQ(DataAttribut::_nbInstances, 0);
  }

  // Expects a run that went to its end, told by `lines`, and one section with `findings`.
  void expectCompared(int number, const std::string& sent, const std::string& recorded,
                      const Texts& lines, const std::string& findings) {
    trace.clear();
    bench.removeLog();
    EXPECT_EQ(bench.compareWith(number, sent, recorded), S_OK);
    EXPECT_EQ(trace.texts(), lines);
    for (const TraceRecorder::Line& line : trace.lines()) EXPECT_EQ(line.level, 2) << line.text;
    EXPECT_EQ(bench.log(), section(number, sent, findings));
  }

  // Expects a run that failed, told by `lines`, and no section.
  void expectFailed(long result, const Texts& lines) {
    EXPECT_EQ(result, E_FAIL);
    EXPECT_EQ(trace.texts(), lines);
    for (const TraceRecorder::Line& line : trace.lines()) {
      if (line.trace != "ZetNorvTrace") continue;
      EXPECT_EQ(line.level, line.text.starts_with("Out ... ") ? 1 : 2) << line.text;
    }
    EXPECT_FALSE(bench.hasLog());
    trace.clear();
  }

  ComparisonBench bench;
  TraceRecorder trace;
};

TEST_F(ZetNorvModTest, EqualXmlMessagesAppendASectionWithoutFindings) {
  expectCompared(40, message(40, kXml), message(40, kXml), xmlRun(), "");
}

TEST_F(ZetNorvModTest, ValuesOfAttributesMayDiffer) {
  expectCompared(40, message(40, kXml),
                 message(40, R"(<Answer><Document Identifier="9" Type="u"><Reference Name="m"/>)"
                             R"(</Document></Answer>)"),
                 xmlRun(), "");
}

TEST_F(ZetNorvModTest, TheHeadersOfXmlMessagesMayDiffer) {
  expectCompared(40, message(40, kXml), message(99, kXml), xmlRun(), "");
}

TEST_F(ZetNorvModTest, DifferentXmlMessagesAreAFinding) {
  expectCompared(
      40, message(40, kXml),
      message(40, R"(<Answer><Document Identifier="1" Type="t"><Reference Name="n"/></Document>)"
                  R"(<Document Identifier="2" Type="t"/></Answer>)"),
      xmlRun({"Problem with _nbBalises."}), "40 - 0 Problem Problem with reference file ...\n");
}

TEST_F(ZetNorvModTest, ADifferenceInACopiedTagIsTracedFromTheInside) {
  expectCompared(40, message(40, kXml),
                 message(40, R"(<Answer><Document Identifier="1" Type="t"><Reference/>)"
                             R"(</Document></Answer>)"),
                 xmlRun({"Problem with _nbAttributs.", "Problem with _child[i].",
                         "Problem with _balise[i]. "}),
                 "40 - 0 Problem Problem with reference file ...\n");
}

TEST_F(ZetNorvModTest, FindingsOfTheSentMessageComeInTheirOrder) {
  const std::string sent = message(
      40, R"(<Answer><Document Identifier="FFFF"> <Document Type="t"/></Document></Answer>)");
  expectCompared(40, sent, message(40, kXml),
                 xmlRun({"Problem with _nbAttributs.", "Problem with _balise[i]. "}),
                 "40 - 0 Problem value FFFFF...  FFFF\n"
                 "40 - 1 No Found AttributXML Type\n"
                 "40 - 2 No Found AttributXML Identifier\n"
                 "40 - 3 No Found BaliseXML Reference\n"
                 "40 - 4 Error in hierarchy #textDocument\n"
                 "40 - 5 Error in hierarchy DocumentDocument\n"
                 "40 - 6 Problem Problem with reference file ...\n");
}

TEST_F(ZetNorvModTest, TheRecordedMessageHasNoFindings) {
  const std::string recorded = message(
      40,
      R"(<Answer><Document Identifier="FFFFF" Type="t"><Reference Name="FFFF"/></Document></Answer>)");
  expectCompared(40, message(40, kXml), recorded, xmlRun(), "");
}

TEST_F(ZetNorvModTest, AnUndeclaredPairIsAFindingAlsoInAnEqualMessage) {
  const std::string bytes = message(
      40,
      R"(<Answer><Document Identifier="1" Type="t">x<Reference Name="n"/></Document></Answer>)");
  expectCompared(40, bytes, bytes, xmlRun(), "40 - 0 Error in hierarchy #textDocument\n");
}

TEST_F(ZetNorvModTest, TheSentMessageStandsLeftInTheComparison) {
  // The sent tag "A" has no children of another name; equality is the left side's.
  bench.script(R"(<s><MessageXML value="40"><Composant name="A" father="r"/></MessageXML></s>)");
  expectCompared(40, message(40, "<A><Doc/></A>"), message(40, "<A><Document/></A>"), xmlRun(),
                 "40 - 0 Error in hierarchy DocA\n");
  expectCompared(
      40, message(40, "<A><Document/></A>"), message(40, "<A><Doc/></A>"),
      xmlRun({"Problem with _name.", "Problem with _child[i].", "Problem with _balise[i]. "}),
      "40 - 0 Error in hierarchy DocumentA\n"
      "40 - 1 Problem Problem with reference file ...\n");
}

TEST_F(ZetNorvModTest, EqualCharacterMessagesAppendASectionWithoutFindings) {
  const std::string bytes = message(12, "abcdefgh");
  expectCompared(12, bytes, bytes, charRun(), "");
}

TEST_F(ZetNorvModTest, DifferentCharacterMessagesAreAFinding) {
  const std::string finding = "12 - 0 Problem Problem with reference file ...\n";
  const std::string recorded = message(12, "abcdefgh");
  expectCompared(12, message(12, "abcdefgX"), recorded, charRun(), finding);
  expectCompared(12, message(12, "abcdefg"), recorded, charRun(), finding);
  expectCompared(12, message(12, ""), recorded, charRun(), finding);
  expectCompared(12, message(11, "abcdefgh"), recorded, charRun(), finding);
}

TEST_F(ZetNorvModTest, WhatLiesBehindTheLastFieldIsNotCompared) {
  expectCompared(12, message(12, "abcdefghXYZ"), message(12, "abcdefgh"), charRun(), "");
}

TEST_F(ZetNorvModTest, AFieldThatIsNotComparedMakesEveryMessageDiffer) {
  const std::string bytes = message(13, "abcdefgh");
  expectCompared(13, bytes, bytes, charRun(), "13 - 0 Problem Problem with reference file ...\n");
}

TEST_F(ZetNorvModTest, AFieldIsAsLongAsItsMessageSays) {
  const Texts lines = join({kBegin,
                            kScriptBuilt,
                            {kCharBuilt[0], "Ajout d'une variable."},
                            {kCharBuilt[1], "Ajout d'une variable."},
                            {"ZetNorvMod: End"}});
  const std::string finding = "15 - 0 Problem Problem with reference file ...\n";
  expectCompared(15, message(3, "abcdef"), message(3, "abcxyz"), lines, "");
  expectCompared(15, message(4, "abcdef"), message(4, "abcxyz"), lines, finding);
  // A length above 100 is taken for something else, and replaced by 4.
  expectCompared(15, message(101, "abcdef"), message(101, "abcdxy"), lines, "");
}

TEST_F(ZetNorvModTest, SectionsAreAppended) {
  const std::string bytes = message(12, "abcdefgh");
  EXPECT_EQ(bench.compareWith(12, bytes, bytes), S_OK);
  EXPECT_EQ(bench.compareWith(40, message(40, kXml), message(40, kXml)), S_OK);
  EXPECT_EQ(bench.log(), section(12, bytes, "") + section(40, message(40, kXml), ""));
}

TEST_F(ZetNorvModTest, InDebugModeTheRunWritesNoSection) {
  bench.environment.set("ZETNORV_DEBUG", "REPLAY");
  bench.environment.set("App_CfgFile", bench.directory.file("Configuration/"));
  const std::string bytes = message(12, "abcdefgh");
  EXPECT_EQ(bench.compareWith(12, bytes, bytes), S_OK);
  EXPECT_EQ(trace.texts(), charRun());
  EXPECT_FALSE(bench.hasLog());
}

TEST_F(ZetNorvModTest, ASectionThatCannotBeWrittenIsNoFailure) {
  std::filesystem::create_directories(bench.directory.file("error.log"));
  const std::string bytes = message(12, "abcdefgh");
  EXPECT_EQ(bench.compareWith(12, bytes, bytes), S_OK);
  EXPECT_EQ(trace.texts(), join({kBegin,
                                 kScriptBuilt,
                                 kCharBuilt,
                                 {"Problem with KelFOpen writeLogFile!", "ZetNorvMod: End"}}));
}

TEST_F(ZetNorvModTest, TheCommitIsNeverCompared) {
  std::filesystem::remove(bench.scriptFile());
  ConsoleCapture console;
  EXPECT_EQ(bench.compare(325, message(325, "x"), bench.directory.file("missing")), S_OK);
  EXPECT_EQ(ZetNorvMod::runNorvLike(325, nullptr, 0, nullptr), S_OK);
  EXPECT_EQ(trace.texts(), Texts(2, "Spe: Commit (325)."));
  EXPECT_EQ(trace.lines().front().level, 2);
  EXPECT_FALSE(bench.hasLog());
  EXPECT_EQ(console.text(), "");
}

TEST_F(ZetNorvModTest, ANullMessageFails) {
  expectFailed(ZetNorvMod::runNorvLike(12, nullptr, 12, bench.record("x").c_str()),
               {"runNorvLike: inputBuf == NULL"});
  expectFailed(ZetNorvMod::runNorvLike(12, nullptr, 12, nullptr),
               {"runNorvLike: inputBuf == NULL"});
}

TEST_F(ZetNorvModTest, ANullPathFails) {
  expectFailed(ZetNorvMod::runNorvLike(12, "abcd", 4, nullptr), {"runNorvLike: pathFile == NULL"});
}

TEST_F(ZetNorvModTest, ANumberWithoutScriptFails) {
  const std::string bytes = message(14, "x");
  expectFailed(bench.compareWith(14, bytes, bytes),
               join({kBegin, {"runNorvLike: buildData != S_OK"}}));
}

TEST_F(ZetNorvModTest, AScriptFileThatIsMissingOrBrokenFails) {
  const std::string bytes = message(12, "abcdefgh");
  bench.script("<Scripts>");
  expectFailed(bench.compareWith(12, bytes, bytes),
               join({kBegin, {"Out ... XMLParse", "runNorvLike: buildData != S_OK"}}));
  std::filesystem::remove(bench.scriptFile());
  ConsoleCapture console;
  expectFailed(bench.compareWith(12, bytes, bytes),
               join({kBegin, {"runNorvLike: buildData != S_OK"}}));
  EXPECT_EQ(console.text(), " PRobleme avec le builder de script \n");
}

TEST_F(ZetNorvModTest, AMissingConfigurationDirectoryFails) {
  bench.environment.unset("BIX_ZET_IN");
  const std::string bytes = message(12, "abcdefgh");
  expectFailed(
      bench.compareWith(12, bytes, bytes),
      join({kBegin,
            {"Problem (App_SceFile): tselection == NULL.",
             "Problem (App_CfgFile): tselection == NULL.", "runNorvLike: buildData != S_OK"}}));
}

TEST_F(ZetNorvModTest, ARecordingThatCannotBeReadFails) {
  const Texts lines = join({kBegin, kScriptBuilt, {"runNorvLike: load != S_OK"}});
  const std::string bytes = message(12, "abcdefgh");
  expectFailed(bench.compare(12, bytes, bench.directory.file("missing")), lines);
  expectFailed(bench.compare(12, bytes, bench.directory.path().string()), lines);
  expectFailed(bench.compare(12, bytes, ""), lines);
}

TEST_F(ZetNorvModTest, AnEmptyRecordingFailsForBothKinds) {
  const Texts lines = join({kBegin, kScriptBuilt, {"ZetNorvMod: runNorvLike: typeMsg errone"}});
  expectFailed(bench.compareWith(12, message(12, "abcdefgh"), ""), lines);
  expectFailed(bench.compareWith(40, message(40, kXml), ""), lines);
}

TEST_F(ZetNorvModTest, ASentMessageThatIsNoXmlFails) {
  expectFailed(bench.compareWith(40, message(40, "<Answer>"), message(40, kXml)),
               join({kBegin,
                     kScriptBuilt,
                     {"ZetNorvMod: Builder::builderMessage msg"},
                     kNotParsed,
                     {"ZetNorvMod: Builder::builderMessage msg PROBLEM"}}));
}

TEST_F(ZetNorvModTest, ARecordingThatIsNoXmlFails) {
  expectFailed(bench.compareWith(40, message(40, kXml), message(40, "<Answer>")),
               join({kBegin,
                     kScriptBuilt,
                     {"ZetNorvMod: Builder::builderMessage msg"},
                     kParsed,
                     {"ZetNorvMod: Builder::builderMessage msgRef"},
                     kNotParsed,
                     {"ZetNorvMod: Builder::builderMessage msgRef PROBLEM"}}));
}

TEST_F(ZetNorvModTest, XmlCutAtAnyByteFailsOnEitherSide) {
  const std::string whole = message(40, kXml);
  const std::string intact = bench.record(whole);
  const std::string cutFile = bench.directory.file("cut");
  for (std::size_t length = 0; length < whole.size(); ++length) {
    const std::string part = whole.substr(0, length);
    trace.clear();
    EXPECT_EQ(bench.compare(40, part, intact), E_FAIL) << length;
    EXPECT_EQ(trace.texts().back(), "ZetNorvMod: Builder::builderMessage msg PROBLEM") << length;

    writeBytes(cutFile, part);
    trace.clear();
    EXPECT_EQ(bench.compare(40, whole, cutFile), E_FAIL) << length;
    EXPECT_EQ(trace.texts().back(), length == 0
                                        ? "ZetNorvMod: runNorvLike: typeMsg errone"
                                        : "ZetNorvMod: Builder::builderMessage msgRef PROBLEM")
        << length;
  }
  EXPECT_FALSE(bench.hasLog());
}

TEST_F(ZetNorvModTest, ACharacterMessageCutAtAnyByteDiffers) {
  const std::string whole = message(12, "abcdefgh");
  for (std::size_t length = 0; length < whole.size(); ++length) {
    expectCompared(12, whole.substr(0, length), whole, charRun(),
                   "12 - 0 Problem Problem with reference file ...\n");
    if (length == 0) continue;  // an empty recording is none
    expectCompared(12, whole, whole.substr(0, length), charRun(),
                   "12 - 0 Problem Problem with reference file ...\n");
  }
}

TEST_F(ZetNorvModTest, AScriptFileCutAtAnyByteLeavesNoSection) {
  const std::string whole = kScripts;
  const std::string bytes = message(12, "abcdefgh");
  const std::string recorded = bench.record(bytes);
  ConsoleCapture console;
  for (std::size_t length = 0; length + 1 < whole.size(); ++length) {
    bench.script(whole.substr(0, length));
    trace.clear();
    EXPECT_EQ(bench.compare(12, bytes, recorded), E_FAIL) << length;
    EXPECT_EQ(trace.texts().back(), "runNorvLike: buildData != S_OK") << length;
  }
  EXPECT_FALSE(bench.hasLog());
}

TEST_F(ZetNorvModTest, AScriptWithoutEntriesFindsAllMessagesEqual) {
  bench.script(R"(<s><MessageXML value="40"/><MessageChar value="12"/></s>)");
  expectCompared(40, message(40, "<a/>"), message(40, "<b/>"), xmlRun(), "");
  expectCompared(12, message(12, "x"), message(12, "y"), charRun(), "");
}

TEST_F(ZetNorvModTest, AMessageWhoseCopiesWouldOutgrowMemoryIsStillCompared) {
  std::string children;
  for (int i = 0; i < 40; ++i) children += "<A/>";
  const std::string bytes = message(41, "<A>" + children + "</A>");
  EXPECT_EQ(bench.compareWith(41, bytes, bytes), S_OK);
  EXPECT_EQ(trace.count("restructMessage: too many copies"), 2);
  std::string findings;
  for (int i = 0; i < 41; ++i) {
    findings += "41 - " + std::to_string(i) + " No Found AttributXML \n";
  }
  EXPECT_EQ(bench.log(), section(41, bytes, findings));
}

TEST_F(ZetNorvModTest, AMessageAtTheBoundOfNestingIsCompared) {
  std::string xml;
  for (int i = 0; i < 1000; ++i) xml += "<B>";
  for (int i = 0; i < 1000; ++i) xml += "</B>";
  bench.script(R"(<s><MessageXML value="40"><Composant name="B" father="B"/></MessageXML></s>)");
  const std::string bytes = message(40, xml);
  expectCompared(40, bytes, bytes, xmlRun(), "");
}

TEST_F(ZetNorvModTest, AnObjectCanBeMadeForTheCall) {
  ZetNorvMod mod;
  EXPECT_EQ(mod.runNorvLike(325, nullptr, 0, nullptr), S_OK);
}

TEST_F(ZetNorvModTest, APathMayHoldAnyByte) {
  const std::string bytes = message(12, "abcdefgh");
  const std::string path = bench.directory.file("line\nfeed \xff");
  writeBytes(path, bytes);
  EXPECT_EQ(bench.compare(12, bytes, path), S_OK);
  EXPECT_EQ(bench.log(), section(12, bytes, ""));
}
