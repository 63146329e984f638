// The questions that a client asks about objects it knows; the library's emulated database answers
// them in the server's place.
#pragma once

#include <iosfwd>
#include <vector>

#include "pdm-client/AnswerCheck.h"

namespace pdm {

// Asks about the first few documents and references of `objects` and prints the answers. The
// database knows what it read when this process first used it: in replay that is what the recording
// run was told, in a recording run nothing of this session.
void askDatabase(const std::vector<KnownObject>& objects, std::ostream& out);

}  // namespace pdm
