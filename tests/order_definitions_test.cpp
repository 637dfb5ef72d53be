// Whoever loses this loses the meaning of the order definitions in every data base: which positions
// a text stands for, which texts are refused and why. The examples of docs/order-definitions.md are
// read from the document itself.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "allocation_count.h"
#include "interfaces/text/Text.h"
#include "spec/OrderInterpreter.h"
#include "test_store.h"

namespace {

using Entry = QVSpecIntervalEntry;
using Position = Entry::Definition;
using OrderInterpreter::Reason;

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
    auto loud = positions_;
    testing_support::Log log;
    result_ = OrderInterpreter::Interpret(definition, positions_.data(), max_positions);
    EXPECT_TRUE(log.lines.empty());
    EXPECT_EQ(OrderInterpreter::GetSpecPositions(definition, loud.data(), max_positions),
              result_.count);
    std::vector<testing_support::Log::Line> expected;
    if (Error().reason != Reason::none) {
      expected.push_back(
          {L"OrderInterpreter::GetSpecPositions(): Syntax error in order definition '" +
               std::wstring(definition) + L"', treating it as empty.\n",
           8, 3});
    }
    EXPECT_EQ(log.lines, expected);
    EXPECT_LE(result_.count, max_positions);
    EXPECT_EQ(loud, positions_);
    EXPECT_EQ(std::vector(loud.begin() + max_positions, loud.end()),
              std::vector(2, Make({.f = -77})));
    positions_.resize(result_.count);
  }

  const std::vector<Position>& Positions() const { return positions_; }
  const OrderInterpreter::SyntaxError& Error() const { return result_.error; }

 private:
  std::vector<Position> positions_;
  OrderInterpreter::Interpretation result_;
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
      {L"H\t\n3", 10, {{.h = 3}}},
      {L"abc", 10, {{.domain = none}}},
      {L"H1+Z2", 10, {{.h = 1}}},
      // Signs, and a letter's second term.
      {L"-O-2", 10, {{.o = 2}}},
      {L"+-O2", 10, {{.o = -2}}},
      {L"M4-M1", 10, {{.m = 4}}},
      // Numbers.
      {L"O2.5e-1+H.5", 10, {{.o = 0.25, .h = 0.5}}},
      {L"O1e400-M1e39", 10, {{.o = INFINITY, .m = -INFINITY}}},
      {L"O1e-400", 10, {{}}},
      {L"L99999999999", 10, {{.l = INT_MAX, .domain = none}}},
      {L"-L-2147483648", 10, {{.l = INT_MAX, .domain = none}}},
      // Repeat marks.
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

TEST(OrderDefinitions, AreRefusedWithPlaceAndReason) {
  auto rows = Examples("Errors");
  std::set<std::string> told;
  for (const auto& row : rows) told.insert(row.at(4));
  EXPECT_EQ(told.size(), 6U) << "each reason that there is";
  // What the document doesn't show, also in its form.
  const std::string no_number = "no number behind the letter";
  const std::string goes_on = "the term doesn't end here";
  const std::vector<std::string> others[] = {
      {" H1 ; H + O2", "2", "H", "7", no_number},
      {"M-nan(1)", "1", "M", "1", no_number},
      {"F.", "1", "F", "1", no_number},
      {"L+ -1", "1", "L", "1", no_number},
      {"O1e", "1", "O", "3", goes_on},
      {"Hx2", "1", "H", "3", goes_on},
      {"H1\t", "1", "H", "3", goes_on},
      {"50% %s H", "1", "H", "8", no_number},
      {"M2+F1+H1", "1", "M", "1", "F and M exclude each other"},
      {"F1 + H0", "1", "H", "6", "F and H exclude each other"},
      {" Hx ; ; Hx", "2", "", "7", "only repeat positions may follow a repeat position"},
      // The terms are read in the order F, O, M, L, H, whatever the order of the text.
      {"H+L+M+O+F", "1", "F", "9", no_number},
      {"H+L1.5", "1", "L", "5", goes_on},
  };
  rows.insert(rows.end(), std::begin(others), std::end(others));
  for (const auto& row : rows) {
    const Outcome outcome(Text::FromUtf8(row.at(0)).c_str(), 6);
    const auto& error = outcome.Error();
    EXPECT_EQ(row,
              (std::vector{row[0], std::to_string(error.position + 1),
                           error.letter == 0 ? "" : Text::ToUtf8(std::wstring(1, error.letter)),
                           std::to_string(error.offset + 1),
                           Text::ToUtf8(OrderInterpreter::ReasonText(error.reason))}));
    EXPECT_TRUE(outcome.Positions().empty());
  }
}

}  // namespace
