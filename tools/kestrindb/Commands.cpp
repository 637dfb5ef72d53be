#include "Commands.h"

#include <CLI/CLI.hpp>
#include <map>

using namespace kestrin;

namespace kestrindb {
namespace {

void File(CLI::App& command, Request& request) {
  command.add_option("FILE", request.file, "Parameter file")->required();
}

void Time(CLI::App& command, Request& request) {
  command.add_flag("--time", request.time,
                   "Tell how long reading and loading took, and the peak memory");
}

void Element(CLI::App& command, Request& request) {
  const std::map<std::string, int> numbers = {
      {"mode", Clavis::Mode},           {"instrument", Clavis::Instrument},
      {"channel", Clavis::Channel},     {"location", Clavis::Location},
      {"parameter", Clavis::Parameter}, {"sensor", Clavis::Sensor},
  };
  command
      .add_option("ELEMENT", request.element,
                  "mode, instrument, channel, location, parameter or sensor")
      ->required()
      ->transform(CLI::CheckedTransformer(numbers, CLI::ignore_case));
}

// What `find` finds of that name.
template <class Find>
auto Found(Find find, const std::string& section) {
  const auto* const found = find(section);
  if (found != nullptr) return found;
  throw Failure(data_bad, "There is no table '" + section + "'; see kestrindb tables.");
}

void Table(CLI::App& command, Request& request) {
  command.add_option_function<std::string>(
      "TABLE",
      [&request](const std::string& name) { request.table = Found(TableCatalogue::Find, name); },
      "Section of one table, such as TMode");
}

void Rows(CLI::App& command, Request& request) {
  std::string derived;
  for (const auto& info : TableCatalogue::DerivedTables()) {
    derived += (derived.empty() ? "" : ", ") + info.section.substr(1, info.section.size() - 2);
  }
  command.add_option_function<std::string>(
      "TABLE",
      [&request](const std::string& name) { request.rows = Found(TableCatalogue::FindRows, name); },
      "Section of one table, such as TMode, or what the load derives: " + derived);
}

void Csv(CLI::App& command, Request& request) {
  command
      .add_flag("--csv", request.csv,
                "Give comma-separated values under the names of the fields; without TABLE all "
                "tables that have rows, each under its section")
      ->excludes("--json");
}

void Limit(CLI::App& command, Request& request) {
  command
      .add_option("--limit", request.limit,
                  "End each table after the first row above this number; 0: all")
      ->check(CLI::NonNegativeNumber);
}

void Mode(CLI::App& command, Request& request) {
  command.add_option("MODE", request.mode, "Id of a test step")->required();
}

void ModeOrItsParts(CLI::App& command, Request& request) {
  CLI::App* const group = command.add_option_group("mode");
  group->add_option("ID", request.mode, "Id of a test step");
  group
      ->add_option("--make", request.make,
                   "BASE INDEX...: the id of the virtual mode with that base and a band index (-1: "
                   "none) for each row of <TAutoModeParam>")
      ->expected(1, CLI::detail::expected_max_vector_size);
  group->require_option(1);
}

CLI::Option* AddIds(CLI::App& command, Request& request) {
  return command
      .add_option("ID", request.ids,
                  "Ids of mode, instrument, channel, location, parameter and sensor; -1: no value")
      ->expected(Clavis::element_count);
}

void Key(CLI::App& command, Request& request) { AddIds(command, request)->required(); }

void KeyToBeginWith(CLI::App& command, Request& request) { AddIds(command, request); }

void Separator(CLI::App& command, Request& request) {
  command.add_option("--separator", request.separator, "Separator of the nice text");
}

void PickOptions(CLI::App& command, Request& request) {
  command.add_flag("--ids", request.show_ids, "Show the ids beside the names");
  command.add_flag("--bare", request.bare, "Give only the six ids, as other commands take them");
}

void Channel(CLI::App& command, Request& request) {
  command.add_option("CHANNEL", request.channel, "Id of a channel")->required();
}

void Parameter(CLI::App& command, Request& request) {
  command.add_option("PARAMETER", request.parameter, "Id of a parameter")->required();
}

// A definition may begin with a minus, and then comes as an option that nobody knows.
void Definition(CLI::App& command, Request& request) {
  const CLI::Option* const text = command.add_option(
      "TEXT", request.definition, "Order definition, such as \"H1-O0.5;H1+O0.5\"");
  command.fallthrough(false)->allow_extras();
  command.callback([&command, &request, text] {
    const std::vector<std::string> extras = command.remaining();
    if (extras.size() + text->count() != 1) {
      throw CLI::ValidationError("TEXT", "one definition is needed; put it in quotes");
    }
    if (!extras.empty()) request.definition = extras.front();
  });
}

void IntervalOptions(CLI::App& command, Request& request) {
  command.add_option("PARAMETER", request.parameter,
                     "Id of a parameter; without it all that have intervals");
  command.add_option("--speed-source", request.speed_source, "Order source that tells the speed")
      ->required();
  command.add_option("--assembly", request.assembly,
                     "Order source that harmonics refer to; without it the one in calculation "
                     "parameter 4 of each parameter");
  command
      .add_option("--resolution", request.resolution,
                  "Distance of two spectral lines on the spectrum's axis")
      ->required();
  command.add_option("--lines", request.lines, "Number of spectral lines")->required();
  command.add_option("--order-scale", request.order_scale,
                     "Value of one order in the unit of F, for mixed intervals; 1 without it");
  command.add_option("--unit", request.unit, "Unit of F; Hz without it");
}

void Picture(CLI::App& command, Request& request) {
  command.add_option("--svg", request.svg, "Draw the answer into this file");
}

void Titles(CLI::App& command, Request& request) {
  command.add_option("--x-title", request.x_title, "Title of the picture's x axis, with its unit");
  command.add_option("--y-title", request.y_title, "Title of the picture's y axis, with its unit");
}

void TriggerOptions(CLI::App& command, Request& request) {
  command.add_option("TRIGGER", request.trigger, "Id of a trigger")->required();
  CLI::Option* const values = command.add_option(
      "VALUE", request.values, "A running value for each axis, in the order of the axes");
  command.add_option("--cell", request.cell, "Show the places of this cell")->excludes(values);
  command.add_flag("--clamp", request.clamp, "Take values beside an axis for its nearest cell");
}

}  // namespace

const std::vector<Command>& Commands() {
  // A row each: name, help, arguments, functions.
  // clang-format off
  static const std::vector<Command> commands = {
      {"load", "Load a file: versions, document names, rows of each table, what was logged",
       {File, Time}, DescribeLoad, PrintLoad},
      {"names", "Ids and names of a key element",
       {File, Element}, DescribeNames, PrintNames},
      {"dump", "The rows of one table or of all, for people or as data",
       {File, Rows, Limit, Csv}, DescribeDump, PrintDump},
      {"tables", "The catalogue: what the lines of each section hold",
       {Table}, DescribeTables, PrintTables},
      {"check", "What is wrong in a file, and what a load passes over in silence, by line",
       {File}, DescribeCheck, PrintCheck},
      {"mode", "A test step: name, physical mode, flags, and the parts of a virtual one",
       {File, ModeOrItsParts}, DescribeMode, PrintMode},
      {"key", "All texts of a key",
       {File, Key, Separator}, DescribeKey, PrintKey},
      {"pick", "Choose a key at the terminal",
       {File, KeyToBeginWith, PickOptions, Separator}, DescribePick, PrintPick},
      {"channel", "A channel in a test step: its parents up to the base channel, its flags",
       {File, Mode, Channel}, DescribeChannel, PrintChannel},
      {"rotors", "The order sources of a test step: rotors, speeds, base orders, ratios, orders",
       {File, Mode}, DescribeRotors, PrintRotors},
      {"calc", "The calculation parameters of a parameter by their texts",
       {File, Parameter}, DescribeCalc, PrintCalc},
      {"order", "What an order definition is read as, or what is wrong",
       {Definition}, DescribeOrder, PrintOrder},
      {"intervals", "Spectrum intervals in a test step: bounds on the axis and spectral lines",
       {File, Mode, IntervalOptions, Picture}, DescribeIntervals, PrintIntervals, DrawIntervals},
      {"polygon", "The track polygon of a key that <TIpParamAndStore> lists",
       {File, Key, Picture, Titles}, DescribePolygon, PrintPolygon, DrawPolygon},
      {"trigger", "The axes of a trigger, the cell of values, the places of a cell",
       {File, Mode, TriggerOptions}, DescribeTrigger, PrintTrigger},
  };
  // clang-format on
  return commands;
}

}  // namespace kestrindb
