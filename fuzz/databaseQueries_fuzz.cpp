// Asking the database that was loaded from any "database.txt": every query against a plain second
// implementation, and what loading and asking tell.
//
// An input: a digit that says which file is read and whether it is there, two texts to ask for, a
// line each, and the bytes of the file.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Emulated.h"
#include "Expect.h"
#include "FuzzInput.h"
#include "KelLib.h"
#include "PlainDatabase.h"

using fuzz::Emulated;
using fuzz::expect;
using fuzz::expectEqual;
using fuzz::Field;
using fuzz::PlainDatabase;
using fuzz::Row;

namespace {

constexpr const char* kNull = "(null)";

std::string textOf(const MString& text) {
  if (text.isNull()) return kNull;
  return std::string(text.gchar(), static_cast<std::size_t>(text.glength()));
}

std::string joined(const ZetNorvDb_Record& record) {
  std::string fields;
  for (int i = 0; i < record.getSize(); ++i) fields += textOf(record._data[i]) + "|";
  return fields;
}

std::string joined(const Row& row) {
  std::string fields;
  for (const Field& field : row) fields += field.value_or(kNull) + "|";
  return fields;
}

std::vector<std::string> loadedRows() {
  std::vector<std::string> rows;
  for (int i = 0; i < ZetNorvDb::_database.getSize(); ++i) {
    ZetNorvDb_Record record;
    expect(ZetNorvDb::_database.getRecord(i, record) == S_OK, "every row can be had");
    expectEqual(joined(record), joined(*ZetNorvDb::_database._rows[i]),
                "a row is handed out whole");
    rows.push_back(joined(record));
  }
  return rows;
}

std::vector<std::string> rowsOf(const PlainDatabase& plain) {
  std::vector<std::string> rows;
  for (const Row& row : plain.rows) rows.push_back(joined(row));
  return rows;
}

// What loading tells: of every row its line, and its nine fields with a letter behind.
std::vector<std::string> loadingOf(const PlainDatabase& plain) {
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < plain.rows.size(); ++i) {
    lines.push_back(plain.lines[i]);
    std::string fields;
    for (std::size_t column = 0; column <= fuzz::kTimeStamp; ++column) {
      fields += *plain.rows[i][column] + ",";
    }
    lines.push_back(fields + "O");
    // It is printed, too.
    if (!plain.rows[i].back()) lines.push_back("Problem _data[i] == NULL");
  }
  return lines;
}

void load(Emulated& emulated, const PlainDatabase& plain, const std::vector<std::string>& told) {
  const ZetNorvDb database;
  expectEqual(loadedRows(), rowsOf(plain), "the table has the file's rows");
  expectEqual(emulated.trace.texts(), told, "loading tells of every row");
  emulated.trace.clear();
  const ZetNorvDb again;
  expectEqual(loadedRows(), rowsOf(plain), "the table is loaded once");
  expect(emulated.trace.texts().empty(), "a loaded table is nothing to tell of");
}

std::string marks() {
  std::string all;
  for (int i = 0; i < ZetNorvDb::_database.getSize(); ++i) {
    all += joined(*ZetNorvDb::_database._marks[i]);
  }
  return all;
}

void askByIdentifiers(const PlainDatabase& plain, const std::string& coid,
                      const std::string& compid) {
  const Row* const row = plain.withIdentifiers(coid, compid);
  KelUnicodeString coidText(coid.c_str());
  KelUnicodeString compidText(compid.c_str());
  KelUnicodeString path("before");
  const long gotPath = ZetNorvDb().getpathFile(coidText, compidText, path);
  expect(gotPath == (row == nullptr ? E_FAIL : S_OK), "a path is found where there is a row");
  expectEqual(path.ConvertToChar(), row == nullptr ? "before" : *(*row)[fuzz::kPathFile],
              "the path is the first row's");
  KelUnicodeString stamp("before");
  const long gotStamp = ZetNorvDb().emulgetTimeStamp(coidText, compidText, stamp, 1);
  expect(gotStamp == gotPath, "so is a time stamp");
  expectEqual(stamp.ConvertToChar(), row == nullptr ? "before" : *(*row)[fuzz::kTimeStamp],
              "the time stamp is the first row's");
}

