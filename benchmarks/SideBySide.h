// Measures two ways of doing something in turns, so that whatever else the machine does meets both
// of them alike, and compares their medians.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <vector>

namespace bench {

class Samples {
 public:
  void add(double seconds) { _seconds.push_back(seconds); }

  // Of the samples from `begin` on, `count` of them; 0 when there are none.
  double median(std::size_t begin, std::size_t count) const;
  double median() const { return median(0, size()); }
  std::size_t size() const { return _seconds.size(); }

 private:
  std::vector<double> _seconds;
};

// The processor time of this thread so far, in seconds, spent in the system's calls included. What
// other programs do in between does not count.
double processorTime();

// The processor time that `work` takes, in seconds.
template <class Work>
double timeOf(Work&& work) {
  const double start = processorTime();
  work();
  return processorTime() - start;
}

// What a row of the table says: a ratio, and the bounds that it has to stay below.
struct Bounds {
  double must = 0;  // 0: none is set
  double aim = 0;
};

// Hands a row's outcome to the reporter (see RatioTable).
void report(benchmark::State& state, const Bounds& bounds, double measured, double floor);

// Ends a measurement that would take too long on a slow or busy machine.
class Budget {
 public:
  Budget(int turns, int atLeast) : _turns(turns), _atLeast(atLeast) {}

  // Whether there is another turn.
  bool next();

 private:
  static constexpr std::chrono::seconds kLongest{8};

  int _turns;
  int _atLeast;
  int _done = 0;
  std::chrono::steady_clock::time_point _end = std::chrono::steady_clock::now() + kLongest;
};

// Runs both in turns, one call each, `turns` times or until the time is up.
template <class Measured, class Floor>
void compare(benchmark::State& state, const Bounds& bounds, int turns, Measured measured,
             Floor floor) {
  Samples samples[2];
  bool floorFirst = false;
  for (Budget budget(turns, 15); budget.next(); floorFirst = !floorFirst) {
    if (floorFirst) samples[1].add(timeOf(floor));
    samples[0].add(timeOf(measured));
    if (!floorFirst) samples[1].add(timeOf(floor));
  }
  report(state, bounds, samples[0].median(), samples[1].median());
}

struct Ends {
  double last;
  double first;
};

// The run whose ratio is the median of all of them.
const Ends& middleOf(std::vector<Ends>& runs);

// Runs `session(samples)`, which adds one sample for each of many steps, several times, and
// compares its last `count` steps with its first `count`. The row is the run in the middle.
template <class Session>
void compareEnds(benchmark::State& state, const Bounds& bounds, std::size_t count,
                 Session session) {
  std::vector<Ends> runs;
  for (Budget budget(3, 1); budget.next();) {
    Samples samples;
    session(samples);
    runs.push_back({samples.median(samples.size() - count, count), samples.median(0, count)});
  }
  const Ends& run = middleOf(runs);
  report(state, bounds, run.last, run.first);
}

// Adds a row. `body(state)` measures it and reports once.
template <class Body>
void addRow(const char* name, Body body) {
  benchmark::RegisterBenchmark(name, body)->Iterations(1)->UseManualTime();
}

}  // namespace bench
