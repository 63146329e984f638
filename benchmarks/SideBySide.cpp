#include "SideBySide.h"

#include <ctime>

namespace bench {

double Samples::median(std::size_t begin, std::size_t count) const {
  begin = std::min(begin, _seconds.size());
  count = std::min(count, _seconds.size() - begin);
  if (count == 0) return 0;
  std::vector<double> part(_seconds.begin() + static_cast<std::ptrdiff_t>(begin),
                           _seconds.begin() + static_cast<std::ptrdiff_t>(begin + count));
  const auto middle = part.begin() + static_cast<std::ptrdiff_t>(count / 2);
  std::nth_element(part.begin(), middle, part.end());
  return *middle;
}

double processorTime() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

const Ends& middleOf(std::vector<Ends>& runs) {
  const auto middle = runs.begin() + static_cast<std::ptrdiff_t>(runs.size() / 2);
  std::nth_element(runs.begin(), middle, runs.end(), [](const Ends& a, const Ends& b) {
    return a.last * b.first < b.last * a.first;
  });
  return *middle;
}

bool Budget::next() {
  const bool more = _done < _turns;
  const bool late = _done >= _atLeast && std::chrono::steady_clock::now() >= _end;
  ++_done;
  return more && !late;
}

void report(benchmark::State& state, const Bounds& bounds, double measured, double floor) {
  // The measurement is a whole of its own: the library need not repeat it.
  for (auto _ : state) state.SetIterationTime(measured);
  state.counters["measured"] = measured;
  state.counters["floor"] = floor;
  state.counters["must"] = bounds.must;
  state.counters["aim"] = bounds.aim;
}

}  // namespace bench
