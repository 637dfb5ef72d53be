// How three views on the calculation parameters become records and intervals.
#include "spec/QtSpecIntervalStore.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

#include "catalogue/IpCalcParameter.h"
#include "frame/QtParamStore.h"
#include "interfaces/sea/LogListener.h"
#include "interfaces/sea/PrWin.h"
#include "tables/FieldOr.h"

using namespace kestrin;

namespace {

using Positions = std::array<QVSpecIntervalEntry::Definition, CQtSpecIntervalStore::max_orders>;

unsigned ReadPositions(const wchar_t* definition, Positions& positions, unsigned max_positions) {
  return OrderInterpreter::GetSpecPositions(
      definition, positions.data(), std::min(max_positions, CQtSpecIntervalStore::max_orders));
}

}  // namespace

CQtSpecIntervalStore::CQtSpecIntervalStore(const CQtParamStore& store)
    : table_(L"<PiSpecIntervalStore>"),
      interpretations_(store, QVIpCalcParameter::interpretation),
      definitions_(store, QVIpCalcParameter::definition),
      references_(store, QVIpCalcParameter::base_order_reference) {}

void CQtSpecIntervalStore::Rebuild() {
  table_.Purge();
  ip_sv_of_spec_.clear();
  interpretations_.Reset();
  definitions_.Reset();
  references_.Reset();
  Load(max_orders);
}

void CQtSpecIntervalStore::Load(unsigned nr_orders) {
  if (nr_orders > max_orders) {
    PrWin::Output(PrWin::category_data_base, PrWin::style_bad_line,
                  L"QtSpecIntervalStore: nr_orders %d > max_orders %d.\n",
                  static_cast<int>(nr_orders), static_cast<int>(max_orders));
    return;
  }
  // A view that fills itself in a read may give false there for what it holds; begin fills it too.
  interpretations_.begin();
  references_.begin();
  for (auto definition = definitions_.begin(); definition != definitions_.end(); ++definition) {
    const auto [id, text] = *definition;
    QVIpSvOfSpec record{.definition = text};
    if (!interpretations_.Read(record.interpretation, id)) continue;
    if (!references_.Read(record.reference, id)) continue;
    ip_sv_of_spec_.insert_or_assign(id, record);
    const int key[] = {id, QVIpCalcParameter::definition};
    const LogSubject subject(L"<TIpCalcParameter>", key);
    ProcessTables(id, text, nr_orders);
  }
}

void CQtSpecIntervalStore::ProcessTables(int id, const wchar_t* definition, unsigned nr_orders) {
  Positions positions;
  const unsigned count = ReadPositions(definition, positions, nr_orders);
  if (count != 0 && OrderInterpreter::IntervalCount(count) == 0) {
    // The suite knows the line by its words, as they are spelt.
    PrWin::Output(PrWin::category_data_base, PrWin::style_bad_line,
                  L"CQtSpecIntervalStore::ProcessTables():\nIpSvOfSpec contains entry with %u "
                  L"terms. Number of terms has to be one ore even. Entrys id is %d. Definition "
                  L"ignored\n",
                  count, id);
    return;
  }
  for (unsigned i = 0; i < count; i += 2) {
    const auto& upper = positions[std::min(i + 1, count - 1)];  // a single one is its own partner
    table_.insert_or_assign(QIdx2(id, static_cast<int>(i)),
                            QVSpecIntervalEntry(positions[i], upper));
  }
}

const wchar_t* CQtSpecIntervalStore::SpecIntervalDefinition(int id) const {
  return FieldOr(ip_sv_of_spec_, id, &QVIpSvOfSpec::definition, nullptr);
}

CQtSpecIntervalStore::IntervalRange CQtSpecIntervalStore::SpecIntervalRange(int id) const {
  // Not up to the next id: the largest one has none.
  return {table_.lower_bound(QIdx2(id, -1)),
          table_.upper_bound(QIdx2(id, std::numeric_limits<int>::max()))};
}

unsigned CQtSpecIntervalStore::Range(const wchar_t* definition, QVSpecIntervalEntry* ranges,
                                     unsigned order_limit) {
  Positions positions;
  const unsigned intervals = ReadPositions(definition, positions, order_limit) / 2;
  for (std::size_t i = 0; i < intervals; ++i) {
    ranges[i].lower() = positions[2 * i];
    ranges[i].upper() = positions[2 * i + 1];
  }
  return intervals;
}
