// The tables as the list declares them. (What each holds is told in docs/tables.md.)
#include "support.h"

namespace {

// A field that is listed twice or at another's place misreads a whole table without a word.
TEST(Catalogue, FieldsOfARowLieInTheOrderOfItsText) {
  for (const auto& table : TableCatalogue::Tables()) {
    const auto made = table.new_row();
    // The one record in which the float lies in front of the unit's text.
    if (table.section == L"<TAppSignalProperty>") std::swap(made->row[1], made->row[2]);
    for (const auto& fields : {made->key, made->row}) {
      EXPECT_EQ(
          std::ranges::adjacent_find(fields, std::greater_equal(), &TableType::FieldRef::place),
          fields.end())
          << Text::ToUtf8(table.section);
    }
  }
}

TEST(Catalogue, TheManagerHasTheTablesInTheirOrder) {
  const TestStore data;
  const CQTableManager& manager = data.store.Manager();
  for (const auto& info : TableCatalogue::Tables()) {
    const auto place = static_cast<unsigned>(info.reading_place);
    const auto* table = dynamic_cast<const CQParamBaseTable*>(manager.Table(place - 1));
    ASSERT_NE(table, nullptr) << place;
    EXPECT_EQ(table->name, info.section);
    EXPECT_EQ(TableCatalogue::Find(info.section), &info);
  }
  EXPECT_EQ(manager.Table(56), nullptr);
  EXPECT_EQ(TableCatalogue::Find(L"<TNothing>"), nullptr);
}

TEST(Catalogue, LearnTimesAreThoseOfTheLoad) {
  const long long before = std::time(nullptr);
  TestStore data("<TIpLearnParams>: {\n1 1 1 1 1 1 5\n3 1 1 1 1 1 7 42 8 43\n}\n");
  auto row = data.params.IpLearnParameter().begin();
  EXPECT_GE(row->second.time_1, before);
  EXPECT_LE(row->second.time_1, std::time(nullptr));
  EXPECT_EQ(row->second.time_2, row->second.time_1);
  ++row;
  EXPECT_EQ(std::pair(row->second.time_1, row->second.time_2), std::pair(42LL, 43LL));
}

}  // namespace
