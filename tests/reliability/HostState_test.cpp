// Hosts that call the hooks in the middle of trouble, and hosts that have set up their process or
// their thread in ways of their own.
#include <cerrno>
#include <cfenv>
#include <csignal>
#include <exception>
#include <functional>
#include <stdexcept>

#include "../scenario/SessionFixture.h"
#include "ConsoleCapture.h"
#include "FloatingPoint.h"
#include "ProcessState.h"
#include "pdm-client/ToyServer.h"

namespace {

using namespace session_test;

class HostStateTest : public SessionFixture {
 protected:
  struct Exchange {
    std::string request;
    std::string answer;
    int status;
  };

  // Calls one hook, or both, in a place of the host's.
  using Caller = std::function<void(const std::function<void()>& hook)>;

  struct Outcome {
    std::map<std::string, std::string> files;
    std::string results;
  };

  // A session's exchanges, and some whose documents are refused, so that the parser throws inside.
  HostStateTest() {
    const pdm::Session session(this->session(1, {.exchanges = 30, .mix = 3}));
    pdm::ToyServer server(1);
    for (int step = 1; step <= 30; ++step) {
      const std::string sent = session.request(step);
      const pdm::ServerAnswer answer = server.serve(sent);
      _exchanges.push_back({sent, answer.bytes, answer.status});
    }
    for (const int op : {319, 321}) {
      _exchanges.push_back({request(op, "<a><b></a>"), xmlAnswer("<a>&none;</a>"), 3});
      _exchanges.push_back({request(op, ""), "short", 4});
    }
  }

  Outcome play(const std::string& value, const Caller& call) {
    resetEmulator();
    mode(value);
    std::filesystem::remove(errorLog());
    Outcome outcome;
    for (const Exchange& exchange : _exchanges) {
      call([&] { outcome.results += std::to_string(send(exchange.request)) + '\n'; });
      call([&] {
        const Received received = receive(exchange.answer, exchange.status);
        outcome.results += std::to_string(received.result) + ' ' + std::to_string(received.status) +
                           received.bytes + '\n';
      });
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(scratch.path())) {
      if (entry.is_regular_file()) {
        outcome.files[entry.path().string()] = readBytes(entry.path().string());
      }
    }
    return outcome;
  }

  // Everything comes out as it does where nothing is unusual, in every mode.
  void expectTheUsual(const Caller& call) {
    const Caller usually = [](const std::function<void()>& hook) { hook(); };
    for (const char* value : {"SAVE", "SCAN", "REPLAY", "none"}) {
      SCOPED_TRACE(value);
      if (std::string(value) == "SAVE") std::filesystem::remove_all(scratch.file("in/case1.rec"));
      const Outcome usual = play(value, usually);
      if (std::string(value) == "SAVE") std::filesystem::remove_all(scratch.file("in/case1.rec"));
      const Outcome odd = play(value, call);
      EXPECT_TRUE(odd.results == usual.results);
      EXPECT_TRUE(odd.files == usual.files);
      EXPECT_GT(odd.files.size(), 2 * _exchanges.size());
    }
  }

  std::vector<Exchange> _exchanges;
};

// What the hosts of these tests throw.
struct HostFailure {
  int number;
};

class CallsWhenDestroyed {
 public:
  explicit CallsWhenDestroyed(const std::function<void()>& hook) : _hook(hook) {}
  ~CallsWhenDestroyed() {
    EXPECT_EQ(std::uncaught_exceptions(), 1);
    _hook();
    EXPECT_EQ(std::uncaught_exceptions(), 1);
  }
  CallsWhenDestroyed(const CallsWhenDestroyed&) = delete;
  CallsWhenDestroyed& operator=(const CallsWhenDestroyed&) = delete;

 private:
  const std::function<void()>& _hook;
};

TEST_F(HostStateTest, MayCallTheHooksWhileAnExceptionUnwindsItsStack) {
  expectTheUsual([](const std::function<void()>& hook) {
    int caught = 0;
    try {
      const CallsWhenDestroyed guard(hook);
      throw HostFailure{7};
    } catch (const HostFailure& failure) {
      caught = failure.number;
    }
    EXPECT_EQ(caught, 7);
  });
}

TEST_F(HostStateTest, MayCallTheHooksWhileItHandlesAnException) {
  expectTheUsual([](const std::function<void()>& hook) {
    int caught = 0;
    try {
      try {
        throw HostFailure{8};
      } catch (const HostFailure&) {
        const std::exception_ptr before = std::current_exception();
        hook();
        EXPECT_TRUE(std::current_exception() == before);
        throw;
      }
    } catch (const HostFailure& failure) {
      caught = failure.number;
    }
    EXPECT_EQ(caught, 8);
  });
}

TEST_F(HostStateTest, KeepsItsHandlersOfTheEnd) {
  const auto terminate = std::set_terminate([] { std::_Exit(3); });
  const auto memory = std::set_new_handler([] { std::_Exit(4); });
  const auto ours = std::get_terminate();
  const auto oursToo = std::get_new_handler();
  expectTheUsual([](const std::function<void()>& hook) { hook(); });
  EXPECT_EQ(std::get_terminate(), ours);
  EXPECT_EQ(std::get_new_handler(), oursToo);
  std::set_terminate(terminate);
  std::set_new_handler(memory);
}

TEST_F(HostStateTest, MayTrapItsFloatingPointErrors) {
  expectTheUsual([](const std::function<void()>& hook) {
    const FloatingPointTraps traps;
    hook();
    EXPECT_TRUE(traps.areSet());
  });
}

TEST_F(HostStateTest, MayRoundInAnyDirection) {
  for (const int direction : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    expectTheUsual([direction](const std::function<void()>& hook) {
      const Rounding rounding(direction);
      hook();
      EXPECT_EQ(std::fegetround(), direction);
    });
  }
}

TEST_F(HostStateTest, FindsItsErrorNumberAsItWas) {
  expectTheUsual([](const std::function<void()>& hook) {
    errno = 12345;
    hook();
    EXPECT_EQ(errno, 12345);
  });
}

TEST_F(HostStateTest, FindsItsErrorNumberAsItWasAlsoWhenAHookFails) {
  environment.set("BIX_ZET_IN", "/dev/null/no-folder");
  for (const char* value : {"SAVE", "REPLAY"}) {
    mode(value);
    errno = 4711;
    EXPECT_EQ(send(request(12, "text")), E_FAIL) << value;
    EXPECT_EQ(errno, 4711) << value;
  }
}

TEST_F(HostStateTest, FindsItsProcessAsItWas) {
  const auto before = std::signal(SIGPIPE, SIG_IGN);
  const auto console = std::signal(SIGINT, SIG_IGN);
  expectTheUsual([](const std::function<void()>& hook) {
    const ProcessState state = ProcessState::now();
    const ConsoleCapture output;
    hook();
    EXPECT_TRUE(ProcessState::now() == state);
    EXPECT_EQ(output.text(), "");
  });
  std::signal(SIGPIPE, before);
  std::signal(SIGINT, console);
}

}  // namespace
