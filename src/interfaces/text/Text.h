// Wide text, the one form of text in this system.
//
// A wide text is a std::wstring whose elements each hold one UTF-16 code unit, also on platforms
// where wchar_t has 32 bits: a character beyond the 16-bit range is a pair of surrogates everywhere
// in memory. On disk, in file names and in the log text is UTF-8. The conversions between the two
// stand here and nowhere else. Nothing here depends on a locale, and every function may be called
// from any thread.
#pragma once

#include <string>
#include <string_view>

#include "interfaces/Export.h"

using CString = std::wstring;

namespace kestrin::Text {

// UTF-8 to UTF-16 code units. Each byte sequence that is not UTF-8 gives one U+FFFD.
KESTRIN_API std::wstring FromUtf8(std::string_view text);

// UTF-16 code units to UTF-8. A surrogate without its partner, and an element above 0xFFFF, give
// U+FFFD.
KESTRIN_API std::string ToUtf8(std::wstring_view text);

// Takes the first character off a text that is not empty and gives its code point; U+FFFD as above.
KESTRIN_API char32_t TakeCharacter(std::wstring_view& text);

// Appends a code point as one code unit or two.
KESTRIN_API void AppendCharacter(std::wstring& text, char32_t character);

// White space, one fixed set for everything that is read: tab, line feed, vertical tab, form feed,
// carriage return, blank.
constexpr bool IsSpace(wchar_t c) { return c == L' ' || (c >= L'\t' && c <= L'\r'); }

// The text without white space at both ends.
constexpr std::wstring_view Trim(std::wstring_view text) {
  while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsSpace(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace kestrin::Text
