// kestrindb intervals FILE MODE [PARAMETER]: the spectrum intervals of instrument parameters in a
// test step, on the spectrum's axis and in spectral lines.

#include <algorithm>
#include <cmath>
#include <iostream>

#include "Commands.h"
#include "IntervalPicture.h"
#include "Names.h"

using namespace kestrin;

namespace kestrindb {

std::string ResolutionText(const Json& json) {
  std::string text;
  if (!json["resolution_orders"].is_null()) text = Cell(json, "resolution_orders") + " orders";
  if (json["resolution_hz"].is_null()) return text;
  return text + (text.empty() ? "" : ", ") + Cell(json, "resolution_hz") + ' ' + Cell(json, "unit");
}

namespace {

const char* Name(CQtSpecInterval::index_range_result_t result) {
  constexpr const char* names[] = {"index_range_ok", "index_range_beyond_spectrum",
                                   "index_range_no_base_order", "index_range_no_ratio",
                                   "index_range_invalid"};
  return names[result];
}

// What is known of an assembly in a test step.
struct Assembly {
  int id;
  int speed_source;  // of its rotor, unless the user gave another one; -1: none
  CQtSpecInterval evaluation;

  Assembly(const CQtParamInstance& params, int assembly, const Request& request)
      : id(assembly),
        speed_source(request.speed_source.value_or(
            params.RotorSpeedSource(CQtParamInstance::VirtMode2BaseMode(*request.mode), assembly))),
        evaluation(params) {
    evaluation.LoadTransformParams(*request.mode, speed_source, assembly);
  }
};

// "ok", or why an interval has no lines.
std::string ResultText(const Assembly& assembly, CQtSpecInterval::index_range_result_t result,
                       float low, float high) {
  const std::string source = "order source " + std::to_string(assembly.id);
  switch (result) {
    case CQtSpecInterval::index_range_no_base_order:
      return assembly.id == -1 ? "needs --assembly" : source + " has no base order";
    case CQtSpecInterval::index_range_no_ratio:
      if (assembly.id == -1) return "needs --assembly";
      return assembly.speed_source == -1 ? source + " has no speed source: needs --speed-source"
                                         : source + " has no ratio to the speed source";
    case CQtSpecInterval::index_range_invalid:
      if (low > high) return "bounds reversed";
      return low < 0 ? "bound below 0" : "no range";
    default:
      std::string text = Name(result);
      text.erase(0, std::string("index_range_").size());
      std::replace(text.begin(), text.end(), '_', ' ');
      return text;
  }
}

// Bounds are given wherever they can be computed, lines only where they are good.
Json DescribeInterval(const Assembly& assembly, const QVSpecIntervalEntry& entry,
                      const Request& request) {
  const bool of_orders = entry.domain() == QVSpecIntervalEntry::domain_order;
  const float resolution = of_orders ? request.resolution_orders : request.resolution_hz;
  const bool counts_lines = entry.lower().lines() != 0 || entry.upper().lines() != 0;
  float low = NAN;
  float high = NAN;
  if (resolution > 0 || !counts_lines) {
    assembly.evaluation.FrequencyRange(entry, resolution, request.order_scale, low, high);
  }
  CQtSpecInterval::IndexInterval interval;
  const auto result = assembly.evaluation.IndexRange(entry, interval, request.lines, resolution,
                                                     request.order_scale);
  const bool ok = result == CQtSpecInterval::index_range_ok;
  Json json;
  json["unit"] = of_orders ? "orders" : request.unit;
  json["low"] = ShortNumber(ok ? interval.start_frequency : low);
  json["high"] = ShortNumber(ok ? interval.stop_frequency : high);
  json["first_line"] = ok ? Json(interval.start_index) : Json();
  json["last_line"] = ok ? Json(interval.stop_index) : Json();
  json["result"] = resolution > 0 ? Name(result) : "no_resolution";
  json["text"] = resolution > 0 ? ResultText(assembly, result, low, high)
                 : of_orders    ? "needs --resolution-orders"
                                : "needs --resolution-hz";
  const bool is_mixed = entry.lower().domain() != entry.upper().domain();
  if (is_mixed && low > high) json["text"] = "bounds reversed at this --order-scale";
  return json;
}

// What the assembly gives to all intervals of a definition.
Json DescribeDefinition(const CQtParamInstance& params, const wchar_t* definition,
                        const Assembly& assembly, const Request& request) {
  Json json;
  json["definition"] = Utf8(definition);
  json["assembly"] = assembly.id;
  json["speed_source"] = assembly.speed_source;
  json["base_order"] = ShortNumber(params.BaseOrder(*request.mode, assembly.id));
  json["ratio"] = ShortNumber(assembly.evaluation.RatioAssembly2SpeedSrc());
  json["intervals"] = Json::array();
  return json;
}

Json DescribeParameter(const CQtParamInstance& params, int parameter, const QVIpSvOfSpec& record,
                       const Request& request) {
  const Assembly assembly(params, request.assembly.value_or(record.reference), request);
  Json json;
  json["parameter"] = parameter;
  json["name"] = Utf8(params.InstrumentParamName(parameter));
  json["interpretation"] = record.interpretation;
  json.update(DescribeDefinition(params, record.definition, assembly, request));
  const auto [first, last] = params.SpecIntervalRange(static_cast<unsigned>(parameter));
  for (auto row = first; row != last; ++row) {
    json["intervals"].push_back(DescribeInterval(assembly, row->second, request));
  }
  return json;
}

// A definition that stands in no file. Throws Failure if it is none.
Json DescribeTrial(const CQtParamInstance& params, const Request& request) {
  using Position = QVSpecIntervalEntry::Definition;
  const std::wstring definition = Wide(request.definition);
  std::vector<Position> positions(CQtSpecIntervalStore::max_orders);
  const auto [count, error] = OrderInterpreter::Interpret(definition.c_str(), positions.data(),
                                                          static_cast<unsigned>(positions.size()));
  if (error.reason != OrderInterpreter::Reason::none) {
    throw Failure(data_bad, "The definition is wrong at character " +
                                std::to_string(error.offset + 1) + ": " +
                                Utf8(OrderInterpreter::ReasonText(error.reason)) +
                                ". See kestrindb order \"" + request.definition + "\".");
  }
  if (OrderInterpreter::IntervalCount(count) == 0) {
    throw Failure(data_bad, "The definition makes no intervals: its positions, here " +
                                std::to_string(count) + ", stand in pairs, or there is one.");
  }
  const Assembly assembly(params, request.assembly.value_or(-1), request);
  Json json = DescribeDefinition(params, definition.c_str(), assembly, request);
  AddPassedOver(json, definition);
  for (std::size_t i = 0; i < count; i += 2) {
    const Position& upper = positions[count == 1 ? i : i + 1];
    json["intervals"].push_back(DescribeInterval(assembly, {positions[i], upper}, request));
  }
  return json;
}

}  // namespace

Json DescribeIntervals(const CQtParamInstance& params, const Request& request) {
  const auto or_null = [](float resolution) {
    return resolution > 0 ? ShortNumber(resolution) : Json();
  };
  Json json;
  json["mode"] = *request.mode;
  json["mode_name"] = StepName(params, *request.mode);
  json["resolution_orders"] = or_null(request.resolution_orders);
  json["resolution_hz"] = or_null(request.resolution_hz);
  json["unit"] = request.unit;
  json["lines"] = request.lines;
  json["order_scale"] = ShortNumber(request.order_scale);
  json["parameters"] = Json::array();
  if (!request.definition.empty()) {
    json["parameters"].push_back(DescribeTrial(params, request));
    return json;
  }
  for (const auto& [key, record] : params.IpSvOfSpec()) {
    if (request.parameter.value_or(key[0]) == key[0]) {
      json["parameters"].push_back(DescribeParameter(params, key[0], record, request));
    }
  }
  if (request.parameter && json["parameters"].empty()) {
    throw Failure(data_bad, "The parameter " + std::to_string(*request.parameter) +
                                " has no spectrum intervals: it lacks one of the calculation "
                                "parameters 2, 3 and 4, or the data base doesn't have it.");
  }
  return json;
}

// A row for each interval, the first of a parameter with what is told of the parameter.
void PrintIntervals(const Json& json) {
  PrintFacts(14, {{"test step", Cell(json, "mode")},
                  {"resolution", ResolutionText(json)},
                  {"lines", Cell(json, "lines")},
                  {"order scale", Cell(json, "order_scale")}});
  std::cout << '\n';
  Json rows = Json::array();
  for (const Json& parameter : json["parameters"]) {
    const std::size_t first = rows.size();
    for (const Json& interval : parameter["intervals"]) rows.push_back(interval);
    if (first == rows.size()) rows.push_back({{"text", "no intervals; see the log"}});
    rows[first].update(parameter);
  }
  PrintTable(rows, {{"parameter", "parameter"},
                    {"name", "name"},
                    {"definition", "definition"},
                    {"assembly", "assembly", "none"},
                    {"speed source", "speed_source", "none"},
                    {"low", "low"},
                    {"high", "high"},
                    {"unit", "unit"},
                    {"first line", "first_line"},
                    {"last line", "last_line"},
                    {"result", "text"}});
  for (const Json& parameter : json["parameters"]) {
    if (parameter.contains("passed_over")) PrintPassedOver(parameter);
  }
}

}  // namespace kestrindb
