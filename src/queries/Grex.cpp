// The expansion compares no key with every row. Seen from a key, only the elements that both the
// key and a row have set can keep the two apart. So, for each set of elements that keys have set,
// the rows are put into a hash table by those of their elements. A key then meets its rows by one
// probe for each set of elements that is left in some row: a handful, at most 64. Keys with values
// in all elements share one such table; in a table for keys with wildcards, rows that differ only
// in elements that these keys leave open stand in one place.

#include "queries/Grex.h"

#include <algorithm>
#include <array>
#include <bit>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

#include "frame/QtParamStore.h"
#include "interfaces/sea/PrWin.h"
#include "tables/SecretHash.h"

using namespace kestrin;

namespace {

using GrexRows = tables::TableOf<L"<TGrex10001>">;
using ElementSet = unsigned;  // bit i: element i of Clavis::qOrder

constexpr int made_of_two_points = 1;

constexpr int half = Clavis::element_count / 2;
constexpr unsigned half_sets = 1U << half;
constexpr std::size_t element_sets = std::size_t{1} << Clavis::element_count;

ElementSet SetElements(const QClavis& key) {
  ElementSet set = 0;
  for (int i = 0; i < Clavis::element_count; ++i) {
    if (key[i] != -1) set |= 1U << i;
  }
  return set;
}

bool AreEqualIn(ElementSet set, const QClavis& a, const QClavis& b) {
  for (; set != 0; set &= set - 1) {
    const int i = std::countr_zero(set);
    if (a[i] != b[i]) return false;
  }
  return true;
}

// Every element is hashed by itself, so that the hash of any choice of elements is a sum. A key is
// asked for up to 64 of them: those of three elements are kept.
class ElementHashes {
 public:
  ElementHashes(const SecretHash& hash, const QClavis& key) {
    const auto of_element = [&](int i) {
      return hash(static_cast<std::uint64_t>(i) << 32U | static_cast<std::uint32_t>(key[i]));
    };
    for (ElementSet set = 1; set < half_sets; ++set) {
      const int i = std::countr_zero(set);
      const ElementSet others = set & (set - 1);
      low_[set] = low_[others] + of_element(i);
      high_[set] = high_[others] + of_element(half + i);
    }
  }

  std::uint64_t Of(ElementSet set) const { return low_[set % half_sets] + high_[set / half_sets]; }

 private:
  std::array<std::uint64_t, half_sets> low_{};
  std::array<std::uint64_t, half_sets> high_{};
};

// The rows by their elements, as far as these are in `visible`.
class RowIndex {
 public:
  RowIndex(const GrexRows& rows, ElementSet visible)
      : rows_(rows), slots_(std::bit_ceil(2 * rows.size() + 1)), next_(rows.size(), none) {
    std::array<bool, element_sets> met{};
    // Backwards, since each row goes in front of those of its place.
    for (std::size_t row = rows.size(); row-- > 0;) {
      const QClavis& key = rows[row].first;
      const ElementSet set = SetElements(key) & visible;
      const std::uint64_t hash = ElementHashes(secret_, key).Of(set);
      Slot& slot = slots_[SlotOf(key, set, hash)];
      next_[row] = slot.first_row;
      slot = {row, set};
      has_rows_.set(FilterBit(hash));
      if (!met[set]) sets_.push_back(set);
      met[set] = true;
    }
  }

  // The rows that match a key whose set elements are `visible`, in table order.
  void Find(const QClavis& key, std::vector<std::size_t>& found) const {
    found.clear();
    const ElementHashes hashes(secret_, key);
    for (const ElementSet set : sets_) {
      const std::uint64_t hash = hashes.Of(set);
      if (!has_rows_[FilterBit(hash)]) continue;
      std::size_t row = slots_[SlotOf(key, set, hash)].first_row;
      for (; row != none; row = next_[row]) found.push_back(row);
    }
    std::sort(found.begin(), found.end());
  }

 private:
  static constexpr unsigned filter_bits = 16;
  static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

  struct Slot {
    std::size_t first_row = none;
    ElementSet set = 0;
  };

  static std::size_t FilterBit(std::uint64_t hash) { return hash >> (64U - filter_bits); }

