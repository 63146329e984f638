// The hooks while memory runs out: every request of a whole run fails in turn. The exchange goes
// on, nothing is thrown, and what is recorded is whole.
#include <algorithm>
#include <functional>

#include "../FaultedSession.h"
#include "FailingAllocations.h"
#include "QuietConsole.h"
#include "ZetNorvDb.h"
#include "ZetNorvEmul.h"

namespace fault_test {
namespace {

namespace fs = std::filesystem;
using Times = FailingAllocations::Times;

const std::vector<Exchange> kSession = {{kOpen, 1, 1}, {kNavigate, 1, 2}, {kSave, 1, 3}};
constexpr int kSnapshotBytes = 40;

class HooksWithoutMemoryTest : public EmulatorFixture {
 protected:
  HooksWithoutMemoryTest() {
    environment.set("BIX_ZET_TMP", "\\tmp");
    writeBytes(scratch.file("in/Configuration/xmlStruct.xml"), kScript);
    for (const Exchange& exchange : kSession) {
      if (exchange.op == kSave) writeBytes(documentPath(exchange), documentBytes(exchange));
    }
  }

  std::string folder() const { return scratch.file("work/"); }
  std::string documentPath(const Exchange& exchange) const {
    return folder() + documentName(exchange);
  }
  std::string requestIn(const Exchange& exchange, const std::string& run) const {
    return requestOf(exchange, folder(), run);
  }
  std::string recordedAnswer(const Exchange& exchange) const {
    return answerOf(exchange, folder(), identifier(exchange, "first"));
  }

  // Calls `run` with every request failing in turn, once and for good, until none failed.
  static int sweep(const std::function<void(FailingAllocations&)>& run) {
    int points = 0;
    for (const Times times : {Times::kOnce, Times::kAlways}) {
      for (long nth = 1; !HasFailure(); ++nth) {
        SCOPED_TRACE("request " + std::to_string(nth) +
                     (times == Times::kOnce ? " alone" : " and all behind it"));
        const QuietConsole console;
        FailingAllocations memory(nth, times);
        run(memory);
        EXPECT_FALSE(memory.hasThrown());
        if (!memory.hasFailed()) break;
        ++points;
      }
    }
    RecordProperty("points", points);
    return points;
  }

  static void expectDocumented(long result) {
    EXPECT_TRUE(result == S_OK || result == E_FAIL) << result;
  }

  long sendWithin(FailingAllocations& memory, const std::string& message) {
    long result = S_OK;
    const std::string before = message;
    memory.within([&] {
      result = ZetNorvEmul::preWensnd(0, message.data(), static_cast<int>(message.size()));
    });
    EXPECT_EQ(message, before);
    expectDocumented(result);
    return result;
  }

  Received receiveWithin(FailingAllocations& memory, const std::string& live, int status) {
    char* answer = new char[live.size()];
    std::copy(live.begin(), live.end(), answer);
    const char* const before = answer;
    int bytes = static_cast<int>(live.size());
    int* size = &bytes;
    int* state = &status;
    Received received{S_OK, "", 0, false};
    memory.within([&] { received.result = ZetNorvEmul::postWensnd(0, answer, size, state); });
    expectDocumented(received.result);
    EXPECT_TRUE(size == &bytes && state == &status);
    received.bytes.assign(answer, static_cast<std::size_t>(bytes));
    received.status = status;
    received.replaced = answer != before;
    delete[] answer;
    return received;
  }

  void recordAll() {
    mode("SAVE");
    for (const Exchange& exchange : kSession) {
      EXPECT_EQ(send(requestIn(exchange, "first")), S_OK);
      EXPECT_EQ(receive(recordedAnswer(exchange), exchange.status).result, S_OK);
    }
  }

