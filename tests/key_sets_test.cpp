// Key sets that disagree with themselves show results that nobody selected, or hide those that
// somebody did.
#include "keys/QIdx8Set.h"
#include "support.h"

namespace {

using Ids = std::set<int>;
using Pairs = std::set<std::pair<int, int>>;

constexpr unsigned int element_numbers = 8;

CQIdx8Set InAll(const Ids& ids) {
  CQIdx8Set set;
  for (unsigned int e = 0; e < element_numbers; ++e) set.ElementSet(e) = ids;
  return set;
}

QIdx8 KeyOf(int id) { return {id, id, id, id, id, id, id, id}; }

TEST(KeySets, OperationsOnTheIdsOfEachElement) {
  enum { insert, widen, intersect, complete };
  const std::tuple<Ids, int, Ids, Ids> cases[] = {
      {{1, 2}, insert, {-1}, {1, 2}},        {{1, 2}, widen, {-1}, {-1}},
      {{-1, 2}, widen, {-1}, {-1, 2}},       {{1, 2}, widen, {3}, {1, 2, 3}},
      {{1, 2}, intersect, {-1}, {1, 2}},     {{-1, 4}, intersect, {-1, 5}, {-1, 4}},
      {{1, 2, 3}, complete, {1, 2}, {-1}},   {{1}, complete, {1, 2}, {1}},
      {{-1, 1}, complete, {1, 2}, {-1}},     {{1}, complete, {}, {1}},
      {{1, 2}, complete, {-1, 1, 2}, {1, 2}}};
  for (const auto& [before, operation, operand, after] : cases) {
    CQIdx8Set set = InAll(before);
    if (operation == intersect) {
      set &= InAll(operand);
    } else if (operation == complete) {
      set.completeness_check(InAll(operand));
    } else {
      set.insert(KeyOf(*operand.begin()), operation == widen);
    }
    for (unsigned int e = 0; e < element_numbers; ++e) {
      EXPECT_EQ(set.ElementSet(e), after) << testing::PrintToString(before) << ", element " << e;
    }
  }
}

TEST(KeySets, PairsWidenByHalves) {
  CQIdx8Set set;
  set.insertInstrPar(7, 3, false).insertInstrPar(7, 4, false).insertInstrPar(8, 3, false);
  set.insertInstrPar(7, -1, false);
  EXPECT_EQ(set.InstrParamSet(), (Pairs{{7, 3}, {7, 4}, {8, 3}}));
  set.insertInstrPar(7, -1, true);
  EXPECT_EQ(set.InstrParamSet(), (Pairs{{7, -1}, {8, 3}}));
  EXPECT_EQ(set.ElementSet(Clavis::Instrument), (Ids{7, 8}));
  EXPECT_EQ(set.ElementSet(Clavis::Parameter), (Ids{-1}));
  EXPECT_TRUE(set.containsInstrPar(7, 99) && set.containsInstrPar(8, 3));
  EXPECT_FALSE(set.containsInstrPar(8, 4) || set.containsInstrPar(-1, 3));
  set.insertInstrPar(-1, -1, true).insertInstrPar(9, -1, true);
  EXPECT_EQ(set.InstrParamSet(), (Pairs{{-1, -1}}));
  set.insertLocaChan(1, 2, false);  // the object in front
  EXPECT_EQ(set.ElementSet(Clavis::Location), (Ids{1}));
  EXPECT_TRUE(set.containsLocaChan(1, 2) && !set.containsLocaChan(2, 1));
}

TEST(KeySets, AllValueOutlivesRemovalOfOthers) {
  const QIdx8 key(1, 5, 1, 1, 1, 1, 1, 1);
  const QIdx8 any_bench(1, 7, 1, 1, 1, 1, 1, 1);
  CQIdx8Set set;
  set += key;
  set.BenchSet() = {-1, 5};
  EXPECT_TRUE(set.contains(any_bench));
  set -= QIdx8(-1, 5, -1, -1, -1, -1, -1, -1);
  EXPECT_EQ(set.BenchSet(), (Ids{-1}));
  EXPECT_TRUE(set.contains(any_bench) && set.contains(key));
  // A pair goes with either of its halves, so that it doesn't come back with the next insertion.
  set.insertInstrPar(1, 2, false).insertInstrPar(3, 4, false);
  set -= QIdx8(0, 0, 0, 1, 0, 0, 9, 0);
  EXPECT_EQ(set.InstrParamSet(), (Pairs{{3, 4}}));
}

TEST(KeySets, TypeAndBenchStandBesideTheKey) {
  CQIdx8Set set;
  const CClavis key(QClavis(1, 2, 3, 4, 5, 6).id);
  set += key;
  EXPECT_FALSE(set.valid());
  EXPECT_TRUE(set.contains(key) && !set.contains(QIdx8(1, 1, key)));
  set.insertTypeBench(1, -1, true);
  EXPECT_TRUE(set.valid() && set.contains(QIdx8(1, 77, key)) && set.contains(CQIdx8Set::Type, 1));
  EXPECT_EQ(set.ElementSet(CQIdx8Set::Bench), (Ids{-1}));
  EXPECT_FALSE(InAll({1}).valid()) << "no pairs";
  EXPECT_FALSE(set.contains(CQIdx8Set::Type, 2) || set.contains(Clavis::Sensor, 5));
  EXPECT_THROW(set.contains(8, 1), std::out_of_range);
  CQIdx8Set more;
  more.TypeSet() = {-1};
  set |= more;
  EXPECT_TRUE(set.contains(QIdx8(9, 9, key)));
}

// Two instruments and two parameters are all there are, and still half of the pairs is missing.
TEST(KeySets, PairsAreCompletedByHalves) {
  CQIdx8Set all;
  CQIdx8Set set;
  set.insertInstrPar(7, 3, false).insertInstrPar(8, 4, false);
  all.insertInstrPar(7, 4, false).insertInstrPar(8, 3, false) |= set;
  set.completeness_check(all);
  EXPECT_EQ(set.ElementSet(Clavis::Instrument), (Ids{-1}));
  EXPECT_EQ(set.InstrParamSet(), (Pairs{{7, 3}, {8, 4}}));
  set |= all;
  set.completeness_check(all);
  EXPECT_EQ(set.InstrParamSet(), (Pairs{{-1, -1}}));
}

// Random selections over three ids for each element, asked for random keys over them and over one
// id that no selection names.
class KeySetAlgebra : public testing::Test {
 protected:
  int Roll(int sides) { return static_cast<int>(random() % static_cast<unsigned int>(sides)); }

