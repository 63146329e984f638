// Things that are no files where the library reads or writes one, and things that are no
// directories where it needs one: each is passed over with its cause told, none keeps the client
// waiting, and none is read from or written to.
#include <memory>

#include "LimitedSession.h"
#include "SpecialFiles.h"

namespace {

using namespace limits_test;

enum class Thing {
  kDirectory,
  kFilledDirectory,
  kFile,
  kFifo,
  kFifoWithPartner,
  kSocket,
  kLoop,
  kEndlessDevice,
  kFullDevice,
  kNullDevice,
};

const char* nameOf(Thing thing) {
  switch (thing) {
    case Thing::kDirectory:
      return "Directory";
    case Thing::kFilledDirectory:
      return "FilledDirectory";
    case Thing::kFile:
      return "File";
    case Thing::kFifo:
      return "Fifo";
    case Thing::kFifoWithPartner:
      return "FifoWithPartner";
    case Thing::kSocket:
      return "Socket";
    case Thing::kLoop:
      return "LinkToItself";
    case Thing::kEndlessDevice:
      return "EndlessDevice";
    case Thing::kFullDevice:
      return "FullDevice";
    case Thing::kNullDevice:
      break;
  }
  return "NullDevice";
}

constexpr const char* kBytesInIt = "not for the library";

// A thing that stands at a path in place of what was there, until it is gone again.
class Obstacle {
 public:
  Obstacle(std::string path, Thing thing) : _path(std::move(path)), _thing(thing) {
    if (fs::exists(_path)) fs::rename(_path, aside());
    make();
    _type = fs::symlink_status(_path).type();
  }

  // Puts back what was there. Unless the thing `mayGo`, it must still be there, as it was.
  void remove(bool mayGo) {
    const bool there = fs::symlink_status(_path).type() == _type;
    EXPECT_TRUE(there || mayGo) << _path;
    if (there) expectUnused();
    _partner.reset();
    if (there) fs::remove_all(_path);
    if (fs::exists(aside())) fs::rename(aside(), _path);
  }

 private:
  std::string aside() const { return _path + ".aside"; }

  void make() {
    switch (_thing) {
      case Thing::kDirectory:
        fs::create_directories(_path);
        return;
      case Thing::kFilledDirectory:
        return writeBytes(_path + "/file", kBytesInIt);
      case Thing::kFile:
        return writeBytes(_path, kBytesInIt);
      case Thing::kFifo:
        return makeFifo(_path);
      case Thing::kFifoWithPartner:
        makeFifo(_path);
        _partner = std::make_unique<FifoPartner>(_path);
        return _partner->offer(kBytesInIt);
      case Thing::kSocket:
        return makeSocket(_path);
      case Thing::kLoop:
        return fs::create_symlink(_path, _path);
      case Thing::kEndlessDevice:
        return fs::create_symlink(endlessDevice(), _path);
      case Thing::kFullDevice:
        return fs::create_symlink(fullDevice(), _path);
      case Thing::kNullDevice:
        return fs::create_symlink(nullDevice(), _path);
    }
  }

  void expectUnused() {
    if (_thing == Thing::kDirectory) {
      EXPECT_TRUE(fs::is_empty(_path));
    } else if (_thing == Thing::kFilledDirectory) {
      EXPECT_EQ(namesIn(_path), Texts{"file"});
    } else if (_thing == Thing::kFile) {
      EXPECT_EQ(readBytes(_path), kBytesInIt);
    } else if (_partner != nullptr) {
      EXPECT_EQ(_partner->content(), kBytesInIt);
    }
  }

