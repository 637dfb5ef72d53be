// kestrindb bench FILE: how long it takes on this machine to read this file, to load it and to ask
// it.
//
// One clock for all: calls are made in batches that last at least a millisecond, batches until the
// time for the measurement is over, and the median batch counts; the fastest tells how quiet the
// machine was. The batches with which the length is found warm up and don't count. A query gets all
// its arguments out of the file, in an order that is random but the same each time, so that tables
// are searched as hosts search them and not from one end to the other. What a call gives is added
// up and kept, so that no compiler leaves the call out.

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <iostream>
#include <iterator>
#include <memory>
#include <random>
#include <set>
#include <system_error>
#include <utility>

#include "Command.h"
#include "Progress.h"

using namespace kestrin;

namespace kestrindb {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::duration<double> shortest_batch = std::chrono::milliseconds(1);
constexpr std::size_t fewest_batches = 5;
constexpr std::size_t most_arguments = 100'000;

struct Task {
  std::string name;
  std::size_t arguments;
  std::function<std::size_t(std::size_t calls)> run;  // gives a sum of what the calls gave
};

struct Measurement {
  std::size_t batches;
  std::size_t calls;  // of a batch
  double seconds;     // of a call, in the median batch
  double fastest;     // the same in the fastest batch
};

// Where the sums go, out of the compiler's sight.
volatile std::size_t sum_of_all = 0;

double SecondsOf(const Task& task, std::size_t calls) {
  const auto begin = Clock::now();
  sum_of_all = sum_of_all + task.run(calls);
  return std::chrono::duration<double>(Clock::now() - begin).count();
}

// `show` is called between batches, with the part of the time that is over.
Measurement Measure(const Task& task, double seconds, const std::function<void(double)>& show) {
  const auto begin = Clock::now();
  const auto part_over = [&] {
    return std::chrono::duration<double>(Clock::now() - begin).count() / seconds;
  };
  std::size_t calls = 1;
  while (SecondsOf(task, calls) < shortest_batch.count()) calls *= 2;
  std::vector<double> batches;
  while (batches.size() < fewest_batches || part_over() < 1) {
    show(part_over());
    batches.push_back(SecondsOf(task, calls));
  }
  const auto middle = batches.begin() + static_cast<std::ptrdiff_t>(batches.size() / 2);
  std::nth_element(batches.begin(), middle, batches.end());
  const double fastest = *std::min_element(batches.begin(), batches.end());
  const auto of_a_batch = static_cast<double>(calls);
  return {batches.size(), calls, *middle / of_a_batch, fastest / of_a_batch};
}

// --- What is measured -----------------------------------------------------------------------

// Loads in turn, each in place of what the one before left, as a host does it that goes on to
// another file.
std::vector<Task> Steps(const std::string& file_name) {
  const auto repeat = [](auto once) {
    return [once](std::size_t calls) {
      std::size_t successes = 0;
      for (; calls != 0; --calls) successes += once() ? 1 : 0;
      return successes;
    };
  };
  const auto reload = [](auto store) {
    return [store] {
      store->PurgeTables();
      return store->ReadTablesFromCandidateLake();
    };
  };
  return {
      {"read the file", 1,
       repeat([name = Wide(file_name)] { return CParameterLake::Lake().read(name); })},
      {"load the tables", 1, repeat(reload(std::make_shared<CQtParamStore>()))},
      {"load with all derived", 1, repeat(reload(std::make_shared<CQtParamDistillery>()))},
  };
}

template <class Argument, class Call>
Task Query(std::string name, std::vector<Argument> arguments, Call call) {
  std::shuffle(arguments.begin(), arguments.end(), std::mt19937_64());
  if (arguments.size() > most_arguments) {
    arguments.erase(arguments.begin() + most_arguments, arguments.end());
  }
  const std::size_t count = arguments.size();
  return {
      std::move(name), count,
      [arguments = std::move(arguments), call, next = std::size_t{0}](std::size_t calls) mutable {
        std::size_t sum = 0;
        for (; calls != 0; --calls) {
          sum += static_cast<std::size_t>(call(arguments[next]));
          if (++next == arguments.size()) next = 0;
        }
        return sum;
      }};
}

template <class Table>
auto Keys(const Table& table) {
  std::vector<typename Table::key_type> keys;
  for (const auto& row : table) keys.push_back(row.first);
  return keys;
}

// The ids that stand at one place of the keys of a table.
template <class Table>
std::vector<int> Ids(const Table& table, int place = 0) {
  std::set<int> ids;
  for (const auto& row : table) ids.insert(row.first[place]);
  return {ids.begin(), ids.end()};
}

// All pairs, or as many of them at random as are wanted at most.
std::vector<QIdx2> Pairs(const std::vector<int>& firsts, const std::vector<int>& seconds) {
  const std::size_t all = firsts.size() * seconds.size();
  const std::size_t count = std::min(all, most_arguments);
  std::mt19937_64 random;
  std::vector<QIdx2> pairs;
  pairs.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t place = count == all ? i : random() % all;
    pairs.emplace_back(firsts[place / seconds.size()], seconds[place % seconds.size()]);
  }
  return pairs;
}

