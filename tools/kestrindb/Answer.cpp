#include "Answer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <iterator>

using namespace kestrin;

namespace kestrindb {
namespace {

bool LooksLikeNumber(const std::string& cell) {
  return cell.find_first_of("0123456789") != std::string::npos &&
         cell.find_first_not_of("0123456789.+-e") == std::string::npos;
}

int Width(const std::string& cell) { return TextColumns(Wide(cell)); }

}  // namespace

// By way of the text: as a double the float itself would show digits that it doesn't have.
Json ShortNumber(float number) {
  if (!std::isfinite(number)) return nullptr;
  char text[32];
  const auto written = std::to_chars(std::begin(text), std::end(text), number);
  double value = 0.0;
  std::from_chars(text, written.ptr, value);
  return value;
}

std::string WithName(const std::string& id, const std::string& name) {
  return name.empty() ? id : id + "  " + name;
}

std::string CellText(const Json& value) {
  if (value.is_string()) return value.get<std::string>();
  if (value.is_null()) return "";
  if (!value.is_array()) return value.dump();
  std::string text;
  for (const Json& part : value) text += (text.empty() ? "" : " ") + CellText(part);
  return text;
}

std::string Cell(const Json& record, const char* field, const char* none) {
  const auto value = record.find(field);
  if (value == record.end()) return "";
  const bool is_none = value->is_null() || (value->is_number_integer() && *value == -1);
  const std::string text = none != nullptr && is_none ? none : CellText(*value);
  return WithName(text, record.value(std::string(field) + "_name", ""));
}

void PrintFacts(int width, const std::vector<std::pair<const char*, std::string>>& facts) {
  for (const auto& [heading, text] : facts) {
    std::cout << std::left << std::setw(width) << heading << text << '\n';
  }
}

void PrintTable(const Json& records, const std::vector<Column>& columns) {
  std::vector<std::string> lines(records.size() + 1);
  for (const Column& column : columns) {
    std::vector<std::string> cells;
    for (const Json& record : records) {
      cells.push_back(Cell(record, column.field, column.none));
    }
    const bool of_numbers = std::all_of(cells.begin(), cells.end(), [](const std::string& cell) {
      return cell.empty() || LooksLikeNumber(cell);
    });
    cells.insert(cells.begin(), column.heading);
    int width = 0;
    for (const std::string& cell : cells) width = std::max(width, Width(cell));
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::string gap(static_cast<std::size_t>(width - Width(cells[i])), ' ');
      const bool to_the_right = of_numbers && i > 0;
      lines[i] += (to_the_right ? gap + cells[i] : cells[i] + gap) + "  ";
    }
  }
  for (std::string& line : lines) {
    line.erase(line.find_last_not_of(' ') + 1);
    std::cout << line << '\n';
  }
}

}  // namespace kestrindb
