// The load as a whole: which data bases are accepted, what each state of the server's life holds,
// what a load computes from the tables.
#include "frame/QtParamServer.h"
#include "support.h"

namespace {

TEST(VersionGate, AcceptsMajor215FromMinor1On) {
  const auto none = Refusal::none;
  const auto low = Refusal::version_too_low;
  const std::tuple<const char*, const char*, const wchar_t*, Refusal::Reason> cases[] = {
      {"215", "1", L"", none},
      {"215", "7", L"", none},
      {" 215 and more", "+1x", L"", none},
      {"215", "2147483648", L"", none},  // the nearest bound
      {"214", "9", L"214.9", low},
      {"215", "0", L"215.0", low},
      {"215", "-1", L"215.-1", low},
      {"-215", "1", L"-215.1", low},
      {"x215", "1", L"0.1", low},
      {"\"215\"", "1", L"0.1", low},
      {"216", "0", L"216.0", Refusal::version_too_high}};
  const auto told = [](Refusal::Reason reason, const wchar_t* number) -> std::wstring {
    if (reason == none) return L"";
    return std::wstring(
               L"CQTableManager::ReadTablesFromCandidateLake(): Loading parameter data base "
               L"failed:\n"
               L"\tTable version ") +
           number +
           (reason == Refusal::version_too_high
                ? L" is greater than highest supported major version 215"
                  L"\tPlease contact Tavrel for a software update.\n"
                : L" is less than least supported version 215.1\n"
                  L"\tDelete all cache files and try again.\n"
                  L"\tIf the load still fails, please contact Tavrel.\n");
  };
  for (const auto& [major, minor, number, reason] : cases) {
    SCOPED_TRACE(std::string(major) + "." + minor);
    TestStore data("<TMode>: {\n1 old\n}\n");
    const bool loaded =
        data.LoadText(std::string("<DbDesign.CacheVersion>: ") + major +
                      "\n<DbDesign.CacheMinorVersion>: " + minor + "\n<TMode>: {\n1 new\n}\n");
    EXPECT_EQ(loaded, reason == none);
    EXPECT_EQ(data.log.Text(), told(reason, number));
    EXPECT_EQ(data.params.LastRefusal().reason, reason);
    EXPECT_STREQ(data.params.Mode().Name(1), loaded ? L"new" : L"old");
    for (const auto& line : data.log.lines) EXPECT_EQ(line.category * 10 + line.style, 84);
  }
  TestStore data;
  EXPECT_FALSE(data.LoadText("a: b\n"));
  EXPECT_EQ(data.log.Text(), told(low, L"0.0"));
  EXPECT_EQ(data.params.LastRefusal().reason, Refusal::no_version);
  EXPECT_FALSE(data.LoadText(""));
  EXPECT_EQ(data.log.lines.size(), 1U);
  EXPECT_EQ(data.params.LastRefusal().reason, Refusal::empty_lake);
  EXPECT_TRUE(data.Load(""));
  EXPECT_FALSE(data.params.LastRefusal());
}

// The one server of the process, from its first use through all of its states. It looks at the seas
// in that first use, so this takes a process of its own, as ctest gives it to each test.
TEST(Server, LivesThroughItsStates) {
  CResourceSea application;
  AddLines(application, L"<TAutoModeParam>", {L"2 100 10 25 1 0 5"});
  CResourceSea* const before = CSeaBase::SetApplicationSea(&application);
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
  const auto load = [&params](const std::string& sections) {
    if (!sections.empty()) FillCandidateLake(version + sections);
    return params.ReadTablesFromCandidateLake();
  };
  const std::string sections =
      "<QType><FBaseName>: base\n<TMode>: {\n1 one\n}\n<TInstrumentParam>: {\n5 1 p\n}\n"
      "<TIpCalcParameter>: {\n5 1 77\n}\n<TAppSignalProperty>: {\n3 1\n4 4\n6 4\n}\n";

  // Empty.
  const std::string empty =
      "not ready, modes 0, one is -1, auto modes 0, trigger -1, time signal -1, type ";
  EXPECT_EQ(state(), empty);
  EXPECT_FALSE(load(""));
  EXPECT_EQ(state(), empty);

  // Loaded; seen through every handle, the lake unchanged, the missing section read from the sea.
  EXPECT_TRUE(load(sections));
  CQtParamServer::Object().Create();
  EXPECT_EQ(state(),
            "ready, modes 1, one is 1, auto modes 1, trigger 77, time signal 4, type base");
  EXPECT_STREQ(CQtParamInstance(nullptr).Mode().Name(1), L"one");
  EXPECT_EQ(CParameterLake::Lake()[L"<TMode>"]->unnamed_size(), 1U);

  // What was changed in the table goes back to the sea, and from there into the next load.
  params.AutoModeParams().Assign(9, QVAutoModeParams());
  params.WriteTablesToLocalSeas();
  EXPECT_TRUE(load(""));
  EXPECT_EQ(params.AutoModeParams().size(), 2U);

  // Purged: rows and document names gone, everything else as before.
  params.PurgeTables();
  EXPECT_EQ(state(), "ready, modes 0, one is -1, auto modes 0, trigger 77, time signal 4, type ");
  EXPECT_TRUE(load(""));

  // A second data base without a purge: the index of a name table keeps what it had.
  EXPECT_TRUE(load("<TMode>: {\n2 two\n}\n"));
  EXPECT_EQ(state(), "ready, modes 1, one is 1, auto modes 2, trigger -1, time signal -1, type ");
  EXPECT_FALSE(params.IsValidMode(1));

  // Cleared: the index of names and the documents stay, the sea is forgotten.
  EXPECT_TRUE(load(sections));
  CQtParamServer::Object().Clear();
  EXPECT_EQ(state(),
            "not ready, modes 0, one is 1, auto modes 0, trigger 77, time signal 4, type base");
  EXPECT_TRUE(load(""));
  params.AutoModeParams().Assign(1, QVAutoModeParams());
  params.WriteTablesToLocalSeas();
  EXPECT_EQ(LinesOf(application, L"<TAutoModeParam>").size(), 2U);
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
                      "\n5 2 0\n5 3 H" + n + "\n5 4 0\n}\n");
    return params.ReadTablesFromCandidateLake();
  };
  const auto answers = [](const CQtParamInstance& params) {
    std::wostringstream out;
    out << params.BaseType() << ' ' << params.ChannelName(1) << ' ' << params.BaseChannel(1, 1)
        << ' ' << params.TriggerId(5) << ' ' << params.SpecIntervalDefinition(5);
    return out.str();
  };
  CQtParamDistillery mine;
  CQtParamInstance own(&mine);
  CQtParamInstance served;
  EXPECT_TRUE(load(served, "3") && load(own, "4"));
  EXPECT_EQ(answers(served), L"3 channel3 30 3 H3");
  EXPECT_EQ(answers(own), L"4 channel4 40 4 H4");
  mine.Clear();
  EXPECT_FALSE(own.Initialized());
  EXPECT_TRUE(served.Initialized() && served.IsValidChannel(1));
  CQtParamServer::Object().Clear();
  CParameterLake::Lake().clear();
}

TEST(Load, DataSourcesShowOneNumberOfTheCalculationParameters) {
  TestStore data(
      "<TInstrumentParam>: {\n5 50 a\n6 60 b\n8 50 c\n}\n"
      "<TIpCalcParameter>: {\n5 1 77\n5 3 H1\n7 1 9\n8 1 12y\n}\n");
  DataSource::CCandidateSeaDataSource<int> numbers(data.store, 1);
  int value = 3;
  EXPECT_FALSE(numbers.Read(value, 5)) << "the first answer is false";
  EXPECT_FALSE(numbers.Read(value, 7) || numbers.Read(value));
  EXPECT_EQ(value, 3);
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
