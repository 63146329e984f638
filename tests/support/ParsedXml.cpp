#include "ParsedXml.h"

#include <gtest/gtest.h>

#include "KelInputSource.h"
#include "KelLib.h"
#include "KelXMLParseServices.h"
#include "KelXMLParser.h"
#include "TraceRecorder.h"

DOM_Document parsed(std::string_view text) {
  const KelInputSource source(text, "test");
  const TraceRecorder trace;
  DOM_Document document;
  const long result = KelXMLParseServices::XMLParse(source, document);
  EXPECT_EQ(result, S_OK) << (trace.lines().empty() ? "" : trace.lines().front().text);
  EXPECT_TRUE(trace.lines().empty());
  EXPECT_EQ(document.isNull(), result != S_OK);
  return document;
}

std::string refusalOf(std::string_view text) {
  const KelInputSource source(text, "test");
  const TraceRecorder trace;
  DOM_Document document;
  EXPECT_EQ(KelXMLParseServices::XMLParse(source, document), E_FAIL);
  EXPECT_TRUE(document.isNull());
  if (trace.lines().size() != 1) {
    ADD_FAILURE() << trace.lines().size() << " trace lines";
    return {};
  }
  EXPECT_EQ(trace.lines().front().trace, "KelXML");
  EXPECT_EQ(trace.lines().front().level, 2);
  return trace.lines().front().text;
}

bool isAccepted(std::string_view text) {
  const KelInputSource source(text, "test");
  const TraceRecorder quiet;
  DOM_Document document;
  return KelXMLParseServices::XMLParse(source, document) == S_OK;
}

std::string written(const DOM_Node& node) {
  std::string text;
  EXPECT_EQ(KelXMLParser::WriteXML(node, text), S_OK);
  return text;
}

std::string rewritten(std::string_view text) {
  const DOM_Document document = parsed(text);
  return document.isNull() ? std::string() : written(document);
}

std::string repeated(std::string_view piece, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += piece;
  return text;
}

std::string outline(const DOM_Node& node) {
  std::string text = node.getNodeName().utf8();
  if (!node.getNodeValue().isNull()) text += "=[" + node.getNodeValue().utf8() + "]";
  if (!node.getFirstChild().isNull()) {
    text += "(";
    for (DOM_Node child = node.getFirstChild(); !child.isNull(); child = child.getNextSibling()) {
      if (text.back() != '(') text += " ";
      text += outline(child);
    }
    text += ")";
  }
  return text;
}
