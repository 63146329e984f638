#include "RatioTable.h"

#include <cstdio>
#include <fstream>

namespace bench {

namespace {

// The row's name as it was given: the library appends how it was run.
std::string nameOf(const benchmark::BenchmarkReporter::Run& run) {
  return run.run_name.function_name;
}

std::string bound(double value) {
  if (value <= 0) return "-";
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", value);
  return text;
}

std::string verdict(double ratio, double must, double aim) {
  if (must <= 0) return "";
  if (ratio > must) return "ABOVE";
  return ratio > aim ? "held" : "aim";
}

}  // namespace

bool RatioTable::ReportContext(const Context&) {
  std::printf("%-64s %8s %6s %6s  %-6s %12s %12s\n", "row", "ratio", "must", "aim", "", "measured",
              "floor");
  return true;
}

void RatioTable::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.error_occurred) {
      _complete = false;
      std::printf("%-64s %s\n", nameOf(run).c_str(), run.error_message.c_str());
      continue;
    }
    const auto counter = [&run](const char* name) { return run.counters.at(name).value; };
    _rows.push_back(
        {nameOf(run), counter("measured"), counter("floor"), counter("must"), counter("aim")});
    print(_rows.back());
  }
  std::fflush(stdout);
}

void RatioTable::print(const Row& row) {
  // Seconds are shown as microseconds; what is not a time is far above any.
  const bool seconds = row.measured < 1000;
  const double unit = seconds ? 1e6 : 1.0 / 1024;
  const char* name = seconds ? "us" : "KB";
  std::printf("%-64s %8.2f %6s %6s  %-6s %9.1f %s %9.1f %s\n", row.name.c_str(), row.ratio(),
              bound(row.must).c_str(), bound(row.aim).c_str(),
              verdict(row.ratio(), row.must, row.aim).c_str(), row.measured * unit, name,
              row.floor * unit, name);
}

bool RatioTable::write(const std::string& path) const {
  std::ofstream file(path);
  file << "[\n";
  for (std::size_t i = 0; i < _rows.size(); ++i) {
    const Row& row = _rows[i];
    file << "  {\"row\": \"" << row.name << "\", \"ratio\": " << row.ratio()
         << ", \"must\": " << row.must << ", \"aim\": " << row.aim
         << ", \"measured\": " << row.measured << ", \"floor\": " << row.floor << "}"
         << (i + 1 < _rows.size() ? ",\n" : "\n");
  }
  file << "]\n";
  file.close();
  return !file.fail();
}

}  // namespace bench
