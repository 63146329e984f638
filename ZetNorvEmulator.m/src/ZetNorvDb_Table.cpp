#include "ZetNorvDb_Table.h"

#include <memory>
#include <new>

#include "DatabaseColumns.h"
#include "KelLib.h"
#include "NullReference.h"
#include "OwningArray.h"
#include "TableRoom.h"
#include "ZetNorvTrace.h"

namespace {

constexpr int kFirstSlots = 3;

// A mark as a new row has it: an empty text cut at its commas, which reads "NULL".
std::unique_ptr<ZetNorvDb_Record> newMark() {
  return std::unique_ptr<ZetNorvDb_Record>(
      zetnorv::noted(new (std::nothrow) ZetNorvDb_Record(1, MString(""), 0)));
}

// The index of the first column whose whole name is a beginning of `column`, or -1.
int findColumn(const ZetNorvDb_Record& header, const char* column) {
  for (int k = 0; k < header._nbData; ++k) {
    if (header._data[k].compare(column)) return k;
  }
  return -1;
}

// Whether a search may select the row: a refused allocation has left a null row or mark, and rows
// handed to add() may be shorter than the header.
bool searchable(const ZetNorvDb_Record* row, const ZetNorvDb_Record* mark, int k) {
  return row != nullptr && k < row->_nbData && mark != nullptr && mark->_nbData > 0;
}

// Whether the search goes on behind a row that it has selected: a row that is no reference may
// follow.
bool isReference(const ZetNorvDb_Record& row) {
  return row._nbData <= zetnorv::kPathFile || row._data[zetnorv::kPathFile].compare("Reference");
}

// Makes a full table larger by `slots`. False, with its content as it was, when that is refused.
bool grow(ZetNorvDb_Table& table, int slots) {
  int rowCapacity = table._capacity;
  int markCapacity = table._capacity;
  if (!zetnorv::growSlotsByCopying(table._rows, table._nbRows, rowCapacity, slots) ||
      !zetnorv::growSlotsByCopying(table._marks, table._nbRows, markCapacity, slots)) {
    return false;
  }
  table._capacity = rowCapacity;
  return true;
}

}  // namespace

namespace zetnorv {

void makeRoom(ZetNorvDb_Table& table, int count) {
  const int missing = count - (table._capacity - table._nbRows);
  if (missing < 1) return;
  // The free slots are taken into account, so that the table counts as full.
  const int capacity = table._capacity;
  table._capacity = table._nbRows;
  if (!grow(table, count)) table._capacity = capacity;
}

}  // namespace zetnorv

ZetNorvDb_Table::ZetNorvDb_Table(int n, MString header)
    : ZetNorvDb_Record(n, header, 0),
      _rows(zetnorv::newSlots<ZetNorvDb_Record>(kFirstSlots)),
      _marks(zetnorv::newSlots<ZetNorvDb_Record>(kFirstSlots)),
      _capacity(_rows == nullptr || _marks == nullptr ? 0 : kFirstSlots) {}

ZetNorvDb_Table::ZetNorvDb_Table(const ZetNorvDb_Table& o) : ZetNorvDb_Record(o) {
  if (zetnorv::isNullReference(o) || &o == this) return;
  _rows = o._rows;
  _marks = o._marks;
  _capacity = o._capacity;
  _nbRows = o._nbRows;
}

ZetNorvDb_Table& ZetNorvDb_Table::operator=(const ZetNorvDb_Table& o) {
  ZetNorvDb_Record::operator=(o);
  if (zetnorv::isNullReference(o)) return *this;
  _rows = o._rows;
  _marks = o._marks;
  _capacity = o._capacity;
  _nbRows = o._nbRows;
  return *this;
}

ZetNorvDb_Table::~ZetNorvDb_Table() { Release(); }

void ZetNorvDb_Table::Release() {
  zetnorv::releaseSlots(_rows, _nbRows);
  zetnorv::releaseSlots(_marks, _nbRows);
  _capacity = 0;
  _nbRows = 0;
}

void ZetNorvDb_Table::print() const {
  ZetNorvDb_Record::print();
  for (int i = 0; i < _nbRows; ++i) {
    if (_rows[i] != nullptr) _rows[i]->print();
  }
}

long ZetNorvDb_Table::getStructure(ZetNorvDb_Record& out) const {
  if (_nbData < 1) return E_FAIL;
  out = *this;
  return S_OK;
}

long ZetNorvDb_Table::getRecord(int i, ZetNorvDb_Record& out) const {
  if (i < 0 || i >= _nbRows || _rows[i] == nullptr) return E_FAIL;
  out = *_rows[i];
  return S_OK;
}

long ZetNorvDb_Table::setRecord(int i, ZetNorvDb_Record& rec) {
  if (zetnorv::isNullReference(rec) || rec._nbData < 1) return E_FAIL;
  if (i < 0 || i >= _nbRows || _rows[i] == nullptr) return E_FAIL;
  *_rows[i] = rec;
  return S_OK;
}

long ZetNorvDb_Table::getRecord(const char* column, const char* value, ZetNorvDb_Record& out,
                                int trace) {
  const bool tracing = trace == 1;
  if (tracing) {
    ZetNorvTrace.TraPutLN(2, "## Informations: ");
    ZetNorvTrace.TraPutLN(2, column);
    ZetNorvTrace.TraPutLN(2, value);
  }
  const int k = findColumn(*this, column);
  if (tracing) ZetNorvTrace.TraPutLN(2, "Valeur de la colonne k: ", k);
  if (k == -1) return E_FAIL;

  // `out` is written at the end only: `value` may be one of its fields.
  const ZetNorvDb_Record* selected = nullptr;
  bool reference = true;
  for (int i = 0; i < _nbRows && reference; ++i) {
    if (!searchable(_rows[i], _marks[i], k) || !_rows[i]->_data[k].compare(value)) continue;
    if (tracing) ZetNorvTrace.TraPutLN(2, "ligne trouve en i ", i);
    selected = _rows[i];
    _marks[i]->setData(0, MString("read"));
    reference = isReference(*selected);
  }
  // Said also behind a reference that was found.
  if (reference && tracing) ZetNorvTrace.TraPutLN(2, "Rien dans la base. ");
  if (selected == nullptr) return E_FAIL;
  out = *selected;
  return S_OK;
}

long ZetNorvDb_Table::add(ZetNorvDb_Record& rc) {
  if (zetnorv::isNullReference(rc)) {
    ZetNorvTrace.TraPutLN(2, "MiniDB::add: rc == NULL");
    return E_FAIL;
  }
  // Copied before the table grows, since growing destroys the row that `rc` may be.
  std::unique_ptr<ZetNorvDb_Record> row(zetnorv::newCopy(&rc));
  std::unique_ptr<ZetNorvDb_Record> mark = newMark();

  if (!grow(*this, 1)) return E_FAIL;
  _rows[_nbRows] = row.release();
  _marks[_nbRows] = mark.release();
  ++_nbRows;
  return S_OK;
}

long ZetNorvDb_Table::addRecord(MString line) {
  if (line.isNull()) {
    ZetNorvTrace.TraPutLN(2, "MiniDB::addRecord: data == NULL");
    return E_FAIL;
  }
  ZetNorvDb_Record row(_nbData, line, 0);
  return add(row);
}
