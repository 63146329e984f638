// What the client asks the database about an object that it knows: each query walks the table's
// rows in order and looks at a copy of each.
#include "DatabaseColumns.h"
#include "Guard.h"
#include "KelLib.h"
#include "ZetNorvDb.h"
#include "ZetNorvToolBox.h"
#include "ZetNorvTrace.h"

using zetnorv::guarded;
using zetnorv::kCoid;
using zetnorv::kCompid;
using zetnorv::kPartNumber;
using zetnorv::kPathFile;
using zetnorv::kTimeStamp;
using zetnorv::kType;

namespace {

constexpr const char* kGotTimeStamp = "Got the timestamp";

// How one query by identifiers differs from the others.
struct Lookup {
  const char* firstLine;
  const char* foundLine;
  int leastFields;  // rows of fewer are passed over
  int column;       // what is asked for
};

// The column's field; an empty text when the row is too short for it.
KelUnicodeString fieldText(const ZetNorvDb_Record& row, int column) {
  MString field;
  row.getData(column, field);
  return KelUnicodeString(field.isNull() ? "" : field.gchar());
}

bool hasIdentifiers(const ZetNorvDb_Record& row, const KelUnicodeString& coid,
                    const KelUnicodeString& compid) {
  return row.getSize() > kCompid && coid == fieldText(row, kCoid) &&
         compid == fieldText(row, kCompid);
}

// Copies the first row of at least `leastFields` fields with these identifiers to `row`. Returns
// its index, or -1 when there is none.
int findObject(const KelUnicodeString& coid, const KelUnicodeString& compid, int leastFields,
               ZetNorvDb_Record& row) {
  for (int i = 0; i < ZetNorvDb::_database.getSize(); ++i) {
    if (ZetNorvDb::_database.getRecord(i, row) != S_OK) continue;
    if (row.getSize() >= leastFields && hasIdentifiers(row, coid, compid)) return i;
  }
  return -1;
}

// Hands `value` out and tells so, on the trace and in its debug log.
void answer(const char* foundLine, const KelUnicodeString& value, KelUnicodeString& out) {
  out = value;
  ZetNorvTrace.TraPutLN(2, foundLine);
  ZetNorvTrace.TraPutLN(2, value.ConvertToChar());
  ZetNorvToolBox::writeLog(value.ConvertToChar());
}

long lookUp(const Lookup& query, const KelUnicodeString& coid, const KelUnicodeString& compid,
            KelUnicodeString& out) {
  ZetNorvTrace.TraPutLN(2, query.firstLine);
  ZetNorvDb_Record row;
  if (findObject(coid, compid, query.leastFields, row) < 0) return E_FAIL;
  answer(query.foundLine, fieldText(row, query.column), out);
  return S_OK;
}

// Sets the time stamp of `row`, the copy of row `index`, and puts it back: rows without the column
// stay as they are.
void putTimeStamp(int index, ZetNorvDb_Record& row, const KelUnicodeString& timeStamp) {
  row.setData(kTimeStamp, MString(timeStamp.ConvertToChar()));
  ZetNorvDb::_database.setRecord(index, row);
}

// One line for every row with these identifiers: only the first of them was written, and the trace
// shows how many there are.
void traceTimeStamps(const KelUnicodeString& coid, const KelUnicodeString& compid) {
  ZetNorvDb_Record row;
  for (int i = 0; i < ZetNorvDb::_database.getSize(); ++i) {
    if (ZetNorvDb::_database.getRecord(i, row) != S_OK) continue;
    if (hasIdentifiers(row, coid, compid)) ZetNorvTrace.TraPutLN(2, kGotTimeStamp);
  }
}

// The number in `length` characters of a time stamp; 0 when there is none.
int numberAt(const KelUnicodeString& timeStamp, int start, int length) {
  int number = 0;
  timeStamp.SubString(start, length).ConvertToNum(&number, "%d");
  return number;
}

KelTime timeOf(const KelUnicodeString& timeStamp) {
  return KelTime(numberAt(timeStamp, 0, 4), numberAt(timeStamp, 5, 2), numberAt(timeStamp, 8, 2),
                 numberAt(timeStamp, 11, 2), numberAt(timeStamp, 14, 2),
                 numberAt(timeStamp, 17, 2));
}

}  // namespace