  std::string _path;
  Thing _thing;
  fs::file_type _type = fs::file_type::none;
  std::unique_ptr<FifoPartner> _partner;
};

struct Place {
  const char* path;
  Texts lines;         // what is told; nothing: the client notices nothing
  bool mayGo = false;  // a name of the library's own, or one that a file is moved to
};

const std::vector<Place> kRecordedFiles = {
    {"in/case1.rec/Scenario/Scenario.txt",
     {"Problem in ZetNorvEmul::save with file.open", kRequestFailed,
      "Problem in ZetNorvToolBox::KavFirst with file.open"}},
    {"in/case1.rec/Scenario/Scenario2.txt", {"Problem with KelFOpen (cf. SaveAnswer)!"}},
    {"in/case1.rec/Scenario/database.txt", {"buildDB : Problem with KelFOpen!"}},
    {"in/case1.rec/Reference/save12_1.txt",
     {"Problem with KelFOpen w!", "Problem in ZetNorvEmul::save with mod.save", kRequestFailed}},
    {"in/case1.rec/Reference/save321_1.txt",
     {"Problem with KelFOpen w!", "Problem in ZetNorvEmul::save with mod.save", kRequestFailed}},
    {"in/case1.rec/Reference/rep12_1.txt", {"Problem with KelFOpen w!"}},
    {"in/case1.rec/Reference/rep321_1.txt", {"Problem with KelFOpen w!"}},
    {"in/case1.rec/Reference/KavFirst7.bin",
     {"Problem in ZetNorvToolBox::KavFirst with file.write"}},
    {"in/case1.rec/Reference/rep77_0.txt", {"Problem with KelFOpen w!"}},
    {"in/case1.rec/Reference/Kel_Files_Temp/part2.KelPart", {}, true},
    {"in/case1.rec/Reference/Kel_Files_Temp/.staging", {}, true},
    {"host/Scenario2.txt", {"Problem in ZetNorvEmul::saveAnswer with KelFOpen!"}},
    {"work/part2.KelPart", {"Copie des donnees: KO"}},
    {"tmp/database.txt", {}},
};

const std::vector<Place> kRecordedFilesOnFullDevices = {
    {"in/case1.rec/Scenario/Scenario.txt",
     {"Problem in ZetNorvEmul::save with file.puts", kRequestFailed,
      "Problem in ZetNorvToolBox::KavFirst with file.puts"}},
    {"in/case1.rec/Scenario/Scenario2.txt", {"Problem with KelFPuts (Cf. SaveAnswer)!"}},
    {"in/case1.rec/Scenario/database.txt", {"buildDB : Problem with KelFPuts!"}},
    {"in/case1.rec/Reference/save12_1.txt",
     {"Problem with KelFOpen w!", "Problem in ZetNorvEmul::save with mod.save"}},
    {"in/case1.rec/Reference/rep12_1.txt", {"Problem with KelFOpen w!"}},
    {"in/case1.rec/Reference/KavFirst7.bin",
     {"Problem in ZetNorvToolBox::KavFirst with file.write"},
     true},
    {"in/case1.rec/Reference/rep77_0.txt", {"Problem with KelFOpen w!"}},
    {"in/case1.rec/Reference/Kel_Files_Temp/part2.KelPart", {}, true},
    {"in/case1.rec/Reference/Kel_Files_Temp/.staging", {}, true},
    {"host/Scenario2.txt", {"Problem with KelFPuts!"}},
};

const std::vector<Place> kRecordedDirectories = {
    {"in",
     {"Problem in ZetNorvEmul::save with file.open", "Problem with KelFOpen (cf. SaveAnswer)!",
      "Problem in ZetNorvToolBox::KavFirst with file.write"}},
    {"in/case1.rec",
     {"Problem in ZetNorvEmul::save with file.open", "Problem with KelFOpen (cf. SaveAnswer)!",
      "Problem in ZetNorvToolBox::KavFirst with file.write"}},
    {"in/case1.rec/Scenario",
     {"Problem in ZetNorvEmul::save with file.open", "Problem with KelFOpen (cf. SaveAnswer)!",
      "Problem in ZetNorvToolBox::KavFirst with file.open"}},
    {"in/case1.rec/Reference",
     {"Problem in ZetNorvEmul::save with mod.save", "Problem with KelFOpen w!",
      "Problem in ZetNorvToolBox::KavFirst with file.write"}},
    {"in/case1.rec/Reference/Kel_Files_Temp", {}},
    {"host", {"Problem in ZetNorvEmul::saveAnswer with KelFOpen!"}},
    {"work", {"Copie des donnees: KO"}},
    {"tmp", {}},
};

const std::vector<Place> kReplayedFiles = {
    {"in/case1.rec/Scenario/Scenario.txt", {"Problem in ZetNorvEmul::preWensnd with KelFOpen!"}},
    {"in/case1.rec/Scenario/Scenario2.txt", {kNoAnswerIndex}},
    {"in/case1.rec/Scenario/database.txt", {}},
    {"in/case1.rec/Reference/save12_0.txt", {"runNorvLike: load != S_OK"}},
    {"in/case1.rec/Reference/rep12_0.txt", {kNoAnswerFile}},
    {"in/case1.rec/Reference/rep321_0.txt", {kNoAnswerFile}},
    {"in/case1.rec/Reference/KavFirst3.bin", {}},
    {"in/Configuration/xmlStruct.xml", {"runNorvLike: buildData != S_OK"}},
};

const std::vector<Place> kReplayedDirectories = {
    {"in", {"Problem in ZetNorvEmul::preWensnd with KelFOpen!", kNoAnswerIndex}},
    {"in/case1.rec", {"Problem in ZetNorvEmul::preWensnd with KelFOpen!", kNoAnswerIndex}},
    {"in/case1.rec/Scenario", {"Problem in ZetNorvEmul::preWensnd with KelFOpen!", kNoAnswerIndex}},
    {"in/case1.rec/Reference", {"runNorvLike: load != S_OK", kNoAnswerFile}},
    {"in/Configuration", {"runNorvLike: buildData != S_OK"}},
};

class SpecialFilesFixture : public LimitedSession {
 protected:
  SpecialFilesFixture() { writeBytes(file("tmp/database.txt"), ""); }

  void record(const std::vector<Place>& places, Thing thing) {
    for (const Place& place : places) {
      SCOPED_TRACE(std::string(nameOf(thing)) + " at " + place.path);
      prepare();
      Obstacle obstacle(file(place.path), thing);
      const Outcomes outcomes = recordMore();
      obstacle.remove(place.mayGo);
      expectTraced(outcomes, place.lines);
      expectRecorded(outcomes);
      if (HasFailure()) return;
      ++points;
    }
    RecordProperty("points", points);
  }

