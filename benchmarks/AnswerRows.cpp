// What writing this run's identifiers into a recorded answer costs.
#include <ZetNorvEmul.h>

#include <memory>

#include "RawFiles.h"
#include "Recording.h"
#include "Rows.h"
#include "SideBySide.h"
#include "SizedMessages.h"
#include "XmlFloor.h"
#include "pdm-client/Messages.h"

namespace bench {

namespace {

constexpr std::uint64_t kSeed = 11;

void rewriting(benchmark::State& state, const std::string& root, std::size_t bytes,
               const Bounds& bounds) {
  const Recording recording(root, scriptWith(20));
  const Exchange what{sizedRequest(pdm::kSave, bytes, kSeed, 1), sizedAnswer(bytes, kSeed)};
  recording.record(1, [&](int) { return what; });
  Recording::settle();
  recording.mode("REPLAY");
  // The request's hook collects the identifiers; its answer is what is measured.
  Recording::exchange(what);
  XmlFloor xml;
  const std::string file = recording.reference("rep321_0.txt");
  std::string answer;
  compare(
      state, bounds, 1'000,
      [&] {
        ZetNorvEmul::_posCursPost = 0;
        Recording::answer(what);
      },
      [&] {
        readRaw(file, answer);
        benchmark::DoNotOptimize(
            xml.parseAndSerialise(std::string_view(answer).substr(pdm::kAnswerHeader)));
      });
}

}  // namespace

void addAnswerRows(const std::string& root) {
  addRow("Rewriting an answer, 20 KB / read, parsed and serialised once",
         [=](benchmark::State& state) {
           rewriting(state, root, 20'000, {1.3, 1.1});
         });
}

}  // namespace bench
