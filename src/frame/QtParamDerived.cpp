#include "frame/QtParamDerived.h"

#include <map>

#include "frame/QtParamStore.h"
#include "tables/RowCollector.h"

CQtParamDerived::CQtParamDerived(CQtParamStore& param_store)
    : store_(&param_store),
      trigger_ids_(param_store, QVIpCalcParameter::trigger),
      speed_info_(param_store),
      spec_intervals_(param_store),
      channel_info_(param_store, speed_info_),
      rotor_info_(param_store, speed_info_, channel_info_),
      mode_info_(param_store),
      grex_info_(param_store) {}

void CQtParamDerived::Build() {
  trigger_ids_.Reset();
  channel_info_.Build();
  spec_intervals_.Rebuild();
  rotor_info_.Build();
  grex_info_.Init();
  trigger_ids_.begin();
  if (store_->Table<L"<TResamplingM>">().empty()) ExpandResampling();
}

// One row per resampling row of a physical mode and per test step of that physical mode.
void CQtParamDerived::ExpandResampling() {
  std::multimap<int, int> modes_by_phys_mode;
  for (const auto& [mode, props] : store_->Table<L"<TModeProperty>">()) {
    modes_by_phys_mode.emplace(props.phys_mode, mode[0]);
  }
  CDbUniqueMap<QIdx2, QVResampling>& expanded = store_->Table<L"<TResamplingM>">();
  kestrin::RowCollector rows(expanded);
  for (const auto& [key, resampling] : store_->Table<L"<TResampling>">()) {
    const auto [first, last] = modes_by_phys_mode.equal_range(key[1]);
    for (auto mode = first; mode != last; ++mode) {
      rows.Add(QIdx2(key[0], mode->second), resampling);
    }
  }
  rows.Finish();
}

bool CQtParamDerived::CompleteRelativeLimitKeys() {
  const auto& parameters = store_->Table<L"<TInstrumentParam>">();
  for (auto& row : store_->Table<L"<TGrex15>">()) {
    const auto parameter = parameters.find(row.first[Clavis::Parameter]);
    if (parameter == parameters.end()) return false;
    row.first[Clavis::Instrument] = parameter->second.instrument;
  }
  return true;
}

void CQtParamDerived::Dump(int limit) const {
  channel_info_.Dump(limit);
  spec_intervals_.Dump(limit);
}

int CQtParamDerived::TriggerId(int instrument_param) const {
  int trigger = -1;
  trigger_ids_.Read(trigger, instrument_param);
  return trigger;
}
