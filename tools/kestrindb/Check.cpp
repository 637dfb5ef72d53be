// kestrindb check FILE: every fault of a parameter file, with its line.

#include <algorithm>
#include <iostream>

#include "Commands.h"

using namespace kestrin;

namespace kestrindb {
namespace {

bool HasBytesBeyondAsciiAndNoMark(const std::string& file_name) {
  const std::string bytes = ReadFile(Wide(file_name));
  return !bytes.starts_with("\xEF\xBB\xBF") &&
         std::any_of(bytes.begin(), bytes.end(), [](char byte) { return (byte & '\x80') != 0; });
}

Json ToJson(const ParameterCheck::Finding& finding) {
  Json json = {{"kind", ParameterCheck::Name(finding.kind)}, {"line", finding.line}};
  if (finding.other_line != 0) json["other_line"] = finding.other_line;
  if (!finding.section.empty()) json["section"] = Utf8(finding.section);
  if (finding.position != 0) {
    json["field"] = finding.field;
    json["position"] = finding.position;
  }
  json["message"] = finding.message;
  return json;
}

}  // namespace

Answer DescribeCheck(const Request& request) {
  ReadLake(request.file);
  const CLake& lake = CParameterLake::Lake();
  Json findings = Json::array();
  for (const auto& finding : ParameterCheck::Check(lake)) findings.push_back(ToJson(finding));
  if (lake.last_refusal().reason == Refusal::broken_text) {
    findings.push_back(
        {{"kind", "not_utf8"},
         {"line", lake.last_refusal().line},
         {"message", "the text is not UTF-8 in this line; nothing from there on is read"}});
  }
  if (HasBytesBeyondAsciiAndNoMark(request.file)) {
    findings.push_back({{"kind", "no_utf8_mark"},
                        {"line", 1},
                        {"message",
                         "the file has no UTF-8 mark (EF BB BF) at its start, so each of "
                         "its bytes is read as one Latin-1 character"}});
  }
  std::stable_sort(findings.begin(), findings.end(), [](const Json& a, const Json& b) {
    return a["line"].get<std::size_t>() < b["line"].get<std::size_t>();
  });
  return {findings, findings.empty() ? fine : data_bad};
}

// As compilers tell of errors, so that editors can jump to the line.
void PrintCheck(const Json& json) {
  const std::string file_name = Utf8(CParameterLake::Lake().filename());
  for (const Json& finding : json) {
    std::cout << file_name << ':' << finding["line"] << ": " << Cell(finding, "kind") << ": ";
    if (finding.contains("section")) std::cout << Cell(finding, "section") << ": ";
    if (finding.contains("position")) {
      std::cout << "field " << finding["position"] << " (" << Cell(finding, "field") << "): ";
    }
    std::cout << Cell(finding, "message") << '\n';
  }
  std::cout << (json.empty()
                    ? "Nothing to report."
                    : std::to_string(json.size()) + (json.size() == 1 ? " finding." : " findings."))
            << '\n';
}

}  // namespace kestrindb
