// The log must never be the reason why a load fails. So whatever a sink does is caught here:
//
// - A sink that throws loses its turn, not the text: the text goes to standard error instead and
//   the caller of Output sees nothing of it.
// - A sink that puts out a text of its own, or changes the sink, finds the lock already its own.
//   What it puts out goes to standard error and not to the sink again, for a sink that logs every
//   call would never come back.
// - SetSink waits until a call under way on another thread has returned: afterwards the sink before
//   is not called any more and its host may take down what it writes to.

#include "interfaces/sea/PrWin.h"

#include <clocale>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "interfaces/sea/LogListener.h"
#include "interfaces/text/Text.h"

using namespace kestrin;

namespace PrWin {
namespace {

void WriteToStandardError(std::wstring_view text) {
  const std::string bytes = Text::ToUtf8(text);
  std::fwrite(bytes.data(), 1, bytes.size(), stderr);
}

// One way out of the library: the place of a sink, and the rules of the game around it.
template <class AnySink>
class Outlet {
 public:
  AnySink Set(AnySink sink) {
    const std::lock_guard lock(mutex_);
    // The sink before may be running this very call, so it is shared and not moved from.
    const std::shared_ptr<AnySink> before = std::exchange(sink_, nullptr);
    if (sink) sink_ = std::make_shared<AnySink>(std::move(sink));
    return before ? *before : AnySink();
  }

  // Calls the sink, or the fallback if there is none or it cannot take the text.
  template <class Fallback, class... Rest>
  void Put(const Fallback& fallback, std::wstring_view text, Rest... rest) noexcept {
    try {
      const std::lock_guard lock(mutex_);
      if (!sink_ || busy_ || !Call(text, rest...)) fallback(text);
    } catch (...) {  // NOLINT(bugprone-empty-catch): out of memory; there is nowhere left to say so
    }
  }

 private:
  template <class... Rest>
  bool Call(std::wstring_view text, Rest... rest) {
    const std::shared_ptr<AnySink> running = sink_;
    bool taken = true;
    busy_ = true;
    try {
      (*running)(text, rest...);
    } catch (...) {
      taken = false;
    }
    busy_ = false;
    return taken;
  }

  std::recursive_mutex mutex_;
  std::shared_ptr<AnySink> sink_;  // null: none is set
  bool busy_ = false;              // the sink is running, on the thread that has the lock
};

// Made on first use and never destroyed: objects that die at process end may still log.
template <class AnySink>
Outlet<AnySink>& OutletFor() {
  static auto* const outlet = new Outlet<AnySink>;
  return *outlet;
}

void OutputText(std::wstring_view text, Category category, Style style) {
  if (LogListener::Tell(text)) return;
  OutletFor<Sink>().Put(WriteToStandardError, text, category, style);
}

// The forms of the suite in those of the platform, whose %s and %c are narrow: to the suite they
// are wide, and %S and %C narrow. A length in front of the letter means the same to both.
std::wstring WithWideTexts(std::wstring_view format) {
  constexpr std::wstring_view between = L"0123456789$*.-+ #'";
  std::wstring out;
  bool form = false;  // behind a percent sign
  for (const wchar_t c : format) {
    if (form && (c == L's' || c == L'c')) out += L'l';
    const bool narrow = form && (c == L'S' || c == L'C');
    out += narrow ? static_cast<wchar_t>(c - L'A' + L'a') : c;
    form = form ? between.find(c) != between.npos : c == L'%';
  }
  return out;
}

// The format itself where the platform refuses it, or has no memory.
std::wstring Format(const wchar_t* format, std::va_list arguments) {
  const std::wstring own = WithWideTexts(format);
  wchar_t* text = nullptr;
  std::size_t length = 0;
  bool ok = false;
  // What a host has set for its users must not show in the log: a decimal comma, say.
  static const locale_t classic = newlocale(LC_ALL_MASK, "C", nullptr);
  const locale_t before = uselocale(classic);
  if (std::FILE* const memory = open_wmemstream(&text, &length)) {
    const bool written = std::vfwprintf(memory, own.c_str(), arguments) >= 0;
    ok = std::fclose(memory) == 0 && written;
  }
  uselocale(before);
  const std::unique_ptr<wchar_t, void (*)(void*)> owner(text, &std::free);
  return ok ? std::wstring(text, length) : std::wstring(format);
}

void OutputFormat(Category category, Style style, const wchar_t* format, std::va_list arguments) {
  if (!format) return OutputText({}, category, style);
  std::optional<std::wstring> text;
  try {
    text = Format(format, arguments);
  } catch (...) {  // NOLINT(bugprone-empty-catch): no memory for the arguments
  }
  OutputText(text ? std::wstring_view(*text) : format, category, style);
}

bool TraceIsWanted() {
  const char* const value = std::getenv("KESTRIN_TRACE");
  return value && *value;
}

}  // namespace

Sink SetSink(Sink sink) { return OutletFor<Sink>().Set(std::move(sink)); }

void Output(const wchar_t* text, Category category, Style style) {
  OutputText(text ? text : L"", category, style);
}

void Output(Category category, const wchar_t* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  OutputFormat(category, style_none, format, arguments);
  va_end(arguments);
}

void Output(Category category, Style style, const wchar_t* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  OutputFormat(category, style, format, arguments);
  va_end(arguments);
}

void Output(std::wstring_view text, Category category, Style style) {
  OutputText(text, category, style);
}

TraceSink SetTraceSink(TraceSink sink) { return OutletFor<TraceSink>().Set(std::move(sink)); }

void Trace(const wchar_t* text) {
  const auto quiet_or_error = [](std::wstring_view line) {
    if (TraceIsWanted()) WriteToStandardError(line);
  };
  OutletFor<TraceSink>().Put(quiet_or_error, text ? text : L"");
}

}  // namespace PrWin
