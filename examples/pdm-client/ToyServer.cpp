#include "pdm-client/ToyServer.h"

#include <string_view>
#include <vector>

#include "pdm-client/Messages.h"
#include "pdm-client/TagText.h"

namespace pdm {

namespace {

// An element of a request with the "Attribute" elements in it.
struct Element {
  Tag tag;
  std::vector<Tag> attributes;

  std::string value(std::string_view name) const {
    for (const Tag& attribute : attributes) {
      if (attribute.get("Name") == name) return attribute.get("Value");
    }
    return "";
  }
};

std::vector<Element> elementsOf(const std::string& request) {
  std::vector<Element> elements;
  for (Tag& tag : readTags(std::string_view(request).substr(kRequestHeader))) {
    if (tag.name == "Attribute" && !elements.empty()) {
      elements.back().attributes.push_back(std::move(tag));
    } else if (tag.name == "LogObject" || tag.name == "Reference" || tag.name == "Document") {
      elements.push_back({std::move(tag), {}});
    }
  }
  return elements;
}

// Sends back those attributes of the element's tag that the request had. A drawing is in no table
// of this server.
void openLike(TagWriter& xml, const Tag& tag) {
  xml.open(tag.name);
  for (const auto& [name, value] : tag.attributes) {
    if (name == "Table" && tag.get("Type") == "KelDrawing") continue;
    xml.with(name, value);
  }
}

}  // namespace

ServerAnswer ToyServer::serve(const std::string& request) {
  const std::uint32_t word = _numbers.number("request " + std::to_string(++_requests));
  switch (operationOf(request)) {
    case kOpen:
      return {answerWith(word, "OPEN"), 0};
    case kNavigate:
      return {answerWith(word, objectsOf(request, "NavigateAnswer")), 0};
    case kSave:
      return {answerWith(word, objectsOf(request, "SaveAnswer")), 0};
    case kCommit:
      return {answerWith(word, "COMMITTED"), 0};
    default:
      return {answerWith(word, "UNKNOWN"), 1};
  }
}

// Every element of the request in its order, with the client's identifier and the server's own.
std::string ToyServer::objectsOf(const std::string& request, const std::string& root) const {
  TagWriter xml(root);
  xml.with("Result", "0");
  for (const Element& element : elementsOf(request)) {
    const std::string key = element.tag.name + ' ' + element.tag.get("Name");
    openLike(xml, element.tag);
    xml.attribute("$COID", _numbers.hex("coid of " + key));
    xml.attribute("$COMPID", _numbers.hex("compid of " + key));
    for (const char* name : {"S_PART_NUMBER", "S_NAME"}) {
      const std::string value = element.value(name);
      if (!value.empty()) xml.attribute(name, value);
    }
    xml.close();
  }
  return xml.finish();
}

}  // namespace pdm
