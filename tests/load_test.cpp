// The load as a whole: which data bases are accepted, what each state of the server's life holds,
// what a load computes from the tables.
#include "frame/QtParamServer.h"
#include "support.h"

namespace {

// What is refused and why, and what it leaves. (cases/load.txt tells more.)
TEST(Load, ARefusalIsToldAndLeavesTheTables) {
  const std::string rest = "<DbDesign.CacheMinorVersion>: 1\n<TMode>: {\n1 new\n}\n";
  const std::pair<std::string, Refusal::Reason> cases[] = {
      {"<DbDesign.CacheVersion>: 214\n" + rest, Refusal::version_too_low},
      {"<DbDesign.CacheVersion>: 216\n" + rest, Refusal::version_too_high},
      {"<TMode>: {\n1 new\n}\n", Refusal::no_version},
      {"", Refusal::empty_lake}};
  TestStore data("<TMode>: {\n1 old\n}\n");
  for (const auto& [text, reason] : cases) {
    EXPECT_FALSE(data.LoadText(text));
    EXPECT_EQ(data.params.LastRefusal().reason, reason);
    EXPECT_STREQ(data.params.ModeName(1), L"old");
  }
  EXPECT_EQ(data.log.lines.size(), 3U) << "nothing is told of no lines";
  EXPECT_TRUE(data.Load("<TMode>: {\n1 new\n}\n"));
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
  // Ready, the modes, the id of a name, auto modes, a trigger, the time signal, the type.
  const auto state = [&params] {
    std::ostringstream out;
    out << params.Initialized() << ' ' << params.Mode().size() << ' ' << params.ModeId(L"one")
        << ' ' << params.AutoModeParams().size() << ' ' << params.TriggerId(5) << ' '
        << CQtParamInstance::TimeSignalId() << ' ' << Text::ToUtf8(params.BaseType());
    return out.str();
  };
  const auto load = [&params](const std::string& sections) {
    if (!sections.empty()) FillCandidateLake(version + sections);
    return params.ReadTablesFromCandidateLake();
  };
  const std::string sections =
      "<QType><FBaseName>: base\n<TMode>: {\n1 one\n}\n<TInstrumentParam>: {\n5 1 p\n}\n"
      "<TIpCalcParameter>: {\n5 1 77\n}\n<TAppSignalProperty>: {\n3 1\n4 4\n6 4\n}\n";

  EXPECT_EQ(state(), "0 0 -1 0 -1 -1 ");
  EXPECT_FALSE(load(""));
  EXPECT_EQ(state(), "0 0 -1 0 -1 -1 ");

  // Loaded; seen through every handle, the lake unchanged, the missing section read from the sea.
  EXPECT_TRUE(load(sections));
  CQtParamServer::Object().Create();
  EXPECT_EQ(state(), "1 1 1 1 77 4 base");
  EXPECT_STREQ(CQtParamInstance(nullptr).ModeName(1), L"one");
  EXPECT_EQ(CParameterLake::Lake()[L"<TMode>"]->unnamed_size(), 1U);

  // What was changed in the table goes back to the sea, and from there into the next load.
  params.AutoModeParams().Assign(9, QVAutoModeParams());
  params.WriteTablesToLocalSeas();
  EXPECT_TRUE(load(""));
  EXPECT_EQ(state(), "1 1 1 2 77 4 base");

  params.PurgeTables();
  EXPECT_EQ(state(), "1 0 -1 0 77 4 ") << "rows and document names are gone";
  EXPECT_TRUE(load(""));
  EXPECT_TRUE(load("<TMode>: {\n2 two\n}\n"));  // a second data base without a purge
  EXPECT_EQ(state(), "1 1 1 2 -1 -1 ") << "the index of a name table keeps what it had";
  EXPECT_FALSE(params.IsValidMode(1));

  // Cleared: the index of names and the documents stay, the sea is forgotten.
  EXPECT_TRUE(load(sections));
  CQtParamServer::Object().Clear();
  EXPECT_EQ(state(), "0 0 1 0 77 4 base");
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
  const TestStore data(
      "<TInstrumentParam>: {\n5 50 a\n6 60 b\n8 50 c\n}\n"
      "<TIpCalcParameter>: {\n5 1 77\n5 3 H1\n7 1 9\n8 1 12y\n6 1 5\n}\n");
  DataSource::CCandidateSeaDataSource<int> numbers(data.store, 1);
  int value = 3;
  EXPECT_FALSE(numbers.Read(value, 5)) << "the first answer, since nobody knows 7";
  EXPECT_FALSE(numbers.Read(value, 7));
  EXPECT_EQ(value, 3);
  EXPECT_TRUE(numbers.Read(value, 5) && value == 77);
  DataSource::CCandidateSeaDataSource<const wchar_t*> texts(data.store, 1, 50);
  EXPECT_STREQ(std::next(texts.begin())->second, L"12y") << "of the instrument 50 alone";
}

}  // namespace
