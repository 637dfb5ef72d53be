#include "frame/QtParamDistillery.h"

#include <algorithm>
#include <atomic>

#include "frame/QtParamDerived.h"

namespace {

constexpr int time_signal_type = 4;

std::atomic<int> time_signal_id{-1};

int FindTimeSignal(const CQtParamStore& store) {
  const auto& signals = store.Table<L"<TAppSignalProperty>">();
  const auto found = std::find_if(signals.begin(), signals.end(), [](const auto& row) {
    return row.second.signal_type == time_signal_type;
  });
  return found == signals.end() ? -1 : found->first[0];
}

}  // namespace

CQtParamDistillery::CQtParamDistillery() : derived(std::make_unique<CQtParamDerived>(*this)) {}

CQtParamDistillery::~CQtParamDistillery() = default;

bool CQtParamDistillery::ReadTablesFromCandidateLake() {
  if (!CQtParamStore::ReadTablesFromCandidateLake()) return false;
  time_signal_id = FindTimeSignal(*this);
  derived->Build();
  if (!derived->CompleteRelativeLimitKeys()) return false;
  initialized = true;
  return true;
}

int CQtParamDistillery::TimeSignalId() { return time_signal_id; }
