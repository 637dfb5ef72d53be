// Floating-point numbers are read by std::from_chars, behind what it doesn't know: white space, a
// plus sign, the prefix of hexadecimal numbers. It says "out of range" without saying at which end,
// so the end is told from the place of the leading digit.

#include "interfaces/text/Number.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "interfaces/text/Text.h"
#include "interfaces/text/Utf.h"

namespace kestrin::Number {
namespace {

// Whether a number that no double can hold is too large, rather than too small. Such a number is
// hundreds of digits away from 1, so the sign of its exponent, counted from the leading digit, says
// it.
bool IsTooLarge(std::string_view number, bool is_hexadecimal) {
  const std::size_t split =
      std::min(number.find_first_of(is_hexadecimal ? "pP" : "eE"), number.size());
  const std::string_view mantissa = number.substr(0, split);
  std::string_view exponent = number.substr(split);
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
  return place * (is_hexadecimal ? 4 : 1) + std::clamp(shift, -far_away, far_away) > 0;
}

// Behind "0x": a digit must follow, or a point and a digit.
bool StartsHexadecimal(std::string_view text) {
  if (text.size() < 3 || text[0] != '0' || Text::Lower(text[1]) != 'x') return false;
  const std::size_t digit = text[2] == '.' ? 3 : 2;
  const std::string_view digits = "0123456789abcdefABCDEF";
  return digit < text.size() && digits.find(text[digit]) != digits.npos;
}

// A wide text as the scanners take it, one byte for each element: white space is a blank, and what
// belongs to no number ends one.
std::string Narrow(std::wstring_view text) {
  std::string bytes;
  for (const wchar_t c : text) {
    if (!Text::IsSpace(c) && (c < L'!' || c > L'~')) break;
    bytes += Text::IsSpace(c) ? ' ' : static_cast<char>(c);
  }
  return bytes;
}

}  // namespace

Scanned<int> ScanInt(std::wstring_view text) { return ScanInteger<int>(Narrow(text)); }

Scanned<double> ScanAnyDouble(std::string_view text) {
  const char* text_end = text.data() + text.size();
  auto [begin, negative] = SkipSign(text);
  if (begin == text_end || *begin == '-') return {};
  const bool is_hexadecimal = StartsHexadecimal({begin, text_end});
  if (is_hexadecimal) {
    begin += 2;
    for (const std::string_view signs : {"p+-", "P+-"}) {  // which libstdc++ takes for a minus
      text_end = std::search(begin, text_end, signs.begin(), signs.end());
    }
  }
  const auto form = is_hexadecimal ? std::chars_format::hex : std::chars_format::general;
  double value = 0;
  const auto [end, error] = std::from_chars(begin, text_end, value, form);
  if (error == std::errc::invalid_argument) return {};
  const bool beyond = error == std::errc::result_out_of_range;
  if (beyond) {
    const bool too_large = IsTooLarge({begin, end}, is_hexadecimal);
    value = too_large ? std::numeric_limits<double>::infinity() : 0.0;
  }
  return {negative ? -value : value, beyond ? State::out_of_range : State::ok,
          static_cast<std::size_t>(end - text.data())};
}

Scanned<double> ScanDouble(std::wstring_view text) { return ScanDouble(Narrow(text)); }

// The conversion of a double beyond the floats is undefined, so the rounding is done by hand: up to
// half a unit of the last place beyond the largest float it is the nearest.
float ToFloatBeyond(double value) {
  if (std::isnan(value)) return static_cast<float>(value);
  constexpr double rounds_to_infinity = 0x1.ffffffp127;
  const float size = std::fabs(value) >= rounds_to_infinity ? std::numeric_limits<float>::infinity()
                                                            : std::numeric_limits<float>::max();
  return std::signbit(value) ? -size : size;
}

void Append(std::wstring& text, float value) {
  std::array<char, 32> digits;
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                          std::chars_format::general, 6);
  text.append(digits.data(), end);
}

}  // namespace kestrin::Number
