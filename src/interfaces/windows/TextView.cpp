// Everything here is made of two things: a text brought to an exact width, and a box around lines.
#include "interfaces/windows/TextView.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "interfaces/windows/ComboBoxX.h"
#include "interfaces/windows/Dialog3d.h"
#include "interfaces/windows/XListCtrl.h"

using namespace kestrin;

namespace {

using TextView::Frame;
using TextView::Lines;

// As many whole characters as go into `columns`. Control characters become blanks, so that a name
// with a line end in it doesn't tear the picture.
CString Cut(std::wstring_view text, int columns) {
  CString out;
  while (!text.empty()) {
    const std::wstring_view rest = text;
    const char32_t c = Text::TakeCharacter(text);
    columns -= TextColumns(rest.substr(0, rest.size() - text.size()));
    if (columns < 0) break;
    const bool control = c < U' ' || (c >= 0x7F && c < 0xA0);
    Text::AppendCharacter(out, control ? U' ' : c);
  }
  return out;
}

CString Repeat(std::wstring_view part, int count) {
  CString out;
  for (int i = 0; i < count; ++i) out += part;
  return out;
}

// The text in exactly `columns` columns.
CString Fit(std::wstring_view text, int columns, int format = format_left) {
  columns = std::max(columns, 0);
  CString out;
  if (TextColumns(text) <= columns) {
    out = Cut(text, columns);
  } else if (columns > 0) {
    out = Cut(text, columns - 1) + L"…";
  }
  const CString blanks(static_cast<std::size_t>(columns - TextColumns(out)), L' ');
  return format == format_right ? blanks + out : out + blanks;
}

// No wish for a picture is larger than that, in columns and lines.
constexpr int largest_size = 10'000;

Frame Limited(Frame frame) {
  return {std::min(frame.width, largest_size), std::min(frame.height, largest_size),
          frame.first_row};
}

// What of a picture lies in the frame.
Lines Clip(Lines picture, Frame frame) {
  const auto height = static_cast<std::size_t>(std::max(frame.height, 0));
  if (height > 0 && picture.size() > height) picture.resize(height);
  if (frame.width <= 0) return picture;
  for (CString& line : picture) {
    if (TextColumns(line) <= frame.width) continue;
    line = Cut(line, frame.width);
    line.append(static_cast<std::size_t>(frame.width - TextColumns(line)), L' ');
  }
  return picture;
}

// A horizontal line of a box with columns of these widths.
CString Rule(const std::vector<int>& widths, wchar_t left, wchar_t cross, wchar_t right) {
  CString out(1, left);
  for (std::size_t i = 0; i < widths.size(); ++i) {
    if (i > 0) out += cross;
    out += Repeat(L"─", widths[i]);
  }
  return out + right;
}

// --- Lists ---

const wchar_t* CheckMark(int state) {
  switch (state) {
    case checked:
      return L"[x] ";
    case unchecked:
      return L"[ ] ";
    case mixed:
      return L"[-] ";
    default:
      return L"";
  }
}

struct Edges {
  wchar_t left;
  wchar_t right;
};

Edges CellEdges(const ListCell& cell, bool enabled) {
  if (!enabled) return {L'·', L'·'};
  if (cell.background_color == GetSysColor(color_highlight)) return {L'▐', L'▌'};
  if (cell.background_color == GetSysColor(color_face)) return {L'░', L'░'};
  return {L' ', L' '};
}

CString DrawCell(const ListCell& cell, bool enabled, const ListColumn& column, int width) {
  if (width < 2) return Repeat(L" ", width);
  const int arrow = cell.list && width > 4 ? 2 : 0;
  CString content = Fit(CheckMark(cell.check) + cell.text, width - 2 - arrow, column.format);
  if (arrow) content += L" ▾";
  const Edges edges = CellEdges(cell, enabled);
  return edges.left + content + edges.right;
}

// The widths of the columns that go into the frame; the last of them takes what is left over.
std::vector<int> ColumnWidths(const CXListCtrl& list, Frame frame) {
  std::vector<int> widths;
  int room = frame.width > 0 ? std::max(frame.width - 2, 1) : 0;
  for (int column = 0; column < list.GetColumnCount(); ++column) {
    int width = std::max(list.GetColumn(column)->width / CXListCtrl::char_width, 2);
    if (frame.width > 0) {
      if (room <= 0) break;
      width = std::min(width, room);
      room -= width + 1;  // with the line behind it
    }
    widths.push_back(width);
  }
  if (widths.empty()) return {frame.width > 4 ? frame.width - 2 : 2};
  if (frame.width > 0) widths.back() += room + 1;
  return widths;
}

CString DrawHeading(const CXListCtrl& list, const std::vector<int>& widths) {
  CString line;
  for (std::size_t i = 0; i < widths.size(); ++i) {
    const auto column = static_cast<int>(i);
    const ListColumn* const head = list.GetColumn(column);
    line += L'│';
    if (!head || widths[i] < 2) {
      line += Repeat(L" ", widths[i]);
      continue;
    }
    const CString text = CheckMark(list.GetHeaderCheckedState(column)) + head->heading;
    line += L' ' + Fit(text, widths[i] - 2, head->format) + L' ';
  }
  return line + L'│';
}

CString DrawRow(const CXListCtrl& list, int row, const std::vector<int>& widths) {
  CString line;
  for (std::size_t i = 0; i < widths.size(); ++i) {
    const auto column = static_cast<int>(i);
    const ListCell* const cell = list.GetCell(row, column);
    line += L'│';
    line += cell ? DrawCell(*cell, list.GetEnabled(row), *list.GetColumn(column), widths[i])
                 : Repeat(L" ", widths[i]);
  }
  return line + L'│';
}

// Around the rows of a list: the upper border, the headings, the line below them, the lower border.
constexpr int lines_above_rows = 3;
constexpr int lines_around_rows = lines_above_rows + 1;

// The rows to show: the frame's, but never past the last screenful.
std::pair<int, int> VisibleRows(int count, Frame frame, int around) {
  const int lines = frame.height > 0 ? std::max(frame.height - around, 0) : count;
  const int first = std::clamp(frame.first_row, 0, std::max(count - lines, 0));
  return {first, lines};
}

void MarkScrolling(Lines& rows, bool above, bool below) {
  if (rows.empty()) return;
  if (above) rows.front().back() = L'▲';
  if (below) rows.back().back() = above && rows.size() == 1 ? L'↕' : L'▼';
}

// --- Entries ---

struct EntryText {
  const CString* text;
  bool chosen;
};

Lines DrawEntryBox(const std::vector<EntryText>& entries, Frame frame) {
  frame = Limited(frame);
  int width = frame.width > 4 ? frame.width - 2 : 2;
  if (frame.width <= 0) {
    for (const EntryText& entry : entries) width = std::max(width, TextColumns(*entry.text) + 2);
  }
  const int count = static_cast<int>(entries.size());
  const auto [first, lines] = VisibleRows(count, frame, 2);
  Lines rows;
  for (int i = first; i < std::min(first + lines, count); ++i) {
    const EntryText& entry = entries[static_cast<std::size_t>(i)];
    const Edges edges = entry.chosen ? Edges{L'▐', L'▌'} : Edges{L' ', L' '};
    rows.push_back(L'│' + (edges.left + Fit(*entry.text, width - 2) + edges.right) + L'│');
  }
  MarkScrolling(rows, first > 0, first + lines < count);
  rows.insert(rows.begin(), Rule({width}, L'┌', L'─', L'┐'));
  rows.push_back(Rule({width}, L'└', L'─', L'┘'));
  return Clip(std::move(rows), frame);
}

// --- Dialogs ---

int ColumnsOf(int dialog_units) { return (dialog_units + 2) / 4; }
int LinesOf(int dialog_units) { return (dialog_units + 4) / 8; }

CString DrawButton(const DialogItem& item) {
  const bool is_default = item.kind == DialogItem::Kind::default_button;
  const int inside = std::max(ColumnsOf(item.area.Width()) - 2, 1);
  const int text = std::min(TextColumns(item.text), inside);
  const int before = (inside - text) / 2;
  const CString label = Repeat(L" ", before) + Fit(item.text, inside - before);
  return (is_default ? L'«' : L'[') + label + (is_default ? L'»' : L']');
}

// The template at the size of the frame.
DialogTemplate Stretched(DialogTemplate layout, Frame frame) {
  constexpr int border = 2;
  const auto stretch = [](int size, int& begin, int& end, int by) {
    if (2 * begin > size) begin += by;
    if (2 * end > size) end += by;
  };
  const int wider = frame.width > 0 ? (frame.width - border - ColumnsOf(layout.width)) * 4 : 0;
  const int higher = frame.height > 0 ? (frame.height - border - LinesOf(layout.height)) * 8 : 0;
  for (DialogItem& item : layout.items) {
    CRect& area = item.area;
    stretch(layout.width, area.left, area.right, wider);
    stretch(layout.height, area.top, area.bottom, higher);
  }
  layout.width += wider;
  layout.height += higher;
  return layout;
}

// In the inside of the dialog, in columns and lines.
CRect PlaceOf(const DialogItem& item) {
  const CRect& area = item.area;
  const int left = ColumnsOf(area.left);
  const int top = LinesOf(area.top);
  return {left, top, left + ColumnsOf(area.Width()),
          item.IsButton() ? top + 1 : LinesOf(area.bottom)};
}

Lines DrawItem(const CDialog3d& dialog, const DialogItem& item, int first_row) {
  if (item.IsButton()) return {DrawButton(item)};
  const CRect place = PlaceOf(item);
  // A frame without room would be as large as the content.
  const Frame frame{std::max(place.Width(), 1), std::max(place.Height(), 1), first_row};
  const CWnd* const control = dialog.GetDlgItem(item.id);
  return control ? TextView::Draw(*control, frame) : DrawEntryBox({}, frame);
}

// Lines that grow to the right: pieces come from left to right.
class Canvas {
 public:
  Canvas(int width, int height)
      : width_(width), lines_(static_cast<std::size_t>(std::max(height, 0))) {}

