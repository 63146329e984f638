// Which tag takes the place of which child when a message is restructured.
#pragma once

#include <functional>

#include "MsgXML.h"

namespace zetnorv {

// Puts tag `found` in the place of child `c` of tag `parent`; all are indices.
using PutTag = std::function<void(int parent, int c, int found)>;

// Calls `put` for every child that ZetNorvBuilders::restructMessage replaces, in its order: earlier
// tags are filled by then, later ones are not yet. How deep the outcome is depends on the order of
// the tags, and both messages of a comparison go through the same order.
//
// Ends, with a trace line, where the copies of restructMessage would be too many.
void fillTags(MsgXML& msg, const PutTag& put);

}  // namespace zetnorv
