// Diagnostic lines, each at a level, to a destination that is quiet unless somebody asks.
//
// A line is written when its level is not above the trace's level. The environment variable
// KEL_TRACE raises that level: a number for every trace ("2"), or NAME=number pairs separated by
// commas ("ZetNorvTrace=4,KelXML=2"). It is read when a trace is asked for its first line.
//
// Not synchronised: the lines of one trace come from one thread at a time.
#pragma once

#include <string>

#include "KelExport.h"

class KEL_FOUNDATION_EXPORT KelTrace {
 public:
  // Receives lines in this process, whatever their level and the traces' levels.
  class KEL_FOUNDATION_EXPORT Listener {
   public:
    virtual ~Listener() = default;
    // `line` is the text without its line feed. Borrowed: valid during the call.
    virtual void OnLine(const char* traceName, int level, const std::string& line) = 0;
  };

  // `name` is the one KEL_TRACE knows the trace by. `destination` is "STDERR"; anything else counts
  // as that too. `bufferSize` is the expected length of a line in bytes; longer lines are written
  // whole.
  KelTrace(const char* name, const char* description, int level, const char* destination,
           int bufferSize);
  ~KelTrace();
  KelTrace(const KelTrace&) = delete;
  KelTrace& operator=(const KelTrace&) = delete;

  // Writes `text` and a line feed. A null text counts as an empty one. Nothing is thrown.
  void TraPutLN(int level, const char* text) {
    if (level <= _threshold) Put(level, text, nullptr);
  }

  // Writes `text`, directly followed by `number` in decimal, and a line feed.
  void TraPutLN(int level, const char* text, int number) {
    if (level <= _threshold) Put(level, text, number);
  }

  // Writes `text`, directly followed by `appended`, and a line feed.
  void TraPutLN(int level, const char* text, const char* appended) {
    if (level <= _threshold) Put(level, text, appended);
  }

  // Whether a line of `level` would be written or heard: for callers whose text is costly to make.
  bool Listens(int level);

  const char* GetName() const { return _name.c_str(); }
  const char* GetDescription() const { return _description.c_str(); }

  // Makes `listener` hear every line of every trace, or nobody when it is null. Returns the one
  // before. The listener must outlive its being set.
  static Listener* SetListener(Listener* listener);

 private:
  void Put(int level, const char* text, const char* appended);
  void Put(int level, const char* text, int number);
  void Resolve();
  void SetThreshold();

  std::string _name;
  std::string _description;
  int _level;  // the constructor's, raised by KEL_TRACE once it has been read
  bool _resolved = false;
  // The highest level that concerns anybody. Starts at the highest there is, so that the first line
  // finds out what KEL_TRACE and the listener say.
  int _threshold;
  KelTrace* _next;  // all traces of the process form a list, so that a listener reaches each
};
