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
  wildcard::Insert(elements[Clavis::Mode], ids[Clavis::Mode], all_if_open);
  wildcard::Insert(elements[Clavis::Sensor], ids[Clavis::Sensor], all_if_open);
  insertLocaChan(ids[Clavis::Location], ids[Clavis::Channel], all_if_open);
  return insertInstrPar(ids[Clavis::Instrument], ids[Clavis::Parameter], all_if_open);
}

CClavisSet& CClavisSet::insertLocaChan(int location, int channel, bool all_if_open) {
  wildcard::Insert(elements[Clavis::Location], location, all_if_open);
  wildcard::Insert(elements[Clavis::Channel], channel, all_if_open);
  wildcard::Insert(loca_chan, {location, channel}, all_if_open);
  return *this;
}

CClavisSet& CClavisSet::insertInstrPar(int instrument, int parameter, bool all_if_open) {
  wildcard::Insert(elements[Clavis::Instrument], instrument, all_if_open);
  wildcard::Insert(elements[Clavis::Parameter], parameter, all_if_open);
  wildcard::Insert(instr_param, {instrument, parameter}, all_if_open);
  return *this;
}

CClavisSet& CClavisSet::operator-=(const int* ids) {
  std::array<bool, Clavis::element_count> removed{};
  for (unsigned int i = 0; i < elements.size(); ++i) removed[i] = elements[i].erase(ids[i]) != 0;
  loca_chan.erase(LocaChan(ids));
  instr_param.erase(InstrParam(ids));
  if (removed[Clavis::Location] || removed[Clavis::Channel]) {
    RemoveUncoupled(loca_chan, elements[Clavis::Location], elements[Clavis::Channel]);
  }
  if (removed[Clavis::Instrument] || removed[Clavis::Parameter]) {
    RemoveUncoupled(instr_param, elements[Clavis::Instrument], elements[Clavis::Parameter]);
  }
  return *this;
}

CClavisSet& CClavisSet::operator|=(const CClavisSet& other) {
  for (unsigned int i = 0; i < elements.size(); ++i) {
    wildcard::Unite(elements[i], other.elements[i]);
  }
  wildcard::Unite(loca_chan, other.loca_chan);
  wildcard::Unite(instr_param, other.instr_param);
  return *this;
}

CClavisSet& CClavisSet::operator&=(const CClavisSet& other) {
  for (unsigned int i = 0; i < elements.size(); ++i) {
    wildcard::Intersect(elements[i], other.elements[i]);
  }
  wildcard::Intersect(loca_chan, other.loca_chan);
  wildcard::Intersect(instr_param, other.instr_param);
  return *this;
}

bool CClavisSet::operator&&(const int* ids) const {
  for (unsigned int i = 0; i < elements.size(); ++i) {
    if (!wildcard::Covers(elements[i], ids[i])) return false;
  }
  return wildcard::Covers(loca_chan, LocaChan(ids)) &&
         wildcard::Covers(instr_param, InstrParam(ids));
}

bool CClavisSet::containsLocaChan(int location, int channel) const {
  return wildcard::Covers(loca_chan, {location, channel});
}

bool CClavisSet::containsInstrPar(int instrument, int parameter) const {
  return wildcard::Covers(instr_param, {instrument, parameter});
}

bool CClavisSet::valid() const {
  return !loca_chan.empty() && !instr_param.empty() &&
         std::none_of(elements.begin(), elements.end(),
                      [](const std::set<int>& ids) { return ids.empty(); });
}

void CClavisSet::completeness_check(const CClavisSet& all) {
  const ElementSets& every = all.elements;
  for (unsigned int i = 0; i < elements.size(); ++i) CheckForCompleteness(elements[i], every[i]);
  WidenIfComplete(loca_chan, all.loca_chan, elements[Clavis::Location], elements[Clavis::Channel]);
  WidenIfComplete(instr_param, all.instr_param, elements[Clavis::Instrument],
                  elements[Clavis::Parameter]);
}

bool CClavisSet::CheckForCompleteness(std::set<int>& selected, const std::set<int>& all) {
  if (!wildcard::IsComplete(selected, all)) return false;
  selected = {wildcard::any};
  return true;
}
