// Rotors, speed sources, orders: the derived table, and the questions of the handle.
#include <limits>

#include "frame/QtParamDerived.h"
#include "frame/QtParamDistillery.h"
#include "frame/QtParamInstance.h"
#include "interfaces/sea/LogListener.h"
#include "interfaces/sea/PrWin.h"
#include "queries/QtChannelInfo.h"
#include "queries/QtRotorInfo.h"
#include "queries/QtSpeedInfo.h"

using namespace kestrin;

namespace {

void LogMissingBaseOrder(int rotor, int phys_mode) {
  PrWin::Output(PrWin::category_data_base, PrWin::style_info,
                L"CQtRotorInfo::BuildRotor2OrderSourcesLookup(): Parameter database: No base order "
                L"for RotorId %d in PhysMode %d, skipping entry into m_rotor2OrderSources\n",
                rotor, phys_mode);
}

}  // namespace

CQtRotorInfo::CQtRotorInfo(const CQtParamStore& param_store, const CQtSpeedInfo& speeds,
                           const CQtChannelInfo& channels)
    : store_(&param_store),
      speed_info_(&speeds),
      channel_info_(&channels),
      order_sources_(L"<PiRotor2OrderSources>") {}

void CQtRotorInfo::Build() {
  order_sources_.Purge();
  int running_number = 0;
  for (const auto& [key, row] : store_->Table<L"<TOrderSource2Rotor>">()) {
    const int order_source = key[0];
    const int phys_mode = key[1];
    if (!speed_info_->BaseOrderOf(speed_info_->PhysicalGearOf(phys_mode, order_source))) {
      const LogSubject subject(L"<TOrderSource2Rotor>", key.id);
      LogMissingBaseOrder(row.ref, phys_mode);
      continue;
    }
    const int speed_source = speed_info_->SpeedSourceOf(phys_mode, row.ref);
    order_sources_.insert({{phys_mode, speed_source, row.ref, running_number}, order_source});
    ++running_number;
  }
}

CQtRotorInfo::Range CQtRotorInfo::OrderSourceRange(int mode, int channel, int rotor) const {
  const auto& table = order_sources_;
  const auto flags = static_cast<unsigned>(channel_info_->ChannelFlags(mode, channel));
  const int phys_mode = speed_info_->PhysModeOf(mode);
  const int speed_source = speed_info_->SpeedSourceOf(phys_mode, rotor);
  constexpr int last = std::numeric_limits<int>::max();
  if ((flags & CQtParamInstance::channel_mix) != 0) {
    return {table.lower_bound({phys_mode, speed_source, 0, 0}),
            table.upper_bound({phys_mode, speed_source, last, last})};
  }
  if ((flags & CQtParamInstance::channel_sync) != 0) {
    return {table.lower_bound({phys_mode, speed_source, rotor, 0}),
            table.upper_bound({phys_mode, speed_source, rotor, last})};
  }
  return {table.end(), table.end()};
}

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
