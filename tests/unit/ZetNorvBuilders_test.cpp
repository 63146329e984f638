// Character messages, and the checks of values and of the hierarchy.
#include "ZetNorvBuilders.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <string>
#include <vector>

#include "CollectorErrors.h"
#include "ComparisonBench.h"
#include "DataScript.h"
#include "MessageModels.h"
#include "Msg.h"
#include "MsgXML.h"
#include "TraceRecorder.h"

namespace {

struct Field {
  const char* name;
  int size;
  const char* sizeVar = nullptr;
  int compare = 1;
  const char* type = "S";
};

DataScript charScript(const std::vector<Field>& fields) {
  DataScript script("CHAR");
  for (const Field& field : fields) {
    const DataComposant composant(field.name, field.size, field.sizeVar, field.compare, field.type,
                                  "");
    script.addComposant(&composant);
  }
  return script;
}

// A field as "name=bytes", with the stated size behind a "/" when that is not the bytes' number.
std::string describe(const Composant& field) {
  const MString& bytes = field._buffer;
  std::string text = field._name.gchar() == nullptr ? "" : field._name.gchar();
  text += "=";
  if (bytes.gchar() != nullptr) {
    text.append(bytes.gchar(), static_cast<std::size_t>(bytes.glength()));
  }
  if (bytes.glength() != field._size) text += "/" + std::to_string(field._size);
  return text;
}

std::vector<std::string> describe(const Msg* msg) {
  if (msg == nullptr) return {"none"};
  std::vector<std::string> fields;
  for (int i = 0; i < msg->_nbComposants; ++i) fields.push_back(describe(*msg->_composants[i]));
  return fields;
}

using Fields = std::vector<std::string>;

}  // namespace

class ZetNorvBuildersTest : public testing::Test {
 protected:
  // Cuts `bytes` from a buffer that ends where they do.
  static Fields cut(const std::string& bytes, DataScript& script) {
    const std::vector<char> buffer(bytes.begin(), bytes.end());
    const char nothing = 0;
    const std::unique_ptr<Msg> msg(
        ZetNorvBuilders::builderMessage(buffer.empty() ? &nothing : buffer.data(),
                                        static_cast<int>(buffer.size()), &script, nullptr));
    return describe(msg.get());
  }
  static Fields cut(const std::string& bytes, const std::vector<Field>& fields) {
    DataScript script = charScript(fields);
    return cut(bytes, script);
  }

  TraceRecorder trace;
};

TEST_F(ZetNorvBuildersTest, CutsAMessageByTheSizes) {
  EXPECT_EQ(cut("abcdefgh", {{"x", 1}, {"y", 3}, {"z", 4}}), (Fields{"x=a", "y=bcd", "z=efgh"}));
}

TEST_F(ZetNorvBuildersTest, AFieldCarriesTheScriptsComparisonAndKind) {
  DataScript script = charScript({{"x", 2, nullptr, 1, "S"}, {"y", 2, nullptr, 7, "I"}});
  const std::unique_ptr<Msg> msg(ZetNorvBuilders::builderMessage("abcd", 4, &script, nullptr));
  ASSERT_EQ(describe(msg.get()), (Fields{"x=ab", "y=cd"}));
  EXPECT_EQ(msg->_composants[0]->_type, 1);
  EXPECT_STREQ(msg->_composants[0]->_spec.gchar(), "S");
  EXPECT_EQ(msg->_composants[1]->_type, 7);
  EXPECT_STREQ(msg->_composants[1]->_spec.gchar(), "I");
}

TEST_F(ZetNorvBuildersTest, KeepsNulsAndLineFeedsInAField) {
  EXPECT_EQ(cut(std::string("a\0b\nc", 5), {{"x", 3}, {"y", 2}}),
            (Fields{std::string("x=a\0b", 5), "y=\nc"}));
}

TEST_F(ZetNorvBuildersTest, AShortMessageGivesTheFieldsThatBeginInIt) {
  EXPECT_EQ(cut("abcd", {{"x", 2}, {"y", 2}, {"z", 2}}), (Fields{"x=ab", "y=cd"}));
  EXPECT_EQ(cut("abc", {{"x", 2}, {"y", 2}, {"z", 2}}), (Fields{"x=ab", "y=c"}));
  EXPECT_EQ(cut("", {{"x", 2}}), Fields{});
}