long ZetNorvDb::getType(KelDbBinary& coid, KelDbBinary& compid, KelUnicodeString& type) {
  return guarded("ZetNorvDb::getType", [&] {
    const Lookup query{"ZetNorvDb::getType", "Got the Type", 2, kType};
    return lookUp(query, coid.GetHexaValue(), compid.GetHexaValue(), type);
  });
}

long ZetNorvDb::getPartnumber(KelDbBinary& coid, KelDbBinary& compid,
                              KelUnicodeString& partNumber) {
  return guarded("ZetNorvDb::getPartnumber", [&] {
    const Lookup query{"ZetNorvDb::getPartnumber", "Got the Partnumber", 2, kPartNumber};
    return lookUp(query, coid.GetHexaValue(), compid.GetHexaValue(), partNumber);
  });
}

long ZetNorvDb::getpathFile(KelUnicodeString& coid, KelUnicodeString& compid,
                            KelUnicodeString& pathFile) {
  return guarded("ZetNorvDb::getpathFile", [&] {
    const Lookup query{"ZetNorvDb::getpathFile", "Got the pathFile", 7, kPathFile};
    return lookUp(query, coid, compid, pathFile);
  });
}

long ZetNorvDb::emulgetTimeStamp(KelUnicodeString& coid, KelUnicodeString& compid,
                                 KelUnicodeString& timeStamp, int mode) {
  return guarded("ZetNorvDb::emulgetTimeStamp", [&] {
    // Announced as getpathFile: readers of the trace know this query so.
    const Lookup query{"ZetNorvDb::getpathFile", kGotTimeStamp, 2, kTimeStamp};
    if (mode != 0) return lookUp(query, coid, compid, timeStamp);

    ZetNorvTrace.TraPutLN(2, query.firstLine);
    ZetNorvDb_Record row;
    const int index = findObject(coid, compid, query.leastFields, row);
    if (index < 0) return E_FAIL;
    putTimeStamp(index, row, timeStamp);
    traceTimeStamps(coid, compid);
    // The text is handed back empty; the caller keeps its own copy of what it wrote.
    answer(query.foundLine, KelUnicodeString(""), timeStamp);
    return S_OK;
  });
}

long ZetNorvDb::emulgetTimeStamp(KelUnicodeString& coid, KelUnicodeString& compid, KelTime** time,
                                 int mode) {
  if (time == nullptr) {
    ZetNorvTrace.TraPutLN(2, "ZetNorvDb::emulgetTimeStamp: time == NULL");
    return E_FAIL;
  }
  return guarded("ZetNorvDb::emulgetTimeStamp", [&] {
    ZetNorvDb database;
    KelUnicodeString timeStamp("");
    if (database.emulgetTimeStamp(coid, compid, timeStamp, mode) != S_OK) return E_FAIL;
    // What `*time` points to must outlive this call.
    static KelTime last(0, 0, 0, 0, 0, 0);
    last = timeOf(timeStamp);
    *time = &last;
    return S_OK;
  });
}

long ZetNorvDb::Find(const char* path, MString& pathFile) {
  ZetNorvDb database;
  ZetNorvDb_Record row;
  if (database.getRecord("pathFile", path, row, 0) != S_OK) return 1;
  row.getData(kPathFile, pathFile);
  return 0;
}

long ZetNorvDb::getRecord(const char* column, const char* value, ZetNorvDb_Record& out, int trace) {
  return _database.getRecord(column, value, out, trace);
}
