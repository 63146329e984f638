// What differs from one run to the next: identifiers and time stamps. Everything comes from one
// seed, so a run with the same seed has the same numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace pdm {

class RunNumbers {
 public:
  explicit RunNumbers(std::uint64_t seed) : _seed(seed) {}

  // A seed that no other run has.
  static std::uint64_t anySeed();

  // What the client calls an object ('L') or a reference ('R') while this session lasts.
  std::string identifier(char kind, std::size_t number) const;

  // The universal identifier of the document of an item.
  std::string uuid(std::size_t item) const;

  // 16 hexadecimal characters, always the same for `key`.
  std::string hex(const std::string& key) const;

  // A number for each `key`.
  std::uint32_t number(const std::string& key) const;

  // "2008/03/12-10:15:30": a day of this run, moving on with every step.
  std::string timeStamp(int step) const;

 private:
  std::uint64_t mixed(std::uint64_t salt) const;

  std::uint64_t _seed;
};

}  // namespace pdm
