#include "frame/QtParamDistillery.h"

#include <algorithm>
#include <atomic>

#include "frame/LoadForInspection.h"
#include "frame/QtParamDerived.h"
#include "interfaces/text/Number.h"
#include "lake/Lake.h"
#include "tables/RowText.h"

using namespace kestrin;

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

// Of the first relative limit whose parameter nobody knows.
Refusal UnknownParameter(const CQtParamStore& store) {
  const auto& parameters = store.Table<L"<TInstrumentParam>">();
  const auto& limits = store.Table<L"<TGrex15>">();
  const auto limit = std::find_if(limits.begin(), limits.end(), [&](const auto& row) {
    return parameters.find(row.first[Clavis::Parameter]) == parameters.end();
  });
  std::wstring text = L"The relative limit of the key ";
  RowText::AppendRecord(text, limit->first);
  text += L" has the parameter ";
  Number::Append(text, limit->first[Clavis::Parameter]);
  text += L", which is not in <TInstrumentParam>.";
  return {Refusal::unknown_parameter, text};
}

}  // namespace

CQtParamDistillery::CQtParamDistillery() : derived_(std::make_unique<CQtParamDerived>(*this)) {}

CQtParamDistillery::~CQtParamDistillery() = default;

void CQtParamDistillery::Clear() {
  CQtParamStore::Clear();
  initialized_ = false;
}

bool CQtParamDistillery::ReadTablesFromCandidateLake() {
  last_refusal_ = {};
  if (!CQtParamStore::ReadTablesFromCandidateLake()) {
    last_refusal_ = CQTableManager::WhyRefused(CParameterLake::Lake());
    return false;
  }
  time_signal_id = FindTimeSignal(*this);
  return Complete();
}

bool CQtParamDistillery::Complete() {
  derived_->Build();
  if (!derived_->CompleteRelativeLimitKeys()) {
    last_refusal_ = UnknownParameter(*this);
    return false;
  }
  initialized_ = true;
  return true;
}

void kestrin::LoadForInspection::Run(CQtParamDistillery& data, const CLake& lake) {
  data.Clear();
  data.ReadTables(lake);
  static_cast<void>(data.Complete());
}

int CQtParamDistillery::TimeSignalId() { return time_signal_id; }
