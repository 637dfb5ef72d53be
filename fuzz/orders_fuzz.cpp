// Order definitions: what is written stays inside the array, an error points into the text, and
// blanks and the kind of decimal point change nothing.

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "Fuzz.h"
#include "interfaces/text/Text.h"
#include "spec/OrderInterpreter.h"
#include "spec/QtSpecIntervalStore.h"

using namespace kestrin;

namespace fuzz {
namespace {

using Position = QVSpecIntervalEntry::Definition;
using OrderInterpreter::Interpretation;
using OrderInterpreter::Reason;

struct Answer {
  Interpretation outcome;
  std::vector<Position> positions;
};

// The sanitizer sees a write behind the end of the vector.
Answer Ask(const std::wstring& definition, unsigned most) {
  Answer answer{{}, std::vector<Position>(most)};
  answer.outcome = OrderInterpreter::Interpret(definition.c_str(), answer.positions.data(), most);
  Require(answer.outcome.count <= most, "no more positions than there is room for");
  answer.positions.resize(answer.outcome.count);
  return answer;
}

void RequireErrorInside(const Answer& answer, const std::wstring& definition, unsigned most) {
  const OrderInterpreter::SyntaxError& error = answer.outcome.error;
  const bool failed = error.reason != Reason::none;
  Require(failed == (OrderInterpreter::ReasonText(error.reason)[0] != L'\0'),
          "each reason has a text");
  if (!failed) return;
  Require(answer.outcome.count == 0, "an error gives no positions");
  Require(error.position < most, "an error is in a position that was read");
  Require(error.offset < definition.size(), "an error points into the text");
  Require(error.letter == L'\0' || definition.find(error.letter) != std::wstring::npos,
          "an error's letter is in the text");
}

void RequireSame(const Answer& a, const Answer& b) {
  Require(a.positions == b.positions && a.outcome.error.reason == b.outcome.error.reason &&
              a.outcome.error.position == b.outcome.error.position &&
              a.outcome.error.letter == b.outcome.error.letter,
          "the spelling of a definition changes nothing");
}

}  // namespace

void Orders(Bytes bytes) {
  if (bytes.empty()) return;
  const QuietLog log;
  const unsigned most = bytes[0] % 40U;
  std::wstring definition = Text::FromUtf8(AsText(bytes.subspan(1)));
  definition.resize(std::min(definition.size(), definition.find(L'\0')));

  const Answer answer = Ask(definition, most);
  RequireErrorInside(answer, definition, most);

  std::wstring respelled;
  for (const wchar_t c : definition) {
    if (c == L' ') continue;
    respelled += c == L'.' ? L',' : c;
  }
  RequireSame(answer, Ask(respelled, most));
  respelled.insert(0, L" ");
  RequireSame(answer, Ask(respelled, most));

  std::vector<Position> positions(most);
  Require(OrderInterpreter::GetSpecPositions(definition.c_str(), positions.data(), most) ==
              answer.outcome.count,
          "both operations read the same");
  Require((log.logged().lines != 0) == (answer.outcome.error.reason != Reason::none),
          "an error is logged, and nothing else");

  std::array<QVSpecIntervalEntry, CQtSpecIntervalStore::max_orders / 2> ranges;
  Require(CQtSpecIntervalStore::Range(definition.c_str(), ranges.data(), most) <=
              std::min(most, CQtSpecIntervalStore::max_orders) / 2,
          "an interval takes two positions");
}

}  // namespace fuzz
