// Where a channel's signal comes from: parents, base channels, what a chain is resampled for.

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "test_store.h"

namespace {

using testing_support::TestStore;

constexpr int lowest = std::numeric_limits<int>::min();
constexpr int highest = std::numeric_limits<int>::max();

TEST(Channels, FollowTheirParentsToTheBaseChannel) {
  TestStore data(
      "<TMode>: {\n1 a\n2 b\n3 c\n}\n"
      "<TChannel>: {\n-1 none\n1 one\n2 two\n3 three\n4 four\n5 five\n6 six\n}\n"
      "<TChannelProperty>: {\n1 2\n3 1\n4 4\n6 4294967295\n55 4\n}\n"
      "<TChannelInheritance>: {\n3 -1 2\n2 -1 1\n3 2 4\n3 3 -1\n5 -1 55\n}\n");
  const int virtual_2 = CQtParamInstance::VirtModeGenerateId(2, 9);
  struct Case {
    int mode, channel, parent, base, flags;
  };
  const Case cases[] = {
      {1, 1, -1, 1, 2},        {1, 2, 1, 1, 2},
      {1, 3, 2, 1, 3},         {2, 3, 4, 4, 5},     // a row of its own
      {3, 3, -1, 3, 1},                             // one that says: no parent here
      {virtual_2, 3, 4, 4, 5},                      // as its base mode
      {1, 5, 55, 55, 4},                            // by way of a channel without a name
      {1, 6, -1, 6, -1},       {1, -1, -1, -1, 0},  // all bits; a channel that is called none
      {1, 55, -1, 0, 0},       {1, highest, -1, 0, 0},
      {1, lowest, -1, 0, 0},                      // no channels of the data base
      {4, 3, 2, 0, 0},         {-1, 3, 2, 0, 0},  // no modes of it
      {0, 3, 2, 0, 0},         {-1, 1, -1, 0, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.mode) + " " + std::to_string(c.channel));
    EXPECT_EQ(data.params.ParentChannel(c.mode, c.channel), c.parent);
    EXPECT_EQ(data.params.BaseChannel(c.mode, c.channel), c.base);
    EXPECT_EQ(data.params.ChannelFlags(c.mode, c.channel), c.flags);
  }
  const std::tuple<int, unsigned, const char*> types[] = {
      {1, 2, "mix"}, {2, 0, ""}, {3, 1, "sync"}, {4, 4, "fix"}, {6, ~0U, "syncmixfix"}, {9, 0, ""}};
  for (const auto& [channel, type, bits] : types) {
    EXPECT_EQ(data.params.ChannelResamplingType(channel), type) << channel;
    EXPECT_EQ(std::string(data.params.ChannelIsSync(channel) ? "sync" : "") +
                  (data.params.ChannelIsMix(channel) ? "mix" : "") +
                  (data.params.ChannelIsFix(channel) ? "fix" : ""),
              bits)
        << channel;
  }
  EXPECT_EQ(data.log.Text(), L"");
}

TEST(Channels, TheSampleHasARowForEachTestStepAndChannel) {
  TestStore data;
  ASSERT_TRUE(data.LoadSample());
  EXPECT_EQ(data.params.ParentChannel(130, 7), 3);
  EXPECT_EQ(data.params.ParentChannel(170, 7), 5);
  EXPECT_EQ(data.params.BaseChannel(170, 7), 1);
  EXPECT_EQ(data.params.ChannelFlags(130, 8), 2 | 4);  // mix, over the envelope, which is fix
  data.log.lines.clear();
  data.params.DumpTables(0);
  const auto at = [&](const wchar_t* line) {
    return std::find_if(data.log.lines.begin(), data.log.lines.end(),
                        [line](const auto& logged) { return logged.text == line; });
  };
  const auto head = at(L"<-\t<PiBaseChannelId>\n");
  ASSERT_NE(head, data.log.lines.end());
  EXPECT_EQ(at(L"->\t<PiBaseChannelId>\n") - head, 24 * 8 + 1);
  EXPECT_EQ(std::next(head)->text, L"   1:\t130 1 | 1 4\n");
  EXPECT_GT(head, at(L"->\t<TLearnProcedures>\n"));
  EXPECT_EQ(at(L"<-\t<PiRotor2OrderSources>\n"), data.log.lines.end());
}

