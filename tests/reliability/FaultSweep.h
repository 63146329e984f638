// Runs some work again and again, each time with another call of the file system failing, until a
// run meets no fault.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "FaultyFileSystem.h"

namespace fault_test {

using Call = FaultyFileSystem::Call;
using Times = FaultyFileSystem::Times;

// One kind of fault, at the n-th call of its kind.
struct FaultFamily {
  std::string name;  // as a property is called
  std::function<void(FaultyFileSystem& files, int nth)> plan;
  // Whether a run met its fault; null: any fault counts.
  std::function<bool(const FaultyFileSystem& files, int nth)> met = nullptr;
};

inline bool wroteUpTo(const FaultyFileSystem& files, int nth) {
  return files.count(Call::kWrite) >= nth;
}

// So few bytes at a time that every line and file takes several reads and writes.
inline constexpr std::size_t kFewBytes = 11;

inline FaultFamily failing(const char* name, Call call, Times times) {
  const char* when = times == Times::kOnce ? "_once" : "_always";
  return {std::string(name) + when,
          [call, times](FaultyFileSystem& files, int nth) { files.fail(call, nth, times); }};
}

inline std::vector<FaultFamily> onceAndAlways(const char* name, Call call) {
  return {failing(name, call, Times::kOnce), failing(name, call, Times::kAlways)};
}

// Closing fails, and what was written to a new file is not all there.
inline std::vector<FaultFamily> losingCloses() {
  std::vector<FaultFamily> families = onceAndAlways("close_losing", Call::kClose);
  for (FaultFamily& family : families) {
    family.plan = [plan = family.plan](FaultyFileSystem& files, int nth) {
      files.loseBytesAtFailedClose();
      plan(files, nth);
    };
  }
  return families;
}

// Every call of a kind, with only a few bytes moved by every read and write.
inline std::vector<FaultFamily> inPieces(const char* name, Call call) {
  std::vector<FaultFamily> families = onceAndAlways(name, call);
  for (FaultFamily& family : families) {
    family.plan = [plan = family.plan](FaultyFileSystem& files, int nth) {
      files.limitTransfers(kFewBytes);
      plan(files, nth);
    };
  }
  return families;
}

// The n-th write takes half of its bytes, and the disk is full from there on.
inline FaultFamily fullDisk() {
  return {"full_disk", [](FaultyFileSystem& files, int nth) { files.fillDiskAtWrite(nth); }};
}

// The same, and what tidies up behind it is refused as well.
inline FaultFamily fullDiskAnd(const char* name, Call refused) {
  const auto plan = [refused](FaultyFileSystem& files, int nth) {
    files.fillDiskAtWrite(nth);
    files.fail(refused, 1, Times::kAlways);
  };
  return {name, plan, wroteUpTo};
}

inline std::vector<FaultFamily> together(std::initializer_list<std::vector<FaultFamily>> parts) {
  std::vector<FaultFamily> all;
  for (const std::vector<FaultFamily>& part : parts)
    all.insert(all.end(), part.begin(), part.end());
  return all;
}

// Runs `work` with every fault of the families. `prepare` goes before each run, `afterwards` behind
// it, both without faults. The number of runs that met a fault is a property of the test, a family
// each, and must be `atLeast` altogether. A run that fails ends the sweep.
struct Sweep {
  std::function<void()> prepare;
  std::function<void(FaultyFileSystem& files, const std::string& family)> work;
  std::function<void(const std::string& family)> afterwards;

  void over(const std::vector<FaultFamily>& families, int atLeast) const {
    int all = 0;
    for (const FaultFamily& family : families) {
      const int points = over(family);
      testing::Test::RecordProperty("points_" + family.name, points);
      all += points;
      if (testing::Test::HasFailure()) return;
    }
    testing::Test::RecordProperty("points", all);
    EXPECT_GE(all, atLeast);
  }

 private:
  int over(const FaultFamily& family) const {
    for (int nth = 1;; ++nth) {
      SCOPED_TRACE(family.name + " at call " + std::to_string(nth));
      prepare();
      bool met = false;
      {
        FaultyFileSystem files;
        family.plan(files, nth);
        work(files, family.name);
        EXPECT_EQ(files.openFiles(), 0);
        met = family.met ? family.met(files, nth) : files.faults() > 0;
      }
      afterwards(family.name);
      if (!met || testing::Test::HasFailure()) return nth - 1;
    }
  }
};

}  // namespace fault_test
