// kestrindb pick FILE [ID ID ID ID ID ID]: lets the user put a key together at the terminal.
//
// The screen is on the terminal itself, so the answer can be taken over:
//
//     kestrindb polygon gearbox.par $(kestrindb pick gearbox.par --bare)

#include <iostream>
#include <memory>

#include "Key.h"
#include "KeyPicker.h"
#include "Terminal.h"

namespace kestrindb {
namespace {

struct PickRequest {
  std::string file;
  std::vector<int> ids;
  std::string separator = "|";
  bool show_ids = false;
  bool bare = false;
};

// The terminal is given back at the end.
std::optional<CClavis> LetChoose(const CClavis& key) {
  KeyPicker picker(key);
  Terminal terminal;
  while (picker.IsOpen()) {
    terminal.Show(picker.Draw(terminal.Size()));
    const Terminal::Input input = terminal.Next();
    if (input.closed) picker.Close();
    if (input.key) picker.Press(*input.key);
    picker.Type(input.text);
  }
  return picker.Chosen();
}

}  // namespace

void AddPick(CommandLine& line) {
  auto request = std::make_shared<PickRequest>();
  CLI::App* command = line.Add("pick", "Choose a key at the terminal", [request, &line] {
    const DataBase data(request->file);
    data.RequireAccepted();
    CQtParamInstance::ShowIdsInDialogs(request->show_ids);
    const auto chosen = LetChoose(request->ids.empty() ? CClavis() : CClavis(request->ids.data()));
    if (!chosen) return cancelled;
    const QClavis key(*chosen);
    if (request->bare) {
      std::cout << IdsText(key) << '\n';
    } else {
      PrintKey(data.params, key, request->separator, line.json);
    }
    return data.LoadStatus();
  });
  command->add_option("FILE", request->file, "Parameter file")->required();
  AddIds(*command, request->ids);
  command->add_flag("--ids", request->show_ids, "Show the ids beside the names");
  command->add_flag("--bare", request->bare, "Print only the six ids, as other commands take them");
  AddSeparator(*command, request->separator);
}

}  // namespace kestrindb