TEST(Channels, AClosedChainEndsWhereItWouldMeetItselfAndIsReportedOnce) {
  const std::string modes = "<TMode>: {\n1 a\n2 b\n}\n<TChannel>: {\n";
  TestStore data;
  for (int load = 0; load < 2; ++load) {  // reported anew by each load
    data.log.lines.clear();
    ASSERT_TRUE(data.Load(modes +
                          "1 a\n2 b\n3 c\n4 d\n5 e\n}\n<TChannelProperty>: {\n1 1\n3 2\n4 4\n}\n"
                          "<TChannelInheritance>: {\n1 -1 3\n3 -1 2\n2 -1 3\n4 -1 4\n2 2 -1\n}\n"));
    const int bases[] = {2, 3, 2, 4, 5};
    const int flags[] = {3, 2, 2, 4, 0};
    for (int channel = 1; channel <= 5; ++channel) {
      EXPECT_EQ(data.params.BaseChannel(1, channel), bases[channel - 1]) << channel;
      EXPECT_EQ(data.params.ChannelFlags(1, channel), flags[channel - 1]) << channel;
    }
    EXPECT_EQ(data.params.BaseChannel(2, 3), 2);  // in the other test step 2 has no parent
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
  EXPECT_EQ(data.params.BaseChannel(2, 7), 6);
}

// Random parents, so that chains share ends and close on themselves in all ways.
TEST(Channels, BaseChannelsAreThoseOfAPlainWalk) {
  std::mt19937 random(77);
  int closed = 0;
  for (int round = 0; round < 60; ++round) {
    std::string text = "<TMode>: {\n0 a\n1 b\n2 c\n}\n<TChannel>: {\n";
    std::string types = "}\n<TChannelProperty>: {\n";
    for (int channel = 0; channel < 14; ++channel) {
      const std::string id = std::to_string(channel);
      if (channel < 12) text += id + " c\n";
      types += id + " " + std::to_string(1U << (random() % 8)) + "\n";
    }
    text += types + "}\n<TChannelInheritance>: {\n";
    for (int row = 0; row < 5 + round / 3; ++row) {
      text += std::to_string(random() % 14) + " " + std::to_string(int(random() % 4) - 1) + " " +
              std::to_string(int(random() % 15) - 1) + "\n";
    }
    TestStore data(text + "}\n");
    std::set<std::vector<int>> closed_chains;
    for (int mode = 0; mode < 3; ++mode) {
      for (int channel = 0; channel < 12; ++channel) {
        std::vector<int> met;
        unsigned flags = 0;
        int next = channel;
        do {
          met.push_back(next);
          flags |= data.params.ChannelResamplingType(next);
          next = data.params.ParentChannel(mode, next);
        } while (next != -1 && std::find(met.begin(), met.end(), next) == met.end());
        if (next != -1) {
          std::vector<int> chain(std::find(met.begin(), met.end(), next), met.end());
          std::rotate(chain.begin(), std::min_element(chain.begin(), chain.end()), chain.end());
          closed_chains.insert(chain);
        }
        ASSERT_EQ(data.params.BaseChannel(mode, channel), met.back()) << text;
        ASSERT_EQ(data.params.ChannelFlags(mode, channel), static_cast<int>(flags)) << text;
      }
    }
    closed += static_cast<int>(closed_chains.size());
    EXPECT_EQ(data.log.lines.size(), closed_chains.size()) << text;
  }
  EXPECT_GT(closed, 20);
}

}  // namespace
