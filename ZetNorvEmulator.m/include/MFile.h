// A file by its descriptor. Closing is up to the caller: neither the destructor nor an assignment
// does it, and two objects that were assigned share one open file.
//
// Every operation returns S_OK or E_FAIL unless it says otherwise; null pointers are E_FAIL. Paths
// are those of KelFile.h. Nothing is thrown. Not synchronised.
#pragma once

#include "MString.h"
#include "ZetNorvExport.h"

class ZETNORV_EXPORT MFile {
 public:
  MFile() = default;
  MFile(const MFile& o) = default;
  MFile& operator=(const MFile& o) = default;
  ~MFile();

  // Opens the file `name` in mode "r", "w" or "a+" (see KelFOpen).
  long open(const char* name, const char* mode);
  // Closes the file; no file is open afterwards, also when the call fails. Fails also when what was
  // written could not reach the file.
  long close();

  // Writes the NUL-terminated `s`.
  long puts(const char* s);
  // Reads a line of at most `n` - 1 bytes, its '\n' included. At the end of the file: E_FAIL, with
  // `buf` as it was.
  long gets(char* buf, int n);
  // Reads a line of at most 1023 bytes; the string is cut at its '\n'. The rest of a longer line is
  // what the next call reads. At the end of the file: E_FAIL and an empty string.
  long gets(MString* s);
  // Reads up to `n` bytes.
  long read(char* buf, int n);
  // Writes `n` bytes; E_FAIL when `buf` is null and `n` is 1 or more.
  long write(const char* buf, int n);

  // A number other than 0 while there are bytes left to read; 0 at the end and when nothing is
  // open.
  long eof();

  // Reads the whole file `name` into a new buffer: `size` bytes and a NUL behind them. The caller
  // owns `buf` and deletes it with delete[]. Does not touch this object's descriptor. On failure
  // `buf` and `size` are untouched.
  long load(MString name, char*& buf, int& size);

  // Writes `n` bytes to the file `name`, created or emptied. Does not touch this object's
  // descriptor. Fails also when the close does.
  long save(const char* name, const char* buf, int n);

  int _descriptor = 0;  // 0 when no file is open
};
