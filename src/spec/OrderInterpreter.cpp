// The reader of order definitions. One pass makes a working copy without blanks and with decimal
// points; the copy is then taken apart from its start, position by position. Every fault takes one
// way out and carries its place along, so the log and whoever asks for the reason are served by the
// same reader.
#include "spec/OrderInterpreter.h"

#include <algorithm>
#include <cwchar>
#include <limits>
#include <string>
#include <string_view>

#include "interfaces/sea/PrWin.h"
#include "interfaces/text/Number.h"
#include "interfaces/text/Text.h"

using namespace kestrin;

namespace OrderInterpreter {
namespace {

using Position = QVSpecIntervalEntry::Definition;

enum term_state {
  term_error = 0,
  term_absent = 1,
  term_value = 2,
  term_repeat = 3,  // the repeat mark in place of a number
};

template <class T>
struct Reading {
  T value;
  std::size_t used;  // characters read; 0 if there was no digit
};

// Numbers of this language are decimal. Number::ScanDouble knows hexadecimal digits and words for
// infinity besides, so it gets no more of the text than a decimal number can consist of.
Reading<float> ReadFloat(std::wstring_view text) {
  std::size_t start = 0;
  while (start < text.size() && Text::IsSpace(text[start])) ++start;
  const std::size_t stop = text.find_first_not_of(L"0123456789.eE+-", start);
  const auto scanned = Number::ScanDouble(text.substr(0, stop));
  return {Number::ToFloat(scanned.value), scanned.used};
}

Reading<int> ReadInt(std::wstring_view text) {
  const auto scanned = Number::ScanInt(text);
  return {scanned.value, scanned.used};
}

float Negated(float value) { return -value; }

// The smallest number has no counterpart; the largest one is nearest.
int Negated(int value) {
  return value == std::numeric_limits<int>::min() ? std::numeric_limits<int>::max() : -value;
}

bool IsSign(wchar_t c) { return c == L'+' || c == L'-'; }

// An x in place of the number stands for 1.
bool Repeats(std::wstring_view behind) {
  return behind.starts_with(L'x') || behind.starts_with(L'X');
}

// Finds the term of a letter in the text of one position. Only the letter's first occurrence
// counts. On term_error, error tells why, with an offset into the text.
template <class T, class Reader>
term_state ScanTerm(T& value, std::wstring_view text, wchar_t letter, Reader read,
                    SyntaxError& error) {
  const auto fail = [&](Reason reason, std::size_t offset) {
    error = {.reason = reason, .letter = letter, .offset = offset};
    return term_error;
  };

  value = T{};
  const std::size_t at = text.find(letter);
  if (at == std::wstring_view::npos) return term_absent;

  const std::wstring_view behind = text.substr(at + 1);
  const bool repeat = Repeats(behind);
  const Reading<T> reading = repeat ? Reading<T>{T{1}, 1} : read(behind);
  if (reading.used == 0) return fail(Reason::number_missing, at);
  value = reading.value;

  if (at > 0) {
    const wchar_t sign = text[at - 1];
    if (!IsSign(sign)) return fail(Reason::sign_missing, at);
    if (sign == L'-') value = Negated(value);
  }

  const std::size_t end = at + 1 + reading.used;
  if (end < text.size() && !IsSign(text[end])) return fail(Reason::text_behind_term, end);
  return repeat ? term_repeat : term_value;
}

term_state ScanFloatTerm(float& value, std::wstring_view text, wchar_t letter, SyntaxError& error) {
  return ScanTerm(value, text, letter, ReadFloat, error);
}

term_state ScanIntTerm(int& value, std::wstring_view text, wchar_t letter, SyntaxError& error) {
  return ScanTerm(value, text, letter, ReadInt, error);
}

struct ParseResult {
  bool ok;
  bool harmonic_repeat;  // the position holds "Hx"
};

ParseResult ParseSpecPosition(Position& position, std::wstring_view text, SyntaxError& error) {
  constexpr ParseResult failed{.ok = false, .harmonic_repeat = false};
  const auto exclude = [&](Reason reason, wchar_t letter) {
    error = {.reason = reason, .letter = letter, .offset = text.find(letter)};
    return failed;
  };

  position.clear();
  const term_state frequency = ScanFloatTerm(position.frequency(), text, L'F', error);
  if (frequency == term_error) return failed;
  const bool has_frequency = frequency != term_absent;

  const term_state order = ScanFloatTerm(position.order(), text, L'O', error);
  if (order == term_error) return failed;

  const term_state modulation = ScanFloatTerm(position.modulation(), text, L'M', error);
  if (modulation == term_error) return failed;
  if (has_frequency && modulation != term_absent) {
    return exclude(Reason::modulation_with_frequency, L'M');
  }

  if (ScanIntTerm(position.lines(), text, L'L', error) == term_error) return failed;

  const term_state harmonic = ScanFloatTerm(position.harmonic(), text, L'H', error);
  if (harmonic == term_error) return failed;
  if (has_frequency && harmonic != term_absent) {
    return exclude(Reason::harmonic_with_frequency, L'H');
  }

  const bool has_order =
      order != term_absent || modulation != term_absent || harmonic != term_absent;
  position.domain() = static_cast<QVSpecIntervalEntry::domain_t>(
      (has_frequency ? QVSpecIntervalEntry::domain_frequency : QVSpecIntervalEntry::domain_none) |
      (has_order ? QVSpecIntervalEntry::domain_order : QVSpecIntervalEntry::domain_none));
  return {.ok = true, .harmonic_repeat = harmonic == term_repeat};
}

// Of each character of a position that could be read: whether it is part of a term.
std::vector<bool> ReadInPosition(std::wstring_view text) {
  std::vector<bool> read(text.size());
  for (const wchar_t letter : {L'F', L'O', L'M', L'L', L'H'}) {
    const std::size_t at = text.find(letter);
    if (at == std::wstring_view::npos) continue;
    const std::wstring_view behind = text.substr(at + 1);
    const bool repeat = Repeats(behind);
    const std::size_t used = repeat           ? 1
                             : letter == L'L' ? ReadInt(behind).used
                                              : ReadFloat(behind).used;
    const auto first = read.begin() + static_cast<std::ptrdiff_t>(at > 0 ? at - 1 : at);
    std::fill(first, read.begin() + static_cast<std::ptrdiff_t>(at + 1 + used), true);
  }
  return read;
}

// A comma is a decimal point that was typed on a continental keyboard.
std::wstring WithoutBlanks(const wchar_t* definition) {
  std::wstring text;
  text.reserve(std::wcslen(definition));
  for (; *definition != L'\0'; ++definition) {
    if (*definition != L' ') text += *definition == L',' ? L'.' : *definition;
  }
  return text;
}

// Where a character of the working copy stands in the definition as given.
std::size_t OffsetAsGiven(std::wstring_view definition, std::size_t offset) {
  std::size_t at = definition.find_first_not_of(L' ');
  for (; offset > 0; --offset) at = definition.find_first_not_of(L' ', at + 1);
  return at;
}

// Appends copies of the positions from first on, one harmonic further each time, while a whole copy
// fits. Returns the new count.
unsigned RepeatBlock(Position* positions, unsigned first, unsigned count, unsigned max_positions) {
  const unsigned span = count - first;
  for (unsigned factor = 2; max_positions - count >= span; ++factor, count += span) {
    for (unsigned i = 0; i < span; ++i) {
      positions[count + i] = positions[first + i];
      positions[count + i].harmonic() = static_cast<float>(factor);
    }
  }
  return count;
}

}  // namespace

Interpretation Interpret(const wchar_t* definition, Position* positions, unsigned max_positions) {
  if (definition == nullptr || *definition == L'\0') return {};

  const std::wstring text = WithoutBlanks(definition);
  std::wstring_view rest = text;
  unsigned count = 0;
  unsigned block = 0;  // index of the first repeat position
  bool in_block = false;
  while (!rest.empty() && count < max_positions) {
    const std::wstring_view piece = rest.substr(0, rest.find(L';'));
    SyntaxError error;
    const ParseResult parsed = ParseSpecPosition(positions[count], piece, error);
    if (parsed.ok && in_block && !parsed.harmonic_repeat) {
      error.reason = Reason::position_behind_repeat;
    }
    if (error.reason != Reason::none) {
      error.position = count;
      error.offset = OffsetAsGiven(definition, text.size() - rest.size() + error.offset);
      return {.count = 0, .error = error};
    }
    if (parsed.harmonic_repeat && !in_block) {
      in_block = true;
      block = count;
    }
    ++count;
    rest.remove_prefix(std::min(piece.size() + 1, rest.size()));
  }
  if (in_block) count = RepeatBlock(positions, block, count, max_positions);
  return {.count = count, .error = {}};
}

PassedOver FindPassedOver(const wchar_t* definition, unsigned max_positions) {
  std::vector<Position> positions(max_positions);
  PassedOver result;
  const auto reading = Interpret(definition, positions.data(), max_positions);
  if (definition == nullptr || reading.error.reason != Reason::none) return result;
  const std::wstring text = WithoutBlanks(definition);
  std::vector<std::size_t> offsets;  // of the characters of the text as given
  for (std::size_t i = 0; definition[i] != L'\0'; ++i) {
    if (definition[i] != L' ') offsets.push_back(i);
  }
  std::wstring_view rest = text;
  for (unsigned i = 0; !rest.empty(); ++i) {
    const std::wstring_view piece = rest.substr(0, rest.find(L';'));
    const std::size_t start = text.size() - rest.size();
    rest.remove_prefix(std::min(piece.size() + 1, rest.size()));
    if (i >= max_positions) {
      ++result.dropped;
      continue;
    }
    const std::vector<bool> read = ReadInPosition(piece);
    for (std::size_t at = 0; at < piece.size(); ++at) {
      if (read[at]) continue;
      const std::size_t offset = offsets[start + at];
      const bool goes_on = at > 0 && !read[at - 1];
      if (!goes_on) result.unread.push_back({offset, 0});
      result.unread.back().length = offset + 1 - result.unread.back().offset;
    }
  }
  return result;
}

unsigned GetSpecPositions(const wchar_t* definition, Position* positions, unsigned max_positions) {
  const Interpretation result = Interpret(definition, positions, max_positions);
  if (result.error.reason != Reason::none) {
    PrWin::Output(PrWin::category_data_base, PrWin::style_bad_line,
                  L"OrderInterpreter::GetSpecPositions(): Syntax error in order definition '%s', "
                  L"treating it as empty.\n",
                  definition);
  }
  return result.count;
}

const wchar_t* ReasonText(Reason reason) {
  switch (reason) {
    case Reason::none:
      break;
    case Reason::number_missing:
      return L"no number behind the letter";
    case Reason::sign_missing:
      return L"no sign in front of the letter";
    case Reason::text_behind_term:
      return L"the term doesn't end here";
    case Reason::modulation_with_frequency:
      return L"F and M exclude each other";
    case Reason::harmonic_with_frequency:
      return L"F and H exclude each other";
    case Reason::position_behind_repeat:
      return L"only repeat positions may follow a repeat position";
  }
  return L"";
}

}  // namespace OrderInterpreter
