// The key records: what every row of every table is stored and found under.
//
// A record is a small value, copied, stored and compared field by field. Its fields stand in one
// order, which is at once the order of the comparison, the order in a line of text and the order of
// tuple(). Ids are 32-bit signed integers, not dense; -1 is no value and sorts in front of every id
// of 0 or more.
//
//   QIdx1 .. QIdx6   that many ids, -1 at first
//   QClavis          a QIdx6 whose ids are the elements of a key, in the order of Clavis::qOrder
//   QIdx8            test type and test bench in front of the elements of a key
//   QIdxIF           an id and a float, such as a polygon and one of its x values
//   QIdxName         a text
//
// Which element a shorter key stands for depends on its table.
//
// Keys are compared in the inner loop of every lookup: comparisons are inline, touch only the
// fields and never allocate. Records share no state; constant use is safe from any thread.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cwchar>
#include <iosfwd>
#include <string_view>
#include <tuple>
#include <utility>

#include "interfaces/Export.h"
#include "interfaces/signal/Clavis.h"

// The base of every key record and every row record. The destructor is its one virtual operation:
// hosts delete records by their base, so even a QIdx1 with its 4 bytes of id takes 16.
class KESTRIN_API QValueBase {
 public:
  virtual ~QValueBase() = 0;

 protected:
  QValueBase() = default;
  // Copied only as part of a whole record.
  QValueBase(const QValueBase&) = default;
  QValueBase& operator=(const QValueBase&) = default;
};

inline QValueBase::~QValueBase() = default;

namespace kestrin::keys {

template <class T>
concept FitsInt = requires(T value) {
  int{value};
};

// Two ids as one number whose order is theirs: the first id, then the second, as signed numbers.
constexpr std::uint64_t IdPair(int first, int second) {
  constexpr std::uint64_t sign_bits = 0x80000000'80000000U;
  return (std::uint64_t{static_cast<std::uint32_t>(first)} << 32U |
          static_cast<std::uint32_t>(second)) ^
         sign_bits;
}

// First id first, as signed numbers; the next one decides only between equals. Two at a time: each
// branch that a search can't foresee costs more than the comparison does.
template <int N>
constexpr bool IdsLess(const int (&a)[N], const int (&b)[N]) {
  constexpr int last = (N - 1) / 2 * 2;
  for (int i = 0; i < last; i += 2) {
    const std::uint64_t pair_a = IdPair(a[i], a[i + 1]);
    const std::uint64_t pair_b = IdPair(b[i], b[i + 1]);
    if (pair_a != pair_b) return pair_a < pair_b;
  }
  if constexpr (N % 2 != 0) {
    return a[last] < b[last];
  } else {
    return IdPair(a[last], a[N - 1]) < IdPair(b[last], b[N - 1]);
  }
}

template <int N>
constexpr bool IdsEqual(const int (&a)[N], const int (&b)[N]) {
  return std::equal(a, a + N, b);
}

// A std::tuple of references to the ids; `Int` is int or const int.
template <class Int, int N>
constexpr auto TieIds(Int (&id)[N]) {
  return [&id]<int... I>(std::integer_sequence<int, I...>) { return std::tie(id[I]...); }
  (std::make_integer_sequence<int, N>());
}

}  // namespace kestrin::keys

namespace kestrin {

// A key of N ids.
template <int N>
class KESTRIN_API QIdxInts : public QValueBase {
 public:
  int id[N];

  // -1 in all.
  QIdxInts() { std::fill_n(id, N, -1); }

  // One value for each id; a single int is a QIdx1 wherever one is asked for. What an int can't
  // hold in full, such as an unsigned, must be converted first.
  template <keys::FitsInt... Ints>
  requires(sizeof...(Ints) == N) QIdxInts(Ints... ids) : id{ids...} {}

  int operator[](int i) const { return id[i]; }
  int& operator[](int i) { return id[i]; }

  auto tuple() { return kestrin::keys::TieIds(id); }
  auto tuple() const { return kestrin::keys::TieIds(id); }

  friend bool operator<(const QIdxInts& a, const QIdxInts& b) {
    return kestrin::keys::IdsLess(a.id, b.id);
  }
  friend bool operator==(const QIdxInts& a, const QIdxInts& b) {
    return kestrin::keys::IdsEqual(a.id, b.id);
  }
};

}  // namespace kestrin

