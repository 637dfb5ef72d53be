// Numbers in text, read and written the same on every platform and under every locale.
//
// The scanners behave as the wcsto... family of the classic locale on the widths that the caller
// names: leading white space (Text::IsSpace) is skipped, a sign is taken, reading stops at the
// first character that can't belong to the number. They read bytes as lines lie in a lake
// (Text::ToBytes); those of wide text count its elements, and make a copy of it, for which memory
// may run out. They may be called from any thread. Inside the library only.
#pragma once

#include <array>
#include <charconv>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>

#include "interfaces/text/Utf.h"

namespace kestrin::Number {

enum class State { ok, no_digits, out_of_range };

template <class T>
struct Scanned {
  T value{};  // the number; on out_of_range an integer holds the nearest bound
  State state = State::no_digits;
  std::size_t used = 0;  // read, leading white space included; 0 if no digit was read
};

struct Start {
  const char* place;  // behind white space and sign
  bool negative;
};

inline Start SkipSign(std::string_view text) {
  while (text.starts_with(' ')) text.remove_prefix(1);  // nearly always all there is
  while (const std::size_t space = Utf::SpaceLength(text)) text.remove_prefix(space);
  const bool negative = text.starts_with('-');
  return {text.data() + (negative || text.starts_with('+') ? 1 : 0), negative};
}

// A decimal integer, base 10. A minus sign negates an unsigned one modulo its width: "-1" gives
// 4294967295. Stands here to be compiled into the reader of rows, which are mostly integers.
template <std::integral Int>
inline Scanned<Int> ScanInteger(std::string_view text) {
  const auto [begin, negative] = SkipSign(text);
  const char* const text_end = text.data() + text.size();
  unsigned long long value = 0;  // wraps if there are too many digits
  const char* end = begin;
  for (; end != text_end; ++end) {
    const auto digit = static_cast<unsigned char>(*end - '0');
    if (digit > 9) break;
    value = value * 10 + digit;
  }
  if (end == begin) return {};
  State state = State::ok;
  if (end - begin > std::numeric_limits<Int>::digits10) {  // else any is in range
    constexpr std::ptrdiff_t always_fit = std::numeric_limits<unsigned long long>::digits10;
    const bool too_many =
        end - begin > always_fit && std::from_chars(begin, end, value).ec != std::errc();
    const auto max = static_cast<unsigned long long>(std::numeric_limits<Int>::max());
    const unsigned long long limit = max + (negative && std::signed_integral<Int> ? 1 : 0);
    if (too_many || value > limit) {
      state = State::out_of_range;
      value = std::signed_integral<Int> || !negative ? limit : 0 - limit;
    }
  }
  // Negated as unsigned, where the lowest value has a counterpart.
  return {static_cast<Int>(negative ? 0 - value : value), state,
          static_cast<std::size_t>(end - text.data())};
}

Scanned<int> ScanInt(std::wstring_view text);

// As wcstod: decimal and hexadecimal forms, "inf", "infinity", "nan" and "nan(...)". Out of range
// are texts beyond the largest double (value infinite) and those that are not zero but too small
// for any double (value zero).
Scanned<double> ScanDouble(std::wstring_view text);
Scanned<double> ScanAnyDouble(std::string_view text);
// What most numbers are is compiled into the reader of rows too, the rest is left to ScanAnyDouble.
inline Scanned<double> ScanDouble(std::string_view text) {
  const auto [begin, negative] = SkipSign(text);
  const char* const text_end = text.data() + text.size();
  const bool may_be_hexadecimal = text_end - begin > 1 && Text::Lower(begin[1]) == 'x';
  double value = 0;
  if (begin != text_end && *begin != '-' && !may_be_hexadecimal) {
    const auto [end, error] = std::from_chars(begin, text_end, value);
    if (error == std::errc()) {
      return {negative ? -value : value, State::ok, static_cast<std::size_t>(end - text.data())};
    }
  }
  return ScanAnyDouble(text);
}

// The nearest float; beyond the largest one an infinity.
float ToFloatBeyond(double value);  // the same, for what isn't within the floats
inline float ToFloat(double value) {
  constexpr double largest = std::numeric_limits<float>::max();
  return std::fabs(value) <= largest ? static_cast<float>(value) : ToFloatBeyond(value);
}

// The default form of a stream: 6 significant digits, an exponent where that form takes one.
void Append(std::wstring& text, float value);

template <std::integral Integer>
void Append(std::wstring& text, Integer value) {
  std::array<char, 24> digits;
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  text.append(digits.data(), end);
}

}  // namespace kestrin::Number
