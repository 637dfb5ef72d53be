// The commands of kestrindb: what each is called, takes and answers.
//
// Commands.cpp has the table of them. A command describes its answer as JSON, and prints it for
// people out of the JSON, so that programs and people are told the same; both functions stand in
// the file of the command's name.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "Answer.h"
#include "DataBase.h"

namespace CLI {
class App;
}

namespace kestrindb {

// What the user asks for. A command sees those arguments that its row of the table names.
struct Request {
  // Sets the ids below that the user gave as names or numbers, once there is a data base to ask.
  std::vector<std::function<void(const CQtParamInstance& params)>> resolve;

  bool json = false;
  bool layout = false;                // of the answer as JSON
  const CLI::App* program = nullptr;  // with all commands
  std::string shell;
  std::string file;
  std::string other_file;
  std::string svg;             // the picture to draw; "-" for standard output
  std::optional<double> from;  // what its axis shows
  std::optional<double> to;
  std::optional<int> mode;
  std::optional<int> parameter;
  int channel = 0;
  int trigger = 0;
  int element = 0;       // of a key
  std::vector<int> ids;  // of a key: none or six
  const kestrin::TableCatalogue::TableInfo* table = nullptr;
  const kestrin::TableCatalogue::RowsInfo* rows = nullptr;  // a table or a derived one
  bool csv = false;
  bool in_place = false;
  bool check_only = false;
  bool force = false;
  kestrin::TableCatalogue::IdKind kind = kestrin::TableCatalogue::IdKind::none;
  std::string id;  // of that kind, or a name
  std::string separator = "|";
  std::string definition;

  std::string format;  // of a check; empty: for people
  kestrin::ParameterCheck::Options check;

  bool time = false;
  int limit = 0;
  std::vector<std::string> make;  // as typed
  bool show_ids = false;
  bool bare = false;
  std::optional<int> speed_source;
  std::optional<int> assembly;
  float resolution_orders = 0.0F;  // 0: not given, and so of the other one
  float resolution_hz = 0.0F;
  unsigned lines = 0;
  float order_scale = 1.0F;
  std::string unit = "Hz";
  std::string x_title = "x";
  std::string y_title = "y";
  std::vector<float> values;
  std::optional<std::int64_t> cell;
  bool clamp = false;

  CClavis Key() const { return ids.empty() ? CClavis() : CClavis(ids.data()); }
};

// Of a check, those that are only counted too.
std::size_t CountFindings(const std::vector<kestrin::ParameterCheck::Finding>& findings);

// What an order definition passes over unread and drops, in fields of `json`.
void AddPassedOver(Json& json, const std::wstring& definition);
void PrintPassedOver(const Json& json);

struct Answer {
  Json json;
  Status status;
};

struct Command {
  // Adds an argument or a group of options.
  using Argument = void(CLI::App& command, Request& request);
  // The answer of a data base that was accepted and has the test step, if one is asked for.
  using Describe = Json(const CQtParamInstance& params, const Request& request);
  // The same of a command that needs less than such a data base.
  using DescribeAlone = Answer(const Request& request);
  using Print = void(const Json& json);
  using Draw = void(const Json& json, const Request& request);  // into request.svg

  const char* name;
  const char* help;
  const char* example;  // what stands behind the name; one that answers in the project's folder
  std::vector<Argument*> arguments;
  std::variant<Describe*, DescribeAlone*> describe;
  Print* print;
  Draw* draw = nullptr;
};

// In the order of the help.
const std::vector<Command>& Commands();

// The functions of the table.
Command::DescribeAlone DescribeLoad, DescribeTables, DescribeCheck, DescribeOrder, DescribeDiff,
    DescribeFmt, DescribeWhere, DescribeCompletion, DescribeManual;
Command::Describe DescribeNames, DescribeDump, DescribeMode, DescribeKey, DescribePick,
    DescribeChannel, DescribeRotors, DescribeCalc, DescribeIntervals, DescribePolygon,
    DescribeTrigger, DescribeExport;
Command::Print PrintLoad, PrintNames, PrintDump, PrintTables, PrintCheck, PrintMode, PrintKey,
    PrintPick, PrintChannel, PrintRotors, PrintCalc, PrintOrder, PrintIntervals, PrintPolygon,
    PrintTrigger, PrintDiff, PrintFmt, PrintWhere, PrintExport, PrintCompletion, PrintManual;
Command::Draw DrawIntervals, DrawPolygon;

}  // namespace kestrindb
