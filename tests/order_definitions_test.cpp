// What docs/order-definitions.md says of order definitions comes true.
#include "spec/OrderInterpreter.h"
#include "support.h"

namespace {

using Entry = QVSpecIntervalEntry;
using Position = Entry::Definition;

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

TEST(OrderDefinitions, ComeOutAsTheDocumentSays) {
  const auto rows = Examples("Worked examples");
  EXPECT_GE(rows.size(), 10U);
  for (const auto& row : rows) {
    SCOPED_TRACE(row.at(0));
    const float base_order = std::stof(row.at(2));
    const float ratio = row.at(3) == "1" ? 1 : 1 / std::stof(row[3].substr(2));
    std::vector<Position> positions(6);
    const std::wstring definition = Text::FromUtf8(row[0]);
    positions.resize(OrderInterpreter::GetSpecPositions(definition.c_str(), positions.data(), 6));
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

TEST(OrderDefinitions, AreRefusedAsTheDocumentSays) {
  std::set<std::string> told;
  for (const auto& row : Examples("Errors")) {
    told.insert(row.at(4));
    std::vector<Position> positions(6);
    const std::wstring definition = Text::FromUtf8(row[0]);
    const auto error = OrderInterpreter::Interpret(definition.c_str(), positions.data(), 6).error;
    const std::string letter(error.letter == 0 ? 0 : 1, static_cast<char>(error.letter));
    const std::string reason = Text::ToUtf8(OrderInterpreter::ReasonText(error.reason));
    EXPECT_EQ(row, (std::vector{row[0], std::to_string(error.position + 1), letter,
                                std::to_string(error.offset + 1), reason}));
  }
  EXPECT_EQ(told.size(), 6U) << "each reason that there is";
}

}  // namespace
