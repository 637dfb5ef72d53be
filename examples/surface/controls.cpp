// The controls: the range grid, the key range control, the combo and the list of one element, the
// key editor and its dialog, and the list that they stand on.
#include "use.h"

struct Grid : CRangeSelectCtrl<7> {
  void fill() override { CRangeSelectCtrl<7>::fill(lists); }
  void l_button_down(unsigned flags, kestrin::CPoint point) override {
    CRangeSelectCtrl<7>::l_button_down(flags, point);
  }
  CString col_head_names(int column) override { return column == 0 ? L"First" : L"Other"; }

  void use_cells() {
    const std::pair<int, int> cell(1, 0);
    select_cell(cell);
    toggle_cell(cell);
    assert(!selected(cell) && get_cell({0, 0}).first == -1);
    select_col(0);
    deselect_all(0);
    set_selection_colors();
  }

  std::set<std::pair<int, CString>> lists[7] = {{{1, L"one"}, {2, L"two"}}};
};

template <std::size_t N>
void use_grid(CRangeSelectCtrl<N>& grid) {
  grid.set_mask(std::bitset<N>().set());
  grid.PreSubclassWindow();
  grid.fill_header();
  grid.fill();
  grid.full_selection();
  grid.invert_selection();
  grid.OnLButtonDown(8, {0, 0});
  grid.OnSetFocus(nullptr);
  grid.OnKillFocus(nullptr);
  std::map<int, bool> active[N];
  grid.retrieve(active);
  const CRangeSelectCtrlBasics& basics = grid;
  use(basics.selection_background, basics.selection_text, grid.mask(), grid.m_size);
}

// Ends with the process, behind whatever the library made later.
std::unique_ptr<CXListCtrl> last_to_go;

void use_list() {
  CXListCtrl list;
  list.InsertColumn(0, L"Name", 0, 90, -1);
  list.InsertColumn(1, L"Number", 1, 90, -1);
  const std::map<int, CString> choices = {{1, L"one"}};
  const int row = list.InsertItem(0, L"row", nullptr, 7);
  list.SetItemText(row, 1, 5);
  list.SetItemText(row, 1, L"text");
  list.SetItemText(row, 1, nullptr, 0xff, 0xffffff);
  list.SetItemData(row, 3);
  list.SetComboBox(row, 1, choices, 1, -1);
  list.SetCheckbox(row, 0, 1);
  list.SetRowColors(row, 0xff, 0xffffff);
  list.SetEnabled(row, false);
  list.SetHeaderAutoCheckbox(true);
  list.SetHeaderCheckedState(0, 3);
  list.SetExtendedStyle(0x60);
  list.SetBatchInsertMode(true);
  list.SetBatchInsertMode(false);
  list.AutosizeColumnWidth(-1);
  assert(list.AddItem(L"last", nullptr, 8) == 1 && list.GetItemData(row) == 3);
  use(list.GetColumnCount(), list.GetItemCount(), list.GetItemDataPtr(row), list.GetEnabled(row),
      list.GetItemText(row, 1), list.GetComboCurSel(row, 1), list.GetCheckbox(row, 0),
      list.CountCheckedItems(0, 1), list.GetParent(), list.GetOwner(), list.DestroyWindow());
  list.DeleteAllItems();
  list.DeleteAllColumns();
}

int main() {
  load();
  last_to_go = std::make_unique<CXListCtrl>();
  assert(last_to_go->Create(nullptr));
  Grid grid;
  use_grid(grid);
  grid.use_cells();
  CKestrinRangeSelectCtrl range;
  range.send_kestrin_list(std::array<std::set<std::pair<int, CString>>, 6>());
  use_grid(range);
  range.send_active_list(std::array<std::map<int, bool>, 6>());
  assert(range.col_head_names(0) == Clavis::ElementName(Clavis::Mode, 2));
  use_list();

  CClavisComboBox combo;
  combo.HideVirtualModes(false);
  combo.Fill(Clavis::Mode, 130, 0);
  combo.FillIp(1001, 10011);
  assert(combo.Retrieve() == 10011);
  CClavisListCtrl list;
  std::set<int> ids;
  list.HideVirtualModes(true);
  list.Init(Clavis::Sensor);
  list.Fill({-1}, 0);
  list.OnItemStateChange(0, 0, 1);
  assert(list.Changes() && list.Retrieve(ids) > 1u && ids == std::set<int>{-1});

  CClavis key;
  key[Clavis::Mode] = 130;
  CKestrinCtrl editor;
  editor.set_visible_mask(std::bitset<6>(0x3f));
  editor.set_readonly_mask(std::bitset<6>(1));
  editor.hide_virtual_modes(false);
  editor.set_none_is_any(true);
  editor.set_on_change_message(WM_KESTRINCTRL_SELCHANGED + 1u);
  editor.set_ttnil_text(L"any");
  editor.TtNilText() += L"!";
  editor.add_extra_row(L"Level", L"3 dB", 0, 3);
  editor.fill(key);
  use(editor.retrieve(), editor.get_visible_mask(), editor.get_readonly_mask());

  CKestrinDialog dialog, owned(nullptr);
  int mode = 0;
  dialog.on_ok = [&mode](CClavis edited) { mode = edited.Mode(); };
  dialog.set_visible_mask(std::bitset<6>(1));
  dialog.set_readonly_mask(std::bitset<6>());
  dialog.Display(key);
  assert(dialog.retrieve().Mode() == 130);
  dialog.OnBnClickedOk();
  dialog.OnBnClickedCancel();
  assert(mode == 130);
}
