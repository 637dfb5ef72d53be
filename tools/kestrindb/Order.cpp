// kestrindb order TEXT: what an order definition is read as, or where and why it is refused.

#include <cctype>
#include <iostream>
#include <memory>
#include <vector>

#include "Command.h"

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

Json DescribeOrder(const std::wstring& definition) {
  std::vector<Entry::Definition> positions(CQtSpecIntervalStore::max_orders);
  const auto result = OrderInterpreter::Interpret(definition.c_str(), positions.data(),
                                                  CQtSpecIntervalStore::max_orders);
  Json json;
  json["definition"] = Utf8(definition);
  if (result.error.reason != OrderInterpreter::Reason::none) {
    json["error"] = ToJson(result.error);
    return json;
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
  const unsigned paired = result.count % 2 == 0 ? result.count / 2 : 0;
  json["intervals"] = result.count == 1 ? 1 : paired;
  return json;
}

// A control character would move what follows away from the caret.
std::string OnOneLine(std::string text) {
  for (char& c : text) {
    if (std::iscntrl(static_cast<unsigned char>(c)) != 0) c = ' ';
  }
  return text;
}

void PrintError(const Json& error, const std::wstring& definition) {
  const auto offset = error["character"].get<std::size_t>() - 1;
  std::string caret;
  for (const char byte : Utf8(definition.substr(0, offset))) {
    if ((static_cast<unsigned char>(byte) & 0xC0U) != 0x80U) caret += ' ';
  }
  const std::string letter = error["letter"].get<std::string>();
  std::cout << OnOneLine(Utf8(definition)) << '\n'
            << caret << "^\nposition " << error["position"]
            << (letter.empty() ? "" : ", letter " + letter) << ", character " << error["character"]
            << ": " << error["reason"].get<std::string>() << '\n';
}

void PrintPositions(const Json& json) {
  std::vector<std::vector<std::string>> rows;
  const auto number = [](const Json& value) { return value.is_null() ? "infinite" : value.dump(); };
  for (const Json& position : json["positions"]) {
    rows.push_back({std::to_string(rows.size() + 1), number(position["harmonic"]),
                    number(position["modulation"]), number(position["order"]),
                    number(position["frequency"]), position["lines"].dump(),
                    position["domain"].get<std::string>()});
  }
  PrintTable({"position", "H", "M", "O", "F", "L", "domain"}, rows);
  if (!rows.empty() && json["intervals"] == 0) {
    std::cout << "\nNo intervals: positions stand in pairs, or there is a single one.\n";
  } else {
    std::cout << "\nIntervals: " << json["intervals"] << '\n';
  }
}

}  // namespace

void AddOrder(CommandLine& line) {
  auto text = std::make_shared<std::string>();
  CLI::App* command = line.Add("order", "What an order definition is read as, or what is wrong",
                               [] { return fine; });
  command->add_option("TEXT", *text, "Order definition, such as \"H1-O0.5;H1+O0.5\"");
  // A definition may begin with a minus, and then comes as an option that nobody knows.
  command->fallthrough(false)->allow_extras();
  command->callback([command, text, &line] {
    const auto extras = command->remaining();
    const bool given = command->count("TEXT") != 0;
    if (extras.size() + (given ? 1U : 0U) != 1U) {
      throw CLI::ValidationError("TEXT", "one definition is needed; put it in quotes");
    }
    const std::wstring definition = Wide(given ? *text : extras.front());
    const Json json = DescribeOrder(definition);
    const bool well = !json.contains("error");
    if (line.json) {
      Print(json);
    } else {
      well ? PrintPositions(json) : PrintError(json["error"], definition);
    }
    line.status = well ? fine : data_bad;
  });
}

}  // namespace kestrindb
