// The outcome of a run: one line per row on the console, and the same as JSON.
#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace bench {

class RatioTable : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;

  // Whether every row could be measured.
  bool complete() const { return _complete; }

  // Writes the rows to the file `path`. False when that fails.
  bool write(const std::string& path) const;

 private:
  struct Row {
    std::string name;
    double measured;  // seconds, or bytes
    double floor;
    double must;  // 0: none
    double aim;

    double ratio() const { return floor > 0 ? measured / floor : 0; }
  };

  static void print(const Row& row);

  std::vector<Row> _rows;
  bool _complete = true;
};

}  // namespace bench
