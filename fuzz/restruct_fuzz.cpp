// Restructuring a message against a plain second implementation on trees of its own.
//
// An input: up to six lines, a top-level tag each. Its first word is the tag's name, the others,
// with a blank before each, are children ("child", or "child/grandchild") and attributes
// ("name=value"). A '-' is a name that is missing.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Expect.h"
#include "FuzzInput.h"
#include "MessageModels.h"
#include "MsgXML.h"
#include "QuietConsole.h"
#include "TraceRecorder.h"
#include "ZetNorvBuilders.h"

using fuzz::expect;
using fuzz::expectEqual;

namespace {

struct Tag {
  std::optional<std::string> name;
  std::vector<std::pair<std::string, std::string>> attributes;
  std::vector<Tag> children;
};

using Tags = std::vector<Tag>;

Tag named(const std::string& word) {
  if (word == "-") return {};
  // As a name is taken from a text.
  return {word.substr(0, word.find('\0')), {}, {}};
}

std::string description(const Tag& tag) {
  std::string text = tag.name.value_or("");
  const char* before = "[";
  for (const auto& [name, value] : tag.attributes) {
    text += before + name + "=" + value;
    before = " ";
  }
  if (!tag.attributes.empty()) text += "]";
  before = "(";
  for (const Tag& child : tag.children) {
    text += before + description(child);
    before = " ";
  }
  return tag.children.empty() ? text : text + ")";
}

BaliseXML modelOf(const Tag& tag) {
  BaliseXML model(tag.name ? tag.name->c_str() : nullptr);
  for (const auto& [name, value] : tag.attributes) {
    model.addAttributP(AttributXML(name.c_str(), value.c_str()));
  }
  for (const Tag& child : tag.children) model.addChildP(modelOf(child));
  return model;
}

Tag tagOf(const std::string& line) {
  constexpr std::size_t kMost = 3;  // children: copies of copies grow fast
  std::vector<std::string> words;
  for (std::size_t at = 0; at <= line.size();) {
    const std::size_t end = std::min(line.find(' ', at), line.size());
    words.push_back(line.substr(at, end - at));
    at = end + 1;
  }
  Tag tag = named(words[0]);
  for (std::size_t i = 1; i < words.size(); ++i) {
    const std::size_t equals = words[i].find('=');
    if (equals != std::string::npos) {
      const Tag name = named(words[i].substr(0, equals));
      const Tag value = named(words[i].substr(equals + 1));
      tag.attributes.emplace_back(name.name.value_or(""), value.name.value_or(""));
    } else if (tag.children.size() < kMost) {
      const std::size_t slash = words[i].find('/');
      Tag child = named(words[i].substr(0, slash));
      if (slash != std::string::npos) child.children.push_back(named(words[i].substr(slash + 1)));
      tag.children.push_back(child);
    }
  }
  return tag;
}

// The first tag that is found for a name: one whose own name is a beginning of it.
const Tag* found(const Tags& tags, const std::optional<std::string>& name) {
  if (!name) return nullptr;
  for (const Tag& tag : tags) {
    const std::string beginning = tag.name.value_or("");
    if (name->compare(0, beginning.size(), beginning) == 0) return &tag;
  }
  return nullptr;
}

// Fills the children in order with what the tags are at that moment. Returns how many have no name.
int restructured(Tags& tags) {
  int nameless = 0;
  for (Tag& tag : tags) {
    for (Tag& child : tag.children) {
      if (!child.name) ++nameless;
      const Tag* const match = found(tags, child.name);
      if (match == nullptr) continue;
      // Taken whole before it goes in: it may be the tag that it goes into.
      Tag copy = *match;
      child = std::move(copy);
    }
  }
  return nameless;
}

std::vector<std::string> descriptionsOf(const Tags& tags) {
  std::vector<std::string> texts;
  for (const Tag& tag : tags) texts.push_back(description(tag));
  return texts;
}

void same(const MsgXML& msg, const Tags& tags, const char* statement) {
  const std::vector<std::string> actual = describe(msg);
  const std::vector<std::string> expected = descriptionsOf(tags);
  expect(actual.size() == expected.size(), statement);
  for (std::size_t i = 0; i < actual.size(); ++i) expectEqual(actual[i], expected[i], statement);
}

Tags tagsIn(fuzz::Input& input) {
  constexpr std::size_t kMost = 6;
  Tags tags;
  while (!input.atEnd() && tags.size() < kMost) tags.push_back(tagOf(input.textTo('\n')));
  return tags;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const QuietConsole console;
  TraceRecorder trace;
  fuzz::Input input(bytes, size);
  Tags tags = tagsIn(input);
  MsgXML msg;
  for (const Tag& tag : tags) msg.add(modelOf(tag));
  same(msg, tags, "the message is the one that was built");

  const int nameless = restructured(tags);
  trace.clear();
  ZetNorvBuilders::restructMessage(&msg);
  same(msg, tags, "every child is what its tag was at that moment");
  expect(trace.count("MsgXML: name == NULL") == nameless, "a child without a name is told of");
  expect(static_cast<int>(trace.texts().size()) == nameless, "and nothing else is");

  const MsgXML copy(msg);
  same(copy, tags, "a copy is as deep");
  expect(msg == copy, "a message equals its copy");
  return 0;
}
