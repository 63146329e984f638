// Hostile documents on every way into the library, as its host meets them: each is refused or read
// with the line that is announced, within bounds, and without a file or a connection of its own.
#include "HostileDocuments.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "EmulatorFixture.h"
#include "Files.h"
#include "KelLib.h"
#include "Sockets.h"
#include "WatchedSystem.h"
#include "ZetNorvEmul.h"

namespace {

constexpr std::size_t kMostMemory = std::size_t{256} * 1024 * 1024;

// With the elements that the documents are made of, so that all of them are compared.
constexpr const char* kScript =
    "<Scripts><MessageXML value=\"321\">"
    "<Composant name=\"Harmless\" father=\"\" attributs=\"Identifier\"/>"
    "<Composant name=\"a\" father=\"\" attributs=\"x a0 a39999\"/>"
    "<Composant name=\"b\" father=\"a\" attributs=\"x\"/>"
    "<Composant name=\"n\" father=\"a\" attributs=\"\"/></MessageXML></Scripts>";
constexpr const char* kHarmless =
    "<Harmless Identifier=\"x\"><LogObject Identifier=\"of this run\"/></Harmless>";
constexpr const char* kAnswer = "<A><LogObject Identifier=\"recorded\"/></A>";
constexpr const char* kServed = "<A><LogObject Identifier=\"of this run\"/></A>";
constexpr const char* kBaitBytes = "bait that nobody takes";

// The lines of a way in, in their order, for a document that is taken and for one that is not.
struct Announced {
  std::vector<std::string> accepted;
  std::vector<std::string> refused;
};

class HostileDocumentsTest : public EmulatorFixture {
 protected:
  HostileDocumentsTest() {
    writeBytes(bait, kBaitBytes);
    writeBytes(script, kScript);
  }

  void recordStep(const std::string& request, const std::string& answer) {
    writeBytes(scenario("Scenario.txt"), "<321><save>\n");
    writeBytes(scenario("Scenario2.txt"), "<321><rep><7>\n");
    writeBytes(reference("save"), request);
    writeBytes(reference("rep"), answer);
  }

  // Runs `way` with every document, and the harmless session behind each. The name that the parser
  // gives the document is `source`.
  void all(const std::string& source, const Announced& announced,
           const std::function<void(const HostileDocument&, const std::string&)>& way) {
    for (const HostileDocument& document : hostileDocuments()) {
      SCOPED_TRACE(document.name);
      const std::string text = document.make(bait);
      trace.clear();
      resetEmulator();
      way(document, text);
      expectLines(document.accepted, announced, source);
      harmlessSession();
      if (HasFailure()) return;
      ++_count;
    }
    RecordProperty("documents", _count);
    RecordProperty("most memory", std::to_string(_peak));
    EXPECT_GE(_count, 140);
  }

  // A call of a hook with the document: watched.
  void watched(const std::function<void()>& call) {
    WatchedSystem system;
    system.within(call);
    // The scenario's own, at least one.
    EXPECT_FALSE(system.opened().empty());
    for (const std::string& path : system.opened()) {
      EXPECT_EQ(path.find(scratch.file("")), 0u) << path;
      EXPECT_NE(path, bait);
    }
    EXPECT_EQ(system.connections(), 0);
    EXPECT_LT(system.peak(), kMostMemory);
    _peak = std::max(_peak, system.peak());
  }

  const std::string bait = scratch.file("bait");
  const std::string script = scratch.file("in/Configuration/xmlStruct.xml");