  // Every line of an index is whole, and a request's has its file with the bytes of its exchange.
  void expectWhole(const std::string& index, const std::string& prefix) const {
    const std::string text = contentOf(scenario(index));
    EXPECT_TRUE(text.empty() || text.back() == '\n') << text;
    const bool answers = prefix == "rep";
    for (const Exchange& exchange : kSession) {
      const std::string name = prefix + std::to_string(exchange.op) + "_0.txt";
      const bool named = text.find('<' + name + '>') != std::string::npos;
      if (!exists(reference(name))) {
        EXPECT_TRUE(answers || !named) << name;
        continue;
      }
      EXPECT_EQ(readBytes(reference(name)),
                answers ? recordedAnswer(exchange) : requestIn(exchange, "first"));
    }
  }

  // The same exchanges with memory: as if nothing had been.
  void expectToRecord() {
    resetEmulator();
    fs::remove_all(scratch.file("in/case1.rec"));
    recordAll();
    for (const Exchange& exchange : kSession) {
      const std::string number = std::to_string(exchange.op);
      EXPECT_EQ(readBytes(reference("save" + number + "_0.txt")), requestIn(exchange, "first"));
      EXPECT_EQ(readBytes(reference("rep" + number + "_0.txt")), recordedAnswer(exchange));
    }
    EXPECT_EQ(readBytes(scenario("database.txt")), objectLines(kSession.back(), true));
  }

  // The recorded answers in the run "second"; those that the memory was refused for may be live.
  void replay(FailingAllocations* memory, const std::string& value) {
    resetEmulator();
    mode(value);
    fs::remove(scratch.file("error.log"));
    for (const Exchange& exchange : kSession) {
      const std::string message = requestIn(exchange, "second");
      const long sent = memory == nullptr ? send(message) : sendWithin(*memory, message);
      const Received received =
          memory == nullptr ? receive("live", 9) : receiveWithin(*memory, "live", 9);
      const bool replays = value == "REPLAY";
      if (memory == nullptr) {
        EXPECT_EQ(sent, S_OK);
        EXPECT_EQ(received.result, S_OK);
        EXPECT_EQ(received.replaced, replays);
      }
      if (received.replaced) {
        EXPECT_TRUE(replays);
        EXPECT_EQ(received.status, exchange.status);
        expectServed(exchange, received.bytes, memory == nullptr);
      } else {
        EXPECT_EQ(received.bytes, "live");
        EXPECT_EQ(received.status, 9);
      }
    }
  }

