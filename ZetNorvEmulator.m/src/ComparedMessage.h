// An XML message as a comparison looks at it: names only, and what is alike in it stands there
// once.
//
// It reads as ZetNorvBuilders::builderMessage and restructMessage would have made it, less the
// attributes' values, which no comparison looks at. A message of thousands of elements would take
// most of the work of a comparison to be made, copied and destroyed tag by tag.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "MsgXML.h"
#include "TagReading.h"

namespace zetnorv {

class ComparedMessage : private TagSink {
 public:
  ComparedMessage() = default;
  ~ComparedMessage() override;
  ComparedMessage(const ComparedMessage&) = delete;
  ComparedMessage& operator=(const ComparedMessage&) = delete;

  // Results, findings and trace lines are those of ZetNorvBuilders::builderMessage.
  long build(const char* buffer, int size, const DataScript& script, CollectorErrors* collector);

  // As ZetNorvBuilders::restructMessage.
  void restructure();

  // Borrowed: valid until this object goes, for reading only. Its tags are this object's.
  MsgXML& model() { return _model; }

 private:
  using Tag = std::unique_ptr<BaliseXML>;
  using TagsByKey = std::unordered_map<std::string, Tag>;

  void begin(const MString& name) override;
  void attribut(const DOMString& name, const DOMString& value) override;
  void child(const DOMString& name) override;
  void end() override;

  Tag makeTag() const;
  // The tag without children that looks like the one being read.
  BaliseXML* leaf();
  BaliseXML* nameOnly(const std::string& name);
  void put(int parent, int c, int found);
  BaliseXML* unfilled(int found);

  MsgXML _model;  // its slots, and those of its tags' children, own nothing
  std::vector<Tag> _tags;
  TagsByKey _leaves;
  TagsByKey _nameOnly;
  // Copies of tags at a moment that they did not stay in.
  std::unordered_map<int, Tag> _unfilled;
  std::vector<Tag> _halfFilled;

  // The tag being read.
  const char* _name = nullptr;
  std::string _key;
  std::vector<std::string> _attributs;
  std::vector<BaliseXML*> _children;
};

}  // namespace zetnorv
