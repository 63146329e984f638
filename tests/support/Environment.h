// The process's environment as one test wants it: starts without any variable that the library
// reads, and puts everything back at its end.
#pragma once

#include <map>
#include <optional>
#include <string>

class Environment {
 public:
  Environment();
  ~Environment();
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

  void set(const std::string& name, const std::string& value);
  void unset(const std::string& name);

 private:
  void remember(const std::string& name);

  std::map<std::string, std::optional<std::string>> _before;
};
