#include "ScenarioIndex.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <map>
#include <vector>

#include "KelFile.h"
#include "KelLib.h"
#include "KelUnicodeString.h"
#include "OwningArray.h"

namespace zetnorv {

namespace {

// The most that is taken of a line at a time.
constexpr std::size_t kLineBytes = 1023;

// Where the pieces start that `text` is read in, and where the last one ends.
std::vector<std::size_t> lineStarts(const std::string& text) {
  std::vector<std::size_t> starts{0};
  std::size_t at = 0;
  while (at < text.size()) {
    const std::size_t most = std::min(kLineBytes, text.size() - at);
    const void* end = std::memchr(text.data() + at, '\n', most);
    at = end == nullptr ? at + most
                        : static_cast<std::size_t>(static_cast<const char*>(end) - text.data()) + 1;
    starts.push_back(at);
  }
  return starts;
}

}  // namespace

ScenarioIndexWriter::~ScenarioIndexWriter() {
  if (_file._descriptor != 0) _file.close();
}

long ScenarioIndexWriter::open(const char* path) { return _file.open(path, "a+"); }

long ScenarioIndexWriter::append(const std::string& line) {
  const long written = _file.puts(line.c_str());
  const long closed = _file.close();
  _file._descriptor = 0;
  return written == S_OK && closed == S_OK ? S_OK : E_FAIL;
}

struct ScenarioIndexReader::Content {
  KelFileStamp stamp;  // the file's state when it was read; settled only if that can be relied on
  std::string text;
  std::vector<std::size_t> starts;
};

ScenarioIndexReader::Content& ScenarioIndexReader::kept(const char* path) {
  // The two index files of the scenario that is replayed.
  static std::map<std::string, Content> contents;
  const auto found = contents.find(path);
  if (found != contents.end()) return found->second;
  if (contents.size() >= 2) contents.clear();
  return contents[path];
}

long ScenarioIndexReader::open(const char* path) {
  _content = nullptr;
  if (path == nullptr) return E_FAIL;
  Content& content = kept(path);
  KelFileStamp stamp;
  if (KelFStamp(KelUnicodeString(path).ConvertToWide(), &stamp) != S_OK) return E_FAIL;
  if (content.stamp.settled && content.stamp.SameState(stamp)) {
    _content = &content;
    return S_OK;
  }

  content.stamp = KelFileStamp();
  char* bytes = nullptr;
  int size = 0;
  if (MFile().load(MString(path), bytes, size) != S_OK) return E_FAIL;
  const OwnedBytes owner(bytes);
  content.text.assign(bytes, static_cast<std::size_t>(size));
  content.starts = lineStarts(content.text);
  // Taken before the file was read: a change in between gives the file another stamp.
  content.stamp = stamp;
  _content = &content;
  return S_OK;
}

int ScenarioIndexReader::count() const {
  return _content == nullptr ? 0 : static_cast<int>(_content->starts.size()) - 1;
}

MString ScenarioIndexReader::line(int number) const {
  if (number < 1 || number > count()) return MString();
  const auto n = static_cast<std::size_t>(number);
  const std::size_t start = _content->starts[n - 1];
  // Cut at a line feed or NUL, as every line that is read into a string.
  const std::string text(_content->text, start, _content->starts[n] - start);
  return MString(text.c_str());
}

std::string indexName(const std::string& path) {
  std::size_t separator = path.rfind('/');
  if (separator == std::string::npos) separator = path.rfind('\\');
  return separator == std::string::npos ? path : path.substr(separator + 1);
}

}  // namespace zetnorv
