// Test steps: what their ids hold, what virtual ones are called, and which of them are offered.

#include <gtest/gtest.h>

#include <barrier>
#include <climits>
#include <cmath>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "interfaces/MeasuringUnit.h"
#include "test_store.h"

namespace {

using testing_support::TestStore;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float not_a_number = std::numeric_limits<float>::quiet_NaN();

std::string Section(const std::string& name, const std::string& rows) {
  return "<" + name + ">: {\n" + rows + (rows.empty() ? "}\n" : "\n}\n");
}

// Two signals, the first with a direction; further rows of <TAutoModeParam> as given.
std::string DataBase(const std::string& auto_modes) {
  return Section("TMode", "5 Run\n6 Hidden\n7 Unset\n8 Nameless\n6149 Given") +
         Section("TPhysMode", "1 Spur") +
         Section("TModeProperty", "5 1 3\n6 1 1024\n8 9 0\n6149 1 1024") +
         Section("TAppSignalProperty", "2 2 old 1 2 1\n3 2 Nm 1 1 1\n4 2 ---- 1 -1 1") +
         Section("TAutoModeParam", auto_modes);
}

const char* const two_rows = "2 600 10 300 1 0 5\n3 0 1 10 0 0 1";

TEST(ModeId, HoldsBaseAndExtension) {
  struct Case {
    int id;
    bool is_virtual;
    int base, extension;
  };
  const Case cases[] = {{0, false, 0, 0},       {1, false, 1, 0},
                        {2047, false, 2047, 0}, {2048, true, 0, 1},
                        {268293, true, 5, 131}, {INT_MAX, true, 2047, (1 << 20) - 1},
                        {-1, false, -1, -1},    {INT_MIN, false, INT_MIN, INT_MIN}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.id);
    EXPECT_EQ(CQtParamInstance::IsVirtualMode(c.id), c.is_virtual);
    EXPECT_EQ(CQtParamInstance::VirtMode2BaseMode(c.id), c.base);
    EXPECT_EQ(CQtParamInstance::VirtModeExtension(c.id), c.extension);
    if (c.id <= 0) continue;
    EXPECT_EQ(CQtParamInstance::VirtModeGenerateId(c.base, c.extension), c.id);
  }
  struct Made {
    int base, extension, id;
  };
  const Made made[] = {{5, 3, 6149},
                       {5, 0, 5},
                       {-1, 3, -1},
                       {INT_MIN, INT_MAX, INT_MIN},
                       {2048, 0, 2048},
                       {0, 1 << 20, INT_MIN},
                       {0, -1, -2048},
                       {5, INT_MIN, 5},
                       {INT_MAX, 1, INT_MIN + 2047}};
  for (const Made& m : made) {
    EXPECT_EQ(CQtParamInstance::VirtModeGenerateId(m.base, m.extension), m.id)
        << m.base << ' ' << m.extension;
  }
}

TEST(ModeId, HoldsADigitForEachRow) {
  struct Case {
    const char* rows;
    std::vector<int> indices;
    int extension;
  };
  const Case cases[] = {{"", {}, 0},
                        {two_rows, {2, 1}, 131},
                        {two_rows, {-1, -1}, 0},
                        {two_rows, {62, 62}, 4095},
                        {"9\n1", {0, 62}, 1 + 63 * 64},  // key order, not the order of the lines
                        {"1\n2\n3\n4", {0, 1, 2, 3}, 1 + 2 * 64 + 3 * 4096 + 4 * 262144},
                        {"1\n2\n3\n4\n5\n6\n7",
                         {0, 0, 0, 0, 0, 2, 62},
                         1 + 64 + 4096 + 262144 + 16777216 - 1073741824},
                        {two_rows, {INT_MAX, INT_MIN}, INT_MIN + 64}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.rows);
    const TestStore data(DataBase(c.rows));
    EXPECT_EQ(data.params.VirtModeExtension(c.indices.data()), c.extension);
    const int id = CQtParamInstance::VirtModeGenerateId(5, c.extension);
    if (static_cast<unsigned>(c.extension) >= 1U << 20) continue;  // has no room in an id
    for (std::size_t i = 0; i < c.indices.size(); ++i) {
      EXPECT_EQ(CQtParamInstance::VirtModeDigit(id, i), c.indices[i] + 1) << i;
    }
  }
  EXPECT_EQ(CQtParamInstance::VirtModeDigit(INT_MAX, 3), 3);
  for (const std::size_t far : {4U, 5U, 6U, UINT_MAX}) {
    EXPECT_EQ(CQtParamInstance::VirtModeDigit(INT_MAX, far), 0) << far;
  }
  EXPECT_EQ(CQtParamInstance::VirtModeDigit(-1, 0), 0);
  EXPECT_EQ(CQtParamInstance::VirtModeDigit(INT_MIN, 0), 0);
}

