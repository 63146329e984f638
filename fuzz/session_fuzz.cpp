// A recording of any exchanges, gaps and identifiers included, replayed with the same ones under a
// comparison script: every answer is the one that the index leads to, with the identifiers of the
// run, and no request differs from itself.
//
// An input: up to six exchanges, each a digit for the operation, a status, 'h' or another
// letter for an answer with a header or without, the request up to a NUL and the answer up to one.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "FuzzInput.h"
#include "PlainReplay.h"

using fuzz::Emulated;
using fuzz::Exchange;
using fuzz::expect;
using fuzz::expectEqual;
using fuzz::Identifiers;
using fuzz::PlainRecording;

namespace {

constexpr const char* kScript =
    "<Scripts>"
    "<MessageChar value=\"12\" path=\"\">"
    "<Composant name=\"Operation\" size=\"4\" compare=\"1\" type=\"I\" repeat=\"\"/>"
    "<Composant name=\"$Length\" size=\"4\" compare=\"1\" type=\"I\" repeat=\"\"/>"
    "<Composant name=\"Text\" size=\"$Length\" compare=\"1\" type=\"S\" repeat=\"\"/>"
    "<Composant name=\"Rest\" size=\"8\" compare=\"1\" type=\"S\" repeat=\"\"/>"
    "</MessageChar>"
    "<MessageXML value=\"319\" path=\"\">"
    "<Composant name=\"LogObject\" father=\"\" attributs=\"Identifier Type\"/>"
    "</MessageXML>"
    "<MessageXML value=\"321\" path=\"\">"
    "<Composant name=\"Document\" father=\"\" attributs=\"Name FilePath\"/>"
    "<Composant name=\"LogObject\" father=\"\" attributs=\"Identifier Name\"/>"
    "<Composant name=\"Reference\" father=\"\" attributs=\"Identifier Name\"/>"
    "</MessageXML>"
    "</Scripts>";

constexpr const char* kDifference = "Problem with reference file";

bool isXml(const std::string& request) {
  return request.size() >= 4 && !fuzz::parse(request.substr(4)).isNull();
}

// Whether a request can be compared with the recorded one under the script.
bool canBeCompared(const std::string& request, const std::string& recorded, int op) {
  if (op == 325) return true;
  // One without bytes is sent as a null pointer.
  if (request.empty()) return false;
  if (op == 12) return true;
  return fuzz::carriesIdentifiers(op) && isXml(request) && isXml(recorded);
}

// A recording is replayed step by step when every exchange got its line in both index files, and
// none of them a line that a replay passes over.
bool isInStep(const std::vector<Exchange>& exchanges) {
  int op = 0;
  for (const Exchange& exchange : exchanges) {
    op = fuzz::operationOf(exchange.request, op);
    if (exchange.request.empty() || exchange.answer.empty() || op == 2 || op == 26) return false;
  }
  return true;
}

bool isTextOf(const std::vector<Exchange>& exchanges, const char* text) {
  return std::any_of(exchanges.begin(), exchanges.end(), [text](const Exchange& exchange) {
    return exchange.request.find(text) != std::string::npos;
  });
}

class Replay {
 public:
  explicit Replay(PlainRecording& plain) : _plain(plain) {}

  void step(const Exchange& exchange, bool inStep) {
    const PlainRecording::Check check = _plain.check(exchange.request);
    const int op = _plain.op();
    const bool compared = check.matched && canBeCompared(exchange.request, check.recorded, op);
    expect((fuzz::send(exchange.request) == S_OK) == (compared || !check.matched),
           "a request passes that is compared, or is of another operation");
    if (compared && fuzz::carriesIdentifiers(op)) {
      _identifiers = {fuzz::identifiersOf(exchange.request, "LogObject"),
                      fuzz::identifiersOf(exchange.request, "Reference")};
    }
    onlyEqualOnes = onlyEqualOnes && (!check.matched || check.recorded == exchange.request);
    const Exchange live = {exchange.request, "live", 1000};
    const fuzz::Received expected = _plain.serve(live, _identifiers);
    const fuzz::Received received = fuzz::receive(live.answer, live.status);
    expectEqual(received, expected);
    if (!inStep) return;
    expect(check.matched && check.recorded == exchange.request, "the step's request is found");
    expect(expected.result == E_FAIL || received.status == exchange.status, "its status is served");
    if (!fuzz::carriesIdentifiers(op)) {
      expect(received.result == S_OK, "the answer is served");
      expectEqual(received.bytes, exchange.answer, "the answer is the one of the step");
    }
  }

  bool onlyEqualOnes = true;  // every request met itself

 private:
  PlainRecording& _plain;
  Identifiers _identifiers;
};

std::vector<Exchange> exchangesIn(fuzz::Input& input) {
  constexpr std::size_t kMost = 6;
  std::vector<Exchange> exchanges;
  while (!input.atEnd() && exchanges.size() < kMost) {
    const std::uint8_t operation = input.byte();
    Exchange exchange;
    exchange.status = static_cast<signed char>(input.byte());
    const bool hasHeader = input.byte() == 'h';
    exchange.request = fuzz::requestFor(operation, input.textTo('\0'));
    const std::string answer = input.textTo('\0');
    exchange.answer = hasHeader ? xmlAnswer(answer) : answer;
    exchanges.push_back(exchange);
  }
  return exchanges;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzz::Input input(bytes, size);
  const std::vector<Exchange> exchanges = exchangesIn(input);
  Emulated emulated("SAVE");
  Emulated::files().put(Emulated::kScript, kScript);
  PlainRecording plain;
  fuzz::record(exchanges, plain);
  const auto recorded = fuzz::recordingNow();

  fuzz::startReplay(emulated, plain);
  Replay replay(plain);
  const bool inStep = isInStep(exchanges);
  for (const Exchange& exchange : exchanges) replay.step(exchange, inStep);
  expect(fuzz::recordingNow() == recorded, "a replay leaves the recording as it is");
  const std::string findings = Emulated::files().bytes("/drive/error.log");
  if (replay.onlyEqualOnes && !isTextOf(exchanges, kDifference)) {
    expect(findings.find(kDifference) == std::string::npos, "no request differs from itself");
  }
  expect(Emulated::files().openFiles() == 0, "no file stays open");
  return 0;
}
