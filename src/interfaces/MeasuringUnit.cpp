// How texts and units lead to each other.
//
// Two tables of spellings serve both directions. Reading takes every spelling; writing takes the
// first one of a unit or prefix, or the first one that is ASCII.
//
//   text   := scaled | scaled mark | "(" scaled ")" mark
//   scaled := unit | prefix unit | "10^" exponent blanks unit
//   mark   := "²" | "³" | "^" exponent
//
// A whole unit is tried first, so that "m/s²" is no squared "m/s" and "kg" no thousand "g".
#include "interfaces/MeasuringUnit.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>
#include <string_view>

#include "interfaces/Number.h"
#include "interfaces/Text.h"

namespace {

using Unit = CMeasuringUnit;

struct UnitSpelling {
  Unit::commonUnits unit;
  std::wstring_view text;
  bool takes_prefix;
};

constexpr UnitSpelling unit_spellings[] = {
    {Unit::none, L"", false},
    {Unit::speed_rpm, L"rpm", true},
    {Unit::speed_rpm, L"1/min", false},
    {Unit::speed_rpm, L"min^-1", false},
    {Unit::speed_rpm, L"min\u207B\u00B9", false},
    {Unit::speed_rpm, L"r/min", false},
    {Unit::speed_rpm, L"U/min", false},
    {Unit::frequency_hz, L"Hz", true},
    {Unit::frequency_hz, L"1/s", false},
    {Unit::order, L"ord", true},
    {Unit::order, L"Ord", false},
    {Unit::order, L"order", false},
    {Unit::time_s, L"s", true},
    {Unit::acceleration_m_s2, L"m/s\u00B2", true},
    {Unit::acceleration_m_s2, L"m/s^2", true},
    {Unit::acceleration_m_s2, L"m/s2", true},
    {Unit::acceleration_g, L"g", true},
    {Unit::velocity_m_s, L"m/s", true},
    {Unit::displacement_m, L"m", true},
    {Unit::torque_nm, L"Nm", true},
    {Unit::torque_nm, L"N\u00B7m", true},
    {Unit::torque_nm, L"N*m", true},
    {Unit::force_n, L"N", true},
    {Unit::pressure_pa, L"Pa", true},
    {Unit::pressure_bar, L"bar", true},
    {Unit::temperature_c, L"\u00B0C", false},
    {Unit::temperature_c, L"degC", false},
    {Unit::temperature_k, L"K", true},
    {Unit::level_db, L"dB", false},
    {Unit::angle_deg, L"\u00B0", true},
    {Unit::angle_deg, L"deg", true},
    {Unit::angle_rad, L"rad", true},
    {Unit::angular_velocity_rad_s, L"rad/s", true},
    {Unit::voltage_v, L"V", true},
    {Unit::current_a, L"A", true},
    {Unit::power_w, L"W", true},
    {Unit::mass_kg, L"kg", false},
    {Unit::percent, L"%", false},
    {Unit::energy_j, L"J", true},
    {Unit::resistance_ohm, L"\u03A9", true},  // the Greek letter
    {Unit::resistance_ohm, L"\u2126", true},  // the ohm sign
    {Unit::resistance_ohm, L"Ohm", true},
    {Unit::flow_l_min, L"l/min", true},
    {Unit::revolutions, L"rev", true},
    {Unit::angular_acceleration_rad_s2, L"rad/s\u00B2", true},
    {Unit::angular_acceleration_rad_s2, L"rad/s^2", true},
    {Unit::angular_acceleration_rad_s2, L"rad/s2", true},
};

struct PrefixSpelling {
  short exponent;
  std::wstring_view text;
};

constexpr PrefixSpelling prefix_spellings[] = {
    {-24, L"y"},     {-21, L"z"},     {-18, L"a"}, {-15, L"f"}, {-12, L"p"},
    {-9, L"n"},      {-6, L"\u00B5"},  // the micro sign
    {-6, L"\u03BC"},                   // the Greek letter
    {-6, L"u"},      {-3, L"m"},      {-2, L"c"},  {-1, L"d"},  {1, L"da"},
    {2, L"h"},       {3, L"k"},       {6, L"M"},   {9, L"G"},   {12, L"T"},
    {15, L"P"},      {18, L"E"},      {21, L"Z"},  {24, L"Y"},
};

struct Scaled {
  Unit::commonUnits unit;
  short prefix;

