// The tables of the data base described, for programs that show, export or compare them without
// knowing one of them when they are compiled: what each section is called, what its lines hold, and
// all of its rows as values.
//
// What a load derives from the tables is described in the same manner. Texts are UTF-8 here, as in
// all of this folder.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "interfaces/Export.h"
#include "tables/RowRecords.h"

class CQtParamDistillery;

namespace kestrin::TableCatalogue {

// What an id stands for. The first six are the elements of a key, in the order of Clavis::qOrder.
enum class IdKind {
  mode,
  instrument,
  channel,
  location,
  parameter,
  sensor,
  phys_mode,
  trigger,
  speed_source,
  rotor,
  phys_gear,
  sensor_group,
  type,
  polygon,
  polygon_points,
  none,  // no id, or one of the programs that load the library
};

// Where ids of a kind are at home: they are known if a row has them in that field of its key.
struct IdHome {
  const char* what;  // as people say: "test step"
  const char* section;
  std::size_t key_field;
};

// Not for IdKind::none.
KESTRIN_API const IdHome& HomeOf(IdKind kind);

struct RowsInfo;
// The table that has names for ids of a kind, under the ids in its first column; null if none has.
KESTRIN_API const RowsInfo* NamesOf(IdKind kind);

struct FieldInfo {
  std::string name;  // unique in its table
  TableType::FieldKind kind;
  std::string default_text;  // value of the field in a new row; "-1 ... -1" of a key
  IdKind id = IdKind::none;  // what it points at; a key's six elements are told as columns
};

// Takes the values of a row in the order of its columns. They stand in the data base: good until a
// load, purge or clear.
using RowVisitor = std::function<void(std::span<const TableType::FieldView>)>;

// Rows as a program meets them that knows nothing of their types.
struct RowsInfo {
  std::string section;         // with its angle brackets
  std::vector<FieldInfo> key;  // as a line has the fields
  std::vector<FieldInfo> row;
  bool unique_keys;  // of the lines: a load drops the second one of a key
  bool
      unique_loaded;  // of the rows: relative limits get the keys of others when they are completed
  // Key and row as a table of a data base has them, the key in front: a field of kind key is six
  // integers here, "clavis_mode" to "clavis_sensor" in place of "clavis".
  std::vector<FieldInfo> columns;
  std::size_t key_columns;

  std::size_t (*row_count)(const CQtParamDistillery& data);
  void (*walk)(const CQtParamDistillery& data, const RowVisitor& visit);  // in the order of keys
};

// A new row of a table, to read lines into: the places of its fields.
class RowBuffer {
 public:
  virtual ~RowBuffer() = default;
  std::vector<TableType::FieldRef> key;
  std::vector<TableType::FieldRef> row;

  // What has been read into it, by the table's columns.
  KESTRIN_API std::vector<TableType::FieldView> Columns() const;
};

struct TableInfo : RowsInfo {
  int making_place;       // in the order of construction, from 1
  int reading_place;      // in the order of reading, writing and dumping, from 1
  std::string accessor;   // operation of CQtParamInstance; empty if there is none
  std::string container;  // "sorted vector", "tree" or "multi map"
  std::unique_ptr<RowBuffer> (*new_row)();
};

// All tables in the order of reading. Any thread, as all here.
KESTRIN_API const std::vector<TableInfo>& Tables();

// What a load derives: <PiBaseChannelId>, <PiSpecIntervalStore> and <PiRotor2OrderSources>, and the
// maps <IpTrackPolygon>, <IpPolygonValues> and <IpSvOfSpec>. None of them is a section of a file.
KESTRIN_API const std::vector<RowsInfo>& DerivedTables();

// The table of that section, with or without its angle brackets; null if there is none. FindRows
// looks among the derived ones too.
KESTRIN_API const TableInfo* Find(std::string_view section);
KESTRIN_API const RowsInfo* FindRows(std::string_view section);

// The column of names that a table gives its ids; nothing if it gives none.
KESTRIN_API std::optional<std::size_t> NameColumn(const RowsInfo& info);

// "integer", "unsigned", "long", "long long", "float", "text", "key (6 integers)".
KESTRIN_API const char* KindName(TableType::FieldKind kind);

// The value of a column apart from its row.
using Value = std::variant<long long, float, std::string>;
KESTRIN_API Value ValueOf(const TableType::FieldView& column);

// A number in the fewest digits that read back the same: "0.1", "1e+20", "inf", "-inf", "nan". A
// text as it is.
KESTRIN_API std::string ToText(const Value& value);

}  // namespace kestrin::TableCatalogue
