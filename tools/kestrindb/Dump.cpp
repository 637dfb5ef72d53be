// kestrindb dump FILE [TABLE]: rows for people, as the library dumps them, or as data.

#include <iomanip>
#include <iostream>
#include <sstream>

#include "Commands.h"
#include "Output.h"
#include "Rows.h"

using namespace kestrin;

namespace kestrindb {
namespace {

using Columns = std::span<const TableType::FieldView>;

// As the library numbers and dumps a row.
std::string Line(const RowsInfo& info, int number, Columns columns) {
  std::wstring text;
  RowText::Append(text, columns.first(info.key_columns));
  text += L" | ";
  RowText::Append(text, columns.subspan(info.key_columns));
  std::ostringstream line;
  line << std::setw(4) << number << ":\t" << Utf8(text) << '\n';
  return line.str();
}

// The rows go to `take` with their numbers, up to the first above the limit. True if that was met.
template <class Take>
bool Walk(const RowsInfo& info, const CQtParamInstance& params, int limit, Take take) {
  int number = 0;
  info.walk(params.Store(), [&](Columns columns) {
    ++number;
    if (limit == 0 || number <= limit + 1) take(number, columns);
  });
  return limit != 0 && number > limit;
}

Json AsJson(const RowsInfo& info, const CQtParamInstance& params, int limit) {
  Json rows = Json::array();
  const bool more = Walk(info, params, limit, [&](int, Columns columns) {
    rows.push_back(ToJson(info, ValuesOf(columns), 0, columns.size()));
  });
  return {{"section", info.section}, {"rows", rows}, {"more", more}};
}

std::string AsText(const RowsInfo& info, const CQtParamInstance& params, int limit) {
  std::string text;
  const bool more = Walk(info, params, limit,
                         [&](int number, Columns columns) { text += Line(info, number, columns); });
  const std::string name = "\t" + info.section + "\n";
  return Printable("<-" + name + text + (more ? "... more ...\n" : "") + "->" + name);
}

std::string AsCsv(const RowsInfo& info, const CQtParamInstance& params, int limit) {
  std::string text = CsvHead(info);
  Walk(info, params, limit, [&](int, Columns columns) { text += CsvLine(ValuesOf(columns)); });
  return text;
}

}  // namespace

Json DescribeDump(const CQtParamInstance& params, const Request& request) {
  const auto describe = [&](const RowsInfo& info) -> Json {
    if (request.json) return AsJson(info, params, request.limit);
    return request.csv ? AsCsv(info, params, request.limit) : AsText(info, params, request.limit);
  };
  if (request.rows != nullptr) return Json::array({describe(*request.rows)});
  Json json = Json::array();
  for (const auto& table : TableCatalogue::Tables()) {
    // Of all tables in one text, each that has rows stands under its name.
    if (!request.csv)
      json.push_back(describe(table));
    else if (table.row_count(params.Store()) != 0) {
      if (!json.empty()) json.push_back("\n");
      json.push_back(table.section + '\n');
      json.push_back(describe(table));
    }
  }
  return json;
}

void PrintDump(const Json& json) {
  for (const Json& text : json) std::cout << Unaltered(text.get_ref<const std::string&>());
}

}  // namespace kestrindb
