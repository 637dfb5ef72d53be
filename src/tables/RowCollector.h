// Puts the rows of a table's lines into its map, in the order of the lines and with the end of the
// map as the position to try first.
//
// For a sorted vector the result is the same as that of inserting row by row, but a section whose
// lines are not in order must not move the rows behind each insertion: the collector appends, and
// sorts once when the lines are through. Where rows are large against their keys, as those with
// texts are, it sorts copies of the keys and then moves each row once. A collector that is
// destroyed unfinished, because memory ran out, leaves the rows so far if they are in order, or
// none.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "tables/MapContainers.h"

namespace kestrin {

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
    if constexpr (sizeof(Row) <= 2 * sizeof(std::pair<K, std::size_t>)) {
      std::stable_sort(rows_.begin(), rows_.end(), by_key);
    } else {
      MoveRows(SortedOrder());
    }
    const auto same_key = [](const Row& a, const Row& b) { return !Less()(a.first, b.first); };
    rows_.erase(std::unique(rows_.begin(), rows_.end(), same_key), rows_.end());
    sorted_ = true;
  }

 private:
  static constexpr auto by_key = [](const auto& a, const auto& b) {
    return Less()(a.first, b.first);
  };

  // The positions of the rows in the order of their keys, equal keys in the order of their lines.
  std::vector<std::size_t> SortedOrder() const {
    std::vector<std::pair<K, std::size_t>> keys;
    keys.reserve(rows_.size());
    for (const Row& row : rows_) keys.emplace_back(row.first, keys.size());
    std::stable_sort(keys.begin(), keys.end(), by_key);
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
