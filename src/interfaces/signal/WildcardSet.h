// Sets in which -1 stands for all values: the one rule behind every set of a key selection.
//
// A member is either one id or a pair of ids. A member is open if it is -1 or a pair with a -1 in
// it; an open member stands for every value that it covers:
//
//   -1         every id
//   (7, -1)    every pair that begins with 7
//   (-1, 3)    every pair that ends in 3
//   (-1, -1)   every pair
//
// A set matches what one of its members covers. So a set that holds the all value, -1 or (-1, -1),
// matches everything, whatever stands beside it, and an empty set matches nothing. A value that is
// asked for may be open itself: it is matched by members that cover all of it.
//
// Plain functions on standard sets, without state.
#pragma once

#include <algorithm>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace kestrin::wildcard {

using Pair = std::pair<int, int>;

inline constexpr int any = -1;

constexpr bool IsOpen(int value) { return value == any; }
constexpr bool IsOpen(const Pair& value) { return IsOpen(value.first) || IsOpen(value.second); }

template <class T>
inline constexpr T all_value = any;
template <>
inline constexpr Pair all_value<Pair> = {any, any};

// Does a member stand for a value?
constexpr bool Covers(int member, int value) { return member == any || member == value; }
constexpr bool Covers(const Pair& member, const Pair& value) {
  return Covers(member.first, value.first) && Covers(member.second, value.second);
}

// Does a set match a value?
inline bool Covers(const std::set<int>& members, int value) {
  return members.contains(any) || members.contains(value);
}
inline bool Covers(const std::set<Pair>& members, const Pair& value) {
  return members.contains(value) || members.contains({value.first, any}) ||
         members.contains({any, value.second}) || members.contains({any, any});
}

template <class T>
bool HoldsAll(const std::set<T>& members) {
  return members.contains(all_value<T>);
}

// A closed value is added. An open one takes the place of the members that it covers, unless the
// set matches it already; without `all_if_open` it adds nothing.
template <class T>
void Insert(std::set<T>& members, const T& value, bool all_if_open) {
  if (!IsOpen(value)) {
    members.insert(value);
  } else if (all_if_open && !Covers(members, value)) {
    std::erase_if(members, [&value](const T& member) { return Covers(value, member); });
    members.insert(value);
  }
}

// What two open members have in common where neither covers the other: (7, -1) and (-1, 3) meet in
// (7, 3), ids don't meet at all.
constexpr std::optional<int> Crossing(int, int) { return std::nullopt; }
constexpr std::optional<Pair> Crossing(const Pair& a, const Pair& b) {
  if (a.first == any && b.second == any) return Pair{b.first, a.second};
  if (b.first == any && a.second == any) return Pair{a.first, b.second};
  return std::nullopt;
}

// Leaves what both sets match. A set is left as it stands if the other one holds the all value, and
// is copied from the other one if only it holds the all value itself.
template <class T>
void Intersect(std::set<T>& members, const std::set<T>& other) {
  if (HoldsAll(other)) return;
  if (HoldsAll(members)) {
    members = other;
    return;
  }
  std::set<T> common;
  std::vector<T> open;
  for (const T& member : members) {
    if (Covers(other, member)) common.insert(member);
    if (IsOpen(member)) open.push_back(member);
  }
  for (const T& member : other) {
    if (Covers(members, member)) common.insert(member);
    for (const T& mine : open) {
      if (const auto both = Crossing(mine, member)) common.insert(*both);
    }
  }
  members = std::move(common);
}

// Adds all members of the other set; the all value is a member like others.
template <class T>
void Unite(std::set<T>& members, const std::set<T>& other) {
  if (&members != &other) members.insert(other.begin(), other.end());
}

// True when a selection leaves out nothing: it matches each member of `all`, which isn't empty, or
// holds the all value.
template <class T>
bool IsComplete(const std::set<T>& selected, const std::set<T>& all) {
  if (HoldsAll(selected)) return true;
  return !all.empty() && std::all_of(all.begin(), all.end(), [&selected](const T& member) {
    return Covers(selected, member);
  });
}

}  // namespace kestrin::wildcard
