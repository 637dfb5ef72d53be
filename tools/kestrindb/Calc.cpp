// kestrindb calc FILE PARAMETER: the calculation parameters of an instrument parameter, by their
// texts in the language of the user.

#include <iostream>
#include <limits>

#include "Commands.h"

namespace kestrindb {

Json DescribeCalc(const CQtParamInstance& params, const Request& request) {
  const int parameter = *request.parameter;
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

void PrintCalc(const Json& json) {
  PrintFacts(12,
             {{"parameter", Cell(json, "parameter")}, {"instrument", Cell(json, "instrument")}});
  std::cout << '\n';
  PrintTable(json["calculation_parameters"], {{"number", "number"},
                                              {"calculation parameter", "text"},
                                              {"value", "value"},
                                              {"meaning", "value_text"}});
}

}  // namespace kestrindb
