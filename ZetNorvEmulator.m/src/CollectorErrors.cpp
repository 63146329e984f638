#include "CollectorErrors.h"

#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "Guard.h"
#include "MFile.h"
#include "NullReference.h"
#include "OwningArray.h"
#include "ZetNorvToolBox.h"

using zetnorv::isNullReference;

namespace {

constexpr int kIncrement = 5;
constexpr int kErrorCode = 10;
// The bytes of a message before its text.
constexpr int kHeaderBytes = 4;

const char* textOf(const MString& text) { return text.isNull() ? "" : text.gchar(); }

void printRecord(const ErrorRecord& record) {
  record.name.print();
  record.details.println();
}

// The number with two digits at least.
std::string twoDigits(int number) {
  std::string digits = std::to_string(number);
  if (digits.size() < 2) digits.insert(digits.begin(), '0');
  return digits;
}

// The text of the message behind its header, up to its first NUL.
std::string messageText(const char* buffer, int size) {
  if (buffer == nullptr || size <= kHeaderBytes) return {};
  return std::string(buffer + kHeaderBytes, std::find(buffer + kHeaderBytes, buffer + size, '\0'));
}

// The section of one run. A missing record has no line, and the ones behind it keep their numbers.
std::string sectionOf(const CollectorErrors& findings, int messageNumber, const char* buffer,
                      int size) {
  std::string text;
  text.append("\n###########   Message ").append(twoDigits(messageNumber)).append(" \n");
  text.append("\n## Taille ").append(std::to_string(size)).append(" \n## Buf:\n");
  text.append(messageText(buffer, size)).append("\n## Fin buf\n");
  for (int i = 0; i < findings._nbRecords; ++i) {
    const ErrorRecord* record = findings._records[i];
    if (record == nullptr) continue;
    text.append(std::to_string(findings._messageNumber)).append(" - ");
    text.append(std::to_string(i)).append(" ");
    text.append(textOf(record->name)).append(" ");
    text.append(textOf(record->details)).append("\n");
  }
  return text;
}

long appendToFile(const MString& path, const std::string& text) {
  MFile file;
  if (file.open(path.gchar(), "a+") != S_OK) {
    ZetNorvTrace.TraPutLN(2, "Problem with KelFOpen writeLogFile!");
    return E_FAIL;
  }
  const long written = file.puts(text.c_str());
  const long closed = file.close();
  if (written != S_OK || closed != S_OK) {
    ZetNorvTrace.TraPutLN(2, "Problem with KelFPuts writeLogFile!");
    return E_FAIL;
  }
  return S_OK;
}

}  // namespace

CollectorErrors::CollectorErrors(int messageNumber) : _messageNumber(messageNumber) {
  _records = zetnorv::newSlots<ErrorRecord>(_capacity);
}

CollectorErrors::CollectorErrors(const CollectorErrors& o) {
  if (isNullReference(o) || &o == this) {
    _records = zetnorv::newSlots<ErrorRecord>(_capacity);
    return;
  }
  _messageNumber = o._messageNumber;
  _capacity = o._capacity;
  _records = zetnorv::copySlots(o._records, o._nbRecords, o._capacity);
  if (_records != nullptr) _nbRecords = o._nbRecords;
}

CollectorErrors& CollectorErrors::operator=(const CollectorErrors& o) {
  if (isNullReference(o)) return *this;
  _messageNumber = o._messageNumber;
  _records = o._records;
  _nbRecords = o._nbRecords;
  _capacity = o._capacity;
  return *this;
}

CollectorErrors::~CollectorErrors() {
  zetnorv::releaseSlots(_records, _nbRecords);
  _messageNumber = 0;
  _nbRecords = 0;
  _capacity = 0;
}

void CollectorErrors::addError(int code, const char* name, const char* details) {
  if (name == nullptr) ZetNorvTrace.TraPutLN(2, "addError: name == NULL");
  if (details == nullptr) ZetNorvTrace.TraPutLN(2, "addError: details == NULL");
  std::unique_ptr<ErrorRecord> record(
      zetnorv::noted(new (std::nothrow) ErrorRecord(code, name, details)));
  zetnorv::appendSlot(_records, _nbRecords, _capacity, kIncrement, std::move(record));
}

int CollectorErrors::isEmpty() const {
  for (int i = 0; i < _nbRecords; ++i) {
    if (_records[i] != nullptr && _records[i]->code == kErrorCode) return 0;
  }
  return 1;
}

void CollectorErrors::print() const {
  ZetNorvTrace.TraPutLN(2, "## Resultat(s) du test: ");
  ZetNorvTrace.TraPutLN(2, "## Message Num ", _messageNumber);
  ZetNorvTrace.TraPutLN(2, "## Warning: ");
  for (int i = 0; i < _nbRecords; ++i) {
    if (_records[i] != nullptr && _records[i]->code < kErrorCode) printRecord(*_records[i]);
  }
  ZetNorvTrace.TraPutLN(2, "## Error: ");
  for (int i = 0; i < _nbRecords; ++i) {
    if (_records[i] != nullptr && _records[i]->code == kErrorCode) printRecord(*_records[i]);
  }
  ZetNorvTrace.TraPutLN(2, "## end of CollectorErrors.print().");
}

long CollectorErrors::writeLogFile(int messageNumber, const char* buffer, int size) const {
  if (ZetNorvToolBox::inDebugMode() == S_OK) return S_OK;
  // Empty, not null: nothing can be appended to a null string, and the directory may stay empty.
  MString path("");
  if (ZetNorvToolBox::getErrPath(path) != S_OK) {
    // The line names another directory than the one asked for; those who search their traces know
    // it so.
    ZetNorvTrace.TraPutLN(2,
                          "Problem in CollectorErrors::writeLogFile with "
                          "ZetNorvToolBox::getRefPath");
    return E_FAIL;
  }
  path + MString("\\error.log");
  return zetnorv::guarded("CollectorErrors::writeLogFile", [&] {
    return appendToFile(path, sectionOf(*this, messageNumber, buffer, size));
  });
}
