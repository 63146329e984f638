// Takes what is written to std::cout while it lives.
#pragma once

#include <iostream>
#include <sstream>
#include <string>

class ConsoleCapture {
 public:
  ConsoleCapture() : _before(std::cout.rdbuf(_text.rdbuf())) {}
  ~ConsoleCapture() { std::cout.rdbuf(_before); }
  ConsoleCapture(const ConsoleCapture&) = delete;
  ConsoleCapture& operator=(const ConsoleCapture&) = delete;

  std::string text() const { return _text.str(); }

 private:
  std::ostringstream _text;
  std::streambuf* _before;
};
