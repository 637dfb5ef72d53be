// kestrindb load FILE: what a load of the file gives.

#include <sys/resource.h>

#include <cmath>
#include <iostream>

#include "Commands.h"

using namespace kestrin;

namespace kestrindb {
namespace {

// The memory is the most that the program has had so far.
Json Cost(const DataBase& data) {
  const auto milliseconds = [](double seconds) { return std::round(seconds * 1e6) / 1e3; };
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return {{"reading_ms", milliseconds(data.reading)},
          {"loading_ms", milliseconds(data.loading)},
          {"peak_memory_kib", usage.ru_maxrss}};
}

std::string OrNone(const Json& json, const char* field) {
  const std::string text = Cell(json, field);
  return text.empty() ? "(none)" : text;
}

}  // namespace

Answer DescribeLoad(const Request& request) {
  const DataBase data(request.file);
  CLake& lake = CParameterLake::Lake();
  const int major = lake[CQTableManager::major_key];
  const int minor = lake[CQTableManager::minor_key];
  Json json;
  json["accepted"] = data.IsAccepted();
  if (!data.IsAccepted()) json["reason"] = Utf8(data.params.LastRefusal().sentence);
  json["version"] = {{"major", major}, {"minor", minor}};
  json["base_type"] = Utf8(data.params.BaseType());
  json["alias_type"] = Utf8(data.params.AliasType());
  json["calibration_file"] = Utf8(data.params.CalibFileName());
  json["learn_archive"] = Utf8(data.params.LearnFileName());
  json["tables"] = Json::array();
  for (const auto& table : TableCatalogue::Tables()) {
    json["tables"].push_back(
        {{"section", table.section}, {"rows", table.row_count(data.params.Store())}});
  }
  json["log"] = data.log;
  const Json cost = Cost(data);  // without the check
  json["findings"] = CountFindings(ParameterCheck::Check(CParameterLake::Lake(), data.bytes));
  if (request.time) json["cost"] = cost;
  return {json, data.LoadStatus()};
}

void PrintLoad(const Json& json) {
  const Json& version = json["version"];
  PrintFacts(17,
             {{"version", version["major"].dump() + '.' + version["minor"].dump() +
                              (json["accepted"] ? "" : "  not accepted: ") + Cell(json, "reason")},
              {"base type", OrNone(json, "base_type")},
              {"alias type", OrNone(json, "alias_type")},
              {"calibration file", OrNone(json, "calibration_file")},
              {"learn archive", OrNone(json, "learn_archive")}});
  std::cout << '\n';
  PrintTable(json["tables"], {{"table", "section"}, {"rows", "rows"}});
  const std::size_t logged = json["log"].size();
  std::cout << '\n'
            << (logged == 0
                    ? "Nothing was logged."
                    : std::to_string(logged) + (logged == 1 ? " log entry" : " log entries") +
                          "; see standard error.")
            << '\n';
  if (json["findings"] != 0) {
    std::cout << "kestrindb check has " << PluralOf(json["findings"], "finding") << ", by line.\n";
  }
  if (!json.contains("cost")) return;
  std::cout << '\n';
  PrintFacts(13, {{"reading", Cell(json["cost"], "reading_ms") + " ms"},
                  {"loading", Cell(json["cost"], "loading_ms") + " ms"},
                  {"peak memory", Cell(json["cost"], "peak_memory_kib") + " KiB"}});
}

}  // namespace kestrindb
