// Whoever loses this loses the meaning of the order definitions in every data base: which positions
// a text stands for, which texts are refused and why. The examples of docs/order-definitions.md are
// read from the document itself.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "allocation_count.h"
#include "interfaces/PrWin.h"
#include "interfaces/Text.h"
#include "spec/OrderInterpreter.h"

namespace {

using Entry = QVSpecIntervalEntry;
using Position = Entry::Definition;
using OrderInterpreter::Reason;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr int kMaxInt = std::numeric_limits<int>::max();

struct Terms {
  float f = 0, o = 0, h = 0, m = 0;
  int l = 0;
  Entry::domain_t domain = Entry::domain_order;
};

Position Make(const Terms& terms) {
  Position p;
  p.frequency() = terms.f;
  p.order() = terms.o;
  p.harmonic() = terms.h;
  p.modulation() = terms.m;
  p.lines() = terms.l;
  p.domain() = terms.domain;
  return p;
}

// Runs a definition both ways, with the log caught, and holds the two against each other. Elements
// behind max_positions are watched.
class Outcome {
 public:
  Outcome(const wchar_t* definition, unsigned max_positions)
      : positions_(max_positions + 2, Make({.f = -77})) {
    auto quiet = positions_;
    const auto before = PrWin::SetSink([this](auto text, auto category, auto style) {
      EXPECT_EQ(category, 8);
      EXPECT_EQ(style, 3);
      log_ += text;
    });
    result_ = OrderInterpreter::Interpret(definition, quiet.data(), max_positions);
    EXPECT_TRUE(log_.empty());
    const unsigned count =
        OrderInterpreter::GetSpecPositions(definition, positions_.data(), max_positions);
    PrWin::SetSink(before);
    EXPECT_EQ(log_,
              Error().reason == Reason::none
                  ? L""
                  : L"OrderInterpreter::GetSpecPositions(): Syntax error in order definition '" +
                        std::wstring(definition) + L"', treating it as empty.\n");
    EXPECT_EQ(count, result_.count);
    EXPECT_LE(count, max_positions);
    const std::vector<Position> watched(2, Make({.f = -77}));
    EXPECT_EQ(std::vector(quiet.begin() + max_positions, quiet.end()), watched);
    EXPECT_EQ(std::vector(positions_.begin() + max_positions, positions_.end()), watched);
    positions_.resize(count);
    quiet.resize(count);
    EXPECT_EQ(quiet, positions_);
  }

  const std::vector<Position>& Positions() const { return positions_; }
  const OrderInterpreter::SyntaxError& Error() const { return result_.error; }

