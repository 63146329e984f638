// Memory that runs out where a test wants it to: the n-th request fails, by itself or with all
// behind it. The requests are those of `operator new` and those of the XML parser, while the
// library runs; the test's own are never among them.
//
// The program that this is linked into has its operators new and delete from here.
#pragma once

#include <cstddef>
#include <string>

#include "../../../KelFoundation/xml/src/KelXmlBlocks.h"
#include "KelTrace.h"

class FailingAllocations : private KelXmlBlocks::Watcher, private KelTrace::Listener {
 public:
  enum class Times { kOnce, kAlways };

  // Fails the `nth` request, counted from 1 over all calls of within(), and all behind it with
  // kAlways.
  FailingAllocations(long nth, Times times);
  ~FailingAllocations() override;
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;

  // Runs `body`, a call of the library, while requests are counted and fail. What it throws is
  // noted and goes no further.
  template <class Body>
  void within(Body&& body) {
    arm(true);
    try {
      body();
    } catch (...) {
      _thrown = true;
    }
    arm(false);
  }

  bool hasFailed() const;
  bool hasThrown() const { return _thrown; }

  // Whether the request that is being made fails; for the operators.
  static bool refuses();

 private:
  static void arm(bool armed);

  bool OnGet(std::size_t size) override;
  void OnRelease(std::size_t size) override;
  // Passes the line on to who listened before; what that needs memory for is its own business.
  void OnLine(const char* traceName, int level, const std::string& line) override;

  bool _thrown = false;
  KelXmlBlocks::Watcher* _watcher;
  KelTrace::Listener* _listener;
};
