// Rows, cells and gestures of the list. Wherever a handler of others has run, the list may be
// filled anew or gone: what comes after asks for everything again.
#include "interfaces/windows/XListCtrl.h"

#include <algorithm>

#include "interfaces/text/Number.h"

using namespace kestrin;

namespace {

// The place at which to insert the number `wanted` into `count` elements.
int Place(int wanted, int count) { return wanted < 0 || wanted > count ? count : wanted; }

}  // namespace

// --- Columns ---

const ListColumn* CXListCtrl::GetColumn(int column) const {
  if (column < 0 || column >= GetColumnCount()) return nullptr;
  return &columns_[static_cast<std::size_t>(column)];
}

int CXListCtrl::InsertColumn(int column, std::wstring_view heading, int format, int width,
                             int /*sub_item*/) {
  const int place = Place(column, GetColumnCount());
  columns_.insert(columns_.begin() + place,
                  ListColumn{CString(heading), format, std::clamp(width, 0, largest_width)});
  for (Row& row : rows_) row.cells.insert(row.cells.begin() + place, ListCell{});
  ContentChanged();
  return place;
}

void CXListCtrl::DeleteAllColumns() {
  columns_.clear();
  header_state_set_ = false;
  DeleteAllItems();
}

bool CXListCtrl::AutosizeColumnWidth(int column) {
  if (column != -1 && !GetColumn(column)) return false;
  const int first = column == -1 ? 0 : column;
  const int end = column == -1 ? GetColumnCount() : column + 1;
  for (int c = first; c < end; ++c) {
    const auto index = static_cast<std::size_t>(c);
    int content = TextColumns(columns_[index].heading) * char_width;
    if (auto_check_box_ && c == 0) content += check_box_width;
    for (const Row& row : rows_) {
      const ListCell& cell = row.cells[index];
      const int box = cell.check == -1 ? 0 : check_box_width;
      const int arrow = cell.list ? 2 * char_width : 0;
      content = std::max(content, TextColumns(cell.text) * char_width + box + arrow);
    }
    columns_[index].width = std::min(content + 2 * cell_margin, largest_width);
  }
  ContentChanged();
  return true;
}

// --- Rows ---

CXListCtrl::Row* CXListCtrl::FindRow(int row) {
  return row >= 0 && row < GetItemCount() ? &rows_[static_cast<std::size_t>(row)] : nullptr;
}

const CXListCtrl::Row* CXListCtrl::FindRow(int row) const {
  return row >= 0 && row < GetItemCount() ? &rows_[static_cast<std::size_t>(row)] : nullptr;
}

int CXListCtrl::InsertItem(int row, std::wstring_view text, void* data, std::int64_t key) {
  Row added;
  added.cells.resize(columns_.size());
  if (!added.cells.empty()) added.cells.front().text = text;
  added.data = data;
  added.key = key;
  const int place = Place(row, GetItemCount());
  rows_.insert(rows_.begin() + place, std::move(added));
  ContentChanged();
  return place;
}

int CXListCtrl::AddItem(std::wstring_view text, void* data, std::int64_t key) {
  return InsertItem(-1, text, data, key);
}

void CXListCtrl::DeleteAllItems() {
  rows_.clear();
  ContentChanged();
}

void* CXListCtrl::GetItemDataPtr(int row) const {
  const Row* const found = FindRow(row);
  return found ? found->data : nullptr;
}

std::int64_t CXListCtrl::GetItemKey(int row) const {
  const Row* const found = FindRow(row);
  return found ? found->key : 0;
}

bool CXListCtrl::SetItemData(int row, int value) {
  Row* const found = FindRow(row);
  if (!found) return false;
  found->item_data = value;
  return true;
}

int CXListCtrl::GetItemData(int row) const {
  const Row* const found = FindRow(row);
  return found ? found->item_data : 0;
}

bool CXListCtrl::SetEnabled(int row, bool enabled) {
  Row* const found = FindRow(row);
  if (!found) return false;
  found->enabled = enabled;
  ContentChanged();
  return true;
}

bool CXListCtrl::GetEnabled(int row) const {
  const Row* const found = FindRow(row);
  return found && found->enabled;
}

void CXListCtrl::SetBatchInsertMode(bool on) {
  batches_ = on ? batches_ + 1 : std::max(batches_ - 1, 0);
  ContentChanged();
}

// --- Cells ---

const ListCell* CXListCtrl::GetCell(int row, int column) const {
  const Row* const found = FindRow(row);
  return found && GetColumn(column) ? &found->cells[static_cast<std::size_t>(column)] : nullptr;
}

