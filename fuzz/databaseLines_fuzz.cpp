// "database.txt", whatever is in it: the rows and the search against a plain second reading.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Emulated.h"
#include "Expect.h"
#include "FuzzInput.h"
#include "KelLib.h"
#include "Tokens.h"

using fuzz::Emulated;
using fuzz::expect;
using fuzz::expectEqual;

namespace {

using Row = std::vector<std::string>;

constexpr std::size_t kFields = 9;
constexpr std::size_t kColumns = 10;
constexpr const char* kNames[kColumns] = {"coid", "compid", "partNumber", "name",      "pathFile",
                                          "uuid", "table",  "type",       "timestamp", "info"};
constexpr std::size_t kPathFile = 4;

// A row for every line whose first nine groups are all there.
std::vector<Row> rowsOf(const std::string& text) {
  std::vector<Row> rows;
  for (const std::string& line : fuzz::cutAt('\n', text)) {
    const Row cells = fuzz::cutBrackets(fuzz::firstLine(line), '<', '>', kColumns);
    bool complete = true;
    for (std::size_t i = 0; i < kFields; ++i) complete = complete && cells[i] != fuzz::kNoToken;
    if (complete) rows.push_back(cells);
  }
  return rows;
}

std::string cellOf(const ZetNorvDb_Record& row, int i) {
  MString cell;
  expect(row.getData(i, cell) == S_OK, "a row has ten cells");
  if (cell.isNull() != 0) return fuzz::kNoToken;
  return fuzz::textOf(cell);
}

void sameRow(const ZetNorvDb_Record& row, const Row& expected) {
  expect(row.getSize() == static_cast<int>(kColumns), "a row has ten cells");
  for (std::size_t i = 0; i < kColumns; ++i) {
    expectEqual(cellOf(row, static_cast<int>(i)), expected[i], "a cell is what the line says");
  }
}

bool isBeginning(const std::string& cell, const std::string& value) {
  return cell == fuzz::kNoToken ? true : value.starts_with(cell);
}

// The first row with that beginning that is no reference, else the last one.
int search(const std::vector<Row>& rows, std::size_t column, const std::string& value) {
  int found = -1;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (!isBeginning(rows[i][column], value)) continue;
    found = static_cast<int>(i);
    if (!isBeginning(rows[i][kPathFile], "Reference")) break;
  }
  return found;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzz::Input input(bytes, size);
  const auto column = static_cast<std::size_t>(input.upTo(9));
  const std::string value = fuzz::firstLine(input.textTo('\n'));
  const std::string text = input.rest();
  const std::vector<Row> rows = rowsOf(text);

  Emulated emulated("REPLAY");
  Emulated::files().put(Emulated::scenario("database.txt"), text);
  // The second time does nothing.
  for (int time = 0; time < 2; ++time) {
    const ZetNorvDb database;
    expect(ZetNorvDb::_database.getSize() == static_cast<int>(rows.size()), "the rows are as many");
  }
  for (std::size_t i = 0; i < rows.size(); ++i) {
    ZetNorvDb_Record row;
    expect(ZetNorvDb::_database.getRecord(static_cast<int>(i), row) == S_OK, "a row is there");
    sameRow(row, rows[i]);
  }
  ZetNorvDb_Record found;
  const int expected = search(rows, column, value);
  const long result = ZetNorvDb().getRecord(kNames[column], value.c_str(), found, 1);
  expect((result == S_OK) == (expected >= 0), "what is there is found");
  if (expected >= 0) sameRow(found, rows[static_cast<std::size_t>(expected)]);
  expectEqual(Emulated::files().bytes(Emulated::scenario("database.txt")), text,
              "the file is as it was");
  expect(Emulated::files().openFiles() == 0, "no file is left open");
  return 0;
}
