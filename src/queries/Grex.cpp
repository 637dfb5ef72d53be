// The expansion doesn't compare every key with every row. For each element the rows are kept as
// sets of bits, one for each remainder of an id: the rows whose own id has it, and those that leave
// the element open. What six such sets have in common is all that can match a key, and hardly more
// than what does. A word of a set stands for 64 rows.

#include "queries/Grex.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "frame/QtParamStore.h"
#include "interfaces/sea/LogListener.h"
#include "interfaces/sea/PrWin.h"

using namespace kestrin;

namespace {

using GrexRows = tables::TableOf<L"<TGrex10001>">;

constexpr int made_of_two_points = 1;

// Finds the rows that match a key.
class RowFinder {
 public:
  // Short tables don't pay for sets: then there are none, and all rows are compared.
  RowFinder(const GrexRows& rows, std::size_t keys) : rows_(rows) {
    if (rows.size() >= bits_of_word && keys >= 32) MakeSets();
  }

  // Calls f with each row, in table order.
  template <class F>
  void ForEachMatch(const QClavis& key, F f) const {
    const auto compare = [asked = CClavis(key.id), f](const auto& row) {
      if (asked & CClavis(row.first.id)) f(row.second);
    };
    if (sets_.empty()) {
      for (const auto& row : rows_) compare(row);
      return;
    }
    const Word* sets[Clavis::element_count];
    for (int element = 0; element < Clavis::element_count; ++element) {
      sets[element] = &sets_[Place(element, key[element] == -1 ? all : Remainder(key[element]), 0)];
    }
    for (std::size_t word = 0; word < words_; ++word) {
      Word bits = ~Word{0};
      for (const Word* set : sets) bits &= set[word];
      for (; bits != 0; bits &= bits - 1) {
        compare(rows_[word * bits_of_word + static_cast<std::size_t>(std::countr_zero(bits))]);
      }
    }
  }

 private:
  using Word = std::uint64_t;
  static constexpr std::size_t bits_of_word = 64;

  // The sets of an element: by the remainder of the id, and two more.
  static constexpr std::size_t open = 61;  // the id is -1
  static constexpr std::size_t all = 62;
  static constexpr std::size_t sets_of_element = 63;
  static std::size_t Remainder(int id) { return static_cast<unsigned>(id) % open; }

  std::size_t Place(int element, std::size_t set, std::size_t row) const {
    return (static_cast<std::size_t>(element) * sets_of_element + set) * words_ +
           row / bits_of_word;
  }

  void MakeSets() {
    words_ = (rows_.size() + bits_of_word - 1) / bits_of_word;
    sets_.resize(Place(Clavis::element_count, 0, 0));
    for (int element = 0; element < Clavis::element_count; ++element) {
      for (std::size_t row = 0; row < rows_.size(); ++row) {
        const int id = rows_[row].first[element];
        const Word bit = Word{1} << row % bits_of_word;
        sets_[Place(element, id == -1 ? open : Remainder(id), row)] |= bit;
        sets_[Place(element, all, row)] |= bit;
      }
      for (std::size_t set = 0; set < open; ++set) {
        for (std::size_t word = 0; word < words_; ++word) {
          sets_[Place(element, set, 0) + word] |= sets_[Place(element, open, 0) + word];
        }
      }
    }
  }

  const GrexRows& rows_;
  std::size_t words_ = 0;  // of a set
  std::vector<Word> sets_;
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
  for (const auto& [place, value] : store_->Table<L"<TIpPolygonValue>">()) {
    if (place.id != previous) number = 0;
    IpPolygonValues.try_emplace(IpPolygonValues.end(), {place.id, number},
                                CVPoint{place.value, value.y});
    previous = place.id;
    ++number;
  }
}

void CGrexInfo::ExpandWildcards() {
  IpTrackPolygon.clear();
  const auto& keys = store_->Table<L"<TIpParamAndStore>">();
  const RowFinder finder(store_->Table<L"<TGrex10001>">(), keys.size());
  int free_id = IpPolygonValues.empty() ? 0 : FreeIdAfter(IpPolygonValues.rbegin()->first.first);
  for (const auto& [key, unused] : keys) {
    bool is_first = true;
    finder.ForEachMatch(key, [&, &listed = key](const QVIpSvTrackPolygon& row) {
      const CVIpSvTrackPolygon record = TakeRow(row, free_id);
      if (is_first) {
        IpTrackPolygon.try_emplace(IpTrackPolygon.end(), listed, record);
      } else {
        const LogSubject subject(L"<TIpParamAndStore>", listed.id);
        PrWin::Output(L"CGrexInfo::Init(): ambiguous keys while trying to expand wildcards\n",
                      PrWin::category_data_base, PrWin::style_info);
      }
      is_first = false;
    });
  }
}

CVIpSvTrackPolygon CGrexInfo::TakeRow(const QVIpSvTrackPolygon& row, int& free_id) {
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