std::vector<QIdx2> ElementsWithNames(const CQtParamInstance& params) {
  std::vector<QIdx2> elements;
  for (const int element :
       {Clavis::Mode, Clavis::Instrument, Clavis::Channel, Clavis::Location, Clavis::Sensor}) {
    for (const auto& row : params.IdNameMap(element)) elements.emplace_back(element, row.first[0]);
  }
  for (const auto& row : params.InstrumentParam()) {
    elements.emplace_back(Clavis::Parameter, row.first[0]);
  }
  return elements;
}

// Parameter and test step of all intervals that can be asked for.
std::vector<QIdx2> ParametersInModes(const CQtParamInstance& params,
                                     const std::vector<int>& modes) {
  std::vector<int> parameters;
  for (const auto& row : params.IpSvOfSpec()) parameters.push_back(row.first[0]);
  return Pairs(parameters, modes);
}

// The first line of a parameter's first interval in a test step, on the axis of its own speed
// source.
int FirstLine(const CQtParamInstance& params, int parameter, int mode) {
  const auto record = params.IpSvOfSpec().find(parameter);
  if (record == params.IpSvOfSpec().end()) return 0;
  const int assembly = record->second.reference;
  CQtSpecInterval evaluation(params);
  evaluation.LoadTransformParams(mode, params.RotorSpeedSource(mode, assembly), assembly);
  const auto [first, last] = params.SpecIntervalRange(static_cast<unsigned>(parameter));
  CQtSpecInterval::IndexInterval lines;
  if (first != last) evaluation.IndexRange(first->second, lines, 1600, 0.125F, 30.0F);
  return static_cast<int>(lines.start_index);
}

std::int64_t CellInTheMiddle(const CTriggerStore& triggers, const QIdx3& axis,
                             const QVTriggerParams& row) {
  std::int64_t cell = 0;
  triggers.cell(axis[0], axis[1], static_cast<unsigned>(axis[2]) - 1, (row.start + row.stop) / 2,
                cell, true);
  return cell;
}

