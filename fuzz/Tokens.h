// A plain second cutting of texts.
#pragma once

#include <string>
#include <vector>

namespace fuzz {

// What a null token reads here; no token of a line does.
constexpr const char* kNoToken = "\n(null)";

// The texts between an opening character and the closing one behind it, as many as are asked for.
inline std::vector<std::string> cutBrackets(const std::string& text, char open, char close,
                                            std::size_t calls) {
  std::vector<std::string> tokens;
  std::string rest = text[0] == '\0' ? "" : text;
  while (tokens.size() < calls) {
    std::string piece;
    const std::size_t opening = rest.find(open);
    // The closing character is looked for from the opening one on, not behind it.
    const std::size_t closing = opening == std::string::npos ? opening : rest.find(close, opening);
    if (opening != std::string::npos && closing != opening) {
      piece =
          rest.substr(opening + 1, closing == std::string::npos ? closing : closing - opening - 1);
    }
    tokens.push_back(piece.empty() ? kNoToken : piece);
    rest.erase(0, closing == std::string::npos ? closing : closing + 1);
  }
  return tokens;
}

// What a string keeps of a text: the part before its first line feed or NUL.
inline std::string firstLine(const std::string& text) {
  return text.substr(0, text.find_first_of(std::string("\n\0", 2)));
}

// The pieces between single separators; one more than there are separators.
inline std::vector<std::string> cutAt(char separator, const std::string& text) {
  std::vector<std::string> pieces{""};
  for (const char c : text) {
    if (c == separator) {
      pieces.emplace_back();
    } else {
      pieces.back() += c;
    }
  }
  return pieces;
}

}  // namespace fuzz
