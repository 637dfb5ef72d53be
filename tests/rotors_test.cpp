// What the machine turns: rotors, gears, speed sources, orders, and what a channel sees of them.

#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "test_store.h"

namespace {

using testing_support::TestStore;
using P = CQtParamInstance;

std::vector<int> OrderSources(const P& params, int mode, int channel, int rotor) {
  std::vector<int> sources;
  const auto [first, end] = params.OrderSourceRange(mode, channel, rotor);
  for (auto row = first; row != end; ++row) sources.push_back(row->second.ref);
  return sources;
}

// Of an order source: physical gear, rotor, speed source and its signal, the speed over that of the
// speed source, base order. Of the rotor of the same number: the signal of its speed source.
using Answers = std::tuple<int, int, int, int, float, float, int>;

Answers Ask(const P& params, int mode, int id) {
  return {params.PhysicalGear(mode, id),
          params.OrderSource2Rotor(mode, id),
          params.RotorSpeedSource(mode, id),
          params.RotorSpeedSourceAppId(mode, id),
          params.RotorFrequencyRelativeToSpeedSourceRotor(mode, id),
          params.BaseOrder(mode, id),
          params.SpeedInfoOfRotor(mode, id)};
}

// The sample's gears by their teeth, its bearing by its measures.
TEST(SampleGearbox, TurnsAtTheOrdersOfItsTeethAndBearings) {
  TestStore data;
  ASSERT_TRUE(data.LoadSample());
  // Source, rotor, orders of spur and helical gears on the axis of the input shaft.
  std::vector<std::tuple<int, int, double, double>> cases = {
      {1, 1, 1, 1},    {2, 2, 1. / 3, 1. / 3}, {3, 3, 0.2, 0.2}, {11, 1, 32, 16},
      {12, 2, 32, 16}, {13, 2, 16, 8},         {14, 3, 16, 8}};
  const double n = 8;
  const double d = 0.3125 / 1.319;  // a rolling element against the pitch circle
  const double orders[] = {n / 2 * (1 - d), n / 2 * (1 + d), (1 - d * d) / (2 * d), (1 - d) / 2};
  for (int i = 0; i < 4; ++i) {
    for (const auto& [rotor, slower] : {std::pair(1, 1), {2, 3}, {3, 5}}) {
      cases.emplace_back(11 + 10 * rotor + i, rotor, orders[i] / slower, orders[i] / slower);
    }
  }
  for (const auto& [source, rotor, spur, helical] : cases) {
    const std::tuple<int, double, int, int> modes[] = {
        {130, spur, 1, 2}, {230, helical, 1, 2}, {170, 5 * spur, 3, 3}};
    for (const auto& [mode, order, speed_source, signal] : modes) {
      SCOPED_TRACE(testing::Message() << mode << ' ' << source);
      const auto [gear, on, by, shown, ratio, base_order, none] = Ask(data.params, mode, source);
      EXPECT_FLOAT_EQ(base_order * ratio, static_cast<float>(order));
      EXPECT_EQ(std::tuple(on, by, shown), std::tuple(rotor, speed_source, signal));
    }
  }
  for (const int mode : {130, 230, 170}) {
    EXPECT_EQ(OrderSources(data.params, mode, 6, 2).size(), cases.size());  // mix: all of them
    EXPECT_EQ(OrderSources(data.params, mode, 4, 2), (std::vector{2, 12, 13, 31, 32, 33, 34}));
  }
}

// Gear 3 is 103 in physical mode 10, gear 4 is 104. Rotor 104 has a speed of its own; for 103 there
// is only that of the rotor of 3.
constexpr const char* machine =
    "<TMode>: {\n1 a\n2 b\n3 c\n}\n<TModeProperty>: {\n1 10\n2 20\n}\n"
    "<TVirtual2PhysGear>: {\n10 3 103\n10 4 104\n}\n"
    "<TOrderSource2Rotor>: {\n3 10 50\n4 10 51\n104 10 60\n}\n"
    "<TRotorSpeedSource>: {\n10 50 1\n10 51 2\n10 7 9\n}\n"
    "<TSpeedSource>: {\n1 90\n9 91\n}\n"
    "<TRotorSpeed>: {\n10 1 1\n10 2 2.5\n10 50 -3\n10 51 5\n10 60 4\n10 8 0\n10 5 -0\n}\n"
    "<TBaseOrder>: {\n103 17.5\n3 1\n7 9\n}\n";
const int virtual_1 = P::VirtModeGenerateId(1, 5);

TEST(Rotors, EachChainEndsWhereATableEnds) {
  TestStore data(machine);
  const std::tuple<int, int, Answers> cases[] = {
      {1, 3, {103, 50, 1, 90, -3.0F, 17.5F, -1}},
      {virtual_1, 3, {103, 50, -1, 90, -3.0F, 17.5F, -1}},
      {1, 4, {104, 51, 2, -1, 1.6F, 0.0F, -1}},  // no signal, and no base order of 104
      {1, 7, {7, 7, 9, 91, 0.0F, 9.0F, 91}},     // a rotor by its number, a source without speed
      {virtual_1, 50, {50, 50, -1, 90, -3.0F, 0.0F, 90}},
      {2, 3, {3, 3, -1, -1, 0.0F, 1.0F, -1}},
      {3, 3, {-1, -1, -1, -1, 0.0F, 0.0F, -1}},
      {1, -1, {-1, 0, -1, -1, 0.0F, 0.0F, -1}},
      {-1, 7, {-1, 0, -1, -1, 0.0F, 0.0F, -1}},
      {1, INT_MAX, {INT_MAX, INT_MAX, -1, -1, 0.0F, 0.0F, -1}},
  };
  for (const auto& [mode, id, expected] : cases) {
    EXPECT_EQ(Ask(data.params, mode, id), expected) << mode << ' ' << id;
  }
  // The other rotor's speed over that of the generating one, by the rotor of the physical gear or
  // else of the gear itself; 0 where nothing turns or nothing is known.
  const std::tuple<int, int, int, float> ratios[] = {
      {1, 1, 2, 2.5F},  {virtual_1, 2, 1, 0.4F}, {1, 1, 4, 4.0F},
      {1, 1, 3, -3.0F}, {1, 5, 1, 0.0F},         {1, 99, 1, 0.0F},
      {-1, 1, 2, 0.0F}, {1, -1, 2, 0.0F},        {1, 1, -1, 0.0F}};
  for (const auto& [mode, generating, other, ratio] : ratios) {
    EXPECT_EQ(data.params.FrequencyRatioToGeneratingRotor(mode, generating, other), ratio)
        << mode << ' ' << generating << ' ' << other;
  }
}

TEST(Rotors, AnOrderSourceWithoutBaseOrderIsLeftOutWithoutAGap) {
  TestStore data(std::string(machine) +
                 "<TChannel>: {\n1 mix\n}\n<TChannelProperty>: {\n1 2\n}\n"
                 "<TOrderSource2Rotor>: {\n3 10 50\n4 10 51\n6 10 52\n7 10 50\n103 20 50\n}\n");
  const std::wstring begin =
      L"CQtRotorInfo::BuildRotor2OrderSourcesLookup(): Parameter database: No base order for "
      L"RotorId ";
  const std::wstring end = L" in PhysMode 10, skipping entry into m_rotor2OrderSources\n";
  EXPECT_EQ(data.log.Text(), begin + L"51" + end + begin + L"52" + end);
  EXPECT_EQ(data.log.lines[0].category * 10 + data.log.lines[0].style, 81);
  std::vector<QIdx4> keys;
  const auto range = data.params.OrderSourceRange(1, 1, 50);
  for (auto row = range.first; row != range.second; ++row) keys.push_back(row->first);
  EXPECT_EQ(keys, (std::vector{QIdx4(10, 1, 50, 0), QIdx4(10, 1, 50, 1)}));
  ASSERT_TRUE(data.Load(machine));  // a load derives anew
  EXPECT_EQ(OrderSources(data.params, 1, 1, 50), std::vector<int>());
}

// Small random machines; what a channel sees must be what a plain walk over the rows finds. The
// number of a channel is its type, and a speed source has the signal of its number.
TEST(Rotors, ChannelsSeeWhatAPlainWalkFinds) {
  std::mt19937 random(20090301);
  for (int round = 0; round < 20; ++round) {
    std::string text =
        "<TMode>: {\n0 a\n1 b\n2 c\n}\n<TModeProperty>: {\n0 0\n1 1\n2 -1\n}\n"
        "<TChannel>: {\n0 -\n1 s\n2 m\n3 sm\n}\n<TSpeedSource>: {\n0 0\n1 1\n2 2\n}\n"
        "<TChannelProperty>: {\n1 1\n2 2\n3 3\n}\n";
    const auto fill = [&](const char* section, int rows, unsigned a, unsigned b, unsigned c) {
      text += std::string(section) + ": {\n";
      for (; rows > 0; --rows) {
        for (const unsigned limit : {a, b, c}) text += std::to_string(random() % limit) + " ";
        text += "\n";
      }
      text += "}\n";
    };
    fill("<TOrderSource2Rotor>", 40, 20, 2, 5);
    fill("<TRotorSpeedSource>", 8, 2, 6, 3);
    fill("<TVirtual2PhysGear>", 10, 2, 20, 20);
    fill("<TBaseOrder>", 16, 20, 1, 1);
    TestStore data(text);
    const P& params = data.params;
    const auto& orders = data.store.Table<L"<TBaseOrder>">();
    for (int i = 0; i < 4 * 5 * 7; ++i) {
      const int mode = i % 4;
      const int channel = i / 4 % 5;
      const int rotor = i / 20;
      std::set<std::pair<int, int>> seen;  // by rotor, then by source
      for (const auto& [key, row] : data.store.Table<L"<TOrderSource2Rotor>">()) {
        const bool mix =
            params.SpeedInfoOfRotor(mode, row.ref) == params.SpeedInfoOfRotor(mode, rotor);
        if (channel < 4 && key[1] == params.PhysModeId(mode) &&
            ((channel & 2) != 0 ? mix : channel == 1 && row.ref == rotor) &&
            orders.find(params.PhysicalGear(mode, key[0])) != orders.end()) {
          seen.emplace(row.ref, key[0]);
        }
      }
      std::vector<int> expected;
      for (const auto& [on, source] : seen) expected.push_back(source);
      ASSERT_EQ(OrderSources(params, mode, channel, rotor), expected)
          << mode << ' ' << channel << ' ' << rotor << '\n'
          << text;
    }
  }
}

TEST(Rotors, IdsThatNobodyKnowsMissInEveryStateOfTheData) {
  TestStore data;
  const P& params = data.params;
  const auto expect_misses = [&params](const std::vector<int>& modes) {
    for (const int mode : modes) {
      for (const int id : {INT_MAX, INT_MIN, -1, 0, 77777, 1, 11}) {
        SCOPED_TRACE(testing::Message() << mode << ' ' << id);
        const int no_rotor = mode == -1 || id == -1 ? 0 : -1;
        EXPECT_EQ(Ask(params, mode, id), Answers(-1, no_rotor, -1, -1, 0.0F, 0.0F, -1));
        EXPECT_EQ(params.FrequencyRatioToGeneratingRotor(mode, id, 1), 0.0F);
        EXPECT_EQ(OrderSources(params, mode, id, id), std::vector<int>());
        EXPECT_EQ(OrderSources(params, mode, 6, id), std::vector<int>());
        EXPECT_EQ(params.ParentChannel(mode, id), -1);
        if (mode == 130) continue;  // its base channels are derived and outlive a purge
        EXPECT_EQ(std::pair(params.BaseChannel(mode, id), params.ChannelFlags(mode, id)),
                  std::pair(0, 0));
      }
    }
  };
  expect_misses({INT_MAX, INT_MIN, -1, 0, 77777, 130});
  ASSERT_TRUE(data.LoadSample());
  expect_misses({INT_MAX, INT_MIN, -1, 0, 77777});
  data.params.PurgeTables();  // the order sources stay, the tables that lead there don't
  expect_misses({INT_MAX, INT_MIN, -1, 0, 77777, 130});
  EXPECT_EQ(params.BaseChannel(130, 7), 1);
  // A rotor and a speed source at the end of all ids.
  ASSERT_TRUE(data.Load(
      "<TMode>: {\n1 a\n}\n<TModeProperty>: {\n1 2147483647\n}\n<TChannel>: {\n1 s\n2 m\n}\n"
      "<TChannelProperty>: {\n1 1\n2 2\n}\n<TBaseOrder>: {\n5 1\n}\n"
      "<TRotorSpeedSource>: {\n2147483647 2147483647 2147483647\n}\n"
      "<TOrderSource2Rotor>: {\n5 2147483647 2147483647\n}\n"));
  EXPECT_EQ(OrderSources(params, 1, 1, INT_MAX), std::vector{5});
  EXPECT_EQ(OrderSources(params, 1, 2, INT_MAX), std::vector{5});
}

}  // namespace
