#include "CollectorErrors.h"

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

void fill(CollectorErrors& errors, const std::vector<int>& codes) {
  for (int code : codes) errors.addError(code, std::to_string(code).c_str(), "x");
}

Lines namesOf(const CollectorErrors& errors) {
  Lines names;
  for (int i = 0; i < errors._nbRecords; ++i) {
    names.push_back(errors._records[i] == nullptr ? "-" : errors._records[i]->name.gchar());
  }
  return names;
}

// The slot as a refused allocation leaves it.
void empty(CollectorErrors& errors, int i) {
  delete errors._records[i];
  errors._records[i] = nullptr;
}

TEST(CollectorErrorsTest, StartsWithoutFindingsAndRoomFor5) {
  const CollectorErrors errors(7);
  EXPECT_EQ(7, errors._messageNumber);
  EXPECT_EQ(0, errors._nbRecords);
  EXPECT_EQ(5, errors._capacity);
  ASSERT_NE(nullptr, errors._records);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(nullptr, errors._records[i]);
}

TEST(CollectorErrorsTest, KeepsFindingsInOrder) {
  TraceRecorder trace;
  CollectorErrors errors(7);
  errors.addError(0, "No Found BaliseXML", "Document");
  errors.addError(10, "Na\nme", "De\ntails");
  ASSERT_EQ(2, errors._nbRecords);
  EXPECT_EQ(0, errors._records[0]->code);
  EXPECT_STREQ("No Found BaliseXML", errors._records[0]->name.gchar());
  EXPECT_STREQ("Document", errors._records[0]->details.gchar());
  EXPECT_EQ(10, errors._records[1]->code);
  EXPECT_STREQ("Na", errors._records[1]->name.gchar());
  EXPECT_STREQ("De", errors._records[1]->details.gchar());
  EXPECT_EQ(Lines{}, trace.texts());
}

TEST(CollectorErrorsTest, TheSixthFindingGrowsTheCapacityFrom5To10) {
  CollectorErrors errors(7);
  fill(errors, {0, 1, 2, 3, 4});
  EXPECT_EQ(5, errors._capacity);
  errors.addError(5, "5", "x");
  EXPECT_EQ(10, errors._capacity);
  EXPECT_EQ((Lines{"0", "1", "2", "3", "4", "5"}), namesOf(errors));
}

TEST(CollectorErrorsTest, TextsOfItsOwnFindingsCanBeAddedWhenItIsFull) {
  CollectorErrors errors(7);
  fill(errors, {0, 1, 2, 3, 4});
  errors.addError(9, errors._records[3]->name.gchar(), errors._records[0]->details.gchar());
  EXPECT_EQ((Lines{"0", "1", "2", "3", "4", "3"}), namesOf(errors));
  EXPECT_STREQ("x", errors._records[5]->details.gchar());
}

TEST(CollectorErrorsTest, NullTextsAreTracedAndAddedAsEmptyOnes) {
  struct Case {
    const char* name;
    const char* details;
    Lines lines;
  };
  const std::string noName = "addError: name == NULL";
  const std::string noDetails = "addError: details == NULL";
  for (const Case& c : {Case{nullptr, "details", {noName}}, Case{"name", nullptr, {noDetails}},
                        Case{nullptr, nullptr, {noName, noDetails}}}) {
    TraceRecorder trace;
    CollectorErrors errors(7);
    errors.addError(10, c.name, c.details);
    EXPECT_EQ(c.lines, trace.texts());
    EXPECT_EQ(2, trace.lines()[0].level);
    ASSERT_EQ(1, errors._nbRecords);
    EXPECT_EQ(c.name == nullptr ? 0 : 4, errors._records[0]->name.glength());
    EXPECT_EQ(c.details == nullptr ? 0 : 7, errors._records[0]->details.glength());
    EXPECT_EQ(10, errors._records[0]->code);
  }
}

TEST(CollectorErrorsTest, GrowingPassesOverAnEmptySlot) {
  CollectorErrors errors(7);
  fill(errors, {0, 1, 2, 3, 4});
  empty(errors, 2);
  errors.addError(5, "5", "x");
  EXPECT_EQ((Lines{"0", "1", "-", "3", "4", "5"}), namesOf(errors));
}

