// Rows and check boxes of the list of one key element.
#include "controls/ClavisListCtrl.h"

#include "controls/OfferedIds.h"
#include "frame/strings/ModuleStrings.h"

using namespace kestrin;

namespace {

constexpr int column_width = 100;

}  // namespace

void CClavisListCtrl::Init(Clavis::qOrder element) {
  element_ = element;
  DeleteAllColumns();
  InsertColumn(0, LoadModuleString(StringId::all_of_element + element), format_left, column_width);
  SetExtendedStyle(style_full_row_select | style_one_click_activate);
  AutosizeColumnWidth(0);
  SetHeaderAutoCheckbox(true);
}

void CClavisListCtrl::Fill(const std::set<int>& selection, unsigned int filter) {
  const auto entries = element_ == Clavis::Parameter
                           ? OfferedIds::AllParameters()
                           : OfferedIds::OfElement(element_, {filter, hide_virtual_modes_},
                                                   OfferedIds::Reading::name_and_id);
  const bool all = selection.contains(-1);
  DeleteAllItems();
  const BatchInsertMode batch(*this);
  SetHeaderCheckedState(0, mixed);
  for (const OfferedIds::Entry& entry : entries) {
    const int row = InsertItem(GetItemCount(), entry.text);
    SetItemData(row, entry.id);
    SetCheckbox(row, 0, all || selection.contains(entry.id) ? checked : unchecked);
  }
  AutosizeColumnWidth(0);
  changes_ = false;
}

unsigned int CClavisListCtrl::Retrieve(std::set<int>& selection) {
  changes_ = false;
  selection.clear();
  if (CountCheckedItems(0, checked) == GetItemCount()) {
    selection.insert(-1);
    return static_cast<unsigned int>(GetItemCount());
  }
  for (int row = 0; row < GetItemCount(); ++row) {
    if (GetCheckbox(row, 0) == checked) selection.insert(GetItemData(row));
  }
  return static_cast<unsigned int>(selection.size());
}

void CClavisListCtrl::OnItemStateChange(int row, int sub_item, int state) {
  changes_ = true;
  CXListCtrl::OnItemStateChange(row, sub_item, state);
}
