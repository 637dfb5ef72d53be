// The log: what reaches a host's sink, in which text, and what a bad sink can't break; and the
// conversions that bring wide text out and in.

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <climits>
#include <clocale>
#include <cstdlib>
#include <cwctype>
#include <stdexcept>
#include <thread>
#include <tuple>

#include "interfaces/Support.h"
#include "interfaces/sea/PrWin.h"
#include "interfaces/text/Text.h"
#include "test_store.h"

namespace {

using testing_support::Log;
using Lines = std::vector<Log::Line>;

constexpr auto k8 = PrWin::category_data_base;

// What `run` leaves on standard error.
template <class Run>
std::string ErrorsOf(const Run& run) {
  testing::internal::CaptureStderr();
  run();
  return testing::internal::GetCapturedStderr();
}

TEST(LogSink, FormatsReachTheSinkWithCategoryAndStyle) {
  const Log log;
  const wchar_t* const null = nullptr;
  PrWin::Output(L"100% as it stands: %s\n", k8, PrWin::style_refusal);
  PrWin::Output(null, k8, PrWin::style_info);
  PrWin::Output(k8, null);
  PrWin::Output(k8, PrWin::style_info, null);
  EXPECT_EQ(log.lines,
            (Lines{{L"100% as it stands: %s\n", 8, 4}, {L"", 8, 1}, {L"", 8, 0}, {L"", 8, 1}}));
}

TEST(LogSink, FormsAreThoseOfThePlatformOnWideText) {
  Log log;
  const auto put = [&log](const wchar_t* format, auto... arguments) {
    log.lines.clear();
    PrWin::Output(k8, PrWin::style_info, format, arguments...);
    return log.Text();
  };
  const wchar_t* const null = nullptr;
  EXPECT_EQ(put(L"%5d '%-4s' %.2s %ls %s", 42, L"\u00E4\xD83D", L"cut", L"ls", null),
            L"   42 '\u00E4\xD83D  ' cu ls (null)");
  EXPECT_EQ(put(L"%x %05.1f %g %lld %u %+d %%s", 255, 1.25, 1e9, LLONG_MIN, UINT_MAX, 0),
            L"ff 001.2 1e+09 -9223372036854775808 4294967295 +0 %s");
  EXPECT_EQ(put(L"%2$*1$s%3$c%4$S%4$hs", 3, L"b", L'\u20AC', "c"), L"  b\u20ACcc");
  const std::wstring million(1'000'000, L'\u00E4');
  EXPECT_EQ(put(L"%s%d", million.c_str(), 7), million + L"7");
  EXPECT_EQ(put(L"%d %S", 1, "\xFC"), L"%d %S");  // no ASCII
}

TEST(LogSink, ThatThrowsLosesNoText) {
  const Log log;
  const PrWin::Sink good =
      PrWin::SetSink([](auto...) { throw std::runtime_error("the window of the log is gone"); });
  EXPECT_EQ(ErrorsOf([] { PrWin::Output(L"kept \xD83D\xDE00 \xD800\n", k8, PrWin::style_info); }),
            "kept \xF0\x9F\x98\x80 \xEF\xBF\xBD\n");
  PrWin::SetSink(good);
  PrWin::Output(L"next", k8, PrWin::style_info);
  EXPECT_EQ(log.lines, (Lines{{L"next", 8, 1}}));
}

TEST(LogSink, MayLogAndChangeTheSink) {
  const Log log;
  int calls = 0;
  const PrWin::Sink good = PrWin::SetSink(nullptr);
  PrWin::SetSink([&calls, good](auto...) {
    ++calls;
    PrWin::Output(L"from inside\n", k8, PrWin::style_info);
    PrWin::SetSink(good);  // lets go of the function that is running
    ++calls;
  });
  EXPECT_EQ(ErrorsOf([] { PrWin::Output(L"1", k8, PrWin::style_info); }), "from inside\n");
  PrWin::Output(L"2", k8, PrWin::style_info);
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(log.lines, (Lines{{L"2", 8, 1}}));
}

TEST(LogSink, HasOneThreadAtATimeAndNoneAfterItsReplacement) {
  const Log log;
  std::atomic<int> inside = 0;
  std::atomic<int> together = 0;
  std::atomic<int> calls = 0;
  PrWin::SetSink([&](auto...) {
    if (++inside > 1) ++together;
    std::this_thread::yield();
    ++calls;
    --inside;
  });
  {
    const auto write = [] {
      for (int i = 0; i < 500; ++i) PrWin::Output(k8, L"%d\n", i);
    };
    const std::array<std::jthread, 4> threads{std::jthread(write), std::jthread(write),
                                              std::jthread(write), std::jthread(write)};
  }
  EXPECT_EQ(together, 0);
  EXPECT_EQ(calls, 2000);

  std::atomic<bool> entered = false;
  std::atomic<bool> left = false;
  PrWin::SetSink([&](auto...) {
    entered = true;
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    left = true;
  });
  const std::jthread writer([] { PrWin::Output(L"slow", k8, PrWin::style_info); });
  while (!entered) std::this_thread::yield();
  PrWin::SetSink({});
  EXPECT_TRUE(left);
}

TEST(Trace, IsSilentUnlessAskedFor) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto trace = [](const char* wish, bool sink) {
    setenv("KESTRIN_TRACE", wish, 1);
    if (sink) PrWin::SetTraceSink([](std::wstring_view) { std::fputs("taken", stderr); });
    PrWin::Trace(L"step\n");
    PrWin::Trace(nullptr);
    std::_Exit(0);
  };
  EXPECT_EXIT(trace("1", false), testing::ExitedWithCode(0), "^step\n$");
  EXPECT_EXIT(trace("", false), testing::ExitedWithCode(0), "^$");
  EXPECT_EXIT(trace("", true), testing::ExitedWithCode(0), "^takentaken$");
}