KelDbBinary binaryOf(const std::string& hexadecimal) {
  std::string text = hexadecimal;
  unsigned char bytes[8] = {};
  int size = 0;
  ZetNorvdrhxch(16, reinterpret_cast<unsigned char*>(text.data()), size, bytes);
  return KelDbBinary(bytes, size);
}

std::string textOf(const KelDbBinary& binary) { return binary.GetHexaValue().ConvertToChar(); }

void askByBinaries(const PlainDatabase& plain, const std::string& coid, const std::string& compid) {
  const Row* const row = plain.withIdentifiers(coid, compid);
  KelDbBinary coidBytes = binaryOf(coid);
  KelDbBinary compidBytes = binaryOf(compid);
  expectEqual(textOf(coidBytes), coid, "an identifier's text is that of its bytes");
  KelUnicodeString out("before");
  const long expected = row == nullptr ? E_FAIL : S_OK;
  expect(ZetNorvDb().getType(coidBytes, compidBytes, out) == expected, "a type is found");
  expectEqual(out.ConvertToChar(), row == nullptr ? "before" : *(*row)[fuzz::kType], "the type");
  out = KelUnicodeString("before");
  expect(ZetNorvDb().getPartnumber(coidBytes, compidBytes, out) == expected,
         "a part number is found");
  expectEqual(out.ConvertToChar(), row == nullptr ? "before" : *(*row)[fuzz::kPartNumber],
              "the part number");

  const Row* const file = plain.file(coid, compid);
  char* path = nullptr;
  MString uuid("before");
  const long gotFile = ZetNorvDb().getFile(coidBytes, compidBytes, path, uuid);
  const std::unique_ptr<char[]> owned(path);
  expect(gotFile == (file == nullptr ? E_FAIL : S_OK), "a file is found where a row tells of one");
  expect((path == nullptr) == (file == nullptr), "there is a path with it");
  expect(path == nullptr || *path == '\0', "which is empty");
  expectEqual(textOf(uuid), file == nullptr ? "before" : *(*file)[fuzz::kUuid], "the uuid");
}

void askForIdentifiers(const PlainDatabase& plain, const std::string& partNumber,
                       const std::string& name) {
  const Row* const row = plain.withPartNumberOrName(partNumber, name);
  KelDbBinary coid;
  KelDbBinary compid;
  const long result =
      ZetNorvDb().getCOIDCOMPID(partNumber.c_str(), KelUnicodeString(name.c_str()), coid, compid);
  expect(result == (row == nullptr ? E_FAIL : S_OK),
         "identifiers are found by part number or name");
  const std::string both = row == nullptr ? "" : *(*row)[fuzz::kCoid] + *(*row)[fuzz::kCompid];
  expectEqual(textOf(coid), row == nullptr ? "" : fuzz::identifierAt(both, 0), "the coid");
  expectEqual(textOf(compid), row == nullptr ? "" : fuzz::identifierAt(both, 16), "the compid");

  const std::string searched = fuzz::identifierAt(partNumber, 0);
  const Row* const named = plain.withCoidAndName(searched, name);
  KelDbBinary found;
  expect(ZetNorvDb().getCOMPID(name.c_str(), binaryOf(searched), found) == E_FAIL,
         "a compid comes with a failure");
  expectEqual(textOf(found),
              named == nullptr
                  ? ""
                  : fuzz::identifierAt(*(*named)[fuzz::kCoid] + *(*named)[fuzz::kCompid], 16),
              "the compid of a coid and a name");
}

void askTheTable(const PlainDatabase& plain, const std::string& value) {
  for (std::size_t column = 0; column < 10; ++column) {
    const Row* const row = plain.search(column, value);
    ZetNorvDb_Record record;
    const long result = ZetNorvDb().getRecord(fuzz::kColumnNames[column], value.c_str(), record, 0);
    expect(result == (row == nullptr ? E_FAIL : S_OK), "a search finds what is there");
    expectEqual(joined(record), row == nullptr ? "" : joined(*row), "a search finds the right row");
  }
  const Row* const row = plain.search(fuzz::kPathFile, value);
  MString path("before");
  expect(ZetNorvDb().Find(value.c_str(), path) == (row == nullptr ? 1 : 0), "a path is found");
  expectEqual(textOf(path), row == nullptr ? "before" : *(*row)[fuzz::kPathFile],
              "the path is the stored one");
}

