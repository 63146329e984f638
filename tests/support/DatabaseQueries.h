// What the tests of the database's queries share: an object that the database knows by its
// identifiers, and who asks for it.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Environment.h"
#include "Files.h"
#include "LoadedDatabase.h"
#include "ScratchDirectory.h"
#include "ZetNorvDb.h"

class DatabaseQueries : public testing::Test {
 protected:
  using Lines = std::vector<std::string>;

  static constexpr unsigned char kCoidBytes[] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF};
  static constexpr unsigned char kCompidBytes[] = {0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x0A, 0x1B};

  // A row with the identifiers that the tests ask for.
  static constexpr const char* kRow =
      "0123456789ABCDEF,0000000000000A1B,PN-7,Bracket,PN-7.KelPart,3F2A,Indefini,KelPart,"
      "2008-03-12 10:15:30,info";
  static constexpr const char* kSecondRow =
      "0123456789ABCDEF,0000000000000A1B,PN-8,Second,Reference,UUID BIDON,Reference,Reference,"
      "2009-01-01 00:00:00,info";

  // The database empty again, and the output as before any query.
  void startAgain() {
    ZetNorvDb::_database.Release();
    out = KelUnicodeString("before");
  }

  std::string outText() const { return out.ConvertToChar(); }

  // Debug mode, with its logs under the test's directory.
  std::string debugLog() {
    environment.set("ZETNORV_DEBUG", "SAVE");
    environment.set("App_ErrFile", scratch.file("errors-"));
    environment.set("ZET_LOG_NAME", "T");
    return scratch.file("errors-T/Error/trace.log");
  }

  // The object in a database file that the next construction of a database reads.
  void storeForLoading() {
    ZetNorvDb::_path = MString();
    environment.set("ZETNORV_MODE", "REPLAY");
    environment.set("BIX_ZET_IN", scratch.file("in"));
    environment.set("ZET_LOG_NAME", "T");
    writeBytes(scratch.file("in/T.rec/Scenario/database.txt"),
               "<0123456789ABCDEF><0000000000000A1B><PN-7><Bracket><C:/work/PN-7.KelPart><3F2A>"
               "<Indefini><KelPart><2008-03-12 10:15:30>\n");
  }

  Environment environment;
  ScratchDirectory scratch;
  LoadedDatabase database;
  ZetNorvDb queries;
  KelDbBinary coid{kCoidBytes, 8};
  KelDbBinary compid{kCompidBytes, 8};
  KelUnicodeString coidText{"0123456789ABCDEF"};
  KelUnicodeString compidText{"0000000000000A1B"};
  KelUnicodeString out{"before"};
};
