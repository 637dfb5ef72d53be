// kestrindb check FILE: every fault of a parameter file, with its line.

#include <algorithm>
#include <iostream>
#include <memory>

#include "Command.h"

using namespace kestrin;

namespace kestrindb {
namespace {

// What only the bytes of the file show: text that is not UTF-8 ends a load early.
void CheckBytes(const std::string& file_name, Json& findings) {
  const Refusal& refusal = CParameterLake::Lake().last_refusal();
  if (refusal.reason == Refusal::broken_text) {
    findings.push_back(
        {{"kind", "not_utf8"},
         {"line", refusal.line},
         {"message", "the text is not UTF-8 in this line; nothing from there on is read"}});
  }
  const std::string bytes = ReadFile(Wide(file_name));
  const bool marked = bytes.starts_with("\xEF\xBB\xBF");
  const bool beyond_ascii =
      std::any_of(bytes.begin(), bytes.end(), [](char byte) { return byte < 0; });
  if (!marked && beyond_ascii) {
    findings.push_back({{"kind", "no_utf8_mark"},
                        {"line", 1},
                        {"message",
                         "the file has no UTF-8 mark (EF BB BF) at its start, so each of "
                         "its bytes is read as one Latin-1 character"}});
  }
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

// As compilers tell of errors, so that editors can jump to the line.
void PrintFindings(const std::string& file_name, const Json& findings) {
  for (const Json& finding : findings) {
    std::cout << file_name << ':' << finding["line"] << ": " << finding["kind"].get<std::string>()
              << ": ";
    if (finding.contains("section")) std::cout << finding["section"].get<std::string>() << ": ";
    if (finding.contains("position")) {
      std::cout << "field " << finding["position"] << " (" << finding["field"].get<std::string>()
                << "): ";
    }
    std::cout << finding["message"].get<std::string>() << '\n';
  }
  std::cout << (findings.empty() ? "Nothing to report."
                                 : std::to_string(findings.size()) +
                                       (findings.size() == 1 ? " finding." : " findings."))
            << '\n';
}

}  // namespace

void AddCheck(CommandLine& line) {
  auto file = std::make_shared<std::string>();
  line.Add("check", "What is wrong in a file, and what a load passes over in silence, by line",
           [file, &line] {
             ReadLake(*file);
             Json findings = Json::array();
             for (const auto& finding : ParameterCheck::Check(CParameterLake::Lake())) {
               findings.push_back(ToJson(finding));
             }
             CheckBytes(*file, findings);
             std::stable_sort(findings.begin(), findings.end(), [](const Json& a, const Json& b) {
               return a["line"].get<std::size_t>() < b["line"].get<std::size_t>();
             });
             line.json ? Print(findings) : PrintFindings(*file, findings);
             return findings.empty() ? fine : data_bad;
           })
      ->add_option("FILE", *file, "Parameter file")
      ->required();
}

}  // namespace kestrindb
