// kestrindb dump FILE [TABLE]: rows as the library dumps them.

#include <iostream>

#include "Commands.h"

namespace kestrindb {
namespace {

// The tables of a dump with their rows' lines, from the head, row and foot lines of the library.
Json TablesOf(const Json& texts) {
  Json json = Json::array();
  for (const Json& each : texts) {
    const auto& text = each.get_ref<const std::string&>();
    const std::string line = text.substr(0, text.find_last_not_of('\n') + 1);
    if (line.starts_with("<-\t")) {
      json.push_back({{"section", line.substr(3)}, {"rows", Json::array()}, {"more", false}});
    } else if (line == "... more ...") {
      json.back()["more"] = true;
    } else if (!line.starts_with("->\t")) {
      json.back()["rows"].push_back(line.substr(line.find(":\t") + 2));
    }
  }
  return json;
}

}  // namespace

// People get the lines as the library puts them out.
Json DescribeDump(const CQtParamInstance& params, const Request& request) {
  Json texts = Json::array();
  const LogSink sink([&texts](std::wstring_view text, auto, auto) { texts.push_back(Utf8(text)); });
  if (request.table != nullptr) {
    request.table->dump(params.Store(), request.limit);
  } else {
    params.DumpTables(request.limit);
  }
  return request.json ? TablesOf(texts) : texts;
}

void PrintDump(const Json& json) {
  for (const Json& text : json) std::cout << text.get_ref<const std::string&>();
}

}  // namespace kestrindb
