// Tables read from lakes and seas, written to seas, dumped and emptied: what a file's author may
// rely on, and what is said when a line is bad.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
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

// Counts how often rows are copied or moved.
struct CountedRow : QValueBase, TableType::Fields<CountedRow> {
  static inline std::size_t copies = 0;
  int number = 0;
  CountedRow() = default;
  CountedRow(const CountedRow& other) : QValueBase(other), number(other.number) { ++copies; }
  CountedRow& operator=(const CountedRow& other) {
    number = other.number;
    ++copies;
    return *this;
  }
  static constexpr auto fields() {
    return TableType::FieldList(TableType::Field("number", &CountedRow::number));
  }
};

using Sorted = CQParamSeaTypedTable<CDbUniqueMap<QIdx1, Row>>;
using Tree = CQParamSeaTypedTable<CUniqueTreeMap<QIdx1, Row>>;
using Multi = CQParamSeaTypedTable<CDbMultiMap<QIdx1, Row>>;

constexpr const wchar_t* section = L"<TTest>";

// A lake with one section of these lines.
CLake Section(const std::vector<std::string>& lines) {
  std::string text = "<TTest>: {\n";
  for (const std::string& line : lines) text += line + "\n";
  return FromBytes("\xEF\xBB\xBF" + text + "}\n");
}

template <class Table>
std::string Rows(const Table& table) {
  std::wstring text;
  for (const auto& row : table) {
    RowText::AppendRecord(text, row.first);
    text += L' ';
    RowText::AppendRecord(text, row.second);
    text += L'\n';
  }
  return Text::ToUtf8(text);
}

