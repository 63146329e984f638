// A host that uses Xerces-C for itself, in processes of its own: neither library disturbs the
// other, whichever starts it first and however often the host ends it.
#include "../scenario/SessionFixture.h"
#include "Program.h"

namespace {

using namespace session_test;

class HostXercesCTest : public SessionFixture {
 protected:
  // Plays the steps in a host of their own; each comes out as one line.
  void play(const Texts& steps) {
    SCOPED_TRACE(joined(steps, " "));
    const ProgramRun run = runProgram(XERCES_HOST, steps);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, joined(steps, "\n") + '\n');
  }

  static std::string joined(const Texts& texts, const std::string& separator) {
    std::string text;
    for (const std::string& piece : texts) text += (text.empty() ? "" : separator) + piece;
    return text;
  }
};

TEST_F(HostXercesCTest, MayStartItBeforeTheLibraryOrAfterIt) {
  play({"initialise", "parse", "library", "parse", "terminate", "library"});
  play({"library", "initialise", "parse", "library", "terminate", "library"});
  play({"initialise", "initialise", "library", "initialise", "parse", "terminate", "terminate",
        "library", "parse", "terminate", "library"});
}

TEST_F(HostXercesCTest, MayStartAndEndItAgainAndAgain) {
  play({"initialise", "parse", "terminate", "library", "initialise", "parse", "terminate",
        "library", "initialise", "parse", "terminate", "library"});
}

TEST_F(HostXercesCTest, MayEndItMoreOftenThanItStartedIt) {
  play({"library", "insist-up", "terminate", "insist-down", "library"});
  play({"library", "initialise", "terminate", "terminate", "insist-down", "library", "library"});
  play({"initialise", "library", "terminate", "terminate", "insist-down", "library"});
  play({"library", "terminate", "terminate", "terminate", "library", "terminate", "library"});
}

TEST_F(HostXercesCTest, MayStartItAgainAfterEndingItTooOften) {
  play({"library", "terminate", "insist-down", "initialise", "parse", "library", "parse",
        "terminate", "library"});
  play({"library", "terminate", "insist-down", "initialise-own", "parse", "library", "parse",
        "terminate", "library"});
}

TEST_F(HostXercesCTest, TakesItsMemoryAndItsPanicHandlerWithIt) {
  play({"initialise-own", "parse", "library", "parse", "terminate", "insist-down", "library",
        "insist-up"});
  play({"initialise-own", "library", "terminate", "insist-down", "initialise-own", "library",
        "parse", "terminate", "insist-down", "library"});
  play({"initialise-own", "initialise", "library", "terminate", "library", "parse", "terminate",
        "insist-down", "terminate", "library"});
}

TEST_F(HostXercesCTest, KeepsItsSettings) {
  play({"remember", "library", "initialise", "odd-settings", "remember", "library", "compare",
        "parse", "compare"});
  play({"initialise", "odd-settings", "remember", "library", "parse", "library", "compare"});
  play({"initialise-own", "odd-settings", "remember", "library", "library", "compare"});
}

TEST_F(HostXercesCTest, ParsesInAnotherThreadMeanwhile) {
  play({"initialise", "thread", "library-often", "join", "terminate", "library"});
  play(
      {"initialise-own", "thread", "library-often", "join", "terminate", "insist-down", "library"});
}

TEST_F(HostXercesCTest, CountsInAnotherThreadMeanwhile) {
  play({"library", "counting-thread", "library-often", "join", "library"});
}

TEST_F(HostXercesCTest, MayDoAnythingInAnyOrder) { play({"wander", "library", "wander"}); }

TEST_F(HostXercesCTest, HasItsRecordingReplayedAroundItsOwnWork) {
  const pdm::PlanOptions plan{.exchanges = 40, .mix = 3, .snapshots = true};
  record(session(1, plan));
  mode("REPLAY");
  const ProgramRun run = runProgram(XERCES_HOST, {"replay"});
  EXPECT_EQ(run.status, 0);
  const std::string log = readBytes(errorLog());
  EXPECT_EQ(findingsIn(log), Texts());
  EXPECT_GT(sectionsIn(log), 10);
  EXPECT_EQ(run.output, "replaced " +
                            std::to_string(countOf(readBytes(indexFile("Scenario2.txt")), "\n")) +
                            "\nreplay\n");
}

}  // namespace
