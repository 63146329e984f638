#include "DataBalise.h"

#include <cstddef>
#include <string>
#include <string_view>

#include "Guard.h"
#include "NullReference.h"
#include "OwningArray.h"

namespace {

constexpr int kIncrement = 15;

}  // namespace

int DataBalise::_nbInstances = 0;

DataBalise::DataBalise(const char* tagName, const char* fatherName)
    : name(tagName), father(fatherName) {
  _attributs = zetnorv::newSlots<DataAttribut>(_capacity);
  ++_nbInstances;
}

DataBalise::DataBalise(const DataBalise& o) : DataBalise(nullptr, nullptr) { *this = o; }

DataBalise& DataBalise::operator=(const DataBalise& o) {
  if (zetnorv::isNullReference(o) || &o == this) return *this;
  name = o.name;
  father = o.father;
  zetnorv::releaseSlots(_attributs, _nbAttributs);
  _attributs = zetnorv::copySlots(o._attributs, o._nbAttributs, o._capacity);
  _nbAttributs = _attributs == nullptr ? 0 : o._nbAttributs;
  _capacity = o._capacity;
  return *this;
}

DataBalise::~DataBalise() {
  zetnorv::releaseSlots(_attributs, _nbAttributs);
  --_nbInstances;
}

void DataBalise::setAttributs(const char* list) {
  if (list == nullptr) return;
  zetnorv::guarded("DataBalise::setAttributs", [&] {
    const std::string_view names(list);
    std::size_t begin = 0;
    while (begin <= names.size()) {
      const std::size_t blank = names.find(' ', begin);
      const std::string piece(names.substr(begin, blank - begin));
      zetnorv::appendCopy(_attributs, _nbAttributs, _capacity, kIncrement,
                          DataAttribut(piece.c_str()));
      if (blank == std::string_view::npos) break;
      begin = blank + 1;
    }
    return S_OK;
  });
}
