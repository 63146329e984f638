// Recording and replaying on disks that are full: by a limit on the size of files, which everybody
// can have, on a small disk where the system lets one be mounted, and with no descriptor left.
#include <fstream>
#include <memory>
#include <set>

#include "LimitedProcess.h"
#include "LimitedSession.h"

namespace {

using namespace limits_test;

constexpr int kShares = 4;              // tests that share the points of a sweep
constexpr std::size_t kLargest = 1200;  // bytes; more than the largest file of a session
constexpr std::size_t kPage = 4096;

class FullDiskFixture : public LimitedSession {
 protected:
  // Of a run that a limit of its own stood in the way of, or none.
  void countDenied(const Outcomes& outcomes) {
    denied += std::any_of(outcomes.begin(), outcomes.end(), [](const Outcome& outcome) {
      return outcome.hasOneOf(kRequestCauses) || outcome.hasOneOf(kAnswerCauses) ||
             outcome.hasOneOf(kSnapshotCauses) || outcome.hasOneOf(kFileCauses) ||
             outcome.hasOneOf(kHostCauses) || outcome.hasOneOf(kObjectCauses);
    });
  }

  void expectDenied(int atLeast) {
    RecordProperty("points", points);
    RecordProperty("denied", denied);
    EXPECT_GE(denied, atLeast);
  }

  int points = 0;
  int denied = 0;
};

class RealLimitsFullDiskTest : public FullDiskFixture, public testing::WithParamInterface<int> {};

TEST_P(RealLimitsFullDiskTest, RecordsWholeThingsOnlyWhereFilesCannotGrow) {
  for (std::size_t bytes = static_cast<std::size_t>(GetParam()); bytes < kLargest && !HasFailure();
       bytes += kShares * (bytes < 400 ? 1 : 7)) {
    SCOPED_TRACE("no file beyond " + std::to_string(bytes) + " bytes");
    prepare();
    const Outcomes outcomes = unpacked(inCopyOfThisProcess([&] {
      const FileSizeLimit limit(bytes);
      return packed(recordMore());
    }));
    expectRecorded(outcomes);
    countDenied(outcomes);
    ++points;
  }
  expectDenied(100);
}

TEST_P(RealLimitsFullDiskTest, ReplaysWhereTheLogCannotGrow) {
  for (std::size_t bytes = static_cast<std::size_t>(GetParam()); bytes < 500 && !HasFailure();
       bytes += kShares * 5) {
    SCOPED_TRACE("no file beyond " + std::to_string(bytes) + " bytes");
    prepare();
    const Outcomes outcomes = unpacked(inCopyOfThisProcess([&] {
      const FileSizeLimit limit(bytes);
      return packed(replayEarlier());
    }));
    expectReplayed(outcomes);
    EXPECT_TRUE(std::all_of(outcomes.begin(), outcomes.end(),
                            [](const auto& outcome) { return outcome.result == S_OK; }));
    expectUntouched();
    denied += anyHas(outcomes, "Problem with KelFPuts writeLogFile!") ? 1 : 0;
    ++points;
  }
  expectDenied(10);
}

// With few descriptors left, some steps of the recording have their index and not their file.
TEST_P(RealLimitsFullDiskTest, RecordsWholeThingsOnlyWithoutDescriptors) {
  for (int left = 0; left < 4 && !HasFailure(); ++left) {
    for (std::size_t until = static_cast<std::size_t>(GetParam()); until < 12; until += kShares) {
      SCOPED_TRACE(std::to_string(left) + " descriptors left up to step " + std::to_string(until));
      prepare();
      const Outcomes outcomes = unpacked(inCopyOfThisProcess([&] {
        auto few = std::make_unique<FewDescriptors>(left);
        return packed(recordMore([&](std::size_t step) {
          if (step == until) few.reset();
        }));
      }));
      expectRecorded(outcomes);
      countDenied(outcomes);
      ++points;
    }
  }
  expectDenied(4);
}

TEST_P(RealLimitsFullDiskTest, ReplaysWithoutDescriptors) {
  const int left = GetParam();
  prepare();
  const Outcomes outcomes = unpacked(inCopyOfThisProcess([&] {
    const FewDescriptors few(left);
    return packed(replayEarlier());
  }));
  expectReplayed(outcomes);
  EXPECT_EQ(isClean(outcomes), left > 0);
  expectUntouched();
}

INSTANTIATE_TEST_SUITE_P(Shares, RealLimitsFullDiskTest, testing::Range(0, kShares));

// A disk that is full in earnest. Where the system lets none be mounted, the limit on the size of
// files has to do.
class RealLimitsSmallDiskTest : public FullDiskFixture {
 protected:
  static constexpr int kPages = 128;
  static constexpr const char* kNoDisk = "no disk";

  // Records more with `left` pieces of room left on a disk; all is checked where the disk is seen.
  // False when there is no disk.
  bool recordOnDisk(const std::string& piece, int left) {
    const std::string outcomes = inCopyOfThisProcess([&]() -> std::string {
      fs::create_directories(file("in"));
      // Either the bytes or the files are used up, never both.
      if (!mountSmallDisk(file("in"), kPages * kPage, 2 * kPages)) return kNoDisk;
      prepare();
      fill(piece, left);
      const Outcomes recorded = recordMore();
      fs::remove_all(file("in/ballast"));
      expectRecorded(recorded);
      return packed(recorded);
    });
    if (outcomes == kNoDisk) return false;
    countDenied(unpacked(outcomes));
    for (const Outcome& outcome : unpacked(outcomes)) {
      _told.insert(outcome.lines.begin(), outcome.lines.end());
    }
    ++points;
    return true;
  }

  void recordWithLittleRoom(const std::string& piece, const std::string& line) {
    constexpr int kMost = 14;
    bool mounted = true;
    for (int left = 0; left < kMost && mounted && !HasFailure(); ++left) {
      SCOPED_TRACE(std::to_string(left) + " pieces of room");
      mounted = recordOnDisk(piece, left);
    }
    RecordProperty("disk", mounted ? "a small disk" : "the limit on the size of files alone");
    if (mounted) {
      expectDenied(kMost / 2);
      EXPECT_TRUE(_told.contains(line)) << line;
    }
  }

 private:
  std::string ballast(int i) const { return file("in/ballast/" + std::to_string(i)); }

  static bool isWritten(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary);
    out << bytes;
    out.close();
    return !out.fail();
  }

  // Takes all of the disk but room for `left` pieces.
  void fill(const std::string& piece, int left) {
    fs::create_directories(file("in/ballast"));
    int count = 0;
    while (isWritten(ballast(count), piece)) ++count;
    fs::remove(ballast(count));
    for (; left > 0 && count > 0; --left) fs::remove(ballast(--count));
  }

  std::set<std::string> _told;
};

TEST_F(RealLimitsSmallDiskTest, RecordsWholeThingsOnlyOnAFullDisk) {
  recordWithLittleRoom(std::string(kPage, 'b'), "Problem with KelFWrite!");
}

TEST_F(RealLimitsSmallDiskTest, RecordsWholeThingsOnlyOnADiskWithoutRoomForFiles) {
  recordWithLittleRoom("", "Problem with KelFOpen w!");
}

}  // namespace
