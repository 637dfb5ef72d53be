// A grid in which each column is a list of its own, and the user selects any set of entries in
// each: with clicks, with Ctrl and Shift as in a file list, or a whole column by its heading. A row
// means nothing; a column merely fills its rows from the top.
//
// Two numbers must be kept apart. An entry is one of the N positions of the mask; a column is one
// that exists, so the k-th bit that is set in the mask makes column k. Lists and headings go by
// entries, everything about cells goes by columns. With a full mask the two are equal.
//
// A cell is selected when it has the colour of a selection. There are two, one with and one without
// the keyboard focus, and both count, so that what is selected does not depend on the focus.
//
// Use it on the window's thread only.
#pragma once

#include <array>
#include <bitset>
#include <cstddef>
#include <map>
#include <set>
#include <span>
#include <utility>
#include <vector>

#include "interfaces/windows/XListCtrl.h"

class KESTRIN_API CRangeSelectCtrlBasics {
 public:
  virtual ~CRangeSelectCtrlBasics() = 0;

  // The colours of a selected cell.
  kestrin::COLORREF selection_background = GetSysColor(kestrin::color_highlight);
  kestrin::COLORREF selection_text = GetSysColor(kestrin::color_highlight_text);
};

// Made for 6 and 7 columns.
template <std::size_t N>
class KESTRIN_API CRangeSelectCtrl : public CXListCtrl, public CRangeSelectCtrlBasics {
 public:
  static constexpr std::size_t m_size = N;

  // Ids with their texts. They show in the order of the set: by id, then by text.
  using EntryList = std::set<std::pair<int, CString>>;
  using EntryLists = std::array<EntryList, N>;
  // For each id whether it is selected.
  using ActiveIds = std::map<int, bool>;
  // Row and column, -1 for none.
  using Cell = std::pair<int, int>;

  CRangeSelectCtrl() {
    anchor_.fill(-1);
    mask_.set();
  }

  // Builds all rows anew, without a selection. Runs by itself when the window comes to be.
  virtual void fill() = 0;

  // The left button went down, with `MouseFlags`: changes the selection.
  virtual void l_button_down(unsigned int flags, CPoint point);

  // The heading of an entry.
  virtual CString col_head_names(int entry) = 0;

  // Makes a column for each entry in the mask.
  void fill_header();

  // Which entries make a column, from the next fill on. A fill renews the headings when the number
  // of columns differs from before.
  void set_mask(std::bitset<N> mask) { mask_ = mask; }
  std::bitset<N> mask() const { return mask_; }

  // By column, into an array of N maps: each id with its selected flag. The empty cells of a column
  // shorter than the grid give one id -1. All maps are empty when the window is gone.
  void retrieve(std::span<ActiveIds, N> active) const;

  // Selects whatever has a text.
  void full_selection();
  // Turns the flag of whatever has a text. The anchors stay.
  void invert_selection();

  // What the window hears. The first calls l_button_down.
  void OnLButtonDown(unsigned int flags, CPoint point) override;
  void OnColumnClick(const kestrin::HeadingClick& notification, LRESULT& result) override;
  void OnSetFocus(CWnd* window) override;
  void OnKillFocus(CWnd* window) override;
  void PreSubclassWindow() override;

 protected:
  // Fills from an array of N lists, one per entry.
  void fill(std::span<const EntryList, N> lists);

  // A point on a disabled row gives the row and no column.
  Cell get_cell(CPoint point) const;
  bool selected(Cell cell) const;
  void select_cell(Cell cell);
  void toggle_cell(Cell cell);
  // Adds all cells with a text and forgets the column's anchor.
  void select_col(int column);
  void deselect_all(int column);
  void clear_anchor(int column);
  // Gives all selected cells the present colours.
  void set_selection_colors();

  // The id in a cell; -1 for an empty one and for one that doesn't exist.
  int cell_id(Cell cell) const;
  bool has_text(Cell cell) const;

 private:
  void select_range(int from, Cell to);
  // Of the columns, those that the grid itself has made.
  int column_count() const;
  void use_colors(int background, int text);

  // The ids of each row by column. The list's rows point here, so the size changes in fill alone.
  std::vector<std::array<int, N>> ids_;
  // By column: the row from which Shift selects, -1 for none.
  std::array<int, N> anchor_;
  std::bitset<N> mask_;
};

extern template class CRangeSelectCtrl<6>;
extern template class CRangeSelectCtrl<7>;
