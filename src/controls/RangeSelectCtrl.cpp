// The grid's cells and its selection. Columns know nothing of each other.
#include "controls/RangeSelectCtrl.h"

#include <algorithm>

using namespace kestrin;

namespace {

constexpr int column_width = 90;

}  // namespace

CRangeSelectCtrlBasics::~CRangeSelectCtrlBasics() = default;

// --- Rows and columns ---

template <std::size_t N>
void CRangeSelectCtrl<N>::fill_header() {
  for (std::size_t entry = 0; entry < N; ++entry) {
    if (!mask_[entry]) continue;
    InsertColumn(GetColumnCount(), col_head_names(static_cast<int>(entry)), format_left,
                 column_width);
  }
}

template <std::size_t N>
void CRangeSelectCtrl<N>::fill(std::span<const EntryList, N> lists) {
  const BatchInsertMode batch(*this);
  if (static_cast<int>(mask_.count()) != GetColumnCount()) {
    DeleteAllColumns();
    fill_header();
  } else {
    DeleteAllItems();
  }

  std::size_t row_count = 0;
  for (std::size_t entry = 0; entry < N; ++entry) {
    if (mask_[entry]) row_count = std::max(row_count, lists[entry].size());
  }
  std::array<int, N> no_ids;
  no_ids.fill(-1);
  ids_.assign(row_count, no_ids);
  for (std::array<int, N>& row : ids_) AddItem({}, row.data());

  std::size_t column = 0;
  for (std::size_t entry = 0; entry < N; ++entry) {
    if (!mask_[entry]) continue;
    std::size_t row = 0;
    for (const auto& [id, text] : lists[entry]) {
      ids_[row][column] = id;
      SetItemText(static_cast<int>(row), static_cast<int>(column), text);
      ++row;
    }
    ++column;
  }
}

template <std::size_t N>
int CRangeSelectCtrl<N>::cell_id(Cell cell) const {
  const auto [row, column] = cell;
  const auto* const ids = static_cast<const int*>(GetItemDataPtr(row));
  return ids && column >= 0 && column < column_count() ? ids[column] : -1;
}

template <std::size_t N>
bool CRangeSelectCtrl<N>::has_text(Cell cell) const {
  const ListCell* const found = GetCell(cell.first, cell.second);
  return found && !found->text.empty();
}

template <std::size_t N>
int CRangeSelectCtrl<N>::column_count() const {
  return std::min(GetColumnCount(), static_cast<int>(N));
}

template <std::size_t N>
void CRangeSelectCtrl<N>::retrieve(std::span<ActiveIds, N> active) const {
  for (ActiveIds& column : active) column.clear();
  if (!IsWindow()) return;
  for (int row = 0; row < GetItemCount(); ++row) {
    for (int column = 0; column < column_count(); ++column) {
      const Cell cell{row, column};
      active[static_cast<std::size_t>(column)].emplace(cell_id(cell), selected(cell));
    }
  }
}

template <std::size_t N>
auto CRangeSelectCtrl<N>::get_cell(CPoint point) const -> Cell {
  unsigned int flags = 0;
  const int row = HitTest(point, flags);
  if (row == -1 || !(flags & hit_item)) return {-1, -1};
  if (!GetEnabled(row)) return {row, -1};
  for (int column = 0; column < GetColumnCount(); ++column) {
    CRect area;
    if (GetSubItemRect(row, column, CellArea::bounds, area) && area.PtInRect(point)) {
      return {row, column};
    }
  }
  return {row, -1};
}

// --- Selection of cells ---

template <std::size_t N>
bool CRangeSelectCtrl<N>::selected(Cell cell) const {
  COLORREF text = default_color;
  COLORREF background = default_color;
  if (!GetItemColors(cell.first, cell.second, text, background)) return false;
  return background == GetSysColor(color_highlight) || background == GetSysColor(color_face);
}

template <std::size_t N>
void CRangeSelectCtrl<N>::select_cell(Cell cell) {
  SetItemText(cell.first, cell.second, nullptr, selection_text, selection_background);
}

template <std::size_t N>
void CRangeSelectCtrl<N>::toggle_cell(Cell cell) {
  if (!selected(cell)) return select_cell(cell);
  SetItemText(cell.first, cell.second, nullptr, default_color, default_color);
}

