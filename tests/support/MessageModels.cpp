#include "MessageModels.h"

namespace {

std::string textOf(const MString& text) { return text.gchar() == nullptr ? "" : text.gchar(); }

std::string describe(const AttributXML* attribut) {
  if (attribut == nullptr) return "null";
  return textOf(attribut->_name) + "=" + textOf(attribut->_value);
}

}  // namespace

std::string describe(const BaliseXML* tag) {
  if (tag == nullptr) return "null";
  std::string text = textOf(tag->_name);
  for (int i = 0; i < tag->getNbAttributs(); ++i) {
    text += (i == 0 ? "[" : " ") + describe(tag->getAttributP(i));
  }
  if (tag->getNbAttributs() > 0) text += "]";
  for (int i = 0; i < tag->getNbChildren(); ++i) {
    text += (i == 0 ? "(" : " ") + describe(tag->getChildP(i));
  }
  if (tag->getNbChildren() > 0) text += ")";
  return text;
}

std::vector<std::string> describe(const MsgXML& msg) {
  std::vector<std::string> tags;
  for (int i = 0; i < msg.getNbBalises(); ++i) tags.push_back(describe(msg.getBalise(i)));
  return tags;
}

std::vector<std::string> findingsOf(const CollectorErrors& collector) {
  std::vector<std::string> findings;
  for (int i = 0; i < collector._nbRecords; ++i) {
    const ErrorRecord& record = *collector._records[i];
    findings.push_back(std::to_string(record.code) + " " + textOf(record.name) + "|" +
                       textOf(record.details));
  }
  return findings;
}