// The handle must outlive the tasks.
std::vector<Task> Queries(const CQtParamInstance& params) {
  using Element = QIdx2;
  const std::vector<int> modes = Ids(params.Mode());
  const std::vector<int> channels = Ids(params.Channel());
  const std::vector<int> sources = Ids(params.Store().Table<L"<TOrderSource2Rotor>">());
  const std::vector<QClavis> keys = Keys(params.IpParamAndStore());
  std::vector<std::wstring> mode_names;
  for (const auto& row : params.Mode()) mode_names.emplace_back(row.second.text);
  using ParameterRow = std::pair<std::wstring, int>;
  std::vector<ParameterRow> parameters;
  for (const auto& row : params.InstrumentParam()) {
    parameters.emplace_back(row.second.name, row.second.instrument);
  }
  using Axis = std::pair<QIdx3, QVTriggerParams>;
  std::vector<Axis> axes;
  for (const auto& row : params.TriggerParam()) axes.emplace_back(row.first, row.second);

  return {
      Query("name by id", ElementsWithNames(params),
            [&](const Element& of) { return params.ClavisElementName(of[0], of[1])[0]; }),
      Query("test step by name", mode_names,
            [&](const std::wstring& name) { return params.ModeId(name.c_str()); }),
      Query("parameter by name", parameters,
            [&](const ParameterRow& of) {
              return params.InstrumentParamId(of.first.c_str(), of.second);
            }),
      Query("row of a parameter", Ids(params.InstrumentParam()),
            [&](int id) { return params.InstrumentParam().find(id)->second.instrument; }),
      Query("row of a key", keys,
            [&](const QClavis& key) { return params.IpParamAndStore().find(key)->first[0]; }),
      Query("calculation parameter", Keys(params.IpCalcParameter()),
            [&](const QIdx2& key) { return params.IpCalcParameter().find(key)->first[1]; }),
      Query("base channel", Pairs(modes, channels),
            [&](const QIdx2& of) { return params.BaseChannel(of[0], of[1]); }),
      Query("channel flags", Pairs(modes, channels),
            [&](const QIdx2& of) { return params.ChannelFlags(of[0], of[1]); }),
      Query("base order", Pairs(modes, sources),
            [&](const QIdx2& of) { return params.BaseOrder(of[0], of[1]) != 0 ? 1 : 0; }),
      Query("ratio to speed source", Pairs(modes, sources),
            [&](const QIdx2& of) {
              return params.RotorFrequencyRelativeToSpeedSourceRotor(of[0], of[1]) != 0 ? 1 : 0;
            }),
      Query("spectral lines", ParametersInModes(params, modes),
            [&](const QIdx2& of) { return FirstLine(params, of[0], of[1]); }),
      Query("trigger cell", axes,
            [triggers = CTriggerStore(params)](const Axis& axis) {
              return CellInTheMiddle(triggers, axis.first, axis.second);
            }),
      Query("track polygon", params.IpTrackPolygon().empty() ? std::vector<QClavis>() : keys,
            [&](const QClavis& key) { return params.IpTrackPolygon().count(key); }),
      Query("text of a key", keys,
            [&](const QClavis& key) { return params.FormatClavisTextNice(key, L"/").size(); }),
  };
}

// --- The run and its report -----------------------------------------------------------------

// What the load has to say was said once, by the load before the measurements.
class Silence {
 public:
  Silence() : before_(PrWin::SetSink([](std::wstring_view, auto, auto) {})) {}
  Silence(const Silence&) = delete;
  Silence& operator=(const Silence&) = delete;
  ~Silence() { PrWin::SetSink(std::move(before_)); }

 private:
  PrWin::Sink before_;
};

constexpr bool is_optimised =
#ifdef __OPTIMIZE__
    true;
#else
    false;
#endif

std::size_t Rows(const CQtParamStore& store) {
  std::size_t rows = 0;
  for (const auto& table : TableCatalogue::Tables()) rows += table.row_count(store);
  return rows;
}

