// What a fuzz target states about its input. A statement that does not hold ends the process, which
// the fuzzer and the corpus runner both report with the input.
#pragma once

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace fuzz {

inline void expect(bool holds, const char* statement) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", statement);
  std::abort();
}

// The same for two texts that have to be equal; both are printed when they are not.
inline void expectEqual(const std::string& actual, const std::string& expected,
                        const char* statement) {
  if (actual == expected) return;
  std::fprintf(stderr, "actual:   [%s]\nexpected: [%s]\n", actual.c_str(), expected.c_str());
  expect(false, statement);
}

// The same for two lists of texts.
inline void expectEqual(const std::vector<std::string>& actual,
                        const std::vector<std::string>& expected, const char* statement) {
  for (std::size_t i = 0; i < actual.size() && i < expected.size(); ++i) {
    expectEqual(actual[i], expected[i], statement);
  }
  expect(actual.size() == expected.size(), statement);
}

}  // namespace fuzz
