#include "KelError.h"

#include <gtest/gtest.h>

#include <climits>

#include "KelLib.h"
#include "TraceRecorder.h"

TEST(KelErrorTest, NoErrorIsSuccessAndSaysNothing) {
  TraceRecorder trace;
  EXPECT_EQ(KelError::GetReturn(0, "Source", 12), S_OK);
  EXPECT_TRUE(trace.lines().empty());
}

TEST(KelErrorTest, AnyOtherCodeFails) {
  for (const int code : {1, -1, 445, INT_MAX, INT_MIN}) {
    EXPECT_EQ(KelError::GetReturn(code, "Source", 12), E_FAIL) << code;
  }
}

TEST(KelErrorTest, TracesWhereTheErrorWasMet) {
  TraceRecorder trace;
  KelError::GetReturn(7, "Folder/Source", 445);
  ASSERT_EQ(trace.lines().size(), 1u);
  EXPECT_EQ(trace.lines()[0].trace, "KelError");
  EXPECT_EQ(trace.lines()[0].level, 1);
  EXPECT_EQ(trace.lines()[0].text, "Folder/Source:445: error 7");
}

TEST(KelErrorTest, ANullSourceIsNoCrash) {
  TraceRecorder trace;
  EXPECT_EQ(KelError::GetReturn(7, nullptr, 1), E_FAIL);
  ASSERT_EQ(trace.lines().size(), 1u);
  EXPECT_EQ(trace.lines()[0].text, "?:1: error 7");
}