 private:
  void expectLines(bool accepted, const Announced& announced, const std::string& source) {
    const std::vector<std::string>& lines = accepted ? announced.accepted : announced.refused;
    EXPECT_EQ(tracedOf(announced.accepted), accepted ? lines : tracedOf(announced.accepted));
    EXPECT_EQ(tracedOf(announced.refused), accepted ? tracedOf(announced.refused) : lines);
    if (accepted) {
      for (const std::string& line : announced.refused) {
        const bool shared = std::find(lines.begin(), lines.end(), line) != lines.end();
        EXPECT_TRUE(shared || !trace.has(line)) << line;
      }
    }
    EXPECT_EQ(trace.refusedDocument(), accepted ? "" : source);
    for (const TraceRecorder::Line& line : trace.lines()) {
      EXPECT_EQ(line.text.find(kBaitBytes), std::string::npos);
      if (line.trace != "KelXML") continue;
      EXPECT_EQ(line.text.find('\n'), std::string::npos) << line.text;
      EXPECT_LT(line.text.size(), 5000u);
    }
  }

  // Nothing of the document is left over: the next run is as any other.
  void harmlessSession() {
    resetEmulator();
    std::filesystem::remove_all(scratch.file("in/case1.rec"));
    writeBytes(script, kScript);
    recordStep(request(321, kHarmless), xmlAnswer(kAnswer));
    mode("REPLAY");
    EXPECT_EQ(send(request(321, kHarmless)), S_OK);
    const Received received = receive("live", 3);
    EXPECT_EQ(received.result, S_OK);
    EXPECT_EQ(received.bytes, xmlAnswer(kServed));
    EXPECT_EQ(received.status, 7);
    std::filesystem::remove_all(scratch.file("in/case1.rec"));
    std::filesystem::remove(scratch.file("error.log"));
  }

