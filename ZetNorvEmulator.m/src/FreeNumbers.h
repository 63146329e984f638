// Which numbers the recorded files of a directory have, and which a new one gets.
#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>

#include "KelDirectory.h"
#include "MFile.h"
#include "MString.h"
#include "RecordedFile.h"

namespace zetnorv {

// The files of one kind and operation.
using Series = std::pair<Recorded, int>;

// The free numbers of every series in one directory.
//
// A number that is taken stays taken until a name goes from the directory, so the search goes on
// where it ended last time. The directory is watched: when something went from it, or when that
// cannot be told, the search starts at 0 again. A watch without a change also tells that the
// directory is there.
class FreeNumbers {
 public:
  // Makes the directory when it is missing.
  explicit FreeNumbers(const MString& directory);

  const std::string& directory() const { return _directory; }

  std::string pathOf(const Series& series, int number) const;

  // Opens a new file with the smallest free number that no index line names, and returns the
  // number, with the file's path; a negative one when the file cannot be made.
  int create(const Series& series, MFile& file, std::string& path);

  // The smallest free number.
  int smallest(const Series& series);

  // The number for the line of an answer whose file cannot be opened. In a directory that is out of
  // reach, files cannot be told from missing ones: those that lines tell of keep their numbers.
  int unopened(const Series& series);

  // Notes that the number, which create() gave, is taken now.
  void take(const Series& series, int number);

  // Notes that no file gets the number from here on: an index line tells of a file of that number,
  // which is lost.
  void lose(const Series& series, int number);

  // Notes that an index line tells of a file of that number, which could not be opened. Only lines
  // of that kind get the number from here on.
  void name(const Series& series, int number);

 private:
  bool isLost(const Series& series, int number) const;
  bool isNamed(const Series& series, int number) const;
  // What is named and is not this number is lost.
  void forgetNamed(const Series& series, int number);
  void forgetWhatChanged();

  std::string _directory;
  std::string _native;  // the directory that what is remembered below is about
  KelDirectoryWatch _watch;
  std::map<Series, int> _next;
  std::map<Series, std::set<int>> _lost;
  std::map<Series, int> _named;
};

}  // namespace zetnorv
