#include "Rows.h"

#include <cmath>

using namespace kestrin;

namespace kestrindb {
namespace {

std::string InQuotes(const std::string& text) {
  const bool is_plain = text.find_first_of(",\"\r\n") == std::string::npos &&
                        !text.starts_with(' ') && !text.ends_with(' ');
  if (is_plain) return text;
  std::string quoted = "\"";
  for (const char c : text) quoted.append(c == '"' ? 2 : 1, c);
  return quoted + '"';
}

}  // namespace

const std::string& IdNames::operator()(TableCatalogue::IdKind kind, long long id) {
  static const std::string none;
  const auto [place, is_new] = names_.try_emplace(kind);
  OfKind& names = place->second;
  const RowsInfo* const home = is_new ? TableCatalogue::NamesOf(kind) : nullptr;
  if (home != nullptr) {
    const std::size_t name = *TableCatalogue::NameColumn(*home);
    home->walk(data_, [&](std::span<const TableType::FieldView> columns) {
      const Values row = ValuesOf(columns);
      names.emplace(std::get<long long>(row[0]), std::get<std::string>(row[name]));
    });
  }
  const auto found = names.find(id);
  return found == names.end() ? none : found->second;
}

Values ValuesOf(std::span<const TableType::FieldView> columns) {
  Values values;
  values.reserve(columns.size());
  for (const auto& column : columns) values.push_back(TableCatalogue::ValueOf(column));
  return values;
}

Json ToJson(const Value& value) {
  if (const auto* integer = std::get_if<long long>(&value)) return *integer;
  const auto* number = std::get_if<float>(&value);
  if (number != nullptr && std::isfinite(*number)) return ShortNumber(*number);
  return TableCatalogue::ToText(value);
}

Json ToJson(const RowsInfo& info, const Values& row, std::size_t first, std::size_t last) {
  Json json = Json::object();
  for (std::size_t i = first; i < last; ++i) json[info.columns[i].name] = ToJson(row[i]);
  return json;
}

Json ToJson(const RowsInfo& info, const Values& row, std::size_t first, std::size_t last,
            IdNames& names) {
  Json json = Json::object();
  for (std::size_t i = first; i < last; ++i) {
    const auto& column = info.columns[i];
    json[column.name] = ToJson(row[i]);
    if (column.id == TableCatalogue::IdKind::none) continue;
    const std::string& name = names(column.id, std::get<long long>(row[i]));
    if (!name.empty()) json[column.name + "_name"] = name;
  }
  return json;
}

std::string CsvHead(const RowsInfo& info) {
  std::string line;
  for (const auto& column : info.columns) line += (line.empty() ? "" : ",") + column.name;
  return line + '\n';
}

std::string CsvLine(const Values& row) {
  std::string line;
  for (const Value& value : row) {
    line += (&value == &row.front() ? "" : ",") + InQuotes(TableCatalogue::ToText(value));
  }
  return line + '\n';
}

}  // namespace kestrindb
