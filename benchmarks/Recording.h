// A recording of its own, in a directory of its own.
//
// The directory stays when the recording goes: a file system may be slow to make files for minutes
// after many others were removed, which belongs into no measurement. main() removes them all.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace bench {

// One exchange: the request, and the answer that the server gave.
struct Exchange {
  std::string request;
  std::string answer;
};

class Recording {
 public:
  // Makes an empty directory below `root` and uses it.
  Recording(const std::string& root, const std::string& script);
  Recording(const Recording&) = delete;
  Recording& operator=(const Recording&) = delete;

  // Points the library's environment at the recording in `folder`, and starts the library over.
  static void use(const std::string& folder);

  // Sets the run mode.
  void mode(const char* keyword) const;
  // Starts the library's counters over: the next exchange is the first.
  static void rewind();
  void writeScript(const std::string& script) const;

  // Records `count` exchanges.
  void record(int count, const std::function<Exchange(int step)>& exchange) const;
  // Waits until the recording can be told from one that is still being written.
  static void settle();

  // Plays one exchange of the present mode: both hooks, or the answer's alone.
  static void exchange(const Exchange& what);
  static void answer(const Exchange& what);

  const std::string& folder() const { return _folder; }
  std::string reference(const std::string& name) const;
  std::string scenario(const std::string& name) const;
  std::string script() const { return _folder + "/zet/Configuration/xmlStruct.xml"; }
  // The log of what was found; removed between measurements, as it grows with every request.
  void clearErrorLog() const;

 private:
  std::string _folder;
};

}  // namespace bench
