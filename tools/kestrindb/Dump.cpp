// kestrindb dump FILE [TABLE]: rows as the library dumps them.

#include <iostream>
#include <memory>
#include <optional>

#include "Command.h"

using namespace kestrin;

namespace kestrindb {
namespace {

// Takes what is logged while it lives.
class LogCapture {
 public:
  LogCapture()
      : before_(PrWin::SetSink([this](std::wstring_view text, auto, auto) { Add(text); })) {}
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;
  ~LogCapture() { PrWin::SetSink(std::move(before_)); }

  std::vector<std::string> texts;

 private:
  void Add(std::wstring_view text) { texts.push_back(Utf8(text)); }

  PrWin::Sink before_;
};

// The tables of a dump with their rows' lines, from the head, row and foot lines of the library.
Json ToJson(const std::vector<std::string>& texts) {
  Json json = Json::array();
  for (const std::string& text : texts) {
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

void AddDump(CommandLine& line) {
  auto file = std::make_shared<std::string>();
  auto section = std::make_shared<std::string>();
  auto limit = std::make_shared<int>(0);
  CLI::App* command = line.Add("dump", "The rows of one table or of all", [=, &line] {
    const TableCatalogue::TableInfo* table = nullptr;
    if (!section->empty() && (table = TableCatalogue::Find(Wide(*section))) == nullptr) {
      throw Failure(data_bad, "There is no table '" + *section + "'; see kestrindb tables.");
    }
    const DataBase data(*file);
    data.RequireAccepted();
    std::vector<std::string> texts;
    {
      LogCapture capture;
      if (table != nullptr) {
        table->dump(data.params.Store(), *limit);
      } else {
        data.params.DumpTables(*limit);
      }
      texts = std::move(capture.texts);
    }
    if (line.json) {
      Print(ToJson(texts));
    } else {
      for (const std::string& text : texts) std::cout << text;
    }
    return data.LoadStatus();
  });
  command->add_option("FILE", *file, "Parameter file")->required();
  command->add_option("TABLE", *section, "Section of one table, such as TMode");
  command
      ->add_option("--limit", *limit,
                   "End each table after the first row above this number; 0: all")
      ->check(CLI::NonNegativeNumber);
}

}  // namespace kestrindb
