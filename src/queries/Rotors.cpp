// Rotors, speed sources, orders: the questions of the handle.
#include "frame/QtParamDerived.h"
#include "frame/QtParamDistillery.h"
#include "frame/QtParamInstance.h"
#include "queries/QtRotorInfo.h"
#include "queries/QtSpeedInfo.h"

int CQtParamInstance::PhysicalGear(int mode, int gear) const {
  return store_->Derived().SpeedInfo().PhysicalGearOf(PhysModeId(mode), gear);
}

int CQtParamInstance::OrderSource2Rotor(int mode, int source) const {
  if (mode == -1 || source == -1) return 0;
  return store_->Derived().SpeedInfo().RotorOf(PhysModeId(mode), source);
}

int CQtParamInstance::RotorSpeedSource(int mode, int source) const {
  return store_->Derived().SpeedInfo().SpeedSourceOfOrderSource(mode, source);
}

int CQtParamInstance::RotorSpeedSourceAppId(int mode, int source) const {
  const CQtSpeedInfo& speeds = store_->Derived().SpeedInfo();
  return speeds.AppIdOf(speeds.SpeedSourceOfOrderSource(VirtMode2BaseMode(mode), source));
}

int CQtParamInstance::SpeedInfoOfRotor(int mode, int rotor) const {
  const CQtSpeedInfo& speeds = store_->Derived().SpeedInfo();
  return speeds.AppIdOf(speeds.SpeedSourceOf(PhysModeId(mode), rotor));
}

float CQtParamInstance::BaseOrder(int mode, int gear) const {
  const int physical = PhysicalGear(mode, gear);
  if (physical == -1) return 0.0F;
  const float* const order = store_->Derived().SpeedInfo().BaseOrderOf(physical);
  return order ? *order : 0.0F;
}

float CQtParamInstance::FrequencyRatioToGeneratingRotor(int mode, int generating, int other) const {
  return store_->Derived().SpeedInfo().FrequencyRatio(VirtMode2BaseMode(mode), generating, other);
}

float CQtParamInstance::RotorFrequencyRelativeToSpeedSourceRotor(int mode, int source) const {
  const CQtSpeedInfo& speeds = store_->Derived().SpeedInfo();
  const int base = VirtMode2BaseMode(mode);
  return speeds.FrequencyRatio(base, speeds.SpeedSourceOfOrderSource(base, source), source);
}

CQtParamInstance::OrderSources CQtParamInstance::OrderSourceRange(int mode, int channel,
                                                                  int rotor) const {
  return store_->Derived().RotorInfo().OrderSourceRange(VirtMode2BaseMode(mode), channel, rotor);
}
