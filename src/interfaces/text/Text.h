// Wide text, the one form of text in this system.
//
// A wide text is a std::wstring whose elements each hold one UTF-16 code unit, also on platforms
// where wchar_t has 32 bits: a character beyond the 16-bit range is a pair of surrogates everywhere
// in memory. On disk, in file names and in the log text is UTF-8. The conversions between the two
// stand here and nowhere else. Nothing here depends on a locale, and every function may be called
// from any thread.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "interfaces/Export.h"

using CString = std::wstring;

namespace kestrin::Text {

// UTF-8 to UTF-16 code units. What is not UTF-8 gives U+FFFD: one for each lead byte with the
// continuation bytes behind it, one for each byte that stands alone.
KESTRIN_API std::wstring FromUtf8(std::string_view text);

// UTF-16 code units to UTF-8. A surrogate without its partner, and an element above 0xFFFF, give
// U+FFFD.
KESTRIN_API std::string ToUtf8(std::wstring_view text);

// The form in which lines lie in a lake and rows are read: UTF-8 that loses nothing, since a
// surrogate without its partner is a sequence too. An element above 0xFFFF gives U+FFFD. On the way
// back, a sequence with more bytes than it needs is taken; other bytes as in FromUtf8.
KESTRIN_API std::string ToBytes(std::wstring_view text);
KESTRIN_API std::wstring FromBytes(std::string_view bytes);

// Takes the first character off a text that is not empty and gives its code point; U+FFFD as above.
KESTRIN_API char32_t TakeCharacter(std::wstring_view& text);

// Appends a code point as one code unit or two.
KESTRIN_API void AppendCharacter(std::wstring& text, char32_t character);

// White space, one fixed set for everything that is read: tab, line feed, vertical tab, form feed,
// carriage return, blank, and the spaces and separators of Unicode but for the no-break spaces.
// They are what a UTF-8 system holds for white, and the same under every locale.
constexpr bool IsSpace(wchar_t c) {
  if (c > L' ' && c < 0x1680) return false;
  if (c <= L' ') return c == L' ' || (c >= L'\t' && c <= L'\r');
  return c == 0x1680 || (c >= 0x2000 && c <= 0x200A && c != 0x2007) || c == 0x2028 || c == 0x2029 ||
         c == 0x205F || c == 0x3000;
}

// The text without white space at both ends.
constexpr std::wstring_view Trim(std::wstring_view text) {
  while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsSpace(text.back())) text.remove_suffix(1);
  return text;
}

// A capital letter of ASCII becomes the small one, any other character stays.
template <class Character>
constexpr Character Lower(Character c) {
  return c >= 'A' && c <= 'Z' ? static_cast<Character>(c + ('a' - 'A')) : c;
}

// Which of the known texts somebody meant who wrote an unknown one: the one that takes the fewest
// slips, if these are at most a third of its characters, or else the first that holds the text. A
// slip is a character too much, one too few, a wrong one, or two exchanged; capitals of ASCII are
// none. Empty if no known text is near.
KESTRIN_API std::optional<std::size_t> Nearest(std::wstring_view text,
                                               std::span<const std::wstring> known);

}  // namespace kestrin::Text
