// The parser on any bytes: what it accepts survives being written and read again, what it refuses
// it refuses with one line, and nothing of a document is left for the next one.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "Expect.h"
#include "KelXMLParser.h"
#include "ParsedXml.h"
#include "Tree.h"

using fuzz::elementsBelow;
using fuzz::expect;
using fuzz::expectEqual;
using fuzz::parse;

namespace {

void refusedWithOneLine(const std::string& text) {
  const TraceRecorder trace;
  const KelInputSource source(text, "fuzz");
  DOM_Document document;
  expect(KelXMLParseServices::XMLParse(source, document) == E_FAIL, "it is refused again");
  expect(trace.lines().size() == 1, "a refusal is one trace line");
  const TraceRecorder::Line& line = trace.lines().front();
  expect(line.trace == "KelXML" && line.level == 2, "the line is the parser's, at level 2");
  expect(line.text.find("fuzz: line ") != std::string::npos, "the line names source and line");
  expect(line.text.find('\n') == std::string::npos, "the line is one line");
}

std::string written(const DOM_Node& node, const char* statement) {
  std::string text;
  expect(KelXMLParser::WriteXML(node, text) == S_OK, statement);
  return text;
}

int depthOf(const DOM_Node& node) {
  int deepest = 0;
  for (DOM_Node child = node.getFirstChild(); !child.isNull(); child = child.getNextSibling()) {
    const int inner = depthOf(child) + (child.getNodeType() == DOM_Node::ELEMENT_NODE ? 1 : 0);
    deepest = std::max(deepest, inner);
  }
  return deepest;
}

void searchFindsWhatTheWalkFinds(const DOM_Document& document) {
  const DOM_NodeList found = document.getElementsByTagName("*");
  const std::vector<DOM_Element> walked = elementsBelow(document);
  expect(found.getLength() == walked.size(), "the search finds all elements");
  for (unsigned int i = 0; i < found.getLength(); ++i) {
    expect(found.item(i).node() == walked[i].node(), "the search finds them in document order");
  }
  expect(!walked.empty() && document.getDocumentElement().node() == walked.front().node(),
         "the root is the first");
}

// Characters of more than one byte may be cut by a single NUL.
bool isMadeOfBytes(const std::string& text) {
  if (text.find('\0') != std::string::npos) return false;
  const auto first = static_cast<unsigned char>(text[0]);
  return first == '<' || first == ' ' || first == '\n' || first == '\t' || first == '\r';
}

void mayBeFollowedByNuls(const std::string& text, const std::string& again) {
  const DOM_Document terminated = parse(text + std::string(3, '\0'));
  expect(!terminated.isNull(), "NULs may follow a document");
  expectEqual(written(terminated, "it can be written"), again, "NULs change nothing");
  expect(parse(text + std::string(1, '\0') + "<").isNull(), "nothing else may follow a NUL");
}

bool isText(const DOM_Node& node) {
  return node.getNodeType() == DOM_Node::TEXT_NODE ||
         node.getNodeType() == DOM_Node::CDATA_SECTION_NODE;
}

// An outline that is blind to what an entity alone can bring in, and no text can hold as it is: a
// section with a carriage return in it is written as text, and one in a comment as a line feed.
std::string foldedOutline(const DOM_Node& node) {
  std::string text;
  bool inText = false;
  for (DOM_Node child = node.getFirstChild(); !child.isNull(); child = child.getNextSibling()) {
    if (!inText || !isText(child)) text += isText(child) ? "#" : "|" + child.getNodeName().utf8();
    inText = isText(child);
    std::string value = child.getNodeValue().utf8();
    if (!inText) std::replace(value.begin(), value.end(), '\r', '\n');
    text += value;
    if (!child.getFirstChild().isNull()) text += "(" + foldedOutline(child) + ")";
  }
  return text;
}

bool declaresEntities(std::string text) {
  text.erase(std::remove(text.begin(), text.end(), '\0'), text.end());
  return text.find("<!ENTITY") != std::string::npos;
}

void comesBack(const std::string& text, const DOM_Document& document) {
  const std::string once = written(document, "a document can be written");
  const DOM_Document again = parse(once);
  if (again.isNull()) expectEqual(once, text, "what was written is accepted");
  expectEqual(written(again, "it can be written again"), once, "writing again changes nothing");
  std::set<std::string> names = fuzz::attributeNames(text);
  names.merge(fuzz::attributeNames(once));
  fuzz::sameAttributes(document, again, names);
  const auto outlineOf = declaresEntities(text) ? foldedOutline : outline;
  expectEqual(outlineOf(again), outlineOf(document), "the tree is the same");
  if (isMadeOfBytes(text)) mayBeFollowedByNuls(text, once);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(bytes), size);
  const DOM_Document document = parse(text);
  if (document.isNull()) {
    refusedWithOneLine(text);
  } else {
    expect(depthOf(document) <= 1000, "no tree is deeper than its bound");
    searchFindsWhatTheWalkFinds(document);
    comesBack(text, document);
  }
  const std::string plain = "<a b=\"1\">c &lt;<d/></a>";
  const DOM_Document next = parse(plain);
  expect(!next.isNull(), "the next document is accepted");
  expectEqual(written(next, "the next document can be written"), plain, "nothing is left over");
  return 0;
}
