#include "keys/QIdx8Set.h"

#include "interfaces/signal/WildcardSet.h"

using namespace kestrin;

void CQIdx8Set::clear() { *this = CQIdx8Set(); }

std::set<int>& CQIdx8Set::ElementSet(unsigned int element) {
  if (element == Type) return types_;
  if (element == Bench) return benches_;
  return CClavisSet::ElementSet(element);
}

const std::set<int>& CQIdx8Set::ElementSet(unsigned int element) const {
  if (element == Type) return types_;
  if (element == Bench) return benches_;
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
  wildcard::Insert(types_, type, all_if_open);
  wildcard::Insert(benches_, bench, all_if_open);
  return *this;
}

CQIdx8Set& CQIdx8Set::operator+=(const CClavis& key) {
  CClavisSet::operator+=(key);
  return *this;
}

CQIdx8Set& CQIdx8Set::operator-=(const QIdx8& key) {
  CClavisSet::operator-=(key.id);
  types_.erase(key.Type);
  benches_.erase(key.Bench);
  return *this;
}

CQIdx8Set& CQIdx8Set::operator|=(const CQIdx8Set& other) {
  CClavisSet::operator|=(other);
  wildcard::Unite(types_, other.types_);
  wildcard::Unite(benches_, other.benches_);
  return *this;
}

CQIdx8Set& CQIdx8Set::operator&=(const CQIdx8Set& other) {
  CClavisSet::operator&=(other);
  wildcard::Intersect(types_, other.types_);
  wildcard::Intersect(benches_, other.benches_);
  return *this;
}

bool CQIdx8Set::operator&&(const QIdx8& key) const {
  return CClavisSet::operator&&(key.id) && wildcard::Covers(types_, key.Type) &&
         wildcard::Covers(benches_, key.Bench);
}

bool CQIdx8Set::contains(unsigned int element, int value) const {
  return wildcard::Covers(ElementSet(element), value);
}

bool CQIdx8Set::valid() const {
  return CClavisSet::valid() && !types_.empty() && !benches_.empty();
}

void CQIdx8Set::completeness_check(const CQIdx8Set& all) {
  CClavisSet::completeness_check(all);
  CheckForCompleteness(types_, all.types_);
  CheckForCompleteness(benches_, all.benches_);
}
