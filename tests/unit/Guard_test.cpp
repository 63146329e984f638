#include "Guard.h"

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "KelLib.h"
#include "TraceRecorder.h"

namespace {

using zetnorv::guarded;

TEST(GuardTest, GivesTheResultOfWhatItRuns) {
  const TraceRecorder trace;
  EXPECT_EQ(guarded("Class::operation", [] { return S_OK; }), S_OK);
  EXPECT_EQ(guarded("Class::operation", [] { return 42L; }), 42);
  EXPECT_EQ(guarded("Class::operation", [] { return E_FAIL; }), E_FAIL);
  EXPECT_TRUE(trace.texts().empty());
}

TEST(GuardTest, TurnsAnyExceptionIntoAFailureWithItsLine) {
  const TraceRecorder trace;
  EXPECT_EQ(guarded("Class::operation", []() -> long { throw std::bad_alloc(); }), E_FAIL);
  EXPECT_EQ(guarded("Class::other", []() -> long { throw 42; }), E_FAIL);
  EXPECT_EQ(trace.texts(), (std::vector<std::string>{"Problem in Class::operation: exception",
                                                     "Problem in Class::other: exception"}));
  EXPECT_EQ(trace.lines()[0].level, 2);
}

TEST(GuardTest, CutsTheLineOfAnOperationWithAnEndlessName) {
  const TraceRecorder trace;
  const std::string name(1000, 'x');
  EXPECT_EQ(guarded(name.c_str(), []() -> long { throw 42; }), E_FAIL);
  ASSERT_EQ(trace.texts().size(), 1U);
  EXPECT_EQ(trace.texts()[0], ("Problem in " + name).substr(0, 159));
}

}  // namespace
