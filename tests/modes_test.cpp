// Test steps: what their ids hold, what virtual ones are called, and which of them are offered.

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "interfaces/signal/MeasuringUnit.h"
#include "test_store.h"

namespace {

using testing_support::TestStore;
using P = CQtParamInstance;

std::string Section(const std::string& name, const std::string& rows) {
  return "<" + name + ">: {\n" + rows + (rows.empty() ? "}\n" : "\n}\n");
}

// Two signals, the first with a direction; further rows of <TAutoModeParam> as given.
std::string DataBase(const std::string& auto_modes) {
  return Section("TMode", "5 Run\n6 Hidden\n7 Unset\n8 Nameless\n6149 Given") +
         Section("TPhysMode", "1 Spur") +
         Section("TModeProperty", "5 1 3\n6 1 1024\n8 9 0\n6149 1 1024\n-1 4 1024") +
         Section("TAppSignalProperty", "2 2 old 1 2 1\n3 2 Nm 1 1 1\n4 2 ---- 1 -1 1") +
         Section("TAutoModeParam", auto_modes);
}

const char* const two_rows = "2 600 10 300 1 0 5\n3 0 1 10 0 0 1";

TEST(ModeId, HoldsBaseAndExtension) {
  const std::tuple<int, bool, int, int> cases[] = {{2047, false, 2047, 0},
                                                   {2048, true, 0, 1},
                                                   {INT_MAX, true, 2047, 1048575},
                                                   {-1, false, -1, -1},
                                                   {INT_MIN, false, INT_MIN, INT_MIN}};
  for (const auto& [id, is_virtual, base, extension] : cases) {
    SCOPED_TRACE(id);
    EXPECT_EQ(P::IsVirtualMode(id), is_virtual);
    EXPECT_EQ(P::VirtMode2BaseMode(id), base);
    EXPECT_EQ(P::VirtModeExtension(id), extension);
  }
  const std::tuple<int, int, int> made[] = {{5, 131, 268293},
                                            {-1, 3, -1},
                                            {0, 1 << 20, INT_MIN},
                                            {0, -1, -2048},
                                            {INT_MAX, 1, INT_MIN + 2047}};
  for (const auto& [base, extension, id] : made) {
    EXPECT_EQ(P::VirtModeGenerateId(base, extension), id) << base << ' ' << extension;
  }
}

TEST(ModeId, HoldsADigitForEachRow) {
  const std::tuple<const char*, std::vector<int>, int> cases[] = {
      {two_rows, {2, 1}, 131},
      {"9\n1", {0, 62}, 1 + 63 * 64},  // key order, not the order of the lines
      {"1\n2\n3\n4", {0, 1, 2, 3}, 1 + 2 * 64 + 3 * 4096 + 4 * 262144},
      {"1\n2\n3\n4\n5\n6\n7", {0, 0, 0, 0, 0, 2, 62}, 0x1041041 - 0x40000000},
      {two_rows, {INT_MAX, INT_MIN}, INT_MIN + 64}};
  for (const auto& [rows, indices, extension] : cases) {
    SCOPED_TRACE(rows);
    const TestStore data(DataBase(rows));
    EXPECT_EQ(data.params.VirtModeExtension(indices.data()), extension);
    if (static_cast<unsigned>(extension) >= 1U << 20) continue;  // has no room in an id
    for (std::size_t i = 0; i < indices.size(); ++i) {
      EXPECT_EQ(P::VirtModeDigit(P::VirtModeGenerateId(5, extension), i), indices[i] + 1) << i;
    }
  }
  EXPECT_EQ(P::VirtModeDigit(INT_MAX, 3), 3);
  for (const std::size_t far : {4U, 5U, 6U, UINT_MAX}) EXPECT_EQ(P::VirtModeDigit(INT_MAX, far), 0);
  EXPECT_EQ(P::VirtModeDigit(-1, 0), 0);
  EXPECT_EQ(TestStore().params.VirtModeExtension(nullptr), 0);
}

TEST(VirtualMode, LiesInTheMiddleOfItsBand) {
  const std::tuple<float, float, unsigned, float> cases[] = {
      {0, 100, 1, 150}, {0, 1, 0, 1} /* half up */,      {-2.25F, 0.5F, 1, -1},
      {7, 0, 9, 7},     {0, 1, UINT_MAX, 4294967296.0F}, {-INFINITY, INFINITY, 0, NAN}};
  for (const auto& [start, step, index, expected] : cases) {
    QVAutoModeParams params;
    std::tie(params.start, params.step) = std::tie(start, step);
    const float position = P::VirtModePosition(params, index);
    EXPECT_TRUE(position == expected || (std::isnan(position) && std::isnan(expected)))
        << start << ' ' << step << ' ' << position;
  }
}

TEST(VirtualMode, IsNamedAfterItsPhysicalModeAndItsBands) {
  const auto id = [](int base, int low, int high = 0, int third = 0, int fourth = 0) {
    return base + ((low + 64 * high + 4096 * third + 262144 * fourth) << 11);
  };
  const std::tuple<const char*, int, const wchar_t*> cases[] = {
      {two_rows, id(5, 3, 2), L"Spur\u00B7750rpm--S\u00B715Nm"},
      {two_rows, id(5, 12, 1), L"Spur\u00B71350rpm--Z\u00B75Nm"},
      {two_rows, id(5, 1, 0), L"Spur\u00B7750rpm--S\u00B74.29497e+10Nm"},
      {two_rows, id(8, 1, 1), L"\u00B7750rpm--S\u00B75Nm"},  // a physical mode without a name
      {"2 0 1 10 0\n77 0 1 10 0\n78 0 1 10 1", id(5, 1, 1, 1), L"Spur\u00B75rpm\u00B7\u00B7"},
      {"4 0 1 0.1 0", id(5, 1), L"Spur\u00B70----"},
      {"1\n2 0 1 1 0\n3 0 1 1 0\n4 0 1 1 0", id(5, 1, 1, 1, 3),
       L"Spur\u00B7\u00B71rpm\u00B71Nm\u00B73----"},
      {"1\n11\n12\n13\n14\n15\n3 0 1 1 0", id(5, 1),
       L"Spur\u00B7\u00B74.29497e+09Nm\u00B7\u00B7\u00B7\u00B7\u00B7"},
      {"", id(5, 4), L"Run#4"},
      {"", id(7, 4), L""}};
  for (const auto& [rows, mode, name] : cases) {
    SCOPED_TRACE(testing::Message() << rows << ' ' << mode);
    const TestStore data(DataBase(rows));
    EXPECT_EQ(data.params.VirtModeName(mode), name);
    EXPECT_STREQ(data.params.ModeName(mode), name);
    EXPECT_STREQ(data.params.ClavisElementName(0, mode), name);
  }
  const TestStore data(DataBase(""));
  EXPECT_EQ(data.params.VirtModeName(6149), L"Run#3");
  EXPECT_STREQ(data.params.ModeName(6149), L"Given");
  EXPECT_EQ(data.params.VirtModeName(5), L"");
  EXPECT_STREQ(data.params.ModeName(5), L"Run");
}

TEST(VirtualMode, ShowsAPositionToAsManyDigitsAsAsked) {
  const TestStore data(DataBase("3 0 1 10 1"));
  const auto row = data.params.AutoModeParams().begin();
  const std::tuple<float, unsigned, const wchar_t*> cases[] = {
      {1234.5678F, 0, L"1234.57Nm--Z"},
      {1234.5678F, 1, L"1e+03Nm--Z"},
      {-INFINITY, UINT_MAX, L"-infNm--Z"},
      {16777216.0F, 0, L"1.67772e+07Nm--Z"},
      {1e38F, 200, L"99999996802856924650656260769173209088Nm--Z"}};
  for (const auto& [position, precision, text] : cases) {
    EXPECT_EQ(data.params.VirtModeNameFragment(row, true, position, precision), text);
  }
  EXPECT_EQ(data.params.VirtModeNameFragment(row, false, 1, 0), L"1Nm--S");
  const std::wstring longest = data.params.VirtModeNameFragment(
      row, true, std::numeric_limits<float>::denorm_min(), UINT_MAX);
  EXPECT_EQ(longest.size(), std::wstring(L"1.e-45Nm--Z").size() + 104);
}

TEST(VirtualMode, ShowsTheFirst499CharactersOfALongName) {
  const std::string full(190, 'n');
  const TestStore data(Section("TPhysMode", "1 " + full) + Section("TModeProperty", "5 1") +
                       Section("TAppSignalProperty", "2 0 " + full + " 1 1\n3 0 " + full + " 1 1") +
                       Section("TAutoModeParam", "2\n3"));
  const int id = 5 + ((1 + 64) << 11);
  const std::wstring name = data.params.VirtModeName(id);
  EXPECT_EQ(name.size(), 3 * 190U + 2 * 2);
  EXPECT_EQ(data.params.ModeName(id), name.substr(0, 499));
}

TEST(VirtualMode, TakesOneNameOfItsOwn) {
  TestStore data(DataBase(two_rows));
  P& params = data.params;
  constexpr int id = 5 + (65 << 11);
  for (const int refused : {INT_MIN, -1, 0, 5, 2047, 6149}) {
    EXPECT_FALSE(params.AddVModeName(refused, L"New")) << refused;
  }
  EXPECT_TRUE(params.AddVModeName(id, L"New"));
  EXPECT_FALSE(params.AddVModeName(id, L"Newer"));
  EXPECT_EQ(params.ModeId(L"New"), id);
  EXPECT_STREQ(params.ModeName(id), L"New");
  EXPECT_EQ(params.VirtModeName(id), L"Spur\u00B7750rpm--S\u00B75Nm");

  const std::wstring too_long(250, L'x');
  EXPECT_TRUE(params.AddVModeName(INT_MAX, too_long.c_str()));
  EXPECT_EQ(params.ModeName(INT_MAX), too_long.substr(0, 199));
  EXPECT_TRUE(params.AddVModeName(2048, nullptr));
  EXPECT_TRUE(params.IsValidMode(2048));
  params.PurgeTables();
  EXPECT_FALSE(params.IsValidMode(id));
  EXPECT_EQ(params.ModeId(L"New"), -1);
}

TEST(ModeProperties, AreThoseOfTheBaseButForHiding) {
  // Physical mode, whether it is hidden itself, whether its base has that type and type 2.
  using Properties = std::tuple<int, bool, bool, bool>;
  const std::pair<int, Properties> cases[] = {
      {5, {1, false, false, true}},
      {5 + 2048, {1, false, false, true}},
      {6, {1, true, true, false}},
      {6 + 2048, {1, false, true, false}},
      {6149, {1, true, false, true}},  // a row under the virtual id itself, its base is 5
      {7, {-1, false, false, false}},
      {-1, {-1, true, true, false}},  // has a row, but -1 has no physical mode
      {INT_MIN, {-1, false, false, false}}};
  const TestStore data(DataBase(two_rows));
  for (const auto& [id, expected] : cases) {
    EXPECT_EQ(Properties(data.params.PhysModeId(id), data.params.ModeIsHidden(id),
                         data.params.ModeIsOfType(id, QVModeProps::mode_hidden),
                         data.params.ModeIsOfType(id, static_cast<QVModeProps::modeFlag>(2))),
              expected)
        << id;
  }
}

TEST(MadeNames, BelongToTheThreadThatAsked) {
  const TestStore data(DataBase(two_rows));
  const wchar_t* const held = data.params.ModeName(5 + (65 << 11));
  std::thread([&data] {
    EXPECT_STREQ(data.params.ModeName(5 + (69 << 11)), L"Spur\u00B71050rpm--S\u00B75Nm");
  }).join();
  EXPECT_STREQ(held, L"Spur\u00B7750rpm--S\u00B75Nm");
}

TEST(SignalUnit, ComesFromTheCodeOrElseFromTheText) {
  using Unit = CMeasuringUnit;
  // The row's unit text, float, code and prefix; the unit and its prefix; the text that it gives.
  const std::tuple<const char*, Unit::commonUnits, short, const wchar_t*> cases[] = {
      {"old 1 3 3", Unit::frequency_hz, 3, L"kHz"},
      {"old 1 2 1", Unit::speed_rpm, 0, L"rpm"},
      {"old 1 29 -1", Unit::angular_acceleration_rad_s2, 0, L"rad/s\u00B2"},
      {"old 1 9 65533", Unit::displacement_m, -3, L"mm"},
      {"old 1 0 1", Unit::none, 0, L""},
      {"kHz 1 1 1", Unit::frequency_hz, 3, L"kHz"},
      {"bar 1 30 3", Unit::pressure_bar, 0, L"bar"},
      {"bar 1 -2147483648 3", Unit::pressure_bar, 0, L"bar"},
      {"---- 1 1 1", Unit::none, 0, L"----"},
      {"furlong 1 1 1", Unit::none, 0, L"furlong"}};
  for (const auto& [row, unit, prefix, text] : cases) {
    SCOPED_TRACE(row);
    const std::string rows = Section("TAppSignalProperty", std::string("4 2 ") + row);
    TestStore data(rows);
    const wchar_t* const in_table = data.params.AppSignalProperty().find(4)->second.unit_text;
    const std::wstring before = Text::FromUtf8(std::string(row, std::strcspn(row, " ")));
    EXPECT_EQ(in_table, before);
    EXPECT_EQ(data.params.ApplicationSignalUnit(4), Unit(unit, prefix, 1, 1.0F, 0));
    EXPECT_STREQ(in_table, text);
    EXPECT_EQ(data.params.ApplicationSignalUnit(5), Unit());

    // Names of virtual modes print the same text and put it into the row, after a change too.
    TestStore named(rows + Section("TAutoModeParam", "4 0 1 10"));
    QVAppSignalProperty& signal = named.params.AppSignalProperty().find(4)->second;
    EXPECT_EQ(signal.unit_text, before);
    const P& constant = named.params;
    const auto fragment = [&] {
      return constant.VirtModeNameFragment(constant.AutoModeParams().begin(), true, 5, 0);
    };
    EXPECT_EQ(fragment(), L"5" + std::wstring(text));
    EXPECT_STREQ(signal.unit_text, text);
    signal.unit_code = Unit::speed_rpm;
    signal.unit_prefix = 1;
    EXPECT_EQ(fragment(), L"5rpm");
    EXPECT_STREQ(signal.unit_text, L"rpm");
  }
}

}  // namespace
