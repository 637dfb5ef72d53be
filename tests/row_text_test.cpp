// Lines of text to fields and back: what a bench engineer writes must be what the tables hold.
#include <limits>

#include "catalogue/IpCalcParameter.h"
#include "support.h"
#include "tables/RowText.h"

namespace {

TEST(RowText, ATextFieldIsLimitedByTheRestOfItsLine) {
  for (const std::size_t length : {197U, 198U}) {  // behind a blank
    const std::wstring name(length, L'\xE4');
    const TestStore data(Section("TMode", "1 " + Text::ToUtf8(name) + "\n"));
    EXPECT_EQ(data.params.ModeName(1), length == 197 ? name : L"");
  }
}

TEST(RowText, CopiesAreCutAtTheBufferAndTheCutIsLogged) {
  Log log;
  wchar_t buffer[5] = L"----";
  EXPECT_TRUE(TableType::strcopy(buffer, L"abcd", 5));
  EXPECT_STREQ(buffer, L"abcd");
  EXPECT_FALSE(TableType::strcopy(buffer, L"vwxyz", 5));
  EXPECT_STREQ(buffer, L"vwxy");
  EXPECT_EQ(
      log.lines,
      (std::vector<Log::Line>{{L"TableType::strcopy(): copy truncated because destination string "
                               L"with length 5 can't take 'vwxyz'\n",
                               1, 1}}));
  EXPECT_TRUE(TableType::strcopy(buffer, nullptr, 5));
  EXPECT_STREQ(buffer, L"");
  EXPECT_FALSE(TableType::strcopy(buffer, L"x", 0));
}

// What a host has put into a row without a zero at its end: nothing behind it is read.
TEST(RowText, TextsWithoutTheirZeroEndWithTheirBuffer) {
  Log log;
  const std::wstring full(TableType::text_width, L'7');
  const auto row = std::make_unique<QVIpCalcParameter>();
  full.copy(row->text, full.size());
  EXPECT_EQ(std::wstring(QVIpCalcParameter(*row).ValueText()), full.substr(1));
  EXPECT_NE(log.Text().find(L" with length 200 can't take '" + full + L"'\n"), std::wstring::npos);
  std::wstring text;
  RowText::AppendRecord(text, *row);
  EXPECT_EQ(text, full);
  EXPECT_EQ(row->ValueFloat(), std::numeric_limits<float>::infinity());
}

}  // namespace