TEST_F(ZetNorvBuildersTest, ALongMessageIsCutAfterTheLastEntry) {
  EXPECT_EQ(cut("abcdefgh", {{"x", 2}}), Fields{"x=ab"});
}

TEST_F(ZetNorvBuildersTest, AFieldPastTheEndTakesWhatIsLeftWithThatSize) {
  for (const int size : {4, 5, 100, INT_MAX}) {
    EXPECT_EQ(cut("abcdef", {{"x", 2}, {"y", size}, {"z", 1}}), (Fields{"x=ab", "y=cdef"})) << size;
  }
}

TEST_F(ZetNorvBuildersTest, AMessageOfNegativeSizeHasNoFields) {
  DataScript script = charScript({{"x", 2}});
  for (const int size : {0, -1, INT_MIN}) {
    const std::unique_ptr<Msg> msg(ZetNorvBuilders::builderMessage("ab", size, &script, nullptr));
    EXPECT_EQ(describe(msg.get()), Fields{}) << size;
  }
}

TEST_F(ZetNorvBuildersTest, AFieldOfNoLengthStaysInItsPlace) {
  EXPECT_EQ(cut("abcd", {{"x", 2}, {"y", 0}, {"z", 2}}), (Fields{"x=ab", "y=", "z=cd"}));
}

TEST_F(ZetNorvBuildersTest, ANegativeLengthGoesBack) {
  EXPECT_EQ(cut("abcdef", {{"x", 4}, {"y", -2}, {"z", 3}}), (Fields{"x=abcd", "y=/-2", "z=cde"}));
}

TEST_F(ZetNorvBuildersTest, GoingBackBeforeTheFirstByteStartsThere) {
  for (const int size : {-4, -5, -100, INT_MIN}) {
    EXPECT_EQ(cut("abcdef", {{"x", 4}, {"y", size}, {"z", 3}}),
              (Fields{"x=abcd", "y=/" + std::to_string(size), "z=abc"}));
    EXPECT_EQ(cut("abcdef", {{"y", size}, {"z", 3}}),
              (Fields{"y=/" + std::to_string(size), "z=abc"}));
  }
}

TEST_F(ZetNorvBuildersTest, AnEntryNamedWithADollarIsAFieldAndAVariable) {
  EXPECT_EQ(cut(littleEndian(3) + "abcdef", {{"$n", 4}, {"x", 0, "$n"}, {"y", 2}}),
            (Fields{"$n=" + littleEndian(3), "x=abc", "y=de"}));
  EXPECT_EQ(trace.texts(),
            (std::vector<std::string>{"ZetNorvScript_Pool: 0", "Ajout d'une variable."}));
  EXPECT_EQ(trace.lines().back().level, 2);
}

TEST_F(ZetNorvBuildersTest, AVariableIsFourBytesWhateverItsFieldsSize) {
  // The field is one byte long; the value is read from it and the three behind it.
  EXPECT_EQ(cut(littleEndian(5) + "abcdefgh", {{"$n", 1}, {"skip", 3}, {"x", 0, "$n"}}),
            (Fields{std::string("$n=\5"), "skip=" + std::string(3, '\0'), "x=abcde"}));
}

TEST_F(ZetNorvBuildersTest, AVariableIsLittleEndianAndSigned) {
  // 0x0102 = 258 is above 100 and replaced by 4.
  EXPECT_EQ(
      cut(std::string("\x02\x01\x00\x00", 4) + std::string(300, 'a'), {{"$n", 4}, {"x", 0, "$n"}})
          .back(),
      "x=aaaa");
  EXPECT_EQ(cut(littleEndian(-2) + "abcd", {{"$n", 4}, {"x", 0, "$n"}, {"y", 3}}),
            (Fields{"$n=" + littleEndian(-2), "x=/-2", "y=" + std::string("\xff\xff", 2) + "a"}));
}

TEST_F(ZetNorvBuildersTest, AVariableAboveOneHundredGivesFourBytes) {
  const std::string body(300, 'b');
  const struct {
    int value;
    std::size_t length;
  } cases[] = {{99, 99}, {100, 100}, {101, 4}, {250, 4}, {INT_MAX, 4}, {4, 4}, {0, 0}};
  for (const auto& c : cases) {
    EXPECT_EQ(cut(littleEndian(c.value) + body, {{"$n", 4}, {"x", 0, "$n"}}).back(),
              "x=" + std::string(c.length, 'b'))
        << c.value;
  }
}

