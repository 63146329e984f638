// Character messages: the fields that a script cuts against a plain second cutting.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "DataScript.h"
#include "Emulated.h"
#include "Expect.h"
#include "FuzzInput.h"
#include "KelLib.h"
#include "Msg.h"
#include "Tokens.h"
#include "ZetNorvBuilders.h"

using fuzz::expect;
using fuzz::expectEqual;
using fuzz::firstLine;
using fuzz::textOf;

namespace {

struct Entry {
  std::string name;
  int size;
  std::string sizeVar;
  int compare;
};

struct Field {
  std::string name;
  std::string bytes;
  int size;
  int compare;
};

std::vector<Entry> readEntries(fuzz::Input& input) {
  std::vector<Entry> entries(static_cast<std::size_t>(input.upTo(12)));
  for (Entry& entry : entries) {
    entry.name = firstLine(input.textTo('|'));
    entry.size = static_cast<signed char>(input.byte());
    entry.sizeVar = firstLine(input.textTo('|'));
    entry.compare = input.upTo(2);
  }
  return entries;
}

int variableAt(const std::string& message, int offset) {
  std::uint32_t value = 0;
  const auto at = static_cast<std::size_t>(offset);
  if (message.size() - at < 4) return 0;
  for (std::size_t i = 0; i < 4; ++i) {
    value |= static_cast<std::uint32_t>(static_cast<unsigned char>(message[at + i])) << (8 * i);
  }
  return static_cast<int>(value);
}

std::vector<Field> cut(const std::string& message, const std::vector<Entry>& entries) {
  const int end = static_cast<int>(message.size());
  std::vector<std::pair<std::string, int>> variables;
  std::vector<Field> fields;
  int offset = 0;
  for (const Entry& entry : entries) {
    if (offset >= end) break;
    if (entry.name[0] == '$') variables.emplace_back(entry.name, variableAt(message, offset));
    int size = entry.size;
    if (!entry.sizeVar.empty()) {
      // The first variable whose name is a beginning of the one that is looked for.
      const auto found = std::find_if(variables.begin(), variables.end(), [&](const auto& each) {
        return entry.sizeVar.starts_with(each.first);
      });
      size = found == variables.end() ? 0 : found->second;
      if (size > 100) size = 4;
    }
    size = std::min(size, end - offset);
    const auto at = static_cast<std::size_t>(offset);
    const std::string bytes = size < 1 ? "" : message.substr(at, static_cast<std::size_t>(size));
    fields.push_back({entry.name, bytes, size, entry.compare});
    offset = std::max(0, offset + size);
  }
  return fields;
}

bool areAllCompared(const std::vector<Field>& fields) {
  return std::all_of(fields.begin(), fields.end(),
                     [](const Field& field) { return field.compare == 1; });
}

void sameField(const Composant& composant, const Field& field) {
  expectEqual(textOf(composant._name), field.name, "a field has its entry's name");
  expectEqual(textOf(composant._buffer), field.bytes, "a field has its bytes");
  expect(composant._size == field.size, "a field has its size");
  expect(composant._type == field.compare, "a field is compared as its entry says");
  expectEqual(textOf(composant._spec), "I", "a field has its entry's kind");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzz::Input input(bytes, size);
  const std::vector<Entry> entries = readEntries(input);
  const std::string rest = input.rest();
  // Without a NUL behind it, so that reading past its end shows.
  const std::vector<char> message(rest.begin(), rest.end());
  const char nothing = 0;
  const char* const buffer = message.empty() ? &nothing : message.data();

  fuzz::Emulated emulated("REPLAY");
  DataScript script("CHAR");
  for (const Entry& entry : entries) {
    const DataComposant composant(entry.name.c_str(), entry.size, entry.sizeVar.c_str(),
                                  entry.compare, "I", "");
    expect(script.addComposant(&composant) == S_OK, "an entry is taken");
  }
  const auto build = [&] {
    return std::unique_ptr<Msg>(ZetNorvBuilders::builderMessage(
        buffer, static_cast<int>(message.size()), &script, nullptr));
  };
  const std::unique_ptr<Msg> msg = build();
  const std::vector<Field> fields = cut(rest, entries);
  expect(msg != nullptr && msg->_nbComposants == static_cast<int>(fields.size()),
         "the fields are as many");
  for (std::size_t i = 0; i < fields.size(); ++i) sameField(*msg->_composants[i], fields[i]);
  const std::unique_ptr<Msg> again = build();
  expect((*msg == *again) == (areAllCompared(fields) ? 1 : 0),
         "a message is equal to itself when all of it is compared");
  return 0;
}
