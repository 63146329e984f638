// Documents that want to harm a reader: by what they load, how they grow, how deep or long they
// are, how they are encoded, and where they end.
#pragma once

#include <string>
#include <vector>

struct HostileDocument {
  const char* name;
  // Whether it is a document all the same: well formed, and within the bounds of the parser.
  bool accepted;
  // Its bytes. `bait` is the path of a file that nobody may open.
  std::string (*make)(const std::string& bait);
};

// None of them has an element that the tests' harmless documents have.
const std::vector<HostileDocument>& hostileDocuments();