  // The whole recorded answer, with the identifiers of this run. Where the request could not be
  // compared they were not collected, and as ever those of the request before are written into it;
  // where memory was refused on the way to them, those that were recorded stay.
  void expectServed(const Exchange& exchange, const std::string& bytes, bool exactly) const {
    const std::string whole = answerOf(exchange, folder(), identifier(exchange, "second"));
    if (exactly || bytes == whole) {
      EXPECT_EQ(bytes, whole);
      return;
    }
    const std::string before = identifier(kSession[1], "second");
    EXPECT_TRUE(bytes == recordedAnswer(exchange) || bytes == answerOf(exchange, folder(), before))
        << bytes;
  }
};

TEST_F(HooksWithoutMemoryTest, RecordingGoesOn) {
  mode("SAVE");
  const int points = sweep([&](FailingAllocations& memory) {
    resetEmulator();
    fs::remove_all(scratch.file("in/case1.rec"));
    trace.clear();
    for (const Exchange& exchange : kSession) {
      const std::string live = recordedAnswer(exchange);
      sendWithin(memory, requestIn(exchange, "first"));
      const Received received = receiveWithin(memory, live, exchange.status);
      EXPECT_FALSE(received.replaced);
      EXPECT_EQ(received.bytes, live);
      EXPECT_EQ(received.status, exchange.status);
    }
    expectWhole("Scenario.txt", "save");
    expectWhole("Scenario2.txt", "rep");
  });
  EXPECT_GT(points, 500);
  expectToRecord();
}

TEST_F(HooksWithoutMemoryTest, ReplayGivesAWholeAnswerOrLeavesTheLiveOne) {
  recordAll();
  const int points = sweep([&](FailingAllocations& memory) { replay(&memory, "REPLAY"); });
  EXPECT_GT(points, 500);
  replay(nullptr, "REPLAY");
}

TEST_F(HooksWithoutMemoryTest, ScanLeavesTheAnswers) {
  recordAll();
  const int points = sweep([&](FailingAllocations& memory) { replay(&memory, "SCAN"); });
  EXPECT_GT(points, 500);
  replay(nullptr, "SCAN");
}

TEST_F(HooksWithoutMemoryTest, FindingsMayBeLostButNothingElse) {
  recordAll();
  const std::string altered = request(kNavigate, "<Ask><LogObject/><Other x='1'/></Ask>");
  const auto check = [&](FailingAllocations& memory) {
    resetEmulator();
    mode("SCAN");
    fs::remove(scratch.file("error.log"));
    sendWithin(memory, requestIn(kSession[0], "second"));
    sendWithin(memory, altered);
    return contentOf(scratch.file("error.log"));
  };
  const int points = sweep([&](FailingAllocations& memory) { check(memory); });
  EXPECT_GT(points, 300);
  FailingAllocations enough(0, Times::kOnce);
  EXPECT_NE(check(enough).find("319 - 1 "), std::string::npos);
}

TEST_F(HooksWithoutMemoryTest, DebugLogsMayBeLostButNothingElse) {
  const int points = sweep([&](FailingAllocations& memory) {
    debugMode("SAVE");
    resetEmulator();
    fs::remove_all(scratch.file("ref"));
    fs::remove_all(scratch.file("sce"));
    const Exchange& exchange = kSession.back();
    const std::string live = recordedAnswer(exchange);
    sendWithin(memory, requestIn(exchange, "first"));
    EXPECT_EQ(receiveWithin(memory, live, 3).bytes, live);
    const std::string index = contentOf(debugScenario("Scenario.txt"));
    EXPECT_TRUE(index.empty() || index.back() == '\n') << index;
    if (!index.empty()) {
      EXPECT_EQ(readBytes(debugReference("save321_0.txt")), requestIn(exchange, "first"));
    }
  });
  EXPECT_GT(points, 300);
}

TEST_F(HooksWithoutMemoryTest, SnapshotsAreKeptWholeOrNotAtAll) {
  const std::string block = snapshotBytes(1, kSnapshotBytes);
  const auto save = [&] {
    int size = kSnapshotBytes;
    int ignored = 0;
    return ZetNorvEmul::SaveKavFirst(size, ignored, block.data());
  };
  const auto start = [&](const std::string& value) {
    resetEmulator();
    mode(value);
  };
  int points = sweep([&](FailingAllocations& memory) {
    start("SAVE");
    fs::remove_all(scratch.file("in/case1.rec"));
    long result = S_OK;
    memory.within([&] { result = save(); });
    expectDocumented(result);
    if (contentOf(scenario("Scenario.txt")).empty()) return;
    EXPECT_EQ(readBytes(reference("KavFirst0.bin")), block);
  });
  start("SAVE");
  fs::remove_all(scratch.file("in/case1.rec"));
  EXPECT_EQ(save(), S_OK);
  points += sweep([&](FailingAllocations& memory) {
    start("REPLAY");
    int size = 0;
    int allocated = 0;
    char* data = nullptr;
    long result = S_OK;
    memory.within([&] { result = ZetNorvEmul::ReplayKavFirst(size, allocated, data); });
    expectDocumented(result);
    if (result == S_OK) {
      ASSERT_NE(data, nullptr);
      // A file that the foundation has no memory to open is as good as missing, which leaves zeros.
      const std::string read(data, static_cast<std::size_t>(size));
      EXPECT_TRUE(read == block.substr(0, kSnapshotBytes) || read == std::string(kSnapshotBytes, 0))
          << read;
    }
    delete[] data;
  });
  EXPECT_GT(points, 80);
}

}  // namespace
}  // namespace fault_test
