// Directories and files that an ordinary user may not read, write or search.
#include "LimitedProcess.h"
#include "LimitedSession.h"

namespace {

using namespace limits_test;

struct Right {
  const char* path;
  unsigned rights;
  Texts lines;  // what is told; nothing: the client notices nothing
};

const Texts kNoIndexes = {"Problem in ZetNorvEmul::save with file.open",
                          "Problem with KelFOpen (cf. SaveAnswer)!"};
const Texts kNoFiles = {"Problem in ZetNorvEmul::save with mod.save", "Problem with KelFOpen w!",
                        "Problem in ZetNorvToolBox::KavFirst with file.write"};
const Texts kNoRequestIndex = {"Problem in ZetNorvEmul::save with file.open",
                               "Problem in ZetNorvToolBox::KavFirst with file.open"};
const Texts kNoAnswersIndex = {"Problem with KelFOpen (cf. SaveAnswer)!"};
const Texts kNoDatabase = {"buildDB : Problem with KelFOpen!"};
const Texts kNoHostIndex = {"Problem in ZetNorvEmul::saveAnswer with KelFOpen!"};
const Texts kNoCopy = {"Copie des donnees: KO"};
const Texts kNoDebugLog = {"Problem in ZetNorvToolBox::writeLog with KelFOpen"};
const Texts kNoReplay = {"Problem in ZetNorvEmul::preWensnd with KelFOpen!", kNoAnswerIndex};

const std::vector<Right> kRecording = {
    {"in", 0000, kNoIndexes},
    {"in", 0666, kNoIndexes},
    {"in", 0555, {}},
    {"in/case1.rec", 0000, kNoIndexes},
    {"in/case1.rec", 0555, {}},
    {"in/case1.rec/Scenario", 0000, kNoIndexes},
    {"in/case1.rec/Scenario", 0666, kNoIndexes},
    {"in/case1.rec/Scenario", 0555, {}},
    {"in/case1.rec/Scenario", 0111, {}},
    {"in/case1.rec/Scenario/Scenario.txt", 0000, kNoRequestIndex},
    {"in/case1.rec/Scenario/Scenario.txt", 0444, kNoRequestIndex},
    {"in/case1.rec/Scenario/Scenario.txt", 0222, kNoRequestIndex},
    {"in/case1.rec/Scenario/Scenario2.txt", 0000, kNoAnswersIndex},
    {"in/case1.rec/Scenario/Scenario2.txt", 0444, kNoAnswersIndex},
    {"in/case1.rec/Scenario/database.txt", 0000, kNoDatabase},
    {"in/case1.rec/Scenario/database.txt", 0444, kNoDatabase},
    {"in/case1.rec/Reference", 0000, kNoFiles},
    {"in/case1.rec/Reference", 0444, kNoFiles},
    {"in/case1.rec/Reference", 0555, kNoFiles},
    {"in/case1.rec/Reference", 0666, kNoFiles},
    {"in/case1.rec/Reference", 0333, {}},
    {"in/case1.rec/Reference/save12_0.txt", 0000, {}},
    {"in/case1.rec/Reference/save12_0.txt", 0222, {}},
    {"in/case1.rec/Reference/rep12_0.txt", 0000, {}},
    {"in/case1.rec/Reference/rep12_0.txt", 0222, {}},
    {"in/case1.rec/Reference/Kel_Files_Temp", 0000, {}},
    {"in/case1.rec/Reference/Kel_Files_Temp", 0555, {}},
    {"in/case1.rec/Reference/Kel_Files_Temp/part1.KelPart", 0000, {}},
    {"work", 0000, kNoCopy},
    {"work", 0666, kNoCopy},
    {"work/part2.KelPart", 0000, kNoCopy},
    {"work/part2.KelPart", 0222, kNoCopy},
    {"host", 0000, kNoHostIndex},
    {"host", 0555, kNoHostIndex},
    {"tmp", 0000, {}},
    {"", 0555, {}},
};

const std::vector<Right> kRecordingFromNothing = {
    {"in", 0555, kNoIndexes},
    {"in", 0333, {}},
    {"", 0555, {}},
};

const std::vector<Right> kReplaying = {
    {"in", 0000, kNoReplay},
    {"in", 0666, kNoReplay},
    {"in", 0111, {}},
    {"in/case1.rec", 0000, kNoReplay},
    {"in/case1.rec", 0555, {}},
    {"in/case1.rec/Scenario", 0000, kNoReplay},
    {"in/case1.rec/Scenario", 0111, {}},
    {"in/case1.rec/Scenario/Scenario.txt",
     0000,
     {"Problem in ZetNorvEmul::preWensnd with KelFOpen!"}},
    {"in/case1.rec/Scenario/Scenario.txt", 0444, {}},
    {"in/case1.rec/Scenario/Scenario2.txt", 0000, {kNoAnswerIndex}},
    {"in/case1.rec/Scenario/Scenario2.txt", 0444, {}},
    {"in/case1.rec/Scenario/database.txt", 0000, {}},
    {"in/case1.rec/Reference", 0000, {"runNorvLike: load != S_OK", kNoAnswerFile}},
    {"in/case1.rec/Reference", 0555, {}},
    {"in/case1.rec/Reference/save12_0.txt", 0000, {"runNorvLike: load != S_OK"}},
    {"in/case1.rec/Reference/save12_0.txt", 0444, {}},
    {"in/case1.rec/Reference/rep321_0.txt", 0000, {kNoAnswerFile}},
    {"in/case1.rec/Reference/KavFirst3.bin", 0000, {}},
    {"in/Configuration", 0000, {"runNorvLike: buildData != S_OK"}},
    {"in/Configuration/xmlStruct.xml", 0000, {"runNorvLike: buildData != S_OK"}},
    {"error.log", 0000, {"Problem with KelFOpen writeLogFile!"}},
    {"error.log", 0444, {"Problem with KelFOpen writeLogFile!"}},
};

const std::vector<Right> kDebugging = {
    {"err", 0000, kNoDebugLog},
    {"err/case1", 0000, kNoDebugLog},
    {"err/case1/Error", 0000, kNoDebugLog},
    {"err/case1/Error/trace.log", 0444, kNoDebugLog},
    {"err/case1/Error/buildTemp.log", 0444, kNoDebugLog},
    {"err/case1/Error/buildTemp.log", 0000, kNoDebugLog},
    {"err/case1/Error", 0555, {}},
    {"err", 0111, {}},
};

class RealLimitsRightsTest : public LimitedSession {
 protected:
  // The library finds everything from the working directory, so that the ordinary user needs no
  // right to the directories above it.
  RealLimitsRightsTest() : _before(fs::current_path()) {
    writeBytes(file("tmp/database.txt"), "");
    environment.set("KEL_DRIVE_ROOT", ".");
    fs::current_path(scratch.path());
  }

