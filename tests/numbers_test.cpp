// Numbers in text: what is read, how much of the text it takes, and what is refused.
#include <cerrno>

#include "support.h"

namespace {

using Number::State;

constexpr State kOk = State::ok, kNone = State::no_digits, kRange = State::out_of_range;

template <class T>
using Result = std::tuple<T, std::size_t, State>;  // the value, how much of the text it took

template <class T>
Result<T> Of(const Number::Scanned<T>& scanned) {
  return {scanned.value, scanned.used, scanned.state};
}

// The C library is the judge. Texts are made of what numbers are made of, so most of them are near
// misses; the program never calls setlocale, which makes the judge's locale the classic one.
TEST(Numbers, AgreeWithTheCLibraryOnRandomTexts) {
  std::mt19937 random(20240611);  // NOLINT(cert-msc51-cpp): the same texts in every run
  const std::string pieces[] = {"0",
                                "1",
                                "9",
                                "7",
                                "25",
                                "4503599627370497",
                                "2147483648",
                                ".",
                                ".",
                                "e",
                                "E-3",
                                "e+",
                                "p-",
                                "p1",
                                "p+",
                                "-",
                                "+",
                                " ",
                                "0x",
                                "f",
                                "A",
                                "_",
                                "nan",
                                "inf",
                                "(",
                                ")",
                                "00",
                                "308",
                                "-32",
                                "e-400",
                                std::string(400, '0')};
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
    EXPECT_EQ(Of(Number::ScanInteger<long long>(text)),
              Result<long long>(whole, used(), state(errno == 0)));
    const int narrow = static_cast<int>(std::clamp<long long>(whole, INT_MIN, INT_MAX));
    EXPECT_EQ(Of(Number::ScanInt(wide)), Result<int>(narrow, used(), state(narrow == whole)));
    const bool fits = whole >= -static_cast<long long>(UINT_MAX) && whole <= UINT_MAX;
    const unsigned positive = fits ? static_cast<unsigned>(whole) : UINT_MAX;
    EXPECT_EQ(Of(Number::ScanInteger<unsigned>(text)),
              Result<unsigned>(positive, used(), state(fits)));
  }
}

}  // namespace
