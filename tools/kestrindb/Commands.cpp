#include "Commands.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <map>
#include <type_traits>

#include "Names.h"

using namespace kestrin;

namespace kestrindb {
namespace {

void File(CLI::App& command, Request& request) {
  command.add_option("FILE", request.file, "Parameter file; - is standard input")->required();
}

void CheckOptions(CLI::App& command, Request& request) {
  command.add_option("--format", request.format, "gcc: as compilers tell, for editors")
      ->check(CLI::IsMember({"gcc"}).description(""))
      ->type_name("gcc");
  command.add_flag_function(
      "--no-references", [&request](std::int64_t) { request.check.references = false; },
      "Don't look ids up in the tables that name them");
  command.add_flag_function(
      "--all", [&request](std::int64_t) { request.check.most_of_a_kind = SIZE_MAX; },
      "List all findings, not only the first 20 of a kind in a section");
}

void Time(CLI::App& command, Request& request) {
  command.add_flag("--time", request.time,
                   "Tell how long reading and loading took, and the peak memory");
}

// The words of kestrindb, and those of the tables.
void Element(CLI::App& command, Request& request) {
  std::vector<std::wstring> known;
  std::string list;
  for (int element = 0; element <= trigger_element; ++element) {
    known.push_back(Wide(Word(element)));
    list += (list.empty() ? "" : "|") + std::string(Word(element));
  }
  const auto set = [&request, known](std::string word) {
    for (char& c : word) c = Text::Lower(c);
    const std::map<std::string, std::string> of_tables = {
        {"mode", "test-step"}, {"location", "object"}, {"sensor", "signal"}};
    if (of_tables.contains(word)) word = of_tables.at(word);
    const auto found = std::find(known.begin(), known.end(), Wide(word));
    if (found == known.end()) {
      throw Failure(data_bad,
                    "There are no names of '" + word + "'." + Hint(word, known, "names --help"));
    }
    request.element = static_cast<int>(found - known.begin());
  };
  command.add_option_function<std::string>("ELEMENT", set, "What the names are of")
      ->required()
      ->type_name(list);
}

// What `find` finds of that name.
template <class Find>
auto Found(Find find, const std::string& section) {
  const auto* const found = find(section);
  if (found != nullptr) return found;
  std::vector<std::wstring> known;
  const auto add = [&](const auto& tables) {
    for (const auto& table : tables) {
      if (!find(table.section)) continue;
      known.push_back(Wide(table.section.substr(1, table.section.size() - 2)));
    }
  };
  add(TableCatalogue::Tables());
  add(TableCatalogue::DerivedTables());
  throw Failure(data_bad, "There is no table '" + section + "'." + Hint(section, known, "tables"));
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

void TwoFiles(CLI::App& command, Request& request) {
  command.add_option("OLD", request.file, "Parameter file")->required();
  command.add_option("NEW", request.other_file, "Parameter file to compare it with")->required();
}

void FmtOptions(CLI::App& command, Request& request) {
  command.add_flag("--in-place", request.in_place,
                   "Replace the file by what is tidied, whole or not at all");
  command
      .add_flag("--check", request.check_only,
                "Write nothing; exit status 1 if the file isn't tidy, with the first line of it")
      ->excludes("--in-place");
}

void IdOfKind(CLI::App& command, Request& request) {
  using Kind = TableCatalogue::IdKind;
  const std::map<std::string, Kind> kinds = {{"test-step", Kind::mode},
                                             {"mode", Kind::mode},
                                             {"instrument", Kind::instrument},
                                             {"channel", Kind::channel},
                                             {"object", Kind::location},
                                             {"location", Kind::location},
                                             {"parameter", Kind::parameter},
                                             {"signal", Kind::sensor},
                                             {"sensor", Kind::sensor},
                                             {"phys_mode", Kind::phys_mode},
                                             {"trigger", Kind::trigger},
                                             {"speed_source", Kind::speed_source},
                                             {"rotor", Kind::rotor},
                                             {"phys_gear", Kind::phys_gear},
                                             {"sensor_group", Kind::sensor_group},
                                             {"type", Kind::type},
                                             {"polygon", Kind::polygon}};
  std::string names;
  std::vector<std::wstring> known;
  for (const auto& [name, kind] : kinds) {
    names += (names.empty() ? "" : ", ") + name;
    known.push_back(Wide(name));
  }
  const auto set = [&request, kinds, names, known](std::string word) {
    for (char& c : word) c = Text::Lower(c);
    const auto found = kinds.find(word);
    if (found == kinds.end()) {
      throw Failure(data_bad, "There are no ids of '" + word + "', only of " + names + "." +
                                  Hint(word, known, "where --help"));
    }
    request.kind = found->second;
  };
  command.add_option_function<std::string>("ELEMENT", set, "What the id stands for: " + names)
      ->required();
  command.add_option("ID", request.id, "The id, or its name in quotes")
      ->type_name("ID|NAME")
      ->required();
}

void Out(CLI::App& command, Request& request) {
  command.add_option("OUT", request.other_file, "SQLite data base to make; a folder with --csv")
      ->required();
  command.add_flag("--csv", request.csv,
                   "Make a folder with a file of comma-separated values for each table");
  command.add_flag(
      "--force", request.force,
      "Replace an SQLite data base of that name, or with --csv the tables in the folder");
}

void Limit(CLI::App& command, Request& request) {
  command
      .add_option("--limit", request.limit,
                  "End each table after the first row above this number; 0: all")
      ->check([](const std::string& text) {
        return IntegerOf(text).value_or(-1) >= 0
                   ? std::string()
                   : "a number of rows is needed, not '" + text + '\'';
      });
}

enum class Unknown { refused, taken };

// A number or a name; a number that the data base doesn't know is taken where another table than
// that of the names may have it.
template <class Id>
CLI::Option* AddId(CLI::App& command, Request& request, const char* argument, Id& id, int element,
                   Unknown unknown = Unknown::refused) {
  return command
      .add_option_function<std::string>(
          argument,
          [&request, &id, element, unknown](const std::string& text) {
            request.resolve.push_back(
                [&id, element, unknown, text](const CQtParamInstance& params) {
                  id = unknown == Unknown::taken ? IdOf(params, element, text)
                                                 : KnownId(params, element, text);
                });
          },
          std::string("Id of a ") + Noun(element) + ", or its name in quotes")
      ->type_name("ID|NAME");
}

void Mode(CLI::App& command, Request& request) {
  AddId(command, request, "MODE", request.mode, Clavis::Mode)->required();
}

void ModeOrItsParts(CLI::App& command, Request& request) {
  CLI::App* const group = command.add_option_group("mode");
  AddId(*group, request, "MODE", request.mode, Clavis::Mode);
  group
      ->add_option("--make", request.make,
                   "BASE INDEX...: the virtual test step with that base and a band index (-1: "
                   "none) for each row of <TAutoModeParam>")
      ->expected(1, CLI::detail::expected_max_vector_size);
  group->require_option(1);
}

CLI::Option* AddKey(CLI::App& command, Request& request) {
  return command
      .add_option_function<std::vector<std::string>>(
          "KEY",
          [&request](const std::vector<std::string>& texts) {
            request.resolve.emplace_back([&request, texts](const CQtParamInstance& params) {
              request.ids.assign(Clavis::element_count, -1);
              for (const int element : {Clavis::Mode, Clavis::Instrument, Clavis::Channel,
                                        Clavis::Location, Clavis::Parameter, Clavis::Sensor}) {
                const auto at = static_cast<std::size_t>(element);
                const int instrument =
                    element == Clavis::Parameter ? request.ids[Clavis::Instrument] : -1;
                request.ids[at] = IdOf(params, element, texts[at], instrument);
              }
            });
          },
          "Six ids, or names in quotes: test step, instrument, channel, object, parameter, signal; "
          "-1: no value")
      ->type_name("ID|NAME")
      ->expected(Clavis::element_count);
}

void Key(CLI::App& command, Request& request) { AddKey(command, request)->required(); }

void KeyToBeginWith(CLI::App& command, Request& request) { AddKey(command, request); }

void Separator(CLI::App& command, Request& request) {
  command.add_option("--separator", request.separator, "Separator of the nice text");
}

void PickOptions(CLI::App& command, Request& request) {
  command.add_flag("--ids", request.show_ids, "Show the ids beside the names");
  command.add_flag("--bare", request.bare, "Give only the six ids, as other commands take them");
}

void Channel(CLI::App& command, Request& request) {
  AddId(command, request, "CHANNEL", request.channel, Clavis::Channel)->required();
}

void Parameter(CLI::App& command, Request& request) {
  AddId(command, request, "PARAMETER", request.parameter, Clavis::Parameter)->required();
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

std::string Needed(const std::string& what, const std::string& text) {
  const bool has_comma = text.find(',') != std::string::npos;
  return what + " is needed, not '" + text + '\'' +
         (has_comma ? ": a decimal comma? Write a point" : "");
}

std::string RefuseUnlessNumber(const std::string& text) {
  double number = 0;
  const bool is_number = CLI::detail::lexical_cast(text, number) && !std::isnan(number);
  return is_number ? "" : Needed("a number", text);
}

// A finite number above 0 that `Number` holds.
template <class Number>
std::string RefuseUnlessPositive(const std::string& text) {
  double number = 0;
  if (!CLI::detail::lexical_cast(text, number) || !(number > 0)) {
    return Needed("a number above 0", text);
  }
  Number held = 0;
  if (CLI::detail::lexical_cast(text, held) && held > 0 && std::isfinite(static_cast<double>(held)))
    return {};
  return Needed(std::is_integral_v<Number> ? "a whole number from 1 to 4294967295"
                                           : "a number from 1.2e-38 to 3.4e38",
                text);
}

void IntervalOptions(CLI::App& command, Request& request) {
  const CLI::Option* const parameter =
      AddId(command, request, "PARAMETER", request.parameter, Clavis::Parameter, Unknown::taken)
          ->description("Id of a parameter, or its name in quotes; without it all with intervals");
  const CLI::Option* const definition = command.add_option(
      "--definition", request.definition, "Order definition to try, in place of those in the file");
  command.add_option("--assembly", request.assembly,
                     "Order source that harmonics refer to; without it the one in calculation "
                     "parameter 4 of each parameter");
  command.add_option("--speed-source", request.speed_source,
                     "Order source that tells the speed; without it that of the assembly's rotor");
  const auto add_positive = [&](const char* name, auto& value, const char* help) {
    return command.add_option(name, value, help)
        ->check(RefuseUnlessPositive<std::decay_t<decltype(value)>>)
        ->type_name("NUMBER");
  };
  add_positive("--resolution-orders", request.resolution_orders,
               "Distance of two spectral lines on an axis of orders");
  add_positive("--resolution-hz", request.resolution_hz,
               "The same on an axis of frequencies, in the unit of F");
  add_positive("--lines", request.lines, "Number of spectral lines")->required();
  add_positive("--order-scale", request.order_scale,
               "Value of one order in the unit of F, for mixed intervals; 1 without it");
  command.add_option("--unit", request.unit, "Unit of F; Hz without it");
  command.callback([&request, parameter, definition] {
    if (definition->count() > 0 && request.definition.empty()) {
      throw CLI::ValidationError("--definition", "a definition is needed, not an empty text");
    }
    if (definition->count() > 0 && parameter->count() > 0) {
      throw CLI::ValidationError("--definition", "it stands in place of a PARAMETER");
    }
    if (request.resolution_orders == 0 && request.resolution_hz == 0) {
      throw CLI::ValidationError("--resolution-orders, --resolution-hz or both are needed");
    }
  });
}

void Picture(CLI::App& command, Request& request) {
  CLI::Option* const svg = command.add_option(
      "--svg", request.svg, "Draw the answer into this file; - for standard output, in its place");
  const auto set_bound = [&request](std::optional<double>& bound) {
    return [&request, &bound](const double& value) {
      bound = value;
      if (std::isfinite(value) && request.from.value_or(value) <= request.to.value_or(value))
        return;
      throw CLI::ValidationError("--from, --to", "these bounds enclose nothing");
    };
  };
  command
      .add_option_function<double>("--from", set_bound(request.from),
                                   "Where the picture's axis begins")
      ->needs(svg)
      ->check(RefuseUnlessNumber)
      ->type_name("NUMBER");
  command.add_option_function<double>("--to", set_bound(request.to), "Where it ends")
      ->needs(svg)
      ->check(RefuseUnlessNumber)
      ->type_name("NUMBER");
}

void Titles(CLI::App& command, Request& request) {
  command.add_option("--x-title", request.x_title, "Title of the picture's x axis, with its unit");
  command.add_option("--y-title", request.y_title, "Title of the picture's y axis, with its unit");
}

void TriggerOptions(CLI::App& command, Request& request) {
  AddId(command, request, "TRIGGER", request.trigger, trigger_element, Unknown::taken)->required();
  CLI::Option* const values =
      command
          .add_option("VALUE", request.values,
                      "A running value for each axis, in the order of the axes")
          ->check(RefuseUnlessNumber)
          ->type_name("NUMBER");
  command.add_option("--cell", request.cell, "Show the places of this cell")->excludes(values);
  command.add_flag("--clamp", request.clamp, "Take values beside an axis for its nearest cell");
}

void Shell(CLI::App& command, Request& request) {
  command.add_option("SHELL", request.shell, "The shell")
      ->required()
      ->check(CLI::IsMember({"bash", "zsh", "fish"}).description(""))
      ->type_name("bash|zsh|fish");
}

}  // namespace

const std::vector<Command>& Commands() {
  // A row each: name, help, example, arguments, functions.
  // clang-format off
  static const std::vector<Command> commands = {
      {"load", "Load a file: versions, document names, rows of each table, what was logged",
       "samples/gearbox.par",
       {File, Time}, DescribeLoad, PrintLoad},
      {"names", "Ids and names of a key element, or of the triggers",
       "samples/gearbox.par channel",
       {File, Element}, DescribeNames, PrintNames},
      {"dump", "The rows of one table or of all, for people or as data",
       "samples/gearbox.par TMode --limit 3",
       {File, Rows, Limit, Csv}, DescribeDump, PrintDump},
      {"export", "All tables as an SQLite data base, or as comma-separated values",
       "samples/gearbox.par gearbox.sqlite",
       {File, Out}, DescribeExport, PrintExport},
      {"diff", "What differs between two files, by table, key and field; exit status 1 if anything",
       "samples/gearbox.par samples/gearbox.par",
       {TwoFiles}, DescribeDiff, PrintDiff},
      {"where", "Every row in which an id stands, but for fields whose meaning hosts give (first, second, ...)",
       "samples/gearbox.par test-step 130",
       {File, IdOfKind}, DescribeWhere, PrintWhere},
      {"fmt", "A file tidied: blank lines, tabs, line ends; what it says stays",
       "samples/gearbox.par --check",
       {File, FmtOptions}, DescribeFmt, PrintFmt},
      {"tables", "The catalogue: what the lines of each section hold",
       "TMode",
       {Table}, DescribeTables, PrintTables},
      {"check", "What is wrong in a file, and what a load passes over in silence, by line",
       "samples/gearbox.par",
       {File, CheckOptions}, DescribeCheck, PrintCheck},
      {"mode", "A test step (mode): name, physical mode, flags, and the parts of a virtual one",
       "samples/gearbox.par --make 160 5 2",
       {File, ModeOrItsParts}, DescribeMode, PrintMode},
      {"key", "All texts of a key",
       "samples/gearbox.par 130 1700 3 21 17001 11",
       {File, Key, Separator}, DescribeKey, PrintKey},
      {"pick", "Choose a key at the terminal",
       "samples/gearbox.par --bare",
       {File, KeyToBeginWith, PickOptions, Separator}, DescribePick, PrintPick},
      {"channel", "A channel in a test step: its parents up to the base channel, its flags",
       "samples/gearbox.par 130 \"Envelope mix\"",
       {File, Mode, Channel}, DescribeChannel, PrintChannel},
      {"rotors", "The order sources of a test step: rotors, speeds, base orders, ratios, orders",
       "samples/gearbox.par \"Spur 30 Hz low load\"",
       {File, Mode}, DescribeRotors, PrintRotors},
      {"calc", "The calculation parameters of a parameter by their texts",
       "samples/gearbox.par 20702",
       {File, Parameter}, DescribeCalc, PrintCalc},
      {"order", "What an order definition is read as, or what is wrong",
       "\"H1-O0.5;H1+O0.5\"",
       {Definition}, DescribeOrder, PrintOrder},
      {"intervals", "Spectrum intervals in a test step: bounds on the axis and spectral lines",
       "samples/gearbox.par 130 17007 --resolution-orders 0.125 --lines 1600",
       {File, Mode, IntervalOptions, Picture}, DescribeIntervals, PrintIntervals, DrawIntervals},
      {"polygon", "The track polygon of a key that <TIpParamAndStore> lists",
       "samples/gearbox.par 170 2070 6 21 20701 11",
       {File, Key, Picture, Titles}, DescribePolygon, PrintPolygon, DrawPolygon},
      {"trigger", "The axes of a trigger, the cell of values, the places of a cell",
       "samples/gearbox.par 160 \"Speed and torque\" 1510 20",
       {File, Mode, TriggerOptions}, DescribeTrigger, PrintTrigger},
      {"completion", "What a shell reads to complete commands and options",
       "bash",
       {Shell}, DescribeCompletion, PrintCompletion},
      {"man", "The manual page; kestrindb man | man -l - shows it",
       "--json",
       {}, DescribeManual, PrintManual},
  };
  // clang-format on
  return commands;
}

}  // namespace kestrindb
