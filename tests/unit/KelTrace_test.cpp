#include "KelTrace.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>
#include <vector>

#include "Environment.h"
#include "TraceRecorder.h"

namespace {

// What goes to the standard error stream while it lives.
class ErrorCapture {
 public:
  ErrorCapture() { testing::internal::CaptureStderr(); }
  ~ErrorCapture() { text(); }

  const std::string& text() {
    if (!_taken) _text = testing::internal::GetCapturedStderr();
    _taken = true;
    return _text;
  }

 private:
  bool _taken = false;
  std::string _text;
};

class KelTraceTest : public testing::Test {
 protected:
  KelTraceTest() : _before(KelTrace::SetListener(nullptr)) { environment.unset("KEL_TRACE"); }
  ~KelTraceTest() override { KelTrace::SetListener(_before); }

  // The lines of levels 0 to 5 that a trace of this name and level writes.
  static std::string written(const char* name, int level) {
    KelTrace trace(name, "A trace", level, "STDERR", 80);
    ErrorCapture error;
    for (int i = 0; i <= 5; ++i) trace.TraPutLN(i, "", i);
    return error.text();
  }

  Environment environment;

 private:
  KelTrace::Listener* _before;
};

class ThrowingListener : public KelTrace::Listener {
 public:
  void OnLine(const char*, int, const std::string&) override { throw std::bad_alloc(); }
};

}  // namespace

TEST_F(KelTraceTest, KnowsItsNameAndDescription) {
  const KelTrace trace("Name", "A description", 0, "STDERR", 1024);
  EXPECT_STREQ(trace.GetName(), "Name");
  EXPECT_STREQ(trace.GetDescription(), "A description");
}

TEST_F(KelTraceTest, NullNamesAreEmptyOnes) {
  const KelTrace trace(nullptr, nullptr, 0, nullptr, 0);
  EXPECT_STREQ(trace.GetName(), "");
  EXPECT_STREQ(trace.GetDescription(), "");
}

TEST_F(KelTraceTest, WritesLinesUpToItsLevel) {
  EXPECT_EQ(written("Name", 0), "0\n");
  EXPECT_EQ(written("Name", 2), "0\n1\n2\n");
  EXPECT_EQ(written("Name", -1), "");
}

TEST_F(KelTraceTest, AnyDestinationIsTheErrorStream) {
  KelTrace trace("Name", "", 2, "ELSEWHERE", 80);
  ErrorCapture error;
  trace.TraPutLN(2, "text");
  EXPECT_EQ(error.text(), "text\n");
}

TEST_F(KelTraceTest, AppendsNumbersAndTexts) {
  KelTrace trace("Name", "", 2, "STDERR", 80);
  ErrorCapture error;
  trace.TraPutLN(2, "n=", -2147483647 - 1);
  trace.TraPutLN(2, "n=", 0);
  trace.TraPutLN(2, "text ", "appended");
  trace.TraPutLN(2, "100%s%n\n");
  EXPECT_EQ(error.text(), "n=-2147483648\nn=0\ntext appended\n100%s%n\n\n");
}

TEST_F(KelTraceTest, NullTextsCountAsEmpty) {
  KelTrace trace("Name", "", 2, "STDERR", 80);
  ErrorCapture error;
  trace.TraPutLN(2, nullptr);
  trace.TraPutLN(2, nullptr, 7);
  trace.TraPutLN(2, "a", static_cast<const char*>(nullptr));
  EXPECT_EQ(error.text(), "\n7\na\n");
}

TEST_F(KelTraceTest, WritesLinesLongerThanExpectedWhole) {
  const std::string text(10000, 'x');
  KelTrace trace("Name", "", 2, "STDERR", 8);
  ErrorCapture error;
  trace.TraPutLN(2, text.c_str());
  EXPECT_EQ(error.text(), text + "\n");
}

struct LevelCase {
  const char* setting;
  int builtWith;
  const char* written;
};

TEST_F(KelTraceTest, TheEnvironmentRaisesTheLevel) {
  const LevelCase cases[] = {
      {"2", 0, "0\n1\n2\n"},
      {"1", 3, "0\n1\n2\n3\n"},
      {"-1", 0, "0\n"},
      {"Name=3", 0, "0\n1\n2\n3\n"},
      {"Other=3", 0, "0\n"},
      {"Other=3,Name=1", 0, "0\n1\n"},
      {"Name=1,Other=3", 0, "0\n1\n"},
      {"4,Name=1", 0, "0\n1\n"},
      {"Name=1,4", 0, "0\n1\n"},
      {"Other=1,2", 0, "0\n1\n2\n"},
      {"Name=4,Name=1", 0, "0\n1\n"},
  };
  for (const LevelCase& c : cases) {
    environment.set("KEL_TRACE", c.setting);
    EXPECT_EQ(written("Name", c.builtWith), c.written) << c.setting;
  }
}

