// Comparison scripts: the script of a number against a second walk over the file, whose bytes are
// the input's, or which is composed of what scripts are made of.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "DataScript.h"
#include "Emulated.h"
#include "Expect.h"
#include "FuzzInput.h"
#include "Tokens.h"
#include "Tree.h"
#include "ZetNorvScript.h"

using fuzz::expect;
using fuzz::expectEqual;
using fuzz::firstLine;
using fuzz::textOf;

namespace {

std::string value(const DOM_Element& element, const char* name) {
  return fuzz::attribute(element, name).utf8();
}

// All of the text is a number, with a sign and blanks around it; else 0.
int number(std::string text) {
  const std::string blanks = " \t\r\n";
  while (!text.empty() && blanks.find(text.front()) != std::string::npos) text.erase(0, 1);
  while (!text.empty() && blanks.find(text.back()) != std::string::npos) text.pop_back();
  const bool negative = !text.empty() && text[0] == '-';
  if (!text.empty() && (negative || text[0] == '+')) text.erase(0, 1);
  if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos) return 0;
  std::int64_t sum = 0;
  for (const char c : text) {
    sum = 10 * sum + (c - '0');
    if (sum > (std::int64_t{1} << 31)) return 0;
  }
  if (negative) sum = -sum;
  return sum > INT32_MAX ? 0 : static_cast<int>(sum);
}

std::string characterEntry(const DOM_Element& entry) {
  const std::string size = value(entry, "size");
  const bool named = size[0] == '$';
  const std::string type = value(entry, "type");
  return firstLine(value(entry, "name")) + "|" + std::to_string(named ? 0 : number(size)) + "|" +
         (named ? firstLine(size) : "") + "|" + std::to_string(number(value(entry, "compare"))) +
         "|" + (type.empty() ? "S" : firstLine(type)) + "|" + firstLine(value(entry, "repeat"));
}

std::string xmlEntry(const DOM_Element& entry) {
  std::string text = firstLine(value(entry, "name")) + "|" + firstLine(value(entry, "father"));
  const DOMString names = fuzz::attribute(entry, "attributs");
  if (names.isNull()) return text;
  for (const std::string& name : fuzz::cutAt(' ', names.utf8())) text += "|" + firstLine(name);
  return text;
}

// The entries of the first element `tag` with that value; false when there is none.
bool findEntries(const DOM_Document& file, const char* tag, int messageNumber,
                 std::vector<DOM_Element>& entries) {
  for (const DOM_Element& element : fuzz::elementsNamed(file, tag)) {
    if (value(element, "value") != std::to_string(messageNumber)) continue;
    entries = fuzz::elementsNamed(element, "Composant");
    return true;
  }
  return false;
}

std::vector<std::string> expectedEntries(const DOM_Document& file, int messageNumber) {
  std::vector<DOM_Element> entries;
  std::vector<std::string> texts;
  if (findEntries(file, "MessageChar", messageNumber, entries)) {
    texts.push_back("CHAR");
    for (const DOM_Element& entry : entries) texts.push_back(characterEntry(entry));
  } else if (findEntries(file, "MessageXML", messageNumber, entries)) {
    texts.push_back("XML_");
    for (const DOM_Element& entry : entries) texts.push_back(xmlEntry(entry));
  }
  return texts;
}

std::string describe(const DataComposant& entry) {
  return textOf(entry.name) + "|" + std::to_string(entry.size) + "|" + textOf(entry.sizeVar) + "|" +
         std::to_string(entry.compare) + "|" + textOf(entry.type) + "|" + textOf(entry.repeat);
}

std::string describe(const DataBalise& entry) {
  std::string text = textOf(entry.name) + "|" + textOf(entry.father);
  for (int i = 0; i < entry._nbAttributs; ++i) text += "|" + textOf(entry._attributs[i]->name);
  return text;
}

// Whether `text` begins with `beginning`; the NUL behind a text counts as one of its bytes.
bool begins(const std::string& beginning, const std::string& text) {
  return (text + '\0').substr(0, beginning.size()) == beginning;
}

