// The messages of the client and the frame of the server's answers.
//
// A request starts with its operation number, four bytes, the lowest first. Behind it, operations
// 319 and 321 carry XML; 12 and 325 carry fields of bytes. An answer starts with four bytes of the
// server's own and the length of its text, again four bytes, the lowest first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "pdm-client/ProductStructure.h"
#include "pdm-client/RunNumbers.h"

namespace pdm {

inline constexpr int kOpen = 12;
inline constexpr int kNavigate = 319;
inline constexpr int kSave = 321;
inline constexpr int kCommit = 325;

inline constexpr std::size_t kRequestHeader = 4;
inline constexpr std::size_t kAnswerHeader = 8;

// A number as messages carry it: four bytes, the lowest first.
std::string numberBytes(std::uint32_t number);
// The number at byte `at`; 0 when there are fewer than four bytes.
std::uint32_t numberAt(std::string_view message, std::size_t at);

int operationOf(std::string_view request);

// The XML or text of an answer: what is behind its header.
std::string_view textOf(std::string_view answer);
std::string answerWith(std::uint32_t serverWord, std::string_view text);

// Builds the requests of one run. A request depends on the structure, the run's numbers, the work
// folder and its step only, never on what the server answered.
class RequestBuilder {
 public:
  // Both must outlive this object. `workFolder` is written with forward slashes.
  RequestBuilder(const ProductStructure& product, const RunNumbers& numbers, std::string workFolder)
      : _product(product), _numbers(numbers), _workFolder(std::move(workFolder)) {}

  // Opens the session with the given number, from 0 on. The same bytes in every run.
  std::string open(int session) const;

  // Asks for the state of an assembly and of what it is made of.
  std::string navigate(std::size_t item) const;

  // Saves the document of an item, and the objects and references of the assembly that is open.
  std::string save(std::size_t item, int step) const;

  // Makes `saves` save requests last. The same bytes in every run.
  std::string commit(int saves) const;

  // Where the document of an item lies on this client's disk.
  std::string filePath(std::size_t item) const;

 private:
  const ProductStructure& _product;
  const RunNumbers& _numbers;
  std::string _workFolder;
};

// The request with a small fault, as a careless change of the client would make it: the first
// LogObject lacks its Type; in a message without XML the last byte is another one.
std::string altered(std::string request);

}  // namespace pdm
