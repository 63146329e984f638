// Files by descriptor. Bytes are exact on the way in and out: no line end is ever translated.
//
// Paths: '\' and '/' both separate directories. A path that starts with '\', or with a drive letter
// and a separator, is taken from the root of the current drive: where there are no drives, that is
// the directory the environment variable KEL_DRIVE_ROOT names, or the working directory.
//
// A descriptor is a positive number; 0, a closed one and a number never handed out are "not open":
// every call answers E_FAIL for them (KelFEof 0). Null pointers answer E_FAIL. Nothing is thrown.
// Not synchronised.
#pragma once

#include <cstdint>
#include <string>

#include "KelExport.h"

// Opens the file `name` in `mode`: "r" (read; only a regular file opens), "w" (write, created or
// emptied), "wx" (write to a new file) or "a+" (read from the start, write at the end; created when
// missing).
//
// Returns S_OK with `*descriptor` set, or E_FAIL with `*descriptor` 0. "wx" fails when the name is
// there, whatever it stands for; a link is not followed, also one to nowhere.
KEL_FOUNDATION_EXPORT long KelFOpen(const wchar_t* name, const char* mode, int* descriptor);

// Closes the file. The descriptor is gone afterwards, also when the call fails.
//
// Returns E_FAIL when the descriptor is not open, or when what was written could not reach the
// file.
KEL_FOUNDATION_EXPORT long KelFClose(int descriptor);

// Reads one line, through its '\n', at most `n` - 1 bytes, and ends it with a NUL. The rest of a
// longer line is what the next call reads. Bytes of value NUL are read like any other.
//
// Returns E_FAIL, with the buffer as it was, at the end of the file and when nothing could be read.
KEL_FOUNDATION_EXPORT long KelFGets(char* buffer, int n, int descriptor);

// Writes the NUL-terminated `text`, as KelFWrite does its bytes.
KEL_FOUNDATION_EXPORT long KelFPuts(const char* text, int descriptor, int* count);

// Reads up to `n` bytes, fewer only at the end of the file; `*count` holds how many, also on
// failure. Reading at the end of the file is S_OK with a count of 0.
KEL_FOUNDATION_EXPORT long KelFRead(int descriptor, char* buffer, int n, int* count);

// Writes `n` bytes; S_OK only when all were taken. `*count` (may be null) holds how many the file
// has of them. A file that was opened with "a+" gets all or none: what was written of them before a
// failure (a full disk) is cut off again.
KEL_FOUNDATION_EXPORT long KelFWrite(int descriptor, const char* buffer, int n, int* count);

// Gives the file's size in bytes; E_FAIL for one above what an int holds.
KEL_FOUNDATION_EXPORT long KelFSize(int descriptor, int* size);

// Returns a number other than 0 while there are bytes left to read, and 0 at the end of the file
// and for a descriptor that is not open.
KEL_FOUNDATION_EXPORT long KelFEof(int descriptor);

// Copies the regular file `source` to `target`. What is there already is replaced when it is a file
// or a link and `mode` is 0. With any other `mode` a file, or a link to one, is refused; a
// directory or a device always is. The target appears whole or not at all.
KEL_FOUNDATION_EXPORT long KelFCopy(const wchar_t* source, const wchar_t* target, int mode);

// --- Beyond what a client's own foundation offers (see the README's table) ---

// Removes the file `name`. S_OK when it was there and is gone.
KEL_FOUNDATION_EXPORT long KelFRemove(const wchar_t* name);

// Gives the file `from` the name `to`, replacing a file or a link of that name in one step. Fails
// when `to` is something else.
KEL_FOUNDATION_EXPORT long KelFRename(const wchar_t* from, const wchar_t* to);

// The form of `name` in which this system's file streams open it: bytes, NUL-terminated by c_str().
KEL_FOUNDATION_EXPORT std::string KelNativePath(const wchar_t* name);

// What tells one state of a file from another without reading it.
struct KelFileStamp {
  std::uint64_t device = 0;
  std::uint64_t file = 0;     // the file's number on its device
  std::int64_t size = 0;      // bytes
  std::int64_t modified = 0;  // nanoseconds since the epoch
  std::int64_t changed = 0;   // nanoseconds since the epoch, last change of the file's own data
  // Whether the last change lies further back than the clock of the file system is coarse. Two
  // stamps tell an unchanged file for certain only when the older one is settled.
  bool settled = false;

  bool SameState(const KelFileStamp& other) const {
    return device == other.device && file == other.file && size == other.size &&
           modified == other.modified && changed == other.changed;
  }
};

// Takes the stamp of the regular file `name`. E_FAIL, with the stamp untouched, when there is none.
KEL_FOUNDATION_EXPORT long KelFStamp(const wchar_t* name, KelFileStamp* stamp);
