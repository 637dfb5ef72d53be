// What a user marks in the grid is what the owner gets: the rules of clicks, Ctrl, Shift, headings,
// masks and focus, always worked through the user's gestures.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "controls/KestrinRangeSelectCtrl.h"
#include "interfaces/signal/Clavis.h"
#include "interfaces/windows/TextView.h"

namespace {

using Ids = std::map<int, bool>;

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
    EXPECT_TRUE(this->Create(nullptr));
  }
  void fill() override { Base::fill(lists); }

  typename Base::EntryLists lists;
  CString col_head_names(int entry) override { return L"E" + std::to_wstring(entry); }
};

template <class Control>
std::array<Ids, Control::m_size> Active(const Control& grid) {
  std::array<Ids, Control::m_size> active;
  active[0][99] = true;  // must not survive
  grid.retrieve(active);
  return active;
}

// The flags of the first two columns as retrieve tells them, in the order of the ids.
template <class Control>
std::string Flags(const Control& grid) {
  const auto active = Active(grid);
  std::string out;
  for (const Ids& column : {active[0], active[1]}) {
    for (const auto& [id, flag] : column) {
      if (id != -1) out += flag ? '#' : '.';
    }
    out += '|';
  }
  return out;
}

// Gestures, one word each: a row to click on in column 0, with C for Ctrl and S for Shift before
// it; > goes to the next column and < back; H the heading; F and f the focus that comes and goes.
// Calls: R a fill, I and A the selection inverted and of all, W a window closed and made anew.
template <class Control>
void Work(Control& grid, const std::string& gestures) {
  int column = 0;
  unsigned int flags = mouse_left;
  for (const char c : gestures) {
    if (c == 'C') flags |= mouse_control;
    if (c == 'S') flags |= mouse_shift;
    if (c == '>') ++column;
    if (c == '<') --column;
    if (c == 'H') grid.ClickHeading(column);
    if (c == 'F') grid.SetFocus();
    if (c == 'f') grid.KillFocus();
    if (c == 'R') grid.fill();
    if (c == 'I') grid.invert_selection();
    if (c == 'A') grid.full_selection();
    if (c == 'W') grid.DestroyWindow();
    if (c == 'W') grid.Create(nullptr);
    if (c < '0' || c > '9') continue;
    grid.ClickCell(c - '0', column, flags);
    flags = mouse_left;
  }
}

TEST(RangeGrid, ClicksFollowTheRulesInTheirOwnColumnOnly) {
  const std::pair<const char*, const char*> cases[] = {
      // a plain click, and what it takes away
      {"H 3", "...#..|#.#.|"},
      // Ctrl toggles and moves the anchor, selecting or not
      {"1 C1", "......|#.#.|"},
      {"1 C3 S5", "...###|#.#.|"},
      {"0 C2 C2 S3", "..##..|#.#.|"},
      {"1 CS3", ".#.#..|#.#.|"},
      {"1 CS3 S5", "...###|#.#.|"},
      // Shift from the anchor in both directions; the anchor stays, each column has its own
      {"1 S4 S0", "##....|#.#.|"},
      {"5 C0 S2 > S3", "###...|..##|"},
      // Shift without an anchor is a plain click, and sets one
      {"S2 S3", "..##..|#.#.|"},
      {"H S2 S0", "###...|#.#.|"},
      // a heading adds whatever has a text, and clears the anchor
      {"C1 H C0", ".###.#|#.#.|"},
      {"H > S3", "####.#|..##|"},
      // an entry without a name can't be clicked, but lies in a range
      {"1 4", ".#....|#.#.|"},
      {"3 S4", "...#..|#.#.|"},
      {"3 S5", "...###|#.#.|"},
      // rows that don't exist
      {"1 9 S9 C9", ".#....|#.#.|"},
      // a fill takes the selection and leaves the anchor; a new window has neither
      {"2 R", "......|....|"},
      {"2 R S3 > S3", "..##..|..##|"},
      {"2 W S3 > S3", "...#..|...#|"},
      // the focus changes colours alone
      {"1 f C3 F", ".#.#..|#.#.|"},
      // the inverse leaves the anchors, a selection of all clears them
      {"1 I", "#.##.#|.#.#|"},
      {"1 I S2 > S3", ".##...|..##|"},
      {"1 A", "####.#|####|"},
      {"1 A S2 > S3", "..#...|...#|"},
  };
  for (const auto& [gestures, expected] : cases) {
    SCOPED_TRACE(gestures);
    Grid<6> six;
    Grid<7> seven;
    for (const char* work : {"> 0 C2", gestures, "F", "f"}) {
      Work(six, work);
      Work(seven, work);
    }
    EXPECT_EQ(Flags(six), expected);
    EXPECT_EQ(Flags(seven), expected);
  }
}

