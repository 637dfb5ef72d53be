// kestrindb where FILE ELEMENT ID: every row in which an id stands, by section and line.

#include <algorithm>
#include <functional>
#include <iostream>
#include <optional>
#include <span>
#include <unordered_map>

#include "Commands.h"
#include "Names.h"

using namespace kestrin;

namespace kestrindb {
namespace {

using TableCatalogue::IdKind;
using TableCatalogue::TableInfo;
using TableType::FieldView;

bool IsOfKind(IdKind column, IdKind asked) {
  return column == asked || (column == IdKind::polygon_points && asked == IdKind::polygon);
}

// Lines of a table are read into one row, as a load does it: a short line has the numbers of the
// line before. A blank line or a comment has no id of its own.
using LineVisitor = std::function<void(const CLake::CNode& line, std::span<const FieldView> row)>;
void ForEachLine(const TableInfo& table, const LineVisitor& visit) {
  const auto section = CParameterLake::Lake()[Wide(table.section)];
  if (!section.exists() || !section->is_section()) return;
  const auto row = table.new_row();
  const auto columns = row->Columns();
  std::string room;
  for (auto child = section->begin_unnamed(); child != section->end_unnamed(); ++child) {
    std::string_view rest = (*child)->bytes(room);
    if (rest.empty()) continue;
    if (RowText::ReadFields(row->key, rest).ok) RowText::ReadFields(row->row, rest);
    visit(**child, columns);
  }
}

int IdIn(const FieldView& column) { return *static_cast<const int*>(column.place); }

// The first id of that name, as the file has it. Throws Failure.
int IdNamed(IdKind kind, const std::string& name) {
  const auto& home = TableCatalogue::HomeOf(kind);
  const TableInfo& table = *TableCatalogue::Find(home.section);
  const auto column = TableCatalogue::NameColumn(table);
  std::optional<int> id;
  std::vector<std::wstring> names;
  ForEachLine(table, [&](const CLake::CNode&, std::span<const FieldView> row) {
    if (!column || id) return;
    names.emplace_back(static_cast<const wchar_t*>(row[*column].place));
    if (names.back() == Wide(name)) id = IdIn(row[home.key_field]);
  });
  if (id) return *id;
  throw Failure(data_bad, std::string("There is no ") + home.what + " '" + name + "'." +
                              Hint(name, names, "where --help"));
}

}  // namespace

// A file that no load takes can be searched too.
Answer DescribeWhere(const Request& request) {
  ReadCandidateLake(request.file);
  TellIfCut();
  const CLake& lake = CParameterLake::Lake();
  const std::optional<int> number = IntegerOf(request.id);
  const int id = number ? *number : IdNamed(request.kind, request.id);
  std::unordered_map<const CLake::CNode*, int> numbers;
  for (const CLake::CNode& line : lake) numbers.emplace(&line, numbers.size() + 1);
  Json found = Json::array();
  for (const TableInfo& table : TableCatalogue::Tables()) {
    ForEachLine(table, [&](const CLake::CNode& line, std::span<const FieldView> row) {
      for (std::size_t i = 0; i < row.size(); ++i) {
        if (!IsOfKind(table.columns[i].id, request.kind) || IdIn(row[i]) != id) continue;
        found.push_back({{"line", numbers.at(&line)},
                         {"section", table.section},
                         {"field", table.columns[i].name},
                         {"text", Utf8(line.value())}});
      }
    });
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