ListCell* CXListCtrl::FindCell(int row, int column) {
  Row* const found = FindRow(row);
  return found && GetColumn(column) ? &found->cells[static_cast<std::size_t>(column)] : nullptr;
}

bool CXListCtrl::SetItemText(int row, int column, std::wstring_view text) {
  ListCell* const cell = FindCell(row, column);
  if (!cell) return false;
  cell->text = text;
  ContentChanged();
  return true;
}

bool CXListCtrl::SetItemText(int row, int column, int number) {
  CString text;
  Number::Append(text, number);
  return SetItemText(row, column, text);
}

bool CXListCtrl::SetItemText(int row, int column, const wchar_t* text, COLORREF text_color,
                             COLORREF background_color) {
  ListCell* const cell = FindCell(row, column);
  if (!cell) return false;
  if (text) cell->text = text;
  cell->text_color = text_color;
  cell->background_color = background_color;
  ContentChanged();
  return true;
}

CString CXListCtrl::GetItemText(int row, int column) const {
  const ListCell* const cell = GetCell(row, column);
  return cell ? cell->text : CString();
}

bool CXListCtrl::SetRowColors(int row, COLORREF text_color, COLORREF background_color) {
  if (!FindRow(row)) return false;
  for (int column = 0; column < GetColumnCount(); ++column) {
    SetItemText(row, column, nullptr, text_color, background_color);
  }
  return true;
}

bool CXListCtrl::GetItemColors(int row, int column, COLORREF& text_color,
                               COLORREF& background_color) const {
  const ListCell* const cell = GetCell(row, column);
  if (!cell) return false;
  text_color = cell->text_color;
  background_color = cell->background_color;
  return true;
}

bool CXListCtrl::SetComboBox(int row, int column, const std::map<int, CString>& list, int selected,
                             int /*option*/) {
  ListCell* const cell = FindCell(row, column);
  if (!cell) return false;
  // The text is kept with the cell: the shared list may lose the entry while the cell shows it.
  const auto entry = list.find(selected);
  cell->list = &list;
  cell->selected = selected;
  cell->text = entry == list.end() ? CString() : entry->second;
  ContentChanged();
  return true;
}

int CXListCtrl::GetComboCurSel(int row, int column) const {
  const ListCell* const cell = GetCell(row, column);
  return cell && cell->list ? cell->selected : -1;
}

bool CXListCtrl::SetCheckbox(int row, int column, int state) {
  ListCell* const cell = FindCell(row, column);
  if (!cell || (state != checked && state != unchecked)) return false;
  cell->check = state;
  if (column == 0) header_state_set_ = false;
  ContentChanged();
  return true;
}

int CXListCtrl::GetCheckbox(int row, int column) const {
  const ListCell* const cell = GetCell(row, column);
  return cell ? cell->check : -1;
}

int CXListCtrl::CountCheckedItems(int column, int state) const {
  if (!GetColumn(column)) return 0;
  return static_cast<int>(std::count_if(rows_.begin(), rows_.end(), [&](const Row& row) {
    return row.cells[static_cast<std::size_t>(column)].check == state;
  }));
}

// --- The check box of a heading ---

void CXListCtrl::SetHeaderAutoCheckbox(bool on) {
  auto_check_box_ = on;
  ContentChanged();
}

bool CXListCtrl::SetHeaderCheckedState(int column, int state) {
  const bool is_state = state == unchecked || state == checked || state == mixed;
  if (!is_state || GetHeaderCheckedState(column) == -1) return false;
  header_state_ = state;
  header_state_set_ = true;
  ContentChanged();
  return true;
}

// Counted when somebody asks, so that filling a list doesn't count it once for each row.
int CXListCtrl::GetHeaderCheckedState(int column) const {
  if (!auto_check_box_ || column != 0 || columns_.empty()) return -1;
  if (header_state_set_) return header_state_;
  const int on = CountCheckedItems(column, checked);
  const int off = CountCheckedItems(column, unchecked);
  if (on == 0) return unchecked;
  return off == 0 ? checked : mixed;
}

// --- Style and geometry ---

void CXListCtrl::SetExtendedStyle(unsigned int style) {
  extended_style_ = style;
  ContentChanged();
}

int CXListCtrl::ColumnAt(int x) const {
  int left = 0;
  for (int column = 0; column < GetColumnCount(); ++column) {
    const int right = left + columns_[static_cast<std::size_t>(column)].width;
    if (x >= left && x < right) return column;
    left = right;
  }
  return -1;
}

