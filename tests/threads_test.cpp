// Constant queries from many threads after a load. Run under the thread sanitizer this shows races;
// without it, answers that were mixed up between threads.

#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <cstdint>
#include <iterator>
#include <locale>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "frame/strings/ModuleStrings.h"
#include "inspect/TableCatalogue.h"
#include "spec/OrderInterpreter.h"
#include "spec/QtSpecInterval.h"
#include "test_store.h"
#include "trigger/TriggerStore.h"

namespace {

using testing_support::TestStore;
using P = CQtParamInstance;

constexpr int kThreads = 8;

// What a host asks of one test step and one channel, object, parameter or source of that number.
void Ask(std::wostream& answers, const P& params, int mode, int id) {
  const QClavis key(mode, id / 10, id, id, id, id);
  const auto [source, sources_end] = params.OrderSourceRange(mode, id, 1);
  answers << params.ModeName(mode) << params.VirtModeName(mode) << params.PhysModeId(mode)
          << params.ParentChannel(mode, id) << params.BaseChannel(mode, id)
          << params.ChannelFlags(mode, id) << params.PhysicalGear(mode, id)
          << params.OrderSource2Rotor(mode, id) << params.RotorSpeedSource(mode, id)
          << params.SpeedInfoOfRotor(mode, id) << params.InstrumentParameterToInstrument(id)
          << params.TriggerId(id) << params.ChannelId(params.ChannelName(id)) << P::TimeSignalId()
          << params.BaseOrder(mode, id) << params.FrequencyRatioToGeneratingRotor(mode, 1, id)
          << params.PhysModeName(id) << params.SensorGroupName(id) << params.ResamplingJobName(id)
          << params.ResamplingSetName(id) << params.TypeAliasName(id) << params.BenchAliasName(id)
          << params.TriggerName(id) << params.InstrumentParamName(id)
          << std::distance(source, sources_end) << params.FormatClavisTextNice(key, L" / ")
          << params.FormatClavisText(key, P::ElementMask().set())
          << QVIpCalcParameter::GetCalcParamEnumText(id);
  for (int element = Clavis::Mode; element <= Clavis::Sensor; ++element) {
    answers << params.ClavisElementName(element, element == Clavis::Mode ? mode : id);
    if (element != Clavis::Parameter) answers << params.IdNameMap(element).Name(id);
  }
  CQtSpecInterval interval(params);
  interval.LoadTransformParams(mode, 1, 11);
  const auto [first, last] = params.SpecIntervalRange(static_cast<unsigned>(id));
  for (auto entry = first; entry != last; ++entry) {
    CQtSpecInterval::IndexInterval lines{};
    answers << interval.IndexRange(entry->second, lines, 1600, 0.125F, 1.0F);
  }
  const CTriggerStore triggers(params);
  std::int64_t cell = 0;
  CTriggerStore::CDimensions values;
  values.is_set.set();
  triggers.cell(mode, id, values, cell, true);
  answers << triggers.dimension(mode, id) << cell;
}

// What is asked of the data base as a whole, and all that is asked of its parts.
std::wstring AskAll(const P& params) {
  std::wostringstream answers;
  answers.imbue(std::locale::classic());
  answers << params.BaseType() << LoadModuleString(StringId::value) << P::ShowIdsInDialogs();
  for (const auto& [key, polygon] : params.IpTrackPolygon()) {
    const auto point = params.IpPolygonValues().lower_bound({polygon.polygon_id, 0});
    if (point != params.IpPolygonValues().end()) answers << point->second.y;
  }
  for (const auto& table : TableCatalogue::Tables()) answers << table.row_count(params.Store());
  QVSpecIntervalEntry::Definition position;
  answers << OrderInterpreter::GetSpecPositions(L"no definition", &position, 1);
  for (const int mode : {130, 230, 160, 170, 900, 268448, 405664, -1, INT_MAX, INT_MIN}) {
    for (const int id : {1, 2, 3, 7, 11, 13, 21, 44, 1700, 17001, 17015, 20702, INT_MAX, INT_MIN}) {
      Ask(answers, params, mode, id);
    }
  }
  return answers.str();
}

TEST(QueryThreads, AnswerAsOneThreadDoes) {
  TestStore alone;
  TestStore data;
  ASSERT_TRUE(alone.LoadSample() && data.LoadSample());
  const std::wstring expected = AskAll(alone.params);
  std::atomic<int> wrong = 0;
  {
    std::vector<std::jthread> threads;
    CParameterLake::Lake().read(Text::FromUtf8(KESTRIN_SAMPLES "/gearbox.par"));
    threads.emplace_back([] {  // loads another data base meanwhile
      CQtParamDistillery own;
      for (int load = 0; load < 3; ++load) own.ReadTablesFromCandidateLake();
    });
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back([&] {
        const P params = data.params;
        for (int round = 0; round < 40; ++round) {
          if (AskAll(params) != expected) ++wrong;
        }
      });
    }
  }
  EXPECT_EQ(wrong, 0);
}

}  // namespace
