// Rows of any table as JSON and as comma-separated values, each value as it is.
#pragma once

#include <map>
#include <span>
#include <string>
#include <vector>

#include "Answer.h"

namespace kestrindb {

using kestrin::TableCatalogue::RowsInfo;
using kestrin::TableCatalogue::Value;
using Values = std::vector<Value>;

// The names that a data base gives to ids. It must outlive this, unchanged.
class IdNames {
 public:
  explicit IdNames(const CQtParamDistillery& data) : data_(data) {}

  // Empty if the id has none.
  const std::string& operator()(kestrin::TableCatalogue::IdKind kind, long long id);

 private:
  using OfKind = std::map<long long, std::string>;

  const CQtParamDistillery& data_;
  std::map<kestrin::TableCatalogue::IdKind, OfKind> names_;  // of each kind, made when asked for
};

// The values of a row apart from it.
Values ValuesOf(std::span<const TableType::FieldView> columns);

// A float that is no finite number is the text "inf", "-inf" or "nan", since JSON has none.
Json ToJson(const Value& value);

// The columns from `first` up to `last` by their names.
Json ToJson(const RowsInfo& info, const Values& row, std::size_t first, std::size_t last);

// The same; an id that has a name has it in a field of its own behind it, "mode_name".
Json ToJson(const RowsInfo& info, const Values& row, std::size_t first, std::size_t last,
            IdNames& names);

// A line for the names of the columns, and one for a row: values with commas between, in quotes if
// they hold a comma, a quote or a line's end, or begin or end with a blank.
std::string CsvHead(const RowsInfo& info);
std::string CsvLine(const Values& row);

}  // namespace kestrindb
