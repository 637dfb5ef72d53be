// The spectrum intervals of all instrument parameters, ready for evaluation.
//
// An instrument parameter that looks at a part of a spectrum says so in three of its calculation
// parameters: how the interval is read, the order definition, the base order that it refers to.
// Each load joins the three by the parameter's id and keeps them as one record; the definition is
// read once and its intervals enter a table of their own:
//
//   <PiSpecIntervalStore>   instrument parameter, index of the lower position | lower, upper
//
// The index counts positions, not intervals: 0, 2, 4 and so on. A parameter that lacks one of the
// three has neither record nor intervals. One whose definition is faulty, or has an odd number of
// positions above one, has a record without intervals, and the log tells why.
//
// A load alone changes a store; between loads it may be read from any number of threads.
#pragma once

#include <map>
#include <utility>

#include "frame/DataSource.h"
#include "interfaces/Export.h"
#include "keys/IndexRecords.h"
#include "spec/OrderInterpreter.h"
#include "tables/QParamBaseTable.h"

class CQtParamStore;

// What an instrument parameter says of its intervals.
struct QVIpSvOfSpec {
  int interpretation = 0;               // passed on to whoever evaluates
  const wchar_t* definition = nullptr;  // the text in <TIpCalcParameter>, good as long as its row
  int reference = -1;                   // the base order that the interval refers to
};

namespace kestrin {
using CSpecIntervalMap = std::map<QIdx2, QVSpecIntervalEntry>;
}  // namespace kestrin

// Each data base makes its own and fills it in a load. A host asks the handle for what is stored,
// and calls Range alone.
class CQtSpecIntervalStore {
 public:
  using Records = std::map<QIdx1, QVIpSvOfSpec>;  // by instrument parameter
  using IntervalRange = std::pair<kestrin::CSpecIntervalMap::const_iterator,
                                  kestrin::CSpecIntervalMap::const_iterator>;

  // Positions that a definition can have; what stands behind them is dropped.
  static constexpr unsigned max_orders = 32;

  // The store must outlive this.
  explicit CQtSpecIntervalStore(const CQtParamStore& store);

  // Empties all and reads <TIpCalcParameter> anew.
  void Rebuild();

  // Adds the records and intervals of all parameters, with at most nr_orders positions each. Above
  // max_orders nothing is done, and the log says so.
  void Load(unsigned nr_orders);

  // Adds the intervals of one definition. A single position is an interval of width zero.
  void ProcessTables(int id, const wchar_t* definition, unsigned nr_orders);

  // Logs the intervals; all of them with limit 0.
  void Dump(int limit) const { kestrin::DumpRows(table_, limit); }

  // Null without a record.
  const wchar_t* SpecIntervalDefinition(int id) const;

  // All intervals of a parameter, ascending by index; empty if it has none.
  IntervalRange SpecIntervalRange(int id) const;

  // The derived table.
  const CQParamTypedTable<kestrin::CSpecIntervalMap>& Intervals() const { return table_; }

  const Records& IpSvOfSpec() const { return ip_sv_of_spec_; }

  // Reads any definition without touching a store: each pair of positions goes into one element of
  // ranges, from the first on, and the number of these is returned. At most order_limit positions
  // of the definition are read, never more than max_orders, so room for half as many
  // elements is enough. A position without a partner is dropped: a single one gives no interval. A
  // syntax error is logged and gives 0. May be called from any number of threads.
  KESTRIN_API static unsigned Range(const wchar_t* definition, QVSpecIntervalEntry* ranges,
                                    unsigned order_limit);

 private:
  CQParamTypedTable<kestrin::CSpecIntervalMap> table_;
  Records ip_sv_of_spec_;
  DataSource::CCandidateSeaDataSource<int> interpretations_;
  DataSource::CCandidateSeaDataSource<const wchar_t*> definitions_;
  DataSource::CCandidateSeaDataSource<int> references_;
};
