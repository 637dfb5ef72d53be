// What a user marks in the grid is what the owner gets: the rules of clicks, Ctrl, Shift, headings,
// masks and focus, always worked through the user's gestures.
#include "controls/KestrinRangeSelectCtrl.h"
#include "interfaces/signal/Clavis.h"
#include "interfaces/windows/TextView.h"
#include "queries.h"
#include "support.h"

namespace {

using Ids = std::map<int, bool>;

// `count` entries of one list: ids from `first` on, named like "a0".
void SetList(CRangeSelectCtrl<6>::EntryLists& lists, std::size_t entry, int count, int first) {
  lists[entry].clear();
  for (int i = 0; i < count; ++i) {
    lists[entry].emplace(first + i, static_cast<wchar_t>(L'a' + entry) + std::to_wstring(i));
  }
}

// Lists of 6, 4 and 0 entries; the fifth name of the first list is empty.
class Grid : public CRangeSelectCtrl<6> {
 public:
  Grid() {
    SetList(lists, 0, 6, 10);
    lists[0].erase({14, L"a4"});
    lists[0].emplace(14, L"");
    SetList(lists, 1, 4, 20);
    EXPECT_TRUE(Create(nullptr));
  }
  void fill() override { CRangeSelectCtrl::fill(lists); }

  EntryLists lists;
  CString col_head_names(int entry) override { return L"E" + std::to_wstring(entry); }
};

std::array<Ids, 6> Active(const CRangeSelectCtrl<6>& grid) {
  std::array<Ids, 6> active;
  active[0][99] = true;  // must not survive
  grid.retrieve(active);
  return active;
}

// The flags of the first two columns as retrieve tells them, in the order of the ids.
std::string Flags(const CRangeSelectCtrl<6>& grid) {
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

// Gestures, as cases/range_grid.txt explains them.
void Work(CRangeSelectCtrl<6>& grid, std::wstring_view gestures) {
  int column = 0;
  unsigned int flags = mouse_left;
  for (const wchar_t c : gestures) {
    if (c == 'C') flags |= mouse_control;
    if (c == 'S') flags |= mouse_shift;
    if (c == '>') ++column;
    if (c == 'H') grid.ClickHeading(column);
    if (c == 'F') grid.SetFocus();
    if (c == 'f') grid.KillFocus();
    if (c == 'R') grid.fill();
    if (c == 'I') grid.invert_selection();
    if (c == 'A') grid.full_selection();
    if (c == 'W') grid.DestroyWindow() && grid.Create(nullptr);
    if (c == 'D') grid.SetEnabled(2, false);
    if (c == 'o') {
      for (const CPoint outside : {CPoint{-1, 40}, {600, 40}, {8, 116}, {INT_MAX, INT_MAX}}) {
        grid.Click(outside, flags);
      }
    }
    if (c >= '0' && c <= '9') grid.ClickCell(c - '0', column, flags);
    if (c == ' ') flags = mouse_left;
  }
}

// The selection that gestures leave, behind others in each column.
const queries::OfTest after_gestures("Grid", [](const wchar_t* gestures) {
  Grid grid;
  for (const wchar_t* const work : {L"> 0 C2", gestures, L"Ff"}) Work(grid, work);
  return Flags(grid);
});

TEST(RangeGrid, ARangeEndsWithTheRowsThatAFillHasLeft) {
  Grid grid;
  Work(grid, L"5");
  SetList(grid.lists, 0, 2, 10);
  Work(grid, L"R S1");
  EXPECT_EQ(Active(grid)[0], (Ids{{-1, true}, {10, false}, {11, true}}));
}

TEST(RangeGrid, AMaskDecidesWhichListsMakeColumns) {
  Grid grid;
  SetList(grid.lists, 5, 2, 50);
  grid.set_mask(0b100010);
  grid.fill();
  ASSERT_EQ(grid.GetColumnCount(), 2);
  EXPECT_EQ(grid.GetItemCount(), 4);
  EXPECT_EQ(grid.GetColumn(0)->heading + grid.GetColumn(1)->heading, L"E1E5");
  Work(grid, L"3 > H");
  const auto active = Active(grid);
  EXPECT_EQ(active[0], (Ids{{20, false}, {21, false}, {22, false}, {23, true}}));
  EXPECT_EQ(active[1], (Ids{{-1, false}, {50, true}, {51, true}}));
}

TEST(RangeGrid, ShowsTheSelectionInTheColoursOfTheFocus) {
  Grid grid;
  // The cells of row 1 by their edges, without the blanks between.
  const auto edges = [&] { return TextView::Draw(grid, {13, 0, 0})[4].substr(1, 3); };
  EXPECT_EQ(edges(), L" a1");
  Work(grid, L"0 C1");
  EXPECT_EQ(edges(), L"▐a1");
  CWnd other;
  ASSERT_TRUE(other.Create(nullptr));
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
  grid.fill();
  EXPECT_EQ(grid.GetColumn(3)->heading, Clavis::ElementName(Clavis::Location, 2));

  Work(grid, L"1");
  grid.send_active_list(
      std::array<Ids, 6>{Ids{{0, true}, {2, true}, {3, false}, {77, true}},  // 77 has no cell
                         Ids{{11, true}, {-1, true}}, Ids{{-7, true}, {5, true}, {6, true}}});
  const auto active = Active(grid);
  EXPECT_EQ(active[0], (Ids{{0, true}, {1, false}, {2, true}, {3, false}}));
  EXPECT_EQ(active[1], (Ids{{-1, false}, {10, false}, {11, true}}));
  EXPECT_EQ(active[2], (Ids{{-7, false}, {5, true}, {6, true}}));
  EXPECT_EQ(active[3], (Ids{{-1, false}}));
  Work(grid, L"S3 > S0");  // the anchors are gone
  EXPECT_EQ(Flags(grid), "...#|#.|");
  grid.send_active_list(active);
  EXPECT_EQ(Flags(grid), "#.#.|.#|");

  // With an element hidden, flags go by columns and lists by elements.
  grid.set_mask(0b111110);
  grid.fill();
  grid.send_active_list(std::array<Ids, 6>{Ids{{11, true}}});
  EXPECT_EQ(Active(grid)[0], (Ids{{-1, false}, {10, false}, {11, true}}));
}

}  // namespace
