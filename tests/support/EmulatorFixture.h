// One test's emulator: fresh counters and tables, a fresh tree of directories, an environment of
// its own, and the exchange layer's side of the hooks.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Environment.h"
#include "ScratchDirectory.h"
#include "TraceRecorder.h"

// A request: the four bytes of the operation number, little-endian, and what follows them.
std::string request(int op, const std::string& payload);

// An answer with the server's 8-byte header: four zero bytes and the text's length, little-endian.
std::string xmlAnswer(const std::string& text);

class EmulatorFixture : public testing::Test {
 protected:
  // What the client holds after the receive hook.
  struct Received {
    long result;
    std::string bytes;
    int status;
    bool replaced;  // the hook put another buffer in place of the client's
  };

  // Outside debug mode: everything lies below `scratch/in`, the scenario is "case1".
  EmulatorFixture();
  ~EmulatorFixture() override;

  // Sets every static member back to what it is when the library is loaded.
  static void resetEmulator();

  void mode(const std::string& value) { environment.set("ZETNORV_MODE", value); }
  // Debug mode with `mode` as the run mode and the four roots below `scratch`.
  void debugMode(const std::string& value);

  // The file `name` of the recording, outside debug mode.
  std::string reference(const std::string& name = "") const;
  std::string scenario(const std::string& name = "") const;
  // The same in debug mode, and the logs.
  std::string debugReference(const std::string& name = "") const;
  std::string debugScenario(const std::string& name = "") const;
  std::string debugLog(const std::string& name) const;

  // The hooks as the exchange layer calls them.
  static long send(const std::string& message);
  static Received receive(const std::string& liveAnswer, int status = 0);
  // The levels of the library's trace lines, each once, in ascending order.
  std::vector<int> levels() const;
  // Those of the library's trace lines that are among `lines`, in the order they were traced in.
  std::vector<std::string> tracedOf(const std::vector<std::string>& lines) const;
  // What a named log adds to the trace when a text is appended to it in debug mode.
  std::vector<std::string> logLines(const std::string& name) const;
  // One exchange of operation `op`.
  static void exchange(int op, const std::string& payload, const std::string& answer,
                       int status = 0);

  ScratchDirectory scratch;
  Environment environment;
  TraceRecorder trace;
};
