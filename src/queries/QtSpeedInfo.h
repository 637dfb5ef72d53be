// The plain chains through the tables of the machine: from a test step to its physical mode, from a
// gear to its physical gear, from an order source to its rotor, from there to the speed source and
// its signal. frame/QtParamInstance.h draws them.
//
// Gears, order sources, rotors and speed sources share one space of ids. The first two steps from
// an order source, to its physical gear and to its rotor, leave an id as it is if their table
// doesn't know it: what no table maps is the rotor, or the physical gear, of the same number. All
// other steps end in -1, or for a number in 0.
//
// Modes are base modes here: whoever asks has folded a virtual one. Nothing is stored; each answer
// is read from the tables as they are.
#pragma once

class CQtParamStore;

class CQtSpeedInfo {
 public:
  explicit CQtSpeedInfo(const CQtParamStore& param_store) : store_(&param_store) {}

  // -1 for a test step without properties.
  int PhysModeOf(int mode) const;

  // -1 if either argument is -1; the gear, or the order source, itself if the table doesn't map it.
  int PhysicalGearOf(int phys_mode, int gear) const;
  int RotorOf(int phys_mode, int source) const;

  // -1 if there is none.
  int SpeedSourceOf(int phys_mode, int rotor) const;
  int AppIdOf(int speed_source) const;

  // The base order of a physical gear, null if there is none.
  const float* BaseOrderOf(int physical_gear) const;

  // The speed source of the rotor on which an order source sits; -1 if there is none or if either
  // argument is -1.
  int SpeedSourceOfOrderSource(int mode, int source) const;

  // The speed value of the rotor of an order source: of the one under its physical gear or else of
  // the one under the source itself. 0 if neither has one. Only ratios of two values mean anything.
  float RotorFrequency(int mode, int source) const;

  // How often `other` turns while `generating` turns once. 0 if either is -1, if nothing is known
  // of the speed of either, or if `generating` stands still.
  float FrequencyRatio(int mode, int generating, int other) const;

 private:
  const CQtParamStore* store_;
};
