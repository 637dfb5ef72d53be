// A modeless dialog in which a user edits one key.
//
//     CKestrinDialog dialog(&frame);
//     dialog.on_ok = [](const CClavis& key) { ... };
//     dialog.Display(key);
//
// The object outlives its window: after OK and Cancel it can be displayed again, and its owner
// deletes it. Use it on the window's thread only.
#pragma once

#include <functional>

#include "controls/KestrinCtrl.h"
#include "interfaces/windows/Dialog3d.h"

class KESTRIN_API CKestrinDialog : public CDialog3d {
 public:
  // Receives the key when the user presses OK, while the dialog still stands. It may delete the
  // dialog. If it is empty the key is dropped.
  std::function<void(const CClavis&)> on_ok;

  // `parent` is the window on which the dialog will stand, or null.
  explicit CKestrinDialog(CWnd* parent = nullptr);
  ~CKestrinDialog() override = default;

  // Shows the dialog with that key. While it is displayed nothing happens, neither to the dialog
  // nor to its key.
  void Display(const CClavis& key);

  bool is_displayed() const { return IsWindow(); }

  // The key as the user has it now; hidden elements are -1, and all if there is no window.
  CClavis retrieve() const { return key_control_.retrieve(); }

  // As in CKestrinCtrl, for the next Display.
  void set_visible_mask(CKestrinCtrl::ElementMask mask) { key_control_.set_visible_mask(mask); }
  void set_readonly_mask(CKestrinCtrl::ElementMask mask) { key_control_.set_readonly_mask(mask); }

  // What the two buttons do, if the dialog is displayed; the frame's close box is Cancel.
  void OnBnClickedOk();
  void OnBnClickedCancel();

 protected:
  void DoDataExchange(kestrin::CDataExchange& exchange) override;

 private:
  CKestrinCtrl key_control_;
};
