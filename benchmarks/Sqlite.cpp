#include "Sqlite.h"

#include <stdexcept>
#include <vector>

#include "RowParser.h"

using namespace kestrin;

namespace benchmarks {

SqliteStatement::SqliteStatement(sqlite3* db, const std::string& sql) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(db, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sql + ": " + sqlite3_errmsg(db));
  }
  statement_.reset(statement);
}

void SqliteStatement::Check(int result) const {
  if (result != SQLITE_OK) throw std::runtime_error(sqlite3_errstr(result));
}

void SqliteStatement::Bind(int parameter, long long number) {
  Check(sqlite3_bind_int64(statement_.get(), parameter + 1, number));
}

void SqliteStatement::Bind(int parameter, double number) {
  Check(sqlite3_bind_double(statement_.get(), parameter + 1, number));
}

void SqliteStatement::Bind(int parameter, std::string_view utf8) {
  Check(sqlite3_bind_text(statement_.get(), parameter + 1, utf8.data(),
                          static_cast<int>(utf8.size()), SQLITE_STATIC));
}

bool SqliteStatement::Step() {
  const int result = sqlite3_step(statement_.get());
  if (result != SQLITE_ROW && result != SQLITE_DONE) Check(result);
  return result == SQLITE_ROW;
}

// Makes the table of a section and inserts its rows. Columns are named c0, c1, ... in the order of
// the fields, since a key's field and a row's may have one name.
class SqliteDataBase::Sink {
 public:
  explicit Sink(SqliteDataBase& data_base) : data_base_(data_base) {}

  void BeginTable(const TableCatalogue::TableInfo& table) {
    const auto kinds = FieldKinds(table);
    std::string columns;
    std::string values;
    std::string key;
    for (std::size_t i = 0; i < kinds.size(); ++i) {
      const std::string column = "c" + std::to_string(i);
      columns += column + TypeOf(kinds[i]) + " not null, ";
      values += i == 0 ? "?" : ", ?";
      if (i < table.key.size()) key += (i == 0 ? "" : ", ") + column;
    }
    const std::string name = "\"" + table.section + "\"";
    data_base_.Run("create table " + name + " (" + columns + "primary key (" + key +
                   ")) without rowid");
    insert_ = data_base_.Prepare("insert or ignore into " + name + " values (" + values + ")");
  }

  void Integer(long long number) { insert_.Bind(column_++, number); }
  void Real(float number) { insert_.Bind(column_++, static_cast<double>(number)); }
  void Text(std::string_view utf8) { insert_.Bind(column_++, utf8); }
  void EndRow() {
    insert_.Step();
    insert_.Reset();
    column_ = 0;
  }

 private:
  static const char* TypeOf(TableType::FieldKind kind) {
    if (kind == TableType::FieldKind::text) return " text";
    return kind == TableType::FieldKind::real ? " real" : " integer";
  }

  SqliteDataBase& data_base_;
  SqliteStatement insert_;
  int column_ = 0;
};

SqliteDataBase::SqliteDataBase() {
  sqlite3* db = nullptr;
  constexpr int one_thread = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
  const int result = sqlite3_open_v2(":memory:", &db, one_thread, nullptr);
  db_.reset(db);
  if (result != SQLITE_OK) throw std::runtime_error(sqlite3_errstr(result));
  Run("pragma journal_mode = off");
}

void SqliteDataBase::Load(std::string_view file) {
  Run("begin");
  Sink sink(*this);
  RowParser(sink).Parse(file);
  Run("commit");
}

}  // namespace benchmarks
