// The load as a whole: which data bases are accepted, what each state of the server's life holds,
// what a load computes from the tables.

#include <gtest/gtest.h>

#include <iterator>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "frame/QtParamServer.h"
#include "inspect/TableCatalogue.h"
#include "test_store.h"

namespace {

using kestrin::Refusal;
using testing_support::FillCandidateLake;
using testing_support::Log;
using testing_support::TestStore;
using testing_support::version;

TEST(VersionGate, AcceptsMajor215FromMinor1On) {
  const std::wstring head =
      L"CQTableManager::ReadTablesFromCandidateLake(): Loading parameter data base failed:\n"
      L"\tTable version ";
  const std::wstring low =
      L" is less than least supported version 215.1\n"
      L"\tDelete all cache files and try again.\n"
      L"\tIf the load still fails, please contact Tavrel.\n";
  const std::wstring high =
      L" is greater than highest supported major version 215"
      L"\tPlease contact Tavrel for a software update.\n";
  struct Case {
    const char* major;
    const char* minor;
    std::wstring refusal;
    Refusal::Reason reason = Refusal::none;
  };
  const Case cases[] = {
      {"215", "1", L""},
      {"215", "7", L""},
      {" 215 and more", "+1x", L""},
      {"215", "2147483648", L""},  // the nearest bound
      {"214", "9", head + L"214.9" + low, Refusal::version_too_low},
      {"215", "0", head + L"215.0" + low, Refusal::version_too_low},
      {"215", "-1", head + L"215.-1" + low, Refusal::version_too_low},
      {"-215", "1", head + L"-215.1" + low, Refusal::version_too_low},
      {"x215", "1", head + L"0.1" + low, Refusal::version_too_low},
      {"\"215\"", "1", head + L"0.1" + low, Refusal::version_too_low},
      {"216", "0", head + L"216.0" + high, Refusal::version_too_high},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.major) + "." + c.minor);
    TestStore data("<TMode>: {\n1 old\n}\n");
    data.log.lines.clear();
    const bool loaded =
        data.LoadText(std::string("<DbDesign.CacheVersion>: ") + c.major +
                      "\n<DbDesign.CacheMinorVersion>: " + c.minor + "\n<TMode>: {\n1 new\n}\n");
    EXPECT_EQ(loaded, c.refusal.empty());
    EXPECT_EQ(data.log.Text(), c.refusal);
    EXPECT_EQ(data.params.LastRefusal().reason, c.reason);
    EXPECT_STREQ(data.params.Mode().Name(1), loaded ? L"new" : L"old");
    for (const auto& line : data.log.lines) EXPECT_EQ(line.category * 10 + line.style, 84);
  }
  TestStore data;
  EXPECT_FALSE(data.LoadText("a: b\n"));
  EXPECT_EQ(data.log.Text(), head + L"0.0" + low);
  EXPECT_EQ(data.params.LastRefusal().reason, Refusal::no_version);
  data.log.lines.clear();
  EXPECT_FALSE(data.LoadText(""));
  EXPECT_TRUE(data.log.lines.empty());
  EXPECT_EQ(data.params.LastRefusal().reason, Refusal::empty_lake);
  EXPECT_TRUE(data.Load(""));
  EXPECT_FALSE(data.params.LastRefusal());
}

// A value that a host has set may have blanks in front, which stay there.
TEST(Documents, NamesAreCutToOneWord) {
  const std::pair<const wchar_t*, const wchar_t*> cases[] = {
      {L" \t\"two words\" third", L"two words"}, {L" \tword more", L" \tword"}, {L" \t ", L" \t "}};
  TestStore data;
  for (const auto& [value, name] : cases) {
    FillCandidateLake(version);
    CParameterLake::Lake()[L"<QType><FBaseName>"] = value;
    EXPECT_TRUE(data.params.ReadTablesFromCandidateLake());
    EXPECT_EQ(data.params.BaseType(), name) << value;
  }
  CParameterLake::Lake().clear();
  data.store.Clear();
  EXPECT_EQ(data.params.BaseType(), L" \t ");
}

