// The emulated database and the documents while calls of the file system fail: what is read is
// right or missing, what is written is whole or missing.
#include <filesystem>
#include <string>
#include <vector>

#include "ConsoleCapture.h"
#include "FaultSweep.h"
#include "FaultedSession.h"
#include "KelDbBinary.h"
#include "KelUnicodeString.h"
#include "RecordText.h"
#include "ZetNorvDb.h"
#include "ZetNorvToolBox.h"

namespace fault_test {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

constexpr int kRows = 24;

std::string twoDigits(int number) { return (number < 10 ? "0" : "") + std::to_string(number); }
std::string coidOf(int row) { return "0123456789ABCD" + twoDigits(row); }
std::string compidOf(int row) { return "00000000000000" + twoDigits(row); }
std::string partNumberOf(int row) { return "PN" + twoDigits(row) + "-7"; }
std::string timeStampOf(int row) { return "2008-03-12 10:15:" + twoDigits(row); }

// One is longer than what is read of a line at a time.
std::string nameOf(int row) {
  return "name" + twoDigits(row) + (row == 7 ? std::string(1500, 'n') : "");
}

Texts fieldsOf(int row) {
  return {coidOf(row), compidOf(row), partNumberOf(row), nameOf(row),     "file" + twoDigits(row),
          "3F2A",      "Indefini",    "KelPart",         timeStampOf(row)};
}

std::string lineOf(int row) {
  std::string line;
  for (const std::string& field : fieldsOf(row)) line += "<" + field + ">";
  return line + "\n";
}

std::string databaseText() {
  std::string text;
  for (int row = 0; row < kRows; ++row) text += lineOf(row);
  return text;
}

// The row as the table has it.
std::string rowOf(int row) {
  std::string joined;
  for (const std::string& field : fieldsOf(row)) joined += field + '|';
  return joined + "(null)";
}

KelDbBinary binaryOf(const std::string& hexadecimal) {
  std::vector<unsigned char> text(hexadecimal.begin(), hexadecimal.end());
  std::vector<unsigned char> bytes(text.size() / 2);
  int length = 0;
  ZetNorvdrhxch(static_cast<int>(text.size()), text.data(), length, bytes.data());
  return KelDbBinary(bytes.data(), length);
}

class FaultsInTheDatabase : public EmulatorFixture {
 protected:
  std::string folder() const { return scratch.file("work/"); }

  // Whether `row`, which the database has or lacks, is told as it is by every query.
  static void ask(int row, bool known) {
    SCOPED_TRACE("row " + std::to_string(row));
    ZetNorvDb database;
    KelDbBinary coid = binaryOf(coidOf(row));
    KelDbBinary compid = binaryOf(compidOf(row));
    KelUnicodeString coidText(coidOf(row).c_str());
    KelUnicodeString compidText(compidOf(row).c_str());
    const long result = known ? S_OK : E_FAIL;
    const auto expect = [known](const KelUnicodeString& out, const std::string& value) {
      EXPECT_STREQ(out.ConvertToChar(), known ? value.c_str() : "before");
    };

    KelUnicodeString out("before");
    EXPECT_EQ(database.getType(coid, compid, out), result);
    expect(out, "KelPart");
    out = KelUnicodeString("before");
    EXPECT_EQ(database.getPartnumber(coid, compid, out), result);
    expect(out, partNumberOf(row));
    out = KelUnicodeString("before");
    EXPECT_EQ(database.getpathFile(coidText, compidText, out), result);
    expect(out, "file" + twoDigits(row));
    out = KelUnicodeString("before");
    EXPECT_EQ(database.emulgetTimeStamp(coidText, compidText, out, 1), result);
    expect(out, timeStampOf(row));

    KelDbBinary foundCoid;
    KelDbBinary foundCompid;
    EXPECT_EQ(database.getCOIDCOMPID(KelUnicodeString(partNumberOf(row).c_str()),
                                     KelUnicodeString(), foundCoid, foundCompid),
              result);
    EXPECT_EQ(foundCoid == coid && foundCompid == compid, known);

    char* path = nullptr;
    MString uuid;
    EXPECT_EQ(database.getFile(coid, compid, path, uuid), result);
    EXPECT_EQ(path == nullptr, !known);
    if (known) {
      EXPECT_STREQ(path, "");
      EXPECT_STREQ(uuid.gchar(), "3F2A");
    }
    delete[] path;
  }

