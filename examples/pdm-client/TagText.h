// Just enough XML for messages of tags and attributes: writing them, and finding tags in a text
// that is known to be well formed. A host that has a parser of its own uses that.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pdm {

struct Tag {
  std::string name;
  std::vector<std::pair<std::string, std::string>> attributes;  // values without their escapes

  // The value of the attribute `attribute`, or `otherwise` when the tag has none of that name.
  std::string get(std::string_view attribute, const std::string& otherwise = "") const;
};

// The opening tags of `xml` (empty-element tags too) in the order of the text.
std::vector<Tag> readTags(std::string_view xml);

// The bytes of `value` as an attribute's value.
std::string escaped(std::string_view value);

// Writes a document from its beginning to its end. No white space is put between tags.
class TagWriter {
 public:
  // Opens the document and its root.
  explicit TagWriter(const std::string& root);

  TagWriter& open(const std::string& name);
  // Adds an attribute to the tag that was opened last.
  TagWriter& with(const std::string& name, std::string_view value);
  TagWriter& close();

  // An "Attribute" element with a name and a value, as PDM messages carry most of their data.
  TagWriter& attribute(const std::string& name, std::string_view value);

  // Closes what is open and hands the text out.
  std::string finish();

 private:
  std::string _text;
  std::vector<std::string> _open;
  bool _inTag = false;  // the last tag still lacks its '>'
};

}  // namespace pdm
