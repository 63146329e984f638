// The tokenizers against a plain cutting of the text.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Expect.h"
#include "FuzzInput.h"
#include "MString.h"
#include "Tokens.h"

using fuzz::expect;
using fuzz::expectEqual;

namespace {

std::string textOf(const MString& string) {
  if (string.isNull() != 0) return fuzz::kNoToken;
  return {string.gchar(), static_cast<std::size_t>(string.glength())};
}

// The tokens between separators. A NUL ends a token as a separator does; for ever behind the last
// token, and for an empty one, "NULL".
std::vector<std::string> cut(const std::string& text, char separator, std::size_t calls) {
  std::vector<std::string> tokens;
  std::string rest = text;
  bool more = !text.empty() && text[0] != '\0';
  while (tokens.size() < calls) {
    const std::size_t end = more ? rest.find_first_of(std::string{separator, '\0'}) : 0;
    const std::string piece = more ? rest.substr(0, end) : "";
    tokens.push_back(piece.empty() ? "NULL" : piece);
    more = more && end != std::string::npos;
    if (more) rest.erase(0, end + 1);
  }
  return tokens;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzz::Input input(bytes, size);
  const char open = static_cast<char>(input.byte());
  const char close = static_cast<char>(input.byte());
  const std::string text = input.rest();
  if (text.empty()) return 0;
  MString string(text.data(), static_cast<int>(text.size()));

  // A few calls more than there can be tokens.
  const std::size_t calls = text.size() + 3;
  string.split(open);
  for (const std::string& expected : cut(text, open, calls)) {
    const MString next = string.splitNext();
    expectEqual(textOf(next), expected, "a token stands between two separators");
  }
  string.spSplit(open, close);
  for (const std::string& expected : fuzz::cutBrackets(text, open, close, calls)) {
    const MString next = string.spSplitNext();
    expectEqual(textOf(next), expected, "a token stands between two brackets");
  }
  expectEqual(textOf(string), text, "the text is as it was");
  string.cleanParam();
  expect(string.tokStart == 0 && string.tokEnd == 0 && string.sep == 0 && string.sepClose == 0,
         "nothing is left of the cutting");
  return 0;
}