// Each tag inside the father of another, and inside its own.
void allowsWhatAnEntrySays(const DataScript& script) {
  const int last = std::min(script.getSize(), 10) - 1;
  for (int i = 0; i <= last && script.getBalise(i) != nullptr; ++i) {
    const MString& name = script.getBalise(i)->name;
    const MString& father = script.getBalise(last - i)->father;
    bool allowed = false;
    for (int j = 0; j < script.getSize(); ++j) {
      const DataBalise& entry = *script.getBalise(j);
      allowed = allowed || (begins(textOf(entry.name), textOf(name)) &&
                            begins(textOf(entry.father), textOf(father)));
    }
    expect(script.hasBalise(father, name) == (allowed ? 1 : 0), "an entry allows a tag, or none");
    expect(script.hasBalise(script.getBalise(i)->father, name) == 1, "an entry allows its own tag");
  }
}

std::vector<std::string> entriesOf(const DataScript& script) {
  std::vector<std::string> texts{textOf(script.type)};
  for (int i = 0; i < script.getSize(); ++i) {
    const DataComposant* composant = script.getComposant(i);
    texts.push_back(composant == nullptr ? describe(*script.getBalise(i)) : describe(*composant));
  }
  return texts;
}

// What scripts are made of, and what nearly is.
constexpr std::string_view kTags[] = {"MessageChar", "MessageXML", "Composant",
                                      "Composant",   "Composants", "g"};
constexpr std::string_view kAttributes[] = {"value",  "name",   "size",      "compare", "type",
                                            "repeat", "father", "attributs", "path",    "Value"};
constexpr std::string_view kValues[] = {"12", "12", "40",      "-1",         "012",    " 12",
                                        "+7", "$n", "a b",     "a  b ",      "Doc",    "Document",
                                        "I",  "",   "x&#10;y", "2147483648", "&#36;x", "\xC3\xA9"};

template <std::size_t count>
std::string oneOf(const std::string_view (&texts)[count], fuzz::Input& input) {
  return std::string(texts[input.byte() % count]);
}

std::string composedAttributes(fuzz::Input& input) {
  std::map<std::string, std::string> values;
  for (int count = input.upTo(6); count > 0; --count) {
    const std::string name = oneOf(kAttributes, input);
    values[name] = oneOf(kValues, input);
  }
  std::string text;
  for (const auto& [name, value] : values) text += " " + name + "=\"" + value + "\"";
  return text;
}

// Elements in any order and depth, all of them closed.
std::string composed(fuzz::Input& input) {
  std::string text = "<Scripts>";
  std::vector<std::string> open{"Scripts"};
  for (int steps = 0; steps < 40 && !input.atEnd(); ++steps) {
    const int kind = input.upTo(3);
    if (kind == 0 && open.size() > 1) {
      text += "</" + open.back() + ">";
      open.pop_back();
      continue;
    }
    const std::string tag = oneOf(kTags, input);
    text += "<" + tag + composedAttributes(input) + (kind == 1 ? ">" : "/>");
    if (kind == 1) open.push_back(tag);
  }
  for (; !open.empty(); open.pop_back()) text += "</" + open.back() + ">";
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzz::Input input(bytes, size);
  const int first = input.byte();
  const int messageNumber = first % 21 - 1;
  const bool isComposed = first >= 128;
  const std::string text = isComposed ? composed(input) : input.rest();
  const DOM_Document file = fuzz::parse(text);
  expect(!isComposed || !file.isNull(), "what is composed is a document");
  const std::vector<std::string> expected =
      file.isNull() ? std::vector<std::string>() : expectedEntries(file, messageNumber);

  fuzz::Emulated emulated("REPLAY");
  fuzz::Emulated::files().put(fuzz::Emulated::kScript, text);
  // The second time from what is kept of the file.
  for (int time = 0; time < 2; ++time) {
    const std::unique_ptr<DataScript> script(ZetNorvScript::buildData(messageNumber));
    expect((script == nullptr) == expected.empty(), "there is a script where there is an entry");
    if (script == nullptr) continue;
    allowsWhatAnEntrySays(*script);
    const std::vector<std::string> entries = entriesOf(*script);
    expect(entries.size() == expected.size(), "the entries are as many");
    for (std::size_t i = 0; i < entries.size(); ++i) {
      expectEqual(entries[i], expected[i], "an entry is what the file says");
    }
  }
  expect(emulated.trace.has("Out ... XMLParse") == (file.isNull() && !text.empty()),
         "a file that is no document is traced");
  expect(emulated.trace.count("ZetNorvScript_Pool: 0") == (expected.empty() ? 0 : 2),
         "a script is traced, and no script is not");
  expect(DataScript::_nbInstances == 0 && DataComposant::_nbInstances == 0 &&
             DataBalise::_nbInstances == 0 && DataAttribut::_nbInstances == 0,
         "nothing is left of a script");
  return 0;
}
