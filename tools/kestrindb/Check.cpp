// kestrindb check FILE: every fault of a parameter file, with its line.

#include <algorithm>
#include <iostream>
#include <utility>

#include "Commands.h"
#include "Output.h"

using namespace kestrin;

namespace kestrindb {
namespace {

Json ToJson(const ParameterCheck::Finding& finding) {
  Json json = {{"kind", ParameterCheck::Name(finding.kind)},
               {"severity", ParameterCheck::Name(finding.severity)},
               {"line", finding.line}};
  if (finding.column != 0) json["column"] = finding.column;
  if (finding.other_line != 0) json["other_line"] = finding.other_line;
  if (!finding.section.empty()) json["section"] = finding.section;
  if (finding.position != 0) {
    json["field"] = finding.field;
    json["position"] = finding.position;
  }
  json["message"] = finding.message;
  if (finding.further != 0) json["further"] = finding.further;
  return json;
}

// Where the finding is and what it says, as compilers tell of errors.
void PrintFinding(const std::string& file, const Json& finding, bool for_editors) {
  const std::string severity = Cell(finding, "severity");
  const Colour colour = severity == "error"  ? Colour::error
                        : severity == "loss" ? Colour::loss
                                             : Colour::note;
  const auto line = finding["line"].get<std::size_t>();
  std::cout << file << ':';
  if (line != 0 || for_editors) std::cout << std::max<std::size_t>(line, 1) << ':';
  if (for_editors) std::cout << finding.value("column", 1) << ':';
  std::cout << ' ' << Painted(for_editors && severity == "loss" ? "warning" : severity, colour)
            << ": ";
  if (finding.contains("section")) std::cout << Cell(finding, "section") << ": ";
  if (finding.contains("position")) {
    std::cout << "field " << finding["position"] << ", `" << Cell(finding, "field") << "`: ";
  }
  std::cout << Cell(finding, "message");
  const bool more = finding.contains("further");
  if (more && for_editors)
    std::cout << " ... and " << PluralOf(finding["further"], "") << "more of this kind";
  std::cout << " [" << Cell(finding, "kind") << "]\n";
  if (for_editors || !more) return;
  std::cout << "... and " << PluralOf(finding["further"], "") << "more of this kind";
  if (finding.contains("section")) std::cout << " in " << Cell(finding, "section");
  std::cout << '\n';
}

}  // namespace

std::size_t CountFindings(const std::vector<ParameterCheck::Finding>& findings) {
  std::size_t count = findings.size();
  for (const auto& finding : findings) count += finding.further;
  return count;
}

Answer DescribeCheck(const Request& request) {
  const std::string bytes = ReadCandidateLake(request.file);
  const CLake& lake = CParameterLake::Lake();
  const auto findings = ParameterCheck::Check(lake, bytes, request.check);
  Json json = {{"file", Utf8(lake.filename())}, {"errors", 0}, {"losses", 0}, {"notes", 0}};
  if (!request.format.empty()) json["format"] = request.format;
  json["findings"] = Json::array();
  for (const auto& finding : findings) {
    static constexpr const char* counts[] = {"errors", "losses", "notes"};
    Json& count = json[counts[static_cast<int>(finding.severity)]];
    count = count.get<std::size_t>() + 1 + finding.further;
    json["findings"].push_back(ToJson(finding));
  }
  return {json, json["errors"] == 0 && json["losses"] == 0 ? fine : data_bad};
}

void PrintCheck(const Json& json) {
  const bool for_editors = json.contains("format");
  const std::string file = Cell(json, "file");
  for (const Json& finding : json["findings"]) PrintFinding(file, finding, for_editors);
  if (for_editors) return;
  std::string counts;
  for (const auto& [field, what] :
       {std::pair("errors", "error"), std::pair("losses", "loss"), std::pair("notes", "note")}) {
    if (json[field] == 0) continue;
    counts += (counts.empty() ? "" : ", ") + PluralOf(json[field], what);
  }
  std::cout << (counts.empty() ? "Nothing to report" : counts) << ".\n";
}

}  // namespace kestrindb
