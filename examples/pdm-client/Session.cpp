#include "pdm-client/Session.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <ostream>

#include "pdm-client/Snapshots.h"

namespace pdm {

namespace {

// The server draws its own numbers, whatever the client's are.
constexpr std::uint64_t kServerSeed = 0x5E12;

// Forward slashes, on every platform: that is how messages write a path.
std::string messagePath(const std::string& folder) {
  return std::filesystem::absolute(folder).lexically_normal().generic_string();
}

SessionOptions normalised(SessionOptions options) {
  options.workFolder = messagePath(options.workFolder);
  if (options.workFolder.size() > 1 && options.workFolder.back() == '/') {
    options.workFolder.pop_back();
  }
  return options;
}

std::string hookRemark(const Answer& answer) {
  if (answer.requestHookFailed) return "request hook failed";
  return answer.answerHookFailed ? "answer hook failed" : "";
}

StepReport playSnapshot(int step, int number) {
  const SnapshotResult result = takeSnapshot(number);
  StepReport report;
  report.step = step;
  report.sent = result.bytes;
  report.what = result.what;
  report.problem = result.problem;
  return report;
}

}  // namespace

void printStep(std::ostream& out, const StepReport& report) {
  char line[160];
  if (report.operation == 0) {
    std::snprintf(line, sizeof line, "step %4d  snapshot  %6d bytes %s", report.step, report.sent,
                  report.what.c_str());
  } else {
    std::snprintf(line, sizeof line,
                  "step %4d  operation %3d  sent %6d  received %6d  status %d  from %-9s",
                  report.step, report.operation, report.sent, report.received, report.status,
                  report.what.c_str());
  }
  out << line << "  " << (report.problem.empty() ? "usable" : "PROBLEM: " + report.problem);
  if (!report.remark.empty()) out << "  (" << report.remark << ')';
  out << '\n';
}

Session::Session(SessionOptions options)
    : _options(normalised(std::move(options))),
      _numbers(_options.seed),
      _requests(_product, _numbers, _options.workFolder),
      _server(_options.seed ^ kServerSeed),
      _line(_options.offline ? nullptr : &_server),
      _plan(planSession(_product, _options.plan)) {}

std::string Session::request(int step) const {
  if (step < 1 || static_cast<std::size_t>(step) > _plan.size()) return "";
  std::string message = build(step);
  if (step == _options.alteredStep && !message.empty()) return altered(std::move(message));
  return message;
}

std::vector<StepReport> Session::run() {
  std::error_code ignored;  // a document that can't be written is reported at its step
  std::filesystem::create_directories(_options.workFolder, ignored);
  std::vector<StepReport> reports;
  for (int step = 1; static_cast<std::size_t>(step) <= _plan.size(); ++step) {
    reports.push_back(play(step));
    if (_options.log != nullptr) printStep(*_options.log, reports.back());
  }
  return reports;
}

StepReport Session::play(int step) {
  const Step& what = _plan[static_cast<std::size_t>(step) - 1];
  if (what.action == Action::snapshot) return playSnapshot(step, what.number);
  // A save request names a file that has to be there when it is sent.
  const bool written = what.action != Action::save || writeDocument(what.item, step);
  StepReport report = exchange(step);
  if (!written) report.problem = "the document could not be written to the work folder";
  return report;
}

StepReport Session::exchange(int step) {
  const std::string message = request(step);
  const Answer answer = _line.exchange(message);

  StepReport report;
  report.step = step;
  report.operation = operationOf(message);
  report.sent = static_cast<int>(message.size());
  report.received = answer.size;
  report.status = answer.status;
  report.what = nameOf(answer.from);
  report.remark = hookRemark(answer);
  report.problem = problemWith(answer, message);
  if (report.problem.empty() && report.operation == kSave) learn(answer.bytes());
  return report;
}

std::string Session::build(int step) const {
  const Step& what = _plan[static_cast<std::size_t>(step) - 1];
  switch (what.action) {
    case Action::open:
      return _requests.open(what.number);
    case Action::navigate:
      return _requests.navigate(what.item);
    case Action::save:
      return _requests.save(what.item, step);
    case Action::commit:
      return _requests.commit(what.number);
    case Action::snapshot:
      break;
  }
  return "";
}

bool Session::writeDocument(std::size_t item, int step) const {
  const Item& described = _product.item(item);
  const std::string line = described.documentType() + ' ' + described.number + " saved at step " +
                           std::to_string(step) + '\n';
  std::ofstream file(std::filesystem::path(_requests.filePath(item)), std::ios::binary);
  for (std::size_t written = 0; written < _options.documentBytes; written += line.size()) {
    file << line;
  }
  file.close();
  return !file.fail();
}

void Session::learn(std::string_view answer) {
  for (KnownObject& object : objectsIn(answer)) {
    const bool known = std::any_of(_known.begin(), _known.end(), [&](const KnownObject& other) {
      return other.kind == object.kind && other.name == object.name;
    });
    if (!known) _known.push_back(std::move(object));
  }
}

}  // namespace pdm
