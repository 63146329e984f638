#include "pdm-client/RunNumbers.h"

#include <chrono>
#include <cstdio>
#include <random>

namespace pdm {

namespace {

// The splitmix64 step: every bit of the result depends on every bit of `value`.
std::uint64_t scramble(std::uint64_t value) {
  value += 0x9E3779B97F4A7C15u;
  value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9u;
  value = (value ^ (value >> 27)) * 0x94D049BB133111EBu;
  return value ^ (value >> 31);
}

// FNV-1a, which gives the same number on every platform; std::hash does not.
std::uint64_t hashOf(const std::string& text) {
  std::uint64_t hash = 0xCBF29CE484222325u;
  for (const char c : text) {
    hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
  }
  return hash;
}

// 16 characters. The digit F stays out: the comparison reports values with several of them, which
// a client sends when it forgot to set an identifier.
std::string hexText(std::uint64_t value) {
  std::string text;
  for (int i = 0; i < 16; ++i, value >>= 4) text += "0123456789ABCDE"[(value & 15) % 15];
  return text;
}

}  // namespace

std::uint64_t RunNumbers::anySeed() {
  const auto now = std::chrono::system_clock::now().time_since_epoch().count();
  std::random_device device;
  return scramble(static_cast<std::uint64_t>(now)) ^ device();
}

std::string RunNumbers::identifier(char kind, std::size_t number) const {
  char text[32];
  std::snprintf(text, sizeof text, "%c%010llu.%05zu", kind,
                static_cast<unsigned long long>(mixed(1) % 10'000'000'000u), number % 100'000);
  return text;
}

std::string RunNumbers::uuid(std::size_t item) const {
  const std::string digits = hexText(mixed(hashOf("uuid") + item)) + hexText(mixed(item));
  return digits.substr(0, 8) + '-' + digits.substr(8, 4) + '-' + digits.substr(12, 4) + '-' +
         digits.substr(16, 4) + '-' + digits.substr(20, 12);
}

std::string RunNumbers::hex(const std::string& key) const { return hexText(mixed(hashOf(key))); }

std::uint32_t RunNumbers::number(const std::string& key) const {
  return static_cast<std::uint32_t>(mixed(hashOf(key)));
}

std::string RunNumbers::timeStamp(int step) const {
  using std::chrono::sys_days;
  const sys_days first = std::chrono::year(2008) / 1 / 1;
  const std::chrono::days later(static_cast<int>(mixed(2) % 1000));
  const std::chrono::seconds start(static_cast<int>(mixed(3) % 43'200));
  const auto moment = first + later + start + std::chrono::seconds(41) * step;

  const sys_days day = std::chrono::floor<std::chrono::days>(moment);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss time(moment - day);
  char text[64];
  std::snprintf(text, sizeof text, "%04d/%02u/%02u-%02d:%02d:%02d", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                static_cast<int>(time.seconds().count()));
  return text;
}

std::uint64_t RunNumbers::mixed(std::uint64_t salt) const {
  return scramble(scramble(_seed) ^ salt);
}

}  // namespace pdm