int CXListCtrl::HitTest(CPoint point, unsigned int& flags) const {
  flags = hit_nowhere;
  const int column = ColumnAt(point.x);
  if (column == -1 || point.y < heading_height) return -1;
  const int row = (point.y - heading_height) / row_height;
  if (!FindRow(row)) return -1;
  CRect label;
  GetSubItemRect(row, column, CellArea::label, label);
  flags = label.PtInRect(point) ? hit_label : hit_state_icon;
  return row;
}

bool CXListCtrl::GetSubItemRect(int row, int column, CellArea part, CRect& rect) const {
  const ListCell* const cell = GetCell(row, column);
  if (!cell) return false;
  rect.left = 0;
  for (int before = 0; before < column; ++before) {
    rect.left += columns_[static_cast<std::size_t>(before)].width;
  }
  rect.right = rect.left + columns_[static_cast<std::size_t>(column)].width;
  rect.top = heading_height + row * row_height;
  rect.bottom = rect.top + row_height;
  if (part == CellArea::label && cell->check != -1) {
    rect.left = std::min(rect.left + cell_margin + check_box_width, rect.right);
  }
  return true;
}

// --- Gestures of the user ---

void CXListCtrl::Click(CPoint point, unsigned int flags) {
  if (!IsWindow()) return;
  if (point.y >= 0 && point.y < heading_height) {
    ClickHeading(ColumnAt(point.x));
  } else {
    OnLButtonDown(flags, point);
  }
}

bool CXListCtrl::ClickCell(int row, int column, unsigned int flags) {
  CRect area;
  if (!IsWindow() || !GetSubItemRect(row, column, CellArea::label, area)) return false;
  if (!GetEnabled(row) || area.Width() == 0) return false;
  Click({area.left + area.Width() / 2, area.top + area.Height() / 2}, flags);
  return true;
}

bool CXListCtrl::ClickHeading(int column) {
  if (!IsWindow() || !GetColumn(column)) return false;
  LRESULT result = 0;
  OnColumnClick({column}, result);
  return true;
}

bool CXListCtrl::ChooseEntry(int row, int column, int id) {
  ListCell* const cell = FindCell(row, column);
  if (!IsWindow() || !cell || !cell->list || !GetEnabled(row)) return false;
  const auto entry = cell->list->find(id);
  if (entry == cell->list->end()) return false;
  cell->selected = id;
  cell->text = entry->second;
  ContentChanged();
  const auto handler = on_entry_chosen;  // a copy, since it may delete the list
  if (handler) handler(row, column);
  return true;
}

bool CXListCtrl::ToggleCheckbox(int row, int column) {
  if (!IsWindow() || !HasCheckbox(row, column) || !GetEnabled(row)) return false;
  const int state = GetCheckbox(row, column) == checked ? unchecked : checked;
  SetCheckbox(row, column, state);
  OnItemStateChange(row, column, state);
  return true;
}

void CXListCtrl::OnLButtonDown(unsigned int /*flags*/, CPoint point) {
  const WindowHandle self = Handle();
  SetFocus();
  if (!::IsWindow(self)) return;
  unsigned int hit = 0;
  const int row = HitTest(point, hit);
  if (row != -1 && hit == hit_state_icon) ToggleCheckbox(row, ColumnAt(point.x));
}

void CXListCtrl::OnColumnClick(const HeadingClick& notification, LRESULT& result) {
  const int column = notification.column;
  if (GetHeaderCheckedState(column) == -1) return;
  result = 1;
  // Only rows that the user could switch one by one count: with all of them checked the click
  // clears, else it checks.
  const auto open = [&](int row) {
    return GetEnabled(row) && GetCheckbox(row, column) == unchecked;
  };
  int target = unchecked;
  for (int row = 0; row < GetItemCount() && target == unchecked; ++row) {
    if (open(row)) target = checked;
  }
  const WindowHandle self = Handle();
  for (int row = 0; ::IsWindow(self) && row < GetItemCount(); ++row) {
    const int state = GetCheckbox(row, column);
    if (state != -1 && state != target) ToggleCheckbox(row, column);
  }
}

// A list starts anew with its next window.
void CXListCtrl::OnDestroy() {
  DeleteAllColumns();
  auto_check_box_ = false;
  extended_style_ = 0;
  batches_ = 0;
}

void CXListCtrl::ContentChanged() {
  if (batches_ == 0) NotifyChanged();
}
