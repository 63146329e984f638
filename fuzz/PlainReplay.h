// Recording and replay a second time: the files of a recording as texts, the walk through its two
// index files, and the identifiers that an answer is served with.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Emulated.h"
#include "EmulatorFixture.h"
#include "KelXMLParser.h"
#include "PlainDatabase.h"
#include "Tree.h"

namespace fuzz {

struct Exchange {
  std::string request;
  std::string answer;
  int status = 0;
};

// What the client holds after the receive hook.
struct Received {
  long result;
  std::string bytes;
  int status;
};

inline long send(const std::string& request) {
  // In a block of exactly its size, so that a sanitizer sees what reads past it.
  const std::vector<char> block(request.begin(), request.end());
  const long result = ZetNorvEmul::preWensnd(0, block.data(), static_cast<int>(block.size()));
  expect(std::string(block.begin(), block.end()) == request, "a request stays as it is");
  return result;
}

inline Received receive(const std::string& live, int status) {
  char* answer = new char[live.size()];
  std::copy(live.begin(), live.end(), answer);
  const char* const before = answer;
  int bytes = static_cast<int>(live.size());
  int* size = &bytes;
  int* state = &status;
  const long result = ZetNorvEmul::postWensnd(0, answer, size, state);
  expect(size == &bytes && state == &status, "size and status stay the client's");
  expect(bytes >= 0, "the size is one");
  if (answer != before) expect(answer[bytes] == '\0', "a NUL follows a served answer");
  Received received{result, std::string(answer, static_cast<std::size_t>(bytes)), status};
  delete[] answer;
  return received;
}

inline bool carriesIdentifiers(int op) { return op == 321 || op == 319; }

// The operation of a request; that of the one before when it is too short for one.
inline int operationOf(const std::string& request, int before) {
  if (request.size() < 4) return before;
  unsigned bits = 0;
  for (int i = 3; i >= 0; --i) {
    bits = bits << 8 | static_cast<unsigned char>(request[static_cast<std::size_t>(i)]);
  }
  return static_cast<int>(bits);
}

// The identifiers of the elements `name` of a request: each up to its first comma or line feed.
inline std::vector<std::string> identifiersOf(const std::string& request, const std::string& name) {
  std::vector<std::string> identifiers;
  if (request.size() < 4) return identifiers;
  const DOM_Document document = parse(request.substr(4));
  for (const DOM_Element& element : elementsNamed(document, name)) {
    const std::string line = firstLine(attribute(element, "Identifier").utf8());
    const std::string piece = line.substr(0, line.find(','));
    identifiers.push_back(piece.empty() ? "NULL" : piece);
  }
  return identifiers;
}

struct Identifiers {
  std::vector<std::string> logObjects;
  std::vector<std::string> references;
};

inline void substitute(const DOM_Document& document, const std::string& name,
                       const std::vector<std::string>& identifiers) {
  std::size_t k = 0;
  for (DOM_Element element : elementsNamed(document, name)) {
    const std::string identifier = k < identifiers.size() ? identifiers[k] : "";
    ++k;
    if (attribute(element, "Identifier").isNull()) continue;
    element.setAttribute(DOMString("Identifier"), DOMString(std::string_view(identifier)));
  }
}

// The answer that is served for a recorded one; nothing when it cannot be written.
inline std::optional<std::string> servedFor(const std::string& recorded, int op,
                                            const Identifiers& identifiers) {
  if (!carriesIdentifiers(op) || recorded.size() <= 8 || identifiers.logObjects.empty()) {
    return recorded;
  }
  const DOM_Document document = parse(recorded.substr(8));
  if (document.isNull() || (elementsNamed(document, "LogObject").empty() &&
                            elementsNamed(document, "Reference").empty())) {
    return recorded;
  }
  substitute(document, "Reference", identifiers.references);
  substitute(document, "LogObject", identifiers.logObjects);
  std::string text;
  if (KelXMLParser::WriteXML(document, text) != S_OK) return std::nullopt;
  return xmlAnswer(text);
}

// What is recorded of a run, and how the next run finds its way through it.
class PlainRecording {
 public:
  void add(const Exchange& exchange) {
    _op = operationOf(exchange.request, _op);
    const std::string op = std::to_string(_op);
    if (!exchange.request.empty()) {
      const std::string name = newName("save" + op, exchange.request);
      _requests.push_back("<" + op + "><" + name + ">");
    }
    const std::string name = newName("rep" + op, exchange.answer);
    const std::string status = std::to_string(exchange.status);
    _answers.push_back(name.empty() ? "ERROR: NO FILE"
                                    : "<" + op + "><" + name + "><" + status + ">");
  }

  // All files of the recording by their paths, without those of the database.
  std::map<std::string, std::string> files() const {
    std::map<std::string, std::string> files;
    for (const auto& [name, bytes] : _files) files[Emulated::reference(name)] = bytes;
    files[Emulated::scenario("Scenario.txt")] = joined(_requests);
    files[Emulated::scenario("Scenario2.txt")] = joined(_answers);
    return files;
  }