 private:
  std::vector<Position> positions_;
  OrderInterpreter::Interpretation result_;
  std::wstring log_;
};

TEST(OrderDefinitions, GiveTheirPositions) {
  constexpr auto none = Entry::domain_none;
  constexpr auto frequency = Entry::domain_frequency;
  struct Case {
    const wchar_t* definition;
    unsigned max_positions;
    std::vector<Terms> expected;
  };
  const Case cases[] = {
      {L"H1-O2-M3-L4;H5+O6+M7+L8",
       10,
       {{.o = -2, .h = 1, .m = -3, .l = -4}, {.o = 6, .h = 5, .m = 7, .l = 8}}},
      {L"F1-O2", 10, {{.f = 1, .o = -2, .domain = Entry::domain_mixed}}},
      {L"F5-L2", 10, {{.f = 5, .l = -2, .domain = frequency}}},
      // Nothing to read.
      {nullptr, 10, {}},
      {L"   ", 10, {}},
      {L"H1;O", 0, {}},
      // Separators.
      {L"H1;", 10, {{.h = 1}}},
      {L"H1;;H2", 10, {{.h = 1}, {.domain = none}, {.h = 2}}},
      {L"H1;H2;H", 2, {{.h = 1}, {.h = 2}}},
      // Blanks, commas, and text without a letter.
      {L" H1 , 5 ", 10, {{.h = 1.5}}},
      {L"H1 2", 10, {{.h = 12}}},
      {L"H\t\n3", 10, {{.h = 3}}},
      {L"abc", 10, {{.domain = none}}},
      {L"H1+Z2", 10, {{.h = 1}}},
      // Signs, and a letter's second term.
      {L"-O-2", 10, {{.o = 2}}},
      {L"+-O2", 10, {{.o = -2}}},
      {L"M4-M1", 10, {{.m = 4}}},
      {L"H1-Hx", 10, {{.h = 1}}},
      // Numbers.
      {L"O2.5e-1+H.5", 10, {{.o = 0.25, .h = 0.5}}},
      {L"O16777217", 10, {{.o = 16777216}}},
      {L"O1e400-M1e39", 10, {{.o = kInfinity, .m = -kInfinity}}},
      {L"O1e-400", 10, {{}}},
      {L"L99999999999", 10, {{.l = kMaxInt, .domain = none}}},
      {L"L-2147483648", 10, {{.l = -kMaxInt - 1, .domain = none}}},
      {L"-L-2147483648", 10, {{.l = kMaxInt, .domain = none}}},
      // Repeat marks.
      {L"Hx", 4, {{.h = 1}, {.h = 2}, {.h = 3}, {.h = 4}}},
      {L"-HX", 3, {{.h = -1}, {.h = 2}, {.h = 3}}},
      {L"O1;Hx", 4, {{.o = 1}, {.h = 1}, {.h = 2}, {.h = 3}}},
      {L"Hx;O1", 1, {{.h = 1}}},
      {L"Hx-O2;Hx+O2",
       5,
       {{.o = -2, .h = 1}, {.o = 2, .h = 1}, {.o = -2, .h = 2}, {.o = 2, .h = 2}}},
      {L"Ox-Mx-LX;Fx", 10, {{.o = 1, .m = -1, .l = -1}, {.f = 1, .domain = frequency}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "'" << Text::ToUtf8(c.definition ? c.definition : L"(null)")
                                    << "', room for " << c.max_positions);
    const Outcome outcome(c.definition, c.max_positions);
    EXPECT_EQ(outcome.Error().reason, Reason::none);
    std::vector<Position> expected;
    for (const Terms& terms : c.expected) expected.push_back(Make(terms));
    EXPECT_EQ(outcome.Positions(), expected);
  }
  EXPECT_EQ(Outcome(L"Hx-O2;Hx+O2", 10).Positions().size(), 10U);
  EXPECT_EQ(Outcome(L"Hx-O2;Hx+O2", 9).Positions().size(), 8U);
  EXPECT_EQ(Outcome(L"Hx", 10).Positions().back(), Make({.h = 10}));
}

// Beside the errors that the document shows.
TEST(OrderDefinitions, AreRefusedWithPlaceAndReason) {
  using Error = std::tuple<Reason, unsigned, wchar_t, std::size_t>;
  const std::tuple<const wchar_t*, Error> cases[] = {
      {L" H1 ; H + O2", {Reason::number_missing, 1, L'H', 6}},
      {L"M-nan(1)", {Reason::number_missing, 0, L'M', 0}},
      {L"F.", {Reason::number_missing, 0, L'F', 0}},
      {L"L+ -1", {Reason::number_missing, 0, L'L', 0}},
      {L"O1e", {Reason::text_behind_term, 0, L'O', 2}},
      {L"H1.2.3", {Reason::text_behind_term, 0, L'H', 4}},
      {L"Hx2", {Reason::text_behind_term, 0, L'H', 2}},
      {L"H1\t", {Reason::text_behind_term, 0, L'H', 2}},
      {L"50% %s H", {Reason::number_missing, 0, L'H', 7}},
      {L"M2+F1+H1", {Reason::modulation_with_frequency, 0, L'M', 0}},
      {L"F1 + H0", {Reason::harmonic_with_frequency, 0, L'H', 5}},
      {L" Hx ; ; Hx", {Reason::position_behind_repeat, 1, L'\0', 6}},
      // The terms are read in the order F, O, M, L, H, whatever the order of the text.
      {L"H+L+M+O+F", {Reason::number_missing, 0, L'F', 8}},
      {L"H+L1.5", {Reason::text_behind_term, 0, L'L', 4}},
  };
  for (const auto& [definition, expected] : cases) {
    const Outcome outcome(definition, 10);
    const auto& error = outcome.Error();
    EXPECT_EQ(Error(error.reason, error.position, error.letter, error.offset), expected)
        << Text::ToUtf8(definition);
    EXPECT_TRUE(outcome.Positions().empty());
  }
}

TEST(OrderDefinitions, OfAnyLengthTakeOneAllocation) {
  std::wstring many;
  for (int i = 0; i < 2500; ++i) many += L"H1 ;";
  const std::pair<std::wstring, std::size_t> cases[] = {
      {std::wstring(198, L' ') + L"Hx", 3000},  // fills a text field, counted off by blanks
      {L"H1-O0.5;" + std::wstring(183, L'z') + L"-F100;F2", 3},
      {many + L"H", 0},
      {L"O1" + std::wstring(9998, L'+'), 1},
      {many, 2500},
  };
  std::vector<Position> positions(3000);
  for (const auto& [text, count] : cases) {
    const std::size_t before = AllocationCount();
    const auto result = OrderInterpreter::Interpret(text.c_str(), positions.data(), 3000);
    EXPECT_EQ(AllocationCount() - before, 1U) << count;
    EXPECT_EQ(result.count, count);
  }
  EXPECT_EQ(positions[2499], Make({.h = 1}));
  EXPECT_EQ(Outcome((many + L"H").c_str(), 3000).Error().offset, 10000U);
}

TEST(OrderDefinitions, OfRandomTextStayInTheirRoom) {
  constexpr std::wstring_view alphabet = L"FOMLHHHxX0123459.,;;;+-+-+- eEhinfa\t\xD83D";
  std::mt19937 random(20240229);  // NOLINT(*-msc51-cpp): the same texts in every run
  const auto below = [&](std::size_t n) { return random() % n; };
  std::size_t accepted = 0;
  constexpr int rounds = 100000;
  for (int round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
    std::wstring text;
    for (std::size_t n = below(24); n > 0; --n) text += alphabet[below(alphabet.size())];
    SCOPED_TRACE(Text::ToUtf8(text));
    const auto max_positions = static_cast<unsigned>(below(7));
    const Outcome outcome(text.c_str(), max_positions);
    const auto& error = outcome.Error();
    if (error.reason == Reason::none) {
      ++accepted;
      // Blanks have no meaning, wherever they stand.
      std::wstring spaced;
      for (const wchar_t c : text) (spaced += c) += L' ';
      EXPECT_EQ(Outcome(spaced.c_str(), max_positions).Positions(), outcome.Positions());
    } else {
      EXPECT_LT(error.position, max_positions);
      ASSERT_LT(error.offset, text.size());
      // The position at fault is the one that the place lies in.
      const auto place = text.begin() + static_cast<std::ptrdiff_t>(error.offset);
      EXPECT_EQ(std::count(text.begin(), place, L';'), std::ptrdiff_t{error.position});
    }
  }
  EXPECT_GT(accepted, 10000U);
  EXPECT_LT(accepted, rounds - 10000U);
}

// ---- the document ----

// The rows of the table under a heading whose first cell is an example in backticks.
std::vector<std::vector<std::string>> Examples(const std::string& heading) {
  std::ifstream file(KESTRIN_SAMPLES "/../docs/order-definitions.md");
  std::vector<std::vector<std::string>> rows;
  bool inside = false;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("## ")) inside = line == "## " + heading;
    if (!inside || !line.starts_with("| `")) continue;
    std::istringstream cells(line.substr(1));
    auto& row = rows.emplace_back();
    for (std::string cell; std::getline(cells, cell, '|');) {
      std::erase(cell, '`');
      row.push_back(Text::ToUtf8(Text::Trim(Text::FromUtf8(cell))));
    }
  }
  return rows;
}

