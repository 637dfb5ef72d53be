#include "queries/QtRotorInfo.h"

#include <limits>

#include "frame/QtParamInstance.h"
#include "interfaces/sea/LogListener.h"
#include "interfaces/sea/PrWin.h"
#include "queries/QtChannelInfo.h"
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
