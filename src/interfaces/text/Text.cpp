#include "interfaces/text/Text.h"

#include <algorithm>
#include <array>
#include <vector>

#include "interfaces/text/Utf.h"

namespace kestrin::Text {
namespace {

std::wstring Lowered(std::wstring_view text) {
  std::wstring lowered(text);
  for (wchar_t& c : lowered) c = Lower(c);
  return lowered;
}

// A row of the usual table of distances at a time; the two rows before are enough to see an
// exchange.
std::size_t SlipsBetween(std::wstring_view a, std::wstring_view b) {
  std::vector<std::size_t> before;
  std::vector<std::size_t> above;
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    before.swap(above);
    above = row;
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t wrong = a[i - 1] == b[j - 1] ? 0 : 1;
      row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + wrong});
      const bool exchanged = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (exchanged) row[j] = std::min(row[j], before[j - 2] + 1);
    }
  }
  return row[b.size()];
}

}  // namespace

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

namespace {

std::wstring Decoded(std::string_view bytes, Utf::Strictness strictness) {
  std::wstring text(bytes.size(), L'\0');
  const wchar_t* const end = Utf::Widen(bytes, strictness, text.data());
  text.resize(static_cast<std::size_t>(end - text.data()));
  text.shrink_to_fit();  // characters beyond ASCII have more bytes than elements
  return text;
}

std::string Encoded(std::wstring_view text, bool keeps_halves) {
  std::string out;
  out.reserve(text.size());
  std::array<char, 4> bytes;
  while (!text.empty()) {
    const auto first = static_cast<char32_t>(text.front());
    char32_t character = TakeCharacter(text);
    if (keeps_halves && character == Utf::replacement && first <= 0xFFFF) character = first;
    char* end = bytes.data();
    Utf::Write(character, end);
    out.append(bytes.data(), end);
  }
  return out;
}

}  // namespace

// Damaged text is shown, not refused, and swallows none of the good characters behind it.
std::wstring FromUtf8(std::string_view text) { return Decoded(text, Utf::strict); }
std::wstring FromBytes(std::string_view bytes) { return Decoded(bytes, Utf::lax); }
std::string ToUtf8(std::wstring_view text) { return Encoded(text, false); }
std::string ToBytes(std::wstring_view text) { return Encoded(text, true); }

std::optional<std::size_t> Nearest(std::wstring_view text, std::span<const std::wstring> known) {
  constexpr std::size_t longest = 200;  // a longer text is no name, and would take its time
  const std::wstring wanted = Lowered(text.substr(0, longest));
  std::optional<std::size_t> nearest;
  std::optional<std::size_t> holder;
  std::size_t fewest = 0;
  for (std::size_t i = 0; i < known.size() && !wanted.empty(); ++i) {
    const std::wstring candidate = Lowered(std::wstring_view(known[i]).substr(0, longest));
    if (!holder && candidate.find(wanted) != std::wstring::npos) holder = i;
    const std::size_t most = candidate.size() / 3;
    const std::size_t apart =
        std::max(candidate.size(), wanted.size()) - std::min(candidate.size(), wanted.size());
    if (apart > most) continue;
    const std::size_t slips = SlipsBetween(wanted, candidate);
    if (slips > most || (nearest && slips >= fewest)) continue;
    nearest = i;
    fewest = slips;
  }
  return nearest ? nearest : holder;
}

}  // namespace kestrin::Text