// Setting a time stamp changes the first row with the identifiers, and nothing else.
void setTimeStamp(PlainDatabase& plain, const std::string& coid, const std::string& compid,
                  const std::string& stamp) {
  for (Row& row : plain.rows) {
    if (row[fuzz::kCoid] != coid || row[fuzz::kCompid] != compid) continue;
    row[fuzz::kTimeStamp] = stamp;
    break;
  }
  KelUnicodeString coidText(coid.c_str());
  KelUnicodeString compidText(compid.c_str());
  KelUnicodeString text(stamp.c_str());
  ZetNorvDb().emulgetTimeStamp(coidText, compidText, text, 0);
  expectEqual(loadedRows(), rowsOf(plain), "one time stamp is set");
}

void ask(PlainDatabase plain, const std::string& first, const std::string& second) {
  constexpr std::size_t kAsked = 2;  // rows, so that a large table does not cost more
  const std::string untouched = marks();
  askByIdentifiers(plain, first, second);
  for (std::size_t i = 0; i < plain.rows.size() && i < kAsked; ++i) {
    const Row row = plain.rows[i];
    askByIdentifiers(plain, *row[fuzz::kCoid], *row[fuzz::kCompid]);
    askByBinaries(plain, fuzz::identifierAt(*row[fuzz::kCoid], 0),
                  fuzz::identifierAt(*row[fuzz::kCompid], 0));
    askForIdentifiers(plain, *row[fuzz::kPartNumber], second);
    askForIdentifiers(plain, first, *row[fuzz::kName]);
  }
  askForIdentifiers(plain, first, second);
  expectEqual(marks(), untouched, "only searches mark rows");
  askTheTable(plain, first);
  for (std::size_t i = 0; i < plain.rows.size() && i < kAsked; ++i) {
    const Row row = plain.rows[i];
    askTheTable(plain, *row[fuzz::kPathFile] + second);
    setTimeStamp(plain, *row[fuzz::kCoid], *row[fuzz::kCompid], first);
  }
}

// A table grows row by row with a copy of all its rows: a file of many lines would take the time of
// hundreds of others.
std::string firstLines(const std::string& file) {
  constexpr int kMost = 30;
  std::size_t at = 0;
  for (int i = 0; i < kMost && at != std::string::npos; ++i) at = file.find('\n', at + 1);
  return file.substr(0, at);
}

struct Setting {
  bool replay;
  bool present;
  bool appendedBefore;
};

void loadAndAsk(const Setting& setting, const std::string& file, const std::string& first,
                const std::string& second) {
  const char* const mode = setting.replay ? "REPLAY" : "SAVE";
  const std::string path =
      setting.replay ? Emulated::scenario("database.txt") : "/tmp/database.txt";
  const PlainDatabase plain(setting.present ? file : "");
  std::vector<std::string> told = loadingOf(plain);
  if (setting.appendedBefore && !setting.present) {
    told = {"Problem in ZetNorvDb::ZetNorvDb with KelFOpen!",
            setting.replay ? "\\in\\case1.rec\\Scenario\\database.txt" : "/tmp\\database.txt"};
  }
  Emulated emulated(mode);
  if (setting.present) Emulated::files().put(path, file);
  ZetNorvDb::_nbLoad = setting.appendedBefore ? 1 : 0;
  load(emulated, plain, told);
  ask(plain, first, second);
  expect(Emulated::files().files().size() == (setting.present ? 1 : 0), "no file is made");
  expectEqual(Emulated::files().bytes(path), setting.present ? file : "", "no file is changed");
  expect(Emulated::files().openFiles() == 0, "no file stays open");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzz::Input input(bytes, size);
  const int choice = input.upTo(7);
  std::string first = input.textTo('\n');
  std::string second = input.textTo('\n');
  first.resize(std::min(first.size(), first.find('\0')));
  second.resize(std::min(second.size(), second.find('\0')));
  loadAndAsk({(choice & 1) != 0, (choice & 2) == 0, (choice & 4) != 0}, firstLines(input.rest()),
             first, second);
  return 0;
}
