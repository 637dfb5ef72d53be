// A list in report form: columns with headings, rows of cells. A cell is a text with two colours;
// it can carry a check box, or be a drop-down on a map of ids and texts that many cells share.
//
// The geometry is plain. Characters have one width, rows one height; the headings stand on top, the
// rows below, in pixels from the upper left corner of the whole content. A click is a point in it.
//
//       0            width 0      ...
//     0 +------------+------------+
//       | heading 0  | heading 1  |   heading_height
//       +------------+------------+
//       | row 0      |            |   row_height
//       | row 1      |            |
//
// Row and column numbers count from 0. A number that doesn't exist is no fault: operations on it do
// nothing and return false, questions give the empty answer that they name.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string_view>
#include <vector>

#include "interfaces/windows/Wnd.h"

namespace kestrin {

enum ColumnFormat : int { format_left = 0, format_right = 1 };

// What a hit test found, as bits.
enum HitFlags : unsigned int {
  hit_nowhere = 1,
  hit_icon = 2,
  hit_label = 4,
  hit_state_icon = 8,  // the check box
  hit_item = hit_icon | hit_label | hit_state_icon,
};

enum class CellArea {
  bounds,  // the whole cell
  label,   // without the check box
};

// Bits of the extended style: how a view shows the list and what it selects.
enum ListStyle : unsigned int {
  style_full_row_select = 0x20,
  style_one_click_activate = 0x40,
  style_border_select = 0x8000,
};

// The states of check boxes. The mixed one is the heading's alone.
enum CheckState : int { unchecked = 0, checked = 1, mixed = 3 };

struct ListColumn {
  CString heading;
  int format = format_left;
  int width = 0;  // pixels
};

struct ListCell {
  CString text;
  COLORREF text_color = default_color;
  COLORREF background_color = default_color;
  int check = -1;                                // -1: no check box
  const std::map<int, CString>* list = nullptr;  // of a drop-down
  int selected = -1;                             // the chosen id of a drop-down
};

// What a click on a heading tells.
struct HeadingClick {
  int column = -1;
};

}  // namespace kestrin

class KESTRIN_API CXListCtrl : public kestrin::CWnd {
 public:
  static constexpr int heading_height = 20;
  static constexpr int row_height = 16;
  static constexpr int char_width = 6;
  static constexpr int cell_margin = 6;       // at each side of a text
  static constexpr int check_box_width = 24;  // in front of the text, the margin apart
  static constexpr int largest_width = 32767;

  // Called after the user has chosen an entry in a drop-down. It may do anything, also fill the
  // list anew or delete it.
  std::function<void(int row, int column)> on_entry_chosen;

  // --- Columns ---

  int GetColumnCount() const { return static_cast<int>(columns_.size()); }
  const kestrin::ListColumn* GetColumn(int column) const;  // null on a miss

  // The number of the new column. A number beyond the last appends. Cells of rows that are there
  // are moved along. `format` is a ColumnFormat, 0 left or 1 right; widths run from 0 to
  // `largest_width`. `sub_item` -1, the only value in use: a column shows its own cells.
  int InsertColumn(int column, std::wstring_view heading, int format, int width, int sub_item = -1);

  // With the columns go the rows, which would have nothing to show.
  void DeleteAllColumns();

  // Fits a column to its heading and its cells; -1 fits all.
  bool AutosizeColumnWidth(int column);

  // --- Rows ---

  int GetItemCount() const { return static_cast<int>(rows_.size()); }

  // The number of the new row. A number beyond the last, or below 0, appends. `text` goes into
  // column 0, `data` is a pointer that the list hands back and never follows, `key` tells a view
  // the row again after the list was filled anew.
  int InsertItem(int row, std::wstring_view text, void* data = nullptr, std::int64_t key = 0);
  int AddItem(std::wstring_view text, void* data = nullptr, std::int64_t key = 0);
  void DeleteAllItems();

  void* GetItemDataPtr(int row) const;     // null on a miss
  std::int64_t GetItemKey(int row) const;  // 0 on a miss

  // An integer of the row, 0 in a new one and on a miss.
  bool SetItemData(int row, int value);
  int GetItemData(int row) const;

  // A disabled row takes no input. True for a new row, false on a miss.
  bool SetEnabled(int row, bool enabled);
  bool GetEnabled(int row) const;

  // Brackets a run of insertions: views hear nothing of it before the end. Brackets nest. Where
  // others' code runs in between, take a BatchInsertMode (below).
  void SetBatchInsertMode(bool on);

  // --- Cells ---

  const kestrin::ListCell* GetCell(int row, int column) const;  // null on a miss

