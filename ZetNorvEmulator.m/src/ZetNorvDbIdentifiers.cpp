// What the client asks the database to learn an object's identifiers, and identifiers as text.
#include <algorithm>
#include <cstddef>
#include <cstring>

#include "DatabaseColumns.h"
#include "Guard.h"
#include "KelLib.h"
#include "ZetNorvDb.h"
#include "ZetNorvTrace.h"

using zetnorv::guarded;
using zetnorv::kCoid;
using zetnorv::kCompid;
using zetnorv::kName;
using zetnorv::kPartNumber;

namespace {

// An identifier: characters of its text, and bytes.
constexpr int kIdentifierText = 16;
constexpr int kIdentifierBytes = 8;

// A text to search by: a null one, which finds nothing, when no text was ever given. An empty text
// is a beginning of everything.
MString searchText(const KelUnicodeString& text) {
  return text.IsNull() ? MString() : MString(text.ConvertToChar());
}

// The identifier in the 16 characters from `start` on. Missing characters count as characters that
// are no hexadecimal digit.
KelDbBinary identifierAt(const char* text, int length, int start) {
  unsigned char hex[kIdentifierText] = {};
  const int available = std::clamp(length - start, 0, kIdentifierText);
  if (available > 0) std::memcpy(hex, text + start, static_cast<std::size_t>(available));
  unsigned char bytes[kIdentifierBytes] = {};
  int size = kIdentifierBytes;
  ZetNorvdrhxch(kIdentifierText, hex, size, bytes);
  return KelDbBinary(bytes, size);
}

KelDbBinary identifierOf(const KelUnicodeString& ident) {
  const char* text = ident.ConvertToChar();
  return identifierAt(text, static_cast<int>(std::strlen(text)), 0);
}

// The row's identifiers as one text: the coid directly followed by the compid.
MString identifierText(const ZetNorvDb_Record& row) {
  MString text = row._data[kCoid];
  text + row._data[kCompid];
  return text;
}

KelDbBinary coidIn(const MString& text) { return identifierAt(text.gchar(), text.glength(), 0); }

KelDbBinary compidIn(const MString& text) {
  return identifierAt(text.gchar(), text.glength(), kIdentifierText);
}

// Copies row `i` to `row`; false for rows that are too short to be searched by part number or name.
bool namedRow(int i, ZetNorvDb_Record& row) {
  return ZetNorvDb::_database.getRecord(i, row) == S_OK && row.getSize() > kName;
}

// Whether `searched`, a text that was given, is a beginning of the field.
bool begins(const MString& searched, const MString& field) {
  return !searched.isNull() && searched == field;
}

}  // namespace

long ZetNorvDb::getCOIDCOMPID(KelUnicodeString partNumber, KelUnicodeString name, KelDbBinary& coid,
                              KelDbBinary& compid) {
  return guarded("ZetNorvDb::getCOIDCOMPID", [&] {
    const MString searchedPart = searchText(partNumber);
    const MString searchedName = searchText(name);
    ZetNorvDb_Record row;
    for (int i = 0; i < _database.getSize(); ++i) {
      if (!namedRow(i, row)) continue;
      ZetNorvTrace.TraPutLN(2, row._data[kPartNumber].gchar());
      if (!begins(searchedPart, row._data[kPartNumber]) &&
          !begins(searchedName, row._data[kName])) {
        continue;
      }
      ZetNorvTrace.TraPutLN(
          4, "QueryForCoidCompid pour la part , on a trouve COID : ", row._data[kCoid].gchar());
      const MString text = identifierText(row);
      coid = coidIn(text);
      compid = compidIn(text);
      return S_OK;
    }
    return E_FAIL;
  });
}

long ZetNorvDb::getCOMPID(KelUnicodeString name, KelDbBinary coid, KelDbBinary& compid) {
  return guarded("ZetNorvDb::getCOMPID", [&] {
    const MString searchedCoid(coid.GetHexaValue().ConvertToChar());
    const MString searchedName = searchText(name);
    ZetNorvDb_Record row;
    for (int i = 0; i < _database.getSize(); ++i) {
      if (!namedRow(i, row)) continue;
      if (!begins(searchedCoid, row._data[kCoid]) || !begins(searchedName, row._data[kName])) {
        continue;
      }
      ZetNorvTrace.TraPutLN(
          4, "QueryForCoidCompid pour le doc , on a trouve COMPID : ", row._data[kCompid].gchar());
      compid = compidIn(identifierText(row));
      break;
    }
    // Also when it was found: callers compare `compid` with what they set beforehand.
    return E_FAIL;
  });
}

KelDbBinary ZetNorvDb::GetCoid(const KelUnicodeString& ident) { return Get_coid(ident); }

KelDbBinary ZetNorvDb::GetCompid(const KelUnicodeString& ident) { return Get_compid(ident); }

KelDbBinary ZetNorvDb::Get_coid(const KelUnicodeString& ident) {
  KelDbBinary coid;
  guarded("ZetNorvDb::GetCoid", [&] {
    coid = identifierOf(ident.SubString(0, kIdentifierText));
    return S_OK;
  });
  return coid;
}

KelDbBinary ZetNorvDb::Get_compid(const KelUnicodeString& ident) {
  KelDbBinary compid;
  guarded("ZetNorvDb::GetCompid", [&] {
    compid = identifierOf(ident.SubString(kIdentifierText, kIdentifierText));
    return S_OK;
  });
  return compid;
}
