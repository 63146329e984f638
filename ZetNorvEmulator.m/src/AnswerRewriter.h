// Writes the identifiers of the present run into a recorded answer.
#pragma once

#include <string>

namespace zetnorv {

enum class Rewriting { kDone, kNothingToRewrite, kFailed };

// Takes the answer's XML, `size` bytes at `xml` with a NUL behind them, and gives its text with the
// identifiers of ZetNorvEmul::_idsRef in its Reference elements and those of _ids in its LogObject
// elements, by position: what was recorded there is not looked at.
//
// kDone with `text` set; kNothingToRewrite when the answer has no such element, or cannot be parsed
// (which is traced); kFailed, traced, when it cannot be read or written.
Rewriting rewriteAnswer(const char* xml, int size, std::string& text);

}  // namespace zetnorv
