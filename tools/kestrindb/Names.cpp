// kestrindb names FILE ELEMENT: ids and names of a key element.

#include <algorithm>
#include <cctype>
#include <memory>

#include "Command.h"

namespace kestrindb {
namespace {

struct Element {
  const char* name;
  int number;
};
constexpr Element elements[] = {
    {"mode", Clavis::Mode},           {"instrument", Clavis::Instrument},
    {"channel", Clavis::Channel},     {"location", Clavis::Location},
    {"parameter", Clavis::Parameter}, {"sensor", Clavis::Sensor},
};

std::map<std::string, int> ElementNumbers() {
  std::map<std::string, int> numbers;
  for (const Element& element : elements) numbers[element.name] = element.number;
  return numbers;
}

std::vector<int> Ids(const CQtParamInstance& params, int element) {
  std::vector<int> ids;
  if (element == Clavis::Parameter) {
    for (const auto& row : params.InstrumentParam()) ids.push_back(row.first[0]);
  } else {
    for (const auto& row : params.IdNameMap(element)) ids.push_back(row.first[0]);
  }
  return ids;
}

}  // namespace

void AddNames(CommandLine& line) {
  auto file = std::make_shared<std::string>();
  auto element = std::make_shared<int>(0);
  CLI::App* command = line.Add("names", "Ids and names of a key element", [file, element, &line] {
    const DataBase data(*file);
    data.RequireAccepted();
    Json json = Json::array();
    std::vector<std::vector<std::string>> rows;
    for (const int id : Ids(data.params, *element)) {
      const std::string name = Utf8(data.params.ClavisElementName(*element, id));
      json.push_back({{"id", id}, {"name", name}});
      rows.push_back({std::to_string(id), name});
    }
    line.json ? Print(json) : PrintTable({"id", "name"}, rows);
    return data.LoadStatus();
  });
  command->add_option("FILE", *file, "Parameter file")->required();
  command
      ->add_option("ELEMENT", *element, "mode, instrument, channel, location, parameter or sensor")
      ->required()
      ->transform(CLI::CheckedTransformer(ElementNumbers(), CLI::ignore_case));
}

}  // namespace kestrindb
