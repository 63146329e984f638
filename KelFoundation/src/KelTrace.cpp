#include "KelTrace.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>

namespace {

// Both are ready before any trace is built, whichever library it belongs to.
constinit KelTrace::Listener* currentListener = nullptr;
constinit KelTrace* firstTrace = nullptr;

std::optional<int> ReadNumber(std::string_view text) {
  int number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

// The level that `setting`, a value of KEL_TRACE, gives the trace `name`: a piece with its name
// goes before a number for every trace, a later piece before an earlier one.
std::optional<int> LevelFor(std::string_view name, std::string_view setting) {
  std::optional<int> forAll;
  std::optional<int> forName;
  while (!setting.empty()) {
    const std::string_view piece = setting.substr(0, setting.find(','));
    setting.remove_prefix(std::min(piece.size() + 1, setting.size()));
    const std::size_t equals = piece.find('=');
    if (equals == std::string_view::npos) {
      if (const auto number = ReadNumber(piece)) forAll = number;
    } else if (piece.substr(0, equals) == name) {
      if (const auto number = ReadNumber(piece.substr(equals + 1))) forName = number;
    }
  }
  return forName ? forName : forAll;
}

const char* OrEmpty(const char* text) { return text == nullptr ? "" : text; }

}  // namespace

KelTrace::KelTrace(const char* name, const char* description, int level, const char*, int)
    : _name(OrEmpty(name)),
      _description(OrEmpty(description)),
      _level(level),
      _threshold(INT_MAX),
      _next(firstTrace) {
  firstTrace = this;
}

KelTrace::~KelTrace() {
  KelTrace** link = &firstTrace;
  while (*link != this) link = &(*link)->_next;
  *link = _next;
}

bool KelTrace::Listens(int level) {
  if (level > _threshold) return false;
  Resolve();
  return level <= _threshold;
}

KelTrace::Listener* KelTrace::SetListener(Listener* listener) {
  Listener* const before = currentListener;
  currentListener = listener;
  for (KelTrace* trace = firstTrace; trace != nullptr; trace = trace->_next) {
    trace->SetThreshold();
  }
  return before;
}

void KelTrace::Resolve() {
  if (_resolved) return;
  _resolved = true;
  if (const char* setting = std::getenv("KEL_TRACE")) {
    _level = std::max(_level, LevelFor(_name, setting).value_or(_level));
  }
  SetThreshold();
}

void KelTrace::SetThreshold() {
  _threshold = currentListener != nullptr || !_resolved ? INT_MAX : _level;
}

void KelTrace::Put(int level, const char* text, int number) {
  char digits[16] = {};
  std::to_chars(digits, digits + sizeof digits - 1, number);
  Put(level, text, digits);
}

void KelTrace::Put(int level, const char* text, const char* appended) {
  Resolve();
  if (level > _threshold) return;
  try {
    std::string line(OrEmpty(text));
    line += OrEmpty(appended);
    if (currentListener != nullptr) currentListener->OnLine(_name.c_str(), level, line);
    if (level > _level) return;
    // One call, so that lines of several processes do not mix.
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
  } catch (...) {
    // A line that there is no memory for is lost; what it tells of is not to fail for it.
  }
}
