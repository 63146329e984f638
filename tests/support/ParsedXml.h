// Parses XML text the way the library does, for tests that look at what comes of it.
#pragma once

#include <string>
#include <string_view>

#include "DOM_Document.h"

// The document that `text` is; the running test fails when it is refused.
DOM_Document parsed(std::string_view text);

// What the trace says of `text`, a document called "test" that has to be refused: the one line of
// the trace. The running test fails when it is accepted, when a document comes out, and when there
// is not exactly one line on the trace "KelXML" at level 2.
std::string refusalOf(std::string_view text);

// Whether `text` is accepted.
bool isAccepted(std::string_view text);

// `node` written as text; the running test fails when that is refused.
std::string written(const DOM_Node& node);

// `text` parsed and written again.
std::string rewritten(std::string_view text);

// `piece` `count` times.
std::string repeated(std::string_view piece, int count);

// The nodes of a tree as one line, for comparisons: names, values and children.
std::string outline(const DOM_Node& node);
