#include "Answer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <iterator>

#include "Output.h"

namespace kestrindb {
namespace {

bool LooksLikeNumber(const std::string& cell) {
  return cell.find_first_of("0123456789") != std::string::npos &&
         cell.find_first_not_of("0123456789.+-e") == std::string::npos;
}

// What two values of a place have in common; "integer or null" if that is no kind.
Json Merged(Json a, const Json& b) {
  if (a == b) return a;
  if (a.is_object() && b.is_object()) {
    for (const auto& [field, layout] : b.items()) {
      a[field] = a.contains(field) ? Merged(a[field], layout) : layout;
    }
    return a;
  }
  if (a.is_array() && b.is_array()) {
    if (a.empty() || b.empty()) return a.empty() ? b : a;
    return Json::array({Merged(a[0], b[0])});
  }
  const std::string both = CellText(a) + " or " + CellText(b);
  return CellText(a).find(CellText(b)) == std::string::npos ? Json(both) : a;
}

// What a terminal may take for a command: the control characters of ASCII and, in UTF-8, those
// behind them.
std::string WithoutControls(std::string_view text, const char* escape) {
  constexpr const char* digits = "0123456789abcdef";
  std::string shown;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const unsigned char next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0;
    const bool is_late = text[i] == '\xC2' && next >= 0x80 && next < 0xA0;
    const auto c = is_late ? next : static_cast<unsigned char>(text[i]);
    if (!is_late && ((c >= ' ' && c != 0x7F) || c == '\n' || c == '\t')) {
      shown += text[i];
      continue;
    }
    shown.append(escape).append({digits[c >> 4U], digits[c & 0xFU]});
    i += is_late ? 1 : 0;
  }
  return shown;
}

}  // namespace

std::string Printable(std::string_view text) { return WithoutControls(text, "\\x"); }

std::string PrintableJson(const Json& json) { return WithoutControls(json.dump(2), "\\u00"); }

// By way of the text: as a double the float itself would show digits that it doesn't have.
Json ShortNumber(float number) {
  if (!std::isfinite(number)) return nullptr;
  char text[32];
  const auto written = std::to_chars(std::begin(text), std::end(text), number);
  double value = 0.0;
  std::from_chars(text, written.ptr, value);
  return value;
}

Json Layout(const Json& value) {
  Json layout = value;
  if (value.is_array()) {
    layout = Json::array();
    for (const Json& element : value) layout = Merged(layout, Json::array({Layout(element)}));
  } else if (value.is_object()) {
    for (auto& [field, part] : layout.items()) part = Layout(part);
  } else {
    layout = value.is_string()           ? "text"
             : value.is_number_integer() ? "integer"
             : value.is_number()         ? "number"
             : value.is_boolean()        ? "true or false"
                                         : "null";
  }
  return layout;
}

std::string WithName(const std::string& id, const std::string& name) {
  return name.empty() ? id : id + "  " + Painted(name, Colour::name);
}

std::string PluralOf(std::size_t count, const std::string& what) {
  std::string number = std::to_string(count);
  for (std::size_t i = number.size(); i > 3; i -= 3) number.insert(i - 3, ",");
  return number + ' ' + what + (count == 1 || what.empty() ? "" : what.ends_with('s') ? "es" : "s");
}

std::string CellText(const Json& value) {
  if (value.is_string()) return Printable(value.get<std::string>());
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
  return WithName(text, Printable(record.value(std::string(field) + "_name", "")));
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
    for (std::string& cell : cells) {
      if (std::string_view(column.field) == "name") cell = Painted(cell, Colour::name);
    }
    cells.insert(cells.begin(), Painted(column.heading, Colour::heading));
    int width = 0;
    for (const std::string& cell : cells) width = std::max(width, ColumnsOf(cell));
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::string gap(static_cast<std::size_t>(width - ColumnsOf(cells[i])), ' ');
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
