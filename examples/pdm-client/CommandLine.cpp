#include "pdm-client/CommandLine.h"

#include <charconv>
#include <functional>
#include <map>

namespace pdm {

namespace {

constexpr std::string_view kUsage =
    R"(Usage: pdm-client [options]

Plays one working session of a small CAD client with a toy PDM server in the
same process. Around every exchange the client calls the hooks of the library,
which does what the environment says (ZETNORV_MODE=SAVE records, REPLAY checks
and replays, ...; without a mode nothing happens).

  --offline           leave the server out: only a recording can answer
  --work DIR          where the client keeps its documents (default: work)
  --seed N            identifiers and time stamps of run N (default: new ones)
  --alter STEP        send the request of this step with a fault, which a
                      comparison with a recording finds
  --exchanges N       play N steps instead of one whole session
  --mix N             with --exchanges: the N-th mixture of steps
  --snapshots         save or read back blocks of data at two steps
  --document-bytes N  size of a document (default: 4096)
  --queries           ask the emulated database about a few objects afterwards
  --quiet             print steps with a problem and the last line only
  --help              print this text

Exit status: 0 the client could work with every answer, 1 it could not,
2 the options are wrong.
)";

template <class Number>
bool readNumber(const std::string& text, Number& number) {
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end;
}

template <class Number>
bool readPositive(const std::string& text, Number& number) {
  return readNumber(text, number) && number > 0;
}

// Options with a value: each reads it and tells whether it could.
using Reader = std::function<bool(const std::string&)>;

std::map<std::string, Reader> valueOptions(SessionOptions& session) {
  return {
      {"--work",
       [&](const std::string& text) {
         session.workFolder = text;
         return !text.empty();
       }},
      {"--seed", [&](const std::string& text) { return readNumber(text, session.seed); }},
      {"--alter", [&](const std::string& text) { return readPositive(text, session.alteredStep); }},
      {"--exchanges",
       [&](const std::string& text) { return readPositive(text, session.plan.exchanges); }},
      {"--mix", [&](const std::string& text) { return readNumber(text, session.plan.mix); }},
      {"--document-bytes",
       [&](const std::string& text) { return readPositive(text, session.documentBytes); }},
  };
}

std::map<std::string, bool*> flags(CommandLine& line) {
  return {{"--offline", &line.session.offline},
          {"--snapshots", &line.session.plan.snapshots},
          {"--queries", &line.queries},
          {"--quiet", &line.quiet},
          {"--help", &line.help}};
}

// --alter needs a request that a comparison looks at: a commit never is one.
std::string faultOfAlteredStep(const SessionOptions& session) {
  if (session.alteredStep == 0) return "";
  const auto plan = planSession(ProductStructure(), session.plan);
  const auto step = static_cast<std::size_t>(session.alteredStep);
  if (step > plan.size()) return "--alter: the session has no such step";
  const Action action = plan[step - 1].action;
  if (action != Action::snapshot && action != Action::commit) return "";
  return "--alter: nothing is compared at this step";
}

}  // namespace

CommandLine readCommandLine(const std::vector<std::string>& arguments) {
  CommandLine line;
  line.session.seed = RunNumbers::anySeed();
  const auto withValue = valueOptions(line.session);
  const auto withoutValue = flags(line);
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& name = arguments[i];
    if (const auto flag = withoutValue.find(name); flag != withoutValue.end()) {
      *flag->second = true;
      continue;
    }
    const auto option = withValue.find(name);
    if (option == withValue.end()) {
      line.fault = "unknown option " + name;
    } else if (++i == arguments.size() || !option->second(arguments[i])) {
      line.fault = name + " needs a value that it can use";
    }
    if (!line.fault.empty()) return line;
  }
  if (line.session.plan.mix != 0 && line.session.plan.exchanges == 0) {
    line.fault = "--mix needs --exchanges";
  } else {
    line.fault = faultOfAlteredStep(line.session);
  }
  return line;
}

std::string_view usage() { return kUsage; }

}  // namespace pdm
