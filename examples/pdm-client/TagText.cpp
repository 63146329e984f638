#include "pdm-client/TagText.h"

#include <array>

namespace pdm {

namespace {

using Escape = std::pair<char, std::string_view>;
constexpr std::array<Escape, 5> kEscapes = {Escape{'&', "&amp;"}, Escape{'<', "&lt;"},
                                            Escape{'>', "&gt;"}, Escape{'"', "&quot;"},
                                            Escape{'\'', "&apos;"}};

std::string unescaped(std::string_view text) {
  std::string value;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t length = 1;
    char c = text[at];
    for (const auto& [plain, escape] : kEscapes) {
      if (text.substr(at, escape.size()) != escape) continue;
      c = plain;
      length = escape.size();
    }
    value += c;
    at += length;
  }
  return value;
}

// `body`: what stands between '<' and '>', without a closing '/'.
Tag readTag(std::string_view body) {
  constexpr std::string_view kBlanks = " \t\r\n";
  Tag tag;
  std::size_t at = body.find_first_of(kBlanks);
  tag.name = body.substr(0, at);
  while (at != std::string_view::npos) {
    const std::size_t name = body.find_first_not_of(kBlanks, at);
    const std::size_t quote = body.find_first_of("\"'", at);
    if (name == std::string_view::npos || quote == std::string_view::npos) break;
    const std::size_t end = body.find(body[quote], quote + 1);
    if (end == std::string_view::npos) break;
    const std::string_view label = body.substr(name, body.find_first_of("= \t\r\n", name) - name);
    tag.attributes.emplace_back(label, unescaped(body.substr(quote + 1, end - quote - 1)));
    at = end + 1;
  }
  return tag;
}

// The '>' that ends the tag at `start`: one inside a value does not.
std::size_t endOfTag(std::string_view xml, std::size_t start) {
  char quote = 0;
  for (std::size_t at = start; at < xml.size(); ++at) {
    const char c = xml[at];
    if (quote != 0) {
      if (c == quote) quote = 0;
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '>') {
      return at;
    }
  }
  return std::string_view::npos;
}

}  // namespace

std::string Tag::get(std::string_view attribute, const std::string& otherwise) const {
  for (const auto& [label, value] : attributes) {
    if (label == attribute) return value;
  }
  return otherwise;
}

std::vector<Tag> readTags(std::string_view xml) {
  std::vector<Tag> tags;
  std::size_t start = xml.find('<');
  while (start != std::string_view::npos) {
    const std::size_t end = endOfTag(xml, start);
    if (end == std::string_view::npos) break;
    std::string_view body = xml.substr(start + 1, end - start - 1);
    if (!body.empty() && body.front() != '/' && body.front() != '?' && body.front() != '!') {
      if (body.back() == '/') body.remove_suffix(1);
      tags.push_back(readTag(body));
    }
    start = xml.find('<', end);
  }
  return tags;
}

std::string escaped(std::string_view value) {
  std::string text;
  for (const char c : value) {
    std::string_view written(&c, 1);
    for (const auto& [plain, escape] : kEscapes) {
      if (c == plain) written = escape;
    }
    text += written;
  }
  return text;
}

TagWriter::TagWriter(const std::string& root)
    : _text("<?xml version=\"1.0\" encoding=\"UTF-8\"?>") {
  open(root);
}

TagWriter& TagWriter::open(const std::string& name) {
  if (_inTag) _text += '>';
  _text += '<' + name;
  _open.push_back(name);
  _inTag = true;
  return *this;
}

TagWriter& TagWriter::with(const std::string& name, std::string_view value) {
  _text += ' ' + name + "=\"" + escaped(value) + '"';
  return *this;
}

TagWriter& TagWriter::close() {
  _text += _inTag ? "/>" : "</" + _open.back() + '>';
  _open.pop_back();
  _inTag = false;
  return *this;
}

TagWriter& TagWriter::attribute(const std::string& name, std::string_view value) {
  return open("Attribute").with("Name", name).with("Value", value).close();
}

std::string TagWriter::finish() {
  while (!_open.empty()) close();
  return std::move(_text);
}

}  // namespace pdm