TEST(RangeGrid, ClicksThatHitNoEntryChangeNothing) {
  Grid<6> grid;
  Work(grid, "1");
  CRect cell;
  ASSERT_TRUE(grid.GetSubItemRect(2, 0, CellArea::bounds, cell));
  for (const unsigned int flags : {1U, 5U, 9U, 13U}) {
    for (const CPoint outside :
         {CPoint{-1, 40}, {6 * 100, 40}, {5, -1}, {cell.left, 20 + 6 * 16}}) {
      grid.Click(outside, flags);
    }
    grid.Click({2147483647, 2147483647}, flags);
    EXPECT_TRUE(grid.ClickCell(5, 1, flags));   // the empty tail of a shorter column
    EXPECT_TRUE(grid.ClickCell(0, 2, flags));   // a column without entries
    EXPECT_FALSE(grid.ClickCell(0, 6, flags));  // no such column
    EXPECT_FALSE(grid.ClickHeading(6));
    grid.SetEnabled(2, false);
    EXPECT_FALSE(grid.ClickCell(2, 0, flags));
    grid.Click({cell.left, cell.top}, flags);
  }
  EXPECT_EQ(Flags(grid), ".#....|....|");
  Work(grid, "S3");  // the anchor is still row 1, and a range takes disabled rows in
  EXPECT_EQ(Flags(grid), ".###..|....|");
  grid.SetEnabled(2, true);
  grid.Click({cell.left, cell.bottom - 1});  // the cell's last corner inside
  EXPECT_EQ(Flags(grid), "..#...|....|");

  // An anchor beyond the rows that a fill has left, and the range over rows without an entry.
  Work(grid, "5");
  SetList(grid.lists, 0, 2, 10);
  Work(grid, "R S1");
  EXPECT_EQ(Active(grid)[0], (Ids{{-1, true}, {10, false}, {11, true}}));
  grid.DestroyWindow();
  EXPECT_EQ(Flags(grid), "||");
}

TEST(RangeGrid, AMaskDecidesWhichListsMakeColumns) {
  Grid<6> grid;
  SetList(grid.lists, 5, 2, 50);
  grid.set_mask(0b100010);
  EXPECT_EQ(grid.GetColumnCount(), 6);  // not before the fill
  grid.fill();
  ASSERT_EQ(grid.GetColumnCount(), 2);
  EXPECT_EQ(grid.GetItemCount(), 4);
  EXPECT_EQ(grid.GetColumn(0)->heading + grid.GetColumn(1)->heading, L"E1E5");
  Work(grid, "3 > H");
  EXPECT_EQ(Active(grid),
            (std::array<Ids, 6>{Ids{{20, false}, {21, false}, {22, false}, {23, true}},
                                Ids{{-1, false}, {50, true}, {51, true}}}));

  grid.set_mask(0);
  grid.fill();
  EXPECT_EQ(grid.GetColumnCount(), 0);
  EXPECT_EQ(grid.GetItemCount(), 0);
  grid.full_selection();
  grid.Click({5, 30});
  EXPECT_EQ(Active(grid), (std::array<Ids, 6>()));
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
  const auto edges = [&] { return TextView::Draw(grid, {13, 0, 0})[4].substr(1, 3); };
  EXPECT_EQ(edges(), L" a1");
  Work(grid, "0 C1");
  EXPECT_EQ(edges(), L"▐a1");
  CWnd other;
  ASSERT_TRUE(other.Create(nullptr));
  grid.SetFocus();
  EXPECT_EQ(edges(), L"▐a1");
  other.SetFocus();
  EXPECT_EQ(edges(), L"░a1");
  COLORREF text = 0;
  COLORREF background = 0;
  ASSERT_TRUE(grid.GetItemColors(1, 0, text, background));
  EXPECT_EQ(text, GetSysColor(8));
  EXPECT_EQ(background, GetSysColor(15));
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

  Work(grid, "1");
  grid.send_active_list(
      std::array<Ids, 6>{Ids{{0, true}, {2, true}, {3, false}, {77, true}},  // 77 has no cell
                         Ids{{11, true}, {-1, true}}, Ids{{-7, true}, {5, true}, {6, true}}});
  const auto active = Active(grid);
  EXPECT_EQ(active, (std::array<Ids, 6>{Ids{{0, true}, {1, false}, {2, true}, {3, false}},
                                        Ids{{-1, false}, {10, false}, {11, true}},
                                        Ids{{-7, false}, {5, true}, {6, true}}, Ids{{-1, false}},
                                        Ids{{-1, false}}, Ids{{-1, false}}}));
  Work(grid, "S3 > S0");  // the anchors are gone
  EXPECT_EQ(Flags(grid), "...#|#.|");
  grid.send_active_list(active);
  EXPECT_EQ(Flags(grid), "#.#.|.#|");
  Work(grid, "> 0");
  grid.send_active_list(std::array<Ids, 6>());
  EXPECT_EQ(Flags(grid), "....|..|");
  Work(grid, "> S1");
  EXPECT_EQ(Flags(grid), "....|.#|");

  // With an element hidden, flags go by columns and lists by elements.
  grid.set_mask(0b111110);
  grid.fill();
  grid.send_active_list(std::array<Ids, 6>{Ids{{11, true}}});
  EXPECT_EQ(Active(grid)[0], (Ids{{-1, false}, {10, false}, {11, true}}));
}

}  // namespace
