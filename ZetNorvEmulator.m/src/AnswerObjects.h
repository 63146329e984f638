// The references and documents that an answer's XML tells of, as lines of "database.txt".
#pragma once

#include <functional>
#include <string>

#include "DOM_Document.h"
#include "MString.h"

namespace zetnorv {

// Takes one line with its line feed. A result other than S_OK ends the walk.
using LineSink = std::function<long(const std::string& line)>;

// Hands a line to `sink` for every complete Reference element of `answer`, then for every complete
// Document element whose "FilePath" begins with `stagedPath`, the path of the document that was
// staged last; `stagedName` is the name of its copy. While either is null no document has a line.
//
// What an element lacks it has from the element before it; an incomplete one is passed over.
//
// Returns S_OK, or the result with which `sink` ended the walk.
long writeAnswerObjects(const DOM_Document& answer, const MString& stagedPath,
                        const MString& stagedName, const LineSink& sink);

}  // namespace zetnorv
