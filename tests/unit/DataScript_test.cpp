#include "DataScript.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "KelLib.h"
#include "NullReferenceTo.h"
#include "TraceRecorder.h"

namespace {

DataComposant field(const char* name) { return DataComposant(name, 4, nullptr, 1, "S", ""); }

}  // namespace

class DataScriptTest : public testing::Test {
 protected:
  ~DataScriptTest() override {
    EXPECT_EQ(DataScript::_nbInstances, _scripts);
    EXPECT_EQ(DataComposant::_nbInstances, _fields);
    EXPECT_EQ(DataBalise::_nbInstances, _tags);
    EXPECT_EQ(DataAttribut::_nbInstances, _attributs);
  }

  TraceRecorder _trace;

 private:
  const int _scripts = DataScript::_nbInstances;
  const int _fields = DataComposant::_nbInstances;
  const int _tags = DataBalise::_nbInstances;
  const int _attributs = DataAttribut::_nbInstances;
};

TEST_F(DataScriptTest, ACharacterScriptHasAListOfFields) {
  const DataScript script("CHAR");
  EXPECT_STREQ(script.type.gchar(), "CHAR");
  EXPECT_NE(script._composants, nullptr);
  EXPECT_EQ(script._balises, nullptr);
  EXPECT_EQ(script._size, 0);
  EXPECT_EQ(script._capacity, 5);
}

TEST_F(DataScriptTest, AnXmlScriptHasAListOfTags) {
  const DataScript script("XML_");
  EXPECT_STREQ(script.type.gchar(), "XML_");
  EXPECT_EQ(script._composants, nullptr);
  EXPECT_NE(script._balises, nullptr);
  EXPECT_EQ(script._size, 0);
  EXPECT_EQ(script._capacity, 5);
}

TEST_F(DataScriptTest, AnyOtherTextMakesNoList) {
  for (const char* kind : {"", "CHA", "CHARS", "char", "XML", "XML_2", "OTHER", " CHAR"}) {
    DataScript script(kind);
    EXPECT_STREQ(script.type.gchar(), kind);
    EXPECT_EQ(script._composants, nullptr);
    EXPECT_EQ(script._balises, nullptr);
    EXPECT_EQ(script._capacity, 0);
    EXPECT_EQ(script.getSize(), 0);
    EXPECT_EQ(script.getComposant(0), nullptr);
    EXPECT_EQ(script.getBalise(0), nullptr);
    EXPECT_EQ(script.hasBalise("a", "b"), 0);
  }
  const DataScript none(nullptr);
  EXPECT_TRUE(none.type.isNull());
  EXPECT_EQ(none._capacity, 0);
}

TEST_F(DataScriptTest, TracesHowManyScriptsWereAlive) {
  const int before = DataScript::_nbInstances;
  const std::string line = "ZetNorvScript_Pool: ";
  {
    const DataScript first("CHAR");
    const DataScript second("XML_");
    const DataScript third("OTHER");
  }
  const DataScript again("CHAR");
  EXPECT_EQ(_trace.texts(), (std::vector<std::string>{
                                line + std::to_string(before), line + std::to_string(before + 1),
                                line + std::to_string(before + 2), line + std::to_string(before)}));
  EXPECT_EQ(_trace.lines().front().level, 2);
}

TEST_F(DataScriptTest, AddsCopiesOfFieldsInOrder) {
  DataScript script("CHAR");
  DataComposant given = field("a");
  EXPECT_EQ(script.addComposant(&given), S_OK);
  given.name.set("b");
  EXPECT_EQ(script.addComposant(&given), S_OK);
  ASSERT_EQ(script.getSize(), 2);
  EXPECT_STREQ(script.getComposant(0)->name.gchar(), "a");
  EXPECT_STREQ(script.getComposant(1)->name.gchar(), "b");
  EXPECT_NE(script.getComposant(1), &given);
}

TEST_F(DataScriptTest, AddsCopiesOfTagsInOrder) {
  DataScript script("XML_");
  DataBalise given("a", "f");
  given.setAttributs("x y");
  EXPECT_EQ(script.addBalise(&given), S_OK);
  given.name.set("b");
  EXPECT_EQ(script.addBalise(&given), S_OK);
  ASSERT_EQ(script.getSize(), 2);
  EXPECT_STREQ(script.getBalise(0)->name.gchar(), "a");
  EXPECT_STREQ(script.getBalise(1)->name.gchar(), "b");
  EXPECT_STREQ(script.getBalise(0)->_attributs[1]->name.gchar(), "y");
}