TEST_F(ZetNorvBuildersTest, ANumberAboveOneHundredIsTakenAsItIs) {
  EXPECT_EQ(cut(std::string(300, 'b'), {{"x", 250}}).back(), "x=" + std::string(250, 'b'));
}

TEST_F(ZetNorvBuildersTest, AnUnknownVariableIsZero) {
  EXPECT_EQ(cut("abcd", {{"x", 0, "$n"}, {"y", 2}}), (Fields{"x=", "y=ab"}));
}

TEST_F(ZetNorvBuildersTest, AVariableIsFoundByABeginningOfTheNameTheFirstOneWins) {
  const std::string bytes = littleEndian(1) + littleEndian(2) + "abcdef";
  EXPECT_EQ(cut(bytes, {{"$n", 4}, {"$nb", 4}, {"x", 0, "$nb"}}).back(), "x=a");
  EXPECT_EQ(cut(bytes, {{"$nb", 4}, {"$n", 4}, {"x", 0, "$nb"}}).back(), "x=a");
  EXPECT_EQ(cut(bytes, {{"$nb", 4}, {"$n", 4}, {"x", 0, "$n"}}).back(), "x=ab");
}

TEST_F(ZetNorvBuildersTest, AnEntryCanTakeItsLengthFromItself) {
  EXPECT_EQ(cut(littleEndian(6) + "abcdef", {{"$n", 0, "$n"}, {"x", 2}}),
            (Fields{"$n=" + littleEndian(6) + "ab", "x=cd"}));
}

TEST_F(ZetNorvBuildersTest, AVariableWithFewerThanFourBytesLeftIsZero) {
  EXPECT_EQ(cut("abc", {{"$n", 1}, {"x", 0, "$n"}, {"y", 2}}), (Fields{"$n=a", "x=", "y=bc"}));
  EXPECT_EQ(trace.count("Ajout d'une variable."), 1);
}

TEST_F(ZetNorvBuildersTest, EveryCutOfAMessageStaysInside) {
  const std::string bytes = littleEndian(3) + "abc" + littleEndian(250) + "wxyz" + "tail";
  const std::vector<Field> fields = {{"$n", 4},      {"x", 0, "$n"}, {"$m", 4},
                                     {"y", 0, "$m"}, {"back", -2},   {"z", INT_MAX}};
  const Fields whole = cut(bytes, fields);
  ASSERT_EQ(whole.size(), 6u);
  EXPECT_EQ(whole[5], "z=yztail");
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    const Fields part = cut(bytes.substr(0, length), fields);
    const std::size_t begun = length == 0 ? 0 : length <= 4 ? 1 : length <= 7 ? 2 : part.size();
    EXPECT_EQ(part.size(), begun) << length;
    if (length > 7) {
      EXPECT_EQ(part[1], "x=abc") << length;
    }
  }
}

TEST_F(ZetNorvBuildersTest, ManyFieldsGrowTheMessage) {
  std::vector<Field> fields(2000, {"x", 1});
  const Fields cutFields = cut(std::string(2000, 'a'), fields);
  EXPECT_EQ(cutFields, Fields(2000, "x=a"));
}

TEST_F(ZetNorvBuildersTest, ANullBufferHasNoMessage) {
  DataScript script = charScript({{"x", 2}});
  trace.clear();
  EXPECT_EQ(ZetNorvBuilders::builderMessage(nullptr, 4, &script, nullptr), nullptr);
  EXPECT_EQ(ZetNorvBuilders::builderMessage(nullptr, 4, nullptr, nullptr), nullptr);
  EXPECT_EQ(trace.texts(), (std::vector<std::string>(2, "builderMessage: tmp == NULL")));
  EXPECT_EQ(trace.lines().front().level, 2);
}

TEST_F(ZetNorvBuildersTest, ANullScriptHasNoMessageAndNoTrace) {
  EXPECT_EQ(ZetNorvBuilders::builderMessage("abcd", 4, nullptr, nullptr), nullptr);
  EXPECT_TRUE(trace.texts().empty());
}

TEST_F(ZetNorvBuildersTest, AScriptWithoutEntriesGivesAnEmptyMessage) {
  for (const char* kind : {"CHAR", "XML_", "OTHER"}) {
    DataScript script(kind);
    EXPECT_EQ(cut("abcd", script), Fields{}) << kind;
  }
}

