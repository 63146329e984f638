// A client with other locales than the one that the library was made in: what is written is the
// same, byte by byte, and replays.
#include <functional>
#include <map>
#include <memory>
#include <sstream>

#include "../scenario/SessionFixture.h"
#include "ConsoleCapture.h"
#include "HostileLocale.h"
#include "MVar.h"
#include "Program.h"
#include "ZetNorvDb.h"
#include "ZetNorvTrace.h"
#include "pdm-client/Queries.h"

namespace {

using namespace session_test;

using Tree = std::map<std::string, std::string>;

// Anything that changes the locale until it is gone.
using Change = std::function<std::shared_ptr<void>(Environment&)>;

struct Place {
  const char* name;
  Change change;
};

#if defined(HOSTILE_LOCALES)
// Where the system looks for them: colons of the build's own path would be taken for separators.
std::string foundLocales() {
  static const ScratchDirectory folder;
  std::filesystem::copy(
      HOSTILE_LOCALES, folder.path(),
      std::filesystem::copy_options::recursive | std::filesystem::copy_options::skip_existing);
  return folder.path().string();
}
#endif

std::vector<Place> hostilePlaces() {
  std::vector<Place> places = {
      {"odd streams", [](Environment&) { return std::make_shared<OddStreams>(); }},
      {"nonsense in the environment",
       [](Environment& environment) {
         for (const char* name : {"LC_ALL", "LANG", "LC_NUMERIC", "LC_CTYPE", "LANGUAGE"}) {
           environment.set(name, "../no/such.locale@nonsense");
         }
         return std::shared_ptr<void>();
       }},
  };
#if defined(HOSTILE_LOCALES)
  // A decimal comma and letters that change their case as nobody else's do; characters whose second
  // byte is a backslash or a letter.
  for (const char* name : {"tr_TR.ISO-8859-9", "zh_CN.GBK"}) {
    places.push_back({name, [name](Environment& environment) {
                        return std::make_shared<NamedLocale>(environment, foundLocales(), name);
                      }});
  }
#endif
  return places;
}

class HostLocaleTest : public SessionFixture {
 protected:
  // What a run leaves: files by their names (those of a time by their kind), lines of the trace,
  // the console, and what the hooks handed out.
  struct Outcome {
    Tree files;
    Texts lines;
    std::string console;
    std::string answers;
  };

  HostLocaleTest() { environment.set("KEL_DRIVE_ROOT", scratch.path().string()); }

  void clear() {
    for (const char* name : {"in/case1.rec", "ref", "sce", "err", "tmp", "work", "error.log"}) {
      std::filesystem::remove_all(scratch.path() / name);
    }
  }

  Tree files() const {
    Tree tree;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(scratch.path())) {
      if (!entry.is_regular_file()) continue;
      std::string name = entry.path().string();
      const std::size_t kind = name.find("SNDRCV");
      if (kind != std::string::npos) name = name.substr(kind);
      tree[name] += readBytes(entry.path().string());
    }
    return tree;
  }

  static Texts withoutTimes(const Texts& lines) {
    Texts kept;
    for (const std::string& line : lines) {
      if (line.find("SNDRCV") == std::string::npos) kept.push_back(line);
    }
    return kept;
  }

  // Runs `work` in a place of its own; what came of it is read where the locale is the usual one.
  Outcome in(const Place* place, const std::function<std::string()>& work) {
    resetEmulator();
    trace.clear();
    Outcome outcome;
    {
      const ConsoleCapture console;
      const std::shared_ptr<void> locale = place == nullptr ? nullptr : place->change(environment);
      outcome.answers = work();
      outcome.console = console.text();
    }
    outcome.files = files();
    outcome.lines = withoutTimes(trace.texts());
    return outcome;
  }

  static void expectTheSame(const Outcome& usual, const Outcome& odd) {
    EXPECT_EQ(odd.files.size(), usual.files.size());
    for (const auto& [name, bytes] : usual.files) {
      const auto found = odd.files.find(name);
      EXPECT_TRUE(found != odd.files.end() && found->second == bytes) << name;
    }
    EXPECT_EQ(odd.lines, usual.lines);
    EXPECT_EQ(odd.console, usual.console);
    EXPECT_TRUE(odd.answers == usual.answers);
  }

