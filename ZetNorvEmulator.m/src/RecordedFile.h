// The data files of a recording: one for every request ("save<op>_<k>.txt") and every answer
// ("rep<op>_<k>.txt"), in the reference directory.
#pragma once

#include <string>

namespace zetnorv {

// Which message a file holds.
enum class Recorded { kRequest, kAnswer };

struct RecordedFile {
  // S_OK when the file is complete and closed.
  long result;
  // Its full path, empty when it did not come to one. A path with a failed result names a file that
  // is not there: what could not be written whole was removed, and no file gets the name as long as
  // a line of the answers' index tells of it. Several lost answers may share one.
  std::string path;
};

// Writes `size` bytes of `message` to a new file, numbered with the smallest number that is free in
// the reference directory, which is made when it is missing. A null `message` leaves an empty file.
//
// A size below 1 is refused, with a trace line and two lines in the debug log. Finding the number
// costs the same however many files there are, as long as nothing is removed from the directory.
RecordedFile writeRecordedFile(Recorded kind, int op, const char* message, int size);

}  // namespace zetnorv
