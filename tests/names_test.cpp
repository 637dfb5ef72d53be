// Names that the library makes: how long they get, and whom they belong to.
#include "interfaces/signal/MeasuringUnit.h"
#include "support.h"

namespace {

constexpr int virtual_5 = 5 + (65 << 11);  // two digits of 1

const std::string two_signals = Section("TPhysMode", "1 Spur\n") +
                                Section("TModeProperty", "5 1\n") +
                                Section("TAppSignalProperty", "2 0 rpm 1 1\n3 0 Nm 1 1\n") +
                                Section("TAutoModeParam", "2 600 10 300\n3 0 1 10\n");

TEST(MadeNames, BelongToTheThreadThatAsked) {
  const TestStore data(two_signals);
  const wchar_t* const held = data.params.ModeName(virtual_5);
  std::thread([&data] {
    EXPECT_STREQ(data.params.ModeName(virtual_5 + 2048), L"Spur\u00B71050rpm\u00B75Nm");
  }).join();
  EXPECT_STREQ(held, L"Spur\u00B7750rpm\u00B75Nm");
}

TEST(MadeNames, FollowAUnitThatAHostChanges) {
  TestStore data(two_signals);
  QVAppSignalProperty& signal = data.params.AppSignalProperty().find(3)->second;
  std::tie(signal.unit_code, signal.unit_prefix) = std::tuple(CMeasuringUnit::frequency_hz, 3);
  EXPECT_STREQ(data.params.ModeName(virtual_5), L"Spur\u00B7750rpm\u00B75kHz");
  EXPECT_STREQ(signal.unit_text, L"kHz");
}

TEST(MadeNames, ShowTheFirst499Characters) {
  const std::string n(190, 'n');
  const TestStore data(two_signals + Section("TPhysMode", "1 " + n + "\n") +
                       Section("TAppSignalProperty", "2 0 " + n + " 1 1\n3 0 " + n + " 1 1\n") +
                       Section("TInstrument", "10 " + n + "\n") +
                       Section("TApplicationSignal", "7 " + n + "\n"));
  const std::wstring name = data.params.VirtModeName(virtual_5);
  EXPECT_EQ(name.size(), 3 * 190U + 6);
  EXPECT_EQ(data.params.ModeName(virtual_5), name.substr(0, 499));
  EXPECT_EQ(
      data.params.FormatClavisTextNice({-1, 10, -1, -1, 1, 7}, std::wstring(112, L's').c_str())
          .size(),
      499U);
}

TEST(GivenNames, AreCutTo199Characters) {
  TestStore data(two_signals);
  const std::wstring longest(199, L'x');
  EXPECT_TRUE(data.params.AddVModeName(virtual_5, (longest + L"y").c_str()));
  EXPECT_EQ(data.params.ModeName(virtual_5), longest);
  EXPECT_EQ(data.log.lines.size(), 1U);
  EXPECT_EQ(data.params.ModeId((longest + L"z").c_str()), virtual_5);
}

}  // namespace
