// The hooks that a client calls around every exchange with its server.
//
// Modes (see ZetNorvToolBox::getModeValue): "SAVE" records, "REPLAY" and "OLDREPLAY" check requests
// and replay answers, "SCAN" only checks. A hook never stops the exchange: whatever it returns, the
// client goes on. Failures are a trace line and E_FAIL; nothing is thrown, and errno is left as it
// was.
//
// All state is static and not synchronised: one thread exchanges one message at a time.
#pragma once

#include "MString.h"
#include "ZetNorvDb_Table.h"
#include "ZetNorvExport.h"

class ZETNORV_EXPORT ZetNorvEmul {
 public:
  ZetNorvEmul() = default;

  // Called before a request is sent: `size` bytes at `message`, the first four of which are the
  // operation number, little-endian. `channel` is not used.
  static long preWensnd(int channel, const char* message, int size);

  // Called after an answer has arrived: `*size` bytes at `answer`, which must come from new char[].
  // When an answer is replayed, `answer` is deleted and replaced by a new char[] array, which the
  // client owns, with a NUL behind its `*size` bytes; `*status` is set when the recording has one.
  // Otherwise all three stay as they are.
  static long postWensnd(int channel, char*& answer, int*& size, int*& status);

  // Records one request: its file and its line of "Scenario.txt".
  static long save(int op, const char* message, int size);

  // Records one answer, for hosts that do so themselves; the hooks do not call it. Its index is the
  // value of App_SceFile directly followed by "Scenario2.txt", and its line carries the full path.
  static long saveAnswer(int op, const char* answer, int size, int status);

  // Records a block of first-navigation data as one step: `size` + 5 bytes at `data`, which the
  // caller's buffer must hold, in a file of its own, and a line of "Scenario.txt". The second
  // argument is not read.
  static long SaveKavFirst(int& size, int& ignored, const char* data);

  // Reads the block of this step back: `size` bytes of it in a new buffer of `allocated` bytes at
  // `data`, which the caller deletes with delete[]. A missing or short file leaves zeros and is no
  // failure.
  //
  // E_FAIL leaves `data` untouched; when the index line holds no usable sizes, `size` and
  // `allocated` have what it holds (-1 for a missing one).
  static long ReplayKavFirst(int& size, int& allocated, char*& data);

  static int _nOp;                 // operation number of the message being exchanged
  static int _posCursPre;          // requests so far; in replay the line of "Scenario.txt"
  static int _posCursPost;         // answers so far; in replay the line of "Scenario2.txt"
  static int _posKavFirst;         // snapshots saved so far
  static ZetNorvDb_Table _ids;     // identifiers of the last checked request's LogObject elements
  static ZetNorvDb_Table _idsRef;  // and of its Reference elements
  static MString _date;            // name of this run's exchange log, once it is known
};
