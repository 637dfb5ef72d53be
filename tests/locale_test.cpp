// A host with a German locale: nothing that is read, written or logged may change with it.
#include <clocale>
#include <locale>

#include "support.h"

namespace {

// What a German locale does to numbers, also where none is installed.
template <class Char>
class GermanNumbers : public std::numpunct<Char> {
  Char do_decimal_point() const override { return ','; }
  Char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

class GermanHost : public testing::Test {
 protected:
  void SetUp() override {
    const std::locale narrow(std::locale::classic(), new GermanNumbers<char>);
    before_ = std::locale::global(std::locale(narrow, new GermanNumbers<wchar_t>));
    std::wostringstream proof;
    proof << 1234.5;
    ASSERT_EQ(proof.str(), L"1.234,5") << "the locale is not in force";
    for (const char* const name : {"de_DE.UTF-8", "fr_FR.UTF-8"}) std::setlocale(LC_ALL, name);
  }
  void TearDown() override {
    std::locale::global(before_);
    std::setlocale(LC_ALL, "C");
  }

  std::locale before_;
};

TEST_F(GermanHost, NumbersAreReadAndWrittenAsEver) {
  EXPECT_EQ(Number::ScanDouble(L"1.5").value, 1.5);
  EXPECT_EQ(Number::ScanDouble(L"1,5").used, 1U);
  std::wstring text;
  Number::Append(text, 1234.5F);
  Number::Append(text, 1234567LL);
  EXPECT_EQ(text, L"1234.51234567");
}

TEST_F(GermanHost, TheLogGroupsNoDigitsAndKeepsUmlauts) {
  PrWin::Sink before = PrWin::SetSink({});
  testing::internal::CaptureStderr();
  PrWin::Output(PrWin::category_data_base, L"%s %'d %u %.1f\n", L"\u00FCber", -1234567, 1234567U,
                1.5);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "\u00FCber -1234567 1234567 1.5\n");
  PrWin::SetSink(std::move(before));
}

}  // namespace
