// kestrindb names FILE ELEMENT: ids and names of a key element.

#include "Commands.h"

namespace kestrindb {

Json DescribeNames(const CQtParamInstance& params, const Request& request) {
  Json json = Json::array();
  const auto add = [&](const auto& table) {
    for (const auto& row : table) {
      const int id = row.first[0];
      json.push_back({{"id", id}, {"name", Utf8(params.ClavisElementName(request.element, id))}});
    }
  };
  request.element == Clavis::Parameter ? add(params.InstrumentParam())
                                       : add(params.IdNameMap(request.element));
  return json;
}

void PrintNames(const Json& json) { PrintTable(json, {{"id", "id"}, {"name", "name"}}); }

}  // namespace kestrindb
