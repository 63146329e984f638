#include "pdm-client/Messages.h"

#include <array>
#include <charconv>

#include "pdm-client/TagText.h"

namespace pdm {

namespace {

constexpr std::array<const char*, 4> kUsers = {"anna", "jürgen.müller", "k.o'neill",
                                               "maintenance-team@plant-2"};
constexpr std::array<const char*, 4> kSessions = {
    "Gear pump GP 20", "Review", "Design change 4711: relief valve & fittings",
    "A session whose name is nearly as long as the server allows, which is below a hundred bytes"};

std::string sized(std::string_view text) {
  return numberBytes(static_cast<std::uint32_t>(text.size())) + std::string(text);
}

std::string request(int operation, const std::string& rest) {
  return numberBytes(static_cast<std::uint32_t>(operation)) + rest;
}

// With a point, whatever the locale of the client's user writes.
std::string decimal(double value) {
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 6).ptr;
  return std::string(text, end);
}

// What a server wants to know about an item, whatever kind of element carries it.
void describe(TagWriter& xml, const Item& item) {
  xml.attribute("S_PART_NUMBER", item.number).attribute("S_NAME", item.name);
}

void addDocument(TagWriter& xml, const Item& item, const std::string& path, const std::string& uuid,
                 const std::string& timeStamp) {
  xml.open("Document").with("Name", item.fileName()).with("FilePath", path);
  xml.with("Type", item.documentType()).with("Table", "DOCUMENT");
  xml.with("SourceUuid", uuid).with("TimeStamp", timeStamp);
  describe(xml, item);
  const double half = 10.0 + item.grams / 50.0;
  for (const char* axis : {"X", "Y", "Z"}) {
    xml.attribute(std::string("V_BOX_LOW_") + axis, decimal(-half));
    xml.attribute(std::string("V_BOX_HIGH_") + axis, decimal(half));
    xml.attribute(std::string("V_CENTRE_") + axis, decimal(half / 8));
    xml.attribute(std::string("V_INERTIA_") + axis, decimal(item.grams * half * half / 6));
  }
  xml.close();
}

void addObject(TagWriter& xml, const Item& item, const std::string& identifier,
               const std::string& timeStamp) {
  xml.open("LogObject").with("Identifier", identifier);
  xml.with("Type", item.isPart() ? "KelPart" : "KelProduct").with("Name", item.number);
  xml.with("TimeStamp", timeStamp);
  describe(xml, item);
  xml.attribute("S_REVISION", "B").attribute("S_STATE", "In work").attribute("S_SITE", "Plant 2");
  xml.attribute("S_MATERIAL", item.material)
      .attribute("S_SOURCE", item.isPart() ? "Make" : "Build");
  xml.attribute("V_MASS", decimal(item.grams / 1000.0)).attribute("V_MASS_UNIT", "kg");
  xml.close();
}

// Where the `place`-th child sits in its assembly: a rotation and an offset.
void addPosition(TagWriter& xml, std::size_t place) {
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 4; ++column) {
      const double offset = 12.5 * static_cast<double>(place + 1) * static_cast<double>(row + 1);
      const double value = column == 3 ? offset : (row == column ? 1.0 : 0.0);
      xml.attribute("V_POSITION_" + std::to_string(row) + std::to_string(column), decimal(value));
    }
  }
}

std::string referenceName(const Item& child) { return child.number + ".1"; }

void addReference(TagWriter& xml, const Item& assembly, const Item& child, std::size_t place,
                  const std::string& identifier, const std::string& timeStamp) {
  xml.open("Reference").with("Identifier", identifier).with("Name", referenceName(child));
  xml.with("Type", "Instance").with("Father", assembly.number).with("Child", child.number);
  xml.with("TimeStamp", timeStamp);
  describe(xml, child);
  addPosition(xml, place);
  xml.close();
}

// Takes the attribute ` Type="..."` out of the first LogObject.
void dropType(std::string& xml) {
  const std::size_t tag = xml.find("<LogObject ");
  const std::size_t start = xml.find(" Type=\"", tag);
  const std::size_t end = xml.find('"', start + 7);
  if (tag != std::string::npos && end != std::string::npos) xml.erase(start, end - start + 1);
}

}  // namespace

std::string numberBytes(std::uint32_t number) {
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) {
    bytes += static_cast<char>((number >> shift) & 0xFFu);
  }
  return bytes;
}

std::uint32_t numberAt(std::string_view message, std::size_t at) {
  if (message.size() < 4 || at > message.size() - 4) return 0;
  std::uint32_t number = 0;
  for (std::size_t i = 4; i-- > 0;) {
    number = number << 8 | static_cast<unsigned char>(message[at + i]);
  }
  return number;
}

int operationOf(std::string_view request) { return static_cast<int>(numberAt(request, 0)); }

std::string_view textOf(std::string_view answer) {
  return answer.size() < kAnswerHeader ? std::string_view() : answer.substr(kAnswerHeader);
}

std::string answerWith(std::uint32_t serverWord, std::string_view text) {
  return numberBytes(serverWord) + sized(text);
}

std::string RequestBuilder::open(int session) const {
  const auto which = static_cast<std::size_t>(session) % kSessions.size();
  return request(kOpen, "KELPDM05" + numberBytes(2) + sized(kUsers[which]) +
                            sized(kSessions[which]) + "en" + numberBytes(0));
}

std::string RequestBuilder::navigate(std::size_t item) const {
  const Item& assembly = _product.item(item);
  TagWriter xml("NavigateRequest");
  xml.with("Depth", "1").with("Filter", "Latest");
  xml.open("LogObject").with("Identifier", _numbers.identifier('L', item));
  xml.with("Type", "KelProduct").with("Name", assembly.number).close();
  for (const std::size_t child : assembly.children) {
    xml.open("Reference").with("Identifier", _numbers.identifier('R', child));
    xml.with("Name", referenceName(_product.item(child))).with("Type", "Instance").close();
  }
  return request(kNavigate, xml.finish());
}

std::string RequestBuilder::save(std::size_t item, int step) const {
  const std::size_t open = _product.assemblyOf(item);
  const Item& assembly = _product.item(open);
  const std::string now = _numbers.timeStamp(step);
  TagWriter xml("SaveRequest");
  xml.with("Mode", "Update").with("Schema", "5");
  addDocument(xml, _product.item(item), filePath(item), _numbers.uuid(item), now);
  addObject(xml, assembly, _numbers.identifier('L', open), now);
  for (const std::size_t child : assembly.children) {
    addObject(xml, _product.item(child), _numbers.identifier('L', child), now);
  }
  for (std::size_t place = 0; place < assembly.children.size(); ++place) {
    const std::size_t child = assembly.children[place];
    addReference(xml, assembly, _product.item(child), place, _numbers.identifier('R', child), now);
  }
  return request(kSave, xml.finish());
}

std::string RequestBuilder::commit(int saves) const {
  return request(kCommit, numberBytes(static_cast<std::uint32_t>(saves)) + "COMMIT");
}

std::string RequestBuilder::filePath(std::size_t item) const {
  return _workFolder + '/' + _product.item(item).fileName();
}

std::string altered(std::string request) {
  const int operation = operationOf(request);
  if (operation == kNavigate || operation == kSave) {
    dropType(request);
  } else {
    request.back() = static_cast<char>(request.back() ^ 1);
  }
  return request;
}

}  // namespace pdm
