#include "RecordedFile.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdio>
#include <map>
#include <memory>
#include <set>
#include <string_view>
#include <utility>

#include "Guard.h"
#include "KelDirectory.h"
#include "KelFile.h"
#include "KelUnicodeString.h"
#include "MFile.h"
#include "MString.h"
#include "ScenarioIndex.h"
#include "ZetNorvToolBox.h"
#include "ZetNorvToolBox/EnsureDirectory.h"

namespace zetnorv {

namespace {

const char* prefixOf(Recorded kind) { return kind == Recorded::kRequest ? "save" : "rep"; }

// The smallest number that is larger than those of all answers of `op` that index lines tell of.
int numberBehindLines(int op) {
  MString path;
  ScenarioIndexReader index;
  if (ZetNorvToolBox::getScePath(path) != S_OK) return 0;
  path + MString("\\Scenario2.txt");
  if (index.open(path.gchar()) != S_OK) return 0;
  const std::string start = prefixOf(Recorded::kAnswer) + std::to_string(op) + '_';
  int behind = 0;
  for (int i = 1; i <= index.count(); ++i) {
    const MString line = index.line(i);
    if (line.isNull()) continue;
    const std::string_view text(line.gchar());
    const std::size_t at = text.find(start);
    if (at == std::string_view::npos) continue;
    int number = 0;
    const char* const digits = text.data() + at + start.size();
    const auto read = std::from_chars(digits, text.data() + text.size(), number);
    if (read.ec == std::errc() && number >= behind && number < INT_MAX) behind = number + 1;
  }
  return behind;
}

// The files of one operation and kind.
using Series = std::pair<Recorded, int>;

// The free numbers of every kind of file in one directory.
//
// A number that is taken stays taken until a name goes from the directory, so the search goes on
// where it ended last time. The directory is watched: when something went from it, or when that
// cannot be told, the search starts at 0 again. A watch without a change also tells that the
// directory is there.
class FreeNumbers {
 public:
  // Makes the directory when it is missing.
  explicit FreeNumbers(const MString& directory)
      : _directory(made(directory)), _watch(KelUnicodeString(_directory.c_str()).ConvertToWide()) {}

  const std::string& directory() const { return _directory; }

  std::string pathOf(const Series& series, int number) const {
    char name[48];
    std::snprintf(name, sizeof name, "\\%s%d_%d.txt", prefixOf(series.first), series.second,
                  number);
    return _directory + name;
  }

  // Opens a new file with the smallest free number that no index line names, and returns the
  // number, with the file's path; a negative one when the file cannot be made.
  int create(const Series& series, MFile& file, std::string& path) {
    forgetWhatChanged();
    for (int number = _next[series];; ++number) {
      if (isLost(series, number) || isNamed(series, number)) continue;
      path = pathOf(series, number);
      if (file.open(path.c_str(), "wx") == S_OK) return number;
      if (!isTaken(path)) return kNone;
    }
  }

  // The smallest free number.
  int smallest(const Series& series) {
    forgetWhatChanged();
    int& next = _next[series];
    while (isLost(series, next) || isTaken(pathOf(series, next))) ++next;
    return next;
  }

  // The number for the line of an answer whose file cannot be opened. In a directory that is out of
  // reach, files cannot be told from missing ones: those that lines tell of keep their numbers.
  int unopened(const Series& series) {
    const auto named = _named.find(series);
    if (named != _named.end()) return named->second;
    return std::max(smallest(series), numberBehindLines(series.second));
  }

  // Notes that the number, which create() gave, is taken now.
  void take(const Series& series, int number) {
    forgetNamed(series, number);
    _next[series] = number + 1;
  }

  // Notes that no file gets the number from here on: an index line tells of a file of that number,
  // which is lost.
  void lose(const Series& series, int number) {
    forgetNamed(series, number);
    _lost[series].insert(number);
  }

  // Notes that an index line tells of a file of that number, which could not be opened. Only lines
  // of that kind get the number from here on.
  void name(const Series& series, int number) {
    forgetNamed(series, number);
    _named[series] = number;
  }

 private:
  static constexpr int kNone = -1;

  static const char* made(const MString& directory) {
    ensureDirectory(directory);
    return directory.gchar();
  }

  bool isLost(const Series& series, int number) const {
    const auto lost = _lost.find(series);
    return lost != _lost.end() && lost->second.contains(number);
  }

  bool isNamed(const Series& series, int number) const {
    const auto named = _named.find(series);
    return named != _named.end() && named->second == number;
  }

  static bool isTaken(const std::string& path) { return isThere(path) || opens(path); }

  static bool isThere(const std::string& path) {
    KelFileStamp stamp;
    return KelFStamp(KelUnicodeString(path.c_str()).ConvertToWide(), &stamp) == S_OK;
  }

  static bool opens(const std::string& path) {
    MFile file;
    if (file.open(path.c_str(), "r") != S_OK) return false;
    file.close();
    return true;
  }

  // What is named and is not this number is lost.
  void forgetNamed(const Series& series, int number) {
    const auto named = _named.find(series);
    if (named == _named.end() || named->second == number) return;
    _lost[series].insert(named->second);
    _named.erase(named);
  }

  void forgetWhatChanged() {
    if (_watch.Changed()) {
      made(MString(_directory.c_str()));
      _next.clear();
    }
    // The directory's name may have come to stand for another one: the drive's root is not fixed.
    std::string native = KelNativePath(KelUnicodeString(_directory.c_str()).ConvertToWide());
    if (native == _native) return;
    _native = std::move(native);
    _lost.clear();
    _named.clear();
  }

  std::string _directory;
  std::string _native;  // the directory that what is remembered below is about
  KelDirectoryWatch _watch;
  std::map<Series, int> _next;
  std::map<Series, std::set<int>> _lost;
  std::map<Series, int> _named;
};

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