// The one server of the process, from its first use through all of its states. It looks at the seas
// in that first use, so this takes a process of its own, as ctest gives it to each test.
TEST(Server, LivesThroughItsStates) {
  CResourceSea application;
  testing_support::AddLines(application, L"<TAutoModeParam>", {L"2 100 10 25 1 0 5"});
  CResourceSea* const before = CSeaBase::ApplicationSea();
  CSeaBase::SetApplicationSea(&application);
  CParameterLake::Lake().clear();
  CQtParamInstance params;
  const auto state = [&params] {
    std::ostringstream out;
    out << (params.Initialized() ? "ready" : "not ready") << ", modes " << params.Mode().size()
        << ", one is " << params.ModeId(L"one") << ", auto modes " << params.AutoModeParams().size()
        << ", trigger " << params.TriggerId(5) << ", time signal "
        << CQtParamInstance::TimeSignalId() << ", type " << Text::ToUtf8(params.BaseType());
    return out.str();
  };
  const std::string text =
      version + std::string(
                    "<QType><FBaseName>: base\n<TMode>: {\n1 one\n}\n"
                    "<TInstrumentParam>: {\n5 1 p\n}\n<TIpCalcParameter>: {\n5 1 77\n}\n"
                    "<TAppSignalProperty>: {\n3 1\n4 4\n6 4\n}\n");

  // Empty.
  const std::string empty =
      "not ready, modes 0, one is -1, auto modes 0, trigger -1, time signal -1, type ";
  EXPECT_EQ(state(), empty);
  EXPECT_FALSE(params.ReadTablesFromCandidateLake());
  EXPECT_EQ(state(), empty);

  // Loaded; seen through every handle, the lake unchanged, the missing section read from the sea.
  FillCandidateLake(text);
  EXPECT_TRUE(params.ReadTablesFromCandidateLake());
  CQtParamServer::Object().Create();
  EXPECT_EQ(state(),
            "ready, modes 1, one is 1, auto modes 1, trigger 77, time signal 4, type base");
  EXPECT_STREQ(CQtParamInstance(nullptr).Mode().Name(1), L"one");
  EXPECT_EQ(CParameterLake::Lake()[L"<TMode>"]->unnamed_size(), 1U);

  // What was changed in the table goes back to the sea, and from there into the next load.
  params.AutoModeParams().Assign(9, QVAutoModeParams());
  params.WriteTablesToLocalSeas();
  EXPECT_TRUE(params.ReadTablesFromCandidateLake());
  EXPECT_EQ(state(),
            "ready, modes 1, one is 1, auto modes 2, trigger 77, time signal 4, type base");

  // Purged: rows and document names gone, everything else as before.
  params.PurgeTables();
  EXPECT_EQ(state(), "ready, modes 0, one is -1, auto modes 0, trigger 77, time signal 4, type ");
  EXPECT_TRUE(params.ReadTablesFromCandidateLake());

  // A second data base without a purge: the index of a name table keeps what it had.
  FillCandidateLake(std::string(version) + "<TMode>: {\n2 two\n}\n");
  EXPECT_TRUE(params.ReadTablesFromCandidateLake());
  EXPECT_EQ(state(), "ready, modes 1, one is 1, auto modes 2, trigger -1, time signal -1, type ");
  EXPECT_FALSE(params.IsValidMode(1));
  FillCandidateLake(text);
  params.PurgeTables();
  EXPECT_TRUE(params.ReadTablesFromCandidateLake());

  // Cleared: the index of names and the documents stay, the sea is forgotten.
  CQtParamServer::Object().Clear();
  EXPECT_EQ(state(),
            "not ready, modes 0, one is 1, auto modes 0, trigger 77, time signal 4, type base");
  EXPECT_TRUE(params.ReadTablesFromCandidateLake());
  EXPECT_EQ(state(),
            "ready, modes 1, one is 1, auto modes 0, trigger 77, time signal 4, type base");
  params.AutoModeParams().Assign(1, QVAutoModeParams());
  params.WriteTablesToLocalSeas();
  EXPECT_EQ(testing_support::LinesOf(application, L"<TAutoModeParam>").size(), 2U);
  CParameterLake::Lake().clear();
  CSeaBase::SetApplicationSea(before);
}

