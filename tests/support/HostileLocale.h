// A client whose user, or whose other libraries, have set locales that nobody expects.
#pragma once

#include <locale>
#include <string>

#include "Environment.h"

// While it lives, every new stream groups digits by one, and takes other characters for digits,
// blanks and letters than those that are.
class OddStreams {
 public:
  OddStreams();
  ~OddStreams() { std::locale::global(_before); }
  OddStreams(const OddStreams&) = delete;
  OddStreams& operator=(const OddStreams&) = delete;

 private:
  std::locale _before;
};

// While it lives, the C library's locale, and that of new streams, is `name`. The running test
// fails when there is no such locale in `folder`.
class NamedLocale {
 public:
  NamedLocale(Environment& environment, const std::string& folder, const std::string& name);
  ~NamedLocale();
  NamedLocale(const NamedLocale&) = delete;
  NamedLocale& operator=(const NamedLocale&) = delete;

 private:
  std::locale _before;
  std::string _beforeC;
};