  // Everything may be removed again.
  ~RealLimitsRightsTest() override {
    fs::current_path(_before);
    allow(scratch.path());
  }

  template <class Work>
  Outcomes asOrdinaryUser(const Right& right, const Work& work) {
    const fs::path path = scratch.path() / right.path;
    giveToOrdinaryUser(scratch.path().string());
    const fs::perms before = fs::status(path).permissions();
    fs::permissions(path, static_cast<fs::perms>(right.rights));
    const Outcomes outcomes = unpacked(inCopyOfThisProcess([&] {
      becomeOrdinaryUser();
      return packed(work());
    }));
    fs::permissions(path, before);
    return outcomes;
  }

  void record(const std::vector<Right>& rights) {
    for (const Right& right : rights) {
      SCOPED_TRACE(right.path + std::string(" with the rights ") + std::to_string(right.rights));
      prepare();
      const Outcomes outcomes = asOrdinaryUser(right, [&] { return recordMore(); });
      expectTraced(outcomes, right.lines);
      expectRecorded(outcomes);
      if (HasFailure()) return;
    }
    RecordProperty("points", static_cast<int>(rights.size()));
  }

  void replay(const std::vector<Right>& rights) {
    for (const Right& right : rights) {
      SCOPED_TRACE(right.path + std::string(" with the rights ") + std::to_string(right.rights));
      prepare();
      const Outcomes outcomes = asOrdinaryUser(right, [&] { return replayEarlier(); });
      expectTraced(outcomes, right.lines);
      expectReplayed(outcomes);
      expectUntouched();
      if (HasFailure()) return;
    }
    RecordProperty("points", static_cast<int>(rights.size()));
  }

 private:
  static void allow(const fs::path& path) {
    std::error_code ignored;
    fs::permissions(path, fs::perms::owner_all, fs::perm_options::add, ignored);
    for (const auto& entry : fs::directory_iterator(path, ignored)) {
      if (entry.is_directory(ignored) && !entry.is_symlink()) allow(entry.path());
    }
  }

  fs::path _before;
};

TEST_F(RealLimitsRightsTest, AreTheCauseToldWhenARecordingLacksThem) { record(kRecording); }

TEST_F(RealLimitsRightsTest, AreTheCauseToldWhenAFirstRecordingLacksThem) {
  startFromNothing();
  record(kRecordingFromNothing);
}

TEST_F(RealLimitsRightsTest, AreTheCauseToldWhenAReplayLacksThem) { replay(kReplaying); }

TEST_F(RealLimitsRightsTest, AreTheCauseToldWhenTheDebugLogsLackThem) {
  debug();
  record(kDebugging);
}

// What may not be read is not free: its name is nobody else's.
TEST_F(RealLimitsRightsTest, AreNotNeededToKnowThatANameIsTaken) {
  prepare();
  const Outcomes outcomes = asOrdinaryUser({"in/case1.rec/Reference/save12_0.txt", 0222, {}},
                                           [&] { return recordMore(); });
  expectRecorded(outcomes);
  EXPECT_TRUE(exists(reference("save12_2.txt")));
  EXPECT_TRUE(exists(reference("save12_3.txt")));
}

}  // namespace
