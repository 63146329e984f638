// What is looked at in a source before the parser sees it.
#pragma once

#include <string_view>

// The document in `source`: without the NUL characters behind it. Throws a KelXmlFailure for what
// the parser would pass over: no document at all, a NUL inside, and a last character that is cut or
// that cannot end a document.
std::string_view DocumentIn(std::string_view source);
