// kestrindb load FILE: what a load of the file gives.

#include <sys/resource.h>

#include <cmath>
#include <iostream>
#include <memory>

#include "Command.h"

using namespace kestrin;

namespace kestrindb {
namespace {

Json ToJson(const DataBase& data) {
  Json json;
  json["accepted"] = data.accepted;
  if (!data.accepted) json["reason"] = data.reason;
  CLake& lake = CParameterLake::Lake();
  const int major = lake[L"<DbDesign.CacheVersion>"];
  const int minor = lake[L"<DbDesign.CacheMinorVersion>"];
  json["version"] = {{"major", major}, {"minor", minor}};
  json["base_type"] = Utf8(data.params.BaseType());
  json["alias_type"] = Utf8(data.params.AliasType());
  json["calibration_file"] = Utf8(data.params.CalibFileName());
  json["learn_archive"] = Utf8(data.params.LearnFileName());
  json["tables"] = Json::array();
  for (const auto& table : TableCatalogue::Tables()) {
    json["tables"].push_back(
        {{"section", Utf8(table.section)}, {"rows", table.row_count(data.params.Store())}});
  }
  json["log"] = Json::array();
  for (const LogLine& line : data.log) {
    json["log"].push_back(
        {{"category", line.category}, {"style", line.style}, {"text", line.text}});
  }
  return json;
}

// The memory is the most that the program has had so far.
Json Cost(const DataBase& data) {
  const auto milliseconds = [](double seconds) { return std::round(seconds * 1e6) / 1e3; };
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return {{"reading_ms", milliseconds(data.reading)},
          {"loading_ms", milliseconds(data.loading)},
          {"peak_memory_kib", usage.ru_maxrss}};
}

std::string OrNone(const Json& text) {
  return text.get<std::string>().empty() ? "(none)" : text.get<std::string>();
}

void PrintLoad(const Json& json) {
  std::cout << "version          " << json["version"]["major"] << '.' << json["version"]["minor"]
            << (json["accepted"] ? "" : "  not accepted: " + json["reason"].get<std::string>())
            << '\n'
            << "base type        " << OrNone(json["base_type"]) << '\n'
            << "alias type       " << OrNone(json["alias_type"]) << '\n'
            << "calibration file " << OrNone(json["calibration_file"]) << '\n'
            << "learn archive    " << OrNone(json["learn_archive"]) << "\n\n";
  std::vector<std::vector<std::string>> rows;
  for (const Json& table : json["tables"]) {
    rows.push_back({table["section"].get<std::string>(), table["rows"].dump()});
  }
  PrintTable({"table", "rows"}, rows);
  const std::size_t logged = json["log"].size();
  std::cout << '\n'
            << (logged == 0 ? "Nothing was logged."
                            : std::to_string(logged) + " log entries; see standard error.")
            << '\n';
  if (!json.contains("cost")) return;
  std::cout << "\nreading      " << json["cost"]["reading_ms"] << " ms\nloading      "
            << json["cost"]["loading_ms"] << " ms\npeak memory  " << json["cost"]["peak_memory_kib"]
            << " KiB\n";
}

}  // namespace

void AddLoad(CommandLine& line) {
  auto file = std::make_shared<std::string>();
  auto time = std::make_shared<bool>(false);
  CLI::App* command =
      line.Add("load", "Load a file: versions, document names, rows of each table, what was logged",
               [file, time, &line] {
                 const DataBase data(*file);
                 Json json = ToJson(data);
                 if (*time) json["cost"] = Cost(data);
                 line.json ? Print(json) : PrintLoad(json);
                 return data.LoadStatus();
               });
  command->add_option("FILE", *file, "Parameter file")->required();
  command->add_flag("--time", *time, "Tell how long reading and loading took, and the peak memory");
}

}  // namespace kestrindb
