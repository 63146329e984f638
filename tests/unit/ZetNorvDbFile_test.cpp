// Looking up the files of documents (getFile).
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "ConsoleCapture.h"
#include "ZetNorvDbStagingTest.h"

namespace staging_test {
namespace {

class ZetNorvDbFileTest : public ZetNorvDbStagingTest {
 protected:
  struct Identifiers {
    std::string coid;
    std::string compid;
  };

  void addRow(const std::string& table, const std::string& type,
              const std::string& storedUuid = "U", const Identifiers& ids = {"0A1B", "0002"}) {
    const std::string line = "<" + ids.coid + "><" + ids.compid + "><PN><Name><File.KelPart><" +
                             storedUuid + "><" + table + "><" + type + "><Stamp>";
    ZetNorvDb_Record row(10, MString(line.c_str()), 1);
    ZetNorvDb::_database.add(row);
  }

  long find() {
    path = nullptr;
    uuid.set("before");
    const long result = ZetNorvDb().getFile(coid, compid, path, uuid);
    owned.reset(path);
    return result;
  }

  static KelDbBinary binary(std::vector<unsigned char> bytes) {
    return KelDbBinary(bytes.data(), static_cast<int>(bytes.size()));
  }

  KelDbBinary coid = binary({0x0A, 0x1B});
  KelDbBinary compid = binary({0x00, 0x02});
  char* path = nullptr;
  std::unique_ptr<char[]> owned;
  MString uuid;
};

TEST_F(ZetNorvDbFileTest, FoundFileHasAnEmptyPathAndTheRowsUuid) {
  addRow("Indefini", "KelPart", "3F2A");
  environment.set("BIX_ZET_TMP", scratch.file("tmp"));
  ASSERT_EQ(find(), S_OK);
  ASSERT_NE(path, nullptr);
  EXPECT_STREQ(path, "");
  EXPECT_EQ(text(uuid), "3F2A");
  EXPECT_EQ(trace.texts(), (Texts{"ZetNorvDb::getFile", "Path fu fichier a lire", ""}));
}

TEST_F(ZetNorvDbFileTest, FoundFileIsLoggedInDebugMode) {
  debug();
  addRow("Indefini", "KelPart");
  ASSERT_EQ(find(), S_OK);
  EXPECT_EQ(log("trace.log"), "Fichier Trouve\n");
}

TEST_F(ZetNorvDbFileTest, EnvironmentIsLeftAsItWas) {
  environment.set("BIX_ZET_TMP", "value");
  addRow("Indefini", "KelPart");
  ASSERT_EQ(find(), S_OK);
  EXPECT_STREQ(std::getenv("BIX_ZET_TMP"), "value");
}

TEST_F(ZetNorvDbFileTest, EmptyTableFindsNothing) {
  EXPECT_EQ(find(), E_FAIL);
  EXPECT_EQ(path, nullptr);
  EXPECT_EQ(text(uuid), "before");
  EXPECT_EQ(trace.texts(), Texts{"ZetNorvDb::getFile"});
}

struct Kind {
  const char* table;
  const char* type;
  bool found;
};

TEST_F(ZetNorvDbFileTest, TableAndTypeMustBeThoseOfAFile) {
  const Kind cases[] = {
      {"Indefini", "KelPart", true},
      {"DOCUMENT", "KelDrawing", true},
      {"Reference", "catalog", true},
      {"Indefini", "KelProcess", true},
      {"Indefini", "Reference", true},
      {"Ind", "Kel", true},  // beginnings of the words
      {"D", "c", true},
      {"", "", true},  // an absent one, too
      {"Indefini", "Instance", false},
      {"Indefini", "KelPart2", false},
      {"Indefini", "kelpart", false},
      {"Indefinis", "KelPart", false},
      {"Document", "KelPart", false},
      {"KelPart", "Indefini", false},
  };
  for (const Kind& kind : cases) {
    ZetNorvDb::_database.Release();
    addRow(kind.table, kind.type);
    EXPECT_EQ(find(), kind.found ? S_OK : E_FAIL) << kind.table << " " << kind.type;
    EXPECT_EQ(path != nullptr, kind.found) << kind.table << " " << kind.type;
    EXPECT_EQ(text(uuid), kind.found ? "U" : "before") << kind.table << " " << kind.type;
  }
}

struct Lookup {
  const char* coid;
  const char* compid;
  bool found;
};

TEST_F(ZetNorvDbFileTest, IdentifiersMustBeEqual) {
  const Lookup cases[] = {
      {"0A1B", "0002", true},    {"0A1B", "0003", false}, {"0A1C", "0002", false},
      {"0A", "0002", false},     {"0A1B", "00", false},   {"0A1B00", "0002", false},
      {"0A1B", "000200", false}, {"0a1b", "0002", false}, {"", "", false},
  };
  for (const Lookup& lookup : cases) {
    ZetNorvDb::_database.Release();
    addRow("Indefini", "KelPart", "U", {lookup.coid, lookup.compid});
    EXPECT_EQ(find(), lookup.found ? S_OK : E_FAIL) << lookup.coid << " " << lookup.compid;
  }
}

TEST_F(ZetNorvDbFileTest, FirstMatchingRowWins) {
  addRow("Indefini", "Instance", "no file");
  addRow("Indefini", "KelPart", "first");
  addRow("DOCUMENT", "KelPart", "second");
  ASSERT_EQ(find(), S_OK);
  EXPECT_EQ(text(uuid), "first");
}

TEST_F(ZetNorvDbFileTest, RowOfFewerThanEightFieldsIsSkipped) {
  for (int fields = 0; fields <= 9; ++fields) {
    ZetNorvDb::_database.Release();
    ZetNorvDb_Record row(fields, MString("0A1B,0002,PN,Name,File,U,Indefini,KelPart,Stamp"), 0);
    ZetNorvDb::_database.add(row);
    EXPECT_EQ(find(), fields < 8 ? E_FAIL : S_OK) << fields;
  }
}

TEST_F(ZetNorvDbFileTest, RowWithoutUuidGivesANullOne) {
  addRow("Indefini", "KelPart", "");
  ASSERT_EQ(find(), S_OK);
  EXPECT_TRUE(uuid.isNull());
}

TEST_F(ZetNorvDbFileTest, StagedAndRecordedDocumentIsFoundByTheNextProcess) {
  environment.set("ZETNORV_MODE", "REPLAY");
  EXPECT_EQ(stage(request(document(source()))), S_OK);
  ZetNorvDb::_path.set((scratch.file("in/T1.rec/Scenario")).c_str());
  std::filesystem::create_directories(scratch.file("in/T1.rec/Scenario"));
  const std::string answer =
      "<Document Name='n' FilePath='" + source() +
      "' Type='KelPart' SourceUuid='3F2A' TimeStamp='t'><Attribute Name='$COID' Value='0A1B'/>"
      "<Attribute Name='$COMPID' Value='0002'/><Attribute Name='S_NAME' Value='N'/></Document>";
  EXPECT_EQ(ZetNorvDb().buildDB(answer.data(), static_cast<int>(answer.size())), S_OK);
  DatabaseState::reset();
  const ConsoleCapture console;  // the row that is loaded
  ASSERT_EQ(find(), S_OK);
  EXPECT_EQ(text(uuid), "3F2A");
}

}  // namespace
}  // namespace staging_test
