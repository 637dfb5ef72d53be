// The containers in which the rows of tables live.
//
//   CUniqueVectorMap   sorted vector of rows, unique keys; with tl_allocator it is CDbUniqueMap
//   CUniqueTreeMap     std::map whose nodes come from a pool, for rows that are added one by one
//   CDbMultiMap        std::multimap: keys repeat, rows of one key keep the order of their lines
//
// Rows are in the order of Less on the key. In all unique maps the first row of a key stays: a
// later insertion of the same key is refused and hands out the position of the row that is there.
// All operations of the standard container below are there; those of the vector take the order as
// it is, and whoever uses them answers for it.
//
// A container that would outgrow its max_size() throws std::length_error with "vector<T> too long"
// or "map/set<T> too long", however it was to grow. What fits before the limit stays.
//
// Containers are not synchronised. Positions and pointers into a CUniqueVectorMap are good until
// the next insertion.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <map>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include "tables/Allocators.h"

template <class K, class V, class Less = std::less<K>,
          class Alloc = std::allocator<std::pair<K, V>>>
class CUniqueVectorMap : public std::vector<std::pair<K, V>, Alloc> {
  using Rows = std::vector<std::pair<K, V>, Alloc>;

 public:
  using key_type = K;
  using mapped_type = V;
  using key_compare = Less;
  using typename Rows::const_iterator;
  using typename Rows::iterator;
  using typename Rows::size_type;
  using typename Rows::value_type;

  using Rows::Rows;

  // The first row whose key is not less than the given one.
  iterator lower_bound(const K& key) {
    return std::lower_bound(this->begin(), this->end(), key, RowLess());
  }
  const_iterator lower_bound(const K& key) const {
    return std::lower_bound(this->begin(), this->end(), key, RowLess());
  }

  // The row with that key, or end().
  iterator find(const K& key) { return IfKey(lower_bound(key), this->end(), key); }
  const_iterator find(const K& key) const { return IfKey(lower_bound(key), this->end(), key); }

  // The position of the row with the value's key, and whether it was inserted now.
  std::pair<iterator, bool> insert(const value_type& value) {
    const iterator place = lower_bound(value.first);
    if (IfKey(place, this->end(), value.first) != this->end()) return {place, false};
    return {emplace(place, value), true};
  }

  // The same; without a search if the value belongs directly in front of the hint. The hint of an
  // empty map isn't looked at.
  std::pair<iterator, bool> insert(const_iterator hint, const value_type& value) {
    if (this->empty()) return {emplace(this->end(), value), true};
    const bool below_hint = hint == this->cend() || Less()(value.first, hint->first);
    const bool above_last = hint == this->cbegin() || Less()((hint - 1)->first, value.first);
    if (!below_hint || !above_last) return insert(value);
    return {emplace(hint, value), true};
  }

  // Those of the vector.
  iterator emplace(const_iterator place, auto&&... row) {
    return Grow([&] { return Rows::emplace(place, std::forward<decltype(row)>(row)...); });
  }
  value_type& emplace_back(auto&&... row) {
    return Grow(
        [&]() -> value_type& { return Rows::emplace_back(std::forward<decltype(row)>(row)...); });
  }
  void push_back(const value_type& row) { emplace_back(row); }
  void push_back(value_type&& row) { emplace_back(std::move(row)); }
  iterator insert(const_iterator place, size_type count, const value_type& row) {
    return Grow([&] { return Rows::insert(place, count, row); });
  }
  template <std::input_iterator Iterator>
  iterator insert(const_iterator place, Iterator first, Iterator last) {
    return Grow([&] { return Rows::insert(place, first, last); });
  }
  iterator insert(const_iterator place, std::initializer_list<value_type> rows) {
    return insert(place, rows.begin(), rows.end());
  }
  void assign(size_type count, const value_type& row) {
    Grow([&] { Rows::assign(count, row); });
  }
  template <std::input_iterator Iterator>
  void assign(Iterator first, Iterator last) {
    Grow([&] { Rows::assign(first, last); });
  }
  void assign(std::initializer_list<value_type> rows) { assign(rows.begin(), rows.end()); }
  CUniqueVectorMap& operator=(std::initializer_list<value_type> rows) {
    assign(rows);
    return *this;
  }
  void resize(size_type count) {
    Grow([&] { Rows::resize(count); });
  }
  void resize(size_type count, const value_type& row) {
    Grow([&] { Rows::resize(count, row); });
  }
  void reserve(size_type count) {
    Grow([&] { Rows::reserve(count); });
  }

 private:
  struct RowLess {
    bool operator()(const value_type& row, const K& key) const { return Less()(row.first, key); }
  };

  template <class Iterator>
  static Iterator IfKey(Iterator place, Iterator end, const K& key) {
    return place == end || Less()(key, place->first) ? end : place;
  }

  // A vector tells in words of its own that it can't grow any more.
  template <class Growth>
  static decltype(auto) Grow(Growth growth) {
    try {
      return growth();
    } catch (const std::length_error&) {
      throw std::length_error("vector<T> too long");
    }
  }
};