TEST_F(ZetNorvBuildersTest, AnXmlScriptCutsNoCharacterMessage) {
  DataScript script("XML_");
  const DataBalise balise("a", "f");
  script.addBalise(&balise);
  trace.clear();
  EXPECT_EQ(cut("abcd", script), Fields{"none"});
  EXPECT_EQ(trace.texts(), std::vector<std::string>{"builderMessage: dc Not Found"});
  EXPECT_EQ(trace.lines().front().level, 2);
  EXPECT_EQ(cut("", script), Fields{});  // the message ends before the first entry
}

TEST_F(ZetNorvBuildersTest, FieldsOfAScriptThatSaysToBeOfAnotherKindCutNoMessage) {
  for (const char* kind : {"XML_", "CHARS", "CHA", ""}) {
    DataScript script = charScript({{"x", 2}});
    script.type = MString(kind);
    trace.clear();
    EXPECT_EQ(cut("abcd", script), Fields{"none"}) << kind;
    EXPECT_EQ(trace.texts(), std::vector<std::string>{"builderMessage: dc Not Found"}) << kind;
    EXPECT_EQ(cut("", script), Fields{}) << kind;
  }
}

TEST_F(ZetNorvBuildersTest, AnEmptySlotOfTheScriptEndsTheCutting) {
  DataScript script = charScript({{"x", 2}, {"y", 2}});
  delete script._composants[1];
  script._composants[1] = nullptr;
  trace.clear();
  EXPECT_EQ(cut("abcd", script), Fields{"none"});
  EXPECT_EQ(trace.texts(), std::vector<std::string>{"builderMessage: dc Not Found"});
  EXPECT_EQ(cut("ab", script), Fields{"x=ab"});
}

TEST_F(ZetNorvBuildersTest, ACharacterMessageAddsNoFindings) {
  CollectorErrors collector(1);
  DataScript script = charScript({{"x", 8}});
  const std::unique_ptr<Msg> msg(
      ZetNorvBuilders::builderMessage("FFFFFFFF", 8, &script, &collector));
  EXPECT_EQ(describe(msg.get()), Fields{"x=FFFFFFFF"});
  EXPECT_EQ(findingsOf(collector), Fields{});
}

// --- checkFFFFF ---

TEST_F(ZetNorvBuildersTest, MoreThanTwoPairsOfFAreReported) {
  const struct {
    const char* value;
    bool reported;
  } cases[] = {
      {"", false},          {"F", false},        {"FF", false},      {"FFF", false},
      {"FFFF", true},       {"0FFFF", true},     {"FFFFF", true},    {"ffff", true},
      {"fff", false},       {"FfFfFfFf", false}, {"FFFf", false},    {"FFFff", true},
      {"FFfff", true},      {"FFff", false},     {"FF0FF", false},   {"FF0FF0FF", true},
      {"ff0FF0ff", true},   {"FFF0FF", true},    {"F F F F", false}, {"FFFE", false},
      {"abcFFFFdef", true}, {"EFFFE", false},
  };
  for (const auto& c : cases) {
    CollectorErrors collector(1);
    ZetNorvBuilders::checkFFFFF(c.value, &collector);
    const Fields expected =
        c.reported ? Fields{std::string("10 Problem value FFFFF... |") + c.value} : Fields{};
    EXPECT_EQ(findingsOf(collector), expected) << c.value;
  }
  EXPECT_TRUE(trace.texts().empty());
}

TEST_F(ZetNorvBuildersTest, ANullValueOrCollectorIsTraced) {
  CollectorErrors collector(1);
  ZetNorvBuilders::checkFFFFF(nullptr, &collector);
  ZetNorvBuilders::checkFFFFF("FFFF", nullptr);
  ZetNorvBuilders::checkFFFFF(nullptr, nullptr);
  EXPECT_EQ(findingsOf(collector), Fields{});
  EXPECT_EQ(trace.texts(),
            std::vector<std::string>(3, "checkFFFFF: str == NULL || collect == NULL"));
  EXPECT_EQ(trace.lines().front().level, 2);
}

// --- checkFather ---

namespace {

DataScript xmlScript(const std::vector<std::pair<const char*, const char*>>& pairs) {
  DataScript script("XML_");
  for (const auto& [name, father] : pairs) {
    const DataBalise balise(name, father);
    script.addBalise(&balise);
  }
  return script;
}

BaliseXML tagWith(const char* name, const std::vector<const char*>& children) {
  BaliseXML tag(name);
  for (const char* child : children) tag.addChildP(BaliseXML(child));
  return tag;
}

}  // namespace

