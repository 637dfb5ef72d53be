// UTF-16 pairs and UTF-8 sequences: what all conversions of this library are made of, and what is
// asked of texts in the form of Text::ToBytes. Inside the library only.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "interfaces/text/Text.h"

namespace kestrin::Utf {

constexpr char32_t replacement = 0xFFFD;           // stands for what is no character
constexpr std::string_view mark = "\xEF\xBB\xBF";  // in front of a file in UTF-8

// A character beyond the 16-bit range is a high surrogate and a low one behind it.
constexpr bool IsHigh(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool IsLow(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }
constexpr char32_t Joined(char32_t high, char32_t low) {
  return 0x10000 + ((high - 0xD800) << 10U) + (low - 0xDC00);
}
constexpr char32_t HighOf(char32_t character) { return 0xD800 + ((character - 0x10000) >> 10U); }
constexpr char32_t LowOf(char32_t character) { return 0xDC00 + (character & 0x3FFU); }

// One sequence of UTF-8, taken laxly: overlong forms and surrogates are whole ones.
struct Sequence {
  enum State { whole, cut, invalid };  // cut: the input ends in it
  State state;
  std::ptrdiff_t length;  // bytes; of an invalid one those in front of the byte that doesn't fit
  char32_t code = 0;
};

// The sequence at the front of an input that is not empty.
inline Sequence Read(const char* from, const char* end) {
  const char32_t lead = static_cast<unsigned char>(*from);
  if (lead < 0x80) return {Sequence::whole, 1, lead};
  if (lead < 0xC0) return {Sequence::invalid, 1};
  const std::ptrdiff_t length = lead < 0xE0   ? 2
                                : lead < 0xF0 ? 3
                                : lead < 0xF8 ? 4
                                : lead < 0xFC ? 5
                                              : 6;
  char32_t code = lead & (length == 6 ? 0x03U : (0x7FU >> length));
  const std::ptrdiff_t here = std::min(length, end - from);
  for (std::ptrdiff_t i = 1; i < here; ++i) {
    const char32_t next = static_cast<unsigned char>(from[i]);
    if ((next & 0xC0U) != 0x80) return {Sequence::invalid, i};
    code = (code << 6U) | (next & 0x3FU);
  }
  if (here < length) return {Sequence::cut, here};
  return {code > 0x10FFFF ? Sequence::invalid : Sequence::whole, length, code};
}

// The end of the ASCII at the front.
inline const char* SkipAscii(const char* from, const char* end) {
  for (std::uint64_t word = 0; end - from >= 8; from += 8) {
    std::memcpy(&word, from, sizeof word);
    if ((word & 0x8080808080808080U) != 0) break;
  }
  while (from != end && static_cast<unsigned char>(*from) < 0x80) ++from;
  return from;
}

constexpr bool IsContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80;
}

// The bytes of the white space character at the front of a text; 0 if there is none. Beyond ASCII
// all of them begin with one of three bytes.
std::size_t LongSpaceLength(std::string_view text);
inline std::size_t SpaceLength(std::string_view text) {
  if (text.empty()) return 0;
  const auto lead = static_cast<unsigned char>(text.front());
  if (lead < 0x80) return Text::IsSpace(lead) ? 1 : 0;
  return lead >= 0xE1 && lead <= 0xE3 ? LongSpaceLength(text) : 0;
}

// The text without white space at both ends.
inline std::string_view Trim(std::string_view text) {
  while (const std::size_t space = SpaceLength(text)) text.remove_prefix(space);
  while (!text.empty()) {
    std::size_t last = text.size() - 1;
    while (last > 0 && IsContinuation(text[last])) --last;
    if (SpaceLength(text.substr(last)) != text.size() - last) break;
    text = text.substr(0, last);
  }
  return text;
}

// Writes what Text::FromUtf8 gives, or else Text::FromBytes, and gives the place behind it: at most
// as many elements as the text has bytes.
enum Strictness { strict, lax };
wchar_t* Widen(std::string_view text, Strictness strictness, wchar_t* to);

constexpr std::ptrdiff_t LengthOf(char32_t code) {
  return code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
}

// Writes LengthOf(code) bytes.
inline void Write(char32_t code, char*& to) {
  const std::ptrdiff_t length = LengthOf(code);
  const char32_t lead = length == 1 ? 0 : (0xF00U >> length) & 0xFFU;
  *to++ = static_cast<char>(lead | (code >> (6 * (length - 1))));
  for (auto shift = 6 * (length - 2); shift >= 0; shift -= 6) {
    *to++ = static_cast<char>(0x80 | ((code >> shift) & 0x3FU));
  }
}

}  // namespace kestrin::Utf
