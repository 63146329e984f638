// The PDM server, as far as this client needs one: it knows every object it is asked about, keeps
// nothing, and gives every object identifiers of its own, which differ from run to run.
#pragma once

#include <cstdint>
#include <string>

#include "pdm-client/RunNumbers.h"

namespace pdm {

struct ServerAnswer {
  std::string bytes;
  int status = 0;  // 0: done; 1: the request was not understood
};

class ToyServer {
 public:
  explicit ToyServer(std::uint64_t seed) : _numbers(seed) {}

  // Answers one request.
  ServerAnswer serve(const std::string& request);

 private:
  std::string objectsOf(const std::string& request, const std::string& root) const;

  RunNumbers _numbers;
  int _requests = 0;
};

}  // namespace pdm
