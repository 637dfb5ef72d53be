// Modeless dialogs made from a template.
//
// A template lists buttons and places for controls, in dialog units: a quarter of a character's
// width, an eighth of its height. Buttons live in the dialog itself; a place becomes a control when
// DoDataExchange binds a control object to it. All dialogs are popups with a caption and a system
// menu, and their lists stand in report form within a border; so no template says so. Templates
// come from a ResourceModule, which is asked each time a dialog is shown, so that a change of the
// user's language is seen the next time.
#pragma once

#include <functional>
#include <map>
#include <vector>

#include "interfaces/windows/Wnd.h"

class CDialog3d;

namespace kestrin {

struct DialogItem {
  enum class Kind { button, default_button, list, combo };

  int id = 0;
  Kind kind = Kind::button;
  CRect area;  // dialog units, from the upper left corner of the dialog's inside
  CString text;

  bool IsButton() const { return kind == Kind::button || kind == Kind::default_button; }
};

struct DialogTemplate {
  CString title;
  int width = 0;  // dialog units
  int height = 0;
  CString font;
  int font_size = 0;  // points
  std::vector<DialogItem> items;
};

class KESTRIN_API ResourceModule {
 public:
  virtual ~ResourceModule() = default;
  // The template in the user's language. Null if there is none; else it stays until the next call.
  virtual const DialogTemplate* FindDialog(unsigned int template_id) const = 0;
};

// What DoDataExchange works on.
struct CDataExchange {
  CDialog3d& dialog;
};

// Gives `control` its window at the place of that item; it runs the control's PreSubclassWindow. An
// item that the template lacks, and a control that has a window already, are left alone.
KESTRIN_API void DDX_Control(CDataExchange& exchange, int item, CWnd& control);

}  // namespace kestrin

class KESTRIN_API CDialog3d : public kestrin::CWnd {
 public:
  // The buttons that every dialog has. The close box of the frame is the second.
  static constexpr int id_ok = 1;
  static constexpr int id_cancel = 2;

  // `owner` is the window on which the dialog will stand, or null; it needs no window before
  // DisplayDialog, and the dialog goes when it goes. `resources` must outlive the dialog.
  CDialog3d(unsigned int template_id, kestrin::CWnd* owner,
            const kestrin::ResourceModule& resources);

  // Makes the window and its items, and returns at once. False if the dialog is displayed already
  // or there is no such template. An owner without a window counts as none.
  bool DisplayDialog();

  // Gesture: the user presses a button. Its handler may delete the dialog. False if the dialog has
  // no window or no such button.
  bool PressButton(int item);
  // Gesture: the user closes the dialog by its frame, which is the same as Cancel.
  bool Close();

  // For views: what the dialog was made from; empty before the first display.
  const kestrin::DialogTemplate& Template() const { return layout_; }

 protected:
  // Binds controls to items: one DDX_Control for each.
  virtual void DoDataExchange(kestrin::CDataExchange& /*exchange*/) {}

  // From now on `handler` hears what the user does with that item: the clicks on a button, or with
  // another code what a control in the dialog reports.
  void OnCommand(int item, std::function<void()> handler,
                 kestrin::CommandCode code = kestrin::command_clicked);

  void PreSubclassWindow() override;

 private:
  LRESULT Dispatch(WPARAM w);

  unsigned int template_id_;
  const kestrin::ResourceModule* resource_module_;
  kestrin::DialogTemplate layout_;
  std::map<WPARAM, std::function<void()>>
      commands_;  // by item and code, as WM_COMMAND carries them
};