TEST_F(ZetNorvBuildersTest, EveryPairThatTheScriptDoesNotDeclareIsReported) {
  DataScript script = xmlScript({{"Document", "Answer"}, {"Reference", "Document"}});
  MsgXML msg;
  msg.add(tagWith("Document", {"Reference", "#text", "Document", "Other"}));
  msg.add(tagWith("Reference", {}));
  msg.add(tagWith("Reference", {"#text", "#comment"}));
  CollectorErrors collector(1);
  ZetNorvBuilders::checkFather(&msg, &script, &collector);
  EXPECT_EQ(findingsOf(collector),
            (Fields{"10 Error in hierarchy|#textDocument", "10 Error in hierarchy|DocumentDocument",
                    "10 Error in hierarchy|OtherDocument", "10 Error in hierarchy|#textReference",
                    "10 Error in hierarchy|#commentReference"}));
}

TEST_F(ZetNorvBuildersTest, TheSamePairIsReportedEachTime) {
  DataScript script = xmlScript({{"a", "b"}});
  MsgXML msg;
  msg.add(tagWith("p", {"c", "c"}));
  msg.add(tagWith("p", {"c"}));
  CollectorErrors collector(1);
  ZetNorvBuilders::checkFather(&msg, &script, &collector);
  EXPECT_EQ(findingsOf(collector), Fields(3, "10 Error in hierarchy|cp"));
}

TEST_F(ZetNorvBuildersTest, NamesThatJoinToTheSameTextAreNotMixedUp) {
  DataScript script = xmlScript({{"bc", "a"}});
  MsgXML msg;
  msg.add(tagWith("a", {"bc"}));
  msg.add(tagWith("ab", {"c"}));
  CollectorErrors collector(1);
  ZetNorvBuilders::checkFather(&msg, &script, &collector);
  EXPECT_EQ(findingsOf(collector), Fields{"10 Error in hierarchy|cab"});
}

TEST_F(ZetNorvBuildersTest, OnlyChildrenOfTopLevelTagsAreTested) {
  DataScript script = xmlScript({{"child", "top"}});
  BaliseXML top("top");
  top.addChildP(tagWith("child", {"grandchild"}));
  MsgXML msg;
  msg.add(top);
  CollectorErrors collector(1);
  ZetNorvBuilders::checkFather(&msg, &script, &collector);
  EXPECT_EQ(findingsOf(collector), Fields{});
}

TEST_F(ZetNorvBuildersTest, EmptySlotsAndNamesAreNoTrouble) {
  DataScript script = xmlScript({{"a", "b"}});
  MsgXML msg;
  msg.add(tagWith("p", {"c", "d"}));
  msg.add(tagWith("q", {nullptr}));
  delete msg._balise[0]->_child[0];
  msg._balise[0]->_child[0] = nullptr;
  msg.add(tagWith(nullptr, {"e"}));
  msg.add(tagWith("r", {}));
  delete msg._balise[3];
  msg._balise[3] = nullptr;
  CollectorErrors collector(1);
  ZetNorvBuilders::checkFather(&msg, &script, &collector);
  EXPECT_EQ(findingsOf(collector), (Fields{"10 Error in hierarchy|dp", "10 Error in hierarchy|q",
                                           "10 Error in hierarchy|e"}));
}

TEST_F(ZetNorvBuildersTest, ACharacterScriptDeclaresNoPair) {
  DataScript script = charScript({{"c", 1}});
  MsgXML msg;
  msg.add(tagWith("p", {"c"}));
  CollectorErrors collector(1);
  ZetNorvBuilders::checkFather(&msg, &script, &collector);
  EXPECT_EQ(findingsOf(collector), Fields{"10 Error in hierarchy|cp"});
}

TEST_F(ZetNorvBuildersTest, CheckFatherDoesNothingWithoutAnArgument) {
  DataScript script = xmlScript({});
  MsgXML msg;
  msg.add(tagWith("p", {"c"}));
  CollectorErrors collector(1);
  trace.clear();
  ZetNorvBuilders::checkFather(nullptr, &script, &collector);
  ZetNorvBuilders::checkFather(&msg, nullptr, &collector);
  ZetNorvBuilders::checkFather(&msg, &script, nullptr);
  EXPECT_EQ(findingsOf(collector), Fields{});
  EXPECT_TRUE(trace.texts().empty());
}
