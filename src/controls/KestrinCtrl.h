// The key editor: a list with a row for each element of a key, in which a drop-down offers the
// names that the element can take.
//
//     ┌───────────┬──────────────────┐
//     │ Section   │ Value            │
//     ├───────────┼──────────────────┤
//     │ test step │ Run-up          ▾│   an id that the tables don't know reads "(test step 7)"
//     │ ...       │                  │
//     │ parameter │ —               ▾│   the parameters of the instrument chosen above
//     │ Bench     │ 4                │   an extra row, which only shows
//     └───────────┴──────────────────┘
//
// What a user chooses is told to the parent, or without a parent to the owner, with
// WM_KESTRINCTRL_SELCHANGED. Another instrument sets the parameter back to none; that has no
// message of its own.
//
// The lists of the drop-downs are shared by all key editors of the process: a fill of one renews
// them for all. So all of them belong to one thread, the window's.
#pragma once

#include <array>
#include <bitset>
#include <string_view>
#include <vector>

#include "interfaces/signal/Clavis.h"
#include "interfaces/windows/XListCtrl.h"

namespace kestrin::OfferedIds {
struct Entry;
}

// The message that a choice sends: wParam is the number of the element, lParam the id, -1 for none.
KESTRIN_API extern const unsigned int WM_KESTRINCTRL_SELCHANGED;

class KESTRIN_API CKestrinCtrl : public CXListCtrl {
 public:
  // By Clavis::qOrder.
  using ElementMask = std::bitset<Clavis::element_count>;

  ~CKestrinCtrl() override = default;

  // Builds all rows anew for a key. Masks, flags and extra rows are looked at here, and only here;
  // columns are fitted here and after each choice. The list's callback is the editor's own from
  // here on: what the user chooses comes as a message.
  void fill(const CClavis& key);

  // The key as it stands in the rows. An element without a row is -1: a hidden one, and all before
  // the first fill and after the end of the window.
  CClavis retrieve() const;

  // The elements that have a row; all at first.
  void set_visible_mask(ElementMask mask) { visible_mask_ = mask; }
  ElementMask get_visible_mask() const { return visible_mask_; }

  // The elements whose row is disabled; none at first.
  void set_readonly_mask(ElementMask mask) { readonly_mask_ = mask; }
  ElementMask get_readonly_mask() const { return readonly_mask_; }

  // Leaves virtual test steps out; true at first. Hidden ones are never offered.
  void hide_virtual_modes(bool hide) { hide_virtual_modes_ = hide; }

  // Whether an element without id stands for any id; false at first. Decides how the entry -1 reads
  // as long as nobody has said it: "(*)", or else "—".
  void set_none_is_any(bool any) { none_is_any_ = any; }

  // How the entry -1 reads, from the next fill on; the parameter's from the next choice of an
  // instrument. A fill that finds an empty text puts the default in, and that stays.
  void set_ttnil_text(std::wstring_view text) { ttnil_text_ = text; }
  CString& TtNilText() { return ttnil_text_; }

  // A second message for each choice, with the same parameters; 0, the first setting, is none.
  void set_on_change_message(unsigned int message) { on_change_message_ = message; }

  // A row behind the elements, in the order of the indices 0 to 5; a higher index is ignored. Shows
  // with the next fill if the name isn't empty; the id only where ids are shown.
  void add_extra_row(std::wstring_view name, std::wstring_view text, unsigned int index,
                     int id = -1);

 protected:
  void PreSubclassWindow() override;

 private:
  // A callback of a host's would be replaced by the next fill, so an editor has no way to set one.
  using CXListCtrl::on_entry_chosen;

  struct ExtraRow {
    CString name;
    CString text;
    int id = -1;
  };

  // Both give the selected id, -1 for none and for an element without row.
  int set_kestrin_combo(const CClavis& key, Clavis::qOrder element);
  int set_instrumentparam_combo(int instrument, int instrument_param);
  int set_combo(Clavis::qOrder element, const std::vector<kestrin::OfferedIds::Entry>& entries,
                int wanted);

  void control_modified_callback(int row, int column);
  void send_change(Clavis::qOrder element, int id) const;
  void show_id(int row, int id);

  // -1 if there is none. They go by the mask of the last fill, as the rows do.
  int get_qEntry_from_row(int row) const;
  int get_row_from_qEntry(int element) const;

  bool none_is_any_ = false;
  CString ttnil_text_;
  bool show_ids_ = false;  // in a third column; read when the window comes to be
  unsigned int on_change_message_ = 0;
  bool hide_virtual_modes_ = true;
  ElementMask readonly_mask_;
  ElementMask visible_mask_ = ElementMask().set();
  std::array<ExtraRow, Clavis::element_count> extra_rows_;

  // The masks of the last fill.
  ElementMask shown_mask_;
  ElementMask disabled_mask_;
};
