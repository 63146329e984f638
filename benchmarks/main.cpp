// Measures what the library costs beside the plainest code that does the same work, and prints one
// table of ratios. Recordings are made below the directory and removed in the end.
//
//   emulator_benchmarks --dir=<directory> --json=<file> [options of the library]
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "RatioTable.h"
#include "Rows.h"

namespace {

// Takes the option `name` out of the arguments, the last one of it; `value` when it is not among
// them.
std::string option(int& count, char** arguments, std::string_view name, std::string value) {
  int kept = 0;
  for (int i = 0; i < count; ++i) {
    const std::string_view argument(arguments[i]);
    if (i > 0 && argument.starts_with(name)) {
      value = argument.substr(name.size());
    } else {
      arguments[kept++] = arguments[i];
    }
  }
  count = kept;
  return value;
}

}  // namespace

int main(int count, char* arguments[]) {
  const std::string child = option(count, arguments, "--replay-in=", "");
  if (!child.empty()) {
    return bench::replayInChild(child,
                                std::atoi(option(count, arguments, "--steps=", "0").c_str()));
  }
  const std::filesystem::path directory = option(count, arguments, "--dir=", ".");
  const std::string root =
      std::filesystem::absolute(directory / ("recordings." + std::to_string(getpid())));
  const std::string json = option(count, arguments, "--json=", "ratios.json");
  std::filesystem::create_directories(root);
  bench::addSaveRows(root);
  bench::addReplayRows(root);
  bench::addComparisonRows(root);
  bench::addAnswerRows(root);
  bench::addDatabaseRows(root);
  bench::addMemoryRow(std::filesystem::read_symlink("/proc/self/exe"), root);

  benchmark::Initialize(&count, arguments);
  if (benchmark::ReportUnrecognizedArguments(count, arguments)) return 2;
  bench::RatioTable table;
  benchmark::RunSpecifiedBenchmarks(&table);
  std::filesystem::remove_all(root);
  if (!table.write(json)) {
    std::fprintf(stderr, "%s could not be written\n", json.c_str());
    return 2;
  }
  return table.complete() ? 0 : 1;
}
