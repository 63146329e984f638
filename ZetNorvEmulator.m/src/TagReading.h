// Reads the tags of an XML message for whoever makes a model of them.
#pragma once

#include "DOMString.h"
#include "MString.h"

class CollectorErrors;
class DataScript;

namespace zetnorv {

// Takes the tags of a message one after the other: begin, then attributes, then children, then end.
class TagSink {
 public:
  virtual ~TagSink() = default;
  virtual void begin(const MString& name) = 0;
  virtual void attribut(const DOMString& name, const DOMString& value) = 0;
  // A child node: its name is all that is taken of it.
  virtual void child(const DOMString& name) = 0;
  virtual void end() = 0;
};

// Hands the tags that ZetNorvBuilders::builderMessage describes to `sink` and its findings to
// `collector`, with that operation's results and trace lines.
long readTags(const char* buffer, int size, const DataScript* script, TagSink& sink,
              CollectorErrors* collector);

}  // namespace zetnorv
