// A key set: a selection of measured quantities, as a set of ids for each element of the key.
//
// A selection is the product of its element sets, with two exceptions: an object is selected with
// its channel, an instrument with its parameter, as pairs. So there are eight sets, and a key lies
// inside the selection when all eight match:
//
//   element sets   Mode  Instrument  Channel  Location  Parameter  Sensor
//   pair sets      (Location, Channel)  (Instrument, Parameter)
//
// In every set -1 stands for all values. In a pair each half may be -1: (7, -1) selects instrument
// 7 with all of its parameters, (-1, -1) all pairs.
//
// Coupling. Every half of a pair is matched by the set of its element, -1 by -1 alone. All
// operations keep it so, and a host that changes a set by reference answers for it. From this
// follows that a valid selection selects at least one key. The operations, with their wildcards:
//
// - Insertion adds the ids of a key to the element sets and its two pairs to the pair sets. An open
//   element adds nothing, nor does a pair with an open half. With `all_if_open` an open value
//   instead widens its set: it takes the place of all that it covers. In an element set that is
//   everything, in a pair set (7, -1) takes the place of the pairs that begin with 7. After an
//   insertion with the flag the key is inside, and so is each key that an open element of it
//   stands for; without the flag this holds for keys without open elements.
// - Removal takes each id of a key out of its element set and its two pairs out of the pair sets,
//   by value, -1 too; then the pairs go that have lost a half. What a -1 beside a removed id
//   matches stays selected: removing 5 from {-1, 5} changes nothing that a test shows. A removed
//   key without open elements is still inside only if every element set holds -1.
// - Intersection is exact: a key is inside it if and only if it is inside both selections.
// - Union adds all members, set by set. A key that is inside one selection is inside the union. As
//   a union of products is no product, the union may hold more: keys that take one element from
//   here and another from there.
// - The completeness check against the selection of all that exists turns each element set that
//   leaves nothing out into {-1}. A pair set becomes {(-1, -1)} if it leaves no pair out and the
//   sets of both its elements hold -1 by then. Where nothing is selected or nothing exists there is
//   nothing to complete, and the set stays. For keys inside `all` the check changes nothing; of
//   keys outside it, the selection now covers what is still to come.
//
// A key that is asked for may hold -1: only an all value matches that.
//
// A plain value without locks; one thread at a time may change it.
#pragma once

#include <array>
#include <set>
#include <utility>

#include "interfaces/Export.h"
#include "interfaces/signal/Clavis.h"

class KESTRIN_API CClavisSet {
 public:
  // Nothing selected.
  CClavisSet() = default;

  void clear();

  // The set of an element by its Clavis::qOrder value. Another number throws std::out_of_range.
  std::set<int>& ElementSet(unsigned int element) { return elements_.at(element); }
  const std::set<int>& ElementSet(unsigned int element) const { return elements_.at(element); }

  // The pairs of object and channel, and of instrument and parameter, in this order of the halves.
  std::set<std::pair<int, int>>& LocaChanSet() { return loca_chan_; }
  const std::set<std::pair<int, int>>& LocaChanSet() const { return loca_chan_; }
  std::set<std::pair<int, int>>& InstrParamSet() { return instr_param_; }
  const std::set<std::pair<int, int>>& InstrParamSet() const { return instr_param_; }

  // `ids`, here and below, shows six ints in the order of Clavis::qOrder.
  CClavisSet& insert(const int* ids, bool all_if_open);
  CClavisSet& operator+=(const int* ids) { return insert(ids, false); }
  CClavisSet& operator+=(const CClavis& key) { return insert(key.Base().id, false); }

  // The part of an insertion that concerns one pair: both element sets and the pair set.
  CClavisSet& insertLocaChan(int location, int channel, bool all_if_open);
  CClavisSet& insertInstrPar(int instrument, int parameter, bool all_if_open);

  CClavisSet& operator-=(const int* ids);
  CClavisSet& operator|=(const CClavisSet& other);
  CClavisSet& operator&=(const CClavisSet& other);

  // True when the key lies inside the selection.
  bool operator&&(const int* ids) const;
  bool operator&&(const CClavis& key) const { return *this && key.Base().id; }

  // True when the pair set matches the pair.
  bool containsLocaChan(int location, int channel) const;
  bool containsInstrPar(int instrument, int parameter) const;

  // True when none of the eight sets is empty.
  bool valid() const;

  void completeness_check(const CClavisSet& all);

  // Equal when all sets have the same members; {-1, 5} and {-1} match the same and aren't equal.
  friend bool operator==(const CClavisSet&, const CClavisSet&) = default;

 protected:
  // True when `selected` matches every id of `all`, which isn't empty, or holds -1; it is {-1}
  // then. Otherwise it stays as it is.
  static bool CheckForCompleteness(std::set<int>& selected, const std::set<int>& all);

 private:
  std::array<std::set<int>, Clavis::element_count> elements_;
  std::set<std::pair<int, int>> loca_chan_;
  std::set<std::pair<int, int>> instr_param_;
};
