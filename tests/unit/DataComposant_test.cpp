#include "DataComposant.h"

#include <gtest/gtest.h>

#include <climits>
#include <new>

#include "NullReferenceTo.h"

namespace {

void expectTexts(const DataComposant& field, const char* name, const char* sizeVar,
                 const char* type, const char* repeat) {
  EXPECT_STREQ(field.name.gchar(), name);
  EXPECT_STREQ(field.sizeVar.gchar(), sizeVar);
  EXPECT_STREQ(field.type.gchar(), type);
  EXPECT_STREQ(field.repeat.gchar(), repeat);
}

}  // namespace

TEST(DataComposantTest, KeepsWhatItIsGiven) {
  const DataComposant field("Body", 7, "$Count", 1, "I", "Count");
  expectTexts(field, "Body", "$Count", "I", "Count");
  EXPECT_EQ(field.size, 7);
  EXPECT_EQ(field.compare, 1);
}

TEST(DataComposantTest, KeepsAnySizeAndComparison) {
  for (const int number : {0, -1, INT_MAX, INT_MIN}) {
    const DataComposant field("a", number, nullptr, number, "S", "");
    EXPECT_EQ(field.size, number);
    EXPECT_EQ(field.compare, number);
  }
}

TEST(DataComposantTest, TakesNullTexts) {
  const DataComposant field(nullptr, 0, nullptr, 0, nullptr, nullptr);
  expectTexts(field, nullptr, nullptr, nullptr, nullptr);
}

TEST(DataComposantTest, CutsItsTextsAtALineFeed) {
  const DataComposant field("na\nme", 0, "$v\nar", 0, "S\nI", "re\npeat");
  expectTexts(field, "na", "$v", "S", "re");
}

TEST(DataComposantTest, CopiesEverything) {
  const DataComposant field("Body", 7, "$Count", 1, "I", "Count");
  const DataComposant copy(field);
  expectTexts(copy, "Body", "$Count", "I", "Count");
  EXPECT_EQ(copy.size, 7);
  EXPECT_EQ(copy.compare, 1);
  EXPECT_NE(copy.name.gchar(), field.name.gchar());
}

TEST(DataComposantTest, AssignsEverything) {
  const DataComposant field("Body", 7, "$Count", 1, "I", "Count");
  DataComposant target("x", 1, "$y", 2, "S", "z");
  target = field;
  expectTexts(target, "Body", "$Count", "I", "Count");
  EXPECT_EQ(target.size, 7);
  EXPECT_EQ(target.compare, 1);
}

TEST(DataComposantTest, AssigningItselfOrNothingChangesNothing) {
  DataComposant field("Body", 7, "$Count", 1, "I", "Count");
  const DataComposant& same = field;
  field = same;
  field = nullReferenceTo<DataComposant>();
  expectTexts(field, "Body", "$Count", "I", "Count");
  EXPECT_EQ(field.size, 7);
}

TEST(DataComposantTest, ACopyOfNothingIsEmpty) {
  const DataComposant copy(nullReferenceTo<DataComposant>());
  expectTexts(copy, nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(copy.size, 0);
  EXPECT_EQ(copy.compare, 0);
}

TEST(DataComposantTest, CountsLiveInstances) {
  const int before = DataComposant::_nbInstances;
  {
    DataComposant field("a", 1, nullptr, 1, "S", "");
    const DataComposant copy(field);
    const DataComposant none(nullReferenceTo<DataComposant>());
    field = copy;
    EXPECT_EQ(DataComposant::_nbInstances, before + 3);
  }
  EXPECT_EQ(DataComposant::_nbInstances, before);
}
