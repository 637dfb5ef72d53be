// Where a channel's signal comes from: parents, base channels, what a chain is resampled for.

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "test_store.h"

namespace {

using testing_support::TestStore;

using Answers = std::tuple<int, int, int>;  // parent, base channel, flags

Answers Ask(const TestStore& data, int mode, int channel) {
  return {data.params.ParentChannel(mode, channel), data.params.BaseChannel(mode, channel),
          data.params.ChannelFlags(mode, channel)};
}

TEST(Channels, FollowTheirParentsToTheBaseChannel) {
  TestStore data(
      "<TMode>: {\n1 a\n2 b\n3 c\n}\n"
      "<TChannel>: {\n-1 none\n1 one\n2 two\n3 three\n4 four\n5 five\n6 six\n}\n"
      "<TChannelProperty>: {\n1 2\n3 1\n4 4\n6 4294967295\n55 4\n}\n"
      "<TChannelInheritance>: {\n3 -1 2\n2 -1 1\n3 2 4\n3 3 -1\n5 -1 55\n}\n");
  const int virtual_2 = CQtParamInstance::VirtModeGenerateId(2, 9);
  const std::tuple<int, int, Answers> cases[] = {
      {1, 1, {-1, 1, 2}},        {1, 3, {2, 1, 3}},   {2, 3, {4, 4, 5}},  // a row of its own
      {3, 3, {-1, 3, 1}},                              // one that says: no parent here
      {virtual_2, 3, {4, 4, 5}}, {1, 5, {55, 55, 4}},  // by way of a channel without a name
      {1, 6, {-1, 6, -1}},                             // all bits
      {1, -1, {-1, -1, 0}},      {1, 55, {-1, 0, 0}},  // no channels of the data base
      {1, INT_MAX, {-1, 0, 0}},  {4, 3, {2, 0, 0}},    // no modes of it
      {-1, 3, {2, 0, 0}},
  };
  for (const auto& [mode, channel, expected] : cases) {
    EXPECT_EQ(Ask(data, mode, channel), expected) << mode << ' ' << channel;
  }
  using Types = std::tuple<unsigned, bool, bool, bool>;
  const std::pair<int, Types> types[] = {{1, {2, false, true, false}},
                                         {2, {0, false, false, false}},
                                         {3, {1, true, false, false}},
                                         {4, {4, false, false, true}},
                                         {6, {~0U, true, true, true}}};
  for (const auto& [channel, expected] : types) {
    EXPECT_EQ(Types(data.params.ChannelResamplingType(channel), data.params.ChannelIsSync(channel),
                    data.params.ChannelIsMix(channel), data.params.ChannelIsFix(channel)),
              expected)
        << channel;
  }
  EXPECT_EQ(data.log.Text(), L"");
}

TEST(Channels, TheSampleHasARowForEachTestStepAndChannel) {
  TestStore data;
  ASSERT_TRUE(data.LoadSample());
  EXPECT_EQ(data.params.ChannelFlags(130, 8), 2 | 4);  // mix, over the envelope, which is fix
  data.log.lines.clear();
  data.params.DumpTables(0);
  const std::wstring text = data.log.Text();
  const auto begin = text.find(L"<-\t<PiBaseChannelId>\n   1:\t130 1 | 1 4\n");
  ASSERT_NE(begin, text.npos);
  EXPECT_GT(begin, text.find(L"->\t<TLearnProcedures>\n"));
  const std::wstring rows = text.substr(begin, text.find(L"->\t<PiBaseChannelId>\n") - begin);
  EXPECT_EQ(std::count(rows.begin(), rows.end(), L'\n'), 24 * 8 + 1);
  EXPECT_EQ(text.find(L"<PiRotor2OrderSources>"), text.npos);
}

TEST(Channels, AClosedChainEndsWhereItWouldMeetItselfAndIsReportedOnce) {
  const std::string modes = "<TMode>: {\n1 a\n2 b\n}\n<TChannel>: {\n";
  TestStore data;
  for (int load = 0; load < 2; ++load) {  // reported anew by each load
    data.log.lines.clear();
    ASSERT_TRUE(data.Load(modes +
                          "1 a\n2 b\n3 c\n4 d\n5 e\n}\n<TChannelProperty>: {\n1 1\n3 2\n4 4\n}\n"
                          "<TChannelInheritance>: {\n1 -1 3\n3 -1 2\n2 -1 3\n4 -1 4\n2 2 -1\n}\n"));
    EXPECT_EQ(Ask(data, 1, 1), Answers(3, 2, 3));
    EXPECT_EQ(Ask(data, 1, 2), Answers(3, 3, 2));
    EXPECT_EQ(Ask(data, 1, 4), Answers(4, 4, 4));
    const std::wstring head =
        L"CQtChannelInfo::BuildBaseChannelLookup(): Parameter database: Channel ";
    EXPECT_EQ(
        data.log.Text(),
        head + L"2 inherits from itself in Mode 1, over 2 channel(s), ending the walk there\n" +
            head + L"4 inherits from itself in Mode 1, over 1 channel(s), ending the walk there\n");
  }
  // One ring of many channels: the load has to end soon.
  constexpr int many = 20000;
  std::string channels;
  std::string ring = "}\n<TChannelInheritance>: {\n";
  for (int channel = 0; channel < many; ++channel) {
    channels += std::to_string(channel) + " c\n";
    ring += std::to_string(channel) + " -1 " + std::to_string((channel + 1) % many) + "\n";
  }
  data.log.lines.clear();
  ASSERT_TRUE(data.Load(modes + channels + ring + "}\n"));
  EXPECT_EQ(data.log.lines.size(), 1U);
  EXPECT_EQ(data.params.BaseChannel(2, 0), many - 1);
}

// Random parents, so that chains share ends and close on themselves in all ways.
TEST(Channels, BaseChannelsAreThoseOfAPlainWalk) {
  std::mt19937 random(77);
  const auto below = [&random](unsigned n) { return static_cast<int>(random() % n); };
  std::size_t closed = 0;
  for (int round = 0; round < 60; ++round) {
    std::ostringstream text;
    text << "<TMode>: {\n0 a\n1 b\n2 c\n}\n<TChannel>: {\n";
    for (int channel = 0; channel < 12; ++channel) text << channel << " c\n";
    text << "}\n<TChannelProperty>: {\n";
    for (int channel = 0; channel < 14; ++channel)
      text << channel << ' ' << (1 << below(8)) << '\n';
    text << "}\n<TChannelInheritance>: {\n";
    for (int row = 0; row < 5 + round / 3; ++row) {
      text << below(14) << ' ' << below(4) - 1 << ' ' << below(15) - 1 << '\n';
    }
    const TestStore data(text.str() + "}\n");
    std::set<std::vector<int>> closed_chains;
    for (int i = 0; i < 3 * 12; ++i) {
      const int mode = i / 12;
      std::vector<int> met;
      unsigned flags = 0;
      int next = i % 12;
      do {
        met.push_back(next);
        flags |= data.params.ChannelResamplingType(next);
        next = data.params.ParentChannel(mode, next);
      } while (next != -1 && std::find(met.begin(), met.end(), next) == met.end());
      ASSERT_EQ(data.params.BaseChannel(mode, i % 12), met.back()) << text.str();
      ASSERT_EQ(data.params.ChannelFlags(mode, i % 12), static_cast<int>(flags)) << text.str();
      if (next == -1) continue;
      met.erase(met.begin(), std::find(met.begin(), met.end(), next));
      std::rotate(met.begin(), std::min_element(met.begin(), met.end()), met.end());
      closed_chains.insert(met);
    }
    closed += closed_chains.size();
    EXPECT_EQ(data.log.lines.size(), closed_chains.size()) << text.str();
  }
  EXPECT_GT(closed, 20U);
}

}  // namespace