  // Ids of 0 to `ids` - 1; one of `open_in` is -1.
  QIdx8 Key(int open_in, int ids = 3) {
    QIdx8 key;
    std::apply([&](auto&... id) { ((id = Roll(open_in) == 0 ? -1 : Roll(ids)), ...); },
               key.tuple());
    return key;
  }
  CQIdx8Set Selection() {
    CQIdx8Set set;
    for (int i = Roll(8); i > 0; --i) set.insert(Key(3), Roll(2) == 0);
    if (Roll(4) == 0) set -= Key(2);
    return set;
  }
  // Both halves of each pair stand among their elements.
  static bool IsCoupled(const CQIdx8Set& set) {
    const auto coupled = [&set](const Pairs& pairs, unsigned int first, unsigned int second) {
      return std::ranges::all_of(pairs, [&](const auto& pair) {
        return set.contains(first, pair.first) && set.contains(second, pair.second);
      });
    };
    return coupled(set.LocaChanSet(), Clavis::Location, Clavis::Channel) &&
           coupled(set.InstrParamSet(), Clavis::Instrument, Clavis::Parameter);
  }

  std::mt19937 random{20240229};
};

TEST_F(KeySetAlgebra, LosesNoKeyAndLetsNoneIn) {
  int inside = 0;
  for (int round = 0; round < 1000; ++round) {
    const CQIdx8Set a = Selection();
    const CQIdx8Set b = Selection();
    CQIdx8Set both = a;
    CQIdx8Set either = a;
    CQIdx8Set complete = a;
    both &= b;
    either |= b;
    complete.completeness_check(b);
    ASSERT_TRUE(IsCoupled(a) && IsCoupled(both) && IsCoupled(either) && IsCoupled(complete));
    for (int i = 0; i < 30; ++i) {
      const QIdx8 key = Key(20, 4);
      const bool in_a = a.contains(key);
      const bool in_b = b.contains(key);
      ASSERT_EQ(both.contains(key), in_a && in_b);
      ASSERT_TRUE(either.contains(key) || !(in_a || in_b));
      ASSERT_TRUE(complete.contains(key) ? in_a || !in_b : !in_a);
      inside += in_a && in_b;
    }
  }
  EXPECT_GT(inside, 100);  // or the sample shows nothing
}

}  // namespace
