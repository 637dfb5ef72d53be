// kestrindb key FILE ID ID ID ID ID ID: a key in all texts that the library has for it.

#include "Key.h"

#include <iostream>
#include <memory>

namespace kestrindb {
namespace {

Json DescribeKey(const CQtParamInstance& params, const QClavis& key,
                 const std::wstring& separator) {
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

void PrintTexts(const QClavis& key, const Json& json) {
  std::cout << "ids                   " << IdsText(key) << '\n';
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

std::string IdsText(const QClavis& key) {
  std::string ids;
  for (const int id : key.id) ids += (ids.empty() ? "" : " ") + std::to_string(id);
  return ids;
}

void PrintKey(const CQtParamInstance& params, const QClavis& key, const std::string& separator,
              bool as_json) {
  const Json json = DescribeKey(params, key, Wide(separator));
  as_json ? Print(json) : PrintTexts(key, json);
}

CLI::Option* AddIds(CLI::App& command, std::vector<int>& ids) {
  return command
      .add_option("ID", ids,
                  "Ids of mode, instrument, channel, location, parameter and sensor; -1: no value")
      ->expected(Clavis::element_count);
}

void AddSeparator(CLI::App& command, std::string& separator) {
  command.add_option("--separator", separator, "Separator of the nice text");
}

void AddKey(CommandLine& line) {
  auto file = std::make_shared<std::string>();
  auto ids = std::make_shared<std::vector<int>>();
  auto separator = std::make_shared<std::string>("|");
  CLI::App* command = line.Add("key", "All texts of a key", [file, ids, separator, &line] {
    const DataBase data(*file);
    data.RequireAccepted();
    PrintKey(data.params, QClavis(CClavis(ids->data())), *separator, line.json);
    return data.LoadStatus();
  });
  command->add_option("FILE", *file, "Parameter file")->required();
  AddIds(*command, *ids)->required();
  AddSeparator(*command, *separator);
}

}  // namespace kestrindb
