#include "ErrorRecord.h"

#include <gtest/gtest.h>

#include <climits>

#include "CopyOfItself.h"
#include "NullReferenceTo.h"

namespace {

void expectEmpty(const ErrorRecord& record) {
  EXPECT_EQ(0, record.code);
  EXPECT_EQ(0, record.name.glength());
  EXPECT_EQ(0, record.details.glength());
}

TEST(ErrorRecordTest, KeepsCodeNameAndDetails) {
  const ErrorRecord record(INT_MIN, "Problem", "Problem with reference file ...");
  EXPECT_EQ(INT_MIN, record.code);
  EXPECT_STREQ("Problem", record.name.gchar());
  EXPECT_STREQ("Problem with reference file ...", record.details.gchar());
}

TEST(ErrorRecordTest, CutsBothTextsAtTheirFirstLineFeed) {
  const ErrorRecord record(10, "Na\nme", "\ndetails");
  EXPECT_STREQ("Na", record.name.gchar());
  EXPECT_EQ(0, record.details.glength());
}

TEST(ErrorRecordTest, NullTextsAreEmpty) {
  const ErrorRecord record(0, nullptr, nullptr);
  expectEmpty(record);
}

TEST(ErrorRecordTest, ACopyIsItsOwn) {
  ErrorRecord record(5, "name", "details");
  const ErrorRecord copy(record);
  record.code = 6;
  record.name.set("changed");
  record.details.set("changed");
  EXPECT_EQ(5, copy.code);
  EXPECT_STREQ("name", copy.name.gchar());
  EXPECT_STREQ("details", copy.details.gchar());
}

TEST(ErrorRecordTest, ACopyOfItselfOrOfANullReferenceIsEmpty) {
  CopyOfItself<ErrorRecord> self;
  expectEmpty(*self);
  expectEmpty(ErrorRecord(nullReferenceTo<ErrorRecord>()));
}

TEST(ErrorRecordTest, AssignmentCopiesEverything) {
  ErrorRecord target(1, "old", "old");
  const ErrorRecord source(10, "name", "details");
  EXPECT_EQ(&target, &(target = source));
  EXPECT_EQ(10, target.code);
  EXPECT_STREQ("name", target.name.gchar());
  EXPECT_STREQ("details", target.details.gchar());
  EXPECT_NE(source.name.gchar(), target.name.gchar());
}

TEST(ErrorRecordTest, AssignmentFromANullReferenceChangesNothing) {
  ErrorRecord record(10, "name", "details");
  record = nullReferenceTo<ErrorRecord>();
  EXPECT_EQ(10, record.code);
  EXPECT_STREQ("name", record.name.gchar());
}

}  // namespace
