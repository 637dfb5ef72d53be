// Making a dialog from its template, and the way of a click to its handler.
#include "interfaces/windows/Dialog3d.h"

#include <algorithm>
#include <utility>

using namespace kestrin;

namespace {

const DialogItem* FindItem(const DialogTemplate& layout, int id) {
  const auto found = std::find_if(layout.items.begin(), layout.items.end(),
                                  [id](const DialogItem& item) { return item.id == id; });
  return found == layout.items.end() ? nullptr : &*found;
}

}  // namespace

void kestrin::DDX_Control(CDataExchange& exchange, int item, CWnd& control) {
  const DialogItem* const place = FindItem(exchange.dialog.Template(), item);
  if (place && !place->IsButton()) control.Create(&exchange.dialog, item, place->area);
}

CDialog3d::CDialog3d(unsigned int template_id, CWnd* owner, const ResourceModule& resources)
    : template_id_(template_id), resource_module_(&resources) {
  SetOwner(owner);
  OnMessage(WM_COMMAND, [this](WPARAM w, LPARAM) { return Dispatch(w); });
}

bool CDialog3d::DisplayDialog() {
  if (IsWindow()) return false;
  const DialogTemplate* const found = resource_module_->FindDialog(template_id_);
  if (!found) return false;
  layout_ = *found;
  CWnd* const base = GetOwner();
  return Create(base && base->IsWindow() ? base : nullptr, 0,
                {0, 0, layout_.width, layout_.height});
}

void CDialog3d::PreSubclassWindow() {
  CDataExchange exchange{*this};
  DoDataExchange(exchange);
}

void CDialog3d::OnCommand(int item, std::function<void()> handler, CommandCode code) {
  commands_[CommandParam(item, code)] = std::move(handler);
}

bool CDialog3d::PressButton(int item) {
  const DialogItem* const button = FindItem(layout_, item);
  if (!IsWindow() || !button || !button->IsButton()) return false;
  ::SendMessage(Handle(), WM_COMMAND, CommandParam(item, command_clicked), 0);
  return true;
}

bool CDialog3d::Close() {
  if (!IsWindow()) return false;
  ::SendMessage(Handle(), WM_COMMAND, CommandParam(id_cancel, command_clicked), 0);
  return true;
}

LRESULT CDialog3d::Dispatch(WPARAM w) {
  const auto found = commands_.find(w);
  if (found == commands_.end() || !found->second) return 0;
  const std::function<void()> handler = found->second;  // a copy, since it may delete the dialog
  handler();
  return 1;
}