TEST_F(DataScriptTest, GrowsByFiveEntries) {
  DataScript fields("CHAR");
  DataScript tags("XML_");
  for (int i = 0; i < 11; ++i) {
    const DataComposant composant = field(std::to_string(i).c_str());
    const DataBalise balise(std::to_string(i).c_str(), "f");
    fields.addComposant(&composant);
    tags.addBalise(&balise);
    const int capacity = i < 5 ? 5 : i < 10 ? 10 : 15;
    EXPECT_EQ(fields._capacity, capacity) << i;
    EXPECT_EQ(tags._capacity, capacity) << i;
    EXPECT_EQ(fields.getSize(), i + 1);
    EXPECT_EQ(tags.getSize(), i + 1);
  }
  for (int i = 0; i < 11; ++i) {
    EXPECT_EQ(fields.getComposant(i)->name.gchar(), std::to_string(i));
    EXPECT_EQ(tags.getBalise(i)->name.gchar(), std::to_string(i));
  }
}

TEST_F(DataScriptTest, RefusesNullEntries) {
  DataScript fields("CHAR");
  DataScript tags("XML_");
  _trace.clear();
  EXPECT_EQ(fields.addComposant(nullptr), E_FAIL);
  EXPECT_EQ(tags.addBalise(nullptr), E_FAIL);
  EXPECT_EQ(_trace.texts(), (std::vector<std::string>{"DataScript: DataComposant == NULL",
                                                      "DataBalise: DataComposant == NULL"}));
  EXPECT_EQ(_trace.lines()[0].level, 2);
  EXPECT_EQ(_trace.lines()[1].level, 2);
  EXPECT_EQ(fields.getSize(), 0);
  EXPECT_EQ(tags.getSize(), 0);
}

TEST_F(DataScriptTest, RefusesEntriesOfTheOtherKind) {
  const DataComposant composant = field("a");
  const DataBalise balise("a", "f");
  for (const char* kind : {"CHAR", "XML_", "OTHER"}) {
    DataScript script(kind);
    _trace.clear();
    if (std::string(kind) != "CHAR") {
      EXPECT_EQ(script.addComposant(&composant), E_FAIL);
      EXPECT_TRUE(_trace.has("DataScript: no list of DataComposant"));
    }
    if (std::string(kind) != "XML_") {
      EXPECT_EQ(script.addBalise(&balise), E_FAIL);
      EXPECT_TRUE(_trace.has("DataScript: no list of DataBalise"));
    }
    EXPECT_EQ(script.getSize(), 0);
  }
}

TEST_F(DataScriptTest, HasNoEntryOutsideTheList) {
  DataScript script("CHAR");
  const DataComposant composant = field("a");
  script.addComposant(&composant);
  EXPECT_EQ(script.getComposant(-1), nullptr);
  EXPECT_EQ(script.getComposant(1), nullptr);
  EXPECT_EQ(script.getBalise(0), nullptr);
}

TEST_F(DataScriptTest, HasATagInsideItsFather) {
  DataScript script("XML_");
  for (const auto& [name, father] :
       {std::pair("Reference", "Document"), std::pair("Doc", "Answer"), std::pair("Leaf", "")}) {
    const DataBalise balise(name, father);
    script.addBalise(&balise);
  }
  const struct {
    const char* father;
    const char* name;
    int expected;
  } cases[] = {
      {"Document", "Reference", 1},
      {"Answer", "Reference", 0},    // the father of another entry
      {"Document", "Doc", 0},        //
      {"Answer", "Doc", 1},          //
      {"Answer", "Document", 1},     // the entry's name is a beginning of it
      {"AnswerSet", "Doc", 1},       // so is the entry's father
      {"Answer", "Do", 0},           // but not the other way round
      {"Ans", "Doc", 0},             //
      {"Doc", "Reference", 0},       //
      {"anything", "Leaf", 1},       // an entry without a father allows every one
      {"", "Leaf", 1},               //
      {"Document", "reference", 0},  //
      {"Document", "", 0},           //
  };
  for (const auto& c : cases) {
    EXPECT_EQ(script.hasBalise(c.father, c.name), c.expected) << c.name << " in " << c.father;
  }
  EXPECT_EQ(script.hasBalise(MString(), MString()), 0);
}