  // A session and numbers of many digits; everything the hooks hand out.
  std::string play(std::uint64_t seed) const {
    const pdm::SessionOptions options =
        session(seed, {.exchanges = 30, .mix = 3, .snapshots = true});
    pdm::Session played(options);
    std::string all;
    for (const pdm::StepReport& report : played.run()) {
      all += std::to_string(report.step) + report.what + report.remark + report.problem + '\n';
    }
    for (const int status : {1'234'567, -7'654'321}) {
      send(request(12'345'678, "<x n=\"1,5\">1.5</x>"));
      const Received received = receive(std::string(4321, 'a'), status);
      all += received.bytes + std::to_string(received.status) + '\n';
    }
    std::ostringstream answers;
    answers.imbue(std::locale::classic());
    pdm::askDatabase(played.knownObjects(), answers);
    MVar("size", 1'234'567).println();
    ZetNorvTrace.TraPutLN(2, "number ", 1'234'567);
    return all + answers.str();
  }
};

TEST_F(HostLocaleTest, RecordsTheSameBytes) {
  for (const bool debug : {false, true}) {
    if (debug) debugMode("SAVE");
    mode("SAVE");
    clear();
    const Outcome usual = in(nullptr, [&] { return play(1); });
    EXPECT_GT(usual.files.size(), 50u);
    EXPECT_GT(usual.lines.size(), 100u);
    for (const Place& place : hostilePlaces()) {
      SCOPED_TRACE(place.name);
      clear();
      expectTheSame(usual, in(&place, [&] { return play(1); }));
    }
  }
}

TEST_F(HostLocaleTest, ReplaysAndComparesAlike) {
  mode("SAVE");
  const Outcome recorded = in(nullptr, [&] { return play(1); });
  for (const char* value : {"REPLAY", "SCAN"}) {
    mode(value);
    for (const std::uint64_t seed : {std::uint64_t{1}, std::uint64_t{2}}) {
      const auto again = [&] {
        std::filesystem::remove(errorLog());
        return play(seed);
      };
      const Outcome usual = in(nullptr, again);
      for (const Place& place : hostilePlaces()) {
        SCOPED_TRACE(place.name);
        expectTheSame(usual, in(&place, again));
      }
      EXPECT_EQ(findingsIn(readBytes(errorLog())), Texts());
    }
  }
}

TEST_F(HostLocaleTest, ReplaysWhatWasRecordedElsewhere) {
  const pdm::PlanOptions plan{.exchanges = 40, .mix = 3, .snapshots = true};
  for (const Place& place : hostilePlaces()) {
    SCOPED_TRACE(place.name);
    clear();
    {
      const std::shared_ptr<void> locale = place.change(environment);
      record(session(1, plan));
    }
    mode("REPLAY");
    const std::vector<Replayed> steps = replay(session(2, plan));
    expectTheRecording(steps);
    expectNoFinding(steps);
  }
}

TEST_F(HostLocaleTest, FindsTheSameDifferences) {
  mode("SAVE");
  in(nullptr, [&] { return play(1); });
  mode("SCAN");
  const auto altered = [&] {
    std::filesystem::remove(errorLog());
    pdm::SessionOptions options = session(2, {.exchanges = 30, .mix = 3, .snapshots = true});
    std::string all;
    for (int step = 1; step <= 30; ++step) {
      const std::string sent = pdm::Session(options).request(step);
      if (!sent.empty()) all += std::to_string(send(pdm::altered(sent)));
    }
    return all;
  };
  const Outcome usual = in(nullptr, altered);
  EXPECT_GT(findingsIn(readBytes(errorLog())).size(), 5u);
  for (const Place& place : hostilePlaces()) {
    SCOPED_TRACE(place.name);
    expectTheSame(usual, in(&place, altered));
  }
}

}  // namespace
