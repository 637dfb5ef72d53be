// The log of the suite, and the developer trace.
//
// Every log line of the library goes through PrWin::Output: a text with its own line ends, a
// category and a style. A sink takes what is put out; a host sets its own with SetSink. Until then
// the text goes to standard error as UTF-8. Output may be called from any thread; the sink is
// called by one thread at a time. A sink may call Output, whose text then goes to standard error
// and not to the sink again, and SetSink. What a sink throws is kept from the caller of Output; the
// text goes to standard error. When SetSink has returned, the sink before is no longer running,
// unless it is the caller; so a sink must not wait for a thread that sets one.
#pragma once

#include <functional>
#include <string_view>

#include "interfaces/Export.h"

namespace PrWin {

// The categories and styles that this library uses; a sink may meet no others from it.
enum Category : int {
  category_text_cut = 1,   // a text was cut to the width of its field
  category_data_base = 8,  // everything else
};
enum Style : int {
  style_none = 0,      // the form of Output without a style was used
  style_info = 1,      // dumps and notices
  style_bad_line = 3,  // a line of input that could not be read
  style_refusal = 4,   // a data base was refused
};

using Sink = std::function<void(std::wstring_view text, Category category, Style style)>;

// Sets the sink and returns the one before. An empty sink stands for the default one.
KESTRIN_API Sink SetSink(Sink sink);

// A finished text; null is an empty text.
KESTRIN_API void Output(const wchar_t* text, Category category, Style style);
KESTRIN_API void Output(std::wstring_view text, Category category, Style style);

// Format forms with the conventions of printf on wide text, independent of the locale: widths,
// flags and every conversion of the platform. %s, as %ls, is a wide text (null gives "(null)") and
// %c a wide character; %S, as %hs, is a text in ASCII. A format that the platform refuses, or that
// gets another narrow text, is put out as it stands.
KESTRIN_API void Output(Category category, const wchar_t* format, ...);
KESTRIN_API void Output(Category category, Style style, const wchar_t* format, ...);

// The developer trace, which is not the log. Silent unless a sink is set or the environment
// variable KESTRIN_TRACE is set and not empty, which sends it to standard error.
using TraceSink = std::function<void(std::wstring_view text)>;
KESTRIN_API TraceSink SetTraceSink(TraceSink sink);
KESTRIN_API void Trace(const wchar_t* text);

}  // namespace PrWin