template <class K, class V, class Less = std::less<K>>
using CDbUniqueMap = CUniqueVectorMap<K, V, Less, tl_allocator<std::pair<K, V>>>;

namespace kestrin {

// The standard map, with an allocator that may be given for pairs whose key isn't constant.
template <class K, class V, class Less, class Alloc>
using StdMap =
    std::map<K, V, Less,
             typename std::allocator_traits<Alloc>::template rebind_alloc<std::pair<const K, V>>>;

}  // namespace kestrin

template <class K, class V, class Less = std::less<K>,
          class Alloc = stdext::allocators::allocator_unbounded<std::pair<K, V>>>
class CUniqueTreeMap : public kestrin::StdMap<K, V, Less, Alloc> {
  using Tree = kestrin::StdMap<K, V, Less, Alloc>;

 public:
  using typename Tree::const_iterator;
  using typename Tree::iterator;
  using typename Tree::node_type;
  using typename Tree::value_type;

  using Tree::Tree;

  // Replaces the value of the key's row, or inserts the row. Shows the row, never end().
  iterator Assign(const K& key, const V& value) { return insert_or_assign(key, value).first; }

  // Those of the map.
  auto emplace(auto&&... row) { return Within(Tree::emplace(std::forward<decltype(row)>(row)...)); }
  auto emplace_hint(const_iterator at, auto&&... row) {
    return Within(Tree::emplace_hint(at, std::forward<decltype(row)>(row)...));
  }
  auto insert(const value_type& row) { return Within(Tree::insert(row)); }
  auto insert(value_type&& row) { return Within(Tree::insert(std::move(row))); }
  auto insert(const_iterator at, const value_type& row) { return Within(Tree::insert(at, row)); }
  auto insert(const_iterator at, value_type&& row) {
    return Within(Tree::insert(at, std::move(row)));
  }
  template <std::input_iterator Iterator>
  void insert(Iterator first, Iterator last) {
    for (; first != last; ++first) emplace_hint(this->end(), *first);
  }
  void insert(std::initializer_list<value_type> rows) { insert(rows.begin(), rows.end()); }
  CUniqueTreeMap& operator=(std::initializer_list<value_type> rows) {
    this->clear();
    insert(rows);
    return *this;
  }
  auto insert(node_type&& node) {
    if (!node.empty()) RequireRoomFor(node.key());
    return Tree::insert(std::move(node));
  }
  auto insert(const_iterator at, node_type&& node) {
    if (!node.empty()) RequireRoomFor(node.key());
    return Tree::insert(at, std::move(node));
  }
  auto try_emplace(const K& key, auto&&... value) {
    return Within(Tree::try_emplace(key, std::forward<decltype(value)>(value)...));
  }
  auto try_emplace(K&& key, auto&&... value) {
    return Within(Tree::try_emplace(std::move(key), std::forward<decltype(value)>(value)...));
  }
  auto try_emplace(const_iterator at, K key, auto&&... value) {
    return Within(Tree::try_emplace(at, std::move(key), std::forward<decltype(value)>(value)...));
  }
  template <class Value>
  auto insert_or_assign(const K& key, Value&& value) {
    return Within(Tree::insert_or_assign(key, std::forward<Value>(value)));
  }
  template <class Value>
  auto insert_or_assign(K&& key, Value&& value) {
    return Within(Tree::insert_or_assign(std::move(key), std::forward<Value>(value)));
  }
  template <class Value>
  auto insert_or_assign(const_iterator at, K key, Value&& value) {
    return Within(Tree::insert_or_assign(at, std::move(key), std::forward<Value>(value)));
  }
  V& operator[](const K& key) { return try_emplace(key).first->second; }
  V& operator[](K&& key) { return try_emplace(std::move(key)).first->second; }
  template <class Source>
  void merge(Source&& source) {
    for (auto row = source.begin(); row != source.end();) {
      const auto next = std::next(row);
      RequireRoomFor(row->first);
      if (!this->contains(row->first)) Tree::insert(source.extract(row));
      row = next;
    }
  }

 private:
  static constexpr const char* too_long = "map/set<T> too long";

  // The standard map grows beyond its limit: the row that did so goes again.
  template <class Result>
  Result Within(Result result) {
    if (this->size() <= this->max_size()) return result;
    if constexpr (requires { result.second; }) {
      this->erase(result.first);
    } else {
      this->erase(result);
    }
    throw std::length_error(too_long);
  }

  // Asked before a node is taken, which would be lost.
  void RequireRoomFor(const K& key) const {
    if (this->size() >= this->max_size() && !this->contains(key)) throw std::length_error(too_long);
  }
};

// Its limit lies beyond all memory, since the allocator is the standard one.
template <class K, class V, class Less = std::less<K>>
class CDbMultiMap : public std::multimap<K, V, Less> {
 public:
  using std::multimap<K, V, Less>::multimap;
};
