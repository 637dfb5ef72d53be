// The physical unit of a signal.
//
// A unit is a kind out of a small table, a decimal prefix given by its exponent, a power, and a
// factor and an offset that lead from a raw value to one in this unit. "kHz" is the kind frequency
// with prefix 3; "mm²" is the kind displacement with prefix -3 and power 2, the prefix belonging to
// what the power is taken of. Factor and offset are carried along; no text shows them.
//
// Codes of a data base, and the text of each kind without a prefix:
//
//    0  none           (empty)      15  temperature, absolute   K
//    1  the unit stands in a text   16  level                   dB
//    2  speed          rpm          17  angle in degrees        °
//    3  frequency      Hz           18  angle in radians        rad
//    4  order          ord          19  angular velocity        rad/s
//    5  time           s            20  voltage                 V
//    6  acceleration   m/s²         21  current                 A
//    7  acceleration   g            22  power                   W
//    8  velocity       m/s          23  mass                    kg
//    9  displacement   m            24  percentage              %
//   10  torque         Nm           25  energy                  J
//   11  force          N            26  resistance              Ω
//   12  pressure       Pa           27  flow                    l/min
//   13  pressure       bar          28  revolutions             rev
//   14  temperature    °C           29  angular acceleration    rad/s²
//
// Code 1 is no kind: who meets it, or a code outside the table, reads the unit from its text.
//
// Prefixes are those of the SI, exponents -24 to 24. Where an exponent has no symbol, where a unit
// takes none (%, dB, °C, kg), and where symbol and unit together would read as something else (a
// thousand g are no kg), the text gives the power of ten: "10^3 g". So set() reads back from
// every text that prefixunit() writes the same kind, prefix and power.
//
// A plain value. Nothing depends on a locale.
#pragma once

#include <string>

#include "interfaces/Export.h"

class KESTRIN_API CMeasuringUnit {
 public:
  enum commonUnits : unsigned int {
    none = 0,
    in_text = 1,
    speed_rpm = 2,
    frequency_hz = 3,
    order = 4,
    time_s = 5,
    acceleration_m_s2 = 6,
    acceleration_g = 7,
    velocity_m_s = 8,
    displacement_m = 9,
    torque_nm = 10,
    force_n = 11,
    pressure_pa = 12,
    pressure_bar = 13,
    temperature_c = 14,
    temperature_k = 15,
    level_db = 16,
    angle_deg = 17,
    angle_rad = 18,
    angular_velocity_rad_s = 19,
    voltage_v = 20,
    current_a = 21,
    power_w = 22,
    mass_kg = 23,
    percent = 24,
    energy_j = 25,
    resistance_ohm = 26,
    flow_l_min = 27,
    revolutions = 28,
    angular_acceleration_rad_s2 = 29,
  };

  // The dimensionless unit with an empty text.
  CMeasuringUnit() = default;

  // `prefix` is the exponent of ten. A kind that is not in the table gives the dimensionless unit.
  CMeasuringUnit(commonUnits unit, short prefix, short power, float factor, unsigned int offset);

  CMeasuringUnit(const CMeasuringUnit&) = default;
  CMeasuringUnit& operator=(const CMeasuringUnit&) = default;

  // A copy; with `base_only` without prefix, factor and offset, so that units of one kind and power
  // become equal.
  CMeasuringUnit(const CMeasuringUnit& other, bool base_only);

  // Sets the unit from a text such as "kHz", "m/s²", "m/s^2", "1/min" or "µm"; white space around
  // it is passed over, upper and lower case differ. The empty text is the dimensionless unit.
  // Factor and offset become 1 and 0. False when the text is null or no unit: nothing changes then.
  bool set(const wchar_t* text);

  // False when `code` is 1 or above 29: nothing changes then.
  bool set(unsigned int code, short prefix, short power, float factor, unsigned int offset);

  // The text of the unit with prefix and power, as people write it ("µm", "m/s²", "°C"), or in
  // ASCII alone ("um", "m/s^2", "degC") where a display has no more. The dimensionless unit shows
  // no power.
  std::wstring prefixunit(bool ascii) const;

  commonUnits Unit() const { return unit_; }
  short Prefix() const { return prefix_; }
  short Power() const { return power_; }
  float Factor() const { return factor_; }
  unsigned int Offset() const { return offset_; }

  friend bool operator==(const CMeasuringUnit&, const CMeasuringUnit&) = default;

 private:
  commonUnits unit_ = none;
  short prefix_ = 0;
  short power_ = 1;
  float factor_ = 1.0F;
  unsigned int offset_ = 0;
};
