#include "ZetNorvScript.h"

#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "ComparisonBench.h"
#include "ConsoleCapture.h"
#include "Files.h"
#include "TraceRecorder.h"

namespace {

constexpr const char* kExample = R"(<Scripts>
  <MessageChar value="12" path="">
    <Composant name="Header" size="4" compare="0" type="S" repeat=""/>
    <Composant name="Count" size="2" compare="1" type="I" repeat=""/>
    <Composant name="Body" size="$Count" compare="1" type="S" repeat="Count"/>
  </MessageChar>
  <MessageXML value="40" path="">
    <Composant name="Document" father="Answer" attributs="Identifier Type"/>
    <Composant name="Reference" father="Document" attributs="Name"/>
  </MessageXML>
</Scripts>
)";

constexpr const char* kNoFileText = " PRobleme avec le builder de script \n";

std::string textOf(const MString& text) { return text.gchar() == nullptr ? "" : text.gchar(); }

std::string describe(const DataComposant& field) {
  return textOf(field.name) + ":" + std::to_string(field.size) + ":" + textOf(field.sizeVar) + ":" +
         std::to_string(field.compare) + ":" + textOf(field.type) + ":" + textOf(field.repeat);
}

std::string describe(const DataBalise& tag) {
  std::string text = textOf(tag.name) + "<" + textOf(tag.father);
  for (int i = 0; i < tag._nbAttributs; ++i) text += "," + textOf(tag._attributs[i]->name);
  return text;
}

// The script as one text: its kind and its entries; "none" when there is no script.
std::string describe(const DataScript* script) {
  if (script == nullptr) return "none";
  std::string text = textOf(script->type);
  for (int i = 0; i < script->getSize(); ++i) {
    text += " ";
    text += script->getComposant(i) != nullptr ? describe(*script->getComposant(i))
                                               : describe(*script->getBalise(i));
  }
  return text;
}

}  // namespace

class ZetNorvScriptTest : public testing::Test {
 protected:
  ~ZetNorvScriptTest() override {
    EXPECT_EQ(DataScript::_nbInstances, _scripts);
    EXPECT_EQ(DataComposant::_nbInstances, _fields);
    EXPECT_EQ(DataBalise::_nbInstances, _tags);
    EXPECT_EQ(DataAttribut::_nbInstances, _attributs);
  }

  static std::unique_ptr<DataScript> scriptOf(int number) {
    return std::unique_ptr<DataScript>(ZetNorvScript::buildData(number));
  }
  static std::string build(int number) { return describe(scriptOf(number).get()); }

  // The script of `number` in a file with this content.
  std::string build(int number, const std::string& entries) {
    bench.script("<Scripts>" + entries + "</Scripts>");
    return build(number);
  }

  // Expects no script, and these lines of the library, at this level.
  void expectRefused(int number, const std::vector<std::string>& lines, int level) {
    trace.clear();
    EXPECT_EQ(build(number), "none");
    EXPECT_EQ(trace.texts(), lines);
    for (const TraceRecorder::Line& line : trace.lines()) {
      if (line.trace == "ZetNorvTrace") {
        EXPECT_EQ(line.level, level) << line.text;
      }
    }
  }

  ComparisonBench bench;
  TraceRecorder trace;
  ConsoleCapture console;

 private:
  const int _scripts = DataScript::_nbInstances;
  const int _fields = DataComposant::_nbInstances;
  const int _tags = DataBalise::_nbInstances;
  const int _attributs = DataAttribut::_nbInstances;
};

TEST_F(ZetNorvScriptTest, BuildsACharacterScript) {
  bench.script(kExample);
  EXPECT_EQ(build(12), "CHAR Header:4::0:S: Count:2::1:I: Body:0:$Count:1:S:Count");
  EXPECT_EQ(console.text(), "");
}

TEST_F(ZetNorvScriptTest, BuildsAnXmlScript) {
  bench.script(kExample);
  EXPECT_EQ(build(40), "XML_ Document<Answer,Identifier,Type Reference<Document,Name");
}

