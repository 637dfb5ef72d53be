// kestrindb trigger FILE MODE TRIGGER [VALUE...]: the axes of a trigger in a test step, the cell of
// running values, and the places of a cell.
//
// Cells are counted along the axes as they are shown, from their lower ends. On the table's own
// rows, cells count from a row's start; the answer says so where that makes a difference.

#include <cstdint>
#include <iostream>

#include "Commands.h"
#include "Names.h"

namespace kestrindb {
namespace {

constexpr unsigned index_bits = 16;

const char* Direction(const CQtParamInstance& params, const Request& request, unsigned dim) {
  const auto row = params.TriggerParam().find({CQtParamInstance::VirtMode2BaseMode(*request.mode),
                                               request.trigger, static_cast<int>(dim) + 1});
  if (row == params.TriggerParam().end()) return "none";
  const int direction = row->second.direction;
  return direction == QVTriggerParams::raising_direction   ? "raising"
         : direction == QVTriggerParams::falling_direction ? "falling"
                                                           : "none";
}

CTriggerStore::CIntervals AxesOf(const CTriggerStore& store, const Request& request) {
  CTriggerStore::CIntervals axes;
  if (store.field(*request.mode, request.trigger, axes)) return axes;
  throw Failure(data_bad, "Trigger " + std::to_string(request.trigger) +
                              " has no axes in test step " + std::to_string(*request.mode) + ".");
}

// The values go to the axes in order; axes without a value stay out.
CTriggerStore::CDimensions ValuesFor(const CTriggerStore::CIntervals& axes,
                                     const std::vector<float>& values) {
  if (values.size() > axes.is_set.count()) {
    throw Failure(data_bad, "There are more values (" + std::to_string(values.size()) +
                                ") than axes (" + std::to_string(axes.is_set.count()) + ").");
  }
  CTriggerStore::CDimensions dimensions;
  auto value = values.begin();
  for (unsigned dim = 0; dim < CTriggerStore::dimensions_d && value != values.end(); ++dim) {
    if (!axes.is_set[dim]) continue;
    dimensions.value[dim] = *value++;
    dimensions.is_set.set(dim);
  }
  return dimensions;
}

Json DescribeAxes(const CQtParamInstance& params, const Request& request,
                  const CTriggerStore::CIntervals& axes) {
  Json json = Json::array();
  for (unsigned dim = 0; dim < CTriggerStore::dimensions_d; ++dim) {
    if (!axes.is_set[dim]) continue;
    const CTriggerStore::CInterval& axis = axes.interval[dim];
    json.push_back({{"dimension", dim},
                    {"low", ShortNumber(axis.start())},
                    {"high", ShortNumber(axis.stop())},
                    {"step", ShortNumber(axis.step())},
                    {"cells", axis.len()},
                    {"raising", axis.raising()},
                    {"direction", Direction(params, request, dim)}});
  }
  return json;
}

// Which side of the axis a value lies at, or "inside".
const char* SideOf(const CTriggerStore::CInterval& axis, float value) {
  if (value < axis.start()) return "in front of";
  return value < axis.stop() || value == axis.start() ? "inside" : "beyond";
}

// Of each value where it lies beside its axis.
Json DescribeValues(const CTriggerStore::CIntervals& axes,
                    const CTriggerStore::CDimensions& values) {
  Json json = Json::array();
  for (unsigned dim = 0; dim < CTriggerStore::dimensions_d; ++dim) {
    if (!values.is_set[dim]) continue;
    json.push_back({{"dimension", dim},
                    {"value", ShortNumber(values.value[dim])},
                    {"side", SideOf(axes.interval[dim], values.value[dim])}});
  }
  return json;
}

// Of each axis that takes part: the index, the middle of the cell, its edge in running direction.
Json DescribePlaces(const CTriggerStore::CIntervals& axes, std::int64_t cell,
                    std::bitset<CTriggerStore::dimensions_d> shown) {
  CTriggerStore::CDimensions middle;
  CTriggerStore::position(axes, cell, 0, middle);
  Json json = Json::array();
  for (unsigned dim = 0; dim < CTriggerStore::dimensions_d; ++dim) {
    if (!shown[dim]) continue;
    float edge = 0.0F;
    CTriggerStore::position(axes.interval[dim], cell, dim, edge);
    json.push_back({{"dimension", dim},
                    {"index", (static_cast<std::uint64_t>(cell) >> (index_bits * dim)) & 0xFFFFU},
                    {"middle", ShortNumber(middle.value[dim])},
                    {"edge", ShortNumber(edge)}});
  }
  return json;
}

}  // namespace

Json DescribeTrigger(const CQtParamInstance& params, const Request& request) {
  const CTriggerStore store(params);
  const CTriggerStore::CIntervals axes = AxesOf(store, request);
  const int running = store.dimension(*request.mode, request.trigger);
  Json json;
  json["mode"] = *request.mode;
  json["mode_name"] = StepName(params, *request.mode);
  json["trigger"] = request.trigger;
  json["trigger_name"] = Utf8(params.TriggerName(request.trigger));
  json["running_dimension"] = running == -1 ? Json() : Json(running);
  json["axes"] = DescribeAxes(params, request, axes);
  if (request.cell) {
    json["cell"] = *request.cell;
    json["places"] = DescribePlaces(axes, *request.cell, axes.is_set);
  } else if (!request.values.empty()) {
    const CTriggerStore::CDimensions values = ValuesFor(axes, request.values);
    std::int64_t cell = 0;
    std::int64_t of_rows = 0;
    const bool found = CTriggerStore::cell(axes, values, cell, request.clamp);
    const bool found_of_rows =
        store.cell(*request.mode, request.trigger, values, of_rows, request.clamp);
    json["values"] = DescribeValues(axes, values);
    json["cell"] = found ? Json(cell) : Json();
    json["cell_of_rows"] = found_of_rows ? Json(of_rows) : Json();
    json["places"] = found ? DescribePlaces(axes, cell, values.is_set) : Json::array();
  }
  return json;
}

void PrintTrigger(const Json& json) {
  constexpr int width = 11;
  const bool has_running = !json["running_dimension"].is_null();
  const auto cell = [](const Json& value) {
    return value.is_null() ? "out of range" : value.dump();
  };
  PrintFacts(width, {{"test step", Cell(json, "mode")},
                     {"trigger", Cell(json, "trigger")},
                     {"runs in", has_running ? "dimension " + Cell(json, "running_dimension")
                                             : "no single dimension"}});
  std::cout << '\n';
  PrintTable(json["axes"], {{"dimension", "dimension"},
                            {"low", "low"},
                            {"high", "high"},
                            {"step", "step"},
                            {"cells", "cells"},
                            {"direction", "direction"}});
  if (!json.contains("cell")) return;
  std::cout << '\n';
  PrintFacts(width, {{"cell", cell(json["cell"])}});
  if (json.contains("cell_of_rows") && json["cell_of_rows"] != json["cell"]) {
    PrintFacts(width, {{"by rows", cell(json["cell_of_rows"]) +
                                       "  (the table counts from the start of a row, also where "
                                       "that is the upper end)"}});
  }
  for (const Json& value : json.value("values", Json::array())) {
    if (value["side"] == "inside") continue;
    PrintFacts(width, {{"beside", Cell(value, "value", "an infinite value") + " lies " +
                                      Cell(value, "side") + " the axis of dimension " +
                                      Cell(value, "dimension")}});
  }
  if (json["places"].empty()) return;
  std::cout << '\n';
  PrintTable(
      json["places"],
      {{"dimension", "dimension"}, {"index", "index"}, {"middle", "middle"}, {"edge", "edge"}});
}

}  // namespace kestrindb