float Ratio(const std::string& text) {
  const auto slash = text.find('/');
  const float upper = std::stof(text);
  return slash == std::string::npos ? upper : upper / std::stof(text.substr(slash + 1));
}

TEST(OrderDefinitions, ComeOutAsTheDocumentSays) {
  const auto rows = Examples("Worked examples");
  EXPECT_GE(rows.size(), 10U);
  for (const auto& row : rows) {
    SCOPED_TRACE(row.at(0));
    const float base_order = std::stof(row.at(2));
    const float ratio = Ratio(row.at(3));
    const Outcome outcome(Text::FromUtf8(row[0]).c_str(), 6);
    const auto& positions = outcome.Positions();
    std::istringstream words(row.at(4));
    std::size_t i = 0;
    for (std::string word; words >> word;) {
      if (word == "to") continue;
      ASSERT_LT(i, positions.size());
      const Position& p = positions[i];
      const bool mixed =
          Entry(p, positions[positions.size() > 1 ? i ^ 1 : i]).domain() == Entry::domain_mixed;
      const float orders = (p.harmonic() * base_order + p.modulation()) * ratio + p.order();
      EXPECT_NEAR(
          orders * (mixed ? 30.0F : 1.0F) + p.frequency() + static_cast<float>(p.lines()) * 0.125F,
          std::stof(word), 5e-5F);
      ++i;
    }
    EXPECT_EQ(i, positions.size());
  }
}

TEST(OrderDefinitions, FailAsTheDocumentSays) {
  const auto rows = Examples("Errors");
  std::vector<bool> told(8, false);
  for (const auto& row : rows) {
    SCOPED_TRACE(row.at(0));
    const Outcome outcome(Text::FromUtf8(row[0]).c_str(), 6);
    const auto& error = outcome.Error();
    told.at(static_cast<std::size_t>(error.reason)) = true;
    const std::vector<std::string> expected = {
        row.at(0), std::to_string(error.position + 1),
        error.letter == 0 ? "" : Text::ToUtf8(std::wstring(1, error.letter)),
        std::to_string(error.offset + 1), Text::ToUtf8(OrderInterpreter::ReasonText(error.reason))};
    EXPECT_EQ(row, expected);
  }
  // Every reason there is, and no row that isn't an error.
  EXPECT_EQ(told, (std::vector<bool>{false, true, true, true, true, true, true, false}));
}

}  // namespace
