// The lines that an answer adds to "database.txt", against a second walk over the answer.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Emulated.h"
#include "Expect.h"
#include "FuzzInput.h"
#include "KelLib.h"
#include "Tokens.h"
#include "Tree.h"

using fuzz::Emulated;
using fuzz::expect;
using fuzz::expectEqual;

namespace {

using Value = std::optional<std::string>;

Value valueOf(const DOM_Element& element, const char* name) {
  const DOMString value = fuzz::attribute(element, name);
  return value.isNull() ? Value() : Value(value.utf8());
}

// What an element lacks it has from the one before it.
struct Carried {
  Value name;  // of a reference, and the part number of a document
  Value uuid;
  Value type;
  Value timeStamp;
  Value documentName;
  Value filePath;
  Value table;
};

void carry(const DOM_Element& element, const char* name, Value& value) {
  const Value own = valueOf(element, name);
  if (own) value = own;
}

// Every Attribute below goes to the first keyword that its name is a beginning of.
void readAttributes(const DOM_Element& element,
                    const std::vector<std::pair<std::string, Value*>>& keywords) {
  for (const DOM_Element& attribute : fuzz::elementsNamed(element, "Attribute")) {
    const Value name = valueOf(attribute, "Name");
    const Value value = valueOf(attribute, "Value");
    if (!name || !value) continue;
    for (const auto& [keyword, target] : keywords) {
      if (!keyword.starts_with(fuzz::firstLine(*name))) continue;
      *target = value;
      break;
    }
  }
}

std::string line(const std::vector<std::string>& fields) {
  std::string text;
  for (const std::string& field : fields) text += "<" + field + ">";
  return text + "\n";
}

std::string referenceLine(const DOM_Element& element, Carried& carried) {
  carry(element, "Name", carried.name);
  carry(element, "SourceUuid", carried.uuid);
  carry(element, "Type", carried.type);
  carry(element, "TimeStamp", carried.timeStamp);
  Value coid;
  Value compid;
  Value part;
  readAttributes(element, {{"$COID", &coid}, {"$COMPID", &compid}, {"S_PART_NUMBER", &part}});
  if (!carried.name || !coid || !compid || !part || !carried.type || !carried.timeStamp) return "";
  return line({*coid, *compid, *carried.name, *part, "Reference", "UUID BIDON", "Reference",
               *carried.type, *carried.timeStamp});
}

std::string documentLine(const DOM_Element& element, Carried& carried, const Value& staged,
                         const Value& copy) {
  carry(element, "Name", carried.documentName);
  carry(element, "FilePath", carried.filePath);
  carry(element, "Type", carried.type);
  carry(element, "Table", carried.table);
  carry(element, "SourceUuid", carried.uuid);
  carry(element, "TimeStamp", carried.timeStamp);
  Value coid;
  Value compid;
  Value name;
  readAttributes(element, {{"$COID", &coid},
                           {"$COMPID", &compid},
                           {"S_NAME", &name},
                           {"S_PART_NUMBER", &carried.name}});
  if (!carried.filePath || !coid || !compid || !name || !staged || !copy ||
      !carried.filePath->starts_with(*staged) || !carried.documentName || !carried.type ||
      !carried.uuid || !carried.timeStamp) {
    return "";
  }
  if (!carried.name) carried.name = "Indefini";
  if (!carried.table) carried.table = "Indefini";
  return line({*coid, *compid, *carried.name, *name, *copy, *carried.uuid, *carried.table,
               *carried.type, *carried.timeStamp});
}

std::string linesOf(const DOM_Document& answer, const Value& staged, const Value& copy) {
  Carried carried;
  std::string lines;
  for (const DOM_Element& element : fuzz::elementsNamed(answer, "Reference")) {
    lines += referenceLine(element, carried);
  }
  for (const DOM_Element& element : fuzz::elementsNamed(answer, "Document")) {
    lines += documentLine(element, carried, staged, copy);
  }
  return lines;
}

Value staged(fuzz::Input& input, MString& member) {
  const std::string text = fuzz::firstLine(input.textTo('|'));
  // "-": nothing has been staged.
  if (text == "-") return {};
  member = MString(text.c_str());
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzz::Input input(bytes, size);
  Emulated emulated("SAVE");
  const Value path = staged(input, ZetNorvDb::_refFile);
  const Value copy = staged(input, ZetNorvDb::_copyFile);
  const std::string text = input.rest();
  const DOM_Document answer = fuzz::parse(text);
  const std::string before = "<what><was><there><before>\n";
  Emulated::files().put(Emulated::scenario("database.txt"), before);

  ZetNorvDb database;
  const long result = database.buildDB(text.data(), static_cast<int>(text.size()));
  expect((result == S_OK) == !answer.isNull(), "a document is what the parser takes");
  expect(emulated.trace.has("buildDB Problem XMLParse") == answer.isNull(),
         "what is no document is traced");
  const std::string lines = answer.isNull() ? "" : linesOf(answer, path, copy);
  // The file's texts end at a NUL, as no document's does.
  expectEqual(Emulated::files().bytes(Emulated::scenario("database.txt")), before + lines,
              "every complete element has its line, behind what was there");
  expect(Emulated::files().files().size() == 1, "nothing else is made");
  expect(Emulated::files().openFiles() == 0, "no file is left open");
  expect(ZetNorvDb::_database.getSize() == 0, "the table is not touched");
  return 0;
}
