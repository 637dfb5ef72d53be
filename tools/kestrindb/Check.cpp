// kestrindb check FILE: every fault of a parameter file, with its line.

#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>

#include "Command.h"

namespace kestrindb {
namespace {

// What only the bytes of the file show: text that is not UTF-8 ends a load early.
void CheckBytes(const std::string& file_name, const CLake& lake, Json& findings) {
  std::ifstream file(file_name, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  auto lines = static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), '\n'));
  if (!bytes.empty() && bytes.back() != '\n') ++lines;
  const auto read = static_cast<std::size_t>(std::distance(lake.begin(), lake.end()));
  const bool marked = bytes.starts_with("\xEF\xBB\xBF");
  if (marked && read < lines) {
    findings.push_back({{"kind", "not_utf8"},
                        {"line", read},
                        {"message",
                         "the text is not UTF-8 in or behind this line; nothing from "
                         "there on is read (the file has " +
                             std::to_string(lines) + " lines)"}});
  }
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
void PrintAsText(const std::string& file_name, const Json& findings) {
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
                                 : std::to_string(findings.size()) + " findings.")
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
             CheckBytes(*file, CParameterLake::Lake(), findings);
             line.json ? Print(findings) : PrintAsText(*file, findings);
             return findings.empty() ? fine : data_bad;
           })
      ->add_option("FILE", *file, "Parameter file")
      ->required();
}

}  // namespace kestrindb
