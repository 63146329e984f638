// Both index files, whatever is in them: which line a step uses, where the cursor goes and what is
// served, against a plain second reading.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "Emulated.h"
#include "Expect.h"
#include "FuzzInput.h"
#include "KelLib.h"
#include "Tokens.h"

using fuzz::Emulated;
using fuzz::expect;
using fuzz::expectEqual;

namespace {

constexpr const char* kLive = "live answer";
constexpr int kLiveStatus = -77;

// The pieces that are read: through a line feed, at most so many bytes.
std::vector<std::string> linesOf(const std::string& text, std::size_t most) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size(); at += lines.back().size()) {
    const std::size_t feed = text.find('\n', at);
    const std::size_t end = feed == std::string::npos ? text.size() : feed + 1;
    lines.push_back(text.substr(at, std::min(end - at, most)));
  }
  return lines;
}

int number(const std::string& token) {
  return token == fuzz::kNoToken ? -1 : static_cast<int>(std::strtol(token.c_str(), nullptr, 10));
}

std::vector<std::string> tokensOf(const std::string& line, std::size_t count) {
  return fuzz::cutBrackets(fuzz::firstLine(line), '<', '>', count);
}

// Whether there is an opening bracket for a third field.
bool hasThirdField(const std::string& line) {
  std::size_t at = 0;
  const std::string text = fuzz::firstLine(line);
  for (int field = 0; field < 3; ++field) {
    const std::size_t opening = text.find('<', at);
    if (opening == std::string::npos) return false;
    const std::size_t closing = text.find('>', opening);
    at = closing == std::string::npos ? text.size() : closing + 1;
  }
  return true;
}

// A step's request against the index of requests.
class Requests {
 public:
  explicit Requests(const std::string& index) : _lines(linesOf(index, 1023)) {}

  void step(int operation) {
    ++_cursor;
    std::string found = fuzz::kNoToken;
    for (int i = 1; i <= static_cast<int>(_lines.size()); ++i) {
      found = tokensOf(_lines[static_cast<std::size_t>(i - 1)], 1)[0];
      // An operation that is a beginning of "26", an empty one too, does not count as a request.
      const bool passed = found == fuzz::kNoToken || std::string("26").starts_with(found);
      if (i == _cursor && passed) ++_cursor;
      if (i >= _cursor) break;
    }
    const bool matches = found != fuzz::kNoToken && number(found) == operation;
    std::string message{static_cast<char>(operation), 0, 0, 0, 'x'};
    // There is no comparison script, so a request that is compared fails.
    const long result = ZetNorvEmul::preWensnd(0, message.data(), static_cast<int>(message.size()));
    expect((result == E_FAIL) == matches, "a request is compared with its own line");
    expect(ZetNorvEmul::_posCursPre == _cursor, "the cursor passes over what is no request");
  }

 private:
  std::vector<std::string> _lines;
  int _cursor = 0;
};

class Answers {
 public:
  explicit Answers(const std::string& index) : _lines(linesOf(index, 1023)) {}

  void step(int operation) {
    ++_cursor;
    std::vector<std::string> tokens;
    std::string line;
    for (int i = 1; i <= static_cast<int>(_lines.size()) && i <= _cursor; ++i) {
      line = _lines[static_cast<std::size_t>(i - 1)];
      tokens = tokensOf(line, 3);
      if (i == _cursor && number(tokens[0]) != operation) ++_cursor;
    }
    std::string file;
    if (!tokens.empty() && tokens[1] != fuzz::kNoToken) file = Emulated::reference(tokens[1]);
    std::replace(file.begin(), file.end(), '\\', '/');
    const bool served = !file.empty() && Emulated::files().exists(file) && file.back() != '/';
    receive(operation, served, served ? Emulated::files().bytes(file) : kLive,
            served && hasThirdField(line) ? number(tokens[2]) : kLiveStatus);
  }

 private:
  void receive(int operation, bool served, const std::string& expected, int expectedStatus) {
    expect(ZetNorvEmul::_nOp == operation, "the operation is the request's");
    const std::string live = kLive;
    char* answer = new char[live.size() + 1]();
    std::copy(live.begin(), live.end(), answer);
    int bytes = static_cast<int>(live.size());
    int status = kLiveStatus;
    int* sizeAt = &bytes;
    int* statusAt = &status;
    const long result = ZetNorvEmul::postWensnd(0, answer, sizeAt, statusAt);
    expect((result == S_OK) == served, "an answer is served when its file is there");
    expectEqual(std::string(answer, static_cast<std::size_t>(bytes)), expected,
                "the answer is the recorded one, or the live one");
    expect(answer[bytes] == '\0', "a NUL stands behind the answer");
    expect(status == expectedStatus, "the status is the line's, or the live one");
    expect(ZetNorvEmul::_posCursPost == _cursor, "the cursor skips another operation's line once");
    delete[] answer;
  }

  std::vector<std::string> _lines;
  int _cursor = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzz::Input input(bytes, size);
  const int steps = input.upTo(10) + 1;
  const auto separator = static_cast<char>(input.byte());
  const std::string requests = input.textTo(separator);
  const std::string answers = input.rest();

  Emulated emulated("REPLAY");
  Emulated::files().put(Emulated::scenario("Scenario.txt"), requests);
  Emulated::files().put(Emulated::scenario("Scenario2.txt"), answers);
  for (const char* name : {"rep12_0.txt", "a", "b", "deeper/c"}) {
    Emulated::files().put(Emulated::reference(name), std::string("bytes of ") + name);
  }
  const std::vector<std::string> before = Emulated::files().files();
  Requests requestSteps(requests);
  Answers answerSteps(answers);
  for (int i = 0; i < steps; ++i) {
    const int operation = i % 3 == 2 ? 3 : 12;
    requestSteps.step(operation);
    answerSteps.step(operation);
  }
  expect(Emulated::files().files() == before, "a replay makes no files");
  expect(Emulated::files().openFiles() == 0, "no file is left open");
  return 0;
}