  void Put(int x, int y, const Lines& picture) {
    for (const CString& line : picture) {
      if (y >= 0 && y < static_cast<int>(lines_.size())) {
        CString& target = lines_[static_cast<std::size_t>(y)];
        target = Fit(target, x);
        target += line;
      }
      ++y;
    }
  }
  Lines Finish() const {
    Lines out;
    for (const CString& line : lines_) out.push_back(L'│' + Fit(line, width_) + L'│');
    return out;
  }

 private:
  int width_;
  Lines lines_;
};

}  // namespace

namespace kestrin::TextView {

Lines Draw(const CXListCtrl& list, Frame frame) {
  frame = Limited(frame);
  const std::vector<int> widths = ColumnWidths(list, frame);
  const auto [first, lines] = VisibleRows(list.GetItemCount(), frame, lines_around_rows);
  Lines rows;
  for (int row = first; row < first + lines; ++row) rows.push_back(DrawRow(list, row, widths));
  MarkScrolling(rows, first > 0, first + lines < list.GetItemCount());

  Lines picture{Rule(widths, L'┌', L'┬', L'┐'), DrawHeading(list, widths),
                Rule(widths, L'├', L'┼', L'┤')};
  picture.insert(picture.end(), rows.begin(), rows.end());
  picture.push_back(Rule(widths, L'└', L'┴', L'┘'));
  return Clip(std::move(picture), frame);
}

Lines Draw(const CComboBox& combo, Frame frame) {
  frame = Limited(frame);
  int width = frame.width > 0 ? frame.width - 2 : 0;
  if (frame.width <= 0) {
    for (int i = 0; i < combo.GetCount(); ++i) {
      width = std::max(width, TextColumns(combo.GetLBText(i)) + 4);
    }
  }
  width = std::max(width, 4);
  const CString text = combo.GetLBText(combo.GetCurSel());
  return Clip({Rule({width}, L'┌', L'─', L'┐'), L"│ " + Fit(text, width - 4) + L" ▾ │",
               Rule({width}, L'└', L'─', L'┘')},
              frame);
}

Lines Draw(const CDialog3d& dialog, Frame frame) {
  if (dialog.Template().width <= 0) return {};
  frame = Limited(frame);
  DialogTemplate layout = Stretched(dialog.Template(), frame);
  const int width = std::max(ColumnsOf(layout.width), 1);
  Canvas canvas(width, LinesOf(layout.height));
  std::stable_sort(
      layout.items.begin(), layout.items.end(),
      [](const DialogItem& a, const DialogItem& b) { return a.area.left < b.area.left; });
  for (const DialogItem& item : layout.items) {
    const CRect place = PlaceOf(item);
    canvas.Put(place.left, place.top, DrawItem(dialog, item, frame.first_row));
  }
  Lines picture = canvas.Finish();
  const CString title = layout.title.empty() ? CString() : L' ' + layout.title + L' ';
  const CString shown = TextColumns(title) < width ? title : Fit(title, std::max(width - 1, 0));
  picture.insert(picture.begin(),
                 L"╒═" + shown + Repeat(L"═", width - 1 - TextColumns(shown)) + L"╕");
  picture.push_back(Rule({width}, L'└', L'─', L'┘'));
  return Clip(std::move(picture), frame);
}

Lines Draw(const CWnd& window, Frame frame) {
  if (const auto* const list = dynamic_cast<const CXListCtrl*>(&window)) return Draw(*list, frame);
  if (const auto* const combo = dynamic_cast<const CComboBox*>(&window)) return Draw(*combo, frame);
  if (const auto* const dialog = dynamic_cast<const CDialog3d*>(&window)) {
    return Draw(*dialog, frame);
  }
  return {};
}

Lines DrawEntries(const CComboBox& combo, Frame frame) {
  Lines texts;
  texts.reserve(static_cast<std::size_t>(combo.GetCount()));
  for (int i = 0; i < combo.GetCount(); ++i) texts.push_back(combo.GetLBText(i));
  std::vector<EntryText> entries;
  entries.reserve(texts.capacity());
  for (int i = 0; i < combo.GetCount(); ++i) {
    entries.push_back({&texts[static_cast<std::size_t>(i)], i == combo.GetCurSel()});
  }
  return DrawEntryBox(entries, frame);
}

Lines DrawEntries(const CXListCtrl& list, int row, int column, Frame frame) {
  const ListCell* const cell = list.GetCell(row, column);
  if (!cell || !cell->list) return {};
  std::vector<EntryText> entries;
  for (const auto& [id, text] : *cell->list) entries.push_back({&text, id == cell->selected});
  return DrawEntryBox(entries, frame);
}

CRect CellPlace(const CXListCtrl& list, int row, int column, Frame frame) {
  frame = Limited(frame);
  const std::vector<int> widths = ColumnWidths(list, frame);
  const auto [first, lines] = VisibleRows(list.GetItemCount(), frame, lines_around_rows);
  const bool shown = row >= first && row < first + lines && column >= 0 &&
                     column < static_cast<int>(widths.size());
  if (!shown || !list.GetCell(row, column)) return {};
  int left = 1;
  for (int before = 0; before < column; ++before) {
    left += widths[static_cast<std::size_t>(before)] + 1;
  }
  const int top = lines_above_rows + row - first;
  return {left, top, left + widths[static_cast<std::size_t>(column)], top + 1};
}

CRect ItemPlace(const CDialog3d& dialog, int item, Frame frame) {
  for (const DialogItem& candidate : Stretched(dialog.Template(), Limited(frame)).items) {
    if (candidate.id != item) continue;
    const CRect inside = PlaceOf(candidate);
    return {inside.left + 1, inside.top + 1, inside.right + 1, inside.bottom + 1};
  }
  return {};
}

}  // namespace kestrin::TextView
