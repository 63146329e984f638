// The database's queries for identifiers, and identifiers as text.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Environment.h"
#include "KelLib.h"
#include "LoadedDatabase.h"
#include "TraceRecorder.h"
#include "ZetNorvDb.h"

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kFoundPart = "QueryForCoidCompid pour la part , on a trouve COID : ";
constexpr const char* kFoundDocument = "QueryForCoidCompid pour le doc , on a trouve COMPID : ";

constexpr unsigned char kCoidBytes[] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF};
constexpr unsigned char kBeforeBytes[] = {'b', 'e', 'f', 'o', 'r', 'e', '!', '!'};

std::string hexOf(const KelDbBinary& identifier) {
  const KelUnicodeString text = identifier.GetHexaValue();
  return text.ConvertToChar();
}

class ZetNorvDbIdentifiersTest : public testing::Test {
 protected:
  long byPartOrName(const KelUnicodeString& partNumber, const KelUnicodeString& name) {
    return queries.getCOIDCOMPID(partNumber, name, coid, compid);
  }

  void expectUntouched() {
    EXPECT_EQ(before, coid);
    EXPECT_EQ(before, compid);
  }

  Environment environment;
  LoadedDatabase database;
  ZetNorvDb queries;
  const KelDbBinary before{kBeforeBytes, 8};
  const KelDbBinary knownCoid{kCoidBytes, 8};
  KelDbBinary coid = before;
  KelDbBinary compid = before;
};