TEST(Tables, LinesBecomeRows) {
  struct Case {
    std::vector<std::string> lines;
    std::string unique;
    std::string multi;
    bool well = true;
  };
  const Case cases[] = {
      {{}, "", ""},
      // Numbers that a short line doesn't reach are those of the line before, texts are empty.
      {{"1 foo", "2 bar 7", "3 x", "4"},
       "1 foo 5\n2 bar 7\n3 x 7\n4  7\n",
       "1 foo 5\n2 bar 7\n3 x 7\n4  7\n"},
      // Of two rows with a key the first stays; rows are in the order of keys.
      {{"2 a 1", "1 b 2", "2 c 3"}, "1 b 2\n2 a 1\n", "1 b 2\n2 a 1\n2 c 3\n"},
      // A blank or comment line is a row with the key of the line before.
      {{"4 a 1", "", "; note", "5 b 2"}, "4 a 1\n5 b 2\n", "4 a 1\n4  1\n4  1\n5 b 2\n"},
      {{"; note", "1 a 2"}, "-1  5\n1 a 2\n", "-1  5\n1 a 2\n"},
      // A bad line is stored as far as it was read, and takes over what it didn't reach.
      {{"1 a 2", "3 b x", "x c 4", "2 d 6"},
       "1 a 2\n2 d 6\n3 b 2\n",
       "1 a 2\n2 d 6\n3 b 2\n3 b 2\n",
       false},
      {{"1 \"a b\" 2 and more", "2 c 3 ; no comment"}, "1 a b 2\n2 c 3\n", "1 a b 2\n2 c 3\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.lines));
    const Log log;
    CLake lake = Section(c.lines);
    const auto expect_rows = [&](auto table, const std::string& rows) {
      EXPECT_EQ(table->ReadTable(lake), c.well);
      EXPECT_EQ(Rows(*table), rows);
    };
    expect_rows(std::make_unique<Sorted>(section), c.unique);
    expect_rows(std::make_unique<Tree>(section), c.unique);
    expect_rows(std::make_unique<Multi>(section), c.multi);
    EXPECT_EQ(log.lines.empty(), c.well);
  }
}

TEST(Tables, BadLinesAreLoggedWordForWord) {
  const Log log;
  const std::string tail(210, 'x');
  CLake lake = Section({"1 a x y", "2 " + tail});
  Sorted table(section);
  EXPECT_FALSE(table.ReadTable(lake));
  const std::vector<Log::Line> expected = {
      {L"Error converting parameter sea to parameter tables: 'invalid stoi argument' for substring "
       L"' x y'\n",
       8, 0},
      {L"CQParamSeaTypedTable< T >::ReadTable(): Error reading line '1 a x y' of table "
       L"'<TTest>'\n",
       8, 3},
      // A text that is too long has no line of its own.
      {L"CQParamSeaTypedTable< T >::ReadTable(): Error reading line '2 " + Text::FromUtf8(tail) +
           L"' of table '<TTest>'\n",
       8, 3}};
  EXPECT_EQ(log.lines, expected);
}

TEST(Tables, WhatIsNoSectionGivesNoRows) {
  Sorted table(section);
  CLake good = Section({"1 a 1"});
  for (const char* text : {"<TOther>: {\n1 a 1\n}\n", "<TTest>: 1 a 1\n"}) {
    EXPECT_TRUE(table.ReadTable(good));
    CLake lake = FromBytes(text);
    EXPECT_FALSE(table.ReadTable(lake)) << text;
    EXPECT_TRUE(table.empty()) << text;
  }
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
  const std::wstring head = L"<-\t<TTest>\n";
  const std::wstring foot = L"->\t<TTest>\n";
  const std::wstring all = head + rows[0] + rows[1] + rows[2] + foot;
  const std::pair<int, std::wstring> cases[] = {
      {0, all},
      {1, head + rows[0] + rows[1] + L"... more ...\n" + foot},
      {2, head + rows[0] + rows[1] + rows[2] + L"... more ...\n" + foot},
      {3, all}};
  for (const auto& [limit, text] : cases) {
    const Log log;
    table.Dump(limit);
    EXPECT_EQ(log.Text(), text) << limit;
    for (const auto& line : log.lines) EXPECT_EQ(line.category * 10 + line.style, 81);
  }
  table.Purge();
  const Log log;
  table.Dump(0);
  EXPECT_EQ(log.Text(), head + foot);
}

TEST(NameTables, NamesLeadToIdsAndBack) {
  const Log log;
  CDynNameIdTable names(section);
  CLake lake = Section({"7 \"Run up\"", "3 \"Run up\"", "5 \"\"", "-2 below"});
  EXPECT_TRUE(names.ReadTable(lake));
  EXPECT_STREQ(names.Name(7), L"Run up");
  EXPECT_TRUE(names.IsValidId(5));
  for (const int unknown : {6, -1, 2147483647, -2147483647 - 1}) {
    EXPECT_STREQ(names.Name(unknown), L"");
    EXPECT_FALSE(names.IsValidId(unknown));
  }
  const std::pair<const wchar_t*, int> ids[] = {{L"Run up", 3},  // the lowest id of a name answers
                                                {L"run up", -1},
                                                {L"", 5},
                                                {nullptr, 5},
                                                {L"below", -2}};
  for (const auto& [name, id] : ids) EXPECT_EQ(names.Idx(name), id);

  const QIdxName made(std::wstring(199, L'm'));
  EXPECT_TRUE(names.Insert(9, made).second);
  EXPECT_FALSE(names.Insert(9, QIdxName(L"again")).second);
  EXPECT_EQ(names.Idx(L"again"), -1);
  EXPECT_EQ(names.Idx(made.text), 9);
  EXPECT_TRUE(log.lines.empty());
  EXPECT_EQ(names.Idx((std::wstring(made.text) + L"cut").c_str()), 9);
  EXPECT_EQ(log.lines.size(), 1U);
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
  EXPECT_STREQ(names.Name(8), L"eight");
  EXPECT_EQ(ids(), (std::vector{1, 2, 3, -1}));
  names.Clear();
  EXPECT_EQ(ids(), (std::vector{1, 2, 3, -1}));
  EXPECT_FALSE(names.IsValidId(8));
  names.Purge();
  EXPECT_EQ(ids(), (std::vector{-1, -1, -1, -1}));
  names.ReadTable(second);
  EXPECT_EQ(ids(), (std::vector{5, -1, 3, -1}));
}

// Lines in any order give what inserting them one by one gives, short and bad lines included, and
// cost about as much as the same lines in order.
TEST(Tables, TheOrderOfLinesCostsNoMoves) {
  std::mt19937 random(7);
  std::vector<std::string> lines;
  for (int i = 0; i < 400; ++i) {
    const std::string id = std::to_string(static_cast<int>(random() % 100) - 50);
    const std::string forms[] = {id + " t" + std::to_string(i) + " " + std::to_string(i), id + " t",
                                 id, "x", ""};
    lines.push_back(forms[std::min(random() % 12, 4UL)]);
  }
  const Log log;
  CLake lake = Section(lines);
  Sorted sorted(section);
  Tree one_by_one(section);
  EXPECT_EQ(sorted.ReadTable(lake), one_by_one.ReadTable(lake));
  EXPECT_EQ(Rows(sorted), Rows(one_by_one));

  constexpr std::size_t count = 20000;
  std::vector<std::string> order;
  for (std::size_t i = count; i-- > 0;) order.push_back(std::to_string(i));
  for (int round = 0; round < 2; ++round) {  // reversed, then shuffled
    CLake rows = Section(order);
    CQParamSeaTypedTable<CDbUniqueMap<QIdx1, CountedRow>> table(section);
    CountedRow::copies = 0;
    EXPECT_TRUE(table.ReadTable(rows));
    EXPECT_EQ(table.size(), count);
    // Some for each line, for the growth and the sort; moving rows aside for each would be
    // thousands.
    EXPECT_LT(CountedRow::copies, 100 * count);
    EXPECT_TRUE(std::is_sorted(table.begin(), table.end(),
                               [](const auto& a, const auto& b) { return a.first < b.first; }));
    std::shuffle(order.begin(), order.end(), random);
  }
}

}  // namespace
