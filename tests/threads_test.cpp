// Constant queries from many threads after a load. Run under the thread sanitizer this shows races;
// without it, answers that were mixed up between threads.

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "frame/ModuleStrings.h"
#include "frame/TableCatalogue.h"
#include "spec/OrderInterpreter.h"
#include "spec/QtSpecInterval.h"
#include "test_store.h"
#include "trigger/TriggerStore.h"

namespace {

using testing_support::TestStore;

constexpr int kThreads = 8;

void Add(std::wstring& answers, double number) { answers += std::to_wstring(number) + L' '; }

// What a host asks of one test step and one channel, object, parameter or source of that number.
std::wstring Ask(const CQtParamInstance& params, int mode, int id) {
  std::wstring answers = params.ModeName(mode);
  answers += params.VirtModeName(mode);
  for (const int number :
       {params.PhysModeId(mode), params.ParentChannel(mode, id), params.BaseChannel(mode, id),
        params.ChannelFlags(mode, id), params.PhysicalGear(mode, id),
        params.OrderSource2Rotor(mode, id), params.RotorSpeedSource(mode, id),
        params.SpeedInfoOfRotor(mode, id), params.InstrumentParameterToInstrument(id),
        params.TriggerId(id), params.ChannelId(params.ChannelName(id)),
        CQtParamInstance::TimeSignalId()}) {
    Add(answers, number);
  }
  Add(answers, static_cast<double>(params.BaseOrder(mode, id)));
  Add(answers, static_cast<double>(params.FrequencyRatioToGeneratingRotor(mode, 1, id)));
  for (int element = Clavis::Mode; element <= Clavis::Sensor; ++element) {
    answers += params.ClavisElementName(element, element == Clavis::Mode ? mode : id);
    if (element != Clavis::Parameter) answers += params.IdNameMap(element).Name(id);
  }
  for (const wchar_t* const name :
       {params.PhysModeName(id), params.SensorGroupName(id), params.ResamplingJobName(id),
        params.ResamplingSetName(id), params.TypeAliasName(id), params.BenchAliasName(id),
        params.TriggerName(id), params.InstrumentParamName(id)}) {
    answers += name;
  }
  const auto [source, sources_end] = params.OrderSourceRange(mode, id, 1);
  Add(answers, static_cast<double>(std::distance(source, sources_end)));
  const QClavis key(mode, id / 10, id, id, id, id);
  answers += params.FormatClavisTextNice(key, L" / ");
  answers += params.FormatClavisText(key, CQtParamInstance::ElementMask().set());
  answers += QVIpCalcParameter::GetCalcParamEnumText(id);

  CQtSpecInterval interval(params);
  interval.LoadTransformParams(mode, 1, 11);
  const auto [first, last] = params.SpecIntervalRange(static_cast<unsigned>(id));
  for (auto entry = first; entry != last; ++entry) {
    CQtSpecInterval::IndexInterval lines{};
    Add(answers, interval.IndexRange(entry->second, lines, 1600, 0.125F, 1.0F));
  }
  const CTriggerStore triggers(params);
  Add(answers, triggers.dimension(mode, id));
  std::int64_t cell = 0;
  CTriggerStore::CDimensions values;
  values.is_set.set();
  triggers.cell(mode, id, values, cell, true);
  Add(answers, static_cast<double>(cell));
  return answers;
}

// What is asked of the data base as a whole.
std::wstring AskWhole(const CQtParamInstance& params) {
  std::wstring answers = params.BaseType() + LoadModuleString(StringId::value);
  Add(answers, CQtParamInstance::ShowIdsInDialogs() ? 1 : 0);
  for (const auto& [key, polygon] : params.IpTrackPolygon()) {
    const auto point = params.IpPolygonValues().lower_bound({polygon.polygon_id, 0});
    Add(answers,
        point == params.IpPolygonValues().end() ? -1.0 : static_cast<double>(point->second.y));
  }
  for (const auto& table : TableCatalogue::Tables()) {
    Add(answers, static_cast<double>(table.row_count(params.Store())));
  }
  QVSpecIntervalEntry::Definition position;
  Add(answers, OrderInterpreter::GetSpecPositions(L"no definition", &position, 1));
  return answers;
}

std::wstring AskAll(const CQtParamInstance& params) {
  std::wstring answers = AskWhole(params);
  for (const int mode : {130, 230, 160, 170, 900, 268448, 405664, -1, INT_MAX, INT_MIN}) {
    for (const int id : {1, 2, 3, 7, 11, 13, 21, 44, 1700, 17001, 17015, 20702, INT_MAX, INT_MIN}) {
      answers += Ask(params, mode, id);
    }
  }
  return answers;
}

TEST(QueryThreads, AnswerAsOneThreadDoes) {
  TestStore data;
  ASSERT_TRUE(data.LoadSample());
  const std::wstring expected = AskAll(data.params);
  std::vector<int> wrong(kThreads, 0);
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back([&, i] {
        const CQtParamInstance params = data.params;
        for (int round = 0; round < 40; ++round) {
          if (AskAll(params) != expected) ++wrong[static_cast<std::size_t>(i)];
        }
      });
    }
  }
  EXPECT_EQ(wrong, std::vector<int>(kThreads, 0));
}

}  // namespace
