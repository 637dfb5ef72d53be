// kestrindb tables [TABLE]: what the lines of each section hold.

#include <iostream>
#include <memory>

#include "Command.h"

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
  return {{"section", Utf8(table.section)},    {"accessor", table.accessor},
          {"container", table.container},      {"unique_keys", table.unique_keys},
          {"registered", table.reading_place}, {"made", table.making_place},
          {"key", ToJson(table.key)},          {"row", ToJson(table.row)}};
}

// As Markdown, which is also what docs/tables.md holds.
void PrintTableInfo(const TableCatalogue::TableInfo& table) {
  std::cout << "## `" << Utf8(table.section) << "`\n\n"
            << "Table " << table.reading_place << ", " << table.container
            << (table.unique_keys ? "" : " (a key may stand on several lines)") << "; "
            << (table.accessor.empty() ? "no accessor" : "accessor `" + table.accessor + "`")
            << ".\n\n"
            << "| position | field | kind | default |\n|---:|---|---|---|\n";
  int position = 0;
  const auto print = [&position](const TableCatalogue::FieldInfo& field, const char* part) {
    std::cout << "| " << ++position << " | `" << field.name << "`" << part << " | "
              << TableCatalogue::KindName(field.kind) << " | "
              << (field.default_text.empty() ? "empty" : field.default_text) << " |\n";
  };
  for (const auto& field : table.key) print(field, " (key)");
  for (const auto& field : table.row) print(field, "");
  std::cout << '\n';
}

}  // namespace

void AddTables(CommandLine& line) {
  auto section = std::make_shared<std::string>();
  line.Add("tables", "The catalogue: what the lines of each section hold",
           [section, &line] {
             const TableCatalogue::TableInfo* only = nullptr;
             if (!section->empty() && (only = TableCatalogue::Find(Wide(*section))) == nullptr) {
               throw Failure(data_bad, "There is no table '" + *section + "'.");
             }
             Json json = Json::array();
             if (!line.json && only == nullptr) {
               std::cout << "# Tables\n\n"
                            "The sections of a parameter file, in the order of loading. A line of "
                            "a section holds\nthe fields of its key, then those of its row.\n\n";
             }
             for (const auto& table : TableCatalogue::Tables()) {
               if (only != nullptr && only != &table) continue;
               line.json ? json.push_back(ToJson(table)) : PrintTableInfo(table);
             }
             if (line.json) Print(json);
             return fine;
           })
      ->add_option("TABLE", *section, "One section, such as TMode");
}

}  // namespace kestrindb