TEST_F(ZetNorvDbIdentifiersTest, CutsATextIntoCoidAndCompid) {
  struct Case {
    const char* name;
    const char* text;
    const char* coid;
    const char* compid;
  };
  const Case cases[] = {
      {"whole", "0123456789ABCDEF0000000000000A1B", "0123456789ABCDEF", "0000000000000A1B"},
      {"lower case", "0123456789abcdef0000000000000a1b", "0123456789ABCDEF", "0000000000000A1B"},
      {"more than enough", "0123456789ABCDEF0000000000000A1BFFFF", "0123456789ABCDEF",
       "0000000000000A1B"},
      {"not hexadecimal", "0123456789ABCDEG.000000000000A1B", "0123456789ABCDFF",
       "FF00000000000A1B"},
      {"only a coid", "0123456789ABCDEF", "0123456789ABCDEF", "FFFFFFFFFFFFFFFF"},
      {"one character short", "0123456789ABCDE", "0123456789ABCDFF", "FFFFFFFFFFFFFFFF"},
      {"one character more", "0123456789ABCDEF0", "0123456789ABCDEF", "FFFFFFFFFFFFFFFF"},
      {"compid one short", "0123456789ABCDEF0000000000000A1", "0123456789ABCDEF",
       "0000000000000AFF"},
      {"one pair", "12", "12FFFFFFFFFFFFFF", "FFFFFFFFFFFFFFFF"},
      {"empty", "", "FFFFFFFFFFFFFFFF", "FFFFFFFFFFFFFFFF"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const KelUnicodeString text(c.text);
    EXPECT_EQ(c.coid, hexOf(queries.GetCoid(text)));
    EXPECT_EQ(c.compid, hexOf(queries.GetCompid(text)));
    EXPECT_EQ(8, queries.GetCoid(text).GetSize());
    EXPECT_EQ(8, queries.GetCompid(text).GetSize());
  }
}

TEST_F(ZetNorvDbIdentifiersTest, CutsTextAtCharactersNotAtBytes) {
  // The two-byte character takes the place of one character and no pair is left of it.
  const KelUnicodeString text(
      "\xC3\xA9"
      "123456789ABCDEF0000000000000A1B");
  EXPECT_EQ("0000000000000A1B", hexOf(queries.GetCompid(text)));
}

TEST_F(ZetNorvDbIdentifiersTest, NullTextHasNoDigit) {
  EXPECT_EQ("FFFFFFFFFFFFFFFF", hexOf(queries.GetCoid(KelUnicodeString())));
  EXPECT_EQ("FFFFFFFFFFFFFFFF", hexOf(queries.GetCompid(KelUnicodeString())));
}

TEST_F(ZetNorvDbIdentifiersTest, TracesNothingForTexts) {
  TraceRecorder trace;
  queries.GetCoid(KelUnicodeString("xyz"));
  queries.GetCompid(KelUnicodeString("xyz"));
  EXPECT_TRUE(trace.lines().empty());
}

TEST_F(ZetNorvDbIdentifiersTest, FindsBothIdentifiersByPartNumber) {
  database.add("1111111111111111,2222222222222222,PN-6,Other");
  database.add("0123456789ABCDEF,0000000000000A1B,PN-7,Bracket");
  database.add("3333333333333333,4444444444444444,PN-7,Second");
  TraceRecorder trace;
  EXPECT_EQ(S_OK, byPartOrName("PN-7", "unknown"));
  EXPECT_EQ("0123456789ABCDEF", hexOf(coid));
  EXPECT_EQ("0000000000000A1B", hexOf(compid));
  ASSERT_EQ((Lines{"PN-6", "PN-7", std::string(kFoundPart) + "0123456789ABCDEF"}), trace.texts());
  EXPECT_EQ(2, trace.lines()[0].level);
  EXPECT_EQ(2, trace.lines()[1].level);
  EXPECT_EQ(4, trace.lines()[2].level);
}

TEST_F(ZetNorvDbIdentifiersTest, FindsBothIdentifiersByNameWhenThePartNumberIsUnknown) {
  database.add("1111111111111111,2222222222222222,PN-6,Other");
  database.add("0123456789ABCDEF,0000000000000A1B,PN-7,Bracket");
  EXPECT_EQ(S_OK, byPartOrName("unknown", "Bracket"));
  EXPECT_EQ("0123456789ABCDEF", hexOf(coid));
  EXPECT_EQ("0000000000000A1B", hexOf(compid));
}

TEST_F(ZetNorvDbIdentifiersTest, FirstRowThatMatchesEitherWayIsTheAnswer) {
  database.add("1111111111111111,2222222222222222,PN-6,Bracket");
  database.add("0123456789ABCDEF,0000000000000A1B,PN-7,Other");
  EXPECT_EQ(S_OK, byPartOrName("PN-7", "Bracket"));
  EXPECT_EQ("1111111111111111", hexOf(coid));
}

TEST_F(ZetNorvDbIdentifiersTest, GivenTextNeedOnlyBeABeginningOfTheField) {
  struct Case {
    const char* name;
    KelUnicodeString partNumber;
    KelUnicodeString objectName;
    bool found;
  };
  const Case cases[] = {
      {"whole part number", "ABC", "?", true},
      {"beginning of the part number", "AB", "?", true},
      {"more than the part number", "ABCD", "?", false},
      {"beginning of the name", "?", "Br", true},
      {"more than the name", "?", "Brackets", false},
      {"part number in other case", "abc", "?", false},
      {"name and part number swapped", "Bracket", "ABC", false},
      {"empty part number", "", "?", true},
      {"empty name", "?", "", true},
      {"null part number", KelUnicodeString(), "?", false},
      {"null name", "?", KelUnicodeString(), false},
      {"both null", KelUnicodeString(), KelUnicodeString(), false},
      {"null part number and a name", KelUnicodeString(), "Bracket", true},
      {"cut at a line feed", "AB\nXY", "?", true},
  };
  database.add("0123456789ABCDEF,0000000000000A1B,ABC,Bracket");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    coid = before;
    compid = before;
    EXPECT_EQ(c.found ? S_OK : E_FAIL, byPartOrName(c.partNumber, c.objectName));
    EXPECT_EQ(c.found ? "0123456789ABCDEF" : hexOf(before), hexOf(coid));
    EXPECT_EQ(c.found ? "0000000000000A1B" : hexOf(before), hexOf(compid));
  }
}

