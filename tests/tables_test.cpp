// Tables beyond what cases/rows.txt tells: seas, dumps and what is left after a purge and a clear.
#include "support.h"
#include "tables/QParamBaseTable.h"

namespace {

// id | text number
struct Row : QValueBase, TableType::Fields<Row> {
  wchar_t text[TableType::text_width] = {};
  int number = 5;
  static constexpr auto fields() {
    return List(At("text", &Row::text), At("number", &Row::number));
  }
};

using Sorted = CQParamSeaTypedTable<CDbUniqueMap<QIdx1, Row>>;

constexpr const wchar_t* section = L"<TTest>";

// A lake with one section of these lines.
CLake LakeOf(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return FromBytes(Section("TTest", text));
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
  CLake lake = LakeOf({"1 lake 1"});
  Sorted table(section, &local);
  const auto rows_of = [&table](auto&& source) {
    return table.ReadTable(source) ? Rows(table) : "none";
  };
  EXPECT_EQ(rows_of(lake), "1 lake 1\n");
  EXPECT_EQ(rows_of(empty), "3 local 1\n");
  EXPECT_EQ(rows_of(&other), "4 other 1\n");
  table.Purge();
  EXPECT_EQ(Rows(table), "");
  EXPECT_EQ(rows_of(&without), "3 local 1\n");
  table.Clear();  // the binding goes for good
  EXPECT_EQ(rows_of(empty), "none");
  EXPECT_FALSE(table.WriteTable(nullptr));

  // An empty list is a list; a bad line of a sea is logged as what was left of it.
  CResourceSea bad;
  AddLines(bad, section, {});
  EXPECT_EQ(rows_of(&bad), "");
  AddLines(bad, section, {L"1 a x", L"", L"2 b 7", L"3 c 8"});
  const Log log;
  EXPECT_EQ(rows_of(&bad), "none");
  EXPECT_EQ(Rows(table), "1 a 5\n2 b 7\n3 c 8\n");
  EXPECT_EQ(log.lines.back().text,
            L"CQParamSeaTypedTable< T >::ReadTable(): Error reading line ' x' of table "
            L"'<TTest>'\n");
  CLake zero = FromBytes("<TTest>: {\n1 a x" + std::string(1, '\0') + "\n}");
  EXPECT_FALSE(table.ReadTable(zero));
  EXPECT_NE(log.lines.back().text.find(L"'1 a x\xFFFD'"), CString::npos);
}

TEST(Tables, ATableIsWrittenOverItsListInTheSea) {
  CResourceSea sea;
  CLake lake = LakeOf({"2 \"two words\" 1", "1 \"\" 7"});
  Sorted table(section);
  table.ReadTable(lake);
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(table.WriteTable(&sea));
  EXPECT_EQ(LinesOf(sea, section), (Lines{L"1  7", L"2 two words 1"}));
}

TEST(Tables, DumpsShowOneRowMoreThanTheirLimit) {
  CLake lake = LakeOf({"10 \"a b\" 1", "2 c 2", "3 d 3"});
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

}  // namespace
