#include "KelDOMServices.h"

#include <charconv>
#include <string>
#include <string_view>
#include <system_error>

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

std::string_view WithoutBlanksAround(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

}  // namespace

DOM_Element KelDOMServices::NodeToElement(const DOM_Node& node) {
  return node.getNodeType() == DOM_Node::ELEMENT_NODE ? DOM_Element(node.node()) : DOM_Element();
}

int KelDOMServices::DOM2Int(const DOMString& text) {
  std::string_view digits = WithoutBlanksAround(text.utf8());
  if (digits.starts_with("+-")) return 0;
  if (digits.starts_with('+')) digits.remove_prefix(1);
  int number = 0;
  const char* end = digits.data() + digits.size();
  const auto [stopped, error] = std::from_chars(digits.data(), end, number);
  return error == std::errc() && stopped == end ? number : 0;
}

DOMString KelDOMServices::Int2DOM(int number) {
  return DOMString(std::string_view(std::to_string(number)));
}
