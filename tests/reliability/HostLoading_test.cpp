// Hosts that load the library while they run, and unload it again.
#include <algorithm>

#include "../scenario/SessionFixture.h"
#include "Program.h"

namespace {

using namespace session_test;

constexpr int kRounds = 20;

struct Way {
  const char* library;
  const char* names;
  const char* binding;
};

class HostLoadingTest : public SessionFixture, public testing::WithParamInterface<Way> {
 protected:
  HostLoadingTest() {
    writeBytes(scratch.file("in/Configuration/xmlStruct.xml"),
               "<Scripts><MessageXML value=\"321\"><Composant name=\"LogObject\" "
               "father=\"SaveRequest\" attributs=\"Identifier\"/></MessageXML></Scripts>");
  }

  static std::string play(const std::string& value, Environment& environment) {
    environment.set("ZETNORV_MODE", value);
    const Way& way = GetParam();
    const ProgramRun run =
        runProgram(LOADING_HOST, {way.library, way.names, way.binding, std::to_string(kRounds)});
    EXPECT_EQ(run.status, 0);
    return run.output;
  }

  // The library itself goes, and its counters with it; the two that it stands on stay.
  static std::string rounds(int replaced) {
    std::string text;
    for (int i = 0; i < kRounds; ++i) {
      text +=
          "round from 0 sent 3 received 3 replaced " + std::to_string(replaced) + " mapped 011\n";
    }
    return text + "descriptors 0\ngrown 0\n";
  }
};

TEST_P(HostLoadingTest, StartsAnewEveryTimeAndLeavesNothingBehind) {
  EXPECT_EQ(play("SAVE", environment), rounds(0));
  EXPECT_EQ(countOf(readBytes(indexFile("Scenario.txt")), "\n"), 3 * kRounds);
  EXPECT_EQ(countOf(readBytes(indexFile("Scenario2.txt")), "\n"), 3 * kRounds);
  const Texts files = namesIn(scratch.file("in/case1.rec/Reference"));
  EXPECT_EQ(std::count_if(files.begin(), files.end(),
                          [](const std::string& name) {
                            return name.starts_with("save321_") || name.starts_with("rep321_");
                          }),
            6 * kRounds);
  EXPECT_EQ(play("REPLAY", environment), rounds(3));
  const std::string log = readBytes(errorLog());
  EXPECT_EQ(sectionsIn(log), 3 * kRounds);
  EXPECT_EQ(findingsIn(log), Texts());
}

INSTANTIATE_TEST_SUITE_P(
    AllWays, HostLoadingTest,
    testing::Values(Way{EMULATOR_LIBRARY, "local", "lazy"}, Way{EMULATOR_LIBRARY, "local", "now"},
                    Way{EMULATOR_LIBRARY, "global", "lazy"}, Way{EMULATOR_LIBRARY, "global", "now"},
                    Way{HOST_PLUG_IN, "local", "now"}, Way{HOST_PLUG_IN, "global", "lazy"}));

}  // namespace
