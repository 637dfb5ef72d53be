// kestrindb export FILE OUT: all tables as an SQLite data base, or as files of comma-separated
// values.
//
// What is made stands under another name until it is whole: the data base is put together in memory
// and saved as a sea is, the files are written into a folder of their own that takes its place
// last.

#include <sqlite3.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <iostream>
#include <memory>

#include "Commands.h"
#include "Rows.h"

using namespace kestrin;

namespace kestrindb {
namespace {

namespace fs = std::filesystem;
using TableCatalogue::FieldInfo;
using TableCatalogue::TableInfo;

// How far it is, on a terminal, once it has taken a second.
class Progress {
 public:
  explicit Progress(std::size_t all) : all_(all), is_shown_(isatty(STDERR_FILENO) != 0) {}
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() {
    if (percent_ >= 0) std::cerr << "\r\x1b[K" << std::flush;
  }

  void Step() {
    constexpr std::size_t rows_between_looks = 256;
    if (!is_shown_ || ++done_ % rows_between_looks != 0) return;
    const int percent = static_cast<int>(done_ * 100 / all_);
    if (percent == percent_ || Clock::now() - begin_ < std::chrono::seconds(1)) return;
    percent_ = percent;
    const auto filled = static_cast<std::size_t>(percent) / 4;
    std::cerr << "\r[" << std::string(filled, '#') << std::string(25 - filled, ' ') << "] "
              << percent << " %" << std::flush;
  }

 private:
  using Clock = std::chrono::steady_clock;

  std::size_t all_;
  std::size_t done_ = 0;
  Clock::time_point begin_ = Clock::now();
  bool is_shown_;
  int percent_ = -1;
};

// The section without its brackets.
std::string Name(const RowsInfo& table) {
  return table.section.substr(1, table.section.size() - 2);
}

std::string Quoted(const std::string& name) { return "\"" + name + "\""; }

class Sqlite {
 public:
  // Throws Failure if the file, which may be ":memory:", is none of SQLite's or can't be opened.
  explicit Sqlite(const std::string& file) : file_(file) {
    sqlite3* db = nullptr;
    const int result = sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr);
    db_.reset(db);
    Check(result);
  }

  void Check(int result) const {
    if (result == SQLITE_OK || result == SQLITE_ROW || result == SQLITE_DONE) return;
    throw Failure(file_unusable, "The data base '" + file_ +
                                     "' can't be written: " + sqlite3_errmsg(db_.get()) + ".");
  }

  void Run(const std::string& sql) const {
    Check(sqlite3_exec(db_.get(), sql.c_str(), nullptr, nullptr, nullptr));
  }

  // Inserts a row by a statement with as many parameters.
  class Insert {
   public:
    Insert(const Sqlite& db, const std::string& table, std::size_t columns) : db_(db) {
      std::string sql = "insert into " + Quoted(table) + " values (?";
      for (std::size_t i = 1; i < columns; ++i) sql += ", ?";
      sqlite3_stmt* statement = nullptr;
      db.Check(sqlite3_prepare_v2(db.db_.get(), (sql + ")").c_str(), -1, &statement, nullptr));
      statement_.reset(statement);
    }

    void operator()(const Values& row) {
      int parameter = 0;
      for (const Value& value : row) db_.Check(Bind(++parameter, value));
      db_.Check(sqlite3_step(statement_.get()));
      db_.Check(sqlite3_reset(statement_.get()));
    }

   private:
    // A float by its shortest digits, so that 0.1 is found as 0.1; as a float it is the same again.
    int Bind(int parameter, const Value& value) {
      if (const auto* integer = std::get_if<long long>(&value)) {
        return sqlite3_bind_int64(statement_.get(), parameter, *integer);
      }
      if (const auto* number = std::get_if<float>(&value)) {
        const Json digits = ShortNumber(*number);
        return sqlite3_bind_double(statement_.get(), parameter,
                                   digits.is_null() ? *number : digits.get<double>());
      }
      const auto& text = std::get<std::string>(value);
      return sqlite3_bind_text(statement_.get(), parameter, text.data(),
                               static_cast<int>(text.size()), SQLITE_STATIC);
    }

    const Sqlite& db_;
    struct Finalize {
      void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
  };

  // What a file of it holds.
  struct Free {
    void operator()(unsigned char* bytes) const { sqlite3_free(bytes); }
  };
  std::pair<std::unique_ptr<unsigned char, Free>, std::size_t> Bytes() const {
    sqlite3_int64 size = 0;
    std::unique_ptr<unsigned char, Free> bytes(sqlite3_serialize(db_.get(), "main", &size, 0));
    if (!bytes) Check(SQLITE_NOMEM);
    return {std::move(bytes), static_cast<std::size_t>(size)};
  }

