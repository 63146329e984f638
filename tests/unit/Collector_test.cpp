#include "Collector.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "ConsoleCapture.h"
#include "CopyOfItself.h"
#include "NullReferenceTo.h"
#include "TraceRecorder.h"

namespace {

using Lines = std::vector<std::string>;

// The slot as a refused allocation leaves it.
void empty(Collector& collector, int i) {
  delete collector._vars[i];
  collector._vars[i] = nullptr;
}

TEST(CollectorTest, StartsWithoutVariablesAndRoomFor2) {
  const Collector collector;
  EXPECT_EQ(0, collector._nbVars);
  EXPECT_EQ(2, collector._capacity);
  ASSERT_NE(nullptr, collector._vars);
  for (int i = 0; i < 2; ++i) EXPECT_EQ(nullptr, collector._vars[i]);
}

TEST(CollectorTest, TheThirdVariableGrowsTheCapacityFrom2To3) {
  Collector collector;
  collector.add(MVar("a", 1));
  collector.add(MVar("b", 2));
  EXPECT_EQ(2, collector._capacity);
  collector.add(MVar("c", 3));
  EXPECT_EQ(3, collector._capacity);
  collector.add(MVar("d", 4));
  EXPECT_EQ(4, collector._capacity);
  EXPECT_EQ(4, collector._nbVars);
  EXPECT_EQ(1, collector.find(MString("a")));
  EXPECT_EQ(4, collector.find(MString("d")));
}

TEST(CollectorTest, AddKeepsACopy) {
  Collector collector;
  MVar var("a", 1);
  collector.add(var);
  var.set("b", 2);
  EXPECT_EQ(1, collector.find(MString("a")));
  EXPECT_EQ(0, collector.find(MString("b")));
}

TEST(CollectorTest, AVariableOfItsOwnCanBeAddedWhenItIsFull) {
  Collector collector;
  collector.add(MVar("a", 1));
  collector.add(MVar("b", 2));
  collector.add(*collector._vars[1]);
  ASSERT_EQ(3, collector._nbVars);
  EXPECT_STREQ("b", collector._vars[2]->getName().gchar());
  EXPECT_EQ(2, collector._vars[2]->getValue());
}

TEST(CollectorTest, ANullReferenceIsTracedAndNotAdded) {
  TraceRecorder trace;
  Collector collector;
  collector.add(nullReferenceTo<MVar>());
  EXPECT_EQ(0, collector._nbVars);
  EXPECT_EQ(Lines{"Collector: var == NULL"}, trace.texts());
  EXPECT_EQ(2, trace.lines()[0].level);
}

TEST(CollectorTest, FindsByTheBeginningOfTheSearchedText) {
  struct Case {
    const char* stored;
    const char* searched;
    int found;
  };
  for (const Case& c : {Case{"LG", "LG", 7}, Case{"LG", "LGTOT", 7}, Case{"LGTOT", "LG", 0},
                        Case{"LG", "lg", 0}, Case{"LG", "XLG", 0}, Case{"", "anything", 7},
                        Case{nullptr, "anything", 7}, Case{"", "", 7}, Case{"LG", "", 0}}) {
    Collector collector;
    collector.add(MVar(c.stored, 7));
    EXPECT_EQ(c.found, collector.find(MString(c.searched)))
        << (c.stored == nullptr ? "null" : c.stored) << " " << c.searched;
  }
}

TEST(CollectorTest, BytesBehindANulOfTheSearchedTextCount) {
  Collector collector;
  collector.add(MVar("LG", 7));
  EXPECT_EQ(7, collector.find(MString("LG\0X", 4)));
  EXPECT_EQ(0, collector.find(MString("\0LG", 3)));
  collector._vars[0]->_name = MString("L\0G", 3);
  EXPECT_EQ(7, collector.find(MString("L\0GX", 4)));
  EXPECT_EQ(0, collector.find(MString("L\0X", 3)));
}

TEST(CollectorTest, FindsTheVariableThatWasAddedFirst) {
  Collector collector;
  collector.add(MVar("AB", 7));
  collector.add(MVar("ABC", 9));
  EXPECT_EQ(7, collector.find(MString("ABC")));
}

TEST(CollectorTest, FindsTheLongerNameWhenItWasAddedFirst) {
  Collector collector;
  collector.add(MVar("ABC", 9));
  collector.add(MVar("AB", 7));
  EXPECT_EQ(9, collector.find(MString("ABC")));
  EXPECT_EQ(7, collector.find(MString("ABX")));
}

TEST(CollectorTest, FindsNothingWhenEmpty) {
  TraceRecorder trace;
  EXPECT_EQ(0, Collector().find(MString("a")));
  EXPECT_EQ(Lines{}, trace.texts());
}

TEST(CollectorTest, FindsNegativeValues) {
  Collector collector;
  collector.add(MVar("a", INT_MIN));
  EXPECT_EQ(INT_MIN, collector.find(MString("a")));
}

TEST(CollectorTest, ANullStringIsTracedAndFindsNothing) {
  TraceRecorder trace;
  Collector collector;
  collector.add(MVar("", 7));
  EXPECT_EQ(0, collector.find(MString()));
  EXPECT_EQ(Lines{"Collector: name == NULL"}, trace.texts());
  EXPECT_EQ(2, trace.lines()[0].level);
}

TEST(CollectorTest, PassesOverAnEmptySlot) {
  Collector collector;
  collector.add(MVar("a", 1));
  collector.add(MVar("b", 2));
  empty(collector, 0);
  EXPECT_EQ(0, collector.find(MString("a")));
  EXPECT_EQ(2, collector.find(MString("b")));
  collector.add(MVar("c", 3));
  EXPECT_EQ(nullptr, collector._vars[0]);
  EXPECT_EQ(3, collector.find(MString("c")));
}

TEST(CollectorTest, CopiesAreDeep) {
  Collector source;
  source.add(MVar("a", 1));
  source.add(MVar("b", 2));
  source.add(MVar("c", 3));
  empty(source, 1);
  const Collector copy(source);
  Collector assigned;
  assigned.add(MVar("old", 9));
  EXPECT_EQ(&assigned, &(assigned = source));
  source._vars[0]->set("changed", 5);
  for (const Collector* collector : {&copy, static_cast<const Collector*>(&assigned)}) {
    EXPECT_EQ(3, collector->_nbVars);
    EXPECT_EQ(3, collector->_capacity);
    EXPECT_EQ(1, collector->find(MString("a")));
    EXPECT_EQ(nullptr, collector->_vars[1]);
    EXPECT_EQ(3, collector->find(MString("c")));
  }
}

TEST(CollectorTest, ACopyOfItselfOrOfANullReferenceHasNoVariables) {
  CopyOfItself<Collector> self;
  Collector none(nullReferenceTo<Collector>());
  for (Collector* collector : {&*self, &none}) {
    EXPECT_EQ(0, collector->_nbVars);
    EXPECT_EQ(2, collector->_capacity);
    collector->add(MVar("a", 1));
    EXPECT_EQ(1, collector->find(MString("a")));
  }
}

TEST(CollectorTest, AssignmentFromItselfOrANullReferenceChangesNothing) {
  Collector collector;
  collector.add(MVar("a", 1));
  const Collector& same = collector;
  collector = same;
  collector = nullReferenceTo<Collector>();
  EXPECT_EQ(1, collector._nbVars);
  EXPECT_EQ(1, collector.find(MString("a")));
}

TEST(CollectorTest, PrintsEveryVariableToTheConsoleOnly) {
  Collector collector;
  collector.add(MVar("a", 1));
  collector.add(MVar("gone", 2));
  collector.add(MVar("", -3));
  empty(collector, 1);
  TraceRecorder trace;
  ConsoleCapture console;
  collector.print();
  EXPECT_EQ("Var : a ==> 1\nVar : error: NULL  ==> -3\n", console.text());
  EXPECT_EQ(Lines{}, trace.texts());
}

}  // namespace
