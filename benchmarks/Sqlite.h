// The rival that any host could take instead: SQLite with one table for each section, in memory,
// without row ids, keyed as the library's tables are.
#pragma once

#include <lKestrinDb.h>
#include <sqlite3.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace benchmarks {

class SqliteStatement {
 public:
  SqliteStatement() = default;
  SqliteStatement(sqlite3* db, const std::string& sql);

  // Parameters and columns count from 0. A bound text must live until the next step.
  void Bind(int parameter, long long number);
  void Bind(int parameter, double number);
  void Bind(int parameter, std::string_view utf8);
  void Bind(int parameter, std::wstring_view text) = delete;
  bool Step();  // false behind the last row
  void Reset() { sqlite3_reset(statement_.get()); }

  long long Integer(int column) const { return sqlite3_column_int64(statement_.get(), column); }
  double Real(int column) const { return sqlite3_column_double(statement_.get(), column); }
  const unsigned char* Text(int column) const {
    return sqlite3_column_text(statement_.get(), column);
  }

 private:
  void Check(int result) const;

  struct Finalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

class SqliteDataBase {
 public:
  SqliteDataBase();

  // All rows of a parameter file, in one transaction.
  void Load(std::string_view file);

  SqliteStatement Prepare(const std::string& sql) const { return {db_.get(), sql}; }
  void Run(const std::string& sql) const { Prepare(sql).Step(); }

 private:
  class Sink;

  struct Close {
    void operator()(sqlite3* db) const { sqlite3_close(db); }
  };
  std::unique_ptr<sqlite3, Close> db_;
};

}  // namespace benchmarks
