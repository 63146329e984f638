// A replayed answer: the identifiers of this run's request stand in the recorded answer by their
// places, and nothing else of it is changed.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "Emulated.h"
#include "Expect.h"
#include "FuzzInput.h"
#include "KelLib.h"
#include "ParsedXml.h"
#include "Tokens.h"
#include "Tree.h"
#include "ZetNorvBuilders.h"

using fuzz::Emulated;
using fuzz::expect;
using fuzz::expectEqual;

namespace {

constexpr int kOperations[] = {321, 319, 12};
constexpr std::size_t kHeaderBytes = 8;

// The first value of each: up to a comma, "NULL" for nothing.
std::vector<std::string> identifiersOf(const DOM_Document& request, const char* tag) {
  std::vector<std::string> identifiers;
  for (const DOM_Element& element : fuzz::elementsNamed(request, tag)) {
    const std::string text = fuzz::firstLine(fuzz::attribute(element, "Identifier").utf8());
    const std::string first = text.substr(0, text.find(','));
    identifiers.push_back(first.empty() ? "NULL" : first);
  }
  return identifiers;
}

// The identifiers by their places; empty ones where there are none.
void sameIdentifiers(const DOM_Document& served, const DOM_Document& recorded, const char* tag,
                     const std::vector<std::string>& identifiers) {
  const std::vector<DOM_Element> before = fuzz::elementsNamed(recorded, tag);
  const std::vector<DOM_Element> after = fuzz::elementsNamed(served, tag);
  expect(after.size() == before.size(), "the objects are as many");
  for (std::size_t k = 0; k < after.size(); ++k) {
    const DOMString identifier = fuzz::attribute(after[k], "Identifier");
    const bool had = !fuzz::attribute(before[k], "Identifier").isNull();
    expect(identifier.isNull() == !had, "an object has an identifier when it had one");
    if (!had) continue;
    expectEqual(identifier.utf8(), k < identifiers.size() ? identifiers[k] : "",
                "an object has the identifier of its place");
  }
}

void rewritten(const std::string& answer, const DOM_Document& recorded,
               const std::string& recordedText, const std::vector<std::string>& objects,
               const std::vector<std::string>& references) {
  const std::size_t length = answer.size() - kHeaderBytes;
  std::string header(4, '\0');
  for (int i = 0; i < 4; ++i) header += static_cast<char>(length >> (8 * i) & 0xff);
  expectEqual(answer.substr(0, kHeaderBytes), header, "the header has the text's length");
  const std::string text = answer.substr(kHeaderBytes);
  const DOM_Document served = fuzz::parse(text);
  if (served.isNull()) expectEqual(text, recordedText, "what is served is a document");
  sameIdentifiers(served, recorded, "LogObject", objects);
  sameIdentifiers(served, recorded, "Reference", references);
  std::set<std::string> names = fuzz::attributeNames(recordedText);
  names.erase("Identifier");
  fuzz::sameAttributes(served, recorded, names);
  // An entity alone can bring in what no text can hold as it is.
  if (recordedText.find("!ENTITY") != std::string::npos ||
      recordedText.find('\0') != std::string::npos) {
    return;
  }
  expectEqual(outline(served), outline(recorded), "the tree is the recorded one");
}

std::string receive(long& result) {
  const std::string live = "live";
  char* answer = new char[live.size() + 1]();
  std::copy(live.begin(), live.end(), answer);
  int bytes = static_cast<int>(live.size());
  int status = -77;
  int* sizeAt = &bytes;
  int* statusAt = &status;
  result = ZetNorvEmul::postWensnd(0, answer, sizeAt, statusAt);
  expect(status == 5, "the status is the recorded one");
  expect(answer[bytes] == '\0', "a NUL stands behind the answer");
  const std::string served(answer, static_cast<std::size_t>(bytes));
  delete[] answer;
  return served;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzz::Input input(bytes, size);
  const int operation = kOperations[input.upTo(2)];
  const std::string requestText = input.textTo('\0');
  const std::string answerText = input.rest();
  const std::string recordedBytes = "header: " + answerText;
  const DOM_Document request = fuzz::parse(requestText);
  const DOM_Document recorded = fuzz::parse(answerText);

  Emulated emulated("REPLAY");
  const std::string line = "<" + std::to_string(operation) + "><rep><5>\n";
  Emulated::files().put(Emulated::scenario("Scenario2.txt"), line + line);
  Emulated::files().put(Emulated::reference("rep"), recordedBytes);
  ZetNorvEmul::_nOp = operation;
  const std::string message = "head" + requestText;
  const int length = static_cast<int>(message.size());
  ZetNorvBuilders::extractLogObject(message.data(), length, ZetNorvEmul::_ids);
  ZetNorvBuilders::extractRefObject(message.data(), length, ZetNorvEmul::_idsRef);
  std::vector<std::string> objects;
  std::vector<std::string> references;
  if (!request.isNull()) objects = identifiersOf(request, "LogObject");
  if (!request.isNull()) references = identifiersOf(request, "Reference");
  expect(ZetNorvEmul::_ids.getSize() == static_cast<int>(objects.size()) &&
             ZetNorvEmul::_idsRef.getSize() == static_cast<int>(references.size()),
         "every object of the request has its row");

  long result = E_FAIL;
  const std::string served = receive(result);
  expect(result == S_OK, "the recorded answer is served");
  const bool hasObjects =
      !recorded.isNull() && !(fuzz::elementsNamed(recorded, "LogObject").empty() &&
                              fuzz::elementsNamed(recorded, "Reference").empty());
  if (objects.empty() || operation == 12 || !hasObjects) {
    expectEqual(served, recordedBytes, "an answer without objects is served as it is");
  } else {
    rewritten(served, recorded, answerText, objects, references);
  }
  expectEqual(receive(result), served, "the same step again serves the same");
  expectEqual(Emulated::files().bytes(Emulated::reference("rep")), recordedBytes,
              "the recording is as it was");
  expect(Emulated::files().files().size() == 2 && Emulated::files().openFiles() == 0,
         "nothing is made, and nothing left open");
  return 0;
}
