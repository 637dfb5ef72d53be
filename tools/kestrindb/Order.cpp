// kestrindb order TEXT: what an order definition is read as, or where and why it is refused.

#include <algorithm>
#include <cctype>
#include <iostream>

#include "Commands.h"

using namespace kestrin;

namespace kestrindb {
namespace {

using Entry = QVSpecIntervalEntry;

const char* Name(Entry::domain_t domain) {
  constexpr const char* names[] = {"none", "frequency", "order", "mixed"};
  return names[domain];
}

// Numbers for people: positions and characters count from 1.
Json ToJson(const OrderInterpreter::SyntaxError& error) {
  const std::wstring letter(error.letter == L'\0' ? 0 : 1, error.letter);
  return {{"position", error.position + 1},
          {"letter", Utf8(letter)},
          {"character", error.offset + 1},
          {"reason", Utf8(OrderInterpreter::ReasonText(error.reason))}};
}

// A control character would move what follows away from the caret.
std::string OnOneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](unsigned char c) { return std::iscntrl(c) != 0; }, ' ');
  return text;
}

void PrintError(const Json& error, const std::string& definition) {
  const auto offset = error["character"].get<std::size_t>() - 1;
  const int column = TextColumns(Wide(definition).substr(0, offset));
  const std::string letter = Cell(error, "letter");
  std::cout << OnOneLine(definition) << '\n'
            << std::string(static_cast<std::size_t>(column), ' ') << "^\nposition "
            << error["position"] << (letter.empty() ? "" : ", letter " + letter) << ", character "
            << error["character"] << ": " << Cell(error, "reason") << '\n';
}

}  // namespace

void AddPassedOver(Json& json, const std::wstring& definition) {
  const auto passed_over =
      OrderInterpreter::FindPassedOver(definition.c_str(), CQtSpecIntervalStore::max_orders);
  json["passed_over"] = Json::array();
  for (const auto& [offset, length] : passed_over.unread) {
    json["passed_over"].push_back(
        {{"character", offset + 1}, {"text", Utf8(definition.substr(offset, length))}});
  }
  json["dropped"] = passed_over.dropped;
}

void PrintPassedOver(const Json& json) {
  for (const Json& passage : json["passed_over"]) {
    std::cout << "Passed over unread: '" << OnOneLine(Cell(passage, "text")) << "' at character "
              << passage["character"] << ".\n";
  }
  if (json["dropped"] != 0) {
    std::cout << "Dropped: " << json["dropped"] << " behind the first "
              << CQtSpecIntervalStore::max_orders << " positions, for which there is room.\n";
  }
}

Answer DescribeOrder(const Request& request) {
  const std::wstring definition = Wide(request.definition);
  std::vector<Entry::Definition> positions(CQtSpecIntervalStore::max_orders);
  const auto result = OrderInterpreter::Interpret(definition.c_str(), positions.data(),
                                                  CQtSpecIntervalStore::max_orders);
  Json json;
  json["definition"] = Utf8(definition);
  if (result.error.reason != OrderInterpreter::Reason::none) {
    json["error"] = ToJson(result.error);
    return {json, data_bad};
  }
  positions.resize(result.count);
  json["positions"] = Json::array();
  for (const auto& position : positions) {
    json["positions"].push_back({{"frequency", ShortNumber(position.frequency())},
                                 {"order", ShortNumber(position.order())},
                                 {"harmonic", ShortNumber(position.harmonic())},
                                 {"modulation", ShortNumber(position.modulation())},
                                 {"lines", position.lines()},
                                 {"domain", Name(position.domain())}});
  }
  AddPassedOver(json, definition);
  json["intervals"] = OrderInterpreter::IntervalCount(result.count);
  return {json, fine};
}

void PrintOrder(const Json& json) {
  if (json.contains("error")) return PrintError(json["error"], Cell(json, "definition"));
  Json positions = json["positions"];
  int count = 0;
  for (Json& position : positions) position["position"] = ++count;
  PrintTable(positions, {{"position", "position"},
                         {"H", "harmonic", "infinite"},
                         {"M", "modulation", "infinite"},
                         {"O", "order", "infinite"},
                         {"F", "frequency", "infinite"},
                         {"L", "lines"},
                         {"domain", "domain"}});
  if (count > 0 && json["intervals"] == 0) {
    std::cout << "\nNo intervals: positions stand in pairs, or there is a single one.\n";
  } else {
    std::cout << "\nIntervals: " << json["intervals"] << '\n';
  }
  PrintPassedOver(json);
}

}  // namespace kestrindb
