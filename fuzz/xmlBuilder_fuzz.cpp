// XML messages: the model, its restructuring and its findings against a second walk over the
// document.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "CollectorErrors.h"
#include "DataScript.h"
#include "Emulated.h"
#include "Expect.h"
#include "FuzzInput.h"
#include "KelLib.h"
#include "MessageModels.h"
#include "MsgXML.h"
#include "Tokens.h"
#include "Tree.h"
#include "ZetNorvBuilders.h"

using fuzz::expect;
using fuzz::expectEqual;
using fuzz::firstLine;

namespace {

struct Entry {
  std::string name;
  std::string father;
  std::vector<std::string> attributes;
};

struct Tag {
  std::string name;
  std::vector<std::pair<std::string, std::string>> attributes;
  std::vector<Tag> children;
};

struct Model {
  std::vector<Tag> tags;
  std::vector<std::string> findings;
};

// A line an entry: the tag, its father and the attributes, with single blanks between them.
std::vector<Entry> readEntries(const std::string& text) {
  std::vector<Entry> entries;
  for (const std::string& line : fuzz::cutAt('\n', text)) {
    const std::vector<std::string> pieces = fuzz::cutAt(' ', line);
    if (pieces.size() < 2) continue;
    entries.push_back({pieces[0], pieces[1], {pieces.begin() + 2, pieces.end()}});
  }
  return entries;
}

bool looksMissing(const std::string& value) {
  int pairs = 0;
  for (std::size_t i = 1; i < value.size(); ++i) {
    if (value[i] == value[i - 1] && (value[i] == 'F' || value[i] == 'f')) ++pairs;
  }
  return pairs > 2;
}

Tag tagOf(const DOM_Element& element, const Entry& entry, std::vector<std::string>& findings) {
  Tag tag{entry.name, {}, {}};
  for (const std::string& name : entry.attributes) {
    const std::string value = fuzz::attribute(element, name).utf8();
    if (value.empty()) {
      findings.push_back("0 No Found AttributXML|" + name);
      continue;
    }
    tag.attributes.emplace_back(name, firstLine(value));
    if (looksMissing(value)) findings.push_back("10 Problem value FFFFF... |" + firstLine(value));
  }
  for (DOM_Node child = element.getFirstChild(); !child.isNull(); child = child.getNextSibling()) {
    tag.children.push_back({child.getNodeName().utf8(), {}, {}});
  }
  return tag;
}

Model modelOf(const DOM_Document& document, const std::vector<Entry>& entries) {
  Model model;
  for (const Entry& entry : entries) {
    const std::vector<DOM_Element> elements = fuzz::elementsNamed(document, entry.name);
    if (elements.empty()) model.findings.push_back("0 No Found BaliseXML|" + entry.name);
    for (const DOM_Element& element : elements) {
      model.tags.push_back(tagOf(element, entry, model.findings));
    }
  }
  return model;
}

std::size_t countOf(const Tag& tag) {
  std::size_t count = 1;
  for (const Tag& child : tag.children) count += countOf(child);
  return count;
}

// False when the copies become too many for a second model; the library's own bound is higher.
bool restructure(std::vector<Tag>& tags) {
  constexpr std::size_t kMost = 3000;
  std::size_t copied = 0;
  for (Tag& tag : tags) {
    for (Tag& child : tag.children) {
      const auto found = std::find_if(tags.begin(), tags.end(), [&](const Tag& each) {
        return child.name.starts_with(each.name);
      });
      if (found == tags.end()) continue;
      copied += countOf(*found);
      if (copied > kMost) return false;
      Tag copy = *found;
      child = std::move(copy);
    }
  }
  return true;
}

void checkFathers(const Model& model, const std::vector<Entry>& entries,
                  std::vector<std::string>& findings) {
  for (const Tag& tag : model.tags) {
    for (const Tag& child : tag.children) {
      const bool allowed = std::any_of(entries.begin(), entries.end(), [&](const Entry& entry) {
        return child.name.starts_with(entry.name) && tag.name.starts_with(entry.father);
      });
      if (!allowed) findings.push_back("10 Error in hierarchy|" + child.name + tag.name);
    }
  }
}

std::string describe(const Tag& tag) {
  std::string text = tag.name;
  for (const auto& attribute : tag.attributes) {
    text += &attribute == &tag.attributes.front() ? "[" : " ";
    text += attribute.first + "=" + attribute.second;
  }
  if (!tag.attributes.empty()) text += "]";
  for (const Tag& child : tag.children) {
    text += (&child == &tag.children.front() ? "(" : " ") + describe(child);
  }
  if (!tag.children.empty()) text += ")";
  return text;
}

void sameModel(const MsgXML& msg, const std::vector<Tag>& tags) {
  const std::vector<std::string> texts = describe(msg);
  expect(texts.size() == tags.size(), "the tags are as many");
  for (std::size_t i = 0; i < tags.size(); ++i) {
    expectEqual(texts[i], describe(tags[i]), "a tag is what the document says");
  }
}

void sameFindings(const CollectorErrors& collector, const std::vector<std::string>& expected) {
  const std::vector<std::string> findings = findingsOf(collector);
  expect(findings.size() == expected.size(), "the findings are as many");
  for (std::size_t i = 0; i < findings.size(); ++i) {
    expectEqual(findings[i], expected[i], "a finding says what is wrong");
  }
}

void fill(DataScript& script, const std::vector<Entry>& entries) {
  for (const Entry& entry : entries) {
    DataBalise balise(entry.name.c_str(), entry.father.c_str());
    for (const std::string& name : entry.attributes) balise.setAttributs(name.c_str());
    expect(script.addBalise(&balise) == S_OK, "an entry is taken");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzz::Input input(bytes, size);
  const std::vector<Entry> entries = readEntries(input.textTo('\0'));
  const std::string text = input.rest();
  const DOM_Document document = fuzz::parse(text);

  fuzz::Emulated emulated("REPLAY");
  DataScript script("XML_");
  fill(script, entries);
  CollectorErrors collector(12);
  MsgXML msg;
  const std::string message = "\x0c" + std::string(3, '\0') + text;
  const long result = ZetNorvBuilders::builderMessage(
      message.data(), static_cast<int>(message.size()), &script, msg, &collector);
  expect((result == S_OK) == !document.isNull(), "a document is what the parser takes");
  if (document.isNull()) {
    expect(emulated.trace.has("Out ... XMLParse"), "what is no document is traced");
    sameModel(msg, {});
    sameFindings(collector, {});
    return 0;
  }
  Model model = modelOf(document, entries);
  sameModel(msg, model.tags);
  sameFindings(collector, model.findings);
  if (!restructure(model.tags)) return 0;
  ZetNorvBuilders::restructMessage(&msg);
  sameModel(msg, model.tags);
  ZetNorvBuilders::checkFather(&msg, &script, &collector);
  checkFathers(model, entries, model.findings);
  sameFindings(collector, model.findings);
  expect(msg == msg, "a message is equal to itself");
  return 0;
}
