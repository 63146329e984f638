// Requests and answers of the sample client and its server, at the size that is wanted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace bench {

// A request of operation 319 or 321 of about `bytes` bytes: the elements that the client's own
// requests consist of, as many as it takes. The structure depends on operation and size alone;
// identifiers differ with `seed`, time stamps with `step` as well.
std::string sizedRequest(int operation, std::size_t bytes, std::uint64_t seed, int step);

// A request of operation 321 with `count` references and nothing else.
std::string requestOfReferences(std::size_t count, std::uint64_t seed);

// What the sample server answers.
std::string answerTo(const std::string& request, std::uint64_t seed);

// An answer of about `bytes` bytes.
std::string sizedAnswer(std::size_t bytes, std::uint64_t seed);

// A request of operation 321 whose root has `count` attributes beside its own.
std::string requestOfAttributes(std::size_t count, std::uint64_t seed);

// The comparison script of the sample client with entries for other messages around its own, until
// it has `entries`.
std::string scriptWith(std::size_t entries);

}  // namespace bench