TEST(VirtualMode, LiesInTheMiddleOfItsBand) {
  struct Case {
    float start, step;
    unsigned index;
    float position;
  };
  const Case cases[] = {{0, 100, 0, 50},
                        {0, 100, 1, 150},
                        {0, 1, 0, 1},  // half up
                        {-1, 1, 0, 0},
                        {-2.25F, 0.5F, 1, -1},
                        {7, 0, 9, 7},
                        {0, 1, UINT_MAX, 4294967296.0F},
                        {0, infinity, 0, infinity},
                        {infinity, -infinity, 0, not_a_number},
                        {not_a_number, 1, 0, not_a_number},
                        {-infinity, 3, 1, -infinity}};
  for (const Case& c : cases) {
    QVAutoModeParams params;
    params.start = c.start;
    params.step = c.step;
    const float position = CQtParamInstance::VirtModePosition(params, c.index);
    EXPECT_TRUE(position == c.position || (std::isnan(position) && std::isnan(c.position)))
        << c.start << ' ' << c.step << ' ' << position;
  }
}

TEST(VirtualMode, IsNamedAfterItsPhysicalModeAndItsBands) {
  const auto id = [](int base, int low, int high = 0, int third = 0, int fourth = 0) {
    return base + ((low + 64 * high + 4096 * third + 262144 * fourth) << 11);
  };
  struct Case {
    const char* rows;
    int id;
    const wchar_t* name;
  };
  const Case cases[] = {
      {two_rows, id(5, 3, 2), L"Spur\u00B7750rpm--S\u00B715Nm"},
      {two_rows, id(5, 12, 1), L"Spur\u00B71350rpm--Z\u00B75Nm"},
      {two_rows, id(5, 11, 1), L"Spur\u00B71350rpm--S\u00B75Nm"},
      {two_rows, id(5, 1, 0), L"Spur\u00B7750rpm--S\u00B74.29497e+10Nm"},
      {two_rows, id(8, 1, 1), L"\u00B7750rpm--S\u00B75Nm"},  // a physical mode without a name
      {two_rows, id(7, 1, 1), L""},                          // none at all
      {two_rows, id(99, 1, 1), L""},
      {two_rows, 5, L""},
      {"2 0 1 10 0\n77 0 1 10 0\n78 0 1 10 1", id(5, 1, 1, 1), L"Spur\u00B75rpm\u00B7\u00B7"},
      {"4 0 1 0.1 0", id(5, 1), L"Spur\u00B70----"},
      {"4 nan 1 inf 0", id(5, 1), L"Spur\u00B7nan----"},
      {"4 -inf 1 0 1", id(5, 2), L"Spur\u00B7-inf------Z"},
      {"4 0 1 3e7 0", id(5, 1), L"Spur\u00B71.5e+07----"},
      {"1\n2 0 1 1 0\n3 0 1 1 0\n4 0 1 1 0", id(5, 1, 1, 1, 3),
       L"Spur\u00B7\u00B71rpm\u00B71Nm\u00B73----"},
      {"1\n11\n12\n13\n14\n15\n3 0 1 1 0", id(5, 1),
       L"Spur\u00B7\u00B74.29497e+09Nm\u00B7\u00B7\u00B7\u00B7\u00B7"},
      {"", id(5, 3), L""},  // has a name of its own, below
      {"", id(5, 4), L"Run#4"},
      {"", id(7, 4), L""}};
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.rows) + " " + std::to_string(c.id));
    const TestStore data(DataBase(c.rows));
    if (c.id == 6149) {
      EXPECT_EQ(data.params.VirtModeName(c.id), L"Run#3");
      EXPECT_STREQ(data.params.ModeName(c.id), L"Given");
      continue;
    }
    EXPECT_EQ(data.params.VirtModeName(c.id), c.name);
    EXPECT_STREQ(data.params.ModeName(c.id), c.id == 5 ? L"Run" : c.name);
    EXPECT_STREQ(data.params.ClavisElementName(0, c.id), data.params.ModeName(c.id));
  }
  TestStore sample;
  ASSERT_TRUE(sample.LoadSample());
  EXPECT_STREQ(sample.params.ModeName(268448), L"Spur set\u00B7750rpm--S\u00B715Nm");
  EXPECT_STREQ(sample.params.ModeName(405664), L"Spur set\u00B71050rpm--Z\u00B725Nm");
}