  void replay(const std::vector<Place>& places, Thing thing) {
    for (const Place& place : places) {
      SCOPED_TRACE(std::string(nameOf(thing)) + " at " + place.path);
      prepare();
      Obstacle obstacle(file(place.path), thing);
      const Outcomes outcomes = replayEarlier();
      obstacle.remove(place.mayGo);
      expectTraced(outcomes, place.lines);
      expectReplayed(outcomes);
      expectUntouched();
      if (HasFailure()) return;
      ++points;
    }
    RecordProperty("points", points);
  }

  int points = 0;
};

class RealLimitsNoFileTest : public SpecialFilesFixture,
                             public testing::WithParamInterface<Thing> {};

TEST_P(RealLimitsNoFileTest, IsPassedOverByARecording) {
  record(kRecordedFiles, GetParam());
  EXPECT_EQ(points, 14);
}

TEST_P(RealLimitsNoFileTest, IsPassedOverByAReplay) {
  replay(kReplayedFiles, GetParam());
  EXPECT_EQ(points, 8);
}

TEST_P(RealLimitsNoFileTest, IsNoLogOfFindings) {
  replay({{"error.log", {"Problem with KelFOpen writeLogFile!"}}}, GetParam());
  EXPECT_EQ(points, 1);
}

TEST_P(RealLimitsNoFileTest, IsNoDebugLog) {
  debug();
  const Texts lines = {"Problem in ZetNorvToolBox::writeLog with KelFOpen"};
  record({{"err/case1/Error/trace.log", lines}, {"err/case1/Error/buildTemp.log", lines}},
         GetParam());
  prepare();
  const std::string exchanges = "err/case1/Error/" + std::string(ZetNorvEmul::_date.gchar());
  record({{exchanges.c_str(), lines}}, GetParam());
  replay(
      {{"err/case1/Error/fichierXMLretour.log", lines}, {"err/case1/Error/buildTemp.log", lines}},
      GetParam());
  EXPECT_EQ(points, 5);
}

INSTANTIATE_TEST_SUITE_P(Things, RealLimitsNoFileTest,
                         testing::Values(Thing::kDirectory, Thing::kFilledDirectory, Thing::kFifo,
                                         Thing::kFifoWithPartner, Thing::kSocket, Thing::kLoop),
                         [](const auto& thing) { return nameOf(thing.param); });

class RealLimitsNoDirectoryTest : public SpecialFilesFixture,
                                  public testing::WithParamInterface<Thing> {};

TEST_P(RealLimitsNoDirectoryTest, IsPassedOverByARecording) {
  record(kRecordedDirectories, GetParam());
  EXPECT_EQ(points, 8);
}

TEST_P(RealLimitsNoDirectoryTest, IsPassedOverByAReplay) {
  replay(kReplayedDirectories, GetParam());
  EXPECT_EQ(points, 5);
}

TEST_P(RealLimitsNoDirectoryTest, HasNoDebugLogs) {
  debug();
  const Texts lines = {"Problem in ZetNorvToolBox::writeLog with KelFOpen"};
  record({{"err", lines}, {"err/case1", lines}, {"err/case1/Error", lines}}, GetParam());
  replay({{"err", lines}, {"err/case1", lines}, {"err/case1/Error", lines}}, GetParam());
  EXPECT_EQ(points, 6);
}

INSTANTIATE_TEST_SUITE_P(Things, RealLimitsNoDirectoryTest,
                         testing::Values(Thing::kFile, Thing::kFifo, Thing::kFifoWithPartner,
                                         Thing::kSocket, Thing::kLoop, Thing::kNullDevice),
                         [](const auto& thing) { return nameOf(thing.param); });

class RealLimitsDeviceTest : public SpecialFilesFixture {};

TEST_F(RealLimitsDeviceTest, TakesNoRecordingWhenItIsFull) {
  record(kRecordedFilesOnFullDevices, Thing::kFullDevice);
  EXPECT_EQ(points, 10);
}

TEST_F(RealLimitsDeviceTest, TakesNoLogWhenItIsFull) {
  replay({{"error.log", {"Problem with KelFPuts writeLogFile!"}}}, Thing::kFullDevice);
  debug();
  const Texts lines = {"Problem in ZetNorvToolBox::writeLog with file.puts"};
  record({{"err/case1/Error/trace.log", lines}, {"err/case1/Error/buildTemp.log", lines}},
         Thing::kFullDevice);
  EXPECT_EQ(points, 3);
}

// One that is read has no end, or no byte; neither is a document, a recording or a script.
TEST_F(RealLimitsDeviceTest, IsReadByNobody) {
  for (const Thing device : {Thing::kEndlessDevice, Thing::kFullDevice, Thing::kNullDevice}) {
    replay(kReplayedFiles, device);
    record({{"work/part2.KelPart", {"Copie des donnees: KO"}}, {"tmp/database.txt", {}}}, device);
  }
  EXPECT_EQ(points, 30);
}

}  // namespace