template <std::size_t N>
void CRangeSelectCtrl<N>::select_col(int column) {
  for (int row = 0; row < GetItemCount(); ++row) {
    if (has_text({row, column})) select_cell({row, column});
  }
  clear_anchor(column);
}

template <std::size_t N>
void CRangeSelectCtrl<N>::deselect_all(int column) {
  for (int row = 0; row < GetItemCount(); ++row) {
    SetItemText(row, column, nullptr, default_color, default_color);
  }
}

template <std::size_t N>
void CRangeSelectCtrl<N>::clear_anchor(int column) {
  if (column >= 0 && static_cast<std::size_t>(column) < N) {
    anchor_[static_cast<std::size_t>(column)] = -1;
  }
}

// All of its rows, also those without an entry: an anchor older than the last fill can lie beyond
// the entries, and even beyond the rows.
template <std::size_t N>
void CRangeSelectCtrl<N>::select_range(int from, Cell to) {
  const int first = std::min(from, to.first);
  const int last = std::min(std::max(from, to.first), GetItemCount() - 1);
  for (int row = first; row <= last; ++row) {
    select_cell({row, to.second});
  }
}

template <std::size_t N>
void CRangeSelectCtrl<N>::full_selection() {
  for (int column = 0; column < GetColumnCount(); ++column) select_col(column);
}

template <std::size_t N>
void CRangeSelectCtrl<N>::invert_selection() {
  for (int row = 0; row < GetItemCount(); ++row) {
    for (int column = 0; column < GetColumnCount(); ++column) {
      if (has_text({row, column})) toggle_cell({row, column});
    }
  }
}

// --- Events ---

template <std::size_t N>
void CRangeSelectCtrl<N>::l_button_down(unsigned int flags, CPoint point) {
  const Cell cell = get_cell(point);
  const int column = cell.second;
  if (column >= column_count() || !has_text(cell)) return;
  int& anchor = anchor_[static_cast<std::size_t>(column)];
  if (flags & mouse_control) {
    toggle_cell(cell);
    anchor = cell.first;
    return;
  }
  deselect_all(column);
  if (flags & mouse_shift && anchor != -1) {
    select_range(anchor, cell);
  } else {
    select_cell(cell);
    anchor = cell.first;
  }
}

template <std::size_t N>
void CRangeSelectCtrl<N>::OnLButtonDown(unsigned int flags, CPoint point) {
  l_button_down(flags, point);
  CXListCtrl::OnLButtonDown(flags, point);
}

template <std::size_t N>
void CRangeSelectCtrl<N>::OnColumnClick(const HeadingClick& notification, LRESULT& result) {
  if (notification.column < column_count()) select_col(notification.column);
  CXListCtrl::OnColumnClick(notification, result);
}

template <std::size_t N>
void CRangeSelectCtrl<N>::set_selection_colors() {
  for (int row = 0; row < GetItemCount(); ++row) {
    for (int column = 0; column < GetColumnCount(); ++column) {
      if (selected({row, column})) select_cell({row, column});
    }
  }
}

template <std::size_t N>
void CRangeSelectCtrl<N>::use_colors(int background, int text) {
  selection_background = GetSysColor(background);
  selection_text = GetSysColor(text);
  set_selection_colors();
}

template <std::size_t N>
void CRangeSelectCtrl<N>::OnSetFocus(CWnd* window) {
  use_colors(color_highlight, color_highlight_text);
  CXListCtrl::OnSetFocus(window);
}

template <std::size_t N>
void CRangeSelectCtrl<N>::OnKillFocus(CWnd* window) {
  use_colors(color_face, color_window_text);
  CXListCtrl::OnKillFocus(window);
}

template <std::size_t N>
void CRangeSelectCtrl<N>::PreSubclassWindow() {
  fill_header();
  fill();
  anchor_.fill(-1);
  AutosizeColumnWidth(-1);
  CXListCtrl::PreSubclassWindow();
  // A selection is a cell and not a row.
  SetExtendedStyle((GetExtendedStyle() | style_border_select) & ~style_full_row_select);
}

template class CRangeSelectCtrl<6>;
template class CRangeSelectCtrl<7>;
