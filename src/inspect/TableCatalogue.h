// The tables of the data base described, for programs that show them to people: what each section
// is called, what its lines hold, how many rows it has.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "interfaces/Export.h"
#include "tables/RowRecords.h"

class CQtParamStore;

namespace kestrin::TableCatalogue {

struct FieldInfo {
  std::string name;
  TableType::FieldKind kind;
  std::string default_text;  // value of the field in a new row, UTF-8; "-1 ... -1" of a key
};

// A new row of a table, to read lines into: the places of its fields.
class RowBuffer {
 public:
  virtual ~RowBuffer() = default;
  std::vector<TableType::FieldRef> key;
  std::vector<TableType::FieldRef> row;
};

struct TableInfo {
  int making_place;   // in the order of construction, from 1
  int reading_place;  // in the order of reading, writing and dumping, from 1
  std::wstring section;
  std::string accessor;   // operation of CQtParamInstance; empty if there is none
  std::string container;  // "sorted vector", "tree" or "multi map"
  std::vector<FieldInfo> key;
  std::vector<FieldInfo> row;

  bool unique_keys;
  std::size_t (*row_count)(const CQtParamStore& store);
  void (*dump)(const CQtParamStore& store, int limit);  // logs the rows; all with limit 0
  std::unique_ptr<RowBuffer> (*new_row)();
};

// All tables in the order of reading. Any thread.
KESTRIN_API const std::vector<TableInfo>& Tables();

// The table of that section, with or without its angle brackets; null if there is none.
KESTRIN_API const TableInfo* Find(std::wstring_view section);

// "integer", "unsigned", "long", "long long", "float", "text", "key (6 integers)".
KESTRIN_API const char* KindName(TableType::FieldKind kind);

}  // namespace kestrin::TableCatalogue
