// Lines of text to fields and back: what a bench engineer writes must be what the tables hold.

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "catalogue/IpCalcParameter.h"
#include "catalogue/SignalRows.h"
#include "queries/Units.h"
#include "tables/RowText.h"
#include "test_store.h"

namespace {

using TableType::FieldKind;
using TableType::FieldRef;
using Lines = std::vector<testing_support::Log::Line>;

// One field of each kind, with a value that tells whether it was touched.
struct Fields {
  int integer = 77;
  unsigned unsigned_int = 77;
  int long_int = 77;
  long long long_long = 77;
  float real = 77;
  wchar_t text[TableType::text_width] = L"before";
  QClavis key{7, 7, 7, 7, 7, 7};

  FieldRef Ref(FieldKind kind) {
    const FieldRef refs[] = {{FieldKind::integer, &integer},
                             {FieldKind::unsigned_int, &unsigned_int},
                             {FieldKind::long_int, &long_int},
                             {FieldKind::long_long, &long_long},
                             {FieldKind::real, &real},
                             {FieldKind::text, text},
                             {FieldKind::key, &key}};
    return *std::ranges::find(refs, kind, &FieldRef::kind);
  }

  std::wstring Text(FieldKind kind) {
    std::wstring written;
    const TableType::FieldView view{kind, Ref(kind).place};
    RowText::Append(written, {&view, 1});
    return written;
  }
};

constexpr auto I = FieldKind::integer;
constexpr auto U = FieldKind::unsigned_int;
constexpr auto L = FieldKind::long_int;
constexpr auto LL = FieldKind::long_long;
constexpr auto F = FieldKind::real;
constexpr auto T = FieldKind::text;
constexpr auto K = FieldKind::key;

TEST(RowText, FieldsTakeWhatIsTheirsAndLeaveTheRest) {
  struct Case {
    FieldKind kind;
    const wchar_t* line;
    const wchar_t* value;  // as it is written
    const wchar_t* rest;   // what is left of the line
    const char* failure = nullptr;
  };
  const Case cases[] = {
      {I, L" \t12abc", L"12", L"abc"},
      {I, L"2147483648", L"77", L"2147483648", "stoi argument out of range"},
      {I, L"x1", L"77", L"x1", "invalid stoi argument"},
      {I, L"  ", L"77", L"  ", "invalid stoi argument"},
      {I, L"1.5", L"1", L".5"},
      {I, L"", L"77", L""},
      {U, L"-1", L"4294967295", L""},
      {U, L"4294967296", L"77", L"4294967296", "stoul argument out of range"},
      {U, L"u", L"77", L"u", "invalid stoul argument"},
      {L, L"2147483648", L"77", L"2147483648", "stol argument out of range"},
      {L, L"\"", L"77", L"\"", "invalid stol argument"},
      {LL, L"9223372036854775807", L"9223372036854775807", L""},
      {LL, L"9223372036854775808", L"77", L"9223372036854775808", "stoll argument out of range"},
      {LL, L".", L"77", L".", "invalid stoll argument"},
      {F, L"1.5e3", L"1500", L""},
      {F, L"1e39", L"inf", L""},  // the range is that of a double
      {F, L"1e400", L"77", L"1e400", "stof argument out of range"},
      {F, L"e5", L"77", L"e5", "invalid stof argument"},
      {F, L"1234567 8", L"1.23457e+06", L" 8"},
      {T, L"  word next", L"word", L" next"},
      {T, L"\"a b\"5", L"a b", L"5"},
      {T, L"\"no end", L"no end", L""},
      {T, L"in\"word x", L"in\"word", L" x"},
      {T, L"\"\" 1", L"", L" 1"},
      {T, L"   ", L"", L""},
      {K, L"1 2 3", L"1 2 3 7 7 7", L""},
      {K, L"1 2 x", L"1 2 7 7 7 7", L" x", "invalid stoi argument"},
      {K, L"-1 2 3 4 5 6 9", L"-1 2 3 4 5 6", L" 9"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(Text::ToUtf8(c.line));
    Fields fields;
    const FieldRef ref = fields.Ref(c.kind);
    std::wstring_view rest = c.line;
    const RowText::Result result = RowText::ReadFields({&ref, 1}, rest);
    EXPECT_EQ(result.ok, c.failure == nullptr);
    EXPECT_STREQ(result.reason, c.failure);
    EXPECT_EQ(fields.Text(c.kind), c.value);
    EXPECT_EQ(rest, c.rest);
  }
}

TEST(RowText, ATextFieldIsLimitedByTheRestOfItsLine) {
  for (const std::size_t length : {198U, 199U, 5000U}) {
    for (const auto& line : {std::wstring(length, L'x'), L"a" + std::wstring(length - 1, L' ')}) {
      Fields fields;
      const FieldRef ref = fields.Ref(T);
      std::wstring_view rest = line;
      const RowText::Result result = RowText::ReadFields({&ref, 1}, rest);
      EXPECT_EQ(result.ok, length == 198) << length;
      EXPECT_EQ(result.reason, nullptr);
      EXPECT_EQ(fields.Text(T) == L"before", length != 198);
    }
  }
}

TEST(RowText, CopiesAreCutAtTheBufferAndTheCutIsLogged) {
  testing_support::Log log;
  wchar_t buffer[5] = L"----";
  EXPECT_TRUE(TableType::strcopy(buffer, L"abcd", 5));
  EXPECT_STREQ(buffer, L"abcd");
  EXPECT_FALSE(TableType::strcopy(buffer, L"vwxyz", 5));
  EXPECT_STREQ(buffer, L"vwxy");
  EXPECT_EQ(log.lines, (Lines{{L"TableType::strcopy(): copy truncated because destination string "
                               L"with length 5 can't take 'vwxyz'\n",
                               1, 1}}));
  EXPECT_TRUE(TableType::strcopy(buffer, nullptr, 5));
  EXPECT_STREQ(buffer, L"");
  EXPECT_FALSE(TableType::strcopy(buffer, L"x", 0));
}

// What a host has put into a row without a zero at its end: nothing behind it is read.
TEST(RowText, TextsWithoutTheirZeroEndWithTheirBuffer) {
  testing_support::Log log;
  const std::wstring full(TableType::text_width, L'7');
  const auto row = std::make_unique<QVIpCalcParameter>();
  full.copy(row->text, full.size());
  EXPECT_EQ(std::wstring(QVIpCalcParameter(*row).ValueText()), full.substr(1));
  EXPECT_NE(log.Text().find(L" with length 200 can't take '" + full + L"'\n"), std::wstring::npos);
  std::wstring text;
  RowText::AppendRecord(text, *row);
  EXPECT_EQ(text, full);
  EXPECT_EQ(row->ValueFloat(), std::numeric_limits<float>::infinity());
  const auto signal = std::make_unique<QVAppSignalProperty>();
  full.copy(signal->unit_text, full.size());
  signal->unit_code = -1;
  EXPECT_EQ(Units::RefreshText(*signal), full);
}

}  // namespace
