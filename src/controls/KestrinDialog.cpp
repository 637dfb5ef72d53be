// The life of the key dialog.
#include "controls/KestrinDialog.h"

#include "frame/strings/DialogTemplates.h"

using namespace kestrin;

namespace {

constexpr int key_item = 3000;

}  // namespace

CKestrinDialog::CKestrinDialog(CWnd* parent)
    : CDialog3d(DialogId::key_specification, parent, LibraryResources()) {
  OnCommand(id_ok, [this] { OnBnClickedOk(); });
  OnCommand(id_cancel, [this] { OnBnClickedCancel(); });
}

void CKestrinDialog::DoDataExchange(CDataExchange& exchange) {
  CDialog3d::DoDataExchange(exchange);
  DDX_Control(exchange, key_item, key_control_);
}

void CKestrinDialog::Display(const CClavis& key) {
  if (is_displayed()) return;
  DisplayDialog();
  key_control_.fill(key);
}

void CKestrinDialog::OnBnClickedOk() {
  if (!is_displayed()) return;
  const CClavis key = key_control_.retrieve();
  const WindowHandle self = Handle();
  const auto handler = on_ok;  // a copy, since it may delete the dialog
  if (handler) handler(key);
  if (::IsWindow(self)) DestroyWindow();
}

void CKestrinDialog::OnBnClickedCancel() { DestroyWindow(); }