 private:
  struct Close {
    void operator()(sqlite3* db) const { sqlite3_close(db); }
  };
  std::string file_;
  std::unique_ptr<sqlite3, Close> db_;
};

const char* TypeOf(const FieldInfo& column) {
  if (column.kind == TableType::FieldKind::text) return " text";
  return column.kind == TableType::FieldKind::real ? " real" : " integer";
}

// A key that holds a float may be NaN, which is null in SQLite, and no null stands in the key of a
// table without row ids.
std::string TableSql(const TableInfo& table) {
  std::string columns;
  std::string key;
  bool has_float_key = false;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const FieldInfo& column = table.columns[i];
    const bool is_real = column.kind == TableType::FieldKind::real;
    columns +=
        (i == 0 ? "" : ", ") + Quoted(column.name) + TypeOf(column) + (is_real ? "" : " not null");
    if (i >= table.key_columns) continue;
    key += (i == 0 ? "" : ", ") + Quoted(column.name);
    has_float_key = has_float_key || is_real;
  }
  const bool is_unique = table.unique_loaded;
  std::string sql = "create table " + Quoted(Name(table)) + " (" + columns;
  if (is_unique) sql += ", primary key (" + key + ")";
  sql += is_unique && !has_float_key ? ") without rowid;" : ");";
  if (!is_unique) {
    sql += "create index " + Quoted(Name(table) + "_key") + " on " + Quoted(Name(table)) + " (" +
           key + ");";
  }
  return sql;
}

// The table with a name beside each id that has one, as "TModeProperty_named"; empty if none can.
std::string ViewSql(const TableInfo& table) {
  std::string columns;
  std::string joins;
  const std::string name = Name(table);
  for (const FieldInfo& column : table.columns) {
    const std::string id = "t." + Quoted(column.name);
    columns += (columns.empty() ? "" : ", ") + id;
    const RowsInfo* const names = TableCatalogue::NamesOf(column.id);
    if (names == nullptr || names == &table) continue;
    const std::string of = Quoted("of_" + column.name);
    columns += ", " + of + ".name as " + Quoted(column.name + "_name");
    joins += " left join " + Quoted(Name(*names)) + " as " + of;
    joins += " on " + of + '.';
    joins += Quoted(names->columns[0].name) + " = " + id;
  }
  if (joins.empty()) return "";
  return "create view " + Quoted(name + "_named") + " as select " + columns + " from " +
         Quoted(name) + " as t" + joins + ";";
}

void AddFile(const Sqlite& db, const CQtParamInstance& params) {
  db.Run(
      "create table ParameterFile (file text, major_version integer, minor_version integer, "
      "base_type text, alias_type text, calibration_file text, learn_archive text)");
  const CLake& lake = CParameterLake::Lake();
  Sqlite::Insert(db, "ParameterFile", 7)(
      {Utf8(lake.filename()), static_cast<long long>(int{lake[CQTableManager::major_key]}),
       static_cast<long long>(int{lake[CQTableManager::minor_key]}), Utf8(params.BaseType()),
       Utf8(params.AliasType()), Utf8(params.CalibFileName()), Utf8(params.LearnFileName())});
}

// Calls `make` for each table with what hands its rows to a function. Gives the number of all rows.
template <class Make>
std::size_t ForEachTable(const CQtParamInstance& params, Make make) {
  std::size_t rows = 0;
  for (const TableInfo& table : TableCatalogue::Tables()) rows += table.row_count(params.Store());
  Progress progress(rows);
  for (const TableInfo& table : TableCatalogue::Tables()) {
    make(table, [&](auto&& take) {
      table.walk(params.Store(), [&](std::span<const TableType::FieldView> columns) {
        take(ValuesOf(columns));
        progress.Step();
      });
    });
  }
  return rows;
}

// Throws Failure if there is something that may not be replaced: no data base, or one in use.
void RequireReplaceable(const std::string& out, bool force) {
  if (!fs::exists(out)) return;
  if (!force) {
    throw Failure(file_unusable, "The file '" + out + "' is there already; --force replaces it.");
  }
  if (fs::is_directory(out)) throw Failure(file_unusable, "'" + out + "' is a folder.");
  // Who reads or writes it holds a lock. One with a log beside it is brought back to one file.
  Sqlite(out).Run("pragma journal_mode = delete; begin exclusive");
}

std::size_t ExportSqlite(const CQtParamInstance& params, const std::string& out, bool force) {
  RequireReplaceable(out, force);
  const Sqlite db(":memory:");
  db.Run("begin");
  AddFile(db, params);
  const std::size_t rows = ForEachTable(params, [&](const TableInfo& table, auto hand_rows_to) {
    db.Run(TableSql(table));
    hand_rows_to(Sqlite::Insert(db, Name(table), table.columns.size()));
  });
  for (const TableInfo& table : TableCatalogue::Tables()) {
    db.Run(ViewSql(table));
    if (!TableCatalogue::NameColumn(table)) continue;
    db.Run("create index " + Quoted(Name(table) + "_by_name") + " on " + Quoted(Name(table)) +
           " (name)");
  }
  db.Run("commit");
  const auto [bytes, size] = db.Bytes();
  ReplaceFile(Wide(out), {reinterpret_cast<const char*>(bytes.get()), size});
  return rows;
}

// A folder that goes with what is in it, unless it has been given its name. A signal that ends the
// program waits until then.
class NewFolder {
 public:
  explicit NewFolder(const std::string& beside)
      : path(beside + "." + std::to_string(getpid()) + ".new") {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : ending_signals) {
      struct sigaction action {};
      sigaction(signal, nullptr, &action);
      if (action.sa_handler != SIG_IGN) sigaddset(&signals, signal);  // ignored behind nohup
    }
    sigprocmask(SIG_BLOCK, &signals, &before_);
    fs::create_directory(path);
  }
  NewFolder(const NewFolder&) = delete;
  NewFolder& operator=(const NewFolder&) = delete;
  ~NewFolder() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
    sigprocmask(SIG_SETMASK, &before_, nullptr);
  }

  static void ThrowIfEnded() {
    sigset_t waiting;
    sigpending(&waiting);
    for (const int signal : ending_signals) {
      if (sigismember(&waiting, signal) == 1) throw Failure(file_unusable, "Ended by a signal.");
    }
  }

  const std::string path;

 private:
  static constexpr int ending_signals[] = {SIGINT, SIGTERM, SIGHUP};
  sigset_t before_;
};

