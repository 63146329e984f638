// XML text in a buffer to a document: the one way in for requests, answers and scripts.
#pragma once

#include "DOM_Document.h"

namespace zetnorv {

// The lines that an operation traces when its text is not to be had as a document, and around the
// parsing, at level 2, where it wants any.
struct XmlProblems {
  int level;
  const char* source;  // no input source could be made
  const char* parse;   // it could not be parsed
  const char* beforeParse = nullptr;
  const char* afterParse = nullptr;  // also when the text could not be parsed
};

// Parses `size` bytes at `text`, called `name` in the foundation's own lines. A size below 0 counts
// as 0, which is no document.
//
// Returns S_OK with `document` set, or E_FAIL with it null and one of `problems` traced.
long parseXml(const char* text, int size, const char* name, const XmlProblems& problems,
              DOM_Document& document);

// While it lives, a text that is byte for byte the XML of `message` is parsed once, however often
// and from whichever buffer parseXml() is asked for it: a hook compares one request and collects
// its identifiers twice. Results and trace lines stay the same. What comes of it is shared, so it
// is only read. The message must outlive this object; one such object lives at a time.
class RequestParsedOnce {
 public:
  RequestParsedOnce(const char* message, int messageSize);
  ~RequestParsedOnce();
  RequestParsedOnce(const RequestParsedOnce&) = delete;
  RequestParsedOnce& operator=(const RequestParsedOnce&) = delete;
};

// The XML of a request: what follows its four header bytes. `text` is null only when `message` is,
// and `size` is never below 0: a message that ends in its header has an empty text, which is no
// document.
struct XmlPayload {
  XmlPayload(const char* message, int messageSize);
  const char* text;
  int size;
};

}  // namespace zetnorv
