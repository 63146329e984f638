#include "DatabaseFile.h"

#include <cstring>

#include "KelLib.h"
#include "MFile.h"
#include "ZetNorvDb_Record.h"
#include "ZetNorvTrace.h"

namespace zetnorv {

namespace {

constexpr int kFields = 9;
constexpr int kColumns = 10;
constexpr int kPieceBytes = 1024;

// Reads a line of any length, with its line feed. False at the end of the file.
bool readLine(MFile& file, std::string& line) {
  line.clear();
  char piece[kPieceBytes] = {};
  while (file.gets(piece, kPieceBytes) == S_OK) {
    const std::size_t length = std::strlen(piece);
    line.append(piece, length);
    const bool cutByBuffer = length == kPieceBytes - 1 && piece[length - 1] != '\n';
    if (!cutByBuffer) return true;
  }
  return !line.empty();
}

// Puts the fields of `line` with a comma behind each into `fields`. False when one is missing or
// empty.
bool splitFields(MString line, std::string& fields) {
  fields.clear();
  line.spSplit('<', '>');
  for (int i = 0; i < kFields; ++i) {
    const MString field = line.spSplitNext();
    if (field.isNull()) return false;
    fields.append(field.gchar()).append(",");
  }
  return true;
}

void addRow(const MString& line, ZetNorvDb_Table& table) {
  std::string fields;
  if (!splitFields(line, fields)) return;
  ZetNorvTrace.TraPutLN(2, line.gchar());
  ZetNorvTrace.TraPutLN(2, (fields + "O").c_str());
  ZetNorvDb_Record record(kColumns, line, 1);
  record.print();
  table.add(record);
}

}  // namespace

MString databaseFile(const MString& directory) {
  MString file(directory);
  file + MString("\\database.txt");
  return file;
}

long readDatabase(const MString& file, ZetNorvDb_Table& table) {
  MFile source;
  if (source.open(file.gchar(), "r") != S_OK) return E_FAIL;
  std::string line;
  while (readLine(source, line)) addRow(MString(line.c_str()), table);
  source.close();
  return S_OK;
}

long appendToDatabase(const MString& file, const std::string& line, int& openings) {
  MFile target;
  if (target.open(file.gchar(), "a+") != S_OK) {
    ZetNorvTrace.TraPutLN(2, "buildDB : Problem with KelFOpen!");
    return E_FAIL;
  }
  ++openings;
  const long written = target.puts(line.c_str());
  const long closed = target.close();
  if (written != S_OK || closed != S_OK) {
    ZetNorvTrace.TraPutLN(2, "buildDB : Problem with KelFPuts!");
    return E_FAIL;
  }
  return S_OK;
}

}  // namespace zetnorv
