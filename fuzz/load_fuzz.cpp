// A whole load: the bytes are a parameter file. It is read, checked, tidied, loaded, asked about
// ids that stand in it and about hostile ones, dumped, written back to the sea, loaded again,
// refused if its own version asks for that, and purged.

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "Fuzz.h"
#include "frame/LoadForInspection.h"
#include "frame/QtParamDerived.h"
#include "frame/QtParamDistillery.h"
#include "frame/QtParamInstance.h"
#include "frame/TableList.h"
#include "inspect/Difference.h"
#include "inspect/ParameterCheck.h"
#include "inspect/TableCatalogue.h"
#include "inspect/Tidy.h"
#include "interfaces/sea/ResourceSea.h"
#include "interfaces/signal/MeasuringUnit.h"
#include "lake/Lake.h"
#include "queries.h"
#include "spec/QtSpecInterval.h"
#include "tables/QTableManager.h"
#include "trigger/TriggerStore.h"

using namespace kestrin;

namespace fuzz {
namespace {

CLake FromBytes(Bytes bytes) {
  CLake lake;
  ReadLake(lake, {reinterpret_cast<const char*>(bytes.data()), bytes.size()}, {});
  return lake;
}

// An application sea of this input's own, since a load may write to it.
class OwnHost {
 public:
  OwnHost() : sea_before_(CSeaBase::SetApplicationSea(&sea_)) {}
  OwnHost(const OwnHost&) = delete;
  OwnHost& operator=(const OwnHost&) = delete;
  ~OwnHost() { CSeaBase::SetApplicationSea(sea_before_); }

