// kestrindb pick FILE [ID ID ID ID ID ID]: lets the user put a key together at the terminal.
//
// The screen is on the terminal itself, so the answer can be taken over:
//
//     kestrindb polygon gearbox.par $(kestrindb pick gearbox.par --bare)

#include <iostream>

#include "Commands.h"
#include "KeyPicker.h"
#include "Terminal.h"

namespace kestrindb {
namespace {

// The terminal is given back at the end.
std::optional<CClavis> LetChoose(const CClavis& key) {
  KeyPicker picker(key);
  Terminal terminal;
  while (picker.IsOpen()) {
    terminal.Show(picker.Draw(terminal.Size()));
    const Terminal::Input input = terminal.Next();
    if (input.closed) picker.Close();
    if (input.key) picker.Press(*input.key);
    if (input.click) picker.Click(*input.click);
    picker.Type(input.text);
  }
  return picker.Chosen();
}

}  // namespace

// The texts of the key, or its ids alone.
Json DescribePick(const CQtParamInstance& params, const Request& request) {
  CQtParamInstance::ShowIdsInDialogs(request.show_ids);
  const auto chosen = LetChoose(request.Key());
  if (!chosen) throw Failure(cancelled, "");
  Request key = request;
  key.ids.assign(std::begin(chosen->Base().id), std::end(chosen->Base().id));
  return request.bare ? Json(key.ids) : DescribeKey(params, key);
}

void PrintPick(const Json& json) {
  if (json.is_object()) return PrintKey(json);
  std::cout << CellText(json) << '\n';
}

}  // namespace kestrindb
