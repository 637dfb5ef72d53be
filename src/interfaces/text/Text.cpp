// The UTF-8 codec. Damaged text is shown, not refused: what cannot be decoded becomes U+FFFD, one
// for each lead byte with as many continuation bytes as could still have made a character, so that
// the damage never swallows the good characters behind it.

#include "interfaces/text/Text.h"

#include <cstddef>

namespace kestrin::Text {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHigh(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsLow(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

// What a lead byte announces: the continuation bytes, its own payload, and the bounds of the first
// continuation byte. The bounds shut out overlong forms, surrogates and what lies beyond U+10FFFF.
struct Lead {
  int more = -1;  // -1: no lead byte
  char32_t bits = 0;
  unsigned char low = 0x80, high = 0xBF;
};

Lead LeadOf(unsigned char c) {
  if (c < 0x80) return {0, c};
  if (c < 0xC2) return {};
  if (c < 0xE0) return {1, c & 0x1FU};
  if (c == 0xE0) return {2, 0, 0xA0, 0xBF};
  if (c == 0xED) return {2, 0xD, 0x80, 0x9F};
  if (c < 0xF0) return {2, c & 0x0FU};
  if (c == 0xF0) return {3, 0, 0x90, 0xBF};
  if (c < 0xF4) return {3, c & 0x07U};
  if (c == 0xF4) return {3, 4, 0x80, 0x8F};
  return {};
}

// Takes one character off the front of a text that is not empty.
char32_t TakeUtf8(std::string_view& text) {
  const Lead lead = LeadOf(static_cast<unsigned char>(text.front()));
  text.remove_prefix(1);
  if (lead.more < 0) return kReplacement;
  char32_t c = lead.bits;
  for (int i = 0; i < lead.more; ++i) {
    const unsigned char next = text.empty() ? 0 : static_cast<unsigned char>(text.front());
    if (next < (i == 0 ? lead.low : 0x80) || next > (i == 0 ? lead.high : 0xBF)) {
      return kReplacement;
    }
    c = (c << 6) | (next & 0x3FU);
    text.remove_prefix(1);
  }
  return c;
}

void AppendUtf8(std::string& out, char32_t c) {
  const auto tail = [&](int shift) { out += static_cast<char>(0x80 | ((c >> shift) & 0x3F)); };
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | (c >> 6));
    tail(0);
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | (c >> 12));
    tail(6);
    tail(0);
  } else {
    out += static_cast<char>(0xF0 | (c >> 18));
    tail(12);
    tail(6);
    tail(0);
  }
}

}  // namespace

char32_t TakeCharacter(std::wstring_view& text) {
  const auto c = static_cast<char32_t>(text.front());
  text.remove_prefix(1);
  if (IsHigh(c) && !text.empty() && IsLow(static_cast<char32_t>(text.front()))) {
    const auto low = static_cast<char32_t>(text.front());
    text.remove_prefix(1);
    return 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
  }
  return IsHigh(c) || IsLow(c) || c > 0xFFFF ? kReplacement : c;
}

void AppendCharacter(std::wstring& text, char32_t character) {
  if (character < 0x10000) {
    text += static_cast<wchar_t>(character);
    return;
  }
  text += static_cast<wchar_t>(0xD800 + ((character - 0x10000) >> 10));
  text += static_cast<wchar_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
}

std::wstring FromUtf8(std::string_view text) {
  std::wstring out;
  out.reserve(text.size());
  while (!text.empty()) AppendCharacter(out, TakeUtf8(text));
  return out;
}

std::string ToUtf8(std::wstring_view text) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) AppendUtf8(out, TakeCharacter(text));
  return out;
}

}  // namespace kestrin::Text
