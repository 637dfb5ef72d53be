// The log: what reaches a host's sink, in which text, and what a bad sink can't break; and the
// conversions that bring wide text out and in.
#include <atomic>
#include <chrono>
#include <clocale>
#include <cwctype>

#include "interfaces/Support.h"
#include "support.h"

namespace {

using Logged = std::vector<Log::Line>;

constexpr auto k8 = PrWin::category_data_base;

// What `run` leaves on standard error.
template <class Run>
std::string ErrorsOf(const Run& run) {
  testing::internal::CaptureStderr();
  run();
  return testing::internal::GetCapturedStderr();
}

TEST(LogSink, FormsAreThoseOfThePlatformOnWideText) {
  Log log;
  const wchar_t* const null = nullptr;
  const std::wstring million(1'000'000, L'\u00E4');
  PrWin::Output(L"100% as it stands: %s\n", k8, PrWin::style_refusal);
  PrWin::Output(null, k8, PrWin::style_info);
  PrWin::Output(k8, null);
  EXPECT_EQ(log.lines, (Logged{{L"100% as it stands: %s\n", 8, 4}, {L"", 8, 1}, {L"", 8, 0}}));
  log.lines.clear();
  PrWin::Output(k8, PrWin::style_info, L"%5d '%-4s' %.2s %ls %s|", 42, L"\u00E4\xD83D", L"cut",
                L"ls", null);
  PrWin::Output(k8, PrWin::style_info, L"%x %05.1f %g %lld %u %+d %%s|", 255, 1.25, 1e9, LLONG_MIN,
                UINT_MAX, 0);
  PrWin::Output(k8, PrWin::style_info, L"%2$*1$s%3$c%4$S%4$hs|", 3, L"b", L'\u20AC', "c");
  PrWin::Output(k8, PrWin::style_info, L"%d %S", 1, "\xFC");  // no ASCII
  EXPECT_EQ(log.Text(),
            L"   42 '\u00E4\xD83D  ' cu ls (null)|"
            L"ff 001.2 1e+09 -9223372036854775808 4294967295 +0 %s|  b\u20ACcc|%d %S");
  log.lines.clear();
  PrWin::Output(k8, PrWin::style_info, L"%s%d", million.c_str(), 7);
  EXPECT_EQ(log.Text(), million + L"7");
}

TEST(LogSink, ThatThrowsLosesNoText) {
  const Log log;
  const PrWin::Sink good =
      PrWin::SetSink([](auto...) { throw std::runtime_error("the window of the log is gone"); });
  EXPECT_EQ(ErrorsOf([] { PrWin::Output(L"kept \xD83D\xDE00 \xD800\n", k8, PrWin::style_info); }),
            "kept \xF0\x9F\x98\x80 \xEF\xBF\xBD\n");
  PrWin::SetSink(good);
  PrWin::Output(L"next", k8, PrWin::style_info);
  EXPECT_EQ(log.lines, (Logged{{L"next", 8, 1}}));
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
  EXPECT_EQ(log.lines, (Logged{{L"2", 8, 1}}));
}

TEST(LogSink, HasOneThreadAtATimeAndNoneAfterItsReplacement) {
  const Log log;
  std::atomic<int> inside = 0;
  std::atomic<int> together = 0;
  std::atomic<int> calls = 0;
  const auto write_with = [&](std::chrono::milliseconds duration, int lines) {
    PrWin::SetSink([&, duration](auto...) {
      together += ++inside > 1;
      std::this_thread::sleep_for(duration);
      ++calls;
      --inside;
    });
    return std::jthread([lines] {
      for (int i = 0; i < lines; ++i) PrWin::Output(k8, L"%d\n", i);
    });
  };
  using std::chrono::milliseconds;
  {
    const std::array threads{write_with(milliseconds(0), 500), write_with(milliseconds(0), 500),
                             write_with(milliseconds(0), 500)};
  }
  EXPECT_EQ(together, 0);
  EXPECT_EQ(calls, 1500);
  const std::jthread slow = write_with(milliseconds(30), 1);
  while (inside == 0) std::this_thread::yield();
  PrWin::SetSink({});
  EXPECT_EQ(calls, 1501);
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
  // Both ends of each length; then overlong, a surrogate, beyond U+10FFFF, no lead, cut off.
  const std::pair<std::string, std::wstring> cases[] = {
      {"\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80", L"\x7F\x80\x7FF\x800"},
      {"\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", L"\xD7FF\xE000\xFFFF"},
      {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", L"\xD800\xDC00\xDBFF\xDFFF"},
      {std::string("a\0b", 3), std::wstring(L"a\0b", 3)},
      {"\xC0\xAF.\xED\xA0\x80.\xF4\x90\x80\x80.", L"\xFFFD.\xFFFD.\xFFFD."},
      {"\x80\xBFz\xE2\x82.\xF0\x9F\x98", L"\xFFFD\xFFFDz\xFFFD.\xFFFD"}};
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
      {"\x80\xFC", 4711, L"\x80\xFC"},
      {"\xE2\x82\xAC", 65001, L"\x20AC"},
      {nullptr, 1252, L""}};
  for (const auto& [bytes, page, text] : cases) {
    EXPECT_EQ(Formatting::ansi2unicode(bytes, page), text) << page;
  }
}

}  // namespace
