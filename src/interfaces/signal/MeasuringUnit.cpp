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
#include "interfaces/signal/MeasuringUnit.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>
#include <string_view>

#include "interfaces/text/Number.h"
#include "interfaces/text/Text.h"

using namespace kestrin;

namespace {

using Unit = CMeasuringUnit;

struct UnitSpelling {
  std::wstring_view text;
  Unit::commonUnits unit;
  bool takes_prefix;
};

constexpr UnitSpelling unit_spellings[] = {
    {L"", Unit::none, false},
    {L"rpm", Unit::speed_rpm, true},
    {L"1/min", Unit::speed_rpm, false},
    {L"min^-1", Unit::speed_rpm, false},
    {L"min\u207B\u00B9", Unit::speed_rpm, false},
    {L"r/min", Unit::speed_rpm, false},
    {L"U/min", Unit::speed_rpm, false},
    {L"Hz", Unit::frequency_hz, true},
    {L"1/s", Unit::frequency_hz, false},
    {L"ord", Unit::order, true},
    {L"Ord", Unit::order, false},
    {L"order", Unit::order, false},
    {L"s", Unit::time_s, true},
    {L"m/s\u00B2", Unit::acceleration_m_s2, true},
    {L"m/s^2", Unit::acceleration_m_s2, true},
    {L"m/s2", Unit::acceleration_m_s2, true},
    {L"g", Unit::acceleration_g, true},
    {L"m/s", Unit::velocity_m_s, true},
    {L"m", Unit::displacement_m, true},
    {L"Nm", Unit::torque_nm, true},
    {L"N\u00B7m", Unit::torque_nm, true},
    {L"N*m", Unit::torque_nm, true},
    {L"N", Unit::force_n, true},
    {L"Pa", Unit::pressure_pa, true},
    {L"bar", Unit::pressure_bar, true},
    {L"\u00B0C", Unit::temperature_c, false},
    {L"degC", Unit::temperature_c, false},
    {L"K", Unit::temperature_k, true},
    {L"dB", Unit::level_db, false},
    {L"\u00B0", Unit::angle_deg, true},
    {L"deg", Unit::angle_deg, true},
    {L"rad", Unit::angle_rad, true},
    {L"rad/s", Unit::angular_velocity_rad_s, true},
    {L"V", Unit::voltage_v, true},
    {L"A", Unit::current_a, true},
    {L"W", Unit::power_w, true},
    {L"kg", Unit::mass_kg, false},
    {L"%", Unit::percent, false},
    {L"J", Unit::energy_j, true},
    {L"\u03A9", Unit::resistance_ohm, true},  // the Greek letter
    {L"\u2126", Unit::resistance_ohm, true},  // the ohm sign
    {L"Ohm", Unit::resistance_ohm, true},
    {L"l/min", Unit::flow_l_min, true},
    {L"rev", Unit::revolutions, true},
    {L"rad/s\u00B2", Unit::angular_acceleration_rad_s2, true},
    {L"rad/s^2", Unit::angular_acceleration_rad_s2, true},
    {L"rad/s2", Unit::angular_acceleration_rad_s2, true},
};

struct PrefixSpelling {
  short exponent;
  std::wstring_view text;
};

// Of the three spellings of micro the first is the micro sign, the second the Greek letter.
constexpr PrefixSpelling prefix_spellings[] = {
    {-24, L"y"},     {-21, L"z"},     {-18, L"a"}, {-15, L"f"}, {-12, L"p"}, {-9, L"n"},
    {-6, L"\u00B5"}, {-6, L"\u03BC"}, {-6, L"u"},  {-3, L"m"},  {-2, L"c"},  {-1, L"d"},
    {1, L"da"},      {2, L"h"},       {3, L"k"},   {6, L"M"},   {9, L"G"},   {12, L"T"},
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

// A power behind one of these belongs to its last factor alone: "m/s³" is no cubed "m/s".
bool NeedsBrackets(std::wstring_view text) {
  return text.find_first_of(L"/^* \u00B7") != std::wstring_view::npos || text.ends_with(L"Nm");
}

// The power from the end of `text`, which loses its mark and the brackets in front of that. Nothing
// if there is no mark or it belongs to a part of the text only.
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
  if (text.starts_with(L'(') && text.ends_with(L')')) {
    text = text.substr(1, text.size() - 2);
  } else if (NeedsBrackets(text)) {
    return std::nullopt;
  }
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
  Number::Append(long_form, scaled.prefix);
  if (!text.empty()) long_form += L' ';
  return long_form + text;
}

void AppendPower(std::wstring& text, short power, bool ascii) {
  if (NeedsBrackets(text)) text = L'(' + text + L')';
  if (!ascii && (power == 2 || power == 3)) {
    text += power == 2 ? L'\u00B2' : L'\u00B3';
  } else {
    text += L'^';
    Number::Append(text, power);
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
