// Numbers in text, read and written the same on every platform and under every locale.
//
// The scanners behave as the wcsto... family of the classic locale on the widths that the caller
// names: leading white space (Text::IsSpace) is skipped, a sign is taken, reading stops at the
// first character that can't belong to the number. They never throw, never allocate for numbers of
// ordinary length, and may be called from any thread.
#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>

namespace kestrin::Number {

enum class State { ok, no_digits, out_of_range };

template <class T>
struct Scanned {
  T value{};             // the number; on out_of_range an integer holds the nearest bound
  std::size_t used = 0;  // characters read, leading white space included; 0 if no digit was read
  State state = State::no_digits;
};

// Decimal integers, base 10.
Scanned<int> ScanInt(std::wstring_view text);
Scanned<long long> ScanLongLong(std::wstring_view text);

// A minus sign negates modulo 2^32: "-1" gives 4294967295.
Scanned<unsigned> ScanUnsigned(std::wstring_view text);

// As wcstod: decimal and hexadecimal forms, "inf", "infinity", "nan" and "nan(...)". Out of range
// are texts beyond the largest double (value infinite) and those that are not zero but too small
// for any double (value zero).
Scanned<double> ScanDouble(std::wstring_view text);

// The nearest float; beyond the largest one an infinity.
float ToFloat(double value);

// The default form of a stream: 6 significant digits, an exponent where that form takes one.
void Append(std::wstring& text, float value);

template <std::integral Integer>
void Append(std::wstring& text, Integer value) {
  std::array<char, 24> digits;
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value);
  text.append(digits.data(), end);
}

}  // namespace kestrin::Number
