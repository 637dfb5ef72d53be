// Spectrum intervals beyond what cases/spec_intervals.txt tells: definitions that a host reads,
// what an evaluation keeps, and what remains of an interval when others are cut out of it.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <tuple>
#include <vector>

#include "frame/QtParamDerived.h"
#include "spec/QtSpecInterval.h"
#include "spec/QtSpecIntervalStore.h"
#include "test_store.h"

namespace {

using testing_support::TestStore;
using Entry = QVSpecIntervalEntry;
using Spec = CQtSpecInterval;

TEST(SpecIntervals, AreDumpedBehindTheBaseChannelsAndLimited) {
  TestStore base(
      "<TInstrumentParam>: {\n7 17 p\n}\n"
      "<TIpCalcParameter>: {\n7 2 6\n7 3 Hx\n7 4 11\n}\n");
  base.store.Derived().Dump(0);
  const std::wstring text = base.log.Text();
  EXPECT_LT(text.find(L"->\t<PiBaseChannelId>"), text.find(L"<-\t<PiSpecIntervalStore>"));
  EXPECT_NE(text.find(L"  16:\t7 30 | 0 0 31 0 0 0 0 32 0 0\n->\t<Pi"), text.npos) << text;

  base.log.lines.clear();
  CQtSpecIntervalStore store(base.store);
  store.Load(33);
  EXPECT_EQ(base.log.Text(), L"QtSpecIntervalStore: nr_orders 33 > max_orders 32.\n");
  EXPECT_TRUE(store.IpSvOfSpec().empty());
  store.Load(32);
  EXPECT_EQ(store.IpSvOfSpec().size(), 1U);
}

TEST(SpecIntervals, AreReadForAHostWithoutTheStore) {
  const std::tuple<const wchar_t*, unsigned, unsigned> cases[] = {
      {L"H1;H2;H3", 32, 1}, {L"H1;H2;H3;H4", 3, 1}, {L"Hx", 100, 16},
      {L"H1", 32, 0},       {L"Hx", 0, 0},          {L"F1-M2;H1", 32, 0}};
  const testing_support::Log quiet;
  for (const auto& [definition, max_orders, count] : cases) {
    std::vector<Entry> ranges(17);
    ranges[count].lower().order() = -77;
    EXPECT_EQ(CQtSpecIntervalStore::Range(definition, ranges.data(), max_orders), count);
    EXPECT_EQ(ranges[count].lower().order(), -77);
    EXPECT_TRUE(count == 0 ||
                ranges[count - 1].upper().harmonic() == 2.0F * static_cast<float>(count));
  }
}

// Nothing is looked up anew while base mode and order sources stay.
TEST(SpecIntervals, KeepTheirTestStepAndAssembly) {
  const std::string machine =
      "<TModeProperty>: {\n7 1\n8 2\n}\n<TRotorSpeed>: {\n1 1 2\n1 2 1\n2 1 2\n2 2 -2\n}\n";
  TestStore base(machine + "<TBaseOrder>: {\n2 20\n}\n");
  Spec evaluation(base.params);
  Entry::Definition harmonic;
  harmonic.harmonic() = 1;
  const auto place = [&](int mode, int assembly) {
    evaluation.LoadTransformParams(mode, 1, assembly);
    float low = -1;
    float high = -1;
    evaluation.FrequencyRange({harmonic, harmonic}, 1, 1, low, high);
    return low;
  };
  EXPECT_EQ(place(8, 2), 20);
  EXPECT_EQ(evaluation.RatioAssembly2SpeedSrc(), 1);
  EXPECT_EQ(place(INT_MAX, INT_MAX), -1);
  EXPECT_EQ(place(7, 2), 10);
  base.Load(machine + "<TBaseOrder>: {\n2 90\n}\n");
  EXPECT_EQ(place(CQtParamInstance::VirtModeGenerateId(7, 1), 2), 10);
  EXPECT_EQ(place(8, 2), 90);
  EXPECT_EQ(place(8, 9), -1);

  // A lower bound below 0 is written all the same.
  Entry line;
  line.lower().lines() = 1;
  float low = 0;
  float high = -1;
  EXPECT_EQ(evaluation.FrequencyRange(line, -2, 1, low, high), Spec::index_range_invalid);
  EXPECT_EQ(std::pair(low, high), std::pair(-2.0F, 0.0F));
}

using Bounds = std::tuple<float, float, unsigned, unsigned>;

Bounds BoundsOf(const Spec::IndexInterval& interval) {
  return {interval.start_frequency, interval.stop_frequency, interval.start_index,
          interval.stop_index};
}

// An interval whose bounds tell on the axis too where it came from.
Spec::IndexInterval Lines(unsigned start, unsigned stop) {
  return {static_cast<float>(start) - 0.25F, static_cast<float>(stop) + 0.25F, start, stop};
}

TEST(SpecIntervals, CanBeCutOutOfOneAnother) {
  struct {
    std::vector<Spec::IndexInterval> collection;
    std::vector<Bounds> pieces;
  } const cases[] = {
      {{Lines(0, 100), Lines(10, 20), Lines(30, 40), Lines(90, 100)},
       {{-0.25F, 9.75F, 0, 9}, {20.25F, 29.75F, 21, 29}, {40.25F, 89.75F, 41, 89}}},
      {{Lines(0, UINT_MAX), Lines(0, 0), Lines(UINT_MAX, UINT_MAX)},
       {{0.25F, 4294967296.0F, 1, UINT_MAX - 1}}},
      {{}, {}},
      // Two cuts whose ends fall on one line: the piece behind them begins at the later end.
      {{{0.0F, 100.0F, 0, 100}, {10.1F, 20.1F, 10, 20}, {15.0F, 20.3F, 15, 20}},
       {{0.0F, 10.1F, 0, 9}, {20.3F, 100.0F, 21, 100}}},
  };
  for (const auto& c : cases) {
    auto collection = c.collection;
    EXPECT_EQ(Spec::InvertIndexIntervalCollection(collection), c.pieces.size());
    std::vector<Bounds> pieces;
    for (const auto& piece : collection) pieces.push_back(BoundsOf(piece));
    EXPECT_EQ(pieces, c.pieces);
  }
}

}  // namespace
