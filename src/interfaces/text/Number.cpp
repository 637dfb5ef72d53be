// How the scanners work.
//
// Integers are read straight from the wide text: there is nothing in them that a library knows
// better. So are short decimals such as 33.25, which nearly all floating-point numbers of a data
// base are. Any other floating-point number is read in two steps. The first finds out how far the
// number reaches, by the grammar of wcstod; it looks at characters only. The second copies just
// these characters, all of them ASCII, into a narrow buffer and lets std::from_chars do the exact
// conversion. std::from_chars says "out of range" without saying at which end, so the end is told
// from the place of the leading digit.

#include "interfaces/text/Number.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "interfaces/text/Text.h"

namespace kestrin::Number {
namespace {

constexpr wchar_t no_character = L'\0';  // stands for "no character"; it belongs to no number

wchar_t At(std::wstring_view text, std::size_t pos) {
  return pos < text.size() ? text[pos] : no_character;
}

// The value of a digit; above 9 for any other character.
unsigned DigitOf(wchar_t c) { return static_cast<unsigned>(c) - L'0'; }

bool IsDigit(wchar_t c) { return DigitOf(c) <= 9; }

using Text::Lower;

bool IsHexDigit(wchar_t c) { return IsDigit(c) || (Lower(c) >= L'a' && Lower(c) <= L'f'); }

std::size_t SkipSpace(std::wstring_view text) {
  std::size_t pos = 0;
  while (pos < text.size() && Text::IsSpace(text[pos])) ++pos;
  return pos;
}

// Where the number starts behind white space and sign.
struct Start {
  std::size_t pos;
  bool negative;
};

Start SkipSign(std::wstring_view text) {
  const std::size_t pos = SkipSpace(text);
  const wchar_t c = At(text, pos);
  return {pos + (c == L'-' || c == L'+' ? 1 : 0), c == L'-'};
}

// ---- integers ----

struct Magnitude {
  unsigned long long value = 0;
  std::size_t end = 0;
  bool beyond = false;  // greater than the limit; the value is then the limit
};

// Reads on at m.end, also the digits behind the limit: they belong to the number. To be inlined: a
// call that hands over its state costs short numbers more than it saves.
Magnitude ScanLongMagnitude(std::wstring_view text, Magnitude m, unsigned long long limit) {
  for (; IsDigit(At(text, m.end)); ++m.end) {
    const unsigned digit = DigitOf(text[m.end]);
    m.beyond = m.beyond || m.value > (limit - digit) / 10;
    if (!m.beyond) m.value = m.value * 10 + digit;
  }
  if (m.beyond) m.value = limit;
  return m;
}

// Reads all digits at pos. No limit is so low that the first nine could pass it, and hardly any id
// has more.
inline Magnitude ScanMagnitude(std::wstring_view text, std::size_t pos, unsigned long long limit) {
  const std::size_t near_end = std::min(text.size(), pos + 9);
  unsigned value = 0;
  for (; pos < near_end && IsDigit(text[pos]); ++pos) value = value * 10 + DigitOf(text[pos]);
  const Magnitude m{value, pos};
  return IsDigit(At(text, pos)) ? ScanLongMagnitude(text, m, limit) : m;
}

template <class Int>
Scanned<Int> ScanSigned(std::wstring_view text) {
  const Start start = SkipSign(text);
  const auto max = static_cast<unsigned long long>(std::numeric_limits<Int>::max());
  const Magnitude m = ScanMagnitude(text, start.pos, start.negative ? max + 1 : max);
  if (m.end == start.pos) return {};
  // Negated as unsigned, where the lowest value has a counterpart.
  const auto value = static_cast<Int>(start.negative ? 0 - m.value : m.value);
  return {value, m.end, m.beyond ? State::out_of_range : State::ok};
}

// ---- floating point: how far a number reaches ----

using IsDigitOf = bool (*)(wchar_t);

std::size_t SkipDigits(std::wstring_view text, std::size_t pos, IsDigitOf is_digit) {
  while (is_digit(At(text, pos))) ++pos;
  return pos;
}

// The end of digits with at most one point among them; pos itself if there is no digit.
std::size_t MantissaEnd(std::wstring_view text, std::size_t pos, IsDigitOf is_digit) {
  const std::size_t whole_end = SkipDigits(text, pos, is_digit);
  if (At(text, whole_end) != L'.') return whole_end;
  const std::size_t fraction_end = SkipDigits(text, whole_end + 1, is_digit);
  return fraction_end == pos + 1 ? pos : fraction_end;
}

// The end of an exponent at pos; pos itself if no digit follows the letter.
std::size_t ExponentEnd(std::wstring_view text, std::size_t pos, wchar_t letter) {
  if (Lower(At(text, pos)) != letter) return pos;
  std::size_t digits = pos + 1;
  if (At(text, digits) == L'+' || At(text, digits) == L'-') ++digits;
  const std::size_t end = SkipDigits(text, digits, IsDigit);
  return end == digits ? pos : end;
}

bool StartsWith(std::wstring_view text, std::size_t pos, std::wstring_view lower_word) {
  return std::all_of(lower_word.begin(), lower_word.end(),
                     [&](wchar_t c) { return Lower(At(text, pos++)) == c; });
}

// The end of "nan", and of the note in parentheses if it is whole.
std::size_t NanEnd(std::wstring_view text, std::size_t pos) {
  const std::size_t word_end = pos + 3;
  if (At(text, word_end) != L'(') return word_end;
  const std::size_t close = SkipDigits(text, word_end + 1, [](wchar_t c) {
    return IsDigit(c) || c == L'_' || (Lower(c) >= L'a' && Lower(c) <= L'z');
  });
  return At(text, close) == L')' ? close + 1 : word_end;
}

// ---- floating point: the value ----

// Whether a number that no double can hold is too large, rather than too small. Such a number is
// hundreds of digits away from 1, so the sign of its exponent, counted from the leading digit, says
// it.
bool IsTooLarge(std::string_view mantissa, std::string_view exponent, int exponent_per_digit) {
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  const std::size_t leading = std::min(mantissa.find_first_not_of("0."), mantissa.size());
  const long long place = static_cast<long long>(point) - static_cast<long long>(leading);

  if (!exponent.empty()) exponent.remove_prefix(exponent[1] == '+' ? 2 : 1);
  long long shift = 0;
  const auto [end, error] =
      std::from_chars(exponent.data(), exponent.data() + exponent.size(), shift);
  if (error == std::errc::result_out_of_range) return exponent.front() != '-';
  // No text has so many digits that the product is in danger; the exponent is kept off the bounds.
  constexpr long long far_away = std::numeric_limits<long long>::max() / 4;
  return place * exponent_per_digit + std::clamp(shift, -far_away, far_away) > 0;
}

struct Extent {
  std::size_t begin, mantissa_end, end;
};

Scanned<double> Convert(std::wstring_view text, const Extent& extent, bool negative,
                        std::chars_format form) {
  text = text.substr(extent.begin, extent.end - extent.begin);
  const std::string narrow(text.begin(), text.end());
  const std::string_view digits = narrow;
  Scanned<double> scanned{0.0, extent.end, State::ok};
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), scanned.value, form);
  if (error == std::errc::result_out_of_range) {
    const std::size_t split = extent.mantissa_end - extent.begin;
    const bool too_large = IsTooLarge(digits.substr(0, split), digits.substr(split),
                                      form == std::chars_format::hex ? 4 : 1);
    scanned.value = too_large ? std::numeric_limits<double>::infinity() : 0.0;
    scanned.state = State::out_of_range;
  }
  if (negative) scanned.value = -scanned.value;
  return scanned;
}

