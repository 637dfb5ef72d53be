// What the machine turns: rotors, gears, speed sources, orders, and what a channel sees of them.

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "test_store.h"

namespace {

using testing_support::TestStore;
using P = CQtParamInstance;

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

std::vector<int> OrderSources(const P& params, int mode, int channel, int rotor) {
  std::vector<int> sources;
  const auto [first, end] = params.OrderSourceRange(mode, channel, rotor);
  for (auto row = first; row != end; ++row) sources.push_back(row->second.ref);
  return sources;
}

// The sample's gears by their teeth, its bearing by its measures.
TEST(SampleGearbox, TurnsAtTheOrdersOfItsTeethAndBearings) {
  TestStore data;
  ASSERT_TRUE(data.LoadSample());
  struct Case {
    int source, rotor;
    double spur, helical;  // orders on the axis of the input shaft
  };
  std::vector<Case> cases = {{1, 1, 1, 1},    {2, 2, 1. / 3, 1. / 3}, {3, 3, 0.2, 0.2},
                             {11, 1, 32, 16}, {12, 2, 32, 16},        {13, 2, 16, 8},
                             {14, 3, 16, 8}};
  const double n = 8;
  const double d = 0.3125 / 1.319;  // a rolling element against the pitch circle
  const double orders[] = {n / 2 * (1 - d), n / 2 * (1 + d), (1 - d * d) / (2 * d), (1 - d) / 2};
  for (int i = 0; i < 4; ++i) {
    cases.push_back({21 + i, 1, orders[i], orders[i]});
    cases.push_back({31 + i, 2, orders[i] / 3, orders[i] / 3});
    cases.push_back({41 + i, 3, orders[i] / 5, orders[i] / 5});
  }
  for (const Case& c : cases) {
    const std::tuple<int, double, int, int> modes[] = {
        {130, c.spur, 1, 2}, {230, c.helical, 1, 2}, {170, 5 * c.spur, 3, 3}};
    for (const auto& [mode, order, speed_source, signal] : modes) {
      SCOPED_TRACE(std::to_string(mode) + " " + std::to_string(c.source));
      EXPECT_FLOAT_EQ(data.params.BaseOrder(mode, c.source) *
                          data.params.RotorFrequencyRelativeToSpeedSourceRotor(mode, c.source),
                      static_cast<float>(order));
      EXPECT_EQ(data.params.OrderSource2Rotor(mode, c.source), c.rotor);
      EXPECT_EQ(data.params.RotorSpeedSource(mode, c.source), speed_source);
      EXPECT_EQ(data.params.RotorSpeedSourceAppId(mode, c.source), signal);
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

TEST(Rotors, EachChainEndsWhereATableEnds) {
  TestStore data(machine);
  const int virtual_1 = P::VirtModeGenerateId(1, 5);
  struct Case {
    int (P::*query)(int, int) const;
    int mode, id, result;
  };
  const Case cases[] = {
      {&P::PhysicalGear, 1, 3, 103},
      {&P::PhysicalGear, virtual_1, 3, 103},
      {&P::PhysicalGear, 2, 3, 3},
      {&P::PhysicalGear, 3, 3, -1},
      {&P::PhysicalGear, 1, -1, -1},
      {&P::PhysicalGear, 1, highest, highest},
      {&P::PhysicalGear, 1, lowest, lowest},
      {&P::OrderSource2Rotor, 1, 3, 50},
      {&P::OrderSource2Rotor, virtual_1, 3, 50},
      {&P::OrderSource2Rotor, 1, 7, 7},
      {&P::OrderSource2Rotor, 2, 3, 3},
      {&P::OrderSource2Rotor, 1, -1, 0},
      {&P::OrderSource2Rotor, -1, 7, 0},
      {&P::OrderSource2Rotor, 3, 7, -1},
      {&P::RotorSpeedSource, 1, 3, 1},
      {&P::RotorSpeedSource, 1, 7, 9},  // on a rotor by its number
      {&P::RotorSpeedSource, 1, 8, -1},
      {&P::RotorSpeedSource, 1, -1, -1},
      {&P::RotorSpeedSource, 2, 3, -1},
      {&P::RotorSpeedSource, virtual_1, 3, -1},
      {&P::RotorSpeedSourceAppId, 1, 3, 90},
      {&P::RotorSpeedSourceAppId, virtual_1, 3, 90},
      {&P::RotorSpeedSourceAppId, 1, 4, -1},  // speed source 2 has no signal
      {&P::RotorSpeedSourceAppId, 1, 8, -1},
      {&P::SpeedInfoOfRotor, 1, 50, 90},
      {&P::SpeedInfoOfRotor, virtual_1, 50, 90},
      {&P::SpeedInfoOfRotor, 1, 3, -1},  // 3 is an order source here and no rotor
      {&P::SpeedInfoOfRotor, -1, 50, -1},
  };
  for (const Case& c : cases) {
    EXPECT_EQ((data.params.*c.query)(c.mode, c.id), c.result)
        << "case " << &c - cases << ": " << c.mode << ' ' << c.id;
  }
}

TEST(Rotors, RatiosAndOrdersAreZeroWhereNothingIsKnown) {
  TestStore data(machine);
  const int virtual_1 = P::VirtModeGenerateId(1, 5);
  struct Case {
    int mode, generating, other;
    float ratio;
  };
  const Case ratios[] = {
      {1, 1, 2, 2.5F},         {1, 2, 1, 1.0F / 2.5F}, {virtual_1, 1, 2, 2.5F},
      {1, 1, 3, -3.0F},  // by the rotor of the gear itself
      {1, 1, 4, 4.0F},   // by the rotor of the physical gear
      {1, 3, 4, 4.0F / -3.0F}, {1, 8, 1, 0.0F},        {1, 5, 1, 0.0F},
      {1, 99, 1, 0.0F},        {1, 1, 99, 0.0F},       {2, 1, 2, 0.0F},
      {3, 1, 2, 0.0F},         {-1, 1, 2, 0.0F},       {1, -1, 2, 0.0F},
      {1, 1, -1, 0.0F},
  };
  for (const Case& c : ratios) {
    EXPECT_EQ(data.params.FrequencyRatioToGeneratingRotor(c.mode, c.generating, c.other), c.ratio)
        << c.mode << ' ' << c.generating << ' ' << c.other;
  }
  const std::tuple<int, int, float, float> sources[] =
      {
          // mode, source, ratio to the speed source, base order
          {1, 3, -3.0F, 17.5F}, {virtual_1, 3, -3.0F, 17.5F},
          {1, 4, 1.6F, 0.0F},  // 104 has no base order
          {1, 7, 0.0F, 9.0F},  // speed source 9 has no speed
          {2, 3, 0.0F, 1.0F},   {3, 3, 0.0F, 0.0F},
          {1, -1, 0.0F, 0.0F},  {-1, 3, 0.0F, 0.0F},
      };
  for (const auto& [mode, source, ratio, order] : sources) {
    EXPECT_EQ(data.params.RotorFrequencyRelativeToSpeedSourceRotor(mode, source), ratio)
        << mode << ' ' << source;
    EXPECT_EQ(data.params.BaseOrder(mode, source), order) << mode << ' ' << source;
  }
}

TEST(Rotors, AnOrderSourceWithoutBaseOrderIsLeftOutWithoutAGap) {
  TestStore data(std::string(machine) +
                 "<TChannel>: {\n1 mix\n}\n<TChannelProperty>: {\n1 2\n}\n"
                 "<TOrderSource2Rotor>: {\n3 10 50\n4 10 51\n6 10 52\n7 10 50\n103 20 50\n}\n");
  const auto line = [](const wchar_t* rotor) {
    return std::wstring(
               L"CQtRotorInfo::BuildRotor2OrderSourcesLookup(): Parameter database: "
               L"No base order for RotorId ") +
           rotor + L" in PhysMode 10, skipping entry into m_rotor2OrderSources\n";
  };
  EXPECT_EQ(data.log.Text(), line(L"51") + line(L"52"));
  EXPECT_EQ(data.log.lines[0].category * 10 + data.log.lines[0].style, 81);
  const auto [first, end] = data.params.OrderSourceRange(1, 1, 50);
  ASSERT_EQ(std::distance(first, end), 2);
  EXPECT_EQ(first->first, QIdx4(10, 1, 50, 0));
  EXPECT_EQ(std::next(first)->first, QIdx4(10, 1, 50, 1));
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
    for (int i = 0; i < 4 * 5 * 7; ++i) {
      const int mode = i % 4;
      const int channel = i / 4 % 5;
      const int rotor = i / 20;
      std::vector<std::pair<int, int>> expected;
      for (const auto& [key, row] : data.store.Table<L"<TOrderSource2Rotor>">()) {
        const bool mix =
            params.SpeedInfoOfRotor(mode, row.ref) == params.SpeedInfoOfRotor(mode, rotor);
        const bool seen = (channel & 2) != 0 ? mix : channel == 1 && row.ref == rotor;
        const auto& orders = data.store.Table<L"<TBaseOrder>">();
        if (channel < 4 && key[1] == params.PhysModeId(mode) && seen &&
            orders.find(params.PhysicalGear(mode, key[0])) != orders.end()) {
          expected.emplace_back(row.ref, key[0]);
        }
      }
      std::sort(expected.begin(), expected.end());
      const auto found = OrderSources(params, mode, channel, rotor);
      ASSERT_TRUE(std::equal(found.begin(), found.end(), expected.begin(), expected.end(),
                             [](int a, const auto& b) { return a == b.second; }))
          << mode << ' ' << channel << ' ' << rotor << '\n'
          << text;
    }
  }
}

TEST(Rotors, IdsThatNobodyKnowsMissInEveryStateOfTheData) {
  TestStore data;
  const auto expect_misses = [&data](const std::vector<int>& modes) {
    const P& params = data.params;
    for (const int mode : modes) {
      for (const int id : {highest, lowest, -1, 0, 77777, 1, 11}) {
        SCOPED_TRACE(std::to_string(mode) + " " + std::to_string(id));
        EXPECT_EQ(params.PhysicalGear(mode, id), -1);
        EXPECT_EQ(params.OrderSource2Rotor(mode, id), mode == -1 || id == -1 ? 0 : -1);
        EXPECT_EQ(params.RotorSpeedSource(mode, id), -1);
        EXPECT_EQ(params.RotorSpeedSourceAppId(mode, id), -1);
        EXPECT_EQ(params.SpeedInfoOfRotor(mode, id), -1);
        EXPECT_EQ(params.BaseOrder(mode, id), 0.0F);
        EXPECT_EQ(params.FrequencyRatioToGeneratingRotor(mode, id, 1), 0.0F);
        EXPECT_EQ(params.RotorFrequencyRelativeToSpeedSourceRotor(mode, id), 0.0F);
        for (const int channel : {id, 6}) {
          EXPECT_EQ(OrderSources(params, mode, channel, id), std::vector<int>());
        }
        EXPECT_EQ(params.ParentChannel(mode, id), -1);
        if (mode == 130) continue;  // its base channels are derived and outlive a purge
        EXPECT_EQ(params.BaseChannel(mode, id) + params.ChannelFlags(mode, id), 0);
      }
    }
  };
  expect_misses({highest, lowest, -1, 0, 77777, 130});
  ASSERT_TRUE(data.LoadSample());
  expect_misses({highest, lowest, -1, 0, 77777});
  data.params.PurgeTables();  // the order sources stay, the tables that lead there don't
  expect_misses({highest, lowest, -1, 0, 77777, 130});
  EXPECT_EQ(data.params.BaseChannel(130, 7), 1);
  // A rotor and a speed source at the end of all ids.
  ASSERT_TRUE(data.Load(
      "<TMode>: {\n1 a\n}\n<TModeProperty>: {\n1 2147483647\n}\n<TChannel>: {\n1 s\n2 m\n}\n"
      "<TChannelProperty>: {\n1 1\n2 2\n}\n<TBaseOrder>: {\n5 1\n}\n"
      "<TRotorSpeedSource>: {\n2147483647 2147483647 2147483647\n}\n"
      "<TOrderSource2Rotor>: {\n5 2147483647 2147483647\n}\n"));
  EXPECT_EQ(OrderSources(data.params, 1, 1, highest), std::vector{5});
  EXPECT_EQ(OrderSources(data.params, 1, 2, highest), std::vector{5});
}

}  // namespace
