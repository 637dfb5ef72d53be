// The tables as the list declares them. (What each holds is told in docs/tables.md.)
#include "inspect/Difference.h"
#include "support.h"

namespace {

// A field that is listed twice or at another's place misreads a whole table without a word.
TEST(Catalogue, FieldsOfARowLieInTheOrderOfItsText) {
  for (const auto& table : TableCatalogue::Tables()) {
    const auto made = table.new_row();
    // The one record in which the float lies in front of the unit's text.
    if (table.section == "<TAppSignalProperty>") std::swap(made->row[1], made->row[2]);
    for (const auto& fields : {made->key, made->row}) {
      EXPECT_EQ(
          std::ranges::adjacent_find(fields, std::greater_equal(), &TableType::FieldRef::place),
          fields.end())
          << table.section;
    }
  }
}

// Columns of a table in a data base, or fields of an object, that have one name lose a value.
TEST(Catalogue, RowsComeAsValuesUnderNamesOfTheirOwn) {
  TestStore data;
  ASSERT_TRUE(data.LoadSample());
  std::vector<const TableCatalogue::RowsInfo*> all;
  for (const auto& table : TableCatalogue::Tables()) all.push_back(&table);
  for (const auto& derived : TableCatalogue::DerivedTables()) all.push_back(&derived);
  EXPECT_EQ(all.size(), 62U);
  for (const auto* info : all) {
    std::set<std::string> names;
    for (const auto& column : info->columns) names.insert(column.name);
    EXPECT_EQ(names.size(), info->columns.size()) << info->section;
    EXPECT_GT(info->row_count(data.store), 0U) << info->section;
    info->walk(data.store, [info](const auto& columns) {
      const bool same = std::ranges::equal(columns, info->columns, {}, &TableType::FieldView::kind,
                                           &TableCatalogue::FieldInfo::kind);
      EXPECT_TRUE(same) << info->section;
    });
  }
}

TEST(Catalogue, LearnTimesAreThoseOfTheLoad) {
  const long long before = std::time(nullptr);
  TestStore data("<TIpLearnParams>: {\n1 1 1 1 1 1 5\n3 1 1 1 1 1 7 42 8 43\n}\n");
  ASSERT_EQ(data.params.IpLearnParameter().size(), 2U);
  auto row = data.params.IpLearnParameter().begin();
  EXPECT_GE(row->second.time_1, before);
  EXPECT_LE(row->second.time_1, std::time(nullptr));
  EXPECT_EQ(row->second.time_2, row->second.time_1);
  // Another load, a second later, makes no difference.
  TestStore later("<TIpLearnParams>: {\n1 1 1 1 1 1 5\n3 1 1 1 1 1 7 42 8 43\n}\n");
  ++later.store.Table<L"<TIpLearnParams>">().begin()->second.time_1;
  int differences = 0;
  const auto count = [&differences](auto&&...) { ++differences; };
  Difference::Compare(data.store, later.store, count, before);
  EXPECT_EQ(differences, 0);
  Difference::Compare(data.store, later.store, count);
  EXPECT_EQ(differences, 1);
  ++row;
  EXPECT_EQ(std::pair(row->second.time_1, row->second.time_2), std::pair(42LL, 43LL));
}

}  // namespace