// A decimal of at most 15 digits and without an exponent; nothing for other numbers. Its digits
// read as an integer, and the power of ten of their point, are both exact in a double, so that one
// division rounds as the conversion of the whole text would.
std::optional<Scanned<double>> ScanShortDecimal(std::wstring_view text, std::size_t pos,
                                                bool negative) {
  constexpr std::size_t most_digits = 15;
  constexpr std::array<double, most_digits + 1> powers = {
      1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  unsigned long long digits = 0;  // wraps if there are too many, and is then not used
  const auto take_digits = [&] {
    const std::size_t begin = pos;
    for (; IsDigit(At(text, pos)); ++pos) digits = digits * 10 + DigitOf(text[pos]);
    return pos - begin;
  };
  const std::size_t whole = take_digits();
  std::size_t fraction = 0;
  if (At(text, pos) == L'.') {
    ++pos;
    fraction = take_digits();
  }
  const wchar_t behind = Lower(At(text, pos));
  const bool other_form = behind == L'e' || behind == L'x';
  if (other_form || whole + fraction == 0 || whole + fraction > most_digits) return std::nullopt;
  const double value = static_cast<double>(digits) / powers[fraction];
  return Scanned<double>{negative ? -value : value, pos, State::ok};
}

Scanned<double> Word(double value, std::size_t end, bool negative) {
  return {std::copysign(value, negative ? -1.0 : 1.0), end, State::ok};
}

}  // namespace