TEST(VirtualMode, ShowsAPositionToAsManyDigitsAsAsked) {
  const TestStore data(DataBase("3 0 1 10 1"));
  const auto row = data.params.AutoModeParams().begin();
  struct Case {
    float position;
    unsigned precision;
    const wchar_t* text;
  };
  const Case cases[] = {{1234.5678F, 0, L"1234.57Nm--Z"},
                        {1234.5678F, 1, L"1e+03Nm--Z"},
                        {1234.5F, 5, L"1234.5Nm--Z"},
                        {0.5F, UINT_MAX, L"0.5Nm--Z"},
                        {-infinity, UINT_MAX, L"-infNm--Z"},
                        {16777216.0F, 0, L"1.67772e+07Nm--Z"},
                        {1e38F, 200, L"99999996802856924650656260769173209088Nm--Z"}};
  for (const Case& c : cases) {
    EXPECT_EQ(data.params.VirtModeNameFragment(row, true, c.position, c.precision), c.text);
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
  CQtParamInstance& params = data.params;
  constexpr int id = 5 + (65 << 11);
  for (const int refused : {INT_MIN, -1, 0, 5, 2047, 6149}) {
    EXPECT_FALSE(params.AddVModeName(refused, L"New")) << refused;
  }
  EXPECT_EQ(params.ModeId(L"New"), -1);
  EXPECT_FALSE(params.IsValidMode(id));
  EXPECT_TRUE(params.AddVModeName(id, L"New"));
  EXPECT_FALSE(params.AddVModeName(id, L"Newer"));
  EXPECT_TRUE(params.IsValidMode(id));
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
  const TestStore data(DataBase(two_rows));
  struct Case {
    int id, phys_mode;
    bool hidden, of_hidden_type, of_type_2;
  };
  const Case cases[] = {
      {5, 1, false, false, true},         {5 + 2048, 1, false, false, true},
      {6, 1, true, true, false},          {6 + 2048, 1, false, true, false},
      {6149, 1, true, false, true},  // a row under the virtual id itself, its base is 5
      {7, -1, false, false, false},       {8, 9, false, false, false},
      {-1, -1, false, false, false},      {0, -1, false, false, false},
      {INT_MAX, -1, false, false, false}, {INT_MIN, -1, false, false, false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.id);
    EXPECT_EQ(data.params.PhysModeId(c.id), c.phys_mode);
    EXPECT_EQ(data.params.ModeIsHidden(c.id), c.hidden);
    EXPECT_EQ(data.params.ModeIsOfType(c.id, QVModeProps::mode_hidden), c.of_hidden_type);
    EXPECT_EQ(data.params.ModeIsOfType(c.id, static_cast<QVModeProps::modeFlag>(2)), c.of_type_2);
  }
  const TestStore odd(Section("TModeProperty", "-1 4 1024"));
  EXPECT_EQ(odd.params.PhysModeId(-1), -1);
}

// Before a load, and after a purge of what was loaded.
TEST(Modes, AnswerWithoutTables) {
  TestStore data;
  for (const char* state : {"before", "purged"}) {
    for (const int id : {INT_MIN, -1, 0, 5, 6149, INT_MAX}) {
      SCOPED_TRACE(std::string(state) + std::to_string(id));
      EXPECT_STREQ(data.params.ModeName(id), L"");
      EXPECT_EQ(data.params.VirtModeName(id), L"");
      EXPECT_EQ(data.params.PhysModeId(id), -1);
      EXPECT_FALSE(data.params.ModeIsHidden(id));
      EXPECT_FALSE(data.params.ModeIsOfType(id, QVModeProps::mode_hidden));
      EXPECT_EQ(data.params.ApplicationSignalUnit(id), CMeasuringUnit());
    }
    EXPECT_EQ(data.params.VirtModeExtension(nullptr), 0);
    data.Load(DataBase(two_rows));
    data.params.PurgeTables();
  }
}

TEST(MadeNames, BelongToTheThreadThatAsked) {
  const TestStore data(DataBase(two_rows));
  std::barrier both_hold_a_name(2);
  std::wstring seen[2];
  const auto ask = [&](int thread) {
    const wchar_t* name = data.params.ModeName(5 + ((65 + thread * 4) << 11));
    both_hold_a_name.arrive_and_wait();
    seen[thread] = name;
  };
  std::thread other(ask, 1);
  ask(0);
  other.join();
  EXPECT_EQ(seen[0], L"Spur\u00B7750rpm--S\u00B75Nm");
  EXPECT_EQ(seen[1], L"Spur\u00B71050rpm--S\u00B75Nm");
}

TEST(SignalUnit, ComesFromTheCodeOrElseFromTheText) {
  using Unit = CMeasuringUnit;
  struct Case {
    const char* row;  // unit text, float, code, prefix
    Unit unit;
    const wchar_t* text_before;
    const wchar_t* text_after;
  };
  const auto unit = [](Unit::commonUnits kind, short prefix = 0) {
    return Unit(kind, prefix, 1, 1.0F, 0);
  };
  const Case cases[] = {
      {"old 1 3 3", unit(Unit::frequency_hz, 3), L"old", L"kHz"},
      {"old 1 2 1", unit(Unit::speed_rpm), L"old", L"rpm"},
      {"old 1 29 -1", unit(Unit::angular_acceleration_rad_s2), L"old", L"rad/s\u00B2"},
      {"old 1 9 65533", unit(Unit::displacement_m, -3), L"old", L"mm"},
      {"old 1 9 -2147483648", unit(Unit::displacement_m), L"old", L"m"},
      {"bar 1 0 1", unit(Unit::none), L"bar", L""},
      {"kHz 1 1 1", unit(Unit::frequency_hz, 3), L"kHz", L"kHz"},
      {"bar 1 30 3", unit(Unit::pressure_bar), L"bar", L"bar"},
      {"bar 1 -7 3", unit(Unit::pressure_bar), L"bar", L"bar"},
      {"bar 1 2147483647 3", unit(Unit::pressure_bar), L"bar", L"bar"},
      {"bar 1 -2147483648 3", unit(Unit::pressure_bar), L"bar", L"bar"},
      {"---- 1 1 1", unit(Unit::none), L"----", L"----"},
      {"furlong 1 1 1", unit(Unit::none), L"furlong", L"furlong"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.row);
    const std::string rows = Section("TAppSignalProperty", std::string("4 2 ") + c.row);
    TestStore data(rows);
    const wchar_t* text = data.params.AppSignalProperty().find(4)->second.unit_text;
    EXPECT_STREQ(text, c.text_before);
    EXPECT_EQ(data.params.ApplicationSignalUnit(4), c.unit);
    EXPECT_STREQ(text, c.text_after);
    EXPECT_EQ(data.params.ApplicationSignalUnit(5), CMeasuringUnit());

    // Names of virtual modes print the same text, and the row of such a signal holds it.
    const TestStore named(rows + Section("TAutoModeParam", "4 0 1 10"));
    EXPECT_EQ(named.params.VirtModeNameFragment(named.params.AutoModeParams().begin(), true, 5, 0),
              std::wstring(L"5") + c.text_after);
    EXPECT_STREQ(named.params.AppSignalProperty().find(4)->second.unit_text, c.text_after);
  }
}

}  // namespace
