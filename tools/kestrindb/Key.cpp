// kestrindb key FILE ID ID ID ID ID ID: a key in all texts that the library has for it.

#include <iostream>
#include <memory>

#include "Command.h"

namespace kestrindb {
namespace {

Json Describe(const CQtParamInstance& params, const QClavis& key, const std::wstring& separator) {
  const auto plain = [&](CQtParamInstance::show_id_t show) {
    return Utf8(params.FormatClavisText(key, show, CQtParamInstance::ElementMask().set()));
  };
  CString field;
  Json json;
  json["key"] = key.id;
  json["names_only"] = plain(CQtParamInstance::show_id_never);
  json["with_ids"] = plain(CQtParamInstance::show_id_always);
  json["ids_without_name"] = plain(CQtParamInstance::show_id_if_no_name);
  json["nice"] = Utf8(params.FormatClavisTextNice(key, separator.c_str()));
  json["instrument_parameter"] = Utf8(params.FormatInstrParamText(field, key));
  json["location_channel"] = Utf8(params.FormatLocaChanText(field, key));
  return json;
}

void PrintAsText(const Json& json) {
  const auto print = [&json](const char* heading, const char* text) {
    std::cout << heading << json[text].get<std::string>() << '\n';
  };
  print("names only            ", "names_only");
  print("with ids              ", "with_ids");
  print("ids where no name     ", "ids_without_name");
  print("nice                  ", "nice");
  print("instrument parameter  ", "instrument_parameter");
  print("object channel        ", "location_channel");
}

}  // namespace

void AddKey(CommandLine& line) {
  auto file = std::make_shared<std::string>();
  auto ids = std::make_shared<std::vector<int>>();
  auto separator = std::make_shared<std::string>("|");
  CLI::App* command = line.Add("key", "All texts of a key", [file, ids, separator, &line] {
    const DataBase data(*file);
    data.RequireAccepted();
    const Json json = Describe(data.params, QClavis(CClavis(ids->data())), Wide(*separator));
    line.json ? Print(json) : PrintAsText(json);
    return data.LoadStatus();
  });
  command->add_option("FILE", *file, "Parameter file")->required();
  command
      ->add_option("ID", *ids,
                   "Ids of mode, instrument, channel, location, parameter and sensor; -1: no value")
      ->required()
      ->expected(Clavis::element_count);
  command->add_option("--separator", *separator, "Separator of the nice text");
}

}  // namespace kestrindb
