#include "ZetNorvTrace.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "Environment.h"
#include "TraceRecorder.h"

namespace {

TEST(ZetNorvTraceTest, BearsItsNameAndDescription) {
  EXPECT_STREQ(ZetNorvTrace.GetName(), "ZetNorvTrace");
  EXPECT_STREQ(ZetNorvTrace.GetDescription(), "Traces for ZetNorvTrace");
}

TEST(ZetNorvTraceTest, PutsLinesWithWhatIsAppended) {
  const TraceRecorder trace;
  ZetNorvTrace.TraPutLN(2, "Problem");
  ZetNorvTrace.TraPutLN(4, "> Recopie du document ", "text");
  ZetNorvTrace.TraPutLN(2, "[nOp] ", -321);
  ASSERT_EQ(trace.lines().size(), 3U);
  EXPECT_EQ(trace.texts(),
            (std::vector<std::string>{"Problem", "> Recopie du document text", "[nOp] -321"}));
  EXPECT_EQ(trace.lines()[0].level, 2);
  EXPECT_EQ(trace.lines()[1].level, 4);
  EXPECT_EQ(trace.lines()[2].level, 2);
}

// Runs in a process of its own, in which no trace has been asked for a line yet.
class ZetNorvTraceDeathTest : public testing::Test {
 protected:
  ZetNorvTraceDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
  ~ZetNorvTraceDeathTest() override { GTEST_FLAG_SET(death_test_style, _style); }

  [[noreturn]] static void putLinesOfAllLevels() {
    for (const int level : {0, 1, 2, 3, 4}) ZetNorvTrace.TraPutLN(level, "level ", level);
    std::exit(0);
  }

  Environment _environment;

 private:
  std::string _style = GTEST_FLAG_GET(death_test_style);
};

TEST_F(ZetNorvTraceDeathTest, IsQuietButForLevelZero) {
  _environment.unset("KEL_TRACE");
  EXPECT_EXIT(putLinesOfAllLevels(), testing::ExitedWithCode(0), "^level 0\n$");
}

TEST_F(ZetNorvTraceDeathTest, IsRaisedByName) {
  _environment.set("KEL_TRACE", "ZetNorvTrace=2");
  EXPECT_EXIT(putLinesOfAllLevels(), testing::ExitedWithCode(0), "^level 0\nlevel 1\nlevel 2\n$");
}

}  // namespace
