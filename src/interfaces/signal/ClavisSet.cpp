#include "interfaces/signal/ClavisSet.h"

#include <algorithm>

#include "interfaces/signal/WildcardSet.h"

using namespace kestrin;

namespace {

using ElementSets = std::array<std::set<int>, Clavis::element_count>;
using PairSet = std::set<wildcard::Pair>;

wildcard::Pair LocaChan(const int* ids) { return {ids[Clavis::Location], ids[Clavis::Channel]}; }
wildcard::Pair InstrParam(const int* ids) {
  return {ids[Clavis::Instrument], ids[Clavis::Parameter]};
}

void RemoveUncoupled(PairSet& pairs, const std::set<int>& first, const std::set<int>& second) {
  std::erase_if(pairs, [&](const wildcard::Pair& pair) {
    return !wildcard::Covers(first, pair.first) || !wildcard::Covers(second, pair.second);
  });
}

// The all pair needs -1 in both element sets, or it would outgrow them.
void WidenIfComplete(PairSet& pairs, const PairSet& all, const std::set<int>& first,
                     const std::set<int>& second) {
  if (!wildcard::HoldsAll(first) || !wildcard::HoldsAll(second)) return;
  if (wildcard::IsComplete(pairs, all)) pairs = {wildcard::all_value<wildcard::Pair>};
}

}  // namespace

void CClavisSet::clear() { *this = CClavisSet(); }

CClavisSet& CClavisSet::insert(const int* ids, bool all_if_open) {
  wildcard::Insert(elements_[Clavis::Mode], ids[Clavis::Mode], all_if_open);
  wildcard::Insert(elements_[Clavis::Sensor], ids[Clavis::Sensor], all_if_open);
  insertLocaChan(ids[Clavis::Location], ids[Clavis::Channel], all_if_open);
  return insertInstrPar(ids[Clavis::Instrument], ids[Clavis::Parameter], all_if_open);
}

CClavisSet& CClavisSet::insertLocaChan(int location, int channel, bool all_if_open) {
  wildcard::Insert(elements_[Clavis::Location], location, all_if_open);
  wildcard::Insert(elements_[Clavis::Channel], channel, all_if_open);
  wildcard::Insert(loca_chan_, {location, channel}, all_if_open);
  return *this;
}

CClavisSet& CClavisSet::insertInstrPar(int instrument, int parameter, bool all_if_open) {
  wildcard::Insert(elements_[Clavis::Instrument], instrument, all_if_open);
  wildcard::Insert(elements_[Clavis::Parameter], parameter, all_if_open);
  wildcard::Insert(instr_param_, {instrument, parameter}, all_if_open);
  return *this;
}

CClavisSet& CClavisSet::operator-=(const int* ids) {
  std::array<bool, Clavis::element_count> removed{};
  for (unsigned int i = 0; i < elements_.size(); ++i) removed[i] = elements_[i].erase(ids[i]) != 0;
  loca_chan_.erase(LocaChan(ids));
  instr_param_.erase(InstrParam(ids));
  if (removed[Clavis::Location] || removed[Clavis::Channel]) {
    RemoveUncoupled(loca_chan_, elements_[Clavis::Location], elements_[Clavis::Channel]);
  }
  if (removed[Clavis::Instrument] || removed[Clavis::Parameter]) {
    RemoveUncoupled(instr_param_, elements_[Clavis::Instrument], elements_[Clavis::Parameter]);
  }
  return *this;
}

CClavisSet& CClavisSet::operator|=(const CClavisSet& other) {
  for (unsigned int i = 0; i < elements_.size(); ++i) {
    wildcard::Unite(elements_[i], other.elements_[i]);
  }
  wildcard::Unite(loca_chan_, other.loca_chan_);
  wildcard::Unite(instr_param_, other.instr_param_);
  return *this;
}

CClavisSet& CClavisSet::operator&=(const CClavisSet& other) {
  for (unsigned int i = 0; i < elements_.size(); ++i) {
    wildcard::Intersect(elements_[i], other.elements_[i]);
  }
  wildcard::Intersect(loca_chan_, other.loca_chan_);
  wildcard::Intersect(instr_param_, other.instr_param_);
  return *this;
}

bool CClavisSet::operator&&(const int* ids) const {
  for (unsigned int i = 0; i < elements_.size(); ++i) {
    if (!wildcard::Covers(elements_[i], ids[i])) return false;
  }
  return wildcard::Covers(loca_chan_, LocaChan(ids)) &&
         wildcard::Covers(instr_param_, InstrParam(ids));
}

bool CClavisSet::containsLocaChan(int location, int channel) const {
  return wildcard::Covers(loca_chan_, {location, channel});
}

bool CClavisSet::containsInstrPar(int instrument, int parameter) const {
  return wildcard::Covers(instr_param_, {instrument, parameter});
}

bool CClavisSet::valid() const {
  return !loca_chan_.empty() && !instr_param_.empty() &&
         std::none_of(elements_.begin(), elements_.end(),
                      [](const std::set<int>& ids) { return ids.empty(); });
}

void CClavisSet::completeness_check(const CClavisSet& all) {
  const ElementSets& every = all.elements_;
  for (unsigned int i = 0; i < elements_.size(); ++i) CheckForCompleteness(elements_[i], every[i]);
  WidenIfComplete(loca_chan_, all.loca_chan_, elements_[Clavis::Location],
                  elements_[Clavis::Channel]);
  WidenIfComplete(instr_param_, all.instr_param_, elements_[Clavis::Instrument],
                  elements_[Clavis::Parameter]);
}

bool CClavisSet::CheckForCompleteness(std::set<int>& selected, const std::set<int>& all) {
  if (!wildcard::IsComplete(selected, all)) return false;
  selected = {wildcard::any};
  return true;
}
