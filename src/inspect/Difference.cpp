#include "inspect/Difference.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <cwchar>
#include <numeric>
#include <vector>

namespace kestrin::Difference {
namespace {

using TableCatalogue::RowsInfo;
using TableType::FieldKind;
using TableType::FieldView;

template <class T>
const T& As(const FieldView& column) {
  return *static_cast<const T*>(column.place);
}

int Texts(const FieldView& a, const FieldView& b) {
  return std::wcsncmp(&As<wchar_t>(a), &As<wchar_t>(b), TableType::text_width);
}

template <class T>
int Values(const FieldView& a, const FieldView& b) {
  return static_cast<int>(As<T>(a) > As<T>(b)) - static_cast<int>(As<T>(a) < As<T>(b));
}

// Below, at or above 0, as the keys of tables are ordered: NaN behind all numbers.
int Order(const FieldView& a, const FieldView& b) {
  switch (a.kind) {
    case FieldKind::unsigned_int:
      return Values<unsigned>(a, b);
    case FieldKind::long_long:
      return Values<long long>(a, b);
    case FieldKind::real: {
      const int order = Values<float>(a, b);
      if (order != 0) return order;
      return static_cast<int>(std::isnan(As<float>(a))) -
             static_cast<int>(std::isnan(As<float>(b)));
    }
    case FieldKind::text:
      return Texts(a, b);
    default:
      return Values<int>(a, b);
  }
}

// The rows of a table in the order of their keys, which the load may have broken in one of them,
// and those of one key in the order of their values.
class Rows {
 public:
  Rows(const RowsInfo& info, const CQtParamDistillery& data)
      : width_(info.columns.size()), key_columns_(info.key_columns) {
    info.walk(data, [this](Columns row) { values_.insert(values_.end(), row.begin(), row.end()); });
    places_.resize(values_.size() / width_);
    std::iota(places_.begin(), places_.end(), std::size_t{0});
    const auto less = [this](std::size_t a, std::size_t b) { return Whole(Row(a), Row(b)) < 0; };
    if (!std::is_sorted(places_.begin(), places_.end(), less)) {
      std::stable_sort(places_.begin(), places_.end(), less);
    }
  }

  std::size_t size() const { return places_.size(); }
  Columns operator[](std::size_t i) const { return Row(places_[i]); }

  int Keys(Columns a, Columns b) const { return First(key_columns_, a, b); }
  int Whole(Columns a, Columns b) const { return First(width_, a, b); }

 private:
  static int First(std::size_t columns, Columns a, Columns b) {
    int order = 0;
    for (std::size_t i = 0; order == 0 && i < columns; ++i) order = Order(a[i], b[i]);
    return order;
  }

  Columns Row(std::size_t place) const { return Columns(values_).subspan(place * width_, width_); }

  std::size_t width_;
  std::size_t key_columns_;
  std::vector<FieldView> values_;
  std::vector<std::size_t> places_;
};

}  // namespace

bool IsSame(const FieldView& a, const FieldView& b) {
  if (a.kind == FieldKind::text) return Texts(a, b) == 0;
  if (a.kind == FieldKind::real && std::isnan(As<float>(a)) && std::isnan(As<float>(b)))
    return true;
  const std::size_t size = a.kind == FieldKind::long_long ? sizeof(long long) : sizeof(int);
  return std::memcmp(a.place, b.place, size) == 0;
}

void Compare(const CQtParamDistillery& before, const CQtParamDistillery& after,
             const Visitor& visit, long long loads_began) {
  const auto is_same = [loads_began](const FieldView& a, const FieldView& b) {
    return IsSame(a, b) || (a.kind == FieldKind::long_long && As<long long>(a) >= loads_began &&
                            As<long long>(b) >= loads_began);
  };
  for (const RowsInfo& table : TableCatalogue::Tables()) {
    const Rows old_rows(table, before);
    const Rows new_rows(table, after);
    std::size_t i = 0;
    std::size_t j = 0;
    // Of one key, those without an equal row on the other side, which are compared in their order.
    std::vector<Columns> only_old;
    std::vector<Columns> only_new;
    const auto flush = [&] {
      for (std::size_t k = 0; k < std::max(only_old.size(), only_new.size()); ++k) {
        const Columns a = k < only_old.size() ? only_old[k] : Columns();
        const Columns b = k < only_new.size() ? only_new[k] : Columns();
        if (!std::equal(a.begin(), a.end(), b.begin(), b.end(), is_same)) visit(table, a, b);
      }
      only_old.clear();
      only_new.clear();
    };
    Columns last;
    while (i < old_rows.size() || j < new_rows.size()) {
      int order = j == new_rows.size() ? -1 : 1;
      if (i < old_rows.size() && j < new_rows.size()) {
        order = old_rows.Whole(old_rows[i], new_rows[j]);
      }
      const Columns next = order <= 0 ? old_rows[i] : new_rows[j];
      if (!last.empty() && old_rows.Keys(last, next) != 0) flush();
      last = next;
      if (order <= 0) only_old.push_back(old_rows[i++]);
      if (order >= 0) only_new.push_back(new_rows[j++]);
      // Equal rows need no partner but each other: bits such as those of -0 are told at once.
      if (order == 0 && std::equal(last.begin(), last.end(), only_new.back().begin(), is_same)) {
        only_old.pop_back();
        only_new.pop_back();
      }
    }
    flush();
  }
}

}  // namespace kestrin::Difference
