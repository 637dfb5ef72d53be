#include "interfaces/text/Utf.h"

namespace kestrin::Utf {

std::size_t LongSpaceLength(std::string_view text) {
  const Sequence first = Read(text.data(), text.data() + text.size());
  const bool is_space = first.state == Sequence::whole && first.code <= 0xFFFF &&
                        Text::IsSpace(static_cast<wchar_t>(first.code));
  return is_space ? static_cast<std::size_t>(first.length) : 0;
}

wchar_t* Widen(std::string_view text, Strictness strictness, wchar_t* to) {
  const char* from = text.data();
  const char* const end = from + text.size();
  for (;;) {
    const char* const other = SkipAscii(from, end);
    to = std::copy(from, other, to);
    if (other == end) return to;
    const Sequence next = Read(other, end);
    const bool is_sound = next.state == Sequence::whole &&
                          (strictness == lax || (next.length == LengthOf(next.code) &&
                                                 !IsHigh(next.code) && !IsLow(next.code)));
    const char32_t code = is_sound ? next.code : replacement;
    if (code >= 0x10000) *to++ = static_cast<wchar_t>(HighOf(code));
    *to++ = static_cast<wchar_t>(code >= 0x10000 ? LowOf(code) : code);
    from = other + next.length;
  }
}

}  // namespace kestrin::Utf