TEST(CollectorErrorsTest, IsEmptyWithoutACodeOfExactly10) {
  struct Case {
    std::vector<int> codes;
    int empty;
  };
  for (const Case& c : std::vector<Case>{{{}, 1},
                                         {{0, 5}, 1},
                                         {{9}, 1},
                                         {{11}, 1},
                                         {{-10, INT_MIN, INT_MAX}, 1},
                                         {{10}, 0},
                                         {{0, 5, 10}, 0},
                                         {{10, 11}, 0}}) {
    CollectorErrors errors(7);
    fill(errors, c.codes);
    EXPECT_EQ(c.empty, errors.isEmpty()) << testing::PrintToString(c.codes);
  }
}

TEST(CollectorErrorsTest, AnEmptySlotIsNoError) {
  CollectorErrors errors(7);
  fill(errors, {10, 10});
  empty(errors, 0);
  EXPECT_EQ(0, errors.isEmpty());
  empty(errors, 1);
  EXPECT_EQ(1, errors.isEmpty());
}

TEST(CollectorErrorsTest, PrintsWarningsThenErrors) {
  CollectorErrors errors(42);
  errors.addError(10, "Error in hierarchy", "ReferenceDocument");
  errors.addError(0, "No Found ", "Document");
  errors.addError(11, "neither", "list");
  errors.addError(9, "", "only details");
  errors.addError(-1, nullptr, nullptr);
  errors.addError(10, "gone", "gone");
  errors.addError(10, "only name", nullptr);
  empty(errors, 5);
  TraceRecorder trace;
  ConsoleCapture console;
  errors.print();
  EXPECT_EQ(
      "No Found Document\n"
      "error: NULL only details\n"
      "error: NULL error: NULL \n"
      "Error in hierarchyReferenceDocument\n"
      "only nameerror: NULL \n",
      console.text());
  EXPECT_EQ((Lines{"## Resultat(s) du test: ", "## Message Num 42",
                   "## Warning: ", "## Error: ", "## end of CollectorErrors.print()."}),
            trace.texts());
  for (const TraceRecorder::Line& line : trace.lines()) EXPECT_EQ(2, line.level);
}

TEST(CollectorErrorsTest, PrintsTheHeadingsOnlyWithoutFindings) {
  TraceRecorder trace;
  ConsoleCapture console;
  CollectorErrors(-3).print();
  EXPECT_EQ("", console.text());
  EXPECT_EQ((Lines{"## Resultat(s) du test: ", "## Message Num -3",
                   "## Warning: ", "## Error: ", "## end of CollectorErrors.print()."}),
            trace.texts());
}

TEST(CollectorErrorsTest, AssignmentSharesTheRecordsAndFreesNothing) {
  CollectorErrors source(7);
  fill(source, {0, 1, 2, 3, 4, 5});
  CollectorErrors target(8);
  target.addError(9, "kept", "x");
  ErrorRecord** const own = target._records;
  EXPECT_EQ(&target, &(target = source));
  EXPECT_EQ(7, target._messageNumber);
  EXPECT_EQ(source._records, target._records);
  EXPECT_EQ(6, target._nbRecords);
  EXPECT_EQ(10, target._capacity);
  EXPECT_STREQ("kept", own[0]->name.gchar());
  // Given back what it had: the two must not both be destroyed as they are.
  target._records = own;
  target._nbRecords = 1;
}

TEST(CollectorErrorsTest, AssignmentFromItselfOrANullReferenceChangesNothing) {
  CollectorErrors errors(7);
  fill(errors, {1, 2});
  const CollectorErrors& same = errors;
  errors = same;
  errors = nullReferenceTo<CollectorErrors>();
  EXPECT_EQ(7, errors._messageNumber);
  EXPECT_EQ((Lines{"1", "2"}), namesOf(errors));
}

TEST(CollectorErrorsTest, ACopyIsDeep) {
  CollectorErrors errors(7);
  fill(errors, {0, 1, 2, 3, 4, 5});
  empty(errors, 2);
  const CollectorErrors copy(errors);
  errors._records[0]->name.set("changed");
  EXPECT_EQ(7, copy._messageNumber);
  EXPECT_EQ(10, copy._capacity);
  EXPECT_EQ((Lines{"0", "1", "-", "3", "4", "5"}), namesOf(copy));
}

TEST(CollectorErrorsTest, ACopyOfItselfOrOfANullReferenceHasNoFindings) {
  CopyOfItself<CollectorErrors> self;
  CollectorErrors none(nullReferenceTo<CollectorErrors>());
  for (CollectorErrors* errors : {&*self, &none}) {
    EXPECT_EQ(0, errors->_messageNumber);
    EXPECT_EQ(0, errors->_nbRecords);
    EXPECT_EQ(5, errors->_capacity);
    errors->addError(1, "a", "b");
    EXPECT_EQ(Lines{"a"}, namesOf(*errors));
  }
}

}  // namespace
