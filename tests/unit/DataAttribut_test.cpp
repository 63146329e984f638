#include "DataAttribut.h"

#include <gtest/gtest.h>

#include "NullReferenceTo.h"

TEST(DataAttributTest, HoldsANameAndZero) {
  const DataAttribut entry("Identifier");
  EXPECT_STREQ(entry.name.gchar(), "Identifier");
  EXPECT_EQ(entry.value, 0);
}

TEST(DataAttributTest, TakesANullName) {
  const DataAttribut entry(nullptr);
  EXPECT_TRUE(entry.name.isNull());
}

TEST(DataAttributTest, CutsItsNameAtALineFeed) {
  const DataAttribut entry("Ident\nifier");
  EXPECT_STREQ(entry.name.gchar(), "Ident");
}

TEST(DataAttributTest, CopiesAndAssignsBoth) {
  DataAttribut entry("Identifier");
  entry.value = 3;
  const DataAttribut copy(entry);
  EXPECT_STREQ(copy.name.gchar(), "Identifier");
  EXPECT_EQ(copy.value, 3);
  DataAttribut target("x");
  target = entry;
  EXPECT_STREQ(target.name.gchar(), "Identifier");
  EXPECT_EQ(target.value, 3);
}

TEST(DataAttributTest, AssigningItselfOrNothingChangesNothing) {
  DataAttribut entry("Identifier");
  const DataAttribut& same = entry;
  entry = same;
  entry = nullReferenceTo<DataAttribut>();
  EXPECT_STREQ(entry.name.gchar(), "Identifier");
}

TEST(DataAttributTest, CountsLiveInstances) {
  const int before = DataAttribut::_nbInstances;
  {
    const DataAttribut entry("a");
    const DataAttribut copy(entry);
    const DataAttribut none(nullReferenceTo<DataAttribut>());
    EXPECT_TRUE(none.name.isNull());
    EXPECT_EQ(DataAttribut::_nbInstances, before + 3);
  }
  EXPECT_EQ(DataAttribut::_nbInstances, before);
}