  friend bool operator==(const Scaled&, const Scaled&) = default;
};

constexpr std::wstring_view ten_to_the = L"10^";

// An exponent from the front of `text`, which loses what was read. Nothing if there is none or it
// has more than 16 bits.
std::optional<short> TakeExponent(std::wstring_view& text) {
  const auto number = Number::ScanInt(text);
  const auto exponent = static_cast<short>(number.value);
  if (number.state != Number::State::ok || exponent != number.value) return std::nullopt;
  text.remove_prefix(number.used);
  return exponent;
}

const UnitSpelling* FindUnit(std::wstring_view text) {
  const auto* const found =
      std::find_if(std::begin(unit_spellings), std::end(unit_spellings),
                   [text](const UnitSpelling& spelling) { return spelling.text == text; });
  return found == std::end(unit_spellings) ? nullptr : found;
}

std::optional<Scaled> ReadScaled(std::wstring_view text) {
  if (const UnitSpelling* unit = FindUnit(text)) return Scaled{unit->unit, 0};
  if (text.starts_with(ten_to_the)) {
    text.remove_prefix(ten_to_the.size());
    const auto exponent = TakeExponent(text);
    const UnitSpelling* unit = FindUnit(Text::Trim(text));
    if (!exponent || unit == nullptr) return std::nullopt;
    return Scaled{unit->unit, *exponent};
  }
  for (const PrefixSpelling& prefix : prefix_spellings) {
    if (!text.starts_with(prefix.text)) continue;
    const UnitSpelling* unit = FindUnit(text.substr(prefix.text.size()));
    if (unit != nullptr && unit->takes_prefix) return Scaled{unit->unit, prefix.exponent};
  }
  return std::nullopt;
}

// The power from the end of `text`, which loses its mark and the brackets in front of that.
std::optional<short> TakePower(std::wstring_view& text) {
  short power = 0;
  if (text.ends_with(L'\u00B2') || text.ends_with(L'\u00B3')) {
    power = text.back() == L'\u00B2' ? 2 : 3;
    text.remove_suffix(1);
  } else {
    const std::size_t mark = text.rfind(L'^');
    if (mark == std::wstring_view::npos) return std::nullopt;
    std::wstring_view digits = text.substr(mark + 1);
    const auto exponent = TakeExponent(digits);
    if (!exponent || !digits.empty()) return std::nullopt;
    power = *exponent;
    text = text.substr(0, mark);
  }
  if (text.starts_with(L'(') && text.ends_with(L')')) text = text.substr(1, text.size() - 2);
  return power;
}

bool IsAscii(std::wstring_view text) {
  return std::all_of(text.begin(), text.end(), [](wchar_t c) { return c < 0x80; });
}

// The first spelling that `fits`; a unit or prefix that has one has one in ASCII, too.
template <class Spelling, std::size_t N, class Fits>
const Spelling* Spell(const Spelling (&spellings)[N], bool ascii, Fits fits) {
  const auto* const found =
      std::find_if(std::begin(spellings), std::end(spellings), [&](const Spelling& spelling) {
        return fits(spelling) && (!ascii || IsAscii(spelling.text));
      });
  return found == std::end(spellings) ? nullptr : found;
}

std::wstring WriteScaled(const Scaled& scaled, bool ascii) {
  const UnitSpelling* unit = Spell(unit_spellings, ascii, [&](const UnitSpelling& spelling) {
    return spelling.unit == scaled.unit;
  });
  std::wstring text(unit->text);
  if (scaled.prefix == 0) return text;

  const PrefixSpelling* prefix =
      Spell(prefix_spellings, ascii,
            [&](const PrefixSpelling& spelling) { return spelling.exponent == scaled.prefix; });
  if (prefix != nullptr) {
    std::wstring short_form = std::wstring(prefix->text) + text;
    if (ReadScaled(short_form) == scaled) return short_form;
  }
  std::wstring long_form(ten_to_the);
  Number::Append(long_form, static_cast<long long>(scaled.prefix));
  if (!text.empty()) long_form += L' ';
  return long_form + text;
}

void AppendPower(std::wstring& text, short power, bool ascii) {
  if (text.find_first_of(L"/^ ") != std::wstring::npos) text = L'(' + text + L')';
  if (!ascii && (power == 2 || power == 3)) {
    text += power == 2 ? L'\u00B2' : L'\u00B3';
  } else {
    text += L'^';
    Number::Append(text, static_cast<long long>(power));
  }
}

bool IsKind(unsigned int code) {
  return code <= Unit::angular_acceleration_rad_s2 && code != Unit::in_text;
}

}  // namespace

CMeasuringUnit::CMeasuringUnit(commonUnits unit, short prefix, short power, float factor,
                               unsigned int offset) {
  set(unit, prefix, power, factor, offset);
}

CMeasuringUnit::CMeasuringUnit(const CMeasuringUnit& other, bool base_only)
    : CMeasuringUnit(other) {
  if (base_only) set(unit_, 0, power_, 1.0F, 0);
}

bool CMeasuringUnit::set(const wchar_t* text) {
  if (text == nullptr) return false;
  std::wstring_view rest = Text::Trim(text);
  short power = 1;
  auto scaled = ReadScaled(rest);
  if (!scaled) {
    const auto mark = TakePower(rest);
    if (!mark || rest.empty()) return false;
    power = *mark;
    scaled = ReadScaled(rest);
  }
  if (!scaled) return false;
  return set(scaled->unit, scaled->prefix, power, 1.0F, 0);
}

bool CMeasuringUnit::set(unsigned int code, short prefix, short power, float factor,
                         unsigned int offset) {
  if (!IsKind(code)) return false;
  unit_ = static_cast<commonUnits>(code);
  prefix_ = prefix;
  power_ = power;
  factor_ = factor;
  offset_ = offset;
  return true;
}

std::wstring CMeasuringUnit::prefixunit(bool ascii) const {
  std::wstring text = WriteScaled({unit_, prefix_}, ascii);
  if (power_ != 1 && !text.empty()) AppendPower(text, power_, ascii);
  return text;
}
