// A small CAD client that works with a PDM server through hooks that record and replay.
#include <exception>
#include <iostream>

#include "pdm-client/CommandLine.h"
#include "pdm-client/Queries.h"
#include "pdm-client/Session.h"

namespace {

constexpr int kWorked = 0;
constexpr int kDidNotWork = 1;
constexpr int kBadUsage = 2;

int play(const pdm::CommandLine& line) {
  pdm::Session session(line.session);
  const auto reports = session.run();
  int problems = 0;
  for (const pdm::StepReport& report : reports) {
    if (report.problem.empty()) continue;
    ++problems;
    if (line.quiet) pdm::printStep(std::cout, report);
  }
  if (line.queries) pdm::askDatabase(session.knownObjects(), std::cout);
  std::cout << reports.size() << " steps, " << problems << " with a problem\n";
  return problems == 0 ? kWorked : kDidNotWork;
}

}  // namespace

int main(int count, char* arguments[]) {
  try {
    pdm::CommandLine line = pdm::readCommandLine({arguments + 1, arguments + count});
    if (line.help) {
      std::cout << pdm::usage();
      return kWorked;
    }
    if (!line.fault.empty()) {
      std::cerr << "pdm-client: " << line.fault << "\n\n" << pdm::usage();
      return kBadUsage;
    }
    if (!line.quiet) {
      line.session.log = &std::cout;
      std::cout << "session of seed " << line.session.seed << '\n';
    }
    return play(line);
  } catch (const std::exception& failure) {
    std::cerr << "pdm-client: " << failure.what() << '\n';
    return kDidNotWork;
  }
}
