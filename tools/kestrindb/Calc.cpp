// kestrindb calc FILE PARAMETER: the calculation parameters of an instrument parameter, by their
// texts in the language of the user.

#include <iostream>
#include <limits>
#include <memory>

#include "Command.h"

namespace kestrindb {
namespace {

Json DescribeCalcParameters(const CQtParamInstance& params, int parameter) {
  const int instrument = params.InstrumentParameterToInstrument(parameter);
  Json json;
  json["parameter"] = parameter;
  json["parameter_name"] = Utf8(params.InstrumentParamName(parameter));
  json["instrument"] = instrument;
  json["instrument_name"] = Utf8(params.InstrumentName(instrument));
  json["calculation_parameters"] = Json::array();
  const auto& rows = params.IpCalcParameter();
  const auto first = rows.lower_bound({parameter, std::numeric_limits<int>::min()});
  for (auto row = first; row != rows.end() && row->first[0] == parameter; ++row) {
    const int number = row->first[1];
    const QVIpCalcParameter& value = row->second;
    json["calculation_parameters"].push_back(
        {{"number", number},
         {"text", Utf8(QVIpCalcParameter::GetCalcParamEnumText(number))},
         {"value", Utf8(value.ValueText())},
         {"value_text",
          Utf8(QVIpCalcParameter::GetCalcParamEnumSubText(number, value.ValueInt()))}});
  }
  return json;
}

void PrintCalcParameters(const Json& json) {
  std::cout << "parameter   " << WithName(json["parameter"], json["parameter_name"])
            << "\ninstrument  " << WithName(json["instrument"], json["instrument_name"]) << "\n\n";
  std::vector<std::vector<std::string>> rows;
  for (const Json& row : json["calculation_parameters"]) {
    rows.push_back({row["number"].dump(), row["text"].get<std::string>(),
                    row["value"].get<std::string>(), row["value_text"].get<std::string>()});
  }
  PrintTable({"number", "calculation parameter", "value", "meaning"}, rows);
}

}  // namespace

void AddCalc(CommandLine& line) {
  auto file = std::make_shared<std::string>();
  auto parameter = std::make_shared<int>(0);
  CLI::App* command = line.Add(
      "calc", "The calculation parameters of a parameter by their texts", [file, parameter, &line] {
        const DataBase data(*file);
        data.RequireAccepted();
        if (data.params.InstrumentParam().find(*parameter) == data.params.InstrumentParam().end()) {
          throw Failure(data_bad, "There is no parameter " + std::to_string(*parameter) +
                                      "; see kestrindb names FILE parameter.");
        }
        const Json json = DescribeCalcParameters(data.params, *parameter);
        line.json ? Print(json) : PrintCalcParameters(json);
        return data.LoadStatus();
      });
  command->add_option("FILE", *file, "Parameter file")->required();
  command->add_option("PARAMETER", *parameter, "Id of a parameter")->required();
}

}  // namespace kestrindb
