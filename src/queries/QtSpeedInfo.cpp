#include "frame/QtParamStore.h"
#include "queries/QtSpeedInfo.h"

namespace {

constexpr int none = -1;

// The id that a row refers to, or `otherwise` if there is no such row.
template <class Table>
int RefIn(const Table& table, const typename Table::key_type& key, int otherwise) {
  const auto row = table.find(key);
  return row == table.end() ? otherwise : row->second.ref;
}

}  // namespace

int CQtSpeedInfo::PhysModeOf(int mode) const {
  if (mode == none) return none;
  const auto& properties = store->Table<L"<TModeProperty>">();
  const auto row = properties.find(mode);
  return row == properties.end() ? none : row->second.phys_mode;
}

int CQtSpeedInfo::PhysicalGearOf(int phys_mode, int gear) const {
  if (phys_mode == none || gear == none) return none;
  return RefIn(store->Table<L"<TVirtual2PhysGear>">(), {phys_mode, gear}, gear);
}

int CQtSpeedInfo::RotorOf(int phys_mode, int source) const {
  if (phys_mode == none || source == none) return none;
  return RefIn(store->Table<L"<TOrderSource2Rotor>">(), {source, phys_mode}, source);
}

int CQtSpeedInfo::SpeedSourceOf(int phys_mode, int rotor) const {
  return RefIn(store->Table<L"<TRotorSpeedSource>">(), {phys_mode, rotor}, none);
}

int CQtSpeedInfo::AppIdOf(int speed_source) const {
  if (speed_source == none) return none;
  return RefIn(store->Table<L"<TSpeedSource>">(), speed_source, none);
}

const float* CQtSpeedInfo::BaseOrderOf(int physical_gear) const {
  const auto& orders = store->Table<L"<TBaseOrder>">();
  const auto row = orders.find(physical_gear);
  return row == orders.end() ? nullptr : &row->second.base_order;
}

int CQtSpeedInfo::SpeedSourceOfOrderSource(int mode, int source) const {
  if (mode == none || source == none) return none;
  const int phys_mode = PhysModeOf(mode);
  return SpeedSourceOf(phys_mode, RotorOf(phys_mode, source));
}

float CQtSpeedInfo::RotorFrequency(int mode, int source) const {
  if (mode == none || source == none) return 0.0F;
  const auto& speeds = store->Table<L"<TRotorSpeed>">();
  const int phys_mode = PhysModeOf(mode);
  const int gear = PhysicalGearOf(phys_mode, source);
  auto row = speeds.find({phys_mode, RotorOf(phys_mode, gear)});
  if (row == speeds.end()) row = speeds.find({phys_mode, RotorOf(phys_mode, source)});
  return row == speeds.end() ? 0.0F : row->second.speed;
}

float CQtSpeedInfo::FrequencyRatio(int mode, int generating, int other) const {
  if (mode == none || generating == none || other == none) return 0.0F;
  const float generating_speed = RotorFrequency(mode, generating);
  const float other_speed = RotorFrequency(mode, other);
  return generating_speed == 0.0F ? 0.0F : other_speed / generating_speed;
}