  int _count = 0;
  std::size_t _peak = 0;
};

TEST_F(HostileDocumentsTest, AsARequestThatIsRecorded) {
  all("msgBuildTemp", {{}, {"buildTemp Problem XMLParse"}},
      [&](const HostileDocument&, const std::string& text) {
        mode("SAVE");
        const std::string message = request(321, text);
        watched([&] { EXPECT_EQ(send(message), S_OK); });
        EXPECT_EQ(readBytes(reference("save321_0.txt")), message);
        EXPECT_EQ(readBytes(scenario("Scenario.txt")), "<321><save321_0.txt>\n");
      });
}

TEST_F(HostileDocumentsTest, AsARequestThatIsChecked) {
  all("msg builderMessage",
      {{"NO LogObject Tags", "NO RefObject Tags"},
       {"Out ... XMLParse", "ZetNorvMod: Builder::builderMessage msg PROBLEM",
        "Problem in ZetNorvEmul::preWensnd with microMod.run"}},
      [&](const HostileDocument& document, const std::string& text) {
        mode("REPLAY");
        recordStep(request(321, kHarmless), xmlAnswer(kAnswer));
        const std::string message = request(321, text);
        watched([&] { EXPECT_EQ(send(message) == S_OK, document.accepted); });
        EXPECT_EQ(readBytes(reference("save")), request(321, kHarmless));
        // The recorded answer, with the identifiers that were recorded: the request has none.
        EXPECT_EQ(receive("live").bytes, xmlAnswer(kAnswer));
      });
}

TEST_F(HostileDocumentsTest, AsARecordedRequest) {
  all("msg builderMessage",
      {{"extractLogObject OK", "NO RefObject Tags"},
       {"Out ... XMLParse", "ZetNorvMod: Builder::builderMessage msgRef PROBLEM",
        "Problem in ZetNorvEmul::preWensnd with microMod.run"}},
      [&](const HostileDocument& document, const std::string& text) {
        mode("SCAN");
        recordStep(request(321, text), xmlAnswer(kAnswer));
        watched([&] { EXPECT_EQ(send(request(321, kHarmless)) == S_OK, document.accepted); });
        EXPECT_EQ(readBytes(reference("save")), request(321, text));
        EXPECT_EQ(receive("live").bytes, "live");
      });
}

TEST_F(HostileDocumentsTest, AsARecordedAnswer) {
  all("msg new msg",
      {{"ZetNorvEmul: Fin Copie des buffers"},
       {"Problem with XMLParse", "ZetNorvEmul: Fin Copie des buffers"}},
      [&](const HostileDocument& document, const std::string& text) {
        mode("REPLAY");
        // The header and a NUL are no document: what is only a header is served unread.
        const std::string answer = xmlAnswer(text.empty() ? "\n" : text);
        recordStep(request(321, kHarmless), answer);
        EXPECT_EQ(send(request(321, kHarmless)), S_OK);
        trace.clear();
        Received received{};
        watched([&] { received = receive("live", 3); });
        EXPECT_EQ(received.result, S_OK);
        // Without objects in it an answer is served as it was recorded, whatever it is.
        EXPECT_TRUE(received.bytes == answer) << document.name;
        EXPECT_EQ(received.status, 7);
      });
}

TEST_F(HostileDocumentsTest, AsALiveAnswer) {
  all("buildDB", {{"ZetNorvDb: recherche Document"}, {"buildDB Problem XMLParse"}},
      [&](const HostileDocument&, const std::string& text) {
        mode("SAVE");
        EXPECT_EQ(send(request(321, kHarmless)), S_OK);
        trace.clear();
        const std::string answer = xmlAnswer(text.empty() ? "\n" : text);
        Received received{};
        watched([&] { received = receive(answer, 3); });
        EXPECT_EQ(received.result, S_OK);
        EXPECT_TRUE(received.bytes == answer);
        EXPECT_EQ(received.status, 3);
        EXPECT_FALSE(received.replaced);
        EXPECT_TRUE(readBytes(reference("rep321_0.txt")) == answer);
        EXPECT_FALSE(exists(scenario("database.txt")));
      });
}

TEST_F(HostileDocumentsTest, AsTheComparisonScript) {
  all("err msg",
      {{"runNorvLike: buildData != S_OK"}, {"Out ... XMLParse", "runNorvLike: buildData != S_OK"}},
      [&](const HostileDocument&, const std::string& text) {
        mode("REPLAY");
        recordStep(request(321, kHarmless), xmlAnswer(kAnswer));
        // An empty script is told of on the console.
        writeBytes(script, text.empty() ? "\n" : text);
        watched([&] { EXPECT_EQ(send(request(321, kHarmless)), E_FAIL); });
        EXPECT_EQ(receive("live").bytes, xmlAnswer(kAnswer));
      });
}

TEST_F(HostileDocumentsTest, WithVeryManyObjectsAreCheckedAndServed) {
  constexpr int kObjects = 50000;
  std::string sent = "<Harmless Identifier=\"x\">";
  std::string recorded = "<A>";
  std::string served = "<A>";
  for (int i = 0; i < kObjects; ++i) {
    sent += "<LogObject Identifier=\"new" + std::to_string(i) + "\"/>";
    recorded += "<LogObject Identifier=\"" + std::to_string(i) + "\"/>";
    served += "<LogObject Identifier=\"new" + std::to_string(i) + "\"/>";
  }
  sent += "</Harmless>";
  recordStep(request(321, sent), xmlAnswer(recorded + "</A>"));
  mode("REPLAY");
  Received received{};
  watched([&] {
    EXPECT_EQ(send(request(321, sent)), S_OK);
    received = receive("live");
  });
  EXPECT_EQ(received.result, S_OK);
  EXPECT_TRUE(received.bytes == xmlAnswer(served + "</A>"));
}

TEST(WatchedSystemTest, SeesWhatIsOpenedConnectedAndTaken) {
  const ScratchDirectory scratch;
  writeBytes(scratch.file("file"), "bytes");
  WatchedSystem system;
  std::vector<char> kept;
  system.within([&] {
    readBytes(scratch.file("file"));
    std::vector<char>(5'000'000);
    kept.resize(3'000'000);
  });
  ASSERT_FALSE(system.opened().empty());
  EXPECT_EQ(system.opened().front(), scratch.file("file"));
  EXPECT_GE(system.peak(), 5'000'000u);
  EXPECT_LT(system.peak(), 6'000'000u);
  EXPECT_EQ(system.connections(), 0);
  system.within(makeAndCloseSocket);
  EXPECT_EQ(system.connections(), 1);
}

}  // namespace