Json Run(const std::string& file_name, const CQtParamInstance& params, double seconds,
         Progress& progress) {
  const Silence silence;
  const CLake& lake = CParameterLake::Lake();
  const auto lines = static_cast<std::size_t>(std::distance(lake.begin(), lake.end()));
  const std::size_t rows = Rows(params.Store());
  Json json;
  json["version"] = LibraryVersion();
  json["optimised"] = is_optimised;
  json["file"] = file_name;
  json["bytes"] = std::filesystem::file_size(file_name);
  json["lines"] = lines;
  json["rows"] = rows;

  const std::vector<Task> steps = Steps(file_name);
  const std::vector<Task> queries = Queries(params);
  const auto all = static_cast<double>(1 + steps.size() + queries.size());
  double done = 1;  // the load that has brought us here
  const auto measure = [&](const Task& task) {
    const Measurement measured = Measure(task, seconds, [&](double part) {
      progress.Show((done + std::min(part, 1.0)) / all, task.name);
    });
    done += 1;
    return measured;
  };
  json["steps"] = Json::array();
  for (const Task& step : steps) {
    const Measurement measured = measure(step);
    const bool reads = &step == &steps.front();
    json["steps"].push_back(
        {{"step", step.name},
         {"batches", measured.batches},
         {"runs", measured.batches * measured.calls},
         {"median_ms", measured.seconds * 1e3},
         {"fastest_ms", measured.fastest * 1e3},
         {"counted", reads ? "lines" : "rows"},
         {"per_second", static_cast<double>(reads ? lines : rows) / measured.seconds}});
  }
  json["queries"] = Json::array();
  for (const Task& query : queries) {
    Json row = {{"query", query.name}, {"arguments", query.arguments}};
    if (query.arguments == 0) {
      row.update({{"batches", 0}, {"calls", 0}, {"median_ns", nullptr}, {"fastest_ns", nullptr}});
      done += 1;
    } else {
      const Measurement measured = measure(query);
      row.update({{"batches", measured.batches},
                  {"calls", measured.batches * measured.calls},
                  {"median_ns", measured.seconds * 1e9},
                  {"fastest_ns", measured.fastest * 1e9}});
    }
    json["queries"].push_back(std::move(row));
  }
  return json;
}

struct Outcome {
  Json json;
  Status status;
};

// With a bar for the first load and the measurements, which is gone when they are done.
Outcome LoadAndRun(const std::string& file_name, double seconds) {
  Progress progress;
  progress.Show(0, "first load");
  const DataBase data(file_name, [&progress](const std::string& text) { progress.Print(text); });
  data.RequireAccepted();
  std::error_code error;
  if (!std::filesystem::is_regular_file(file_name, error)) {
    throw Failure(file_unusable, "'" + file_name + "' can't be read again and again.");
  }
  return {Run(file_name, data.params, seconds, progress), data.LoadStatus()};
}

// With that many digits behind the point; nothing for null.
std::string Fixed(const Json& number, int digits) {
  if (number.is_null()) return "";
  char text[64];
  const auto written = std::to_chars(std::begin(text), std::end(text), number.get<double>(),
                                     std::chars_format::fixed, digits);
  return {text, written.ptr};
}

void PrintReport(const Json& json) {
  std::cout << "file   " << json["file"].get<std::string>() << "\nbytes  " << json["bytes"]
            << "\nlines  " << json["lines"] << "\nrows   " << json["rows"] << "\n\n";
  std::vector<std::vector<std::string>> rows;
  for (const Json& step : json["steps"]) {
    rows.push_back({step["step"].get<std::string>(), step["runs"].dump(),
                    Fixed(step["median_ms"], 3), Fixed(step["fastest_ms"], 3),
                    Fixed(step["per_second"], 0), step["counted"].get<std::string>()});
  }
  PrintTable({"step", "runs", "median ms", "fastest ms", "per second", ""}, rows);
  std::cout << '\n';
  rows.clear();
  for (const Json& query : json["queries"]) {
    rows.push_back({query["query"].get<std::string>(), query["arguments"].dump(),
                    query["calls"].dump(), Fixed(query["median_ns"], 1),
                    Fixed(query["fastest_ns"], 1)});
  }
  PrintTable({"query", "arguments", "calls", "median ns", "fastest ns"}, rows);
  if (!json["optimised"]) {
    std::cout << "\nThis kestrindb was built without optimisation: its times say little.\n";
  }
}

}  // namespace

void AddBench(CommandLine& line) {
  auto file = std::make_shared<std::string>();
  auto seconds = std::make_shared<double>(0.3);
  CLI::App* command = line.Add("bench", "How long reading, loading and asking a file takes",
                               [file, seconds, &line] {
                                 const auto [json, status] = LoadAndRun(*file, *seconds);
                                 line.json ? Print(json) : PrintReport(json);
                                 return status;
                               });
  command->add_option("FILE", *file, "Parameter file")->required();
  command->add_option("--seconds", *seconds, "Time for each measurement; 0.3 without it")
      ->check(CLI::Range(0.001, 3600.0));
}

}  // namespace kestrindb