 private:
  ConsoleCapture _console;  // rows are printed when they are loaded
};

std::vector<FaultFamily> reading() {
  return together({onceAndAlways("open", Call::kOpen), onceAndAlways("close", Call::kClose),
                   onceAndAlways("size", Call::kSize), onceAndAlways("read", Call::kRead),
                   inPieces("read_in_pieces", Call::kRead)});
}

std::vector<FaultFamily> writing() {
  return together({onceAndAlways("open", Call::kOpen),
                   onceAndAlways("close", Call::kClose),
                   losingCloses(),
                   onceAndAlways("write", Call::kWrite),
                   {fullDisk()},
                   inPieces("write_in_pieces", Call::kWrite)});
}

std::vector<FaultFamily> naming() {
  return together({onceAndAlways("make_directory", Call::kMakeDirectory),
                   onceAndAlways("find_directory", Call::kFindDirectory),
                   onceAndAlways("rename", Call::kRename),
                   onceAndAlways("stamp", Call::kStamp),
                   {fullDiskAnd("full_disk_remove", Call::kRemove)}});
}

// --- loading ---

// All rows or none. A file that opens and cannot be read is told of; one that does not open passes
// for one that is not there yet.
TEST_F(FaultsInTheDatabase, WhatIsLoadedIsRight) {
  mode("REPLAY");
  writeBytes(scenario("database.txt"), databaseText());
  const auto loadAndAsk = [&](bool whole, bool unopened) {
    trace.clear();
    { const ZetNorvDb database; }
    const int rows = ZetNorvDb::_database.getSize();
    ASSERT_TRUE(rows == kRows || (rows == 0 && !whole)) << rows;
    const bool told = trace.has("Problem in ZetNorvDb::ZetNorvDb with KelFRead!");
    EXPECT_EQ(told, rows == 0 && !unopened);
    for (int row = 0; row < rows; ++row) EXPECT_EQ(rowText(ZetNorvDb::_database, row), rowOf(row));
    for (int row = 0; row < kRows; ++row) ask(row, row < rows);
  };
  const Sweep sweep{resetEmulator,
                    [&](FaultyFileSystem&, const std::string& family) {
                      // A failing close costs nothing that was read.
                      loadAndAsk(family.starts_with("close"), family.starts_with("open"));
                    },
                    [&](const std::string&) {
                      EXPECT_EQ(readBytes(scenario("database.txt")), databaseText());
                      resetEmulator();
                      loadAndAsk(true, false);
                    }};
  sweep.over(reading(), 500);
}

// --- asking ---

// In debug mode what was found is logged; the answer does not depend on that.
TEST_F(FaultsInTheDatabase, QueriesDoNotDependOnTheirLog) {
  debugMode("REPLAY");
  writeBytes(debugScenario("database.txt"), lineOf(0) + lineOf(1));
  const auto prepare = [&] {
    resetEmulator();
    const ZetNorvDb database;
    trace.clear();
  };
  const Sweep sweep{prepare,
                    [&](FaultyFileSystem& files, const std::string&) {
                      for (int row = 0; row < 3; ++row) {
                        trace.clear();
                        const int faults = files.faults();
                        ask(row, row < 2);
                        const bool told = announced(
                            trace, {"Problem in ZetNorvToolBox::writeLog with KelFOpen",
                                    "Problem in ZetNorvToolBox::writeLog with file.puts"});
                        EXPECT_TRUE(!told || files.faults() > faults);
                      }
                    },
                    [&](const std::string&) {
                      ask(0, true);
                      ask(2, false);
                    }};
  sweep.over(together({writing(), naming()}), 160);
}

// --- appending ---

// The objects before the one that met a fault have their lines, and the cause is told.
TEST_F(FaultsInTheDatabase, WhatIsAppendedIsWhole) {
  mode("SAVE");
  const Exchange exchanges[] = {{kSave, 1, 0}, {kSave, 2, 0}, {kSave, 3, 0}, {kSave, 4, 0}};
  const std::string earlier = databaseText();
  std::string expected;
  const auto prepare = [&] {
    resetEmulator();
    writeBytes(scenario("database.txt"), earlier);
    expected = earlier;
  };
  const auto build = [&](FaultyFileSystem& files, const std::string& family) {
    for (const Exchange& exchange : exchanges) {
      trace.clear();
      const int faults = files.faults();
      ZetNorvDb::_refFile.set((folder() + documentName(exchange)).c_str());
      ZetNorvDb::_copyFile.set(documentName(exchange).c_str());
      const std::string answer = answerOf(exchange, folder(), "id").substr(8);
      const long result = ZetNorvDb().buildDB(answer.data(), static_cast<int>(answer.size()));
      const std::string all = objectLines(exchange, true);
      const std::string after = readBytes(scenario("database.txt"));
      ASSERT_TRUE(after.starts_with(expected)) << after;
      const std::string added = after.substr(expected.size());
      expected = after;
      EXPECT_TRUE(all.starts_with(added) && (added.empty() || added.back() == '\n')) << added;
      if (result == S_OK) {
        EXPECT_EQ(added, all);
        continue;
      }
      EXPECT_EQ(result, E_FAIL);
      EXPECT_GT(files.faults(), faults);
      EXPECT_TRUE(added != all || family.starts_with("close")) << added;
      EXPECT_TRUE(announced(
          trace, {"buildDB : Problem with KelFOpen!", "buildDB : Problem with KelFPuts!"}));
    }
  };
  const auto appendOn = [&](const std::string& family) {
    FaultyFileSystem files;
    build(files, family);
  };
  Sweep{prepare, build, appendOn}.over(writing(), 130);
}

// --- documents ---

class FaultsInDocuments : public FaultsInTheDatabase {
 protected:
  FaultsInDocuments() { mode("SAVE"); }

