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

  // Opens a new file with the smallest free number that is not a lost answer's, and returns the
  // number, with the file's path; a negative one when the file cannot be made.
  int create(const Series& series, MFile& file, std::string& path);

  // Notes that the number, which create() gave, is taken now.
  void take(const Series& series, int number);

  // The number for the line of an answer that gets no file: the smallest free one, which may be
  // that of another lost answer. In a directory that is out of reach, files cannot be told from
  // missing ones; those that lines tell of keep their numbers.
  int numberWithoutFile(const Series& series);

  // Notes that the answer of that number is lost. No file gets the number as long as a line of
  // "Scenario2.txt" tells of it.
  void lose(const Series& series, int number);

 private:
  bool isLost(const Series& series, int number);
  // Throws std::bad_alloc when there is no memory for it.
  std::string nativeDirectory() const;
  void forgetWhatChanged();

  std::string _directory;
  KelDirectoryWatch _watch;
  std::map<Series, int> _next;
  std::map<Series, std::set<int>> _lost;
  std::string _lostIn;  // the native path of the directory that they are lost in
};

}  // namespace zetnorv
