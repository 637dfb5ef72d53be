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