Scanned<int> ScanInt(std::wstring_view text) { return ScanSigned<int>(text); }

Scanned<long long> ScanLongLong(std::wstring_view text) { return ScanSigned<long long>(text); }

// The bound for a magnitude beyond 32 bits is the largest value, with a minus sign too, as the
// wcstoul of a 32-bit long has it.
Scanned<unsigned> ScanUnsigned(std::wstring_view text) {
  const Start start = SkipSign(text);
  const Magnitude m = ScanMagnitude(text, start.pos, std::numeric_limits<unsigned>::max());
  if (m.end == start.pos) return {};
  const auto value = static_cast<unsigned>(m.value);
  if (m.beyond) return {value, m.end, State::out_of_range};
  return {start.negative ? 0U - value : value, m.end, State::ok};
}

Scanned<double> ScanDouble(std::wstring_view text) {
  const auto [pos, negative] = SkipSign(text);
  if (const auto decimal = ScanShortDecimal(text, pos, negative)) return *decimal;

  if (StartsWith(text, pos, L"inf")) {
    const std::size_t end = StartsWith(text, pos, L"infinity") ? pos + 8 : pos + 3;
    return Word(std::numeric_limits<double>::infinity(), end, negative);
  }
  if (StartsWith(text, pos, L"nan")) {
    return Word(std::numeric_limits<double>::quiet_NaN(), NanEnd(text, pos), negative);
  }

  if (StartsWith(text, pos, L"0x")) {
    const std::size_t digits = pos + 2;
    const std::size_t mantissa_end = MantissaEnd(text, digits, IsHexDigit);
    if (mantissa_end != digits) {
      const std::size_t end = ExponentEnd(text, mantissa_end, L'p');
      return Convert(text, {digits, mantissa_end, end}, negative, std::chars_format::hex);
    }
    // Without a hexadecimal digit the 0 is a number by itself and the x ends it.
  }

  const std::size_t mantissa_end = MantissaEnd(text, pos, IsDigit);
  if (mantissa_end == pos) return {};
  const std::size_t end = ExponentEnd(text, mantissa_end, L'e');
  return Convert(text, {pos, mantissa_end, end}, negative, std::chars_format::general);
}

float ToFloat(double value) {
  // The conversion of a double beyond the floats is undefined, so the rounding at the upper end is
  // done by hand: up to half a unit of the last place beyond the largest float it is the nearest.
  constexpr float largest = std::numeric_limits<float>::max();
  constexpr double rounds_to_infinity = 0x1.ffffffp127;
  const double size = std::fabs(value);
  const float sign = std::signbit(value) ? -1.0F : 1.0F;
  if (size >= rounds_to_infinity)
    return std::copysign(std::numeric_limits<float>::infinity(), sign);
  if (size > static_cast<double>(largest)) return std::copysign(largest, sign);
  return static_cast<float>(value);
}

void Append(std::wstring& text, float value) {
  std::array<char, 32> digits;
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                          std::chars_format::general, 6);
  text.append(digits.data(), end);
}

}  // namespace kestrin::Number
