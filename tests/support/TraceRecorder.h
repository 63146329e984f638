// Hears the trace lines of this process while it lives, and expects each of the library's own at
// its level.
#pragma once

#include <string>
#include <vector>

#include "KelTrace.h"

class TraceRecorder : public KelTrace::Listener {
 public:
  struct Line {
    std::string trace;
    int level;
    std::string text;
  };

  TraceRecorder();
  ~TraceRecorder() override;
  TraceRecorder(const TraceRecorder&) = delete;
  TraceRecorder& operator=(const TraceRecorder&) = delete;

  void OnLine(const char* traceName, int level, const std::string& line) override;

  // All lines, in order, of every trace.
  const std::vector<Line>& lines() const { return _lines; }
  // The texts of the library's own lines ("ZetNorvTrace"), in order.
  std::vector<std::string> texts() const;
  // How many of the library's own lines read exactly `text`.
  int count(const std::string& text) const;
  bool has(const std::string& text) const { return count(text) > 0; }
  // What the foundation calls the document that it refused first; empty when it refused none.
  std::string refusedDocument() const;
  void clear() { _lines.clear(); }

 private:
  std::vector<Line> _lines;
  KelTrace::Listener* _before;
};
