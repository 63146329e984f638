// What the client makes of an answer before it works with it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "pdm-client/ExchangeLayer.h"

namespace pdm {

// Tells why the client can't work with `answer` to `request`; empty when it can. An answer to 319
// or 321 must name the objects and references of this very request, in its order.
std::string problemWith(const Answer& answer, std::string_view request);

// What the server said about a document or a reference.
struct KnownObject {
  std::string kind;  // "Document" or "Reference"
  std::string name;
  std::string partNumber;
  std::string coid;    // 16 hexadecimal characters
  std::string compid;  // the same
};

// The documents and references of an answer to 319 or 321.
std::vector<KnownObject> objectsIn(std::string_view answer);

}  // namespace pdm
