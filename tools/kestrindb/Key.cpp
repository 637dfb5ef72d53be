// kestrindb key FILE ID ID ID ID ID ID: a key in all texts that the library has for it.

#include "Commands.h"

namespace kestrindb {

Json DescribeKey(const CQtParamInstance& params, const Request& request) {
  const QClavis key(request.Key());
  const auto plain = [&](CQtParamInstance::show_id_t show) {
    return Utf8(params.FormatClavisText(key, show, CQtParamInstance::ElementMask().set()));
  };
  CString field;
  Json json;
  json["key"] = key.id;
  json["names_only"] = plain(CQtParamInstance::show_id_never);
  json["with_ids"] = plain(CQtParamInstance::show_id_always);
  json["ids_without_name"] = plain(CQtParamInstance::show_id_if_no_name);
  json["nice"] = Utf8(params.FormatClavisTextNice(key, Wide(request.separator).c_str()));
  json["instrument_parameter"] = Utf8(params.FormatInstrParamText(field, key));
  json["location_channel"] = Utf8(params.FormatLocaChanText(field, key));
  return json;
}

void PrintKey(const Json& json) {
  PrintFacts(22, {{"ids", Cell(json, "key")},
                  {"names only", Cell(json, "names_only")},
                  {"with ids", Cell(json, "with_ids")},
                  {"ids where no name", Cell(json, "ids_without_name")},
                  {"nice", Cell(json, "nice")},
                  {"instrument parameter", Cell(json, "instrument_parameter")},
                  {"object channel", Cell(json, "location_channel")}});
}

}  // namespace kestrindb
