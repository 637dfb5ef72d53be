// Rows of any table as JSON and as comma-separated values, each value as it is.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "Answer.h"

namespace kestrindb {

using kestrin::TableCatalogue::RowsInfo;
using kestrin::TableCatalogue::Value;
using Values = std::vector<Value>;

// The values of a row apart from it.
Values ValuesOf(std::span<const TableType::FieldView> columns);

// A float that is no finite number is the text "inf", "-inf" or "nan", since JSON has none.
Json ToJson(const Value& value);

// The columns from `first` up to `last` by their names.
Json ToJson(const RowsInfo& info, const Values& row, std::size_t first, std::size_t last);

// A line for the names of the columns, and one for a row: values with commas between, in quotes if
// they hold a comma, a quote or a line's end, or begin or end with a blank.
std::string CsvHead(const RowsInfo& info);
std::string CsvLine(const Values& row);

}  // namespace kestrindb