  // The file `path` has the bytes `before` or `after`; none stands for a file that is not there.
  static void expectEither(const std::string& path, const std::string& before,
                           const std::string& after, bool faulted) {
    const std::string content = contentOf(path);
    EXPECT_TRUE(content == after || (faulted && content == before)) << path << ": " << content;
  }
};

TEST_F(FaultsInDocuments, ACopyIsStagedWholeOrNotAtAll) {
  // In every second run the first one was staged before, in another state.
  const Exchange exchanges[] = {{kSave, 1, 0}, {kSave, 2, 0}, {kSave, 3, 0}};
  const std::string older = "an older state";
  const std::string staging = reference("Kel_Files_Temp/");
  for (const Exchange& exchange : exchanges) {
    writeBytes(folder() + documentName(exchange), documentBytes(exchange));
  }
  int runs = 0;
  const auto prepare = [&] {
    resetEmulator();
    fs::remove_all(reference());
    if (++runs % 2 == 0) writeBytes(staging + documentName(exchanges[0]), older);
  };
  const auto stage = [&](FaultyFileSystem& files, const std::string& family) {
    for (const Exchange& exchange : exchanges) {
      trace.clear();
      const int faults = files.faults();
      const std::string copy = staging + documentName(exchange);
      const std::string before = contentOf(copy);
      const std::string message = requestOf(exchange, folder(), "id");
      EXPECT_EQ(ZetNorvDb().buildTemp(message.data(), static_cast<int>(message.size())), S_OK);
      const bool faulted = files.faults() > faults;
      expectEither(copy, before, documentBytes(exchange), faulted);
      EXPECT_EQ(readBytes(folder() + documentName(exchange)), documentBytes(exchange));
      EXPECT_STREQ(ZetNorvDb::_copyFile.gchar(), documentName(exchange).c_str());
      EXPECT_EQ(trace.count("Copie des donnees: OK") + trace.count("Copie des donnees: KO"), 1);
      EXPECT_TRUE(faulted || trace.has("Copie des donnees: OK"));
      // Where it cannot be removed, a piece of a copy stays under the name that no copy has.
      EXPECT_TRUE(family == "full_disk_remove" || !exists(staging + ".staging"));
    }
  };
  const auto stageAgain = [&](const std::string& family) {
    FaultyFileSystem files;
    stage(files, family);
  };
  Sweep{prepare, stage, stageAgain}.over(together({reading(), writing(), naming()}), 160);
}

TEST_F(FaultsInDocuments, ACopyForTheHostReplacesItsTargetWholeOrNotAtAll) {
  const std::string source = folder() + "source.KelPart";
  const std::string directory = scratch.file("targets/");
  const std::string target = directory + "target.KelPart";
  const std::string older = "an older state";
  const std::string bytes = std::string(400, 's') + "end";
  writeBytes(source, bytes);
  const auto prepare = [&] {
    for (const std::string& name : namesIn(directory)) fs::remove(directory + name);
    writeBytes(target, older);
  };
  const auto copy = [&](FaultyFileSystem& files, const std::string& family) {
    KelUnicodeString to(target.c_str());
    const int faults = files.faults();
    const long result = ZetNorvToolBox::StreamFromEmul(source.c_str(), to);
    EXPECT_TRUE(result == S_OK || (result == E_FAIL && files.faults() > faults)) << result;
    EXPECT_EQ(readBytes(target), result == S_OK ? bytes : older);
    EXPECT_EQ(readBytes(source), bytes);
    EXPECT_TRUE(family == "full_disk_remove" || namesIn(directory) == Texts{"target.KelPart"});
  };
  const auto copyAgain = [&](const std::string&) {
    KelUnicodeString to(target.c_str());
    EXPECT_EQ(ZetNorvToolBox::StreamFromEmul(source.c_str(), to), S_OK);
    EXPECT_EQ(readBytes(target), bytes);
  };
  Sweep{prepare, copy, copyAgain}.over(together({reading(), writing(), naming()}), 150);
}

}  // namespace
}  // namespace fault_test
