// Lets std::cout write nowhere while it lives, and without a buffer that would need memory.
#pragma once

#include <iostream>

class QuietConsole {
 public:
  QuietConsole() : _before(std::cout.rdbuf(nullptr)) {}
  ~QuietConsole() {
    std::cout.rdbuf(_before);
    std::cout.clear();
  }
  QuietConsole(const QuietConsole&) = delete;
  QuietConsole& operator=(const QuietConsole&) = delete;

 private:
  std::streambuf* _before;
};