std::size_t ExportCsv(const CQtParamInstance& params, const std::string& out, bool force) {
  if (fs::exists(out) && !force) {
    throw Failure(file_unusable,
                  "'" + out + "' is there already; --force replaces the tables in it.");
  }
  if (fs::exists(out) && !fs::is_directory(out)) {
    throw Failure(file_unusable, "'" + out + "' is no folder.");
  }
  const NewFolder folder(out);
  const std::size_t rows = ForEachTable(params, [&](const TableInfo& table, auto hand_rows_to) {
    NewFolder::ThrowIfEnded();
    std::string text = CsvHead(table);
    hand_rows_to([&text](const Values& row) { text += CsvLine(row); });
    CFile file(Wide(folder.path + "/" + Name(table) + ".csv"), CFile::modeWrite);
    file.Write(text.data(), static_cast<unsigned>(text.size()));
    file.Close();
  });
  if (!fs::exists(out)) {
    fs::rename(folder.path, out);
    return rows;
  }
  const auto target = [&out](const fs::directory_entry& file) {
    return fs::path(out) / file.path().filename();
  };
  for (const auto& file : fs::directory_iterator(folder.path)) {
    if (!fs::exists(target(file)) || fs::is_regular_file(target(file))) continue;
    throw Failure(file_unusable, "'" + target(file).string() + "' is in the way: it is no file.");
  }
  for (const auto& file : fs::directory_iterator(folder.path)) {
    fs::rename(file.path(), target(file));
  }
  return rows;
}

}  // namespace

Json DescribeExport(const CQtParamInstance& params, const Request& request) {
  if (request.other_file == "-") {
    throw Failure(file_unusable, "An export can't go to standard output: OUT is a name.");
  }
  try {
    std::string out = request.other_file;
    while (out.size() > 1 && out.ends_with('/')) out.pop_back();
    const auto make = request.csv ? ExportCsv : ExportSqlite;
    return {{"out", out}, {"rows", make(params, out, request.force)}};
  } catch (const Failure&) {
    throw;
  } catch (const fs::filesystem_error& error) {
    throw Failure(file_unusable, "'" + request.other_file +
                                     "' can't be written: " + ReasonOf(error.code().value()) + ".");
  } catch (const std::exception& error) {
    throw Failure(file_unusable, error.what());
  }
}

void PrintExport(const Json& json) {
  std::cout << json["rows"] << " rows in " << Cell(json, "out") << '\n';
}

}  // namespace kestrindb
