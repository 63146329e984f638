#include "ZetNorvDb_Record.h"

#include "KelLib.h"
#include "NullReference.h"
#include "OwningArray.h"
#include "ZetNorvTrace.h"

namespace {

// Gives `record`, which has no fields, `n` null ones: none when they are refused or `n` is below 1.
void allocateFields(ZetNorvDb_Record& record, int n) {
  record._data = zetnorv::newElements<MString>(n);
  record._nbData = record._data == nullptr ? 0 : n;
}

// Gives `record`, which has no fields, copies of those of `o`.
void copyFields(ZetNorvDb_Record& record, const ZetNorvDb_Record& o) {
  allocateFields(record, o._nbData);
  for (int i = 0; i < record._nbData; ++i) record._data[i] = o._data[i];
}

}  // namespace

ZetNorvDb_Record::ZetNorvDb_Record(int n, MString text, int mode) {
  allocateFields(*this, n);
  if (mode != 0) {
    text.spSplit('<', '>');
    for (int i = 0; i < _nbData; ++i) _data[i] = text.spSplitNext();
    return;
  }
  text.split(',');
  for (int i = 0; i < _nbData; ++i) _data[i] = text.splitNext();
}

ZetNorvDb_Record::ZetNorvDb_Record(const ZetNorvDb_Record& o) {
  if (zetnorv::isNullReference(o) || &o == this) return;
  copyFields(*this, o);
}

ZetNorvDb_Record& ZetNorvDb_Record::operator=(const ZetNorvDb_Record& o) {
  if (zetnorv::isNullReference(o) || &o == this) {
    // Let go, not freed: whoever holds the array goes on reading it.
    _data = nullptr;
    _nbData = 0;
    return *this;
  }
  Release();
  copyFields(*this, o);
  return *this;
}

ZetNorvDb_Record::~ZetNorvDb_Record() { Release(); }

void ZetNorvDb_Record::Release() {
  zetnorv::releaseElements(_data);
  _nbData = 0;
}

long ZetNorvDb_Record::getData(int i, MString& out) const {
  if (i < 0 || i >= _nbData) return E_FAIL;
  out = _data[i];
  return S_OK;
}

long ZetNorvDb_Record::setData(int i, MString value) {
  if (i < 0 || i >= _nbData) return E_FAIL;
  _data[i] = value;
  return S_OK;
}

void ZetNorvDb_Record::print() const {
  for (int i = 0; i < _nbData; ++i) {
    if (_data[i].isNull()) {
      ZetNorvTrace.TraPutLN(2, "Problem _data[i] == NULL");
      continue;
    }
    _data[i].print();
  }
}
