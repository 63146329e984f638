#include "FreeNumbers.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <string_view>
#include <utility>

#include "KelFile.h"
#include "KelLib.h"
#include "KelUnicodeString.h"
#include "ScenarioIndex.h"
#include "TextOf.h"
#include "ZetNorvToolBox.h"
#include "ZetNorvToolBox/EnsureDirectory.h"

namespace zetnorv {

namespace {

constexpr int kNone = -1;

const char* prefixOf(Recorded kind) { return kind == Recorded::kRequest ? "save" : "rep"; }

std::string nameOf(const Series& series, int number) {
  char name[48];
  std::snprintf(name, sizeof name, "%s%d_%d.txt", prefixOf(series.first), series.second, number);
  return name;
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

// Whether a line of "Scenario2.txt" tells of the file `name`; `unknown` when that cannot be told.
bool hasLine(const std::string& name, bool unknown) {
  MString scenario;
  if (ZetNorvToolBox::getScePath(scenario) != S_OK) return unknown;
  const std::string path = std::string(textOf(scenario)) + "\\Scenario2.txt";
  ScenarioIndexReader index;
  if (index.open(path.c_str()) != S_OK) return unknown && isTaken(path);
  for (int i = 1; i <= index.count(); ++i) {
    MString line = index.line(i);
    line.spSplit('<', '>');
    line.spSplitNext();
    const MString field = line.spSplitNext();
    const std::string_view recorded = textOf(field);
    if (recorded.substr(recorded.find_last_of("/\\") + 1) == name) return true;
  }
  return false;
}

}  // namespace

FreeNumbers::FreeNumbers(const MString& directory)
    : _directory(made(directory)), _watch(KelUnicodeString(_directory.c_str()).ConvertToWide()) {}

std::string FreeNumbers::pathOf(const Series& series, int number) const {
  return _directory + '\\' + nameOf(series, number);
}

int FreeNumbers::create(const Series& series, MFile& file, std::string& path) {
  forgetWhatChanged();
  for (int number = _next[series];; ++number) {
    if (isLost(series, number)) continue;
    path = pathOf(series, number);
    if (file.open(path.c_str(), "wx") == S_OK) return number;
    if (!isTaken(path)) return kNone;
  }
}

void FreeNumbers::take(const Series& series, int number) { _next[series] = number + 1; }

int FreeNumbers::numberWithoutFile(const Series& series) {
  forgetWhatChanged();
  // All numbers below the next one are taken or lost.
  const std::set<int>& lost = _lost[series];
  int number = _next[series];
  if (!lost.empty()) number = std::min(number, *lost.begin());
  for (;; ++number) {
    if (isLost(series, number)) return number;
    if (isTaken(pathOf(series, number))) continue;
    if (!hasLine(nameOf(series, number), false)) return number;
  }
}

void FreeNumbers::lose(const Series& series, int number) {
  std::string native = nativeDirectory();
  if (native != _lostIn) _lost.clear();
  _lostIn = std::move(native);
  _lost[series].insert(number);
}

bool FreeNumbers::isLost(const Series& series, int number) {
  const auto lost = _lost.find(series);
  if (lost == _lost.end() || !lost->second.contains(number)) return false;
  // The directory's name may have come to stand for another one: the drive's root is not fixed.
  if (nativeDirectory() != _lostIn) return false;
  if (hasLine(nameOf(series, number), true)) return true;
  // The line could not be written, or the scenario was removed and is recorded anew.
  lost->second.erase(number);
  return false;
}

std::string FreeNumbers::nativeDirectory() const {
  std::string native = KelNativePath(KelUnicodeString(_directory.c_str()).ConvertToWide());
  if (native.empty()) throw std::bad_alloc();
  return native;
}

void FreeNumbers::forgetWhatChanged() {
  if (!_watch.Changed()) return;
  made(MString(_directory.c_str()));
  _next.clear();
}

}  // namespace zetnorv