  // The slot of the rows with these elements, or the free one where they would stand. At least half
  // of the slots are free.
  std::size_t SlotOf(const QClavis& key, ElementSet set, std::uint64_t hash) const {
    std::size_t i = hash & (slots_.size() - 1);
    while (!IsSlotOf(slots_[i], key, set)) i = (i + 1) & (slots_.size() - 1);
    return i;
  }

  bool IsSlotOf(const Slot& slot, const QClavis& key, ElementSet set) const {
    if (slot.first_row == none) return true;
    return slot.set == set && AreEqualIn(set, rows_[slot.first_row].first, key);
  }

  const GrexRows& rows_;
  const SecretHash secret_;
  std::vector<Slot> slots_;
  std::vector<std::size_t> next_;  // the next row of the same place
  std::vector<ElementSet> sets_;   // the sets of elements that rows are seen with
  // By the hash's upper bits. Most probes find nothing, and learn it from these few kilobytes.
  std::bitset<std::size_t{1} << filter_bits> has_rows_;
};

// Finds the rows that match a key.
class RowFinder {
 public:
  explicit RowFinder(const GrexRows& rows) : rows_(rows) {}

  // Good until the next call.
  const std::vector<std::size_t>& Find(const QClavis& key) {
    const ElementSet visible = SetElements(key);
    std::unique_ptr<RowIndex>& index = indexes_[visible];
    if (!index) index = std::make_unique<RowIndex>(rows_, visible);
    index->Find(key, found_);
    return found_;
  }

 private:
  const GrexRows& rows_;
  std::array<std::unique_ptr<RowIndex>, element_sets> indexes_;  // made when a key asks for it
  std::vector<std::size_t> found_;
};

}  // namespace

void CGrexInfo::Init() {
  LayOutStoredPolygons();
  ExpandWildcards();
}

void CGrexInfo::LayOutStoredPolygons() {
  IpPolygonValues.clear();
  int previous = -1;
  int number = 0;
  for (const auto& [place, value] : store->Table<L"<TIpPolygonValue>">()) {
    if (place.id != previous) number = 0;
    IpPolygonValues.try_emplace(IpPolygonValues.end(), {place.id, number},
                                CVPoint{place.value, value.y});
    previous = place.id;
    ++number;
  }
}

void CGrexInfo::ExpandWildcards() {
  IpTrackPolygon.clear();
  const GrexRows& rows = store->Table<L"<TGrex10001>">();
  RowFinder finder(rows);
  int free_id = IpPolygonValues.empty() ? 0 : FreeIdAfter(IpPolygonValues.rbegin()->first.first);
  for (const auto& [key, unused] : store->Table<L"<TIpParamAndStore>">()) {
    bool is_first = true;
    for (const std::size_t row : finder.Find(key)) {
      const CVIpSvTrackPolygon record = Record(rows[row].second, free_id);
      if (is_first) {
        IpTrackPolygon.try_emplace(IpTrackPolygon.end(), key, record);
      } else {
        PrWin::Output(L"CGrexInfo::Init(): ambiguous keys while trying to expand wildcards\n",
                      PrWin::category_data_base, PrWin::style_info);
      }
      is_first = false;
    }
  }
}

CVIpSvTrackPolygon CGrexInfo::Record(const QVIpSvTrackPolygon& row, int& free_id) {
  CVIpSvTrackPolygon record{row.track_a, row.track_c, row.polygon_id};
  if (row.polygon_mode != made_of_two_points) return record;
  record.polygon_id = free_id;
  const auto add = [this, free_id](int number, const CVPoint& point) {
    IpPolygonValues.try_emplace(IpPolygonValues.end(), {free_id, number}, point);
  };
  add(0, {row.x_start, row.y_start + row.offset});
  add(1, {row.x_end, row.y_end + row.offset});
  free_id = FreeIdAfter(free_id);
  return record;
}

int CGrexInfo::FreeIdAfter(int id) const {
  const auto has_points = [this](int polygon) {
    if (IpPolygonValues.empty() || IpPolygonValues.rbegin()->first.first < polygon) return false;
    return IpPolygonValues.contains({polygon, 0});
  };
  do {
    id = id == std::numeric_limits<int>::max() ? 0 : id + 1;
  } while (has_points(id));
  return id;
}