TEST_F(ZetNorvDbIdentifiersTest, GivenTextIsNotFoundInAShorterField) {
  database.add("0123456789ABCDEF,0000000000000A1B,A,B");
  EXPECT_EQ(E_FAIL, byPartOrName("AB", "BC"));
  expectUntouched();
}

TEST_F(ZetNorvDbIdentifiersTest, UnknownObjectLeavesTheOutputsAndTracesEveryPartNumber) {
  database.add("1,2,PN-6,Other");
  database.add("3,4,PN-7,Bracket");
  TraceRecorder trace;
  EXPECT_EQ(E_FAIL, byPartOrName("X", "Y"));
  expectUntouched();
  EXPECT_EQ((Lines{"PN-6", "PN-7"}), trace.texts());
}

TEST_F(ZetNorvDbIdentifiersTest, EmptyDatabaseKnowsNoObject) {
  TraceRecorder trace;
  EXPECT_EQ(E_FAIL, byPartOrName("", ""));
  EXPECT_EQ(E_FAIL, queries.getCOMPID("", knownCoid, compid));
  expectUntouched();
  EXPECT_TRUE(trace.lines().empty());
}

TEST_F(ZetNorvDbIdentifiersTest, PassesRowsOfFewerThanFourFields) {
  database.add("1111111111111111,2222222222222222,PN-7", 3);
  database.add("", 0);
  database.add("0123456789ABCDEF,0000000000000A1B,PN-7,Bracket", 4);
  TraceRecorder trace;
  EXPECT_EQ(S_OK, byPartOrName("PN-7", "?"));
  EXPECT_EQ("0123456789ABCDEF", hexOf(coid));
  EXPECT_EQ((Lines{"PN-7", std::string(kFoundPart) + "0123456789ABCDEF"}), trace.texts());
}

TEST_F(ZetNorvDbIdentifiersTest, PassesNullRows) {
  database.add("1111111111111111,2222222222222222,PN-7,Bracket");
  database.add("0123456789ABCDEF,0000000000000A1B,PN-7,Bracket");
  database.refuse(0);
  EXPECT_EQ(S_OK, byPartOrName("PN-7", "?"));
  EXPECT_EQ("0123456789ABCDEF", hexOf(coid));
  queries.getCOMPID("Bracket", knownCoid, compid);
  EXPECT_EQ("0000000000000A1B", hexOf(compid));
}

TEST_F(ZetNorvDbIdentifiersTest, NullPartNumberFieldIsAnEmptyLine) {
  database.add("0123456789ABCDEF,0000000000000A1B,x,Bracket");
  database.set(0, 2, MString());
  TraceRecorder trace;
  EXPECT_EQ(E_FAIL, byPartOrName("PN-7", "?"));
  EXPECT_EQ((Lines{""}), trace.texts());
}

TEST_F(ZetNorvDbIdentifiersTest, CutsTheJoinedIdentifiersOfARowAtSixteenCharacters) {
  struct Case {
    const char* name;
    MString coidField;
    MString compidField;
    const char* coid;
    const char* compid;
  };
  const Case cases[] = {
      {"short coid", "0A1B", "0000000000000002", "0A1B000000000000", "0002FFFFFFFFFFFF"},
      {"both short", "0A1B", "0002", "0A1B0002FFFFFFFF", "FFFFFFFFFFFFFFFF"},
      {"odd", "0A1", "2", "0A12FFFFFFFFFFFF", "FFFFFFFFFFFFFFFF"},
      {"short compid", "0123456789ABCDEF", "00", "0123456789ABCDEF", "00FFFFFFFFFFFFFF"},
      {"long coid", "0123456789ABCDEF77", "000000000000000A1B", "0123456789ABCDEF",
       "7700000000000000"},
      {"not hexadecimal", "NULL", "NULL", "FFFFFFFFFFFFFFFF", "FFFFFFFFFFFFFFFF"},
      {"empty coid", "", "0123456789ABCDEF", "0123456789ABCDEF", "FFFFFFFFFFFFFFFF"},
      {"null coid", MString(), "0123456789ABCDEF", "FFFFFFFFFFFFFFFF", "FFFFFFFFFFFFFFFF"},
      {"null compid", "0123456789ABCDEF", MString(), "0123456789ABCDEF", "FFFFFFFFFFFFFFFF"},
  };
  database.add("c,d,PN-7,Bracket");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    database.set(0, 0, c.coidField);
    database.set(0, 1, c.compidField);
    EXPECT_EQ(S_OK, byPartOrName("PN-7", "?"));
    EXPECT_EQ(c.coid, hexOf(coid));
    EXPECT_EQ(c.compid, hexOf(compid));
    EXPECT_EQ(8, coid.GetSize());
    EXPECT_EQ(8, compid.GetSize());
  }
}

