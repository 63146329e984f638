#include "MVar.h"

#include <gtest/gtest.h>

#include <climits>
#include <iomanip>
#include <iostream>
#include <string>

#include "ConsoleCapture.h"
#include "CopyOfItself.h"
#include "NullReferenceTo.h"
#include "TraceRecorder.h"

namespace {

TEST(MVarTest, HasNoNameAndValue0ByDefault) {
  const MVar var;
  EXPECT_EQ(0, var.getValue());
  EXPECT_TRUE(var.getName().isNull());
}

TEST(MVarTest, KeepsNameAndValue) {
  const MVar var("$Count", INT_MIN);
  EXPECT_STREQ("$Count", var.getName().gchar());
  EXPECT_EQ(INT_MIN, var.getValue());
  EXPECT_EQ(INT_MIN, var._value);
}

TEST(MVarTest, HasValue0WithoutOne) {
  const MVar var("$Count");
  EXPECT_STREQ("$Count", var.getName().gchar());
  EXPECT_EQ(0, var.getValue());
}

TEST(MVarTest, CutsTheNameAtItsFirstLineFeed) {
  EXPECT_STREQ("X", MVar("X\nY").getName().gchar());
  EXPECT_STREQ("X", MVar("X\nY", 3).getName().gchar());
  EXPECT_EQ(0, MVar("\nY", 3).getName().glength());
  MVar var;
  var.set("X\nY", 3);
  EXPECT_STREQ("X", var.getName().gchar());
}

TEST(MVarTest, ANullNameIsEmpty) {
  EXPECT_TRUE(MVar(nullptr).getName().isNull());
  EXPECT_TRUE(MVar(nullptr, 3).getName().isNull());
  EXPECT_EQ(3, MVar(nullptr, 3).getValue());
}

TEST(MVarTest, SetReplacesBoth) {
  MVar var("old", 1);
  var.set("new", 2);
  EXPECT_STREQ("new", var.getName().gchar());
  EXPECT_EQ(2, var.getValue());
  var.set(nullptr, 3);
  EXPECT_TRUE(var.getName().isNull());
  EXPECT_EQ(3, var.getValue());
}

TEST(MVarTest, TheNameHandedOutIsACopy) {
  MVar var("name", 1);
  MString name = var.getName();
  name.set("changed");
  EXPECT_STREQ("name", var.getName().gchar());
}

TEST(MVarTest, ACopyIsItsOwn) {
  MVar var("name", 5);
  const MVar copy(var);
  var.set("changed", 6);
  EXPECT_STREQ("name", copy.getName().gchar());
  EXPECT_EQ(5, copy.getValue());
}

TEST(MVarTest, ACopyOfItselfOrOfANullReferenceIsEmpty) {
  CopyOfItself<MVar> self;
  const MVar none(nullReferenceTo<MVar>());
  for (const MVar* var : {static_cast<const MVar*>(&*self), &none}) {
    EXPECT_TRUE(var->getName().isNull());
    EXPECT_EQ(0, var->getValue());
  }
}

TEST(MVarTest, AssignmentCopiesNameAndValue) {
  MVar target("old", 1);
  MVar source("new", 2);
  target = source;
  source.set("changed", 3);
  EXPECT_STREQ("new", target.getName().gchar());
  EXPECT_EQ(2, target.getValue());
}

TEST(MVarTest, AssignmentFromItselfOrANullReferenceChangesNothing) {
  MVar var("name", 5);
  const MVar& same = var;
  var = same;
  var = nullReferenceTo<MVar>();
  EXPECT_STREQ("name", var.getName().gchar());
  EXPECT_EQ(5, var.getValue());
}

TEST(MVarTest, PrintsALineToTheConsoleOnly) {
  struct Case {
    MVar var;
    const char* line;
  };
  for (const Case& c : {Case{MVar("LG", 12), "Var : LG ==> 12\n"},
                        Case{MVar("$a b", INT_MIN), "Var : $a b ==> -2147483648\n"},
                        Case{MVar("", INT_MAX), "Var : error: NULL  ==> 2147483647\n"},
                        Case{MVar(nullptr, 0), "Var : error: NULL  ==> 0\n"}}) {
    TraceRecorder trace;
    ConsoleCapture console;
    c.var.println();
    EXPECT_EQ(c.line, console.text());
    EXPECT_TRUE(trace.texts().empty());
  }
}

TEST(MVarTest, PrintsDecimalWhateverTheStreamIsSetTo) {
  ConsoleCapture console;
  const std::ios_base::fmtflags before = std::cout.flags();
  std::cout << std::hex << std::showpos;
  MVar("LG", 255).println();
  std::cout.flags(before);
  EXPECT_EQ("Var : LG ==> 255\n", console.text());
}

}  // namespace
