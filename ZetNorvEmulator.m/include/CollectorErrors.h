// The findings of one comparison run, and the section of "error.log" that they become. It owns its
// records. Nothing is thrown. Not synchronised.
#pragma once

#include "ErrorRecord.h"
#include "ZetNorvExport.h"

class ZETNORV_EXPORT CollectorErrors {
 public:
  // No findings, room for 5.
  CollectorErrors(int messageNumber);

  // A deep copy. A copy of itself, or of a null reference, has the number 0 and no findings.
  CollectorErrors(const CollectorErrors& o);

  // Takes the number and shares the records of `o`, freeing nothing: shallow on purpose, so the two
  // must not both be destroyed as they are.
  CollectorErrors& operator=(const CollectorErrors& o);
  ~CollectorErrors();

  // Appends a finding (see ErrorRecord for the codes). A null text is traced and counts as empty.
  // A full collector gets room for 5 more.
  void addError(int code, const char* name, const char* details);

  // 1 when there is no finding of code exactly 10, else 0: warnings do not count.
  int isEmpty() const;

  // Writes the warnings, then the errors, a line each, to standard output, between headings in the
  // trace. Codes above 10 are left out.
  void print() const;

  // Appends a section to the file "error.log" of the error directory; outside debug mode that is
  // the file "\error.log". In debug mode nothing is written and the result is S_OK.
  //
  // messageNumber  The number in the section's heading; the lines of the findings carry the
  //                constructor's.
  // buffer, size   The message: the text from its fifth byte to its first NUL is written, nothing
  //                for a null buffer or a size of 4 or less. Lines of any length are written whole.
  //
  // Returns S_OK, or E_FAIL with a trace line when the directory is unknown, the file cannot be
  // opened or the section could not be written. The section is handed over in one piece, so that
  // the sections of two processes do not mix.
  long writeLogFile(int messageNumber, const char* buffer, int size) const;

  int _messageNumber = 0;
  ErrorRecord** _records = nullptr;  // _capacity slots; one is null when memory was refused
  int _nbRecords = 0;
  int _capacity = 5;
};
