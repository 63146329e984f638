// The surroundings of a comparison, in a directory of its own: the configuration with its script
// file, a place for recorded requests, and "error.log". Outside debug mode.
#pragma once

#include <string>

#include "Environment.h"
#include "ScratchDirectory.h"

// The `size` lowest bytes of `number`, little-endian.
std::string littleEndian(int number, int size = 4);

// A message as a client sends it: the operation number and a text.
std::string message(int number, const std::string& text);

class ComparisonBench {
 public:
  ComparisonBench();

  // Writes the script file, whole.
  void script(const std::string& content);
  std::string scriptFile() const;

  // Writes a recorded request and gives its path.
  std::string record(const std::string& content);

  // The comparison run on a copy of `sent` that ends where the bytes end.
  long compare(int number, const std::string& sent, const std::string& referencePath);
  // The same against a request recorded with these bytes.
  long compareWith(int number, const std::string& sent, const std::string& recorded);

  bool hasLog() const;
  std::string log() const;
  void removeLog();

  Environment environment;
  ScratchDirectory directory;
};

// What a run appends to "error.log": `findings` are its lines behind the message's text.
std::string section(int number, const std::string& sent, const std::string& findings);