  bool SetItemText(int row, int column, std::wstring_view text);
  bool SetItemText(int row, int column, int number);
  // With colours. A null `text` leaves the text as it is.
  bool SetItemText(int row, int column, const wchar_t* text, COLORREF text_color,
                   COLORREF background_color);
  CString GetItemText(int row, int column) const;
  bool SetRowColors(int row, COLORREF text_color, COLORREF background_color);
  bool GetItemColors(int row, int column, COLORREF& text_color, COLORREF& background_color) const;

  // Makes the cell a drop-down on `list`, which must stay where it is as long as the row; what it
  // holds may change. `selected` is the id of the entry to show; one that the list lacks shows an
  // empty text. `option` -1, the only value in use.
  bool SetComboBox(int row, int column, const std::map<int, CString>& list, int selected,
                   int option = -1);
  bool SetComboBox(int, int, const std::map<int, CString>&&, int, int = -1) = delete;
  int GetComboCurSel(int row, int column) const;  // the chosen id; -1 on a miss

  // Gives the cell a check box in that state, `checked` or `kestrin::unchecked`.
  bool SetCheckbox(int row, int column, int state);
  int GetCheckbox(int row, int column) const;  // -1 without a check box
  int CountCheckedItems(int column, int state) const;

  // --- The check box of a heading ---

  // Gives column 0 a check box that the list keeps by itself: it follows the rows, and the user's
  // click on the heading carries over to them.
  void SetHeaderAutoCheckbox(bool on);
  // Holds until a check box of the column changes or comes. False for a state that isn't one.
  bool SetHeaderCheckedState(int column, int state);
  // `checked` if all check boxes of the rows are checked, `kestrin::unchecked` if none is, else
  // `mixed`. -1 for a column without this check box.
  int GetHeaderCheckedState(int column) const;

  // --- Style and geometry ---

  void SetExtendedStyle(unsigned int style);
  unsigned int GetExtendedStyle() const { return extended_style_; }

  // The row at a point, or -1. Disabled rows are found too.
  int HitTest(CPoint point, unsigned int& flags) const;
  bool GetSubItemRect(int row, int column, kestrin::CellArea part, CRect& rect) const;

  // --- Gestures of the user ---

  // Presses the left button at a point, with `MouseFlags`. On a heading the same as ClickHeading.
  void Click(CPoint point, unsigned int flags = kestrin::mouse_left);
  // As Click, in the middle of a cell's text. False, and nothing done, if there is no such cell,
  // its row is disabled or its text has no room.
  bool ClickCell(int row, int column, unsigned int flags = kestrin::mouse_left);
  bool ClickHeading(int column);
  // Both refuse a disabled row and a cell without that control, and the first an id that is not in
  // the drop-down's list.
  bool ChooseEntry(int row, int column, int id);
  bool ToggleCheckbox(int row, int column);

 protected:
  // The list's own handling: takes the focus, then switches the check box at the point.
  virtual void OnLButtonDown(unsigned int flags, CPoint point);
  // The list's own handling: carries the heading's check box over to all enabled rows and sets
  // `result`, which is 0 before, to 1 if the heading has one.
  virtual void OnColumnClick(const kestrin::HeadingClick& notification, LRESULT& result);
  // The user has changed a check box; `sub_item` is its column.
  virtual void OnItemStateChange(int /*row*/, int /*sub_item*/, int /*state*/) {}

  void OnDestroy() override;

 private:
  struct Row {
    std::vector<kestrin::ListCell> cells;
    void* data = nullptr;
    std::int64_t key = 0;
    int item_data = 0;
    bool enabled = true;
  };

  Row* FindRow(int row);
  const Row* FindRow(int row) const;
  kestrin::ListCell* FindCell(int row, int column);
  bool HasCheckbox(int row, int column) const { return GetCheckbox(row, column) != -1; }
  int ColumnAt(int x) const;
  void ContentChanged();

  std::vector<kestrin::ListColumn> columns_;
  std::vector<Row> rows_;
  unsigned int extended_style_ = 0;
  int batches_ = 0;  // that are open
  bool auto_check_box_ = false;
  int header_state_ = kestrin::unchecked;
  bool header_state_set_ = false;  // by SetHeaderCheckedState, and not overtaken by the rows yet
};

namespace kestrin {

// Batch insert mode to the end of a scope, also where that is left by an exception. What a view
// throws at the end is dropped.
class BatchInsertMode {
 public:
  explicit BatchInsertMode(CXListCtrl& list) : list_(list) { list_.SetBatchInsertMode(true); }
  BatchInsertMode(const BatchInsertMode&) = delete;
  BatchInsertMode& operator=(const BatchInsertMode&) = delete;
  ~BatchInsertMode() {
    try {
      list_.SetBatchInsertMode(false);
    } catch (...) {  // NOLINT(bugprone-empty-catch): the mode has ended before the view is told
    }
  }

 private:
  CXListCtrl& list_;
};

}  // namespace kestrin
