#include "FreeNumbers.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdio>
#include <string_view>

#include "KelFile.h"
#include "KelLib.h"
#include "KelUnicodeString.h"
#include "ScenarioIndex.h"
#include "ZetNorvToolBox.h"
#include "ZetNorvToolBox/EnsureDirectory.h"

namespace zetnorv {

namespace {

constexpr int kNone = -1;

const char* prefixOf(Recorded kind) { return kind == Recorded::kRequest ? "save" : "rep"; }

// The number that stands behind `start` in the line; kNone when there is none.
int numberBehind(const std::string& start, const MString& line) {
  if (line.isNull()) return kNone;
  const std::string_view text(line.gchar());
  const std::size_t at = text.find(start);
  if (at == std::string_view::npos) return kNone;
  int number = 0;
  const char* const digits = text.data() + at + start.size();
  const auto read = std::from_chars(digits, text.data() + text.size(), number);
  return read.ec == std::errc() && number < INT_MAX ? number : kNone;
}

// The smallest number that is larger than those of all answers of `op` that index lines tell of.
int numberBehindLines(int op) {
  MString path;
  ScenarioIndexReader index;
  if (ZetNorvToolBox::getScePath(path) != S_OK) return 0;
  path + MString("\\Scenario2.txt");
  if (index.open(path.gchar()) != S_OK) return 0;
  const std::string start = prefixOf(Recorded::kAnswer) + std::to_string(op) + '_';
  int largest = kNone;
  for (int i = 1; i <= index.count(); ++i) {
    largest = std::max(largest, numberBehind(start, index.line(i)));
  }
  return largest + 1;
}

const char* made(const MString& directory) {
  ensureDirectory(directory);
  return directory.gchar();
}

bool isThere(const std::string& path) {
  KelFileStamp stamp;
  return KelFStamp(KelUnicodeString(path.c_str()).ConvertToWide(), &stamp) == S_OK;
}

bool opens(const std::string& path) {
  MFile file;
  if (file.open(path.c_str(), "r") != S_OK) return false;
  file.close();
  return true;
}

bool isTaken(const std::string& path) { return isThere(path) || opens(path); }

}  // namespace

FreeNumbers::FreeNumbers(const MString& directory)
    : _directory(made(directory)), _watch(KelUnicodeString(_directory.c_str()).ConvertToWide()) {}

std::string FreeNumbers::pathOf(const Series& series, int number) const {
  char name[48];
  std::snprintf(name, sizeof name, "\\%s%d_%d.txt", prefixOf(series.first), series.second, number);
  return _directory + name;
}

int FreeNumbers::create(const Series& series, MFile& file, std::string& path) {
  forgetWhatChanged();
  for (int number = _next[series];; ++number) {
    if (isLost(series, number) || isNamed(series, number)) continue;
    path = pathOf(series, number);
    if (file.open(path.c_str(), "wx") == S_OK) return number;
    if (!isTaken(path)) return kNone;
  }
}

int FreeNumbers::smallest(const Series& series) {
  forgetWhatChanged();
  int& next = _next[series];
  while (isLost(series, next) || isTaken(pathOf(series, next))) ++next;
  return next;
}

int FreeNumbers::unopened(const Series& series) {
  const auto named = _named.find(series);
  if (named != _named.end()) return named->second;
  return std::max(smallest(series), numberBehindLines(series.second));
}

void FreeNumbers::take(const Series& series, int number) {
  forgetNamed(series, number);
  _next[series] = number + 1;
}

void FreeNumbers::lose(const Series& series, int number) {
  forgetNamed(series, number);
  _lost[series].insert(number);
}

void FreeNumbers::name(const Series& series, int number) {
  forgetNamed(series, number);
  _named[series] = number;
}

bool FreeNumbers::isLost(const Series& series, int number) const {
  const auto lost = _lost.find(series);
  return lost != _lost.end() && lost->second.contains(number);
}

bool FreeNumbers::isNamed(const Series& series, int number) const {
  const auto named = _named.find(series);
  return named != _named.end() && named->second == number;
}

void FreeNumbers::forgetNamed(const Series& series, int number) {
  const auto named = _named.find(series);
  if (named == _named.end() || named->second == number) return;
  _lost[series].insert(named->second);
  _named.erase(named);
}

void FreeNumbers::forgetWhatChanged() {
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

}  // namespace zetnorv
