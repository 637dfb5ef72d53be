// Rows, drop-downs and messages of the key editor.
#include "controls/KestrinCtrl.h"

#include <map>

#include "controls/OfferedIds.h"
#include "frame/QtParamInstance.h"
#include "frame/strings/ModuleStrings.h"

using namespace kestrin;

const unsigned int WM_KESTRINCTRL_SELCHANGED = RegisterWindowMessage(L"WM_KESTRINCTRL_SELCHANGED");

namespace {

constexpr int value_column = 1;
constexpr int id_column = 2;
constexpr int text_width = 90;
constexpr int id_width = 35;

constexpr std::int64_t first_extra_key = 100;  // below are the numbers of elements
constexpr COLORREF extra_text = RGB(100, 100, 100);
constexpr COLORREF extra_background = RGB(230, 235, 255);

using DropDown = std::map<int, CString>;

// Shared by all key editors, whose cells keep pointers to it; so it has no end.
DropDown& DropDownOf(Clavis::qOrder element) {
  static auto* const lists = new std::array<DropDown, Clavis::element_count>;
  return (*lists)[static_cast<std::size_t>(element)];
}

}  // namespace

void CKestrinCtrl::PreSubclassWindow() {
  show_ids_ = CQtParamInstance::ShowIdsInDialogs();
  InsertColumn(0, LoadModuleString(StringId::section), format_left, text_width);
  InsertColumn(value_column, LoadModuleString(StringId::value), format_left, text_width);
  if (show_ids_) InsertColumn(id_column, L"Id", format_right, id_width);
  SetExtendedStyle(GetExtendedStyle() | style_full_row_select);
  CXListCtrl::PreSubclassWindow();
}

void CKestrinCtrl::add_extra_row(std::wstring_view name, std::wstring_view text, unsigned int index,
                                 int id) {
  if (index < extra_rows_.size()) extra_rows_[index] = {CString(name), CString(text), id};
}

// --- From the key to the rows and back ---

void CKestrinCtrl::fill(const CClavis& key) {
  on_entry_chosen = [this](int row, int column) { control_modified_callback(row, column); };
  DeleteAllItems();
  shown_mask_ = visible_mask_;
  disabled_mask_ = readonly_mask_;
  if (ttnil_text_.empty()) ttnil_text_ = none_is_any_ ? L"(*)" : L"\u2014";

  for (int element = 0; element < Clavis::element_count; ++element) {
    if (!shown_mask_[static_cast<std::size_t>(element)]) continue;
    AddItem(Clavis::ElementName(static_cast<Clavis::qOrder>(element), 1), nullptr, element);
  }
  set_kestrin_combo(key, Clavis::Mode);
  const int instrument = set_kestrin_combo(key, Clavis::Instrument);
  set_kestrin_combo(key, Clavis::Channel);
  set_kestrin_combo(key, Clavis::Location);
  set_instrumentparam_combo(instrument, key.InstrParam());
  set_kestrin_combo(key, Clavis::Sensor);

  for (std::size_t i = 0; i < extra_rows_.size(); ++i) {
    const ExtraRow& extra = extra_rows_[i];
    if (extra.name.empty()) continue;
    const int row = AddItem(extra.name, nullptr, first_extra_key + static_cast<std::int64_t>(i));
    SetItemText(row, value_column, extra.text);
    show_id(row, extra.id);
    SetRowColors(row, extra_text, extra_background);
  }
  AutosizeColumnWidth(-1);
}

CClavis CKestrinCtrl::retrieve() const {
  CClavis key;
  for (int element = 0; element < Clavis::element_count; ++element) {
    const int row = get_row_from_qEntry(element);
    if (row != -1) key[static_cast<unsigned int>(element)] = GetItemData(row);
  }
  return key;
}

int CKestrinCtrl::set_kestrin_combo(const CClavis& key, Clavis::qOrder element) {
  if (get_row_from_qEntry(element) == -1) return -1;
  return set_combo(element,
                   OfferedIds::OfElement(element, {.hide_virtual_modes = hide_virtual_modes_},
                                         OfferedIds::Reading::name),
                   key[static_cast<unsigned int>(element)]);
}

int CKestrinCtrl::set_instrumentparam_combo(int instrument, int instrument_param) {
  if (get_row_from_qEntry(Clavis::Parameter) == -1) return -1;
  if (instrument == -1) return set_combo(Clavis::Parameter, {}, -1);
  return set_combo(Clavis::Parameter,
                   OfferedIds::OfInstrument(instrument, OfferedIds::Reading::name),
                   instrument_param);
}

// Renews the drop-down of an element that has a row. A wanted id that isn't offered is kept, and
// reads as unknown.
int CKestrinCtrl::set_combo(Clavis::qOrder element, const std::vector<OfferedIds::Entry>& entries,
                            int wanted) {
  DropDown& list = DropDownOf(element);
  list.clear();
  list.emplace(-1, ttnil_text_);
  for (const OfferedIds::Entry& entry : entries) {
    list.emplace_hint(list.end(), entry.id, entry.text);
  }
  if (!list.contains(wanted)) list.emplace(wanted, OfferedIds::UnknownText(element, wanted));

  const int row = get_row_from_qEntry(element);
  SetItemData(row, wanted);
  SetComboBox(row, value_column, list, wanted);
  show_id(row, wanted);
  SetEnabled(row, !disabled_mask_[static_cast<std::size_t>(element)]);
  return wanted;
}

void CKestrinCtrl::show_id(int row, int id) {
  if (show_ids_) SetItemText(row, id_column, id);
}

// --- What the user does ---

void CKestrinCtrl::control_modified_callback(int row, int column) {
  if (column != value_column) return;
  const int entry = get_qEntry_from_row(row);
  if (entry == -1) return;
  const auto element = static_cast<Clavis::qOrder>(entry);
  const int id = GetComboCurSel(row, column);
  if (element == Clavis::Instrument) set_instrumentparam_combo(id, -1);
  SetItemData(row, id);
  show_id(row, id);
  AutosizeColumnWidth(-1);
  send_change(element, id);
}

// A receiver may do anything, also close or delete this control: whether there is a second message
// is then what it was before the first.
void CKestrinCtrl::send_change(Clavis::qOrder element, int id) const {
  const CWnd* parent = GetParent();
  const CWnd* const receiver = parent ? parent : GetOwner();
  if (!receiver) return;
  const WindowHandle handle = receiver->Handle();
  const WindowHandle self = Handle();
  unsigned int second = on_change_message_;
  const auto w = static_cast<WPARAM>(element);
  ::SendMessage(handle, WM_KESTRINCTRL_SELCHANGED, w, id);
  if (::IsWindow(self)) second = on_change_message_;
  if (second != 0) ::SendMessage(handle, second, w, id);
}

// --- Rows and elements ---

int CKestrinCtrl::get_qEntry_from_row(int row) const {
  for (int element = 0; element < Clavis::element_count; ++element) {
    if (get_row_from_qEntry(element) == row) return element;
  }
  return -1;
}

int CKestrinCtrl::get_row_from_qEntry(int element) const {
  const auto position = static_cast<std::size_t>(element);
  if (!shown_mask_[position]) return -1;
  const ElementMask below((1UL << position) - 1);
  const auto row = static_cast<int>((shown_mask_ & below).count());
  return row < GetItemCount() ? row : -1;
}