TEST_F(ZetNorvDbIdentifiersTest, FindsTheCompidYetAlwaysFails) {
  database.add("0123456789ABCDEF,1111111111111111,PN-6,Other");
  database.add("2222222222222222,3333333333333333,PN-7,Bracket");
  database.add("0123456789ABCDEF,0000000000000A1B,PN-7,Bracket");
  database.add("0123456789ABCDEF,4444444444444444,PN-7,Bracket");
  TraceRecorder trace;
  EXPECT_EQ(E_FAIL, queries.getCOMPID("Bracket", knownCoid, compid));
  EXPECT_EQ("0000000000000A1B", hexOf(compid));
  ASSERT_EQ((Lines{std::string(kFoundDocument) + "0000000000000A1B"}), trace.texts());
  EXPECT_EQ(4, trace.lines()[0].level);
}

TEST_F(ZetNorvDbIdentifiersTest, CompidNeedsBothCoidAndName) {
  struct Case {
    const char* name;
    KelUnicodeString objectName;
    KelDbBinary given;
    bool found;
  };
  const unsigned char other[] = {0xFF};
  const Case cases[] = {
      {"both", "Bracket", knownCoid, true},
      {"beginning of the name", "Br", knownCoid, true},
      {"more than the name", "Brackets", knownCoid, false},
      {"empty name", "", knownCoid, true},
      {"null name", KelUnicodeString(), knownCoid, false},
      {"name cut at a line feed", "Brack\nX", knownCoid, true},
      {"other coid", "Bracket", KelDbBinary(other, 1), false},
      {"beginning of the coid", "Bracket", KelDbBinary(kCoidBytes, 4), true},
      {"no coid at all", "Bracket", KelDbBinary(), true},
  };
  database.add("0123456789ABCDEF,0000000000000A1B,PN-7,Bracket");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    compid = before;
    TraceRecorder trace;
    EXPECT_EQ(E_FAIL, queries.getCOMPID(c.objectName, c.given, compid));
    EXPECT_EQ(c.found ? "0000000000000A1B" : hexOf(before), hexOf(compid));
    EXPECT_EQ(c.found ? 1u : 0u, trace.lines().size());
  }
}

TEST_F(ZetNorvDbIdentifiersTest, CompidPassesRowsOfFewerThanFourFields) {
  database.add("0123456789ABCDEF,1111111111111111,PN-7", 3);
  database.add("0123456789ABCDEF,0000000000000A1B,PN-7,Bracket", 4);
  EXPECT_EQ(E_FAIL, queries.getCOMPID("", knownCoid, compid));
  EXPECT_EQ("0000000000000A1B", hexOf(compid));
}

TEST_F(ZetNorvDbIdentifiersTest, CompidIsCutOutOfTheJoinedIdentifiers) {
  database.add("0123456789ABCDEF77,00A1B,PN-7,Bracket");
  EXPECT_EQ(E_FAIL, queries.getCOMPID("Bracket", knownCoid, compid));
  EXPECT_EQ("7700A1FFFFFFFFFF", hexOf(compid));
}

}  // namespace
