// Draws windows with box characters into lines of text: for terminals, and for tests whose failures
// show what a user would have seen.
//
//     ┌───────────┬─────────┐     Selected cells stand between ▐ and ▌, those of a window without
//     │ Section   │ Value   │     the focus between ░ and ░, cells of a disabled row between dots.
//     ├───────────┼─────────┤     A drop-down ends with ▾, a check box is [x], [ ] or, in a
//     │ Test step │▐Coast  ▾▌     heading, [-]. A cut text ends with …
//     └───────────┴─────────┘
//
// A line's elements are UTF-16 code units like all text; what is counted in columns here are the
// columns of a fixed-width screen.
#pragma once

#include <vector>

#include "interfaces/text/Text.h"
#include "interfaces/windows/Wnd.h"

class CComboBox;
class CDialog3d;
class CXListCtrl;

namespace kestrin::TextView {

using Lines = std::vector<CString>;

// The size of a picture, borders included, in columns and lines; 0 or less is what the content
// needs, and 10,000 is the most that is drawn. What lies outside is cut, and a list scrolls so that
// `first_row` is its upper row; ▲, ▼ and ↕ in its right border say that there is more.
struct Frame {
  int width = 0;
  int height = 0;
  int first_row = 0;
};

KESTRIN_API Lines Draw(const CXListCtrl& list, Frame frame = {});

// The box with the selected entry.
KESTRIN_API Lines Draw(const CComboBox& combo, Frame frame = {});

// The dialog with the controls that stand in it. At another size than its template's, an edge of an
// item that lies in the right or the lower half keeps its distance to that border, and so a list in
// the middle grows. `first_row` is that of its lists. No lines for a dialog that was never
// displayed.
KESTRIN_API Lines Draw(const CDialog3d& dialog, Frame frame = {});

// Whichever of the three it is; no lines for another window.
KESTRIN_API Lines Draw(const CWnd& window, Frame frame = {});

// The open list of a combo, and that of a drop-down cell; no lines for a cell that is none.
KESTRIN_API Lines DrawEntries(const CComboBox& combo, Frame frame = {});
KESTRIN_API Lines DrawEntries(const CXListCtrl& list, int row, int column, Frame frame = {});

// Where the picture in that frame shows a cell of a list, its borders left out, or an item of a
// dialog, in columns and lines from the upper left corner. Empty if it doesn't show it.
KESTRIN_API CRect CellPlace(const CXListCtrl& list, int row, int column, Frame frame = {});
KESTRIN_API CRect ItemPlace(const CDialog3d& dialog, int item, Frame frame = {});

}  // namespace kestrin::TextView
