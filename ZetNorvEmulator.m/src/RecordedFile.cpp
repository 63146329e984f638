#include "RecordedFile.h"

#include <cstdio>
#include <map>
#include <memory>
#include <set>
#include <utility>

#include "Guard.h"
#include "KelDirectory.h"
#include "KelFile.h"
#include "KelUnicodeString.h"
#include "MFile.h"
#include "MString.h"
#include "ZetNorvToolBox.h"
#include "ZetNorvToolBox/EnsureDirectory.h"

namespace zetnorv {

namespace {

const char* prefixOf(Recorded kind) { return kind == Recorded::kRequest ? "save" : "rep"; }

// The smallest free number of every kind of file in one directory.
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

  // The path with the smallest free number for `kind` and `op`.
  std::string nextPath(Recorded kind, int op) {
    if (_watch.Changed()) {
      made(MString(_directory.c_str()));
      _next.clear();
    }
    forgetLostElsewhere();
    const std::set<int>& lost = _lost[{kind, op}];
    int& k = _next[{kind, op}];
    while (true) {
      std::string path = pathOf(kind, op, k);
      if (!lost.contains(k) && !opens(path) && !isThere(path)) return path;
      ++k;
    }
  }

  // Notes that the number which nextPath gave last is taken now.
  void take(Recorded kind, int op) { ++_next[{kind, op}]; }

  // Notes that no file gets the number which nextPath gave last: an index line tells of a file of
  // that number, which is lost.
  void lose(Recorded kind, int op) {
    forgetLostElsewhere();
    _lost[{kind, op}].insert(_next[{kind, op}]);
  }

 private:
  static const char* made(const MString& directory) {
    ensureDirectory(directory);
    return directory.gchar();
  }

  std::string pathOf(Recorded kind, int op, int k) const {
    char name[48];
    std::snprintf(name, sizeof name, "\\%s%d_%d.txt", prefixOf(kind), op, k);
    return _directory + name;
  }

  static bool opens(const std::string& path) {
    MFile file;
    if (file.open(path.c_str(), "r") != S_OK) return false;
    file.close();
    return true;
  }

  // A file may fail to open for reasons that pass (no descriptor left) and open for writing
  // afterwards: what was recorded must not be written over.
  static bool isThere(const std::string& path) {
    KelFileStamp stamp;
    return KelFStamp(KelUnicodeString(path.c_str()).ConvertToWide(), &stamp) == S_OK;
  }

  // The directory's name may have come to stand for another one: the drive's root is not fixed.
  void forgetLostElsewhere() {
    std::string native = KelNativePath(KelUnicodeString(_directory.c_str()).ConvertToWide());
    if (native == _native) return;
    _native = std::move(native);
    _lost.clear();
  }

  using Series = std::pair<Recorded, int>;

  std::string _directory;
  std::string _native;  // the directory that `_lost` is about
  KelDirectoryWatch _watch;
  std::map<Series, int> _next;
  std::map<Series, std::set<int>> _lost;
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
  kNotOpened,  // nothing is there
  kRemoved,    // broken, and gone
  kBroken,     // and could not be removed
};

// Fills the new file `path`; one that could not be filled is removed.
Filled fill(const std::string& path, const char* message, int size) {
  MFile file;
  if (file.open(path.c_str(), "w") != S_OK) {
    ZetNorvTrace.TraPutLN(2, "Problem with KelFOpen w!");
    return Filled::kNotOpened;
  }
  const long written = message == nullptr ? S_OK : file.write(message, size);
  const long closed = file.close();
  if (written == S_OK && closed == S_OK) return Filled::kWhole;
  ZetNorvTrace.TraPutLN(2, "Problem with KelFWrite!");
  const long removed = KelFRemove(KelUnicodeString(path.c_str()).ConvertToWide());
  return removed == S_OK ? Filled::kRemoved : Filled::kBroken;
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
  std::string path = numbers.nextPath(kind, op);
  const Filled filled = fill(path, message, size);
  if (filled == Filled::kWhole) {
    numbers.take(kind, op);
    return {S_OK, std::move(path)};
  }
  // Nothing that is there, now or later, may be read as the answer that was lost.
  if (filled == Filled::kBroken) path = numbers.nextPath(kind, op);
  if (filled != Filled::kNotOpened && kind == Recorded::kAnswer) numbers.lose(kind, op);
  return {E_FAIL, std::move(path)};
}

}  // namespace zetnorv
