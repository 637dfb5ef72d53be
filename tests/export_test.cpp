// What kestrindb exports is read back as any program would, and compared with the tables.
#include <sqlite3.h>

#include <bit>

#include "support.h"

namespace {

using TableCatalogue::Value;

struct Close {
  void operator()(sqlite3* db) const { sqlite3_close(db); }
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

// A value as the table has it: a float by its bits.
std::string Exact(const Value& value) {
  const auto* number = std::get_if<float>(&value);
  if (number == nullptr || std::isnan(*number)) return TableCatalogue::ToText(value);
  const float known = *number + 0.0F;  // to SQLite -0 is 0
  return std::to_string(std::bit_cast<std::uint32_t>(known));
}

Value Column(sqlite3_stmt* row, int column, TableType::FieldKind kind) {
  if (kind == TableType::FieldKind::text) {
    return reinterpret_cast<const char*>(sqlite3_column_text(row, column));
  }
  if (kind != TableType::FieldKind::real) {
    return static_cast<long long>(sqlite3_column_int64(row, column));
  }
  const bool is_null = sqlite3_column_type(row, column) == SQLITE_NULL;
  return is_null ? NAN : static_cast<float>(sqlite3_column_double(row, column));
}

using Rows = std::multiset<std::vector<std::string>>;

Rows RowsOf(sqlite3* db, const TableCatalogue::TableInfo& table) {
  const std::string name = table.section.substr(1, table.section.size() - 2);
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(db, ("select * from " + name).c_str(), -1, &statement, nullptr);
  const std::unique_ptr<sqlite3_stmt, Close> owner(statement);
  Rows rows;
  while (sqlite3_step(statement) == SQLITE_ROW) {
    std::vector<std::string> row;
    for (int i = 0; i < sqlite3_column_count(statement); ++i) {
      row.push_back(sqlite3_column_name(statement, i));
      row.push_back(Exact(Column(statement, i, table.columns.at(row.size() / 2).kind)));
    }
    rows.insert(row);
  }
  return rows;
}

Rows RowsOf(const CQtParamDistillery& data, const TableCatalogue::TableInfo& table) {
  Rows rows;
  table.walk(data, [&](std::span<const TableType::FieldView> columns) {
    std::vector<std::string> row;
    for (const auto& column : columns) {
      row.push_back(table.columns[row.size() / 2].name);
      row.push_back(Exact(TableCatalogue::ValueOf(column)));
    }
    rows.insert(row);
  });
  return rows;
}

TEST(Export, SqliteHasEveryValueOfEveryTable) {
  std::string text = BytesOf(KESTRIN_SAMPLES "/gearbox.par").substr(3);
  const auto add = [&text](const std::string& section, const std::string& rows) {
    text.insert(text.find(section + ": {") + section.size() + 3, "\n" + rows);
  };
  std::string floats;
  std::mt19937 random(11);  // NOLINT(*-msc51-cpp): the same numbers in every run
  for (int i = 0; i < 2000; ++i) {
    const auto number = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    floats += "9 " + std::to_string(i) + " " + TableCatalogue::ToText(number) + "\n";
  }
  add("<TRotorSpeed>", floats + "8 0 inf\n8 1 -inf\n8 2 nan\n8 3 3.4028235e38\n8 4 1e-45\n8 5 -0");
  add("<TIpPolygonValue>", "77 nan 1\n77 inf 2\n77 0.1 3");
  add("<TLocation>", "-2147483648 'o'brien\n2147483647 \xF0\x9D\x9C\x91\n70 \"  \"\n71 \"\"");
  const ScratchFile file("\xEF\xBB\xBF" + text);
  TestStore data;
  ASSERT_TRUE(data.LoadText(text));

  const ScratchFile out;
  const std::string command =
      std::string(KESTRINDB) + " export '" + file.path() + "' '" + out.path() + "' --force";
  ASSERT_EQ(std::system((command + " > /dev/null").c_str()), 0);
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open_v2(out.path().c_str(), &db, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
  const std::unique_ptr<sqlite3, Close> owner(db);
  for (const auto& table : TableCatalogue::Tables()) {
    const Rows expected = RowsOf(data.store, table);
    EXPECT_FALSE(expected.empty()) << table.section;
    EXPECT_EQ(RowsOf(db, table), expected) << table.section;
  }
}

}  // namespace
