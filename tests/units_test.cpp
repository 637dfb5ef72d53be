// A misread unit shows a measured value a thousand times too large.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "interfaces/signal/MeasuringUnit.h"

namespace {

using Unit = CMeasuringUnit;
constexpr unsigned int first_code_behind = 30;

Unit Make(unsigned int code, short prefix = 0, short power = 1) {
  return {static_cast<Unit::commonUnits>(code), prefix, power, 1.0F, 0};
}

TEST(Units, TextsAreReadAndWritten) {
  struct Case {
    const wchar_t* read;
    Unit unit;
    const wchar_t* written;
    const wchar_t* ascii = written;
  };
  const std::vector<Case> cases = {
      {L"", Make(Unit::none), L""},
      {L" kHz\t", Make(Unit::frequency_hz, 3), L"kHz"},
      {L"m/s\u00B2", Make(Unit::acceleration_m_s2), L"m/s\u00B2", L"m/s^2"},
      {L"mm/s^2", Make(Unit::acceleration_m_s2, -3), L"mm/s\u00B2", L"mm/s^2"},
      {L"1/min", Make(Unit::speed_rpm), L"rpm"},
      {L"\u00B5m", Make(Unit::displacement_m, -6), L"\u00B5m", L"um"},
      {L"\u03BCm", Make(Unit::displacement_m, -6), L"\u00B5m", L"um"},
      {L"\u2126", Make(Unit::resistance_ohm), L"\u03A9", L"Ohm"},
      {L"degC", Make(Unit::temperature_c), L"\u00B0C", L"degC"},
      {L"Nm", Make(Unit::torque_nm), L"Nm"},
      {L"nm", Make(Unit::displacement_m, -9), L"nm"},
      {L"dam", Make(Unit::displacement_m, 1), L"dam"},
      {L"Pa", Make(Unit::pressure_pa), L"Pa"},
      {L"mbar", Make(Unit::pressure_bar, -3), L"mbar"},
      {L"mg", Make(Unit::acceleration_g, -3), L"mg"},
      {L"kg", Make(Unit::mass_kg), L"kg"},
      {L"10^3 g", Make(Unit::acceleration_g, 3), L"10^3 g"},
      {L"10^-3  kg", Make(Unit::mass_kg, -3), L"10^-3 kg"},
      {L"10^5Pa", Make(Unit::pressure_pa, 5), L"10^5 Pa"},
      {L"10^3", Make(Unit::none, 3), L"10^3"},
      {L"mm\u00B2", Make(Unit::displacement_m, -3, 2), L"mm\u00B2", L"mm^2"},
      {L"(m/s)^2", Make(Unit::velocity_m_s, 0, 2), L"(m/s)\u00B2", L"(m/s)^2"},
      {L"s^-1", Make(Unit::time_s, 0, -1), L"s^-1"},
  };
  for (const Case& c : cases) {
    Unit unit(Unit::level_db, 2, 3, 4.0F, 5);
    EXPECT_TRUE(unit.set(c.read)) << testing::PrintToString(c.read);
    EXPECT_EQ(unit, c.unit) << testing::PrintToString(c.read);
    EXPECT_EQ(unit.prefixunit(false), c.written);
    EXPECT_EQ(unit.prefixunit(true), c.ascii);
  }
}

TEST(Units, WhatIsNoUnitChangesNothing) {
  const Unit before(Unit::pressure_bar, -3, 2, 0.5F, 7);
  Unit unit = before;
  const std::vector<const wchar_t*> no_units = {
      nullptr,   L"----",         L"k",    L"khz",        L"kkHz",
      L"k%",     L"k1/min",       L"mkg",  L"m\u00B0C",   L"m/s\u00B3",
      L"Nm^2",   L"10^3 kHz",     L"10^",  L"10^40000 m", L"10^3 m\u00B2",
      L"m^",     L"m^x",          L"m^2x", L"m^70000",    L"^2",
      L"()^2",   L"(m",           L"(",    L"(m)",        L"m s",
      L"\u00B2", L"m^99999999999"};
  for (const wchar_t* text : no_units) {
    EXPECT_FALSE(unit.set(text)) << testing::PrintToString(text);
    EXPECT_EQ(unit, before) << testing::PrintToString(text);
  }
  for (const unsigned int code :
       {1U, first_code_behind, std::numeric_limits<unsigned int>::max()}) {
    EXPECT_FALSE(unit.set(code, 0, 1, 1.0F, 0)) << code;
    EXPECT_EQ(unit, before) << code;
    EXPECT_EQ(Make(code, 3), Unit()) << code;
  }
}

// Every kind with every prefix, also those without a symbol, and some powers.
TEST(Units, EveryTextLeadsBackToItsUnit) {
  std::vector<short> prefixes = {std::numeric_limits<short>::min(),
                                 std::numeric_limits<short>::max()};
  const std::vector<short> powers = {1, 2, 3, -1, 0, std::numeric_limits<short>::min()};
  for (short prefix = -25; prefix <= 25; ++prefix) prefixes.push_back(prefix);
  for (unsigned int code = 0; code < first_code_behind; ++code) {
    if (code == 1) continue;
    for (const short prefix : prefixes) {
      for (const short power : powers) {
        const Unit unit = Make(code, prefix, power);
        for (const bool ascii : {false, true}) {
          const std::wstring text = unit.prefixunit(ascii);
          if (text.empty()) continue;  // dimensionless: no power to see
          Unit back;
          ASSERT_TRUE(back.set(text.c_str())) << testing::PrintToString(text);
          ASSERT_EQ(back, unit) << testing::PrintToString(text);
        }
      }
    }
  }
}

TEST(Units, CopiesKeepOrDropTheScale) {
  const Unit unit(Unit::frequency_hz, 3, 2, 0.5F, 7);
  EXPECT_EQ(Unit(unit, false), unit);
  EXPECT_EQ(Unit(unit, true), Make(Unit::frequency_hz, 0, 2));
  EXPECT_EQ(unit.Factor(), 0.5F);
  EXPECT_EQ(unit.Offset(), 7U);
  EXPECT_NE(unit, Unit(Unit::frequency_hz, 3, 2, 0.5F, 8));
  EXPECT_EQ(Unit(Unit::none, 0, 1, 1.0F, 0), Unit());
}

}  // namespace
