// Keys and key sets, and the signal library beneath them.
#include "use.h"

const int ids[6] = {4, 7, 1, 10, 10011, 2};
const CClavis key(ids);

void use_records() {
  const QIdx1 one, mode(4);
  const QIdx5 five(1, 2, 3, 4, 5);
  assert(one < mode && QIdx2() < QIdx2(5, 10) && QIdx3() < QIdx3(1, 2, 3) && QIdx5() < five);
  assert(QIdx4(1, 2, 3, 4) < QIdx4(1, 2, 3, 5) && QIdx6() < QIdx6(1, 2, 3, 4, 5, 6));
  assert(QIdxIF(1, 1.5F) < QIdxIF(1, 2.5F) && QIdxName(L"ABC") < QIdxName(L"abc"));
  QClavis row;
  QVClavisUserNames::Clavis(five, row);
  std::wostringstream out;
  out << row;
  assert(out.str() == L"-1 1 2 4 5 3" && CClavis(&std::get<0>(row.tuple())).Sensor() == 3);
  CClavis open;
  open[Clavis::Mode] = key[Clavis::Mode];
  const SClavis& plain = key.Base();
  use(plain, key.Instrument(), key.Channel(), key.Location(), key.Parameter(), key.InstrParam());
  assert((key & open) && key.Mode() == 4);
}

void use_units() {
  const Clavis::qOrder element = Clavis::Parameter;
  const CString word = Clavis::ElementName(element, 1);
  CMeasuringUnit unit(static_cast<CMeasuringUnit::commonUnits>(0), 0, 1, 1.0F, 0);
  const CMeasuringUnit same(unit), again(unit, false);
  unit.set(2u, 0, 1, 1.0F, 0);
  use(same, again, word);
  const CString text = unit.set(L"bar") ? unit.prefixunit(false) : L"";
  assert(text == L"bar");
}

struct Selection : CClavisSet {
  using CClavisSet::CheckForCompleteness;
};

template <class Set>
void use_set(Set set) {
  set.insertLocaChan(10, 1, false);
  set.insertInstrPar(7, 10011, true);
  set += key;
  Set other;
  other = set;
  other |= set;
  other &= set;
  other.completeness_check(set);
  const Set& reader = set;
  assert((reader && key) && reader.valid() && reader.ElementSet(5).count(2) == 1);
  assert(reader.containsLocaChan(10, 1) && reader.containsInstrPar(7, 10011));
  use(set.ElementSet(0), set.LocaChanSet(), reader.LocaChanSet(), set.InstrParamSet(),
      reader.InstrParamSet());
  set.clear();
}

int main() {
  use_records();
  use_units();
  Selection six;
  six.insert(ids, true);
  six -= ids;
  six += ids;
  assert(six && ids);
  use(Selection::CheckForCompleteness(six.ElementSet(0), six.ElementSet(1)));
  use_set(six);

  QIdx8 eight;
  eight.Type = eight.Bench = 1;
  CQIdx8Set set;
  set += eight;
  set -= eight;
  set.insert(eight, true).insertTypeBench(3, 4, false);
  const CQIdx8Set& all = set;
  assert((all && eight) && all.contains(eight) && all.contains(key) && all.contains(6, 1));
  use(all.TypeSet(), all.BenchSet(), set.TypeSet(), set.BenchSet());
  use_set(set);
}