 private:
  CResourceSea sea_;
  CResourceSea* sea_before_;
};

constexpr const wchar_t* major_version = CQTableManager::major_key;
constexpr const wchar_t* minor_version = CQTableManager::minor_key;

// The version stands in front, so that no input is lost to a refusal.
void FillCandidateLake(const CLake& lake) {
  static const CLake version = [] {
    CLake lines;
    lines[major_version] = L"215";
    lines[minor_version] = L"1";
    return lines;
  }();
  CParameterLake::Lake() = version;
  CParameterLake::Lake().merge(lake);
}

// Ids to ask for: hostile ones, some that the bytes at the end of the input spell, and the first of
// each table that has any.
std::vector<int> Ids(const CQtParamInstance& params, Bytes bytes) {
  std::vector<int> ids = {INT_MIN, INT_MAX, -2, -1, 0, 1, 2047, 2048, 0x40000001};
  Input input(bytes.last(std::min<std::size_t>(bytes.size(), 3 * sizeof(int))));
  while (!input.empty()) ids.push_back(input.Take<int>());
  const auto add_first = [&](const auto& table, std::size_t count) {
    for (auto row = table.begin(); row != table.end() && count-- > 0; ++row) {
      ids.push_back(row->first[0]);
    }
  };
  add_first(params.Mode(), 3);
  add_first(params.Channel(), 2);
  add_first(params.Location(), 1);
  add_first(params.InstrumentParam(), 3);
  add_first(params.Trigger(), 1);
  add_first(params.ApplicationSignal(), 1);
  std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  return ids;
}

// Walking a text shows that it has an end; comparing it with null that there is one.
void AskText(const wchar_t* text) {
  Require(text != nullptr, "a name is never null");
  Require(std::wstring_view(text).size() < 500, "a name has the length that its field allows");
}

void AskIntervals(const CQtParamInstance& params, int mode, int id) {
  CQtSpecInterval interval(params);
  interval.LoadTransformParams(mode, id, 1);
  const auto [first, last] = params.SpecIntervalRange(static_cast<unsigned>(id));
  std::vector<CQtSpecInterval::IndexInterval> lines;
  for (auto entry = first; entry != last; ++entry) {
    CQtSpecInterval::IndexInterval range;
    if (interval.IndexRange(entry->second, range, 1600, 0.125F, 1.0F) !=
        CQtSpecInterval::index_range_ok) {
      continue;
    }
    Require(range.start_index <= range.stop_index && range.stop_index < 1600,
            "an interval lies inside the spectrum");
    lines.push_back(range);
  }
  std::sort(lines.begin(), lines.end(),
            [](const auto& a, const auto& b) { return a.start_index < b.start_index; });
  std::vector<bool> wanted(1600);
  const auto mark = [](std::vector<bool>& marks, const auto& range, bool value) {
    std::fill(marks.begin() + range.start_index, marks.begin() + range.stop_index + 1, value);
  };
  for (std::size_t i = 0; i < lines.size(); ++i) mark(wanted, lines[i], i == 0);
  const std::size_t count = CQtSpecInterval::InvertIndexIntervalCollection(lines);
  Require(count == lines.size(), "the number of pieces is that of the collection");
  std::vector<bool> kept(wanted.size());
  for (const auto& range : lines) mark(kept, range, true);
  Require(kept == wanted, "what is left are the lines that no cut covers");
}

// From a channel to its parents, until there is none or one comes again.
void AskChannel(const CQtParamInstance& params, int mode, int channel) {
  // An id beyond the test steps is asked as its base, which need not be there.
  const int base = CQtParamInstance::VirtMode2BaseMode(mode);
  if (!params.IsValidMode(base) || !params.IsValidChannel(channel)) return;
  std::set<int> met;
  unsigned flags = 0;
  int last = -1;
  for (int next = channel; next != -1 && met.insert(next).second;) {
    last = next;
    flags |= params.ChannelResamplingType(next);
    next = params.ParentChannel(mode, next);
  }
  Require(last == -1 || params.BaseChannel(mode, channel) == last, "a chain ends at its base");
  Require(last == -1 || params.ChannelFlags(mode, channel) == static_cast<int>(flags),
          "flags are those of the whole chain");
}

void AskTrigger(const CQtParamInstance& params, int mode, int trigger) {
  const CTriggerStore store(params);
  unsigned mask = 0;
  CTriggerStore::CIntervals axes;
  CTriggerStore::CDimensions values;
  const bool has_axes = store.dimensions(mode, trigger, mask);
  Require(has_axes == store.field(mode, trigger, axes), "a trigger has its axes, or none");
  Require(mask == axes.is_set.to_ulong() && mask < 16, "the mask tells the axes");
  Require(store.dimension(mode, trigger) < 4, "an axis is one of four");
  std::int64_t cell = 0;
  store.position(mode, trigger, INT64_MIN, -1, values);
  values.is_set.set();
  store.cell(mode, trigger, values, cell, true);
  store.cell(mode, trigger, values, cell, false);
  store.position(mode, trigger, cell, 0x0001FFFF80007FFF, values);
  float value = 0;
  for (unsigned dim = 0; dim < 5; ++dim) store.position(mode, trigger, cell, dim, value);
}

void AskPair(const CQtParamInstance& params, int mode, int id) {
  const auto [first, last] = params.OrderSourceRange(mode, id, 1);
  for (auto source = first; source != last; ++source) {
    Require(source->first[0] == params.PhysModeId(mode), "order sources are of the test step");
  }
  AskChannel(params, mode, id);
  AskIntervals(params, mode, id);
  AskTrigger(params, mode, id);
  const QClavis key(mode, id, id, mode, id, mode);
  Require(params.FormatClavisTextNice(key, L" / ").size() < 500, "a key's text has its limit");
}

void AskId(CQtParamInstance& params, int id) {
  AskText(params.ModeName(id));
  Require(params.VirtModeName(id).empty() || CQtParamInstance::IsVirtualMode(id),
          "a name is made for a virtual mode alone");
  for (int element = Clavis::Mode; element <= Clavis::Sensor; ++element) {
    AskText(params.ClavisElementName(element, id));
  }
  // By the table: a test step below 0 has a row and shows no name. Names of a table with a bad line
  // are not found.
  const auto& modes = params.Mode();
  const int first = modes.Idx(modes.Name(id));
  if (modes.IsValidId(id) && first != -1) {
    Require(first <= id && std::wstring_view(modes.Name(first)) == modes.Name(id),
            "a name leads to the first id that has it");
  }
  Require((params.Channel().find(id) != params.Channel().end()) == params.IsValidChannel(id),
          "an id is valid if it has a row");
  params.ApplicationSignalUnit(id);
}

void AskWhole(CQtParamInstance& params) {
  for (const auto& [key, polygon] : params.IpTrackPolygon()) {
    const auto& points = params.IpPolygonValues();
    auto point = points.lower_bound({polygon.polygon_id, 0});
    for (; point != points.end() && point->first.first == polygon.polygon_id; ++point) {
    }
  }
  params.AddVModeName(2049, L"made");
  AskText(params.ModeName(2049));
}

// Everything, with each id as the first argument and those behind it as the others.
void AskAll(CQtParamInstance& params, std::vector<int> ids) {
  for (std::size_t i = 0; i < ids.size(); ++i) {
    AskId(params, ids[0]);
    queries::AskAll(params, ids, params.Mode().Name(ids[0]));
    std::rotate(ids.begin(), ids.begin() + 1, ids.end());
  }
}

std::size_t RowCount(const CQtParamDistillery& store) {
  std::size_t count = 0;
  for (const auto& table : TableCatalogue::Tables()) count += table.row_count(store);
  return count;
}

// Every search relies on it. The keys of one table are completed after it was sorted.
void RequireOrder(const CQtParamDistillery& store) {
  tables::All::ForEach([&](auto entry) {
    using Entry = decltype(entry);
    using Table = typename Entry::Table;
    using Key = typename Table::key_type;
    using Multi = tables::Multi<Key, typename Table::mapped_type>;
    if (Entry::section == tables::Word(L"<TGrex15>")) return;
    const typename Table::key_compare less;
    const Table& table = store.Table<Entry::section>();
    const auto disordered = [&](const auto& a, const auto& b) {
      return std::is_same_v<Table, Multi> ? less(b.first, a.first) : !less(a.first, b.first);
    };
    Require(std::adjacent_find(table.begin(), table.end(), disordered) == table.end(),
            "rows stand in the order of their keys");
  });
}

// Each listed key has the first row that matches it, as a walk over all rows finds it.
void RequirePolygons(const CQtParamInstance& params, const CQtParamDistillery& store) {
  const auto& rows = store.Table<L"<TGrex10001>">();
  std::size_t expected = 0;
  for (const auto& [key, unused] : store.Table<L"<TIpParamAndStore>">()) {
    const auto row = std::find_if(rows.begin(), rows.end(), [&key = key](const auto& candidate) {
      return CClavis(key.id) & CClavis(candidate.first.id);
    });
    const auto found = params.IpTrackPolygon().find(key);
    const bool has_polygon = found != params.IpTrackPolygon().end();
    Require(has_polygon == (row != rows.end()), "a key has a polygon exactly if a row matches it");
    if (!has_polygon) continue;
    ++expected;
    const auto& [track_a, track_c, polygon_id] = found->second;
    Require(track_a == row->second.track_a && track_c == row->second.track_c,
            "the first row that matches has the say");
    Require(row->second.polygon_mode == 1 || polygon_id == row->second.polygon_id,
            "a row without points names its polygon");
  }
  Require(params.IpTrackPolygon().size() == expected, "no other keys have polygons");
}

// Of the tables and of what is derived from them. Learn times are left out: they may be those of
// the load, and the next load may come a second later.
Logged Dump(CQtParamDistillery& store, QuietLog& log) {
  for (auto& [key, row] : store.Table<L"<TIpLearnParams>">()) row.time_1 = row.time_2 = 0;
  log.Take();
  store.DumpTables(0);
  store.Derived().Dump(0);
  return log.Take();
}

// The same file with no version but its own.
void RequireRefusal(CQtParamDistillery& store, const CLake& lake, QuietLog& log) {
  if (!CQTableManager::WhyRefused(lake)) return;
  const Logged before = Dump(store, log);
  CParameterLake::Lake() = lake;
  Require(!store.ReadTablesFromCandidateLake(), "an unsupported version is refused");
  Require(log.Take().lines == (lake.empty() ? 0 : 1), "a refused version is logged, once");
  Require(Dump(store, log) == before, "a refusal leaves the tables as they were");
}

// A tidied file says the same, and has nothing left to tidy.
void RequireTidy(const CLake& lake, Bytes bytes) {
  const std::string tidied = Tidied({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  Require(Tidied(tidied) == tidied, "tidied twice is tidied once");
  CQtParamDistillery before;
  CQtParamDistillery after;
  const long long now = std::time(nullptr);
  LoadForInspection::Run(before, lake);
  LoadForInspection::Run(
      after, FromBytes({reinterpret_cast<const std::uint8_t*>(tidied.data()), tidied.size()}));
  const auto fail = [](auto&&...) { Require(false, "a tidied file has the same rows"); };
  Difference::Compare(before, after, fail, now);
}

}  // namespace

void Load(Bytes bytes) {
  QuietLog log;
  const OwnHost host;
  const CLake lake = FromBytes(bytes);
  ParameterCheck::Check(lake);
  RequireTidy(lake, bytes);
  FillCandidateLake(lake);
  CQtParamDistillery store;
  CQtParamInstance params(&store);
  const bool loaded = params.ReadTablesFromCandidateLake();
  Require(params.Initialized() == loaded, "a store knows whether it was loaded");
  RequireOrder(store);
  RequirePolygons(params, store);
  const Logged dump = Dump(store, log);

  const std::vector<int> ids = Ids(params, bytes);
  AskAll(params, ids);
  for (const int id : ids) {
    for (std::size_t i = bytes.size() % 8; i < ids.size(); i += 8) AskPair(params, ids[i], id);
  }
  AskWhole(params);
  params.WriteTablesToLocalSeas();

  Require(params.ReadTablesFromCandidateLake() == loaded, "a second load ends as the first");
  Require(Dump(store, log) == dump, "a second load makes the tables of the first");
  RequireRefusal(store, lake, log);
  Require(params.Initialized() == loaded, "a refusal doesn't undo the load before");
  params.PurgeTables();
  Require(RowCount(store) == 0, "a purge leaves no rows");
  AskAll(params, ids);
}

}  // namespace fuzz
