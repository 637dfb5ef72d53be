// Tables beyond what cases/rows.txt tells: seas, dumps and what is left after a purge and a clear.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tables/QParamBaseTable.h"
#include "test_store.h"

namespace {

using testing_support::AddLines;
using testing_support::Lines;
using testing_support::LinesOf;
using testing_support::Log;

// id | text number
struct Row : QValueBase, TableType::Fields<Row> {
  wchar_t text[TableType::text_width] = {};
  int number = 5;
  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("text", &Row::text),
                                TableType::Field("number", &Row::number));
  }
};

using Sorted = CQParamSeaTypedTable<CDbUniqueMap<QIdx1, Row>>;

constexpr const wchar_t* section = L"<TTest>";

// A lake with one section of these lines.
CLake Section(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return FromBytes(testing_support::Section("TTest", text));
}

std::string Rows(const Sorted& table) {
  std::wstring text;
  for (const auto& row : table) {
    RowText::AppendRecord(text, row.first);
    RowText::AppendRecord(text += L' ', row.second);
    text += L'\n';
  }
  return Text::ToUtf8(text);
}

TEST(Tables, ALocalSeaStandsInForAMissingSection) {
  CResourceSea local;
  AddLines(local, section, {L"3 local 1"});
  CResourceSea other;
  AddLines(other, section, {L"4 other 1 "});
  CResourceSea without;
  CLake empty;
  CLake lake = Section({"1 lake 1"});
  Sorted table(section, &local);
  const auto rows_of = [&table](auto&& source) {
    return table.ReadTable(source) ? Rows(table) : "none";
  };
  EXPECT_EQ(rows_of(lake), "1 lake 1\n");
  EXPECT_EQ(rows_of(empty), "3 local 1\n");
  EXPECT_EQ(rows_of(&other), "4 other 1\n");
  EXPECT_EQ(rows_of(&without), "3 local 1\n");

  table.Purge();
  EXPECT_TRUE(table.empty());
  EXPECT_EQ(rows_of(empty), "3 local 1\n");
  table.Clear();  // the binding goes for good
  EXPECT_EQ(rows_of(empty), "none");
  EXPECT_FALSE(table.WriteTable(nullptr));
  EXPECT_TRUE(table.empty());

  // An empty list is a list; a bad line of a sea is logged as what was left of it.
  CResourceSea bad;
  AddLines(bad, section, {});
  EXPECT_EQ(rows_of(&bad), "");
  AddLines(bad, section, {L"1 a x", L"", L"2 b 7", L"3 c 8"});
  const Log log;
  EXPECT_FALSE(table.ReadTable(&bad));
  EXPECT_EQ(Rows(table), "1 a 5\n2 b 7\n3 c 8\n");
  EXPECT_EQ(log.lines.back().text,
            L"CQParamSeaTypedTable< T >::ReadTable(): Error reading line ' x' of table "
            L"'<TTest>'\n");
}

TEST(Tables, ATableIsWrittenOverItsListInTheSea) {
  CResourceSea sea;
  CLake lake = Section({"2 \"two words\" 1", "1 \"\" 7"});
  Sorted table(section);
  table.ReadTable(lake);
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(table.WriteTable(&sea));
  EXPECT_EQ(LinesOf(sea, section), (Lines{L"1  7", L"2 two words 1"}));
}

TEST(Tables, DumpsShowOneRowMoreThanTheirLimit) {
  CLake lake = Section({"10 \"a b\" 1", "2 c 2", "3 d 3"});
  Sorted table(section);
  table.ReadTable(lake);
  const std::wstring rows[] = {L"   1:\t2 | c 2\n", L"   2:\t3 | d 3\n", L"   3:\t10 | a b 1\n"};
  const std::pair<int, std::wstring> cases[] = {
      {0, rows[0] + rows[1] + rows[2]},
      {1, rows[0] + rows[1] + L"... more ...\n"},
      {2, rows[0] + rows[1] + rows[2] + L"... more ...\n"},
      {3, rows[0] + rows[1] + rows[2]}};
  for (const auto& [limit, text] : cases) {
    const Log log;
    table.Dump(limit);
    EXPECT_EQ(log.Text(), L"<-\t<TTest>\n" + text + L"->\t<TTest>\n") << limit;
    for (const auto& line : log.lines) EXPECT_EQ(line.category * 10 + line.style, 81);
  }
}

// The index only grows until it is purged, and a read with a bad line doesn't reach it.
TEST(NameTables, OnlyAPurgeEmptiesTheIndex) {
  const Log log;
  CDynNameIdTable names(section);
  const auto ids = [&names] {
    return std::vector{names.Idx(L"one"), names.Idx(L"two"), names.Idx(L"three"),
                       names.Idx(L"eight")};
  };
  CLake first = Section({"1 one", "2 two"});
  CLake second = Section({"5 one", "3 three"});
  CLake bad = Section({"8 eight", "x"});
  names.ReadTable(first);
  names.ReadTable(second);
  EXPECT_FALSE(names.IsValidId(2));
  EXPECT_FALSE(names.ReadTable(bad));
  EXPECT_EQ(ids(), (std::vector{1, 2, 3, -1}));
  names.Clear();
  EXPECT_EQ(ids(), (std::vector{1, 2, 3, -1}));
  EXPECT_FALSE(names.IsValidId(8));
  names.Purge();
  EXPECT_EQ(ids(), (std::vector{-1, -1, -1, -1}));
  names.ReadTable(second);
  EXPECT_FALSE(names.Insert(5, QIdxName(L"again")).second);
  EXPECT_EQ(names.Idx(L"again"), -1);
  EXPECT_EQ(ids(), (std::vector{5, -1, 3, -1}));
}

}  // namespace