using QIdx1 = kestrin::QIdxInts<1>;
using QIdx2 = kestrin::QIdxInts<2>;
using QIdx3 = kestrin::QIdxInts<3>;
using QIdx4 = kestrin::QIdxInts<4>;
using QIdx5 = kestrin::QIdxInts<5>;
using QIdx6 = kestrin::QIdxInts<6>;

// The key of a measured quantity. A CClavis holds the same numbers in the same order: CClavis(k.id)
// leads there, QClavis(c) back.
class KESTRIN_API QClavis : public QIdx6 {
 public:
  using QIdx6::QIdx6;
  QClavis() = default;
  explicit QClavis(const CClavis& key) { std::copy_n(key.Base().id, Clavis::element_count, id); }
};

// The six ids in decimal with one blank between each two, as in "4 7 -1 -1 -1 -1", whatever locale
// and number format the stream has; its width and fill apply to the text as a whole.
KESTRIN_API std::wostream& operator<<(std::wostream& out, const QClavis& key);

// A key with test type and test bench in front of it.
class KESTRIN_API QIdx8 : public QValueBase {
 public:
  int Type = -1;
  int Bench = -1;
  int id[Clavis::element_count] = {-1, -1, -1, -1, -1, -1};  // the order of Clavis::qOrder

  // -1 in all.
  QIdx8() = default;
  QIdx8(int type, int bench, const QIdx6& key) : Type(type), Bench(bench) { SetIds(key.id); }
  QIdx8(int type, int bench, const CClavis& key) : Type(type), Bench(bench) {
    SetIds(key.Base().id);
  }
  QIdx8(int type, int bench, int mode, int instrument, int channel, int location, int parameter,
        int sensor)
      : Type(type), Bench(bench), id{mode, instrument, channel, location, parameter, sensor} {}

  auto tuple() { return std::tuple_cat(std::tie(Type, Bench), kestrin::keys::TieIds(id)); }
  auto tuple() const { return std::tuple_cat(std::tie(Type, Bench), kestrin::keys::TieIds(id)); }

  friend bool operator<(const QIdx8& a, const QIdx8& b) {
    if (a.Type != b.Type) return a.Type < b.Type;
    if (a.Bench != b.Bench) return a.Bench < b.Bench;
    return kestrin::keys::IdsLess(a.id, b.id);
  }
  friend bool operator==(const QIdx8& a, const QIdx8& b) {
    return a.Type == b.Type && a.Bench == b.Bench && kestrin::keys::IdsEqual(a.id, b.id);
  }

 private:
  void SetIds(const int* ids) { std::copy_n(ids, Clavis::element_count, id); }
};

// An id and a number. Lines of text may hold "nan", and a sorted table must survive that: NaN sorts
// behind every number, and all NaNs are one key.
class KESTRIN_API QIdxIF : public QValueBase {
 public:
  int id = -1;
  float value = 0.0F;

  QIdxIF() = default;
  QIdxIF(int new_id, float new_value) : id(new_id), value(new_value) {}

  auto tuple() { return std::tie(id, value); }
  auto tuple() const { return std::tie(id, value); }

  friend bool operator<(const QIdxIF& a, const QIdxIF& b) {
    if (a.id != b.id) return a.id < b.id;
    return a.value < b.value || (std::isnan(b.value) && !std::isnan(a.value));
  }
  friend bool operator==(const QIdxIF& a, const QIdxIF& b) { return !(a < b) && !(b < a); }
};

// A text of at most 199 code units, ordered code unit by code unit: "ABC" in front of "abc".
class KESTRIN_API QIdxName : public QValueBase {
 public:
  static constexpr int width = 200;  // code units, the closing zero included

  wchar_t text[width] = {};

  QIdxName() = default;
  // What is behind the first 199 code units, or behind a zero, is left out.
  explicit QIdxName(std::wstring_view name) { name.substr(0, width - 1).copy(text, width - 1); }

  auto tuple() { return std::tuple<wchar_t*>(text); }
  auto tuple() const { return std::tuple<const wchar_t*>(text); }

  friend bool operator<(const QIdxName& a, const QIdxName& b) { return Compare(a, b) < 0; }
  friend bool operator==(const QIdxName& a, const QIdxName& b) { return Compare(a, b) == 0; }

 private:
  static int Compare(const QIdxName& a, const QIdxName& b) {
    return std::wcsncmp(a.text, b.text, width);
  }
};
