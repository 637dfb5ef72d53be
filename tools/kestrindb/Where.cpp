// kestrindb where FILE ELEMENT ID: every row in which an id stands, by section and line.

#include <algorithm>
#include <iostream>
#include <unordered_map>

#include "Commands.h"

using namespace kestrin;

namespace kestrindb {
namespace {

using TableCatalogue::IdKind;
using TableCatalogue::TableInfo;
using LineNumbers = std::unordered_map<const CLake::CNode*, int>;

bool IsOfKind(IdKind column, IdKind asked) {
  return column == asked || (column == IdKind::polygon_points && asked == IdKind::polygon);
}

// All lines of a table are read into one row, as a load does it: a short line has the numbers of
// the line before. A blank line or a comment has no id of its own.
void Search(const TableInfo& table, const CLake::CNode& section, const LineNumbers& numbers,
            const Request& request, Json& found) {
  const auto row = table.new_row();
  const auto columns = row->Columns();
  for (auto child = section.begin_unnamed(); child != section.end_unnamed(); ++child) {
    std::wstring_view rest = (*child)->value();
    if (rest.empty()) continue;
    if (RowText::ReadFields(row->key, rest).ok) RowText::ReadFields(row->row, rest);
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const bool has_id = IsOfKind(table.columns[i].id, request.kind) &&
                          *static_cast<const int*>(columns[i].place) == request.id;
      if (!has_id) continue;
      found.push_back({{"line", numbers.at(&**child)},
                       {"section", table.section},
                       {"field", table.columns[i].name},
                       {"text", Utf8((*child)->value())}});
    }
  }
}

}  // namespace

// A file that no load takes can be searched too.
Answer DescribeWhere(const Request& request) {
  ReadCandidateLake(request.file);
  TellIfCut();
  const CLake& lake = CParameterLake::Lake();
  LineNumbers numbers;
  for (const CLake::CNode& line : lake) numbers.emplace(&line, numbers.size() + 1);
  Json found = Json::array();
  for (const TableInfo& table : TableCatalogue::Tables()) {
    const auto section = lake[Wide(table.section)];
    if (section.exists() && section->is_section()) {
      Search(table, *section, numbers, request, found);
    }
  }
  std::stable_sort(found.begin(), found.end(), [](const Json& a, const Json& b) {
    return a["line"].get<int>() < b["line"].get<int>();
  });
  return {found, found.empty() ? data_bad : fine};
}

void PrintWhere(const Json& json) {
  const std::string file_name = Utf8(CParameterLake::Lake().filename());
  for (const Json& place : json) {
    std::cout << file_name << ':' << place["line"] << ": " << Cell(place, "section") << ": "
              << Cell(place, "field") << ": " << Cell(place, "text") << '\n';
  }
  if (json.empty()) std::cout << "No row has it.\n";
}

}  // namespace kestrindb
