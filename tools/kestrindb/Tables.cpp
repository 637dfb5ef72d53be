// kestrindb tables [TABLE]: what the lines of each section hold.

#include <iostream>

#include "Commands.h"

using namespace kestrin;

namespace kestrindb {
namespace {

Json ToJson(const std::vector<TableCatalogue::FieldInfo>& fields) {
  Json json = Json::array();
  for (const auto& field : fields) {
    json.push_back({{"name", field.name},
                    {"kind", TableCatalogue::KindName(field.kind)},
                    {"default", field.default_text}});
  }
  return json;
}

Json ToJson(const TableCatalogue::TableInfo& table) {
  return {{"section", table.section},
          {"accessor", table.accessor},
          {"container", table.container},
          {"unique_keys", table.unique_keys},
          {"reading_place", table.reading_place},
          {"making_place", table.making_place},
          {"key", ToJson(table.key)},
          {"row", ToJson(table.row)}};
}

void PrintTableInfo(const Json& table) {
  const std::string accessor = Cell(table, "accessor");
  std::cout << "## `" << Cell(table, "section") << "`\n\n"
            << "Table " << table["reading_place"] << ", " << Cell(table, "container")
            << (table["unique_keys"] ? "" : " (a key may stand on several lines)") << "; "
            << (accessor.empty() ? "no accessor" : "accessor `" + accessor + "`") << ".\n\n"
            << "| position | field | kind | default |\n|---:|---|---|---|\n";
  int position = 0;
  const auto print = [&position](const Json& field, const char* part) {
    const std::string value = Cell(field, "default");
    std::cout << "| " << ++position << " | `" << Cell(field, "name") << "`" << part << " | "
              << Cell(field, "kind") << " | " << (value.empty() ? "empty" : value) << " |\n";
  };
  for (const Json& field : table["key"]) print(field, " (key)");
  for (const Json& field : table["row"]) print(field, "");
  std::cout << '\n';
}

}  // namespace

Answer DescribeTables(const Request& request) {
  Json json = Json::array();
  for (const auto& table : TableCatalogue::Tables()) {
    if (request.table == nullptr || request.table == &table) json.push_back(ToJson(table));
  }
  return {json, fine};
}

// As Markdown, which is also what docs/tables.md holds.
void PrintTables(const Json& json) {
  if (json.size() > 1) {
    std::cout << "# Tables\n\n"
                 "The sections of a parameter file, in the order of loading. A line of a section "
                 "holds\nthe fields of its key, then those of its row.\n\n";
  }
  for (const Json& table : json) PrintTableInfo(table);
}

}  // namespace kestrindb
