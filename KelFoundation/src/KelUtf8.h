// UTF-8 and wide characters, both ways, without losing a byte.
//
// Bytes that are no UTF-8 (encoded surrogates, overlong forms and what lies beyond U+10FFFF
// included) stand in the wide form as U+DC80 to U+DCFF, one character a byte. The wide form holds
// surrogate pairs where wchar_t has 16 bits.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kel {

// The number of bytes of the first character of `text`, which is not empty; 1 for a byte that is no
// UTF-8.
std::size_t CharacterBytes(std::string_view text);

std::wstring WideFromUtf8(std::string_view utf8);

std::string Utf8FromWide(std::wstring_view wide);

}  // namespace kel
