#include "interfaces/text/Text.h"

#include <array>

#include "interfaces/text/Utf.h"

namespace kestrin::Text {

char32_t TakeCharacter(std::wstring_view& text) {
  const auto c = static_cast<char32_t>(text.front());
  const auto next = text.size() > 1 ? static_cast<char32_t>(text[1]) : 0;
  const bool is_pair = Utf::IsHigh(c) && Utf::IsLow(next);
  text.remove_prefix(is_pair ? 2 : 1);
  if (is_pair) return Utf::Joined(c, next);
  return Utf::IsHigh(c) || Utf::IsLow(c) || c > 0xFFFF ? Utf::replacement : c;
}

void AppendCharacter(std::wstring& text, char32_t character) {
  const bool is_pair = character >= 0x10000;
  if (is_pair) text += static_cast<wchar_t>(Utf::HighOf(character));
  text += static_cast<wchar_t>(is_pair ? Utf::LowOf(character) : character);
}

// Damaged text is shown, not refused, and swallows none of the good characters behind it.
std::wstring FromUtf8(std::string_view text) {
  std::wstring out;
  out.reserve(text.size());
  while (!text.empty()) {
    const Utf::Sequence next = Utf::Read(text.data(), text.data() + text.size());
    const bool is_sound = next.state == Utf::Sequence::whole &&
                          next.length == Utf::LengthOf(next.code) && !Utf::IsHigh(next.code) &&
                          !Utf::IsLow(next.code);
    AppendCharacter(out, is_sound ? next.code : Utf::replacement);
    text.remove_prefix(static_cast<std::size_t>(next.length));
  }
  return out;
}

std::string ToUtf8(std::wstring_view text) {
  std::string out;
  out.reserve(text.size());
  std::array<char, 4> bytes;
  while (!text.empty()) {
    char* end = bytes.data();
    Utf::Write(TakeCharacter(text), end);
    out.append(bytes.data(), end);
  }
  return out;
}

}  // namespace kestrin::Text
