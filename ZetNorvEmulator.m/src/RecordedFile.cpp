#include "RecordedFile.h"

#include <cstdio>
#include <memory>
#include <utility>

#include "FreeNumbers.h"
#include "Guard.h"
#include "KelFile.h"
#include "KelUnicodeString.h"
#include "MFile.h"
#include "MString.h"
#include "ZetNorvToolBox.h"

namespace zetnorv {

namespace {

// What is known of the directory that is recorded into; one at a time.
FreeNumbers& numbersOf(const MString& directory) {
  static std::unique_ptr<FreeNumbers> numbers;
  if (numbers == nullptr || numbers->directory() != directory.gchar()) {
    numbers.reset();
    numbers = std::make_unique<FreeNumbers>(directory);
  }
  return *numbers;
}

void reportEmpty(Recorded kind, int op) {
  ZetNorvTrace.TraPutLN(2, "Probleme pour ecrire le fichier.");
  ZetNorvToolBox::writeLog(
      kind == Recorded::kRequest
          ? "(save)Impossible d'ecrire le fichier de reference inputSizeBuf <= 0.\n"
          : "(saveAnswer)Impossible d'ecrire le fichier de reference inputSizeBuf <= 0.\n");
  char line[48];
  std::snprintf(line, sizeof line, "Msg Errone %d\n", op);
  ZetNorvToolBox::writeLog(line);
}

enum class Filled {
  kWhole,
  kRemoved,  // broken, and gone
  kBroken,   // and could not be removed
};

// Fills and closes the new file `path`; one that could not be filled is removed.
Filled fill(MFile& file, const std::string& path, const char* message, int size) {
  const long written = message == nullptr ? S_OK : file.write(message, size);
  const long closed = file.close();
  if (written == S_OK && closed == S_OK) return Filled::kWhole;
  ZetNorvTrace.TraPutLN(2, "Problem with KelFWrite!");
  const long removed = KelFRemove(KelUnicodeString(path.c_str()).ConvertToWide());
  return removed == S_OK ? Filled::kRemoved : Filled::kBroken;
}

// The answers whose files could not be written keep their lines. Nothing that is there, now or
// later, may be read as one of them, so the names in the lines are those of no other files.

RecordedFile notOpened(FreeNumbers& numbers, const Series& series) {
  ZetNorvTrace.TraPutLN(2, "Problem with KelFOpen w!");
  if (series.first == Recorded::kRequest) return {E_FAIL, {}};
  const int number = numbers.unopened(series);
  numbers.name(series, number);
  return {E_FAIL, numbers.pathOf(series, number)};
}

RecordedFile notFilled(FreeNumbers& numbers, const Series& series, int number, Filled filled) {
  if (series.first == Recorded::kRequest) return {E_FAIL, {}};
  if (filled == Filled::kBroken) number = numbers.smallest(series);
  numbers.lose(series, number);
  return {E_FAIL, numbers.pathOf(series, number)};
}

}  // namespace

RecordedFile writeRecordedFile(Recorded kind, int op, const char* message, int size) {
  if (size <= 0) {
    reportEmpty(kind, op);
    return {E_FAIL, {}};
  }
  MString reference;
  if (ZetNorvToolBox::getRefPath(reference) != S_OK || RefusedMemory::wasMet()) {
    return {E_FAIL, {}};
  }
  FreeNumbers& numbers = numbersOf(reference);
  const Series series{kind, op};
  MFile file;
  std::string path;
  const int number = numbers.create(series, file, path);
  if (number < 0) return notOpened(numbers, series);
  const Filled filled = fill(file, path, message, size);
  if (filled != Filled::kWhole) return notFilled(numbers, series, number, filled);
  numbers.take(series, number);
  return {S_OK, std::move(path)};
}

}  // namespace zetnorv
