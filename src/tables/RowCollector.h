// Puts the rows of a table's lines into its map, in the order of the lines and with the end of the
// map as the position to try first.
//
// For a sorted vector the result is the same as that of inserting row by row, but a section whose
// lines are not in order must not move the rows behind each insertion: the collector appends, and
// when the lines are through sorts copies of the keys, or numbers that stand for them, and then
// moves each row once. A collector that is destroyed unfinished, because memory ran out, leaves the
// rows so far if they are in order, or none.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <limits>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

#include "interfaces/Export.h"
#include "keys/IndexRecords.h"
#include "tables/MapContainers.h"

namespace kestrin {

// A row by a number that says where it belongs, and its place among the others.
struct RankedRow {
  std::uint64_t rank;
  std::size_t place;
};

// The places in the order of the ranks, those of one rank in their own order.
KESTRIN_API std::vector<std::size_t> PlacesByRank(std::vector<RankedRow> rows);

// Whether a key is ids in the order of its comparison. A host's own may compare in another way.
template <class K>
inline constexpr bool is_by_ids = std::is_same_v<K, QClavis>;
template <int n>
inline constexpr bool is_by_ids<QIdxInts<n>> = true;

// Rows with keys of ids, ranked: the ids are the digits of a number. Nothing if the ids lie so far
// apart that no number holds them.
template <class Rows>
std::optional<std::vector<RankedRow>> RankedByIds(const Rows& rows) {
  constexpr std::size_t count = std::size(decltype(rows[0].first.id){});
  std::array<std::pair<long long, long long>, count> bounds;
  bounds.fill({std::numeric_limits<int>::max(), std::numeric_limits<int>::min()});
  for (const auto& [key, value] : rows) {
    for (std::size_t i = 0; i < count; ++i) {
      auto& [lowest, highest] = bounds[i];
      lowest = std::min<long long>(lowest, key.id[i]);
      highest = std::max<long long>(highest, key.id[i]);
    }
  }
  std::uint64_t ranks = 1;
  std::array<std::uint64_t, count> range;
  for (std::size_t i = 0; i < count; ++i) {
    range[i] = static_cast<std::uint64_t>(bounds[i].second - bounds[i].first + 1);
    if (range[i] > std::numeric_limits<std::uint64_t>::max() / ranks) return std::nullopt;
    ranks *= range[i];
  }
  std::vector<RankedRow> ranked;
  ranked.reserve(rows.size());
  for (const auto& [key, value] : rows) {
    std::uint64_t rank = 0;
    for (std::size_t i = 0; i < count; ++i) {
      rank = rank * range[i] + static_cast<std::uint64_t>(key.id[i] - bounds[i].first);
    }
    ranked.push_back({rank, ranked.size()});
  }
  return ranked;
}

template <class Map>
class RowCollector {
 public:
  explicit RowCollector(Map& rows) : rows_(rows) {}

  void Add(const typename Map::key_type& key, const typename Map::mapped_type& value) {
    rows_.insert(rows_.end(), typename Map::value_type(key, value));
  }
  void Finish() {}

 private:
  Map& rows_;
};

template <class K, class V, class Less, class Alloc>
class RowCollector<CUniqueVectorMap<K, V, Less, Alloc>> {
  using Map = CUniqueVectorMap<K, V, Less, Alloc>;
  using Row = typename Map::value_type;

 public:
  explicit RowCollector(Map& rows) : rows_(rows) {}
  RowCollector(const RowCollector&) = delete;
  RowCollector& operator=(const RowCollector&) = delete;
  ~RowCollector() {
    if (!sorted_) rows_.clear();
  }

  void Add(const K& key, const V& value) {
    if (sorted_ && !rows_.empty() && !Less()(rows_.back().first, key)) {
      if (!Less()(key, rows_.back().first)) return;  // the first row of a key stays
      sorted_ = false;
    }
    rows_.emplace_back(key, value);
  }

  void Finish() {
    if (sorted_) return;
    MoveRows(SortedOrder());
    const auto same_key = [](const Row& a, const Row& b) { return !Less()(a.first, b.first); };
    rows_.erase(std::unique(rows_.begin(), rows_.end(), same_key), rows_.end());
    sorted_ = true;
  }

 private:
  // The positions of the rows in the order of their keys, equal keys in the order of their lines.
  std::vector<std::size_t> SortedOrder() const {
    if constexpr (is_by_ids<K> && std::is_same_v<Less, std::less<K>>) {
      if (auto ranked = RankedByIds(rows_)) return PlacesByRank(std::move(*ranked));
    }
    std::vector<std::pair<K, std::size_t>> keys;
    keys.reserve(rows_.size());
    for (const Row& row : rows_) keys.emplace_back(row.first, keys.size());
    std::stable_sort(keys.begin(), keys.end(),
                     [](const auto& a, const auto& b) { return Less()(a.first, b.first); });
    std::vector<std::size_t> order;
    order.reserve(keys.size());
    for (const auto& key : keys) order.push_back(key.second);
    return order;
  }

  // Brings row order[i] to place i, following each cycle of moves to its end.
  void MoveRows(std::vector<std::size_t> order) {
    for (std::size_t start = 0; start < order.size(); ++start) {
      if (order[start] == start) continue;
      Row held = std::move(rows_[start]);
      std::size_t place = start;
      for (std::size_t from = order[place]; from != start; from = order[place]) {
        rows_[place] = std::move(rows_[from]);
        order[place] = place;
        place = from;
      }
      rows_[place] = std::move(held);
      order[place] = place;
    }
  }

  Map& rows_;
  bool sorted_ = true;
};

}  // namespace kestrin