// A data base of a host's own beside that of the process, with the same ids.
TEST(TwoDataBases, AnswerFromTheirOwnTables) {
  const auto load = [](CQtParamInstance params, const std::string& n) {
    FillCandidateLake(version + ("<QType><FBaseName>: " + n + "\n<TMode>: {\n1 step\n}\n") +
                      "<TChannel>: {\n1 channel" + n + "\n" + n + "0 base\n}\n" +
                      "<TChannelInheritance>: {\n1 -1 " + n + "0\n}\n" +
                      "<TInstrumentParam>: {\n5 1 p\n}\n<TIpCalcParameter>: {\n5 1 " + n +
                      "\n5 2 0\n5 3 H" + n + "\n5 4 0\n}\n" +
                      "<TIpParamAndStore>: {\n1 1 1 1 5 1\n}\n" +
                      "<TGrex10001>: {\n-1 -1 -1 -1 5 -1 0 0 0 " + n + "\n}\n");
    return params.ReadTablesFromCandidateLake();
  };
  const auto answers = [](const CQtParamInstance& params) {
    std::wostringstream out;
    out << params.BaseType() << ' ' << params.ChannelName(1) << ' ' << params.BaseChannel(1, 1)
        << ' ' << params.TriggerId(5) << ' ' << params.SpecIntervalDefinition(5) << ' '
        << params.SpecIntervalRange(5).first->second.lower().harmonic() << ' '
        << params.IpTrackPolygon().begin()->second.polygon_id;
    return out.str();
  };
  CQtParamDistillery mine;
  CQtParamInstance own(&mine);
  CQtParamInstance served;
  EXPECT_TRUE(load(served, "3") && load(own, "4"));
  EXPECT_EQ(answers(served), L"3 channel3 30 3 H3 3 3");
  EXPECT_EQ(answers(own), L"4 channel4 40 4 H4 4 4");
  mine.Clear();
  EXPECT_FALSE(own.Initialized());
  EXPECT_TRUE(served.Initialized() && served.IsValidChannel(1));
  CQtParamServer::Object().Clear();
  CParameterLake::Lake().clear();
}

// The load meets a parameter that nobody knows: the first answer is false, and no later one.
TEST(Load, DataSourcesShowOneNumberOfTheCalculationParameters) {
  TestStore data(
      "<TInstrumentParam>: {\n5 50 a\n6 60 b\n8 50 c\n}\n"
      "<TIpCalcParameter>: {\n5 1 77\n5 3 H1\n7 1 9\n8 1 12y\n}\n");
  DataSource::CCandidateSeaDataSource<int> numbers(data.store, 1);
  int value = 3;
  EXPECT_FALSE(numbers.Read(value, 5));
  EXPECT_EQ(value, 3);
  EXPECT_FALSE(numbers.Read(value, 7) || numbers.Read(value));
  EXPECT_TRUE(numbers.Read(value, 5));
  EXPECT_EQ(value, 77);
  DataSource::CCandidateSeaDataSource<const wchar_t*> texts(data.store, 1, 50);
  EXPECT_STREQ(texts.begin()->second, L"77");
  EXPECT_STREQ(std::next(texts.begin())->second, L"12y");
  EXPECT_EQ(std::distance(texts.begin(), texts.end()), 2);
}

TEST(Load, TheSampleFillsEveryTable) {
  TestStore data;
  ASSERT_TRUE(data.LoadSample());
  EXPECT_EQ(data.log.Text(), L"");
  for (const auto& table : TableCatalogue::Tables()) {
    EXPECT_GT(table.row_count(data.store), 0U) << Text::ToUtf8(table.section);
  }
}

}  // namespace
