// One working session of the client, from opening to committing.
//
// Sessions can be played in any process that has the library: the sample client's, a test's, a
// benchmark's. The library's state is the process's, so two sessions in one process follow each
// other as one longer session would.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "pdm-client/AnswerCheck.h"
#include "pdm-client/ExchangeLayer.h"
#include "pdm-client/Messages.h"
#include "pdm-client/ProductStructure.h"
#include "pdm-client/RunNumbers.h"
#include "pdm-client/SessionPlan.h"
#include "pdm-client/ToyServer.h"

namespace pdm {

struct SessionOptions {
  std::uint64_t seed = 0;            // of identifiers and time stamps
  PlanOptions plan;                  // what is done
  std::string workFolder = "work";   // where the client keeps its documents; created when missing
  std::size_t documentBytes = 4096;  // size of a document, at least
  bool offline = false;              // leaves the server out
  int alteredStep = 0;               // the step, from 1 on, whose request has a fault; 0: none
  std::ostream* log = nullptr;       // gets one line per step; null: none
};

// What came of one step.
struct StepReport {
  int step = 0;       // from 1 on; in a recording the line of its request index
  int operation = 0;  // 0 for a snapshot
  int sent = 0;       // bytes
  int received = 0;   // bytes
  int status = 0;
  std::string what;     // where the answer came from, or what was done with the snapshot
  std::string remark;   // which hook failed; empty when none did
  std::string problem;  // empty when the client can work with what it got
};

// Prints a line about the step.
void printStep(std::ostream& out, const StepReport& report);

class Session {
 public:
  explicit Session(SessionOptions options);
  // The parts of a session refer to each other.
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  const std::vector<Step>& plan() const { return _plan; }

  // The request of a step, from 1 on, as it is sent; empty for a snapshot or a step that is not in
  // the plan. Exchanges nothing and writes no file.
  std::string request(int step) const;

  // Plays all steps. A step with a problem does not end the session.
  std::vector<StepReport> run();

  // The documents and references that the answers told of, each once.
  const std::vector<KnownObject>& knownObjects() const { return _known; }

 private:
  StepReport play(int step);
  StepReport exchange(int step);
  std::string build(int step) const;
  bool writeDocument(std::size_t item, int step) const;
  void learn(std::string_view answer);

  SessionOptions _options;
  ProductStructure _product;
  RunNumbers _numbers;
  RequestBuilder _requests;
  ToyServer _server;
  ExchangeLayer _line;
  std::vector<Step> _plan;
  std::vector<KnownObject> _known;
};

}  // namespace pdm
