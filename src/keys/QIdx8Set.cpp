#include "keys/QIdx8Set.h"

#include "interfaces/signal/WildcardSet.h"

using namespace kestrin;

void CQIdx8Set::clear() { *this = CQIdx8Set(); }

std::set<int>& CQIdx8Set::ElementSet(unsigned int element) {
  if (element == Type) return types;
  if (element == Bench) return benches;
  return CClavisSet::ElementSet(element);
}

const std::set<int>& CQIdx8Set::ElementSet(unsigned int element) const {
  if (element == Type) return types;
  if (element == Bench) return benches;
  return CClavisSet::ElementSet(element);
}

CQIdx8Set& CQIdx8Set::insert(const QIdx8& key, bool all_if_open) {
  CClavisSet::insert(key.id, all_if_open);
  return insertTypeBench(key.Type, key.Bench, all_if_open);
}

CQIdx8Set& CQIdx8Set::insertLocaChan(int location, int channel, bool all_if_open) {
  CClavisSet::insertLocaChan(location, channel, all_if_open);
  return *this;
}

CQIdx8Set& CQIdx8Set::insertInstrPar(int instrument, int parameter, bool all_if_open) {
  CClavisSet::insertInstrPar(instrument, parameter, all_if_open);
  return *this;
}

CQIdx8Set& CQIdx8Set::insertTypeBench(int type, int bench, bool all_if_open) {
  wildcard::Insert(types, type, all_if_open);
  wildcard::Insert(benches, bench, all_if_open);
  return *this;
}

CQIdx8Set& CQIdx8Set::operator+=(const CClavis& key) {
  CClavisSet::operator+=(key);
  return *this;
}

CQIdx8Set& CQIdx8Set::operator-=(const QIdx8& key) {
  CClavisSet::operator-=(key.id);
  types.erase(key.Type);
  benches.erase(key.Bench);
  return *this;
}

CQIdx8Set& CQIdx8Set::operator|=(const CQIdx8Set& other) {
  CClavisSet::operator|=(other);
  wildcard::Unite(types, other.types);
  wildcard::Unite(benches, other.benches);
  return *this;
}

CQIdx8Set& CQIdx8Set::operator&=(const CQIdx8Set& other) {
  CClavisSet::operator&=(other);
  wildcard::Intersect(types, other.types);
  wildcard::Intersect(benches, other.benches);
  return *this;
}

bool CQIdx8Set::operator&&(const QIdx8& key) const {
  return CClavisSet::operator&&(key.id) && wildcard::Covers(types, key.Type) &&
         wildcard::Covers(benches, key.Bench);
}

bool CQIdx8Set::contains(unsigned int element, int value) const {
  return wildcard::Covers(ElementSet(element), value);
}

bool CQIdx8Set::valid() const { return CClavisSet::valid() && !types.empty() && !benches.empty(); }

void CQIdx8Set::completeness_check(const CQIdx8Set& all) {
  CClavisSet::completeness_check(all);
  CheckForCompleteness(types, all.types);
  CheckForCompleteness(benches, all.benches);
}
