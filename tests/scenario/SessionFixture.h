// Sessions of the sample client, recorded and replayed in the test's own process.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "EmulatorFixture.h"
#include "Files.h"
#include "KelLib.h"
#include "pdm-client/Messages.h"
#include "pdm-client/Session.h"
#include "pdm-client/Snapshots.h"

namespace session_test {

using Texts = std::vector<std::string>;

// The values of the attribute "Identifier" of all elements named `tag`, found by their text.
inline Texts identifiersIn(const std::string& text, const std::string& tag) {
  const std::string start = '<' + tag + " Identifier=\"";
  Texts values;
  for (std::size_t at = text.find(start); at != std::string::npos; at = text.find(start, at)) {
    at += start.size();
    values.push_back(text.substr(at, text.find('"', at) - at));
  }
  return values;
}

// `text` with the k-th of these values replaced by the k-th of `values`.
inline std::string withIdentifiers(std::string text, const std::string& tag, const Texts& values) {
  const std::string start = '<' + tag + " Identifier=\"";
  std::size_t at = 0;
  for (const std::string& value : values) {
    at = text.find(start, at);
    if (at == std::string::npos) return text;
    at += start.size();
    text.replace(at, text.find('"', at) - at, value);
  }
  return text;
}

// The recorded answer as the run that sends `request` has to get it.
inline std::string answerFor(const std::string& request, const std::string& recorded) {
  const int operation = pdm::operationOf(request);
  if (operation != pdm::kNavigate && operation != pdm::kSave) return recorded;
  std::string text = recorded.substr(pdm::kAnswerHeader);
  for (const char* tag : {"LogObject", "Reference"}) {
    text = withIdentifiers(text, tag, identifiersIn(request, tag));
  }
  return pdm::answerWith(0, text);
}

// The lines of "error.log" that tell of a difference.
inline Texts findingsIn(const std::string& log) {
  Texts findings;
  std::istringstream lines(log);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t digits = line.find_first_not_of("0123456789");
    if (digits == std::string::npos || digits == 0 || line.compare(digits, 3, " - ") != 0) continue;
    if (line.size() > digits + 3 && line[digits + 3] >= '0' && line[digits + 3] <= '9') {
      findings.push_back(line);
    }
  }
  return findings;
}

inline int countOf(const std::string& text, const std::string& piece) {
  int count = 0;
  for (std::size_t at = text.find(piece); at != std::string::npos; at = text.find(piece, at + 1)) {
    ++count;
  }
  return count;
}

inline int sectionsIn(const std::string& log) { return countOf(log, "\n###########   Message "); }

class SessionFixture : public EmulatorFixture {
 protected:
  // One step of a replay, as the client's exchange layer saw it. A snapshot has no request.
  struct Replayed {
    std::string request;
    long sent = S_OK;
    Received received{S_OK, "", 0, false};
    std::string problem;  // of a snapshot
  };

  SessionFixture() {
    environment.set("BIX_ZET_TMP", "\\tmp");
    writeBytes(scratch.file("in/Configuration/xmlStruct.xml"), readBytes(PDM_CLIENT_SCRIPT));
  }

  pdm::SessionOptions session(std::uint64_t seed, const pdm::PlanOptions& plan) const {
    pdm::SessionOptions options;
    options.seed = seed;
    options.plan = plan;
    options.workFolder = scratch.file("work");
    options.documentBytes = 64;
    return options;
  }

  // Makes `name` the scenario of what follows.
  void scenarioNamed(const std::string& name) {
    _name = name;
    environment.set("ZET_LOG_NAME", name);
  }
  std::string recordedFile(const std::string& name) const {
    return scratch.file("in/" + _name + ".rec/Reference/" + name);
  }
  std::string indexFile(const std::string& name) const {
    return scratch.file("in/" + _name + ".rec/Scenario/" + name);
  }

  std::string errorLog() const { return scratch.file("error.log"); }

  // The client works with the server, as a process of its own that records would.
  void record(const pdm::SessionOptions& options) {
    resetEmulator();
    mode("SAVE");
    for (const pdm::StepReport& report : pdm::Session(options).run()) {
      EXPECT_EQ(report.problem, "") << _name << " step " << report.step;
      EXPECT_EQ(report.remark, "") << _name << " step " << report.step;
    }
  }

  // Sends the requests of a session without a server, as a process of its own would. The answer
  // that is there before the receive hook is no server's.
  std::vector<Replayed> replay(const pdm::SessionOptions& options) {
    resetEmulator();
    trace.clear();
    std::filesystem::remove(errorLog());
    const pdm::Session session(options);
    std::vector<Replayed> steps;
    for (int step = 1; step <= static_cast<int>(session.plan().size()); ++step) {
      steps.push_back(replayStep(session, step));
    }
    return steps;
  }

  // Compares every step of a replay with the files of the recording.
  void expectTheRecording(const std::vector<Replayed>& steps) const {
    std::map<int, int> sent;  // how many requests of each operation
    for (std::size_t i = 0; i < steps.size(); ++i) {
      SCOPED_TRACE(_name + " step " + std::to_string(i + 1));
      const Replayed& step = steps[i];
      EXPECT_EQ(step.problem, "");
      if (step.request.empty()) continue;
      const int op = pdm::operationOf(step.request);
      const std::string file =
          "rep" + std::to_string(op) + '_' + std::to_string(sent[op]++) + ".txt";
      EXPECT_EQ(step.sent, S_OK);
      EXPECT_EQ(step.received.result, S_OK);
      EXPECT_EQ(step.received.status, 0);
      EXPECT_TRUE(step.received.replaced);
      EXPECT_TRUE(step.received.bytes == answerFor(step.request, readBytes(recordedFile(file))))
          << file;
    }
  }

  // Expects a section for every request but the commits, and no finding in any.
  void expectNoFinding(const std::vector<Replayed>& steps) const {
    int compared = 0;
    for (const Replayed& step : steps) {
      const int op = pdm::operationOf(step.request);
      compared += op != 0 && op != pdm::kCommit ? 1 : 0;
    }
    const std::string log = readBytes(errorLog());
    EXPECT_EQ(sectionsIn(log), compared) << _name;
    EXPECT_EQ(findingsIn(log), Texts()) << _name;
  }

  // Expects that the hooks found nothing to complain of.
  void expectNoProblem() const {
    for (const TraceRecorder::Line& line : trace.lines()) {
      EXPECT_EQ(line.text.find("Probl"), std::string::npos) << line.text;
      EXPECT_EQ(line.text.find("error"), std::string::npos) << line.text;
      EXPECT_EQ(line.text.find("STOP"), std::string::npos) << line.text;
    }
  }

 private:
  static Replayed replayStep(const pdm::Session& session, int step) {
    const pdm::Step& what = session.plan()[static_cast<std::size_t>(step) - 1];
    Replayed replayed;
    if (what.action == pdm::Action::snapshot) {
      replayed.problem = pdm::takeSnapshot(what.number).problem;
      return replayed;
    }
    replayed.request = session.request(step);
    replayed.sent = send(replayed.request);
    replayed.received = receive("no server", 7);
    return replayed;
  }

  std::string _name = "case1";
};

}  // namespace session_test
