#include "ZetNorvDb_Record.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ConsoleCapture.h"
#include "KelLib.h"
#include "NullReferenceTo.h"
#include "TraceRecorder.h"

namespace {

// A field as a test writes it: null or a text.
using Field = std::optional<std::string>;
using Fields = std::vector<Field>;
const Field kNull = std::nullopt;

Fields fieldsOf(const ZetNorvDb_Record& record) {
  Fields fields;
  for (int i = 0; i < record.getSize(); ++i) {
    const MString& field = record._data[i];
    if (field.isNull()) {
      fields.push_back(kNull);
    } else {
      fields.push_back(std::string(field.gchar(), static_cast<std::size_t>(field.glength())));
    }
  }
  return fields;
}

void expectNoFields(const ZetNorvDb_Record& record) {
  EXPECT_EQ(nullptr, record._data);
  EXPECT_EQ(0, record._nbData);
  EXPECT_EQ(0, record.getSize());
}

// An allocated text of the bytes of `text`, line feeds and NULs included.
MString bytes(const std::string& text) {
  return MString(text.data(), static_cast<int>(text.size()));
}

TEST(ZetNorvDb_RecordTest, HasNoFieldsWhenBuiltFromNothing) { expectNoFields(ZetNorvDb_Record()); }

TEST(ZetNorvDb_RecordTest, HasNoFieldsForACountBelowOne) {
  for (const int n : {0, -1, INT_MIN}) {
    for (const int mode : {0, 1}) {
      SCOPED_TRACE(n);
      expectNoFields(ZetNorvDb_Record(n, MString(), mode));
      expectNoFields(ZetNorvDb_Record(n, MString("a,b"), mode));
    }
  }
}

TEST(ZetNorvDb_RecordTest, CutsFieldsOutOfText) {
  struct Case {
    const char* name;
    int n;
    MString text;
    int mode;
    Fields expected;
  };
  const Case cases[] = {
      {"as many pieces as fields", 3, "a,b,c", 0, {"a", "b", "c"}},
      {"an empty piece", 3, "a,,b", 0, {"a", "NULL", "b"}},
      {"a leading comma", 2, ",b", 0, {"NULL", "b"}},
      {"too few pieces", 3, "a", 0, {"a", "NULL", "NULL"}},
      {"too many pieces", 3, "a,b,c,d", 0, {"a", "b", "c"}},
      {"blanks and quotes as they are", 2, " \"a , b\" ", 0, {" \"a ", " b\" "}},
      {"brackets mean nothing to commas", 2, "<x><y>,z", 0, {"<x><y>", "z"}},
      {"an empty text", 2, "", 0, {"NULL", "NULL"}},
      {"a null text", 2, MString(), 0, {"NULL", "NULL"}},
      {"a group for each field", 2, "<x><y>", 1, {"x", "y"}},
      {"a missing group", 2, "<x>", 1, {"x", kNull}},
      {"an empty group", 3, "<x><><z>", 1, {"x", kNull, "z"}},
      {"too many groups", 1, "<x><y>", 1, {"x"}},
      {"text outside groups", 2, "a<x>b<y>c", 1, {"x", "y"}},
      {"a group without an end", 2, "<x><y", 1, {"x", "y"}},
      {"commas mean nothing to groups", 1, "<x,y>", 1, {"x,y"}},
      {"an empty text of groups", 2, "", 1, {kNull, kNull}},
      {"a null text of groups", 2, MString(), 1, {kNull, kNull}},
      {"any mode other than 0 is groups", 1, "<x>", 7, {"x"}},
      {"a negative mode is groups", 1, "<x>", -1, {"x"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.expected, fieldsOf(ZetNorvDb_Record(c.n, c.text, c.mode)));
  }
}

TEST(ZetNorvDb_RecordTest, LeavesTheTextItIsCutFromAlone) {
  MString text("a,b");
  text.split(',');
  EXPECT_STREQ("a", text.splitNext().gchar());
  const ZetNorvDb_Record record(2, text, 0);
  EXPECT_STREQ("a,b", text.gchar());
  EXPECT_STREQ("b", text.splitNext().gchar());
}

TEST(ZetNorvDb_RecordTest, CopyIsDeep) {
  ZetNorvDb_Record original(2, MString("a,b"), 0);
  ZetNorvDb_Record copy(original);
  original.setData(0, MString("changed"));
  copy.setData(1, MString("other"));
  EXPECT_EQ((Fields{"changed", "b"}), fieldsOf(original));
  EXPECT_EQ((Fields{"a", "other"}), fieldsOf(copy));
}

TEST(ZetNorvDb_RecordTest, CopyKeepsEveryFieldByteForByte) {
  const std::string odd("x\n\0y", 4);
  ZetNorvDb_Record original(4, MString("<a>"), 1);
  original.setData(2, MString(""));
  original.setData(3, bytes(odd));
  const Fields expected{"a", kNull, "", odd};
  EXPECT_EQ(expected, fieldsOf(ZetNorvDb_Record(original)));
  ZetNorvDb_Record assigned;
  assigned = original;
  EXPECT_EQ(expected, fieldsOf(assigned));
}

TEST(ZetNorvDb_RecordTest, CopyOfNoFieldsHasNone) {
  const ZetNorvDb_Record nothing;
  expectNoFields(ZetNorvDb_Record(nothing));
  ZetNorvDb_Record target(2, MString("a,b"), 0);
  target = nothing;
  expectNoFields(target);
}

TEST(ZetNorvDb_RecordTest, CopyOfANullReferenceHasNoFields) {
  expectNoFields(ZetNorvDb_Record(nullReferenceTo<ZetNorvDb_Record>()));
}

TEST(ZetNorvDb_RecordTest, AssignmentReplacesTheFields) {
  ZetNorvDb_Record target(3, MString("a,b,c"), 0);
  const ZetNorvDb_Record source(1, MString("x"), 0);
  EXPECT_EQ(&target, &(target = source));
  EXPECT_EQ((Fields{"x"}), fieldsOf(target));
  EXPECT_EQ((Fields{"x"}), fieldsOf(source));
}

TEST(ZetNorvDb_RecordTest, AssignmentToItselfLeavesNoFieldsAndFreesNone) {
  ZetNorvDb_Record record(2, MString("a,b"), 0);
  const std::unique_ptr<MString[]> before(record._data);
  ZetNorvDb_Record& same = record;
  EXPECT_EQ(&record, &(record = same));
  expectNoFields(record);
  EXPECT_STREQ("a", before[0].gchar());
  EXPECT_STREQ("b", before[1].gchar());
  record = ZetNorvDb_Record(1, MString("again"), 0);
  EXPECT_EQ((Fields{"again"}), fieldsOf(record));
}

TEST(ZetNorvDb_RecordTest, AssignmentFromANullReferenceLeavesNoFieldsAndFreesNone) {
  ZetNorvDb_Record record(2, MString("a,b"), 0);
  const std::unique_ptr<MString[]> before(record._data);
  EXPECT_EQ(&record, &(record = nullReferenceTo<ZetNorvDb_Record>()));
  expectNoFields(record);
  EXPECT_STREQ("a", before[0].gchar());
  EXPECT_STREQ("b", before[1].gchar());
}

TEST(ZetNorvDb_RecordTest, ReleaseLeavesARecordWithoutFields) {
  ZetNorvDb_Record record(2, MString("a,b"), 0);
  record.Release();
  expectNoFields(record);
  record.Release();
  expectNoFields(record);
}

TEST(ZetNorvDb_RecordTest, GivesAndSetsEveryField) {
  ZetNorvDb_Record record(3, MString("a,b,c"), 0);
  EXPECT_EQ(3, record.getSize());
  EXPECT_EQ(S_OK, record.setData(0, MString("first")));
  EXPECT_EQ(S_OK, record.setData(2, MString()));
  MString out;
  EXPECT_EQ(S_OK, record.getData(0, out));
  EXPECT_STREQ("first", out.gchar());
  EXPECT_EQ(S_OK, record.getData(1, out));
  EXPECT_STREQ("b", out.gchar());
  EXPECT_EQ(S_OK, record.getData(2, out));
  EXPECT_TRUE(out.isNull());
}

TEST(ZetNorvDb_RecordTest, RefusesIndicesOutsideTheRecord) {
  ZetNorvDb_Record record(2, MString("a,b"), 0);
  ZetNorvDb_Record nothing;
  TraceRecorder trace;
  for (const int i : {-1, INT_MIN, 2, 3, INT_MAX}) {
    SCOPED_TRACE(i);
    MString out("before");
    EXPECT_EQ(E_FAIL, record.getData(i, out));
    EXPECT_EQ(E_FAIL, nothing.getData(i, out));
    EXPECT_STREQ("before", out.gchar());
    EXPECT_EQ(E_FAIL, record.setData(i, MString("x")));
    EXPECT_EQ(E_FAIL, nothing.setData(i, MString("x")));
  }
  MString out("before");
  EXPECT_EQ(E_FAIL, nothing.getData(0, out));
  EXPECT_STREQ("before", out.gchar());
  EXPECT_EQ((Fields{"a", "b"}), fieldsOf(record));
  EXPECT_TRUE(trace.lines().empty());
}

TEST(ZetNorvDb_RecordTest, PrintsFieldsWithNothingBetweenOrBehindThem) {
  ZetNorvDb_Record record(3, MString("a,b,c"), 0);
  record.setData(1, MString(""));
  TraceRecorder trace;
  ConsoleCapture console;
  record.print();
  EXPECT_EQ("aerror: NULL c", console.text());
  EXPECT_TRUE(trace.lines().empty());
}

TEST(ZetNorvDb_RecordTest, PrintsAsOneRun) {
  const ZetNorvDb_Record record(2, MString("a,b"), 0);
  ConsoleCapture console;
  record.print();
  EXPECT_EQ("ab", console.text());
}

TEST(ZetNorvDb_RecordTest, TracesANullFieldInsteadOfPrintingItAndGoesOn) {
  const ZetNorvDb_Record record(4, MString("<a><><c>"), 1);
  TraceRecorder trace;
  ConsoleCapture console;
  record.print();
  EXPECT_EQ("ac", console.text());
  ASSERT_EQ(2u, trace.lines().size());
  for (const TraceRecorder::Line& line : trace.lines()) {
    EXPECT_EQ("ZetNorvTrace", line.trace);
    EXPECT_EQ(2, line.level);
    EXPECT_EQ("Problem _data[i] == NULL", line.text);
  }
}

TEST(ZetNorvDb_RecordTest, PrintsNothingWithoutFields) {
  TraceRecorder trace;
  ConsoleCapture console;
  ZetNorvDb_Record().print();
  EXPECT_EQ("", console.text());
  EXPECT_TRUE(trace.lines().empty());
}

}  // namespace
