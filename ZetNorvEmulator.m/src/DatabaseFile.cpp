#include "DatabaseFile.h"

#include <cstddef>
#include <sstream>
#include <utility>

#include "KelFile.h"
#include "KelLib.h"
#include "MFile.h"
#include "TableRoom.h"
#include "ZetNorvDb_Record.h"
#include "ZetNorvTrace.h"

namespace zetnorv {

namespace {

constexpr int kFields = 9;
constexpr int kColumns = 10;

// Closes the file also when there is no memory for what is in it.
class ClosedAtEnd {
 public:
  explicit ClosedAtEnd(MFile& file) : _file(file) {}
  ~ClosedAtEnd() { _file.close(); }
  ClosedAtEnd(const ClosedAtEnd&) = delete;
  ClosedAtEnd& operator=(const ClosedAtEnd&) = delete;

 private:
  MFile& _file;
};

// Reads all of the open file and closes it. Rows are made of what is known to be whole only: of a
// line that broke off, the last field would be taken as far as it goes.
long readAll(MFile& source, std::string& text) {
  const ClosedAtEnd closed(source);
  int size = 0;
  if (KelFSize(source._descriptor, &size) != S_OK) return E_FAIL;
  text.resize(static_cast<std::size_t>(size));
  const long result = KelFRead(source._descriptor, text.data(), size, &size);
  text.resize(static_cast<std::size_t>(size));
  return result;
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

// How many of the lines become rows.
int rowsIn(const std::string& text) {
  std::istringstream lines(text);
  std::string fields;
  int rows = 0;
  for (std::string line; std::getline(lines, line);) {
    if (splitFields(MString(line.c_str()), fields)) ++rows;
  }
  return rows;
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
  std::string text;
  if (readAll(source, text) != S_OK) {
    ZetNorvTrace.TraPutLN(2, "Problem in ZetNorvDb::ZetNorvDb with KelFRead!");
    return S_OK;
  }
  makeRoom(table, rowsIn(text));
  std::istringstream lines(std::move(text));
  for (std::string line; std::getline(lines, line);) addRow(MString(line.c_str()), table);
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