TEST(WideText, Utf8IsReadStrictlyAndDamageCostsNoNeighbour) {
  const std::vector<std::pair<std::string, std::wstring>> cases = {
      {"\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80", L"\x7F\x80\x7FF\x800"},
      {"\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", L"\xD7FF\xE000\xFFFF"},
      {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", L"\xD800\xDC00\xDBFF\xDFFF"},
      {std::string("a\0b", 3), std::wstring(L"a\0b", 3)},
      {"\xC0\xAF.", L"\xFFFD."},          // overlong
      {"\xED\xA0\x80.", L"\xFFFD."},      // a surrogate
      {"\xF4\x90\x80\x80.", L"\xFFFD."},  // beyond U+10FFFF
      {"\x80\xBFz", L"\xFFFD\xFFFDz"},
      {"\xE2\x82.\xF0\x9F\x98", L"\xFFFD.\xFFFD"}};  // cut off
  for (const auto& [bytes, text] : cases) {
    EXPECT_EQ(Text::FromUtf8(bytes), text);
    const bool damaged = text.find(L'\xFFFD') != std::wstring::npos;
    EXPECT_EQ(Text::ToUtf8(text) == bytes, !damaged) << bytes;
  }
  EXPECT_EQ(Text::ToUtf8(L"\xDC00\xD800."), "\xEF\xBF\xBD\xEF\xBF\xBD.");
  EXPECT_EQ(Text::Trim(L" \v\ta b\r\n\u3000"), L"a b");
  EXPECT_EQ(Text::Trim(L" \t "), L"");
}

TEST(WideText, WhiteSpaceIsThatOfAUtf8System) {
  if (!std::setlocale(LC_CTYPE, "C.UTF-8")) GTEST_SKIP() << "there is no such locale";
  for (wchar_t c = 0; c <= 0xFFFF; ++c) {
    EXPECT_EQ(Text::IsSpace(c), std::iswspace(static_cast<wint_t>(c)) != 0) << int(c);
  }
  std::setlocale(LC_CTYPE, "C");
}

TEST(WideText, CodePagesGiveTheirCharacters) {
  const std::tuple<const char*, unsigned, const wchar_t*> cases[] = {
      {"\x80\x81\x9F\xA0\xFC", 1252, L"\x20AC\x81\x178\xA0\xFC"},
      {"\x80\xFC", 28591, L"\x80\xFC"},
      {"\x80\xFC", 4711, L"\x80\xFC"},
      {"\xE2\x82\xAC", 65001, L"\x20AC"},
      {nullptr, 1252, L""}};
  for (const auto& [bytes, page, text] : cases) {
    EXPECT_EQ(Formatting::ansi2unicode(bytes, page), text) << page;
  }
}

}  // namespace
