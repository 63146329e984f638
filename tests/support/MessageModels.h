// Models of messages as texts, for tests that compare whole trees.
#pragma once

#include <string>
#include <vector>

#include "BaliseXML.h"
#include "CollectorErrors.h"
#include "MsgXML.h"

// "name[attribute=value ...](child ...)", recursively; "null" for an empty slot. Brackets stand
// only where there is something in them.
std::string describe(const BaliseXML* tag);

// The tags of `msg`, one text each.
std::vector<std::string> describe(const MsgXML& msg);

// The findings, as "code name|details".
std::vector<std::string> findingsOf(const CollectorErrors& collector);
