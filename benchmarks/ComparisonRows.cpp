// How the comparison of one message grows with the message.
#include <ZetNorvMod.h>

#include <cstdio>
#include <cstdlib>
#include <functional>

#include "RawFiles.h"
#include "Recording.h"
#include "Rows.h"
#include "SideBySide.h"
#include "SizedMessages.h"
#include "pdm-client/Messages.h"

namespace bench {

namespace {

constexpr std::uint64_t kRecordedSeed = 11;
constexpr std::uint64_t kSentSeed = 12;
constexpr Bounds kTenfold = {12, 11};

using Maker = std::function<std::string(std::uint64_t seed)>;

// One message to compare, and the recorded one in its file.
class Comparison {
 public:
  Comparison(const Recording& recording, const std::string& name, const Maker& make)
      : _recording(recording), _file(recording.folder() + '/' + name), _sent(make(kSentSeed)) {
    writeRaw(_file, make(kRecordedSeed));
  }

  void run() const {
    if (ZetNorvMod::runNorvLike(pdm::kSave, _sent.data(), static_cast<int>(_sent.size()),
                                _file.c_str()) == 0) {
      return;
    }
    std::fputs("a comparison failed\n", stderr);
    std::exit(2);
  }

  // The log would grow by a message each time.
  void clear() const { _recording.clearErrorLog(); }

 private:
  const Recording& _recording;
  std::string _file;
  std::string _sent;
};

void growth(benchmark::State& state, const std::string& root, const std::string& script,
            const Maker& large, const Maker& small, int turns) {
  const Recording recording(root, script);
  recording.mode("REPLAY");
  const Comparison many(recording, "large", large);
  const Comparison few(recording, "small", small);
  many.run();
  few.run();
  Samples samples[2];
  for (Budget budget(turns, 5); budget.next();) {
    samples[0].add(timeOf([&] { many.run(); }));
    // As often as makes up for the size, so that both are measured for as long.
    for (int i = 0; i < 5; ++i) samples[1].add(timeOf([&] { few.run(); }));
    many.clear();
  }
  report(state, kTenfold, samples[0].median(), samples[1].median());
}

Maker ofSize(std::size_t bytes) {
  return [bytes](std::uint64_t seed) { return sizedRequest(pdm::kSave, bytes, seed, 1); };
}

Maker ofAttributes(std::size_t count) {
  return [count](std::uint64_t seed) { return requestOfAttributes(count, seed); };
}

}  // namespace

void addComparisonRows(const std::string& root) {
  const std::string script = scriptWith(20);
  addRow("Comparing 200 KB / 20 KB", [=](benchmark::State& state) {
    growth(state, root, script, ofSize(200'000), ofSize(20'000), 100);
  });
  addRow("Comparing 2 MB / 200 KB", [=](benchmark::State& state) {
    growth(state, root, script, ofSize(2'000'000), ofSize(200'000), 15);
  });
  addRow("Comparing an element of 5,000 attributes / of 500", [=](benchmark::State& state) {
    growth(state, root, script, ofAttributes(5'000), ofAttributes(500), 30);
  });
}

}  // namespace bench
