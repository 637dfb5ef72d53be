// What a user marks in the grid is what the owner gets: the rules of clicks, Ctrl, Shift, headings,
// masks and focus, always worked through the user's gestures.
#include <gtest/gtest.h>

#include <string>

#include "controls/KestrinRangeSelectCtrl.h"
#include "interfaces/Clavis.h"
#include "interfaces/TextView.h"

namespace {

// `count` entries of one list: ids from `first` on, named like "a0".
template <class Lists>
void SetList(Lists& lists, std::size_t entry, int count, int first) {
  lists[entry].clear();
  for (int i = 0; i < count; ++i) {
    lists[entry].emplace(first + i, static_cast<wchar_t>(L'a' + entry) + std::to_wstring(i));
  }
}

// Lists of 6, 4 and 0 entries; the fifth name of the first list is empty.
template <std::size_t N>
class Grid : public CRangeSelectCtrl<N> {
 public:
  using Base = CRangeSelectCtrl<N>;

  Grid() {
    SetList(lists, 0, 6, 10);
    lists[0].erase({14, L"a4"});
    lists[0].emplace(14, L"");
    SetList(lists, 1, 4, 20);
  }
  void fill() override { Base::fill(lists); }

  typename Base::EntryLists lists;

 protected:
  CString col_head_names(int entry) const override { return L"E" + std::to_wstring(entry); }
};

// The column's flags as retrieve tells them, in the order of the ids.
template <class Control>
std::string Flags(const Control& grid, std::size_t column) {
  std::array<std::map<int, bool>, Control::m_size> active;
  active[0][99] = true;  // must not survive
  grid.retrieve(active);
  std::string out;
  for (const auto& [id, flag] : active[column]) {
    if (id != -1) out += flag ? '#' : '.';
  }
  return out;
}

// Gestures on one column, one word each: a row to click on, with C for Ctrl and S for Shift before
// it; H the heading; F and f the focus that comes and goes; R a fill.
template <class Control>
void Work(Control& grid, int column, const std::string& gestures) {
  unsigned int flags = mouse_left;
  for (const char c : gestures) {
    switch (c) {
      case 'C':
        flags |= mouse_control;
        break;
      case 'S':
        flags |= mouse_shift;
        break;
      case 'H':
        grid.ClickHeading(column);
        break;
      case 'F':
        grid.SetFocus();
        break;
      case 'f':
        grid.KillFocus();
        break;
      case 'R':
        grid.fill();
        break;
      case ' ':
        break;
      default:
        grid.ClickCell(c - '0', column, flags);
        flags = mouse_left;
    }
  }
}

TEST(RangeGrid, ClicksFollowTheRulesInTheirOwnColumnOnly) {
  struct Case {
    const char* gestures;
    const char* selected;
  };
  const Case cases[] = {
      // a plain click, and what it takes away
      {"1", ".#...."},
      {"1 3", "...#.."},
      {"H 3", "...#.."},
      // Ctrl toggles and moves the anchor, selecting or not
      {"1 C3", ".#.#.."},
      {"1 C1", "......"},
      {"1 C3 S5", "...###"},
      {"0 C2 C2 S3", "..##.."},
      {"1 CS3", ".#.#.."},
      {"1 CS3 S5", "...###"},
      // Shift from the anchor in both directions; the anchor stays
      {"2 S5", "..####"},
      {"1 S4 S0", "##...."},
      {"3 S3", "...#.."},
      {"2 S5 S1", ".##..."},
      {"5 C0 S2", "###..."},
      // Shift without an anchor is a plain click, and sets one
      {"S2", "..#..."},
      {"S2 S3", "..##.."},
      {"H S2", "..#..."},
      {"H S2 S0", "###..."},
      // a heading adds whatever has a text, and clears the anchor
      {"H", "####.#"},
      {"C1 H C0", ".###.#"},
      // an entry without a name can't be clicked, but lies in a range
      {"1 4", ".#...."},
      {"1 C4", ".#...."},
      {"3 S4", "...#.."},
      {"3 S5", "...###"},
      // rows that don't exist
      {"1 9 S9 C9", ".#...."},
      // a fill takes the selection and leaves the anchor
      {"2 R", "......"},
      {"2 R S3", "..##.."},
      // the focus changes colours alone
      {"1 f C3 F", ".#.#.."},
      {"F 1 S2 f", ".##..."},
      {"f S1 F S3", ".###.."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.gestures);
    Grid<6> grid;
    ASSERT_TRUE(grid.Create(nullptr));
    const bool refilled = std::string(c.gestures).find('R') != std::string::npos;
    Work(grid, 1, "0 C2");
    Work(grid, 0, c.gestures);
    EXPECT_EQ(Flags(grid, 0), c.selected);
    EXPECT_EQ(Flags(grid, 1), refilled ? "...." : "#.#.");
    grid.SetFocus();
    EXPECT_EQ(Flags(grid, 0), c.selected);
    grid.KillFocus();
    EXPECT_EQ(Flags(grid, 0), c.selected);
    Work(grid, 1, "S3");  // from its own anchor, row 2
    EXPECT_EQ(Flags(grid, 1), "..##");
  }
}

TEST(RangeGrid, ClicksThatHitNoEntryChangeNothing) {
  Grid<6> grid;
  ASSERT_TRUE(grid.Create(nullptr));
  Work(grid, 0, "1");
  CRect cell;
  ASSERT_TRUE(grid.GetSubItemRect(2, 0, CellArea::bounds, cell));
  const int width = 6 * 100;
  const CPoint outside[] = {{-1, 40},
                            {width, 40},
                            {5, -1},
                            {5, 1000000},
                            {-2000000000, -5},
                            {cell.left, 20 + 6 * 16},
                            {2147483647, 2147483647}};
  for (const unsigned int flags : {1U, 5U, 9U, 13U}) {
    for (const CPoint point : outside) grid.Click(point, flags);
    EXPECT_TRUE(grid.ClickCell(5, 1, flags));   // the empty tail of a shorter column
    EXPECT_TRUE(grid.ClickCell(0, 2, flags));   // a column without entries
    EXPECT_FALSE(grid.ClickCell(0, 6, flags));  // no such column
    EXPECT_FALSE(grid.ClickHeading(6));
    grid.SetEnabled(2, false);
    EXPECT_TRUE(grid.ClickCell(2, 0, flags));
  }
  EXPECT_EQ(Flags(grid, 0), ".#....");
  EXPECT_EQ(Flags(grid, 1), "....");
  Work(grid, 0, "S3");  // the anchor is still row 1, and a range takes disabled rows in
  EXPECT_EQ(Flags(grid, 0), ".###..");
  grid.SetEnabled(2, true);
  grid.Click({cell.left, cell.bottom - 1});  // the cell's last corner inside
  EXPECT_EQ(Flags(grid, 0), "..#...");
}

TEST(RangeGrid, AnAnchorOutlivesAFillAndEndsWithTheWindow) {
  Grid<6> grid;
  ASSERT_TRUE(grid.Create(nullptr));
  Work(grid, 0, "5");
  SetList(grid.lists, 0, 2, 10);
  Work(grid, 0, "R S1");
  EXPECT_EQ(Flags(grid, 0), ".#");
  std::array<std::map<int, bool>, 6> active;
  grid.retrieve(active);  // the range went on over the rows without an entry
  EXPECT_EQ(active[0], (std::map<int, bool>{{-1, true}, {10, false}, {11, true}}));

  Work(grid, 1, "0");
  grid.DestroyWindow();
  ASSERT_TRUE(grid.Create(nullptr));
  Work(grid, 1, "S2");
  EXPECT_EQ(Flags(grid, 1), "..#.");
}

TEST(RangeGrid, CommandsOverTheWholeGrid) {
  Grid<7> grid;
  static_assert(Grid<7>::m_size == 7 && Grid<6>::m_size == 6);
  ASSERT_TRUE(grid.Create(nullptr));
  Work(grid, 0, "1");
  grid.invert_selection();
  EXPECT_EQ(Flags(grid, 0), "#.##.#");
  EXPECT_EQ(Flags(grid, 1), "####");
  Work(grid, 0, "S2");  // invert_selection leaves the anchors
  EXPECT_EQ(Flags(grid, 0), ".##...");
  grid.full_selection();
  EXPECT_EQ(Flags(grid, 0), "####.#");
  EXPECT_EQ(Flags(grid, 1), "####");
  Work(grid, 0, "S2");  // full_selection clears them
  EXPECT_EQ(Flags(grid, 0), "..#...");
  grid.DestroyWindow();
  EXPECT_EQ(Flags(grid, 0), "");
  ASSERT_TRUE(grid.Create(nullptr));  // a new window starts with new rows
  EXPECT_EQ(Flags(grid, 0), "......");
}

TEST(RangeGrid, AMaskDecidesWhichListsMakeColumns) {
  Grid<6> grid;
  SetList(grid.lists, 5, 2, 50);
  ASSERT_TRUE(grid.Create(nullptr));
  grid.set_mask(0b100010);
  EXPECT_EQ(grid.GetColumnCount(), 6);  // not before the fill
  grid.fill();
  ASSERT_EQ(grid.GetColumnCount(), 2);
  EXPECT_EQ(grid.GetItemCount(), 4);
  EXPECT_EQ(grid.GetColumn(0)->heading, L"E1");
  EXPECT_EQ(grid.GetColumn(1)->heading, L"E5");
  Work(grid, 0, "3");
  Work(grid, 1, "H");
  std::array<std::map<int, bool>, 6> active;
  grid.retrieve(active);
  EXPECT_EQ(active[0], (std::map<int, bool>{{20, false}, {21, false}, {22, false}, {23, true}}));
  EXPECT_EQ(active[1], (std::map<int, bool>{{-1, false}, {50, true}, {51, true}}));
  EXPECT_TRUE(active[2].empty());

  grid.set_mask(0);
  grid.fill();
  EXPECT_EQ(grid.GetColumnCount(), 0);
  EXPECT_EQ(grid.GetItemCount(), 0);
  grid.full_selection();
  grid.Click({5, 30});
  grid.retrieve(active);
  EXPECT_TRUE(active[0].empty());
}

TEST(RangeGrid, ShowsTheSelectionInTheColoursOfTheFocus) {
  CKestrinRangeSelectCtrl grid;
  CKestrinRangeSelectCtrl::EntryLists lists;
  SetList(lists, 0, 2, 0);
  SetList(lists, 3, 1, 7);
  grid.set_mask(0b001001);
  grid.send_kestrin_list(lists);
  ASSERT_TRUE(grid.Create(nullptr));
  EXPECT_EQ(grid.GetExtendedStyle() & 0x8020U, 0x8000U);
  const CString mode = Clavis::ElementName(Clavis::Mode, 2);
  const CString location = Clavis::ElementName(Clavis::Location, 2);
  EXPECT_EQ(TextView::Draw(grid)[1], L"│ " + mode + L" │ " + location + L" │");

  // The cells of row 1 by their edges, without the blanks between.
  const auto edges = [&] {
    const CString line = TextView::Draw(grid, {13, 0, 0})[4];
    return CString{line[1], line[2], line[3]};
  };
  EXPECT_EQ(edges(), L" a1");
  Work(grid, 0, "0 C1");
  EXPECT_EQ(edges(), L"▐a1");
  grid.KillFocus();
  EXPECT_EQ(edges(), L"░a1");
  COLORREF text = 0;
  COLORREF background = 0;
  ASSERT_TRUE(grid.GetItemColors(1, 0, text, background));
  EXPECT_EQ(text, GetSysColor(8));
  EXPECT_EQ(background, GetSysColor(15));
  CWnd other;
  ASSERT_TRUE(other.Create(nullptr));
  grid.SetFocus();
  EXPECT_EQ(edges(), L"▐a1");
  other.SetFocus();
  EXPECT_EQ(edges(), L"░a1");
}

TEST(KeyRangeControl, SetsAndGivesBackTheActiveIds) {
  CKestrinRangeSelectCtrl grid;
  CKestrinRangeSelectCtrl::EntryLists lists;
  ASSERT_TRUE(grid.Create(nullptr));
  SetList(lists, 0, 4, 0);
  SetList(lists, 1, 2, 10);
  lists[2] = {{-7, L"negative"}, {5, L""}, {6, L"twice"}, {6, L"Twice"}};
  grid.send_kestrin_list(lists);
  EXPECT_EQ(grid.GetItemCount(), 0);  // nothing before the fill
  grid.fill();
  EXPECT_EQ(grid.GetItemCount(), 4);

  std::array<std::map<int, bool>, 6> sent;
  sent[0] = {{0, true}, {2, true}, {3, false}, {77, true}};  // 77 has no cell
  sent[1] = {{11, true}, {-1, true}};
  sent[2] = {{-7, true}, {5, true}, {6, true}};
  Work(grid, 0, "1");
  grid.send_active_list(sent);
  std::array<std::map<int, bool>, 6> active;
  grid.retrieve(active);
  EXPECT_EQ(active[0], (std::map<int, bool>{{0, true}, {1, false}, {2, true}, {3, false}}));
  EXPECT_EQ(active[1], (std::map<int, bool>{{-1, false}, {10, false}, {11, true}}));
  EXPECT_EQ(active[2], (std::map<int, bool>{{-7, false}, {5, true}, {6, true}}));
  EXPECT_EQ(active[3], (std::map<int, bool>{{-1, false}}));
  Work(grid, 0, "S3");  // the anchor is gone
  EXPECT_EQ(Flags(grid, 0), "...#");

  grid.send_active_list(active);
  EXPECT_EQ(Flags(grid, 0), "#.#.");
  Work(grid, 1, "0");
  grid.send_active_list({});
  EXPECT_EQ(Flags(grid, 0), "....");
  Work(grid, 1, "S1");
  EXPECT_EQ(Flags(grid, 1), ".#");

  // With an element hidden, flags go by columns and lists by elements.
  grid.set_mask(0b111110);
  grid.fill();
  grid.send_active_list({{{{11, true}}}});
  EXPECT_EQ(Flags(grid, 0), ".#");
}

}  // namespace