TEST_F(KelTraceTest, MalformedPiecesOfTheEnvironmentAreIgnored) {
  const char* const settings[] = {"",        ",",       "x",       "2x",
                                  "Name",    "Name=",   "Name=x",  "Name=2x",
                                  "=2",      "name=2",  "Names=2", "Name=2147483648",
                                  "Name==2", " Name=2", "Nam=2"};
  for (const char* setting : settings) {
    environment.set("KEL_TRACE", setting);
    EXPECT_EQ(written("Name", 0), "0\n") << setting;
    environment.set("KEL_TRACE", std::string(setting) + ",Name=1");
    EXPECT_EQ(written("Name", 0), "0\n1\n") << setting;
  }
}

TEST_F(KelTraceTest, TheEnvironmentIsReadAtTheFirstLine) {
  KelTrace trace("Name", "", 0, "STDERR", 80);
  environment.set("KEL_TRACE", "1");
  ErrorCapture error;
  trace.TraPutLN(1, "first");
  environment.set("KEL_TRACE", "2");
  trace.TraPutLN(2, "second");
  EXPECT_EQ(error.text(), "first\n");
}

TEST_F(KelTraceTest, ListensToWhatWouldBeWritten) {
  KelTrace trace("Name", "", 1, "STDERR", 80);
  EXPECT_TRUE(trace.Listens(0));
  EXPECT_TRUE(trace.Listens(1));
  EXPECT_FALSE(trace.Listens(2));
  TraceRecorder recorder;
  EXPECT_TRUE(trace.Listens(2));
}

TEST_F(KelTraceTest, ListensReadsTheEnvironmentLikeALine) {
  environment.set("KEL_TRACE", "2");
  KelTrace trace("Name", "", 0, "STDERR", 80);
  EXPECT_FALSE(trace.Listens(3));
  EXPECT_TRUE(trace.Listens(2));
}

TEST_F(KelTraceTest, AListenerHearsEveryLevelAndTheStreamItsOwn) {
  KelTrace trace("Name", "", 1, "STDERR", 80);
  ErrorCapture error;
  TraceRecorder recorder;
  trace.TraPutLN(1, "one");
  trace.TraPutLN(99, "ninety", 9);
  ASSERT_EQ(recorder.lines().size(), 2u);
  EXPECT_EQ(recorder.lines()[0].trace, "Name");
  EXPECT_EQ(recorder.lines()[0].level, 1);
  EXPECT_EQ(recorder.lines()[0].text, "one");
  EXPECT_EQ(recorder.lines()[1].level, 99);
  EXPECT_EQ(recorder.lines()[1].text, "ninety9");
  EXPECT_EQ(error.text(), "one\n");
}

TEST_F(KelTraceTest, AListenerHearsTracesThatSpokeBefore) {
  KelTrace trace("Name", "", 0, "STDERR", 80);
  trace.TraPutLN(5, "nobody hears");
  TraceRecorder recorder;
  trace.TraPutLN(5, "heard");
  ASSERT_EQ(recorder.lines().size(), 1u);
  EXPECT_EQ(recorder.lines()[0].text, "heard");
}

TEST_F(KelTraceTest, AListenerHearsTracesBuiltLater) {
  TraceRecorder recorder;
  KelTrace trace("Name", "", 0, "STDERR", 80);
  trace.TraPutLN(5, "heard");
  EXPECT_EQ(recorder.lines().size(), 1u);
}

TEST_F(KelTraceTest, WithoutAListenerTheLevelHoldsAgain) {
  KelTrace trace("Name", "", 1, "STDERR", 80);
  ErrorCapture error;
  {
    TraceRecorder recorder;
    trace.TraPutLN(2, "heard");
  }
  EXPECT_FALSE(trace.Listens(2));
  trace.TraPutLN(2, "not heard");
  trace.TraPutLN(1, "written");
  EXPECT_EQ(error.text(), "written\n");
}

TEST_F(KelTraceTest, SetListenerGivesTheOneBefore) {
  TraceRecorder first;
  ThrowingListener second;
  EXPECT_EQ(KelTrace::SetListener(&second), &first);
  EXPECT_EQ(KelTrace::SetListener(nullptr), &second);
  EXPECT_EQ(KelTrace::SetListener(&first), nullptr);
}

TEST_F(KelTraceTest, AListenerThatThrowsHarmsNobody) {
  KelTrace trace("Name", "", 0, "STDERR", 80);
  ThrowingListener listener;
  KelTrace::SetListener(&listener);
  EXPECT_NO_THROW(trace.TraPutLN(5, "text"));
  KelTrace::SetListener(nullptr);
}

TEST_F(KelTraceTest, TracesMayGoInAnyOrder) {
  auto first = std::make_unique<KelTrace>("First", "", 0, "STDERR", 80);
  auto second = std::make_unique<KelTrace>("Second", "", 0, "STDERR", 80);
  auto third = std::make_unique<KelTrace>("Third", "", 0, "STDERR", 80);
  second.reset();
  TraceRecorder recorder;
  first->TraPutLN(5, "a");
  third->TraPutLN(5, "b");
  first.reset();
  KelTrace::SetListener(&recorder);
  third->TraPutLN(5, "c");
  ASSERT_EQ(recorder.lines().size(), 3u);
  EXPECT_EQ(recorder.lines()[2].trace, "Third");
}