  // Another process.
  void startReplay() {
    _op = 0;
    _requestStep = 0;
    _answerStep = 0;
  }

  struct Check {
    bool matched;          // the recorded request of the step is of the same operation
    std::string recorded;  // that request
  };

  // The step of a request that is sent on replay.
  Check check(const std::string& request) {
    _op = operationOf(request, _op);
    ++_requestStep;
    std::vector<Field> fields = {Field(), Field()};
    for (int i = 0; i < static_cast<int>(_requests.size()) && i < _requestStep; ++i) {
      fields = groupsOf(_requests[static_cast<std::size_t>(i)], 2);
      if (i + 1 == _requestStep && starts("26", textOf(fields[0]))) ++_requestStep;
    }
    const bool matched = fields[0] && std::atoi(fields[0]->c_str()) == _op;
    return {matched, _files[textOf(fields[1])]};
  }

  // What is served to a client whose own answer is `live`.
  Received serve(const Exchange& live, const Identifiers& identifiers) {
    ++_answerStep;
    std::vector<Field> fields = {Field(), Field(), Field()};
    for (int i = 0; i < static_cast<int>(_answers.size()) && i < _answerStep; ++i) {
      fields = groupsOf(_answers[static_cast<std::size_t>(i)], 3);
      const int op = fields[0] ? std::atoi(fields[0]->c_str()) : -1;
      if (i + 1 == _answerStep && op != _op) ++_answerStep;
    }
    const Received kept{E_FAIL, live.answer, live.status};
    if (!fields[1]) return kept;
    const std::optional<std::string> served = servedFor(_files[*fields[1]], _op, identifiers);
    return served ? Received{S_OK, *served, std::atoi(fields[2]->c_str())} : kept;
  }

  int op() const { return _op; }

 private:
  static std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += line + "\n";
    return text;
  }

  // The name of a new file; empty when there is nothing to put into it.
  std::string newName(const std::string& start, const std::string& bytes) {
    if (bytes.empty()) return "";
    const std::string name = start + "_" + std::to_string(_numbers[start]++) + ".txt";
    _files[name] = bytes;
    return name;
  }

  int _op = 0;
  int _requestStep = 0;
  int _answerStep = 0;
  std::map<std::string, int> _numbers;
  std::map<std::string, std::string> _files;
  std::vector<std::string> _requests;  // the lines of "Scenario.txt"
  std::vector<std::string> _answers;   // the lines of "Scenario2.txt"
};

inline void expectEqual(const Received& actual, const Received& expected) {
  expect(actual.result == expected.result, "the hook's result");
  expectEqual(actual.bytes, expected.bytes, "the answer that the client gets");
  expect(actual.status == expected.status, "the status that the client gets");
}

// The files of the recording with their bytes: what the database keeps is another matter.
inline std::map<std::string, std::string> recordingNow() {
  std::map<std::string, std::string> recording;
  for (const std::string& path : Emulated::files().files()) {
    const bool ofDatabase =
        path.find("/Kel_Files_Temp/") != std::string::npos || path.ends_with("/database.txt");
    if (ofDatabase || !path.starts_with("/drive/in/case1.rec/")) continue;
    recording[path] = Emulated::files().bytes(path);
  }
  return recording;
}

// Records the exchanges, here and in `plain`.
inline void record(const std::vector<Exchange>& exchanges, PlainRecording& plain) {
  for (const Exchange& exchange : exchanges) {
    expect(send(exchange.request) == (exchange.request.empty() ? E_FAIL : S_OK),
           "a request is recorded");
    const Received received = receive(exchange.answer, exchange.status);
    expectEqual(received, {S_OK, exchange.answer, exchange.status});
    plain.add(exchange);
  }
  const auto expected = exchanges.empty() ? std::map<std::string, std::string>() : plain.files();
  const auto actual = recordingNow();
  for (const auto& [path, bytes] : expected) {
    expect(actual.contains(path), path.c_str());
    expectEqual(actual.at(path), bytes, "a recorded file has its bytes");
  }
  expect(actual.size() == expected.size(), "no other file is recorded");
}

// Another process, which replays.
inline void startReplay(Emulated& emulated, PlainRecording& plain) {
  resetEmulator();
  emulated.trace.clear();
  Emulated::mode("REPLAY");
  plain.startReplay();
}

inline std::vector<std::string> firstFieldsOf(const ZetNorvDb_Table& table) {
  std::vector<std::string> fields;
  for (int i = 0; i < table.getSize(); ++i) fields.push_back(table._rows[i]->_data[0].gchar());
  return fields;
}

// A message of the operation that `digit` stands for, or, for an '8', `payload` alone.
inline std::string requestFor(std::uint8_t digit, const std::string& payload) {
  static constexpr int kOperations[] = {321, 319, 12, 325, 26, 2, 999, -1};
  constexpr int kChoices = 9;
  const int choice = (digit + '0' * (kChoices - 1)) % kChoices;
  return choice < 8 ? request(kOperations[choice], payload) : payload;
}

}  // namespace fuzz
