// XML text in memory, waiting to be parsed.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "KelExport.h"

class KEL_XML_EXPORT KelInputSource {
 public:
  // `text` is borrowed and must outlive this object, unless it is handed over as a string.
  KelInputSource(std::string_view text, const char* name) : _text(text), _name(name ? name : "") {}
  KelInputSource(std::string&& text, const char* name)
      : _owned(std::move(text)), _text(_owned), _name(name ? name : "") {}
  KelInputSource(const KelInputSource&) = delete;
  KelInputSource& operator=(const KelInputSource&) = delete;

  std::string_view text() const { return _text; }
  // What the source is called in trace lines.
  const std::string& name() const { return _name; }

 private:
  std::string _owned;
  std::string_view _text;
  std::string _name;
};
