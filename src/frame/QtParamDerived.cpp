#include "frame/QtParamDerived.h"

#include <map>

#include "frame/QtParamStore.h"
#include "tables/RowCollector.h"

CQtParamDerived::CQtParamDerived(CQtParamStore& param_store)
    : store(&param_store),
      trigger_ids(param_store, QVIpCalcParameter::trigger),
      speed_info(param_store),
      spec_intervals(param_store),
      channel_info(param_store, speed_info),
      rotor_info(param_store, speed_info, channel_info),
      mode_info(param_store),
      grex_info(param_store) {}

void CQtParamDerived::Build() {
  trigger_ids.Reset();
  channel_info.Build();
  spec_intervals.Rebuild();
  rotor_info.Build();
  grex_info.Init();
  trigger_ids.begin();
  if (store->Table<L"<TResamplingM>">().empty()) ExpandResampling();
}

// One row per resampling row of a physical mode and per test step of that physical mode.
void CQtParamDerived::ExpandResampling() {
  std::multimap<int, int> modes_by_phys_mode;
  for (const auto& [mode, props] : store->Table<L"<TModeProperty>">()) {
    modes_by_phys_mode.emplace(props.phys_mode, mode[0]);
  }
  CDbUniqueMap<QIdx2, QVResampling>& expanded = store->Table<L"<TResamplingM>">();
  kestrin::RowCollector rows(expanded);
  for (const auto& [key, resampling] : store->Table<L"<TResampling>">()) {
    const auto [first, last] = modes_by_phys_mode.equal_range(key[1]);
    for (auto mode = first; mode != last; ++mode) {
      rows.Add(QIdx2(key[0], mode->second), resampling);
    }
  }
  rows.Finish();
}

bool CQtParamDerived::CompleteRelativeLimitKeys() {
  const auto& parameters = store->Table<L"<TInstrumentParam>">();
  for (auto& row : store->Table<L"<TGrex15>">()) {
    const auto parameter = parameters.find(row.first[Clavis::Parameter]);
    if (parameter == parameters.end()) return false;
    row.first[Clavis::Instrument] = parameter->second.instrument;
  }
  return true;
}

void CQtParamDerived::Dump(int limit) const {
  channel_info.Dump(limit);
  spec_intervals.Dump(limit);
}

int CQtParamDerived::TriggerId(int instrument_param) const {
  int trigger = -1;
  trigger_ids.Read(trigger, instrument_param);
  return trigger;
}
