// What controls stand on: messages arrive once and never at a window that is gone, handlers may end
// any window, and what a view shows is what the windows hold.
#include "control_support.h"
#include "interfaces/windows/XListCtrl.h"

namespace {

const std::map<int, CString> fruits = {{-1, L"—"}, {3, L"apple"}, {8, L"pear"}};

// Three rows with check boxes, led by the heading's, and a drop-down behind the first.
void Fill(CXListCtrl& list) {
  list.InsertColumn(0, L"all", format_left, 90);
  list.SetHeaderAutoCheckbox(true);
  for (int i = 0; i < 3; ++i) list.SetCheckbox(list.AddItem(L"x"), 0, unchecked);
  list.InsertColumn(1, L"Fruit", format_right, 48);
  list.SetComboBox(0, 1, fruits, 3);
}

// Tells when its window comes (<), goes (>), gets the focus (+) and loses it (-), and which row got
// which state, to a function that may delete it.
class Telling : public CXListCtrl {
 public:
  std::function<void(const std::string&)> tell;

 protected:
  void PreSubclassWindow() override { Tell("<"); }
  void OnDestroy() override {
    CXListCtrl::OnDestroy();
    Tell(">");
  }
  void OnSetFocus(CWnd*) override { Tell("+"); }
  void OnKillFocus(CWnd*) override { Tell("-"); }
  void OnItemStateChange(int row, int, int state) override {
    Tell(" " + std::to_string(row) + ":" + std::to_string(state));
  }