TEST_F(DataScriptTest, HasNoTagWithoutEntriesOrInACharacterScript) {
  const DataScript empty("XML_");
  EXPECT_EQ(empty.hasBalise("f", "a"), 0);
  DataScript fields("CHAR");
  const DataComposant composant = field("a");
  fields.addComposant(&composant);
  EXPECT_EQ(fields.hasBalise("", "a"), 0);
}

TEST_F(DataScriptTest, PassesOverAnEmptySlot) {
  DataScript script("XML_");
  const DataBalise first("a", "f");
  const DataBalise second("b", "f");
  script.addBalise(&first);
  script.addBalise(&second);
  delete script._balises[0];
  script._balises[0] = nullptr;  // as a refused allocation leaves it
  EXPECT_EQ(script.getBalise(0), nullptr);
  EXPECT_EQ(script.hasBalise("f", "a"), 0);
  EXPECT_EQ(script.hasBalise("f", "b"), 1);
  const DataScript copy(script);
  EXPECT_EQ(copy.getSize(), 2);
  EXPECT_EQ(copy.getBalise(0), nullptr);
}

TEST_F(DataScriptTest, CopiesDeeplyAndUntraced) {
  DataScript script("XML_");
  const DataBalise balise("a", "f");
  for (int i = 0; i < 6; ++i) script.addBalise(&balise);
  _trace.clear();
  const DataScript copy(script);
  EXPECT_TRUE(_trace.texts().empty());
  EXPECT_STREQ(copy.type.gchar(), "XML_");
  EXPECT_EQ(copy.getSize(), 6);
  EXPECT_EQ(copy._capacity, 10);
  EXPECT_NE(copy.getBalise(5), script.getBalise(5));
  EXPECT_STREQ(copy.getBalise(5)->name.gchar(), "a");
}

TEST_F(DataScriptTest, AssignsDeeplyAlsoAcrossKinds) {
  DataScript fields("CHAR");
  const DataComposant composant = field("a");
  fields.addComposant(&composant);
  DataScript target("XML_");
  const DataBalise balise("b", "f");
  target.addBalise(&balise);
  target = fields;
  EXPECT_STREQ(target.type.gchar(), "CHAR");
  EXPECT_EQ(target._balises, nullptr);
  ASSERT_EQ(target.getSize(), 1);
  EXPECT_STREQ(target.getComposant(0)->name.gchar(), "a");
  EXPECT_NE(target.getComposant(0), fields.getComposant(0));
  EXPECT_EQ(target.addComposant(&composant), S_OK);
}

TEST_F(DataScriptTest, AssigningItselfOrNothingChangesNothing) {
  DataScript script("CHAR");
  const DataComposant composant = field("a");
  script.addComposant(&composant);
  const DataScript& same = script;
  script = same;
  script = nullReferenceTo<DataScript>();
  EXPECT_STREQ(script.type.gchar(), "CHAR");
  ASSERT_EQ(script.getSize(), 1);
  EXPECT_STREQ(script.getComposant(0)->name.gchar(), "a");
}

TEST_F(DataScriptTest, ACopyOfNothingIsEmptyAndOfNoKind) {
  const DataScript copy(nullReferenceTo<DataScript>());
  EXPECT_TRUE(copy.type.isNull());
  EXPECT_EQ(copy.getSize(), 0);
  EXPECT_EQ(copy._capacity, 0);
}

TEST_F(DataScriptTest, DestroysItsEntries) {
  const int fields = DataComposant::_nbInstances;
  const int tags = DataBalise::_nbInstances;
  const int attributs = DataAttribut::_nbInstances;
  {
    DataScript first("CHAR");
    DataScript second("XML_");
    DataBalise balise("a", "f");
    balise.setAttributs("x y z");
    const DataComposant composant = field("a");
    for (int i = 0; i < 7; ++i) {
      first.addComposant(&composant);
      second.addBalise(&balise);
    }
    EXPECT_EQ(DataComposant::_nbInstances, fields + 8);
    EXPECT_EQ(DataBalise::_nbInstances, tags + 8);
    EXPECT_EQ(DataAttribut::_nbInstances, attributs + 24);
  }
  EXPECT_EQ(DataComposant::_nbInstances, fields);
  EXPECT_EQ(DataBalise::_nbInstances, tags);
  EXPECT_EQ(DataAttribut::_nbInstances, attributs);
}
