// Numbers in text: what is read, how much of the text it takes, and what is refused.
#include <bit>
#include <cerrno>
#include <cstdint>

#include "interfaces/Support.h"
#include "support.h"

namespace {

using Number::State;

constexpr State kOk = State::ok, kNone = State::no_digits, kRange = State::out_of_range;
constexpr double kInf = HUGE_VAL;

template <class T>
using Result = std::tuple<T, std::size_t, State>;  // the value, how much of the text it took

template <class T>
Result<T> Of(const Number::Scanned<T>& scanned) {
  return {scanned.value, scanned.used, scanned.state};
}

// What random texts below don't meet: other scripts' digits and blanks, and the bounds.
TEST(Numbers, IntegersStopWhereTheNumberEndsAndKeepTo32Or64Bits) {
  const std::pair<std::wstring, Result<int>> narrow[] = {
      {L" \t\n\v\f\r-7 8", {-7, 8, kOk}},
      {L"\u3000\u20057", {7, 3, kOk}},
      {L"2147483648 5", {INT_MAX, 10, kRange}},
      {L"-2147483648", {INT_MIN, 11, kOk}},
      {L"-2147483649", {INT_MIN, 11, kRange}},
      {L"\u00A05", {0, 0, kNone}},       // no-break space is no white space
      {L"\u0663\u0664", {0, 0, kNone}},  // Arabic digits are no digits
      {L"1\uFF12", {1, 1, kOk}}};
  for (const auto& [text, wanted] : narrow) EXPECT_EQ(Of(Number::ScanInt(text)), wanted) << text;
  const std::pair<std::wstring, Result<long long>> wide[] = {
      {L"9223372036854775807", {LLONG_MAX, 19, kOk}},
      {L"9223372036854775808", {LLONG_MAX, 19, kRange}},
      {L"-9223372036854775808", {LLONG_MIN, 20, kOk}},
      {L"-9223372036854775809", {LLONG_MIN, 20, kRange}}};
  for (const auto& [text, wanted] : wide) EXPECT_EQ(Of(Number::ScanLongLong(text)), wanted) << text;
  const std::pair<std::wstring, Result<unsigned>> positive[] = {
      {L"4294967295", {UINT_MAX, 10, kOk}},
      {L" -1", {UINT_MAX, 3, kOk}},
      {L"-4294967295", {1, 11, kOk}},
      {L"-4294967296", {UINT_MAX, 11, kRange}}};
  for (const auto& [text, wanted] : positive) {
    EXPECT_EQ(Of(Number::ScanUnsigned(text)), wanted) << text;
  }
}

TEST(Numbers, FloatsTellBothEndsOfTheRange) {
  const std::wstring zeros(400, L'0');
  const std::pair<std::wstring, Result<double>> cases[] = {
      {L"InFiNiTyx", {kInf, 8, kOk}},
      {L"\u0661.5", {0, 0, kNone}},
      {L"-1e99999999999999999999", {-kInf, 23, kRange}},
      {L"1e-99999999999999999999", {0, 23, kRange}},
      {L"1e+9223372036854775807", {kInf, 22, kRange}},
      {L"4.9e-324", {4.9406564584124654e-324, 8, kOk}},
      {L"2e-324", {0, 6, kRange}},
      {L"1.7976931348623159e308", {kInf, 22, kRange}},
      {L"0x1p-1075", {0, 9, kRange}},
      {L"0e999999999999999999999", {0, 23, kOk}},
      {L"1" + zeros, {kInf, 401, kRange}},
      {L"0." + zeros + L"1", {0, 403, kRange}},
      {L"0." + zeros + L"1e401", {1, 407, kOk}},
      {L"1" + zeros + L"e-400 ", {1, 406, kOk}},
      {L"0x1" + zeros, {kInf, 403, kRange}}};
  for (const auto& [text, wanted] : cases) EXPECT_EQ(Of(Number::ScanDouble(text)), wanted) << text;
  EXPECT_TRUE(std::signbit(Number::ScanDouble(L"-1e-999").value));
  EXPECT_EQ(Number::ScanDouble(L"-nan(ind_9)x").used, 11U);
}

// The C library is the judge. Texts are made of what numbers are made of, so most of them are near
// misses; the program never calls setlocale, which makes the judge's locale the classic one.
TEST(Numbers, AgreeWithTheCLibraryOnRandomTexts) {
  std::mt19937 random(20240611);  // NOLINT(cert-msc51-cpp): the same texts in every run
  const std::string pieces[] = {"0",          "1",  "9",   "7",   "25",  "4503599627370497",
                                "2147483648", ".",  ".",   "e",   "E-3", "e+",
                                "p-",         "p1", "-",   "+",   " ",   "0x",
                                "f",          "A",  "_",   "nan", "inf", "(",
                                ")",          "00", "308", "-32"};
  for (int round = 0; round < 100000 && !HasFailure(); ++round) {
    std::string text;
    for (auto n = random() % 9; n > 0; --n) text += pieces[random() % std::size(pieces)];
    SCOPED_TRACE(text);
    const std::wstring wide(text.begin(), text.end());
    char* end = nullptr;
    // The state of a number that the C library has read.
    const auto used = [&] { return static_cast<std::size_t>(end - text.c_str()); };
    const auto state = [&](bool fits) { return used() == 0 ? kNone : fits ? kOk : kRange; };

    errno = 0;
    const double real = std::strtod(text.c_str(), &end);
    const bool lost = errno == ERANGE && (real == 0 || std::isinf(real));
    const auto got = Number::ScanDouble(wide);
    EXPECT_EQ(got.used, used());
    EXPECT_EQ(got.state, state(!lost));
    EXPECT_EQ(std::signbit(got.value), std::signbit(real));
    EXPECT_TRUE(got.value == real || (std::isnan(got.value) && std::isnan(real)));

    errno = 0;
    const long long whole = std::strtoll(text.c_str(), &end, 10);
    EXPECT_EQ(Of(Number::ScanLongLong(wide)), Result<long long>(whole, used(), state(errno == 0)));
    const int narrow = static_cast<int>(std::clamp<long long>(whole, INT_MIN, INT_MAX));
    EXPECT_EQ(Of(Number::ScanInt(wide)), Result<int>(narrow, used(), state(narrow == whole)));
    const bool fits = whole >= -static_cast<long long>(UINT_MAX) && whole <= UINT_MAX;
    const unsigned positive = fits ? static_cast<unsigned>(whole) : UINT_MAX;
    EXPECT_EQ(Of(Number::ScanUnsigned(wide)), Result<unsigned>(positive, used(), state(fits)));
  }
}

// Decimals of about as many digits as a double tells apart, with the point anywhere: short ones
// take a way of their own, which would go wrong in the last place first. And the digits of any
// double.
TEST(Numbers, RoundAsInTheCLibrary) {
  std::mt19937_64 random(3);  // NOLINT(cert-msc51-cpp): the same numbers in every run
  for (int round = 0; round < 50000 && !HasFailure(); ++round) {
    std::string decimal = std::to_string(random()).substr(0, 12 + random() % 7);
    decimal.insert(random() % (decimal.size() + 1), ".");
    if (random() % 2 != 0) decimal.insert(0, "-0");
    const auto value = std::bit_cast<double>(static_cast<std::uint64_t>(random()));
    char digits[64] = "1";
    char hexadecimal[64] = "1";
    if (std::isfinite(value)) {
      std::snprintf(digits, sizeof digits, "%.17g", value);
      std::snprintf(hexadecimal, sizeof hexadecimal, "%a", value);
    }
    for (const std::string& text : {decimal, std::string(digits), std::string(hexadecimal)}) {
      const auto got = Number::ScanDouble(std::wstring(text.begin(), text.end()));
      EXPECT_EQ(got.value, std::strtod(text.c_str(), nullptr)) << text;
      EXPECT_EQ(got.used, text.size()) << text;
    }
  }
}

TEST(Numbers, AreWrittenInTheDefaultFormOfAStream) {
  std::wstring text;
  for (const float value : {1234567.F, 100000.F, 1e6F, 0.0001F, 1e-5F, 1.5F, 0.1F, -0.F, 1e-45F,
                            HUGE_VALF, -NAN, 999999.5F}) {
    Number::Append(text, value);
    text += L' ';
  }
  EXPECT_EQ(text, L"1.23457e+06 100000 1e+06 0.0001 1e-05 1.5 0.1 -0 1.4013e-45 inf -nan 1e+06 ");
  text.clear();
  Number::Append(text, LLONG_MIN);
  Number::Append(text, 0);
  Number::Append(text, UINT_MAX);
  EXPECT_EQ(text, L"-922337203685477580804294967295");
}

TEST(Numbers, ADoubleBecomesTheNearestFloatAtTheUpperEndToo) {
  constexpr float kMax = 0x1.fffffep127F;
  EXPECT_EQ(Number::ToFloat(0x1.fffffeffffffp127), kMax);
  EXPECT_EQ(Number::ToFloat(-0x1.fffffeffffffp127), -kMax);
  EXPECT_EQ(Number::ToFloat(0x1.ffffffp127), HUGE_VALF);
  EXPECT_EQ(Number::ToFloat(-1e300), -HUGE_VALF);
  EXPECT_TRUE(std::isnan(Number::ToFloat(NAN)));
  EXPECT_EQ(Number::ToFloat(1e-45), 1e-45F);
}

}  // namespace
