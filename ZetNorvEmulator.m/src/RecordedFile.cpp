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

// Fills and closes the new file `path`; one that could not be filled is removed.
long fill(MFile& file, const std::string& path, const char* message, int size) {
  const long written = message == nullptr ? S_OK : file.write(message, size);
  const long closed = file.close();
  if (written == S_OK && closed == S_OK) return S_OK;
  ZetNorvTrace.TraPutLN(2, "Problem with KelFWrite!");
  KelFRemove(KelUnicodeString(path.c_str()).ConvertToWide());
  return E_FAIL;
}

// What came of a file that could not be opened or filled. An answer keeps its line all the same.
// Nothing that is there, now or later, may be read as that answer, so the name in the line is that
// of no other answer's file, nor of a half one that could not be removed.
RecordedFile lost(FreeNumbers& numbers, const Series& series) {
  if (series.first == Recorded::kRequest) return {E_FAIL, {}};
  const int number = numbers.numberWithoutFile(series);
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
  if (number < 0) {
    ZetNorvTrace.TraPutLN(2, "Problem with KelFOpen w!");
    return lost(numbers, series);
  }
  if (fill(file, path, message, size) != S_OK) return lost(numbers, series);
  numbers.take(series, number);
  return {S_OK, std::move(path)};
}

}  // namespace zetnorv
