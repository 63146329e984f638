// The emulated database: documents and references taken from recorded answers, kept in the text
// file "database.txt" and in one table for the process, which answers what the client would ask the
// server.
//
// All state is static; an object is a way to it. Operations return S_OK or E_FAIL unless they say
// otherwise; nothing is thrown. Not synchronised: the client's exchange thread uses it.
#pragma once

#include "KelDbBinary.h"
#include "KelTime.h"
#include "KelUnicodeString.h"
#include "MString.h"
#include "ZetNorvDb_Record.h"
#include "ZetNorvDb_Table.h"
#include "ZetNorvExport.h"

class ZETNORV_EXPORT ZetNorvDb {
 public:
  // The first construction in a process reads "database.txt" into the table: the one in the
  // scenario directory in replay mode, the one in BIX_ZET_TMP otherwise. Later ones do nothing. A
  // missing file gives no rows; a construction that is not told the scenario directory leaves the
  // loading to the next one.
  ZetNorvDb();
  ~ZetNorvDb();

  // Appends one line to the scenario directory's "database.txt" for every complete Reference and
  // Document element of the answer: `size` bytes of XML at `buffer`. The table in memory is not
  // touched: what is appended is found by a later process. Values are written as they are, so one
  // with '<', '>' or a line feed in it reads back otherwise.
  //
  // Returns E_FAIL when the text cannot be parsed or a line cannot be written; the elements behind
  // that one get no line.
  long buildDB(const char* buffer, int size);

  // Copies the file of the last document that the request names (the "FilePath" of a Document
  // element) into the staging directory. `buffer` starts with the request's four header bytes.
  //
  // Returns S_OK also when no document is named or its file cannot be read; E_FAIL when the request
  // cannot be parsed or the reference directory is unknown.
  long buildTemp(const char* buffer, int size);

  // Finds the document or reference with these identifiers. `path` gets a new NUL-terminated text,
  // always empty (see the source), which the caller deletes with delete[]; `uuid` its uuid field.
  // E_FAIL, with both untouched, when no row matches.
  long getFile(KelDbBinary& coid, KelDbBinary& compid, char*& path, MString& uuid);

  // The "type" of the first row with these identifiers; empty when the row has none. E_FAIL, with
  // the output untouched, when no row has them; so for the next three.
  long getType(KelDbBinary& coid, KelDbBinary& compid, KelUnicodeString& type);
  // The "partNumber".
  long getPartnumber(KelDbBinary& coid, KelDbBinary& compid, KelUnicodeString& partNumber);
  // The "pathFile"; the identifiers are hexadecimal texts. Rows of fewer than 7 fields are passed
  // over.
  long getpathFile(KelUnicodeString& coid, KelUnicodeString& compid, KelUnicodeString& pathFile);
  // `mode` other than 0: gets the "timestamp". `mode` 0: sets it to the text of `timeStamp`, which
  // is handed back empty. The database file is not written.
  long emulgetTimeStamp(KelUnicodeString& coid, KelUnicodeString& compid,
                        KelUnicodeString& timeStamp, int mode);
  // Gets the "timestamp" as a time; with `mode` 0 it clears the row's time stamp. `*time` is
  // borrowed: valid until the next call of this operation. A part of the text that is no number
  // counts as 0.
  long emulgetTimeStamp(KelUnicodeString& coid, KelUnicodeString& compid, KelTime** time, int mode);

  // Finds the first row whose part number begins with `partNumber`, or whose name begins with
  // `name`; a null text finds nothing, an empty one the first row. E_FAIL, with the outputs
  // untouched, when there is none. Rows of fewer than 4 fields are passed over here and below.
  long getCOIDCOMPID(KelUnicodeString partNumber, KelUnicodeString name, KelDbBinary& coid,
                     KelDbBinary& compid);
  // Finds the compid of the first row whose coid begins with `coid` and whose name begins with
  // `name`. Always E_FAIL, also when it was found: a caller sets `compid` beforehand and compares.
  long getCOMPID(KelUnicodeString name, KelDbBinary coid, KelDbBinary& compid);

  // Gets the stored path that is a beginning of `path`. Returns 0 when there is one, 1 when not.
  long Find(const char* path, MString& pathFile);

  // The table's search (see ZetNorvDb_Table) on the database.
  long getRecord(const char* column, const char* value, ZetNorvDb_Record& out, int trace);

  // The identifiers, of 8 bytes, in a text of 32 hexadecimal characters: the first 16, and the last
  // 16. A pair with a missing character gives the byte 255, as one with a character that is not
  // hexadecimal; so also where identifiers are taken from a row.
  KelDbBinary GetCoid(const KelUnicodeString& ident);
  KelDbBinary GetCompid(const KelUnicodeString& ident);

  // Columns: coid, compid, partNumber, name, pathFile, uuid, table, type, timestamp, info.
  static ZetNorvDb_Table _database;
  static MString _path;      // the scenario directory; set once the table is loaded
  static int _nbLoad;        // how often "database.txt" was opened for appending
  static MString _refFile;   // the "FilePath" of the document last staged
  static MString _copyFile;  // the name of its copy
  static MString _S_PART_NUMBER;

 private:
  KelDbBinary Get_coid(const KelUnicodeString& ident);
  KelDbBinary Get_compid(const KelUnicodeString& ident);
};

// Converts `n` hexadecimal characters, of either case, into `n` / 2 bytes at `out`, which must have
// room for them. A pair with another character gives the byte 255; an odd last character is
// ignored; a negative `n` converts nothing.
//
// `outLen` is set to `n` / 2, rounded toward zero (so it may be negative); to 0, with a trace line,
// when there is something to convert and `hex` or `out` is null.
ZETNORV_EXPORT void ZetNorvdrhxch(int n, unsigned char* hex, int& outLen, unsigned char* out);