 private:
  void Tell(const std::string& what) const {
    const auto hear = tell;
    if (hear) hear(what);
  }
};

TEST(Windows, MessagesReachTheLivingAndOnlyThem) {
  const unsigned int message = RegisterWindowMessage(L"windows test");
  EXPECT_EQ(RegisterWindowMessage(L"windows test"), message);
  EXPECT_NE(RegisterWindowMessage(L"Windows test"), message);
  auto window = std::make_unique<CWnd>();
  const auto answer = [&, handle = window->Handle()] {
    return SendMessage(handle, message, 5, -7);
  };
  window->OnMessage(message, [](WPARAM w, LPARAM l) { return static_cast<LRESULT>(w) + l; });
  EXPECT_EQ(answer(), 0);  // no window yet
  ASSERT_TRUE(window->Create(nullptr));
  EXPECT_FALSE(window->Create(nullptr));
  EXPECT_EQ(answer(), -2);
  EXPECT_TRUE(window->DestroyWindow());
  EXPECT_FALSE(window->DestroyWindow());
  EXPECT_EQ(answer(), 0);

  ASSERT_TRUE(window->Create(nullptr));
  window->OnMessage(message, {});
  EXPECT_EQ(answer(), 0);
  window->OnMessage(message, [&, kept = LRESULT{3}](WPARAM, LPARAM) {
    window.reset();
    return kept;
  });
  EXPECT_EQ(answer(), 3);
  EXPECT_EQ(answer(), 0);
}

TEST(Windows, EndWithTheirParentsAndMayBeDeletedOnTheWay) {
  auto parent = std::make_unique<CWnd>();
  auto child = std::make_unique<Telling>();
  EXPECT_FALSE(child->Create(parent.get()));  // the parent has no window
  ASSERT_TRUE(parent->Create(nullptr) && child->Create(parent.get(), 17));
  EXPECT_EQ(parent->GetDlgItem(17), child.get());
  parent.reset();
  EXPECT_FALSE(child->IsWindow());
  EXPECT_TRUE(child->Create(nullptr));
  for (const bool comes : {false, true}) {
    child->tell = [&](const auto&) { child.reset(); };
    EXPECT_NE(comes ? child->Create(nullptr) : child->DestroyWindow(), comes);
    child = std::make_unique<Telling>();
  }
}

TEST(Windows, TheFocusIsAtOneWindowAndLeavesWithIt) {
  std::string log;
  Telling a;
  Telling b;
  a.tell = [&](const std::string& what) { log += what + "a"; };
  b.tell = [&](const std::string& what) { log += what + "b"; };
  a.SetFocus();  // no window, no focus
  ASSERT_TRUE(a.Create(nullptr) && b.Create(nullptr));
  a.SetFocus();
  b.SetFocus();
  b.DestroyWindow();
  EXPECT_FALSE(b.HasFocus());
  a.SetFocus();
  a.tell = [&](const auto&) { a.SetFocus(); };
  ASSERT_TRUE(b.Create(nullptr));
  b.SetFocus();  // while a loses the focus, it takes it again
  EXPECT_EQ(log, "<a<b+a-a+b>b+a<b-b");
}

// In the middle of a choice, and of a heading's click over all rows.
TEST(Lists, AHandlerMayRefillDestroyOrDeleteTheList) {
  for (const std::string what : {"refill", "destroy", "delete"}) {
    for (const bool heading : {false, true}) {
      int calls = 0;
      auto list = std::make_unique<Telling>();
      ASSERT_TRUE(list->Create(nullptr));
      Fill(*list);
      const auto act = [&](auto...) {
        ++calls;
        list->on_entry_chosen = {};
        if (what == "refill") list->DeleteAllItems();
        if (what == "destroy") list->DestroyWindow();
        if (what == "delete") list.reset();
      };
      list->on_entry_chosen = act;
      list->tell = [&](const std::string& told) {
        if (told.starts_with(' ')) act();  // a row's new state
      };
      EXPECT_TRUE(heading ? list->ClickHeading(0) : list->ChooseEntry(0, 1, 8));
      EXPECT_TRUE(calls == 1 && (!list || list->GetItemCount() == 0)) << what << heading;
    }
  }
}

TEST(Lists, TheHeadingsCheckBoxFollowsTheRowsAndLeadsThem) {
  CXListCtrl list;
  ASSERT_TRUE(list.Create(nullptr));
  Fill(list);
  // The row whose box is switched (-1: the heading's), the heading's state, how many are checked.
  const std::tuple<int, int, int> cases[] = {{0, mixed, 1},      {1, mixed, 2},    {2, checked, 3},
                                             {-1, unchecked, 0}, {-1, checked, 3}, {1, mixed, 2}};
  for (const auto& [row, state, checked_rows] : cases) {
    list.Click({8, row < 0 ? 8 : CXListCtrl::heading_height + CXListCtrl::row_height * row});
    EXPECT_EQ(list.GetHeaderCheckedState(0), state);
    EXPECT_EQ(list.CountCheckedItems(0, checked), checked_rows);
  }
  // A disabled row keeps its box, and doesn't hinder the heading from clearing the others.
  list.ToggleCheckbox(1, 0);
  list.ToggleCheckbox(2, 0);
  list.SetEnabled(2, false);
  list.ClickHeading(0);
  EXPECT_EQ(list.CountCheckedItems(0, checked), 0);
  EXPECT_FALSE(list.ToggleCheckbox(2, 0));
  list.InsertColumn(0, L"in front", format_left, 48);
  EXPECT_EQ(list.GetItemText(0, 1), L"x");
}

TEST(Lists, ACombosEntriesKeepTheirOrderAndItsSelection) {
  CComboBox sorted(CComboBox::Order::sorted);
  sorted.SetCurSel(sorted.AddString(L"b"));
  sorted.AddString(L"a");
  EXPECT_EQ(sorted.GetCurSel(), 1);
  CComboBox combo;
  for (const wchar_t* const text : {L"a", L"b", L"a"}) combo.AddString(text);
  EXPECT_EQ(combo.FindStringExact(-1, L"a"), 0);
  EXPECT_EQ(combo.FindStringExact(0, L"a"), 2);
  EXPECT_EQ(combo.FindStringExact(2, L"a"), 0);
}

struct CountingView : WindowView {
  int changes = 0;
  void Shown(CWnd&) override {}
  void Changed(CWnd&) override { ++changes; }
  void Gone(WindowHandle) override {}
};

TEST(Views, HearOfAListBelowThemAndOnceOfABatch) {
  CountingView view;
  CWnd frame;
  CXListCtrl list;
  frame.SetView(&view);
  ASSERT_TRUE(frame.Create(nullptr) && list.Create(&frame));
  Fill(list);
  view.changes = 0;
  {
    const BatchInsertMode batch(list);
    list.SetBatchInsertMode(true);
    list.SetBatchInsertMode(false);
    list.AddItem(L"row");
    EXPECT_EQ(view.changes, 0);
  }
  EXPECT_EQ(view.changes, 1);
  list.ChooseEntry(0, 1, 8);
  list.SetFocus();
  list.KillFocus();
  EXPECT_EQ(view.changes, 4);
}

TEST(TextPictures, KeepTheirShapeWhateverTheTextsAre) {
  CXListCtrl list;
  ASSERT_TRUE(list.Create(nullptr));
  Fill(list);
  list.SetItemText(0, 0, L"a\nb\x9B");                                    // control characters
  list.SetItemText(1, 0, std::wstring(L"測定\xD83D\xDE00") + L"x\x301");  // wide, pair, combining
  list.ToggleCheckbox(1, 0);
  list.AutosizeColumnWidth(0);
  const TextView::Lines whole = TextView::Draw(list);
  for (int i = 3; i < 9; ++i) list.AddItem(L"row " + std::to_wstring(i));
  list.SetEnabled(8, false);
  list.SetItemText(4, 1, 17);
  EXPECT_EQ(SideBySide({TextView::Draw(list, {7, 5, 4}), TextView::Draw(list, {20, 6, 3}),
                        TextView::Draw(list, {10, 6, INT_MAX}), whole}),
            R"(
┌─────┐  ┌─────────────┬────┐  ┌────────┐  ┌─────────────┬────────┐
│ [-… │  │ [-] all     │ F… │  │ [-] a… │  │ [-] all     │  Fruit │
├─────┤  ├─────────────┼────┤  ├────────┤  ├─────────────┼────────┤
│ ro… ↕  │ row 3       │    ▲  │ row 7  ▲  │ [ ] a b     │ app… ▾ │
└─────┘  │ row 4       │ 17 ▼  │·row 8 ·│  │ [x] 測定😀x́ │        │
         └─────────────┴────┘  └────────┘  │ [ ] x       │        │
                                           └─────────────┴────────┘
)");
  for (int width = 1; width < 41; ++width) {
    for (const int height : {1, 2, 3, 6, 30}) {
      const TextView::Lines lines = TextView::Draw(list, {width, height, width});
      EXPECT_EQ(lines.size(), static_cast<std::size_t>(height));
      for (const CString& line : lines) EXPECT_EQ(TextColumns(line), width) << Text::ToUtf8(line);
    }
  }
}

}  // namespace
