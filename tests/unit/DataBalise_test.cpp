#include "DataBalise.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "NullReferenceTo.h"

namespace {

std::vector<std::string> namesOf(const DataBalise& tag) {
  std::vector<std::string> names;
  for (int i = 0; i < tag._nbAttributs; ++i) {
    const char* name = tag._attributs[i]->name.gchar();
    names.push_back(name == nullptr ? "(null)" : name);
    EXPECT_EQ(tag._attributs[i]->value, 0);
  }
  return names;
}

// `n` names "a0 a1 ...", separated by single blanks.
std::string manyNames(int n) {
  std::string list;
  for (int i = 0; i < n; ++i) list += (i == 0 ? "a" : " a") + std::to_string(i);
  return list;
}

}  // namespace

TEST(DataBaliseTest, StartsWithoutNamesAndRoomForFifteen) {
  const DataBalise tag("Reference", "Document");
  EXPECT_STREQ(tag.name.gchar(), "Reference");
  EXPECT_STREQ(tag.father.gchar(), "Document");
  EXPECT_EQ(tag._nbAttributs, 0);
  EXPECT_EQ(tag._capacity, 15);
  ASSERT_NE(tag._attributs, nullptr);
  for (int i = 0; i < 15; ++i) EXPECT_EQ(tag._attributs[i], nullptr);
}

TEST(DataBaliseTest, TakesNullTextsAndCutsOthersAtALineFeed) {
  const DataBalise none(nullptr, nullptr);
  EXPECT_TRUE(none.name.isNull());
  EXPECT_TRUE(none.father.isNull());
  const DataBalise cut("Re\nference", "Doc\nument");
  EXPECT_STREQ(cut.name.gchar(), "Re");
  EXPECT_STREQ(cut.father.gchar(), "Doc");
}

TEST(DataBaliseTest, SplitsTheNamesAtEverySingleBlank) {
  const struct {
    const char* list;
    std::vector<std::string> names;
  } cases[] = {
      {"Name", {"Name"}},       {"Identifier Type", {"Identifier", "Type"}},
      {"a  b", {"a", "", "b"}}, {"a ", {"a", ""}},
      {" a", {"", "a"}},        {"", {""}},
      {" ", {"", ""}},          {"   ", {"", "", "", ""}},
      {"a\tb", {"a\tb"}},       {"a,b;c", {"a,b;c"}},
      {"a\nx b", {"a", "b"}},
  };
  for (const auto& c : cases) {
    DataBalise tag("t", "f");
    tag.setAttributs(c.list);
    EXPECT_EQ(namesOf(tag), c.names) << '"' << c.list << '"';
  }
}

TEST(DataBaliseTest, ANullListAddsNothing) {
  DataBalise tag("t", "f");
  tag.setAttributs(nullptr);
  EXPECT_EQ(tag._nbAttributs, 0);
}

TEST(DataBaliseTest, ASecondListIsAppended) {
  DataBalise tag("t", "f");
  tag.setAttributs("a b");
  tag.setAttributs("");
  tag.setAttributs("c");
  EXPECT_EQ(namesOf(tag), (std::vector<std::string>{"a", "b", "", "c"}));
}

TEST(DataBaliseTest, FifteenNamesFitAndMoreMakeRoom) {
  DataBalise tag("t", "f");
  tag.setAttributs(manyNames(15).c_str());
  EXPECT_EQ(tag._nbAttributs, 15);
  EXPECT_EQ(tag._capacity, 15);
  tag.setAttributs("last");
  ASSERT_EQ(tag._nbAttributs, 16);
  EXPECT_GE(tag._capacity, 16);
  EXPECT_STREQ(tag._attributs[0]->name.gchar(), "a0");
  EXPECT_STREQ(tag._attributs[14]->name.gchar(), "a14");
  EXPECT_STREQ(tag._attributs[15]->name.gchar(), "last");
}

TEST(DataBaliseTest, HoldsThousandsOfNames) {
  DataBalise tag("t", "f");
  tag.setAttributs(manyNames(5000).c_str());
  ASSERT_EQ(tag._nbAttributs, 5000);
  EXPECT_STREQ(tag._attributs[4999]->name.gchar(), "a4999");
}

TEST(DataBaliseTest, CopiesDeeply) {
  DataBalise tag("t", "f");
  tag.setAttributs(manyNames(17).c_str());
  const DataBalise copy(tag);
  EXPECT_STREQ(copy.name.gchar(), "t");
  EXPECT_STREQ(copy.father.gchar(), "f");
  EXPECT_EQ(namesOf(copy), namesOf(tag));
  EXPECT_EQ(copy._capacity, tag._capacity);
  EXPECT_NE(copy._attributs, tag._attributs);
  EXPECT_NE(copy._attributs[0], tag._attributs[0]);
}

TEST(DataBaliseTest, AssignsDeeplyAndReleasesWhatItHeld) {
  DataBalise tag("t", "f");
  tag.setAttributs("a b");
  DataBalise target("x", "y");
  target.setAttributs("c d e");
  const int alive = DataAttribut::_nbInstances;
  target = tag;
  EXPECT_STREQ(target.name.gchar(), "t");
  EXPECT_STREQ(target.father.gchar(), "f");
  EXPECT_EQ(namesOf(target), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(DataAttribut::_nbInstances, alive - 1);
  target.setAttributs("z");
  EXPECT_EQ(tag._nbAttributs, 2);
}

TEST(DataBaliseTest, AssigningItselfOrNothingChangesNothing) {
  DataBalise tag("t", "f");
  tag.setAttributs("a b");
  const DataBalise& same = tag;
  tag = same;
  tag = nullReferenceTo<DataBalise>();
  EXPECT_STREQ(tag.name.gchar(), "t");
  EXPECT_EQ(namesOf(tag), (std::vector<std::string>{"a", "b"}));
}

TEST(DataBaliseTest, ACopyOfNothingIsEmpty) {
  const DataBalise copy(nullReferenceTo<DataBalise>());
  EXPECT_TRUE(copy.name.isNull());
  EXPECT_EQ(copy._nbAttributs, 0);
  EXPECT_EQ(copy._capacity, 15);
}

TEST(DataBaliseTest, CountsLiveInstances) {
  const int tags = DataBalise::_nbInstances;
  const int entries = DataAttribut::_nbInstances;
  {
    DataBalise tag("t", "f");
    tag.setAttributs("a b");
    const DataBalise copy(tag);
    EXPECT_EQ(DataBalise::_nbInstances, tags + 2);
    EXPECT_EQ(DataAttribut::_nbInstances, entries + 4);
  }
  EXPECT_EQ(DataBalise::_nbInstances, tags);
  EXPECT_EQ(DataAttribut::_nbInstances, entries);
}
