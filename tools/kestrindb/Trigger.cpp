// kestrindb trigger FILE MODE TRIGGER [VALUE...]: the axes of a trigger in a test step, the cell of
// running values, and the places of a cell.
//
// Cells are counted along the axes as they are shown, from their lower ends. On the table's own
// rows, cells count from a row's start; the answer says so where that makes a difference.

#include <cstdint>
#include <iostream>
#include <memory>
#include <optional>

#include "Command.h"

namespace kestrindb {
namespace {

constexpr unsigned index_bits = 16;

struct TriggerRequest {
  int mode = 0;
  int trigger = 0;
  std::vector<float> values;
  std::optional<std::int64_t> cell;
  bool clamp = false;
};

const char* Direction(const CQtParamInstance& params, const TriggerRequest& request, unsigned dim) {
  const auto row = params.TriggerParam().find({CQtParamInstance::VirtMode2BaseMode(request.mode),
                                               request.trigger, static_cast<int>(dim) + 1});
  if (row == params.TriggerParam().end()) return "none";
  return row->second.direction == 2 ? "raising" : row->second.direction == 3 ? "falling" : "none";
}

CTriggerStore::CIntervals AxesOf(const CTriggerStore& store, const TriggerRequest& request) {
  CTriggerStore::CIntervals axes;
  if (store.field(request.mode, request.trigger, axes)) return axes;
  throw Failure(data_bad, "Trigger " + std::to_string(request.trigger) +
                              " has no axes in test step " + std::to_string(request.mode) + ".");
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

Json DescribeAxes(const CQtParamInstance& params, const TriggerRequest& request,
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

Json DescribeTrigger(const CQtParamInstance& params, const TriggerRequest& request) {
  const CTriggerStore store(params);
  const CTriggerStore::CIntervals axes = AxesOf(store, request);
  const int running = store.dimension(request.mode, request.trigger);
  Json json;
  json["mode"] = request.mode;
  json["mode_name"] = Utf8(params.ModeName(request.mode));
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
        store.cell(request.mode, request.trigger, values, of_rows, request.clamp);
    json["cell"] = found ? Json(cell) : Json();
    json["cell_of_rows"] = found_of_rows ? Json(of_rows) : Json();
    json["places"] = found ? DescribePlaces(axes, cell, values.is_set) : Json::array();
  }
  return json;
}

std::string CellText(const Json& cell) { return cell.is_null() ? "out of range" : cell.dump(); }

void PrintTrigger(const Json& json) {
  std::cout << "test step  " << WithName(json["mode"], json["mode_name"]) << "\ntrigger    "
            << WithName(json["trigger"], json["trigger_name"]) << "\nruns in    "
            << (json["running_dimension"].is_null()
                    ? "no single dimension"
                    : "dimension " + json["running_dimension"].dump())
            << "\n\n";
  std::vector<std::vector<std::string>> rows;
  for (const Json& axis : json["axes"]) {
    rows.push_back({axis["dimension"].dump(), axis["low"].dump(), axis["high"].dump(),
                    axis["step"].dump(), axis["cells"].dump(),
                    axis["direction"].get<std::string>()});
  }
  PrintTable({"dimension", "low", "high", "step", "cells", "direction"}, rows);
  if (!json.contains("cell")) return;
  std::cout << "\ncell       " << CellText(json["cell"]) << '\n';
  if (json.contains("cell_of_rows") && json["cell_of_rows"] != json["cell"]) {
    std::cout << "by rows    " << CellText(json["cell_of_rows"])
              << "  (the table counts from the start of a row, also where that is the upper end)\n";
  }
  if (json["places"].empty()) return;
  std::cout << '\n';
  rows.clear();
  for (const Json& place : json["places"]) {
    rows.push_back({place["dimension"].dump(), place["index"].dump(), place["middle"].dump(),
                    place["edge"].dump()});
  }
  PrintTable({"dimension", "index", "middle", "edge"}, rows);
}

}  // namespace

void AddTrigger(CommandLine& line) {
  auto file = std::make_shared<std::string>();
  auto request = std::make_shared<TriggerRequest>();
  CLI::App* command =
      line.Add("trigger", "The axes of a trigger, the cell of values, the places of a cell",
               [file, request, &line] {
                 const DataBase data(*file);
                 data.RequireAccepted();
                 data.RequireMode(request->mode);
                 const Json json = DescribeTrigger(data.params, *request);
                 line.json ? Print(json) : PrintTrigger(json);
                 return data.LoadStatus();
               });
  command->add_option("FILE", *file, "Parameter file")->required();
  command->add_option("MODE", request->mode, "Id of a test step")->required();
  command->add_option("TRIGGER", request->trigger, "Id of a trigger")->required();
  auto* values = command->add_option("VALUE", request->values,
                                     "A running value for each axis, in the order of the axes");
  command->add_option("--cell", request->cell, "Show the places of this cell")->excludes(values);
  command->add_flag("--clamp", request->clamp, "Take values beside an axis for its nearest cell");
}

}  // namespace kestrindb
