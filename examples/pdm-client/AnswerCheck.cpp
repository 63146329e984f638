#include "pdm-client/AnswerCheck.h"

#include "pdm-client/Messages.h"
#include "pdm-client/TagText.h"

namespace pdm {

namespace {

std::vector<std::string> identifiersOf(const std::vector<Tag>& tags, std::string_view name) {
  std::vector<std::string> identifiers;
  for (const Tag& tag : tags) {
    if (tag.name == name) identifiers.push_back(tag.get("Identifier"));
  }
  return identifiers;
}

std::string problemWithObjects(std::string_view xml, std::string_view request) {
  const std::vector<Tag> sent = readTags(request.substr(kRequestHeader));
  const std::vector<Tag> received = readTags(xml);
  for (const char* name : {"LogObject", "Reference"}) {
    const auto expected = identifiersOf(sent, name);
    const auto found = identifiersOf(received, name);
    if (found.size() != expected.size()) return std::string("another number of ") + name;
    if (found != expected) return std::string("identifiers of another session in ") + name;
  }
  return "";
}

std::string problemWithText(std::string_view text, std::string_view expected) {
  return text == expected ? "" : "not the text " + std::string(expected);
}

}  // namespace

std::string problemWith(const Answer& answer, std::string_view request) {
  if (answer.from == AnswerFrom::nowhere) return "no answer";
  if (answer.status != 0) return "status " + std::to_string(answer.status);
  const std::string_view bytes = answer.bytes();
  if (bytes.size() <= kAnswerHeader) return "cut short";
  const std::string_view text = textOf(bytes);
  if (numberAt(bytes, 4) != text.size()) return "the length in its header is wrong";

  switch (operationOf(request)) {
    case kOpen:
      return problemWithText(text, "OPEN");
    case kCommit:
      return problemWithText(text, "COMMITTED");
    default:
      return problemWithObjects(text, request);
  }
}

std::vector<KnownObject> objectsIn(std::string_view answer) {
  std::vector<KnownObject> objects;
  KnownObject* current = nullptr;
  for (const Tag& tag : readTags(textOf(answer))) {
    if (tag.name == "Document" || tag.name == "Reference") {
      current = &objects.emplace_back(KnownObject{tag.name, tag.get("Name"), "", "", ""});
    } else if (tag.name != "Attribute") {
      current = nullptr;
    } else if (current != nullptr) {
      const std::string name = tag.get("Name");
      if (name == "$COID") current->coid = tag.get("Value");
      if (name == "$COMPID") current->compid = tag.get("Value");
      if (name == "S_PART_NUMBER") current->partNumber = tag.get("Value");
    }
  }
  return objects;
}

}  // namespace pdm
