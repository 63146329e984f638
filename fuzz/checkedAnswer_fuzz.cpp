// One exchange, recorded and replayed with other messages under any comparison script, through the
// hooks alone: the client gets what was recorded, with the identifiers of the request that it sends
// now, if that could be compared.
//
// An input: a digit for the recorded operation and one for that of the replay, 'h' or another
// letter for a recorded answer with a header or without, a status, and, each up to a NUL, the
// script, the recorded request and answer, and the request and the answer of the replay.
#include <cstddef>
#include <cstdint>
#include <string>

#include "FuzzInput.h"
#include "PlainReplay.h"

using fuzz::Emulated;
using fuzz::Exchange;
using fuzz::expect;
using fuzz::expectEqual;
using fuzz::Identifiers;

namespace {

// What the hook may have taken from a request. It takes nothing from one that it could not compare.
Identifiers identifiersAfter(const std::string& request, int op, bool compared) {
  if (!compared || !fuzz::carriesIdentifiers(op)) return {};
  return {fuzz::identifiersOf(request, "LogObject"), fuzz::identifiersOf(request, "Reference")};
}

void replay(Emulated& emulated, fuzz::PlainRecording& plain, const Exchange& live) {
  const auto before = fuzz::recordingNow();
  for (int i = 0; i < 2; ++i) {
    const fuzz::PlainRecording::Check check = plain.check(live.request);
    emulated.trace.clear();
    const bool passed = fuzz::send(live.request) == S_OK;
    const bool compared = passed && check.matched;
    expect(passed || check.matched, "what is not compared is no failure");
    expect(emulated.trace.has("Problem in ZetNorvEmul::preWensnd with (message != _nOp)") ==
               !check.matched,
           "a request of another operation is told of");
    const Identifiers identifiers = identifiersAfter(live.request, plain.op(), compared);
    expectEqual(fuzz::firstFieldsOf(ZetNorvEmul::_ids), identifiers.logObjects,
                "the identifiers of the LogObjects are taken");
    expectEqual(fuzz::firstFieldsOf(ZetNorvEmul::_idsRef), identifiers.references,
                "the identifiers of the References are taken");
    const fuzz::Received expected = plain.serve(live, identifiers);
    expectEqual(fuzz::receive(live.answer, live.status), expected);
  }
  expect(fuzz::recordingNow() == before, "a replay leaves the recording as it is");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzz::Input input(bytes, size);
  const std::uint8_t recordedOperation = input.byte();
  const std::uint8_t liveOperation = input.byte();
  const bool hasHeader = input.byte() == 'h';
  Exchange recorded;
  recorded.status = static_cast<signed char>(input.byte());
  const std::string script = input.textTo('\0');
  recorded.request = fuzz::requestFor(recordedOperation, input.textTo('\0'));
  const std::string answer = input.textTo('\0');
  recorded.answer = hasHeader ? xmlAnswer(answer) : answer;
  Exchange live;
  live.request = fuzz::requestFor(liveOperation, input.textTo('\0'));
  live.answer = input.rest();
  live.status = 7;

  Emulated emulated("SAVE");
  Emulated::files().put(Emulated::kScript, script);
  fuzz::PlainRecording plain;
  fuzz::record({recorded}, plain);
  fuzz::startReplay(emulated, plain);
  replay(emulated, plain, live);
  expect(Emulated::files().openFiles() == 0, "no file stays open");
  return 0;
}
