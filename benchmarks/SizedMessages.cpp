#include "SizedMessages.h"

#include <fstream>
#include <iterator>
#include <string_view>
#include <vector>

#include "pdm-client/Messages.h"
#include "pdm-client/ProductStructure.h"
#include "pdm-client/RunNumbers.h"
#include "pdm-client/ToyServer.h"

namespace bench {

namespace {

// A message of the client taken apart: what stands before the root's children, the children, and
// what stands behind them.
struct Parts {
  std::string head;
  std::vector<std::string> children;
  std::string tail;
};

// The client escapes every '<' and '>' of a value, so tags can be told by them.
Parts partsOf(std::string_view message) {
  Parts parts;
  const std::size_t root = message.find('<', message.find("?>"));
  std::size_t at = message.find('>', root) + 1;
  const std::size_t end = message.rfind('<');
  parts.head = message.substr(0, at);
  parts.tail = message.substr(end);
  std::size_t start = at;
  for (int depth = 0; at < end;) {
    const std::size_t close = message.find('>', at);
    if (message[at + 1] == '/') {
      --depth;
    } else if (message[close - 1] != '/') {
      ++depth;
    }
    at = close + 1;
    if (depth > 0) continue;
    parts.children.emplace_back(message.substr(start, at - start));
    start = at;
  }
  return parts;
}

bool isA(const std::string& element, std::string_view tag) {
  return element.compare(1, tag.size(), tag) == 0;
}

// Collects the elements of the messages about all sub-assemblies, by kind.
class Elements {
 public:
  Elements(int operation, std::uint64_t seed, int step) {
    const pdm::ProductStructure product;
    const pdm::RunNumbers numbers(seed);
    const pdm::RequestBuilder builder(product, numbers, "/work");
    for (const std::size_t assembly : product.subAssemblies()) {
      Parts parts = partsOf(operation == pdm::kSave ? builder.save(assembly, step)
                                                    : builder.navigate(assembly));
      head = parts.head;
      tail = parts.tail;
      for (std::string& element : parts.children) {
        (isA(element, "LogObject")   ? objects
         : isA(element, "Reference") ? references
                                     : documents)
            .push_back(std::move(element));
      }
    }
  }

  // An object and a reference in turns; the third element is a document where there are any.
  const std::string& at(std::size_t place) const {
    if (place == 2 && !documents.empty()) return documents[0];
    const std::vector<std::string>& kind = place % 2 == 0 ? objects : references;
    return kind[place / 2 % kind.size()];
  }

  std::string head;
  std::string tail;
  std::vector<std::string> documents;
  std::vector<std::string> objects;
  std::vector<std::string> references;
};

std::string scriptOfClient() {
  std::ifstream file(BENCH_CLIENT_SCRIPT, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

std::string sizedRequest(int operation, std::size_t bytes, std::uint64_t seed, int step) {
  const Elements elements(operation, seed, step);
  std::string request = elements.head;
  for (std::size_t place = 0; place < 2 || request.size() < bytes; ++place) {
    request += elements.at(place);
  }
  return request + elements.tail;
}

std::string requestOfReferences(std::size_t count, std::uint64_t seed) {
  const Elements elements(pdm::kSave, seed, 1);
  std::string request = elements.head;
  for (std::size_t i = 0; i < count; ++i) {
    request += elements.references[i % elements.references.size()];
  }
  return request + elements.tail;
}

std::string answerTo(const std::string& request, std::uint64_t seed) {
  return pdm::ToyServer(seed).serve(request).bytes;
}

std::string sizedAnswer(std::size_t bytes, std::uint64_t seed) {
  // An answer is shorter than its request.
  std::size_t asked = bytes;
  std::string answer = answerTo(sizedRequest(pdm::kSave, asked, seed, 1), seed);
  while (answer.size() < bytes) {
    asked += bytes / 10;
    answer = answerTo(sizedRequest(pdm::kSave, asked, seed, 1), seed);
  }
  return answer;
}

std::string requestOfAttributes(std::size_t count, std::uint64_t seed) {
  std::string request = sizedRequest(pdm::kSave, 0, seed, 1);
  std::string attributes;
  for (std::size_t i = 0; i < count; ++i) {
    const std::string number = std::to_string(i);
    attributes.append(" Property").append(number).append("=\"value ").append(number).append("\"");
  }
  return request.insert(request.find('>', request.find("<SaveRequest")), attributes);
}

std::string scriptWith(std::size_t entries) {
  constexpr std::size_t kOwnEntries = 3;
  std::string script = scriptOfClient();
  std::string others;
  for (std::size_t i = kOwnEntries; i < entries; ++i) {
    others += "  <MessageXML value=\"" + std::to_string(1000 + i) +
              "\" path=\"\">\n"
              "    <Composant name=\"Request\" father=\"\" attributs=\"Mode Schema\"/>\n"
              "    <Composant name=\"LogObject\" father=\"Request\" attributs=\"Identifier "
              "Type\"/>\n  </MessageXML>\n";
  }
  // Half of them on either side of the client's own.
  const std::size_t middle = others.find("  <MessageXML", others.size() / 2);
  const std::size_t split = middle == std::string::npos ? 0 : middle;
  script.insert(script.find("</Scripts>"), others.substr(split));
  script.insert(script.find("<Scripts>") + 10, others.substr(0, split));
  return script;
}

}  // namespace bench
