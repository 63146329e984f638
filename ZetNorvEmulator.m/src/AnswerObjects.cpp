#include "AnswerObjects.h"

#include <initializer_list>
#include <optional>

#include "KelDOMServices.h"
#include "KelLib.h"
#include "ZetNorvTrace.h"

namespace zetnorv {

namespace {

// A value of the XML; an empty one is present.
using Value = std::optional<std::string>;

constexpr const char* kReference = "Reference";
constexpr const char* kUndefined = "Indefini";

// Values that an element leaves to those behind it: they start unset with every answer and are
// overwritten, never cleared, also by elements that are passed over. Readers of "database.txt"
// count on an element having what it lacks from its predecessor.
struct CarriedValues {
  // One variable for both kinds: a document without a part number, and before any that has one,
  // gets the name of the last reference.
  Value referenceNameOrPartNumber;
  Value type;
  Value timeStamp;
  // Of no use to a reference's line; a document may have it from a reference.
  Value sourceUuid;
  // Of documents only.
  Value documentName;
  Value filePath;
  Value table;
};

// Values from the Attribute elements of one element, cleared for every element.
struct OwnValues {
  Value coid;
  Value compid;
  Value partNumberOrName;  // S_PART_NUMBER of a reference, S_NAME of a document
};

// Where the "Value" of an Attribute element goes when its "Name" matches `keyword`.
struct Target {
  const char* keyword;
  Value& value;
};

// Sets `value` from the attribute `name`; an absent one leaves it.
void carry(const DOM_Element& element, const char* name, Value& value) {
  const DOMString text = element.getAttribute(name);
  if (!text.isNull()) value = text.utf8();
}

// The first of `targets` whose keyword begins with `name`: a shortened name counts, "$CO" is the
// coid, and an empty name matches the first keyword.
const Target* findTarget(std::initializer_list<Target> targets, const std::string& name) {
  const MString text(name.c_str());
  for (const Target& target : targets) {
    if (text.compare(target.keyword)) return &target;
  }
  return nullptr;
}

// Reads the Attribute elements below `element` at any depth, those of nested references and
// documents included. The last one of a name counts.
void readAttributes(const DOM_Element& element, std::initializer_list<Target> targets) {
  const DOM_NodeList attributes = element.getElementsByTagName("Attribute");
  for (unsigned int i = 0; i < attributes.getLength(); ++i) {
    const DOM_Element attribute = KelDOMServices::NodeToElement(attributes.item(i));
    const DOMString name = attribute.getAttribute("Name");
    const DOMString value = attribute.getAttribute("Value");
    if (name.isNull() || value.isNull()) continue;
    const Target* target = findTarget(targets, name.utf8());
    if (target != nullptr) target->value = value.utf8();
  }
}

std::string makeLine(std::initializer_list<const char*> fields) {
  std::string line;
  for (const char* field : fields) line.append("<").append(field).append(">");
  return line.append("\n");
}

const char* text(const Value& value) { return value->c_str(); }

class AnswerWalk {
 public:
  AnswerWalk(const MString& stagedPath, const MString& stagedName, const LineSink& sink)
      : _stagedPath(stagedPath), _stagedName(stagedName), _sink(sink) {}

  long writeReference(const DOM_Element& element) {
    carry(element, "Name", _carried.referenceNameOrPartNumber);
    carry(element, "SourceUuid", _carried.sourceUuid);
    carry(element, "Type", _carried.type);
    carry(element, "TimeStamp", _carried.timeStamp);
    OwnValues own;
    readAttributes(
        element,
        {{"$COID", own.coid}, {"$COMPID", own.compid}, {"S_PART_NUMBER", own.partNumberOrName}});
    if (!referenceIsComplete(own)) return S_OK;
    ZetNorvTrace.TraPutLN(2, "buildDB : Creation de la DB. ds Reference");
    return _sink(referenceLine(own));
  }

  long writeDocument(const DOM_Element& element) {
    carry(element, "Name", _carried.documentName);
    carry(element, "FilePath", _carried.filePath);
    carry(element, "Type", _carried.type);
    carry(element, "Table", _carried.table);
    carry(element, "SourceUuid", _carried.sourceUuid);
    carry(element, "TimeStamp", _carried.timeStamp);
    OwnValues own;
    readAttributes(element, {{"$COID", own.coid},
                             {"$COMPID", own.compid},
                             {"S_NAME", own.partNumberOrName},
                             {"S_PART_NUMBER", _carried.referenceNameOrPartNumber}});
    if (!documentIsComplete(own) || !documentIsStaged()) return S_OK;
    ZetNorvTrace.TraPutLN(2, "buildDB : Creation de la DB. dans Document");
    if (!_carried.referenceNameOrPartNumber) _carried.referenceNameOrPartNumber = kUndefined;
    if (!_carried.table) _carried.table = kUndefined;
    return _sink(documentLine(own));
  }

 private:
  bool referenceIsComplete(const OwnValues& own) const {
    return _carried.referenceNameOrPartNumber && own.coid && own.compid && own.partNumberOrName &&
           _carried.type && _carried.timeStamp;
  }

  bool documentIsComplete(const OwnValues& own) const {
    return _carried.filePath && own.coid && own.compid && own.partNumberOrName &&
           _carried.documentName && _carried.type && _carried.sourceUuid && _carried.timeStamp;
  }

  bool documentIsStaged() const {
    return !_stagedName.isNull() && !_stagedPath.isNull() &&
           _stagedPath.compare(text(_carried.filePath));
  }

  // The name stands in the part number's column and the part number in the name's, the reverse of
  // a document; the uuid is never the element's own. The database is searched in this form.
  std::string referenceLine(const OwnValues& own) const {
    return makeLine({text(own.coid), text(own.compid), text(_carried.referenceNameOrPartNumber),
                     text(own.partNumberOrName), kReference, "UUID BIDON", kReference,
                     text(_carried.type), text(_carried.timeStamp)});
  }

  std::string documentLine(const OwnValues& own) const {
    return makeLine({text(own.coid), text(own.compid), text(_carried.referenceNameOrPartNumber),
                     text(own.partNumberOrName), _stagedName.gchar(), text(_carried.sourceUuid),
                     text(_carried.table), text(_carried.type), text(_carried.timeStamp)});
  }

  CarriedValues _carried;
  const MString& _stagedPath;
  const MString& _stagedName;
  const LineSink& _sink;
};

// Calls `write` for every element named `tag`, until it fails.
long forEachElement(const DOM_Document& answer, const char* tag, AnswerWalk& walk,
                    long (AnswerWalk::*write)(const DOM_Element&)) {
  const DOM_NodeList elements = answer.getElementsByTagName(tag);
  for (unsigned int i = 0; i < elements.getLength(); ++i) {
    const long result = (walk.*write)(KelDOMServices::NodeToElement(elements.item(i)));
    if (result != S_OK) return result;
  }
  return S_OK;
}

}  // namespace

long writeAnswerObjects(const DOM_Document& answer, const MString& stagedPath,
                        const MString& stagedName, const LineSink& sink) {
  AnswerWalk walk(stagedPath, stagedName, sink);
  ZetNorvTrace.TraPutLN(2, "ZetNorvDb: recherche Reference");
  const long references = forEachElement(answer, kReference, walk, &AnswerWalk::writeReference);
  if (references != S_OK) return references;
  ZetNorvTrace.TraPutLN(2, "ZetNorvDb: recherche Document");
  return forEachElement(answer, "Document", walk, &AnswerWalk::writeDocument);
}

}  // namespace zetnorv
