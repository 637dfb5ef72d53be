// What the lines of each section hold. A wrong field order, kind or default misreads a whole table
// without a word, so the catalogue is held against a table that was typed by hand.

#include <gtest/gtest.h>

#include <ctime>
#include <iterator>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "frame/QtParamInstance.h"
#include "inspect/TableCatalogue.h"
#include "test_store.h"

namespace {

struct Expected {
  int made;
  const wchar_t* section;
  const char* accessor;
  char container;   // v sorted vector, t tree, m multi map
  const char* key;  // i integer, u unsigned, l long, L long long, f float, t text, k key
  const char* row;  // the same, each kind with its default; now: the time of the load
};

// In the order of registration.
constexpr Expected expected[] = {
    {3, L"<TMode>", "Mode", 't', "i", "t"},
    {4, L"<TChannel>", "Channel", 't', "i", "t"},
    {5, L"<TLocation>", "Location", 't', "i", "t"},
    {6, L"<TInstrument>", "Instrument", 't', "i", "t"},
    {7, L"<TInstrumentParam>", "InstrumentParam", 'v', "i", "i-1 t i0 u0 u0"},
    {8, L"<TPhysMode>", "PhysMode", 't', "i", "t"},
    {9, L"<TResamplingGroup>", "ResamplingJob", 't', "i", "t"},
    {10, L"<TProcessingUnit>", "ResamplingSet", 't', "i", "t"},
    {11, L"<TSensorGroup>", "SensorGroup", 't', "i", "t"},
    {12, L"<TTrigger>", "Trigger", 'v', "i", "t i0"},
    {13, L"<TApplicationSignal>", "ApplicationSignal", 't', "i", "t"},
    {14, L"<TSignalUnit>", "SignalUnit", 't', "i", "t"},
    {1, L"<TAliasType>", "TypeNames", 't', "i", "t"},
    {2, L"<TAliasBench>", "BenchNames", 't', "i", "t"},
    {15, L"<TModeProperty>", "ModeProperty", 'v', "i", "i-1 u0 i-1 i0"},
    {16, L"<TModeTranslate>", "ModeTranslate", 'v', "t", "i-1"},
    {17, L"<TChannelProperty>", "ChannelProperty", 'v', "i", "u0 i-1"},
    {18, L"<TChannelInheritance>", "", 'v', "ii", "i-1"},
    {19, L"<TLocationProperty>", "LocationProperty", 'v', "i", "i0 i0 i0"},
    {20, L"<TRotorSpeed>", "", 'v', "ii", "f0"},
    {21, L"<TBaseOrder>", "", 'v', "i", "f0"},
    {22, L"<TVirtual2PhysGear>", "", 'v', "ii", "i-1"},
    {23, L"<TSpeedSource>", "", 'v', "i", "i-1"},
    {24, L"<TRotorSpeedSource>", "", 'v', "ii", "i-1"},
    {25, L"<TOrderSource2Rotor>", "", 'v', "ii", "i-1"},
    {26, L"<TSensorGroupList>", "SensorGroupList", 'm', "i", "i-1 i-1"},
    {27, L"<TResampling>", "", 'v', "ii", "i-1 i-1 i-1 u1024 u1 f1 i1 f50 i-1"},
    {28, L"<TResamplingM>", "ResamplingParams", 'v', "ii", "i-1 i-1 i-1 u1024 u1 f1 i1 f50 i-1"},
    {29, L"<TAppSignalProperty>", "AppSignalProperty", 'v', "i", "i0 t f1 i0 i0"},
    {30, L"<TTpSensorConfig>", "SensorConfigName", 't', "i", "t"},
    {31, L"<TTpSensorConfigProperty>", "SensorConfiguration", 'v', "iii", "i-1"},
    {32, L"<TSignalDispatch>", "SignalDispatch", 'v', "i", "i-1"},
    {33, L"<TTriggerParam>", "TriggerParam", 'v', "iii", "i-1 u0 f0 f0 f0 u0 i0 i0 i-1 i0"},
    {34, L"<TAutoModeParam>", "AutoModeParams", 't', "i", "f0 f10 f1 i0 i0 f5"},
    {35, L"<TAutoMode>", "AutoMode", 'v', "i", "i-1"},
    {36, L"<TAutoModeSelector>", "AutoModeSelector", 'm', "i", "k-1 -1 -1 -1 -1 -1 f0 f0 i-1"},
    {37, L"<TIpParamAndStore>", "IpParamAndStore", 'v', "iiiiii", "i0 f0 f0 i0 f0"},
    {38, L"<TInstrumentProperty>", "InstrumentProperty", 'v', "i", "i-1 i0 i0"},
    {39, L"<TIpCalcParameter>", "IpCalcParameter", 'v', "ii", "t"},
    {40, L"<TGrex10001>", "", 'v', "iiiiii", "i0 i-1 i-1 i-1 f0 i0 f0 f0 f0 f0"},
    {42, L"<TGrex11>", "IpRunTest", 'v', "iiiiii", "i1"},
    {43, L"<TLimSValue>", "LimSValue", 'v', "iiiiii", "i0 f0 f0"},
    {44, L"<TLimCValue>", "LimCValue", 'v', "iiiiii", "i0 i-1 i-1 i0 i-1"},
    {45, L"<TIpPolygon>", "IpPolygon", 'v', "i", "i-1 t"},
    {46, L"<TIpPolygonValue>", "", 'v', "if", "f0"},
    {47, L"<TIpPolygonProperty>", "IpPolygonProperty", 'v', "i", "i-1 i1"},
    {48, L"<TLimArea>", "LimArea", 'v', "iiiiii", "i0 f0 f0"},
    {49, L"<TGrex15>", "RelativeLimit", 'v', "iiiiii", "f0 f0"},
    {50, L"<TErrorCode>", "ErrorCode", 'v', "i", "i0 t i-1 i-1 l0"},
    {51, L"<TExternalError>", "ExternalError", 'v', "i", "i-1 i-1 i-1 i-1 i-1 i-1 i-1"},
    {52, L"<TErrorGroup>", "SeverityProperty", 'v', "i", "l0 l4 t t"},
    {53, L"<TShadowGroupProperty>", "ShadowGroupProperty", 'v', "i", "l0"},
    {54, L"<TRetype>", "RetypeDefinition", 'v', "i", "i-1"},
    {55, L"<TClavisUserNames>", "ClavisUserNames", 'v', "iiiii", "t i0 i1"},
    {56, L"<TLearnProcedures>", "LearnProcedures", 'v', "i", "i0 u0 f1 t"},
    {41, L"<TIpLearnParams>", "IpLearnParameter", 'v', "iiiiii", "i-1 Lnow u0 Lnow"},
};

std::string Kinds(const std::vector<TableCatalogue::FieldInfo>& fields) {
  const std::string letters = "iulLftk";
  std::string kinds;
  for (const auto& field : fields) kinds += letters[static_cast<std::size_t>(field.kind)];
  return kinds;
}

std::string KindsAndDefaults(const std::vector<TableCatalogue::FieldInfo>& fields) {
  std::string text;
  for (const auto& field : fields) {
    if (!text.empty()) text += ' ';
    text += Kinds({field});
    text += field.default_text == "the time of the load" ? "now" : field.default_text;
  }
  return text;
}

TEST(Catalogue, EveryTableHoldsTheFieldsThatItsLinesGive) {
  const auto& tables = TableCatalogue::Tables();
  ASSERT_EQ(tables.size(), std::size(expected));
  for (std::size_t i = 0; i < tables.size(); ++i) {
    const auto& table = tables[i];
    SCOPED_TRACE(Text::ToUtf8(table.section));
    EXPECT_EQ(table.reading_place, static_cast<int>(i) + 1);
    EXPECT_EQ(table.making_place, expected[i].made);
    EXPECT_EQ(table.section, expected[i].section);
    EXPECT_EQ(table.accessor, expected[i].accessor);
    const std::map<char, std::string> containers = {
        {'v', "sorted vector"}, {'t', "tree"}, {'m', "multi map"}};
    EXPECT_EQ(table.container, containers.at(expected[i].container));
    EXPECT_EQ(table.unique_keys, expected[i].container != 'm');
    EXPECT_EQ(Kinds(table.key), expected[i].key);
    EXPECT_EQ(KindsAndDefaults(table.row), expected[i].row);
    EXPECT_EQ(TableCatalogue::Find(expected[i].section), &table);
  }
  EXPECT_EQ(TableCatalogue::Find(L"<TNothing>"), nullptr);
}

TEST(Catalogue, TheManagerHasTheTablesInTheirOrder) {
  const testing_support::TestStore data;
  const CQTableManager& manager = data.store.Manager();
  for (unsigned i = 0; i < std::size(expected); ++i) {
    const auto* table = dynamic_cast<const CQParamBaseTable*>(manager.Table(i));
    ASSERT_NE(table, nullptr) << i;
    EXPECT_STREQ(table->name, expected[i].section);
  }
  EXPECT_EQ(manager.Table(56), nullptr);
}

TEST(Catalogue, FieldsOfARowGoWhereTheirNamesSay) {
  testing_support::TestStore data(
      "<TAppSignalProperty>: {\n12 1 \"bar\" 2.5 7 3\n}\n"
      "<TAutoModeSelector>: {\n1 10 11 12\n1 20 21 22 23 24 25 1.5 2.5 7\n}\n");
  const auto& signal = data.params.AppSignalProperty().find(12)->second;
  EXPECT_EQ(std::tuple(signal.signal_type, std::wstring(signal.unit_text), signal.third,
                       signal.unit_code, signal.unit_prefix),
            std::tuple(1, L"bar", 2.5F, 7, 3));

  // A key inside a row is read as far as its line goes; what it doesn't reach stays.
  auto selector = data.params.AutoModeSelector().begin();
  EXPECT_EQ(selector->second.clavis, QClavis(10, 11, 12, -1, -1, -1));
  ++selector;
  EXPECT_EQ(selector->second.clavis, QClavis(20, 21, 22, 23, 24, 25));
  EXPECT_EQ(selector->second.fourth, 7);
}

TEST(Catalogue, LearnTimesAreThoseOfTheLoad) {
  const long long before = std::time(nullptr);
  testing_support::TestStore data("<TIpLearnParams>: {\n1 1 1 1 1 1 5\n3 1 1 1 1 1 7 42 8 43\n}\n");
  auto row = data.params.IpLearnParameter().begin();
  EXPECT_GE(row->second.time_1, before);
  EXPECT_LE(row->second.time_1, std::time(nullptr));
  EXPECT_EQ(row->second.time_2, row->second.time_1);
  ++row;
  EXPECT_EQ(std::pair(row->second.time_1, row->second.time_2), std::pair(42LL, 43LL));
}

}  // namespace
