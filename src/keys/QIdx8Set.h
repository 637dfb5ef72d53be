// A key set that spans test types and test benches.
//
// It puts two sets in front of those of CClavisSet, the selected test types and the selected test
// benches. They are plain factors of the selection, coupled with nothing, and follow the same rule
// for -1: it stands for all values, and other members beside it change nothing.
//
// What the operations do, and what -1 excepts from the algebra, is told in ClavisSet.h and holds
// here for ten sets instead of eight. Keys without type and bench, of class CClavis, are tested and
// added on the six elements alone.
//
// A plain value without locks; one thread at a time may change it.
#pragma once

#include <set>
#include <utility>

#include "interfaces/Export.h"
#include "interfaces/signal/ClavisSet.h"
#include "keys/IndexRecords.h"

class KESTRIN_API CQIdx8Set : public CClavisSet {
 public:
  // Goes on numbering behind Clavis::qOrder.
  enum ElementNumber : unsigned int { Type = Clavis::element_count, Bench };

  // Nothing selected.
  CQIdx8Set() = default;

  void clear();

  // The set of an element 0 to 5 of the key, Type or Bench. Another number throws
  // std::out_of_range.
  std::set<int>& ElementSet(unsigned int element);
  const std::set<int>& ElementSet(unsigned int element) const;

  std::set<int>& TypeSet() { return types_; }
  const std::set<int>& TypeSet() const { return types_; }
  std::set<int>& BenchSet() { return benches_; }
  const std::set<int>& BenchSet() const { return benches_; }

  // With `all_if_open` an element of -1 widens its set to all, without it adds nothing.
  CQIdx8Set& insert(const QIdx8& key, bool all_if_open);
  CQIdx8Set& insertLocaChan(int location, int channel, bool all_if_open);
  CQIdx8Set& insertInstrPar(int instrument, int parameter, bool all_if_open);
  CQIdx8Set& insertTypeBench(int type, int bench, bool all_if_open);

  CQIdx8Set& operator+=(const QIdx8& key) { return insert(key, false); }
  CQIdx8Set& operator+=(const CClavis& key);  // type and bench sets stay
  CQIdx8Set& operator-=(const QIdx8& key);
  CQIdx8Set& operator|=(const CQIdx8Set& other);
  CQIdx8Set& operator&=(const CQIdx8Set& other);

  // True when the key lies inside the selection; for a CClavis, whatever type and bench sets hold.
  bool operator&&(const QIdx8& key) const;
  bool operator&&(const CClavis& key) const { return CClavisSet::operator&&(key); }
  bool contains(const QIdx8& key) const { return *this && key; }
  bool contains(const CClavis& key) const { return *this && key; }

  // True when the set of one element matches the value; the pair sets play no part. Element numbers
  // as for ElementSet.
  bool contains(unsigned int element, int value) const;

  // True when none of the ten sets is empty.
  bool valid() const;

  void completeness_check(const CQIdx8Set& all);

  friend bool operator==(const CQIdx8Set&, const CQIdx8Set&) = default;

 private:
  std::set<int> types_;
  std::set<int> benches_;
};