TEST_F(ZetNorvScriptTest, ANumberWithoutEntryHasNoScriptAndNoTrace) {
  bench.script(kExample);
  for (const int number : {13, 0, -12, 1, 4, 120, INT_MAX, INT_MIN}) expectRefused(number, {}, 0);
  bench.script("<Scripts/>");
  expectRefused(12, {}, 0);
  EXPECT_EQ(console.text(), "");
}

TEST_F(ZetNorvScriptTest, TracesThePoolAndNothingElse) {
  bench.script(kExample);
  const std::string line = "ZetNorvScript_Pool: " + std::to_string(DataScript::_nbInstances);
  for (int i = 0; i < 3; ++i) {  // an unchanged file tells the same every time
    trace.clear();
    EXPECT_NE(build(12), "none");
    EXPECT_EQ(trace.texts(), std::vector<std::string>{line});
  }
}

TEST_F(ZetNorvScriptTest, HandsOutAFreshScriptEveryTime) {
  bench.script(kExample);
  const std::unique_ptr<DataScript> first = scriptOf(12);
  const std::unique_ptr<DataScript> second = scriptOf(12);
  ASSERT_NE(first, nullptr);
  ASSERT_NE(first, second);
  EXPECT_NE(first->getComposant(0), second->getComposant(0));
  first->getComposant(0)->name.set("changed");
  EXPECT_STREQ(second->getComposant(0)->name.gchar(), "Header");
  EXPECT_STREQ(scriptOf(12)->getComposant(0)->name.gchar(), "Header");
}

TEST_F(ZetNorvScriptTest, ACharacterEntryGoesBeforeAnXmlEntry) {
  EXPECT_EQ(
      build(5,
            R"(<MessageXML value="5"><Composant name="a" father="f"/></MessageXML>)"
            R"(<MessageChar value="5"><Composant name="b" size="1" compare="1"/></MessageChar>)"),
      "CHAR b:1::1:S:");
}

TEST_F(ZetNorvScriptTest, TheFirstEntryOfANumberCounts) {
  const std::string entries =
      R"(<MessageChar value="5"><Composant name="a" size="1" compare="1"/></MessageChar>)"
      R"(<MessageChar value="5"><Composant name="b" size="2" compare="1"/></MessageChar>)"
      R"(<MessageXML value="6"><Composant name="c" father="f"/></MessageXML>)"
      R"(<MessageXML value="6"><Composant name="d" father="f"/></MessageXML>)";
  EXPECT_EQ(build(5, entries), "CHAR a:1::1:S:");
  EXPECT_EQ(build(6, entries), "XML_ c<f");
}

TEST_F(ZetNorvScriptTest, TheValueIsExactlyTheNumber) {
  for (const char* value : {"+5", "05", " 5", "5 ", "5.0", "", "0x5", "50", "five"}) {
    EXPECT_EQ(build(5, "<MessageChar value=\"" + std::string(value) + "\"/>"), "none") << value;
    EXPECT_EQ(build(5, "<MessageXML value=\"" + std::string(value) + "\"/>"), "none") << value;
  }
  EXPECT_EQ(build(5, "<MessageChar/>"), "none");
  EXPECT_EQ(build(0, "<MessageChar/><MessageXML value=\"\"/>"), "none");
  EXPECT_EQ(build(5, "<MessageChar value=\"5\"/>"), "CHAR");
  EXPECT_EQ(build(0, "<MessageChar value=\"0\"/>"), "CHAR");
  EXPECT_EQ(build(-5, "<MessageChar value=\"-5\"/>"), "CHAR");
  EXPECT_EQ(build(INT_MAX, "<MessageXML value=\"2147483647\"/>"), "XML_");
  EXPECT_EQ(build(INT_MIN, "<MessageXML value=\"-2147483648\"/>"), "XML_");
}

