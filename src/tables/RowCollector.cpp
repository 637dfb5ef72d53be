#include "tables/RowCollector.h"

#include <numeric>

namespace kestrin {

// By some bits of the ranks after the other, from the lowest on: rows are counted by these bits and
// put into groups, in which they keep the order that they had.
std::vector<std::size_t> PlacesByRank(std::vector<RankedRow> rows) {
  constexpr int bits = 11;
  constexpr std::size_t groups = std::size_t{1} << bits;
  std::uint64_t all = 0;
  for (const RankedRow& row : rows) all |= row.rank;
  std::vector<RankedRow> sorted(rows.size());
  for (int shift = 0; shift < 64 && all >> shift != 0; shift += bits) {
    const auto group_of = [&](const RankedRow& row) { return row.rank >> shift & (groups - 1); };
    std::array<std::size_t, groups + 1> places{};
    for (const RankedRow& row : rows) ++places[group_of(row) + 1];
    std::partial_sum(places.begin(), places.end(), places.begin());
    for (const RankedRow& row : rows) sorted[places[group_of(row)]++] = row;
    rows.swap(sorted);
  }
  std::vector<std::size_t> order;
  order.reserve(rows.size());
  for (const RankedRow& row : rows) order.push_back(row.place);
  return order;
}

}  // namespace kestrin
