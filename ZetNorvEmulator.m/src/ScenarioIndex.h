// The index files of a recording: "Scenario.txt", a line for every request and snapshot, and
// "Scenario2.txt", a line for every answer.
//
// The fields of a line stand in '<' and '>'. Line n belongs to step n: that is all that ties a
// recording together.
#pragma once

#include <string>

#include "MFile.h"
#include "MString.h"

namespace zetnorv {

// An index file being appended to.
class ScenarioIndexWriter {
 public:
  ScenarioIndexWriter() = default;
  ~ScenarioIndexWriter();
  ScenarioIndexWriter(const ScenarioIndexWriter&) = delete;
  ScenarioIndexWriter& operator=(const ScenarioIndexWriter&) = delete;

  // Opens the index file `path`, created when missing. Returns S_OK or E_FAIL.
  long open(const char* path);
  // Appends `line`, which ends with its line feed, in one write and closes the file. Fails also
  // when the close does.
  long append(const std::string& line);

 private:
  MFile _file;
};

// An index file being read.
//
// Its content is kept from one call to the next while the file stays the same, so that a step costs
// the same wherever in the file its line stands.
class ScenarioIndexReader {
 public:
  // Opens the index file `path`. Returns S_OK or E_FAIL.
  long open(const char* path);
  // Number of lines. A line of more than 1023 bytes counts as several, of 1023 bytes each.
  int count() const;
  // Line `number`, counted from 1, without its line feed; a null string outside the file.
  MString line(int number) const;

 private:
  struct Content;
  static Content& kept(const char* path);
  const Content* _content = nullptr;
};

// The name of a recorded file in its index line: what follows the last '/' of `path`, or its last
// '\' when it has none. The reader puts the reference directory in front of it again.
std::string indexName(const std::string& path);

}  // namespace zetnorv