TEST_F(ZetNorvScriptTest, ReadsTheAttributesOfAField) {
  const struct {
    const char* attributes;
    const char* field;
  } cases[] = {
      {R"(name="a" size="7" compare="1" type="I" repeat="r")", "a:7::1:I:r"},
      {R"(name="a" size="7" compare="1")", "a:7::1:S:"},
      {R"(name="a" size="7" compare="1" type="")", "a:7::1:S:"},
      {R"(name="a" size="$n" compare="1")", "a:0:$n:1:S:"},
      {R"(name="a" size="$" compare="1")", "a:0:$:1:S:"},
      {R"(name="a" size=" $n" compare="1")", "a:0::1:S:"},
      {R"(name="$n" size="4" compare="1")", "$n:4::1:S:"},
      {R"(name="a" size="-3" compare="-1")", "a:-3::-1:S:"},
      {R"(name="a" size="2147483647" compare="2")", "a:2147483647::2:S:"},
      {R"(name="a" size="2147483648" compare="1")", "a:0::1:S:"},
      {R"(name="a" size="x" compare="yes")", "a:0::0:S:"},
      {R"(name="a" size="" compare="")", "a:0::0:S:"},
      {R"(name="a")", "a:0::0:S:"},
      {"", ":0::0:S:"},
      {R"(name="a&#10;b" size="$n&#10;m" type="S&#10;x" repeat="r&#10;x")", "a:0:$n:0:S:r"},
      {R"(name="&lt;é&gt;" size="1" compare="1" unknown="u")", "<é>:1::1:S:"},
  };
  for (const auto& c : cases) {
    const std::string entry =
        "<MessageChar value=\"5\"><Composant " + std::string(c.attributes) + "/></MessageChar>";
    EXPECT_EQ(build(5, entry), std::string("CHAR ") + c.field) << c.attributes;
  }
}

TEST_F(ZetNorvScriptTest, ReadsTheAttributesOfATag) {
  const struct {
    const char* attributes;
    const char* tag;
  } cases[] = {
      {R"(name="a" father="f" attributs="x y")", "a<f,x,y"},
      {R"(name="a" father="f" attributs="x")", "a<f,x"},
      {R"(name="a" father="f" attributs="x  y")", "a<f,x,,y"},
      {R"(name="a" father="f" attributs="x ")", "a<f,x,"},
      {R"(name="a" father="f" attributs="")", "a<f,"},
      {R"(name="a" father="f")", "a<f"},
      {R"(name="a")", "a<"},
      {"", "<"},
      {R"(name="a&#10;b" father="f&#10;g" attributs="x&#10;y z")", "a<f,x,z"},
  };
  for (const auto& c : cases) {
    const std::string entry =
        "<MessageXML value=\"5\"><Composant " + std::string(c.attributes) + "/></MessageXML>";
    EXPECT_EQ(build(5, entry), std::string("XML_ ") + c.tag) << c.attributes;
  }
}

TEST_F(ZetNorvScriptTest, AFieldWithoutVariableHasAnEmptyOne) {
  bench.script(kExample);
  const std::unique_ptr<DataScript> script = scriptOf(12);
  ASSERT_NE(script, nullptr);
  EXPECT_EQ(script->getComposant(0)->sizeVar.glength(), 0);
  EXPECT_EQ(script->getComposant(2)->sizeVar.glength(), 6);
}

TEST_F(ZetNorvScriptTest, TakesMoreThanFifteenAttributeNames) {
  std::string list = "a0";
  std::string expected = "XML_ t<f,a0";
  for (int i = 1; i < 40; ++i) {
    list += " a" + std::to_string(i);
    expected += ",a" + std::to_string(i);
  }
  EXPECT_EQ(build(5, R"(<MessageXML value="5"><Composant name="t" father="f" attributs=")" + list +
                         R"("/></MessageXML>)"),
            expected);
}

TEST_F(ZetNorvScriptTest, TakesLinesAtAnyDepthInDocumentOrder) {
  EXPECT_EQ(build(5, R"(<MessageChar value="5"><Composant name="a"/><Group><Composant name="b">)"
                     R"(<Composant name="c"/></Composant></Group>text<Composant name="d"/>)"
                     R"(</MessageChar><Composant name="outside"/>)"),
            "CHAR a:0::0:S: b:0::0:S: c:0::0:S: d:0::0:S:");
}

TEST_F(ZetNorvScriptTest, FindsEntriesAnywhereAlsoAsTheRootAndInsideOthers) {
  const std::string inner =
      R"(<MessageXML value="6"><Composant name="b" father="f"/></MessageXML>)";
  const std::string entries = R"(<Deep><Deeper><MessageChar value="5"><Composant name="a"/>)" +
                              inner + R"(<Composant name="c"/></MessageChar></Deeper></Deep>)";
  EXPECT_EQ(build(5, entries), "CHAR a:0::0:S: b:0::0:S: c:0::0:S:");
  EXPECT_EQ(build(6, entries), "XML_ b<f");
  bench.script(R"(<MessageChar value="7"><Composant name="a"/></MessageChar>)");
  EXPECT_EQ(build(7), "CHAR a:0::0:S:");
}

TEST_F(ZetNorvScriptTest, AnEntryInsideOneOfTheSameNumberIsNotAnother) {
  const std::string entries =
      R"(<MessageChar value="5"><Composant name="a"/><MessageChar value="5">)"
      R"(<Composant name="b"/></MessageChar><Composant name="c"/></MessageChar>)";
  EXPECT_EQ(build(5, entries), "CHAR a:0::0:S: b:0::0:S: c:0::0:S:");
}

TEST_F(ZetNorvScriptTest, NamesOfElementsAreExact) {
  EXPECT_EQ(build(5, R"(<messagechar value="5"/><MessageChars value="5"/>)"), "none");
  EXPECT_EQ(build(5, R"(<MessageChar value="5"><composant name="a"/><Composants name="b"/>)"
                     R"(</MessageChar>)"),
            "CHAR");
}

TEST_F(ZetNorvScriptTest, FindsEveryEntryOfALargeFile) {
  std::string entries;
  for (int i = 0; i < 500; ++i) {
    const std::string number = std::to_string(i);
    entries +=
        "<MessageChar value=\"" + number + "\"><Composant name=\"n" + number + "\"/></MessageChar>";
  }
  bench.script("<Scripts>" + entries + "</Scripts>");
  for (const int i : {0, 1, 250, 499}) {
    EXPECT_EQ(build(i), "CHAR n" + std::to_string(i) + ":0::0:S:");
  }
  EXPECT_EQ(build(500), "none");
}

TEST_F(ZetNorvScriptTest, AnEditTakesEffectAtTheNextMessage) {
  EXPECT_EQ(build(5, R"(<MessageChar value="5"><Composant name="a"/></MessageChar>)"),
            "CHAR a:0::0:S:");
  EXPECT_EQ(build(5, R"(<MessageChar value="5"><Composant name="abc"/></MessageChar>)"),
            "CHAR abc:0::0:S:");
  std::filesystem::remove(bench.scriptFile());
  EXPECT_EQ(build(5), "none");
}

TEST_F(ZetNorvScriptTest, AnEditIsSeenThatKeepsSizeAndTimeStamp) {
  EXPECT_EQ(build(5, R"(<MessageChar value="5"><Composant name="a"/></MessageChar>)"),
            "CHAR a:0::0:S:");
  const auto stamp = std::filesystem::last_write_time(bench.scriptFile());
  bench.script(R"(<Scripts><MessageChar value="5"><Composant name="b"/></MessageChar></Scripts>)");
  std::filesystem::last_write_time(bench.scriptFile(), stamp);
  EXPECT_EQ(build(5), "CHAR b:0::0:S:");
}

TEST_F(ZetNorvScriptTest, AnotherConfigurationDirectoryIsAnotherFile) {
  bench.script(kExample);
  EXPECT_NE(build(12), "none");
  bench.environment.set("BIX_ZET_IN", bench.directory.file("other"));
  writeBytes(bench.directory.file("other/Configuration/xmlStruct.xml"),
             R"(<Scripts><MessageChar value="12"/></Scripts>)");
  EXPECT_EQ(build(12), "CHAR");
}

TEST_F(ZetNorvScriptTest, InDebugModeTheFileNameIsGluedToTheDirectory) {
  writeBytes(bench.directory.file("cfgxmlStruct.xml"), kExample);
  bench.environment.set("ZETNORV_DEBUG", "REPLAY");
  bench.environment.set("App_CfgFile", bench.directory.file("cfg"));
  EXPECT_EQ(build(40), "XML_ Document<Answer,Identifier,Type Reference<Document,Name");
}

TEST_F(ZetNorvScriptTest, WithoutAConfigurationDirectoryThereIsNoScript) {
  bench.script(kExample);
  bench.environment.unset("BIX_ZET_IN");
  expectRefused(
      12,
      {"Problem (App_SceFile): tselection == NULL.", "Problem (App_CfgFile): tselection == NULL."},
      2);
  bench.environment.set("ZETNORV_DEBUG", "REPLAY");
  expectRefused(
      12,
      {"Problem (App_CfgFile): tselection == NULL.", "Problem (App_CfgFile): tselection == NULL."},
      2);
  EXPECT_EQ(console.text(), "");
}

TEST_F(ZetNorvScriptTest, AMissingFileIsToldOnStandardOutput) {
  expectRefused(12, {}, 0);
  EXPECT_EQ(console.text(), kNoFileText);
}

TEST_F(ZetNorvScriptTest, AnEmptyFileIsToldOnStandardOutput) {
  bench.script("");
  expectRefused(12, {}, 0);
  EXPECT_EQ(console.text(), kNoFileText);
}

TEST_F(ZetNorvScriptTest, ADirectoryInTheFilesPlaceIsToldOnStandardOutput) {
  std::filesystem::create_directories(bench.scriptFile());
  expectRefused(12, {}, 0);
  EXPECT_EQ(console.text(), kNoFileText);
}

TEST_F(ZetNorvScriptTest, AFileThatIsNoDocumentIsTraced) {
  const std::string whole = kExample;
  for (const std::string& content :
       {std::string(" "), std::string("\0", 1), std::string("text"), std::string("<a>"),
        std::string("<a></b>"), whole + "<another/>", whole + std::string("\0x", 2),
        std::string("<?xml version=\"1.2\"?><a/>"), std::string("<a>\xff</a>")}) {
    bench.script(content);
    expectRefused(12, {"Out ... XMLParse"}, 1);
  }
  EXPECT_EQ(console.text(), "");
}

TEST_F(ZetNorvScriptTest, ABrokenFileIsCalledAsReadersOfTheTraceKnowIt) {
  bench.script("<Scripts>");
  EXPECT_EQ(build(12), "none");
  EXPECT_EQ(trace.refusedDocument(), "err msg");
}

TEST_F(ZetNorvScriptTest, ABrokenFileIsReadAgainAfterItsRepair) {
  bench.script(kExample);
  EXPECT_NE(build(12), "none");
  bench.script("<Scripts>");
  expectRefused(12, {"Out ... XMLParse"}, 1);
  expectRefused(12, {"Out ... XMLParse"}, 1);
  bench.script(kExample);
  EXPECT_NE(build(12), "none");
}

TEST_F(ZetNorvScriptTest, AFileCutAtAnyByteGivesTheWholeScriptOrNone) {
  const std::string whole = kExample;
  bench.script(whole);
  const std::string script = build(12);
  const std::size_t rootEnd = whole.rfind('>') + 1;
  for (std::size_t length = 0; length < whole.size(); ++length) {
    bench.script(whole.substr(0, length));
    if (length >= rootEnd) {
      EXPECT_EQ(build(12), script) << length;
    } else if (length == 0) {
      expectRefused(12, {}, 0);
    } else {
      expectRefused(12, {"Out ... XMLParse"}, 1);
    }
  }
}
