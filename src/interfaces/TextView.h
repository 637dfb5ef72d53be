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

#include "interfaces/Text.h"

class CComboBox;
class CDialog3d;
class CWnd;
class CXListCtrl;

namespace TextView {

using Lines = std::vector<CString>;

// The size of a picture, borders included, in columns and lines; 0 or less is what the content
// needs. What lies outside is cut, and a list scrolls so that `first_row` is its upper row; ▲ and ▼
// in its right border say that there is more.
struct Frame {
  int width = 0;
  int height = 0;
  int first_row = 0;
};

KESTRIN_API Lines Draw(const CXListCtrl& list, Frame frame = {});

// The box with the selected entry.
KESTRIN_API Lines Draw(const CComboBox& combo, Frame frame = {});

// The dialog at the size of its template, with the controls that stand in it.
KESTRIN_API Lines Draw(const CDialog3d& dialog);

// Whichever of the three it is; no lines for another window.
KESTRIN_API Lines Draw(const CWnd& window, Frame frame = {});

// The open list of a combo, and that of a drop-down cell; no lines for a cell that is none.
KESTRIN_API Lines DrawEntries(const CComboBox& combo, Frame frame = {});
KESTRIN_API Lines DrawEntries(const CXListCtrl& list, int row, int column, Frame frame = {});

}  // namespace TextView
