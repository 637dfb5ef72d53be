#include "frame/DataSource.h"

#include <type_traits>

#include "frame/QtParamDistillery.h"
#include "frame/QtParamInstance.h"
#include "interfaces/text/Number.h"

using namespace kestrin;

namespace DataSource {

template <class T>
CCandidateSeaDataSource<T>::CCandidateSeaDataSource(int calc_parameter, int filter)
    : CCandidateSeaDataSource(CQtParamInstance().Store(), calc_parameter, filter) {}

template <class T>
bool CCandidateSeaDataSource<T>::Read(T& value, int id) {
  if (!this->loaded && !Load()) return false;
  const auto found = values_.find(id);
  if (found == values_.end()) return false;
  value = found->second;
  return true;
}

template <class T>
bool CCandidateSeaDataSource<T>::Load() {
  // Both tables ascend by parameter, so one walk side by side finds the parameter of each row.
  const auto& parameters = store_->Table<L"<TInstrumentParam>">();
  auto parameter = parameters.begin();
  bool all_known = true;
  for (const auto& [key, row] : store_->Table<L"<TIpCalcParameter>">()) {
    if (key[1] != number_) continue;
    while (parameter != parameters.end() && parameter->first[0] < key[0]) ++parameter;
    if (parameter == parameters.end() || parameter->first[0] != key[0]) {
      all_known = false;
      continue;
    }
    if (instrument_filter_ != no_filter && parameter->second.instrument != instrument_filter_) {
      continue;
    }
    if constexpr (std::is_same_v<T, int>) {
      const auto scanned = Number::ScanInt(row.ValueText());
      values_.emplace_hint(values_.end(), key[0],
                           scanned.state == Number::State::ok ? scanned.value : 0);
    } else {
      values_.emplace_hint(values_.end(), key[0], row.ValueText());
    }
  }
  this->loaded = true;
  return all_known;
}

template class CCandidateSeaDataSource<int>;
template class CCandidateSeaDataSource<const wchar_t*>;

}  // namespace DataSource
