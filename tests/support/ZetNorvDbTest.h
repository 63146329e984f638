// What the tests of building and loading "database.txt" share.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "ConsoleCapture.h"
#include "DatabaseState.h"
#include "Environment.h"
#include "Files.h"
#include "KelLib.h"
#include "ScratchDirectory.h"
#include "TraceRecorder.h"
#include "ZetNorvDb.h"

namespace database_test {

using Texts = std::vector<std::string>;

inline const std::string kStamp = "2007/05/03-10:12:00";
inline const std::string kReferenceLine =
    "<0C00><0003><Link1><PN-8><Reference><UUID BIDON><Reference><Instance><2007/05/03-10:12:00>\n";
inline const std::string kDocumentLine =
    "<0A1B><0002><PN-7><Bracket><PN-7.KelPart><3F2A><Indefini><KelPart><2007/05/03-10:12:00>\n";

inline std::string attribute(const std::string& name, const std::string& value) {
  return "<Attribute Name=\"" + name + "\" Value=\"" + value + "\"/>";
}

// The Attribute elements of the two example objects.
inline const std::string kReferenceIds =
    attribute("$COID", "0C00") + attribute("$COMPID", "0003") + attribute("S_PART_NUMBER", "PN-8");
inline const std::string kDocumentIds =
    attribute("$COID", "0A1B") + attribute("$COMPID", "0002") + attribute("S_NAME", "Bracket");

inline std::string reference(const std::string& attributes,
                             const std::string& children = kReferenceIds) {
  return "<Reference " + attributes + ">" + children + "</Reference>";
}
inline std::string document(const std::string& attributes,
                            const std::string& children = kDocumentIds) {
  return "<Document " + attributes + ">" + children + "</Document>";
}
inline std::string answer(const std::string& content) { return "<Answer>" + content + "</Answer>"; }

inline const std::string kReferenceAttributes =
    "Name='Link1' Type='Instance' TimeStamp='" + kStamp + "'";
inline const std::string kDocumentAttributes =
    "Name='Bracket.1' FilePath='C:/work/PN-7.KelPart' Type='KelPart' SourceUuid='3F2A' "
    "TimeStamp='" +
    kStamp + "'";
inline const std::string kReference = reference(kReferenceAttributes);
inline const std::string kDocument =
    document(kDocumentAttributes, kDocumentIds + attribute("S_PART_NUMBER", "PN-7"));

inline std::string row(const std::string& coid) {
  return "<" + coid + "><0002><PN><Name><File><Uuid><Table><Type><Stamp>";
}

// A test "T1" in mode SAVE whose scenario directory is there and empty.
class ZetNorvDbTest : public testing::Test {
 protected:
  ZetNorvDbTest() {
    environment.set("BIX_ZET_IN", scratch.file("in"));
    environment.set("BIX_ZET_TMP", scratch.file("tmp"));
    environment.set("ZET_LOG_NAME", "T1");
    environment.set("ZETNORV_MODE", "SAVE");
    std::filesystem::create_directories(scratch.file("in/T1.rec/Scenario"));
  }

  std::string recorded() const { return scratch.file("in/T1.rec/Scenario/database.txt"); }
  std::string loaded() const { return scratch.file("tmp/database.txt"); }

  // Constructs a database; returns what that wrote to standard output.
  std::string construct() {
    const ConsoleCapture console;
    const ZetNorvDb database;
    return console.text();
  }

  long build(const std::string& xml) {
    construct();
    trace.clear();
    return ZetNorvDb().buildDB(xml.data(), static_cast<int>(xml.size()));
  }

  void stage(const char* path, const char* copy) {
    ZetNorvDb::_refFile.set(path);
    ZetNorvDb::_copyFile.set(copy);
  }
  void stageExample() { stage("C:/work/PN-7.KelPart", "PN-7.KelPart"); }

  // The content of "database.txt"; empty when it was never made.
  std::string lines() const { return exists(recorded()) ? readBytes(recorded()) : std::string(); }

  // Field `column` of row `i` of the table.
  std::string field(int i, int column) const {
    ZetNorvDb_Record record;
    MString text;
    EXPECT_EQ(ZetNorvDb::_database.getRecord(i, record), S_OK);
    EXPECT_EQ(record.getData(column, text), S_OK);
    return text.isNull() ? "(null)" : text.gchar();
  }

  ScratchDirectory scratch;
  Environment environment;
  DatabaseState state;
  TraceRecorder trace;
};

}  // namespace database_test
