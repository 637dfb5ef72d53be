// Lines of text to fields and back: what a bench engineer writes must be what the tables hold.
#include <limits>

#include "catalogue/IpCalcParameter.h"
#include "support.h"
#include "tables/RowText.h"

namespace {

using TableType::FieldRef;

// One field of each kind, with a value that tells whether it was touched.
struct Fields {
  int integer = 77;
  unsigned unsigned_int = 77;
  int long_int = 77;
  long long long_long = 77;
  float real = 77;
  wchar_t text[TableType::text_width] = L"before";
  QClavis key{7, 7, 7, 7, 7, 7};

  FieldRef Ref(TableType::FieldKind kind) {
    void* const places[] = {&integer, &unsigned_int, &long_int, &long_long, &real, text, &key};
    return {kind, places[static_cast<int>(kind)]};
  }
};

TEST(RowText, FieldsTakeWhatIsTheirsAndLeaveTheRest) {
  using enum TableType::FieldKind;
  const std::wstring longest(198, L'x');
  // The kind, a line, the field as it is written then, what is left of the line, a failure.
  const std::tuple<TableType::FieldKind, std::wstring, std::wstring, const wchar_t*, const char*>
      cases[] = {
          {integer, L" \t12abc", L"12", L"abc", nullptr},
          {integer, L"2147483648", L"77", L"2147483648", "stoi argument out of range"},
          {integer, L"  ", L"77", L"  ", "invalid stoi argument"},
          {integer, L"", L"77", L"", nullptr},
          {unsigned_int, L"-1", L"4294967295", L"", nullptr},
          {unsigned_int, L"4294967296", L"77", L"4294967296", "stoul argument out of range"},
          {unsigned_int, L"u", L"77", L"u", "invalid stoul argument"},
          {long_int, L"2147483648", L"77", L"2147483648", "stol argument out of range"},
          {long_int, L"\"", L"77", L"\"", "invalid stol argument"},
          {long_long, L"9223372036854775807", L"9223372036854775807", L"", nullptr},
          {long_long, L"1e99", L"1", L"e99", nullptr},
          {long_long, L".", L"77", L".", "invalid stoll argument"},
          {real, L"1.5e3", L"1500", L"", nullptr},
          {real, L"1e39", L"inf", L"", nullptr},  // the range is that of a double
          {real, L"1e400", L"77", L"1e400", "stof argument out of range"},
          {real, L"e5", L"77", L"e5", "invalid stof argument"},
          {real, L"1234567 8", L"1.23457e+06", L" 8", nullptr},
          {text, L"  word next", L"word", L" next", nullptr},
          {text, L"\"a b\"5", L"a b", L"5", nullptr},
          {text, L"\"no end", L"no end", L"", nullptr},
          {text, L"in\"word x", L"in\"word", L" x", nullptr},
          {text, L"   ", L"", L"", nullptr},
          {text, longest, longest, L"", nullptr},
          {key, L"1 2 3", L"1 2 3 7 7 7", L"", nullptr},
          {key, L"1 2 x", L"1 2 7 7 7 7", L" x", "invalid stoi argument"},
          {key, L"-1 2 3 4 5 6 9", L"-1 2 3 4 5 6", L" 9", nullptr},
      };
  for (const auto& [kind, line, value, left, failure] : cases) {
    SCOPED_TRACE(Text::ToUtf8(line));
    Fields fields;
    const FieldRef ref = fields.Ref(kind);
    std::wstring_view rest = line;
    const RowText::Result result = RowText::ReadFields({&ref, 1}, rest);
    EXPECT_EQ(result.ok, failure == nullptr);
    EXPECT_STREQ(result.reason, failure);
    std::wstring written;
    const TableType::FieldView view{kind, ref.place};
    RowText::Append(written, {&view, 1});
    EXPECT_EQ(written, value);
    EXPECT_EQ(rest, left);
  }
  // A text is limited by the rest of its line, blanks and all.
  Fields fields;
  const FieldRef ref = fields.Ref(text);
  for (const auto& line : {longest + L'x', L"a" + std::wstring(198, L' ')}) {
    std::wstring_view rest = line;
    EXPECT_FALSE(RowText::ReadFields({&ref, 1}, rest).ok);
    EXPECT_STREQ(fields.text, L"before");
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
