#include "queries/QtSpeedInfo.h"

#include "frame/QtParamStore.h"
#include "tables/FieldOr.h"

using namespace kestrin;

namespace {

constexpr int none = -1;

}  // namespace

int CQtSpeedInfo::PhysModeOf(int mode) const {
  if (mode == none) return none;
  return FieldOr(store_->Table<L"<TModeProperty>">(), mode, &QVModeProps::phys_mode, none);
}

int CQtSpeedInfo::PhysicalGearOf(int phys_mode, int gear) const {
  if (phys_mode == none || gear == none) return none;
  return FieldOr(store_->Table<L"<TVirtual2PhysGear>">(), {phys_mode, gear}, &QVRefIdx::ref, gear);
}

int CQtSpeedInfo::RotorOf(int phys_mode, int source) const {
  if (phys_mode == none || source == none) return none;
  return FieldOr(store_->Table<L"<TOrderSource2Rotor>">(), {source, phys_mode}, &QVRefIdx::ref,
                 source);
}

int CQtSpeedInfo::SpeedSourceOf(int phys_mode, int rotor) const {
  return FieldOr(store_->Table<L"<TRotorSpeedSource>">(), {phys_mode, rotor}, &QVRefIdx::ref, none);
}

int CQtSpeedInfo::AppIdOf(int speed_source) const {
  if (speed_source == none) return none;
  return FieldOr(store_->Table<L"<TSpeedSource>">(), speed_source, &QVRefIdx::ref, none);
}

const float* CQtSpeedInfo::BaseOrderOf(int physical_gear) const {
  const QVBaseOrder* const row = RowOf(store_->Table<L"<TBaseOrder>">(), physical_gear);
  return row != nullptr ? &row->base_order : nullptr;
}

int CQtSpeedInfo::SpeedSourceOfOrderSource(int mode, int source) const {
  if (mode == none || source == none) return none;
  const int phys_mode = PhysModeOf(mode);
  return SpeedSourceOf(phys_mode, RotorOf(phys_mode, source));
}

float CQtSpeedInfo::RotorFrequency(int mode, int source) const {
  if (mode == none || source == none) return 0.0F;
  const auto& speeds = store_->Table<L"<TRotorSpeed>">();
  const int phys_mode = PhysModeOf(mode);
  const int gear = PhysicalGearOf(phys_mode, source);
  const auto* const row = RowOf(speeds, {phys_mode, RotorOf(phys_mode, gear)});
  if (row != nullptr) return row->speed;
  return FieldOr(speeds, {phys_mode, RotorOf(phys_mode, source)}, &QVRotorSpeeds::speed, 0.0F);
}

float CQtSpeedInfo::FrequencyRatio(int mode, int generating, int other) const {
  if (mode == none || generating == none || other == none) return 0.0F;
  const float generating_speed = RotorFrequency(mode, generating);
  const float other_speed = RotorFrequency(mode, other);
  return generating_speed == 0.0F ? 0.0F : other_speed / generating_speed;
}
