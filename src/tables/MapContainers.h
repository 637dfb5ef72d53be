// The containers in which the rows of tables live.
//
//   CUniqueVectorMap   sorted vector of rows, unique keys; with tl_allocator it is CDbUniqueMap
//   CUniqueTreeMap     std::map whose nodes come from a pool, for rows that are added one by one
//   CDbMultiMap        std::multimap: keys repeat, rows of one key keep the order of their lines
//
// Rows are in the order of Less on the key. In all unique maps the first row of a key stays: a
// later insertion of the same key is refused and hands out the position of the row that is there.
// A container that would outgrow its limit throws std::length_error.
//
// Containers are not synchronised. Positions and pointers into a CUniqueVectorMap are good until
// the next insertion.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
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
  using value_type = typename Rows::value_type;
  using iterator = typename Rows::iterator;
  using const_iterator = typename Rows::const_iterator;

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
    return {InsertAt(place, value), true};
  }

  // The same; without a search if the value belongs directly in front of the hint.
  std::pair<iterator, bool> insert(const_iterator hint, const value_type& value) {
    const bool below_hint = hint == this->cend() || Less()(value.first, hint->first);
    const bool above_last = hint == this->cbegin() || Less()((hint - 1)->first, value.first);
    if (!below_hint || !above_last) return insert(value);
    return {InsertAt(hint, value), true};
  }

  void reserve(std::size_t count) {
    if (count > this->max_size()) throw std::length_error("vector<T> too long");
    Rows::reserve(count);
  }

 private:
  struct RowLess {
    bool operator()(const value_type& row, const K& key) const { return Less()(row.first, key); }
  };

  template <class Iterator>
  static Iterator IfKey(Iterator place, Iterator end, const K& key) {
    return place == end || Less()(key, place->first) ? end : place;
  }

  iterator InsertAt(const_iterator place, const value_type& value) {
    if (this->size() >= this->max_size()) throw std::length_error("vector<T> too long");
    return Rows::insert(place, value);
  }
};

template <class K, class V, class Less = std::less<K>>
using CDbUniqueMap = CUniqueVectorMap<K, V, Less, tl_allocator<std::pair<K, V>>>;

template <class K, class V, class Less = std::less<K>,
          class Alloc = stdext::allocators::allocator_unbounded<std::pair<K, V>>>
class CUniqueTreeMap
    : public std::map<
          K, V, Less,
          typename std::allocator_traits<Alloc>::template rebind_alloc<std::pair<const K, V>>> {
  using Tree =
      std::map<K, V, Less,
               typename std::allocator_traits<Alloc>::template rebind_alloc<std::pair<const K, V>>>;

 public:
  using iterator = typename Tree::iterator;
  using const_iterator = typename Tree::const_iterator;
  using value_type = typename Tree::value_type;

  using Tree::Tree;

  std::pair<iterator, bool> insert(const value_type& value) {
    CheckRoom(value.first);
    return Tree::insert(value);
  }
  iterator insert(const_iterator hint, const value_type& value) {
    CheckRoom(value.first);
    return Tree::insert(hint, value);
  }

  // Replaces the value of the key's row, or inserts the row. Shows the row, never end().
  iterator Assign(const K& key, const V& value) {
    const iterator place = this->lower_bound(key);
    if (place == this->end() || this->key_comp()(key, place->first)) {
      return insert(place, value_type(key, value));
    }
    place->second = value;
    return place;
  }

 private:
  void CheckRoom(const K& key) const {
    if (this->size() >= this->max_size() && !this->contains(key)) {
      throw std::length_error("map/set<T> too long");
    }
  }
};

template <class K, class V, class Less = std::less<K>>
class CDbMultiMap : public std::multimap<K, V, Less> {
  using Tree = std::multimap<K, V, Less>;

 public:
  using Tree::Tree;

  // Behind the rows of equal key; without a search if the hint is the end and no key is greater.
  typename Tree::iterator insert(const typename Tree::value_type& value) {
    return insert(this->end(), value);
  }
  typename Tree::iterator insert(typename Tree::const_iterator hint,
                                 const typename Tree::value_type& value) {
    if (this->size() >= this->max_size()) throw std::length_error("map/set<T> too long");
    return Tree::insert(hint, value);
  }
};
