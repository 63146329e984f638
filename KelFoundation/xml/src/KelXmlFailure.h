// Why a text is not accepted as a document.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <xercesc/sax/Locator.hpp>

// Thrown inside this library only; nothing of it leaves KelXMLParseServices. Line and column are
// counted from 1, and 0 when the position is not known.
struct KelXmlFailure {
  std::string reason;
  std::uint64_t line = 0;
  std::uint64_t column = 0;

  KelXmlFailure(std::string why) : reason(std::move(why)) {}
  KelXmlFailure(std::string why, std::uint64_t atLine, std::uint64_t atColumn)
      : reason(std::move(why)), line(atLine), column(atColumn) {}

  // Takes the position from `locator`, unless there is one already.
  void Locate(const xercesc::Locator& locator) {
    if (line != 0) return;
    line = locator.getLineNumber();
    column = locator.getColumnNumber();
  }
};
