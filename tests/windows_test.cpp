// What controls stand on: messages arrive once and in order, nothing is ever sent to a window that
// is gone, gestures that make no sense do nothing, and views hear of what changed.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <memory>
#include <optional>
#include <stdexcept>
#include <tuple>

#include "control_support.h"
#include "interfaces/windows/ComboBoxX.h"
#include "interfaces/windows/Dialog3d.h"
#include "interfaces/windows/XListCtrl.h"

namespace {

using Pairs = std::vector<std::pair<int, int>>;

const std::map<int, CString> fruits = {{-1, L"—"}, {3, L"apple"}, {8, L"pear"}};

// Two rows: a drop-down in the first, a disabled one in the second.
void FillList(CXListCtrl& list) {
  list.InsertColumn(0, L"Section", format_left, 66);
  list.InsertColumn(1, L"Value", format_left, 66);
  list.InsertColumn(2, L"Id", format_right, 30);
  list.AddItem(L"Fruit", nullptr, 40);
  list.SetComboBox(0, 1, fruits, 3);
  list.SetItemText(0, 2, 3);
  list.AddItem(L"Other");
  list.SetComboBox(1, 1, fruits, 8);
  list.SetEnabled(1, false);
}

void FillChecks(CXListCtrl& list, int count) {
  list.InsertColumn(0, L"all", format_left, 90);
  list.SetHeaderAutoCheckbox(true);
  list.SetBatchInsertMode(true);
  for (int i = 0; i < count; ++i) list.SetCheckbox(list.AddItem(L"x"), 0, unchecked);
  list.SetBatchInsertMode(false);
}

// Tells when its window comes (<), goes (>), gets the focus (+) and loses it (-), and which row got
// which state.
class Telling : public CXListCtrl {
 public:
  std::function<void(const std::string&)> tell;
  using CXListCtrl::OnColumnClick;

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
    const auto hear = tell;  // a copy, since it may delete the window
    if (hear) hear(what);
  }
};

TEST(Windows, MessagesReachTheLivingAndOnlyThem) {
  const unsigned int message = RegisterWindowMessage(L"windows test");
  EXPECT_EQ(RegisterWindowMessage(L"windows test"), message);
  EXPECT_NE(RegisterWindowMessage(L"Windows test"), message);
  EXPECT_GE(message, 0xC000U);

  auto window = std::make_unique<CWnd>();
  const WindowHandle handle = window->Handle();
  window->OnMessage(message, [](WPARAM w, LPARAM l) { return static_cast<LRESULT>(w) + l; });
  EXPECT_EQ(SendMessage(handle, message, 5, -7), 0);  // no window yet
  EXPECT_FALSE(IsWindow(handle));
  ASSERT_TRUE(window->Create(nullptr));
  EXPECT_FALSE(window->Create(nullptr));
  EXPECT_EQ(SendMessage(handle, message, 5, -7), -2);
  EXPECT_EQ(SendMessage(handle, message + 1000, 5, -7), 0);
  EXPECT_TRUE(window->DestroyWindow());
  EXPECT_FALSE(window->DestroyWindow());
  EXPECT_EQ(SendMessage(handle, message, 5, -7), 0);

  // A handler may take itself away, and the whole window.
  ASSERT_TRUE(window->Create(nullptr));
  window->OnMessage(message, [&, answer = LRESULT{3}](WPARAM, LPARAM) {
    window->OnMessage(message, {});
    window.reset();
    return answer;
  });
  EXPECT_EQ(SendMessage(handle, message, 0, 0), 3);
  EXPECT_EQ(SendMessage(handle, message, 0, 0), 0);
  EXPECT_EQ(SendMessage(WindowHandle::none, message, 0, 0), 0);
}

TEST(Windows, ParentsTakeTheirChildrenWithThemAndOwnersDoNot) {
  auto parent = std::make_unique<CWnd>();
  auto owner = std::make_unique<CWnd>();
  CXListCtrl child;
  CWnd grandchild;
  EXPECT_FALSE(child.Create(parent.get()));  // the parent has no window
  EXPECT_FALSE(child.Create(&child));
  ASSERT_TRUE(parent->Create(nullptr));
  ASSERT_TRUE(child.Create(parent.get(), 17));
  ASSERT_TRUE(grandchild.Create(&child));
  EXPECT_EQ(parent->GetDlgItem(17), &child);
  EXPECT_EQ(parent->GetDlgItem(18), nullptr);
  EXPECT_EQ(child.GetOwner(), parent.get());
  child.SetOwner(owner.get());
  EXPECT_EQ(child.GetOwner(), owner.get());
  owner.reset();
  EXPECT_EQ(child.GetOwner(), nullptr);
  EXPECT_EQ(child.GetParent(), parent.get());

  FillList(child);
  parent.reset();
  EXPECT_FALSE(child.IsWindow() || grandchild.IsWindow());
  EXPECT_EQ(child.GetParent(), nullptr);
  EXPECT_EQ(child.GetItemCount() + child.GetColumnCount(), 0);
  EXPECT_FALSE(child.ClickHeading(0));
  EXPECT_TRUE(child.Create(nullptr));  // the object can go on without it
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
  a.SetFocus();
  b.SetFocus();
  a.KillFocus();
  b.DestroyWindow();
  a.SetFocus();
  a.tell = [&](const auto&) { b.DestroyWindow(); };
  ASSERT_TRUE(b.Create(nullptr));
  b.SetFocus();  // b ends while a loses the focus to it
  EXPECT_EQ(log, "<a<b+a-a+b>b+a<b>b");
  EXPECT_FALSE(a.HasFocus() || b.HasFocus());
}

TEST(Windows, MayBeDeletedWhileTheyBeginAndEnd) {
  auto doomed = std::make_unique<Telling>();
  doomed->tell = [&](const auto&) { doomed.reset(); };
  EXPECT_FALSE(doomed->Create(nullptr));

  auto parent = std::make_unique<CWnd>();
  Telling child;
  ASSERT_TRUE(parent->Create(nullptr) && child.Create(parent.get()));
  child.tell = [&](const auto&) { parent.reset(); };
  EXPECT_TRUE(parent->DestroyWindow());
  EXPECT_FALSE(child.IsWindow());
}

// Notes what comes (+) and goes (-).
struct NotingView : WindowView {
  std::map<WindowHandle, char> names;
  std::string log;
  void Shown(CWnd& window) override { (log += '+') += names[window.Handle()]; }
  void Changed(CWnd&) override {}
  void Gone(WindowHandle window) override { (log += '-') += names[window]; }
};

TEST(Windows, MayComeAgainAndTakeOthersAlongWhileTheyEnd) {
  NotingView view;
  CWnd frame;
  CWnd parent;
  Telling phoenix;
  Telling first;
  CWnd second;
  view.names = {{parent.Handle(), 'P'},
                {phoenix.Handle(), 'X'},
                {first.Handle(), '1'},
                {second.Handle(), '2'}};
  frame.SetView(&view);
  ASSERT_TRUE(frame.Create(nullptr));
  phoenix.tell = [&](const std::string& what) { view.log += what; };
  // What the end of the first child sets off, and what is told of it all.
  const std::pair<std::function<bool()>, const char*> cases[] = {
      {[&] { return phoenix.Create(&parent); }, "-1-2-X>+X<"},
      {[&] { return !phoenix.Create(&second); }, "-1-2-X>"},
      {[&] { return parent.DestroyWindow(); }, "-1-2-X>-P"}};
  for (const auto& [act, told] : cases) {
    ASSERT_TRUE(parent.Create(&frame) && phoenix.Create(&parent) && first.Create(&phoenix) &&
                second.Create(&phoenix));
    first.tell = [&, run = act](const auto&) { EXPECT_TRUE(run()); };
    view.log.clear();
    EXPECT_TRUE(phoenix.DestroyWindow());
    EXPECT_EQ(view.log, told);
    first.tell = nullptr;
    parent.DestroyWindow();
    EXPECT_FALSE(phoenix.IsWindow() || first.IsWindow() || second.IsWindow());
  }
}

TEST(Windows, OfStaticObjectsMayEndLast) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  struct Holder {
    std::unique_ptr<CXListCtrl> list;
    ~Holder() {
      if (!IsWindow(list->Handle())) std::_Exit(1);
    }
  };
  const auto run = [] {
    static Holder holder;  // ends behind whatever its window has brought into being
    holder.list = std::make_unique<CXListCtrl>();
    holder.list->Create(nullptr);
    std::exit(0);
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

TEST(Lists, ChoosingAnEntryTellsTheCallbackOnce) {
  CXListCtrl list;
  ASSERT_TRUE(list.Create(nullptr));
  FillList(list);
  Pairs heard;
  list.on_entry_chosen = [&](int row, int column) { heard.emplace_back(row, column); };
  EXPECT_TRUE(list.ChooseEntry(0, 1, 8));
  EXPECT_EQ(list.GetComboCurSel(0, 1), 8);
  EXPECT_EQ(list.GetItemText(0, 1), L"pear");
  const std::tuple<int, int, int> refused[] = {{0, 1, 4},  {0, 0, 3},  {1, 1, 3},      {2, 1, 3},
                                               {-1, 1, 3}, {0, -1, 3}, {0, INT_MAX, 3}};
  for (const auto& [row, column, id] : refused) {
    EXPECT_FALSE(list.ChooseEntry(row, column, id)) << row << ' ' << column;
  }
  EXPECT_EQ(heard, (Pairs{{0, 1}}));
  EXPECT_EQ(list.GetItemText(1, 1), L"pear");

  // The shared list may change under the cell: it keeps what it shows.
  std::map<int, CString> shared = fruits;
  list.SetComboBox(0, 1, shared, 3);
  shared.clear();
  EXPECT_EQ(list.GetItemText(0, 1), L"apple");
  EXPECT_EQ(list.GetComboCurSel(0, 1), 3);
  EXPECT_FALSE(list.ChooseEntry(0, 1, 3));
  list.SetComboBox(0, 1, fruits, 99);
  EXPECT_EQ(list.GetItemText(0, 1), L"");
}

// In the middle of a choice, and of a heading's click over all rows.
TEST(Lists, AHandlerMayRefillDestroyOrDeleteTheList) {
  for (const std::string what : {"refill", "destroy", "delete"}) {
    for (const bool heading : {false, true}) {
      SCOPED_TRACE(what + (heading ? " by the heading" : " by an entry"));
      int calls = 0;
      auto list = std::make_unique<Telling>();
      ASSERT_TRUE(list->Create(nullptr));
      const auto act = [&](auto...) {
        ++calls;
        list->on_entry_chosen = {};
        list->tell = {};
        if (what == "refill") list->DeleteAllItems();
        if (what == "destroy") list->DestroyWindow();
        if (what == "delete") list.reset();
      };
      heading ? FillChecks(*list, 5) : FillList(*list);
      list->on_entry_chosen = act;
      if (heading) list->tell = act;
      EXPECT_TRUE(heading ? list->ClickHeading(0) : list->ChooseEntry(0, 1, 8));
      EXPECT_EQ(calls, 1);
      EXPECT_EQ(list ? list->GetItemCount() : 0, 0);
    }
  }
}

TEST(Lists, ClicksFindCheckBoxesAndNothingBesides) {
  Telling list;
  std::string told;
  list.tell = [&](const std::string& what) { told += what; };
  ASSERT_TRUE(list.Create(nullptr));
  FillChecks(list, 3);
  list.SetItemText(1, 0, L"wider than the others");
  list.AutosizeColumnWidth(-1);
  list.SetEnabled(2, false);
  constexpr int first = CXListCtrl::heading_height;
  constexpr int step = CXListCtrl::row_height;
  const std::tuple<int, int, int, unsigned int> cases[] = {
      {8, first, 0, hit_state_icon},
      {60, first + step - 1, 0, hit_label},
      {8, first + step, 1, hit_state_icon},
      {8, first + 2 * step, 2, hit_state_icon},
      {8, first + 3 * step, -1, hit_nowhere},
      {-1, first, -1, hit_nowhere},
      {list.GetColumn(0)->width, first, -1, hit_nowhere},
      {INT_MAX, INT_MAX, -1, hit_nowhere},
      {INT_MIN, INT_MIN, -1, hit_nowhere},
  };
  unsigned int flags = 0;
  for (const auto& [x, y, row, found] : cases) {
    EXPECT_EQ(list.HitTest({x, y}, flags), row) << x << ' ' << y;
    EXPECT_EQ(flags, found) << x << ' ' << y;
    list.Click({x, y});
  }
  EXPECT_EQ(list.HitTest({8, first - 1}, flags), -1);  // the heading
  EXPECT_TRUE(list.HasFocus());
  EXPECT_EQ(told, "<+ 0:1 1:1");
}

TEST(Lists, TheHeadingsCheckBoxFollowsTheRowsAndLeadsThem) {
  Telling list;
  int told = 0;
  ASSERT_TRUE(list.Create(nullptr));
  list.tell = [&](const auto&) { ++told; };
  FillChecks(list, 3);
  EXPECT_EQ(list.GetHeaderCheckedState(1), -1);
  EXPECT_TRUE(list.SetHeaderCheckedState(0, mixed));
  EXPECT_EQ(list.GetHeaderCheckedState(0), mixed);
  // The row whose box is switched (-1: the heading's), the heading's state, how many are checked.
  const std::tuple<int, int, int> cases[] = {{0, mixed, 1},      {1, mixed, 2},    {2, checked, 3},
                                             {-1, unchecked, 0}, {-1, checked, 3}, {1, mixed, 2},
                                             {-1, checked, 3}};
  for (const auto& [row, state, checked_rows] : cases) {
    EXPECT_TRUE(row == -1 ? list.ClickHeading(0) : list.ToggleCheckbox(row, 0));
    EXPECT_EQ(list.GetHeaderCheckedState(0), state);
    EXPECT_EQ(list.CountCheckedItems(0, checked), checked_rows);
  }
  EXPECT_EQ(told, 3 + 3 + 3 + 1 + 1);
  // A heading without a box leads no row.
  list.InsertColumn(1, L"own", format_left, 30);
  list.SetCheckbox(0, 1, unchecked);
  LRESULT result = 0;
  list.OnColumnClick({1}, result);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(list.GetCheckbox(0, 1), unchecked);
  // A disabled row keeps its box, and doesn't hinder the heading from clearing the others; nor does
  // a row without a box.
  EXPECT_FALSE(list.SetHeaderCheckedState(0, 2));
  list.ToggleCheckbox(2, 0);
  list.SetEnabled(2, false);
  list.AddItem(L"no box");
  list.OnColumnClick({0}, result);
  EXPECT_EQ(result, 1);
  EXPECT_EQ(list.CountCheckedItems(0, checked), 0);
  EXPECT_FALSE(list.ToggleCheckbox(2, 0));
  EXPECT_FALSE(list.SetCheckbox(0, 0, mixed));
}

TEST(Combos, EntriesKeepTheirDataAndTheirSelection) {
  CWnd parent;
  CComboBoxX plain;
  CComboBox sorted(CComboBox::Order::sorted);
  ASSERT_TRUE(parent.Create(nullptr) && plain.Create(&parent, 7));
  for (const wchar_t* const name : {L"pear", L"Apple", L"fig", L"apple", L"Öl", L"pear"}) {
    const int number = plain.AddString(name);
    EXPECT_TRUE(sorted.SetItemData(sorted.AddString(name), 100 + number));
    if (number == 0) sorted.SetCurSel(0);
  }
  EXPECT_EQ(Entries(plain), " pear=0 Apple=0 fig=0 apple=0 Öl=0 pear=0");
  EXPECT_EQ(Entries(sorted), " Apple=101 apple=103 fig=102 *pear=100 pear=105 Öl=104");
  const std::tuple<int, const wchar_t*, int> searches[] = {
      {-1, L"pear", 0}, {0, L"pear", 5}, {5, L"pear", 0}, {-1, L"pea", -1}, {INT_MAX, L"apple", 3}};
  for (const auto& [start, text, found] : searches) {
    EXPECT_EQ(plain.FindStringExact(start, text), found) << start;
  }
  for (const int bad : {-1, 6, INT_MIN, INT_MAX}) {
    EXPECT_EQ(plain.GetItemData(bad), -1);
    EXPECT_FALSE(plain.SetItemData(bad, 1) || plain.ChooseEntry(bad));
    EXPECT_EQ(plain.GetLBText(bad), L"");
  }

  std::vector<WPARAM> heard;
  parent.OnMessage(WM_COMMAND, [&](WPARAM w, LPARAM) {
    heard.push_back(w);
    return LRESULT{};
  });
  plain.SetCurSel(1);
  EXPECT_TRUE(plain.ChooseEntry(2));
  EXPECT_EQ(plain.GetCurSel(), 2);
  EXPECT_EQ(heard, std::vector{CommandParam(7, command_selection_changed)});
  for (const int none : {-1, 6}) {
    plain.SetCurSel(none);
    EXPECT_EQ(plain.GetCurSel(), -1);
  }
  plain.SetCurSel(3);
  plain.ResetContent();
  EXPECT_EQ(plain.GetCurSel(), -1);
}

struct TestResources : ResourceModule {
  const DialogTemplate* FindDialog(unsigned int id) const override {
    return id == 5 ? &box : nullptr;
  }
  using Kind = DialogItem::Kind;
  DialogTemplate box{L"Pick",
                     100,
                     72,
                     L"",
                     8,
                     {{1, Kind::default_button, {60, 56, 92, 70}, L"OK"},
                      {2, Kind::button, {9, 56, 50, 70}, L"Cancel"},
                      {30, Kind::list, {8, 0, 92, 54}, L""}}};
};

class PickDialog : public CDialog3d {
 public:
  explicit PickDialog(const ResourceModule& resources, CWnd* owner = nullptr, unsigned int id = 5)
      : CDialog3d(id, owner, resources) {}
  using CDialog3d::OnCommand;
  CXListCtrl list;

 protected:
  void DoDataExchange(CDataExchange& exchange) override {
    CWnd stray;
    DDX_Control(exchange, 31, stray);  // not in the template
    DDX_Control(exchange, 1, stray);   // a button
    EXPECT_FALSE(stray.IsWindow());
    DDX_Control(exchange, 30, list);
  }
};

TEST(Dialogs, ShowTheirItemsAndHearTheirButtons) {
  TestResources resources;
  PickDialog dialog(resources);
  std::vector<int> pressed;
  for (const int id : {1, 2}) dialog.OnCommand(id, [&, id] { pressed.push_back(id); });
  EXPECT_FALSE(dialog.PressButton(1) || dialog.Close());  // not displayed
  ASSERT_TRUE(dialog.DisplayDialog());
  EXPECT_FALSE(dialog.DisplayDialog());
  FillList(dialog.list);
  // Smaller than its rows, as the template has it, and larger in both directions.
  EXPECT_EQ(SideBySide({TextView::Draw(dialog, {23, 9, 1}), TextView::Draw(dialog),
                        TextView::Draw(dialog, {31, 12, 0})}),
            R"(
╒═ Pick ══════════════╕  ╒═ Pick ══════════════════╕  ╒═ Pick ══════════════════════╕
│  ┌───────────┬───┐  │  │  ┌───────────┬───────┐  │  │  ┌───────────┬───────────┐  │
│  │ Section   │ … │  │  │  │ Section   │ Value │  │  │  │ Section   │ Value     │  │
│  ├───────────┼───┤  │  │  ├───────────┼───────┤  │  │  ├───────────┼───────────┤  │
│  │·Other    ·│·…·▲  │  │  │ Fruit     │ ap… ▾ │  │  │  │ Fruit     │ apple   ▾ │  │
│  └───────────┴───┘  │  │  │·Other    ·│·pe… ▾·│  │  │  │·Other    ·│·pear    ▾·│  │
│  [ Cancel…«  OK  »  │  │  │           │       │  │  │  │           │           │  │
│                     │  │  └───────────┴───────┘  │  │  │           │           │  │
└─────────────────────┘  │  [ Cancel ]   «  OK  »  │  │  └───────────┴───────────┘  │
                         │                         │  │  [ Cancel ]       «  OK  »  │
                         └─────────────────────────┘  │                             │
                                                      └─────────────────────────────┘
)");
  // Places: a button and the list, and in the list a cell that the scrolling has moved.
  const auto at = [](CRect place) {
    return std::vector{place.left, place.top, place.right, place.bottom};
  };
  EXPECT_EQ(at(TextView::ItemPlace(dialog, 1, {31, 12, 0})), (std::vector{20, 9, 28, 10}));
  EXPECT_EQ(at(TextView::ItemPlace(dialog, 30, {23, 9, 0})), (std::vector{3, 1, 20, 6}));
  EXPECT_EQ(TextView::ItemPlace(dialog, 77).Width(), 0);
  EXPECT_EQ(at(TextView::CellPlace(dialog.list, 1, 1, {17, 5, 1})), (std::vector{13, 3, 16, 4}));
  for (const auto& [row, column] : Pairs{{0, 1}, {1, 2}, {1, -1}, {2, 0}}) {  // not shown
    EXPECT_EQ(TextView::CellPlace(dialog.list, row, column, {17, 5, 1}).Width(), 0);
  }
  EXPECT_TRUE(dialog.PressButton(1) && dialog.PressButton(2) && dialog.Close());
  EXPECT_FALSE(dialog.PressButton(30) || dialog.PressButton(99));
  EXPECT_EQ(pressed, (std::vector{1, 2, 2}));
  EXPECT_TRUE(dialog.DestroyWindow());
  EXPECT_FALSE(dialog.list.IsWindow());

  resources.box.title = L"Wähle";  // the next display asks again
  ASSERT_TRUE(dialog.DisplayDialog());
  EXPECT_EQ(dialog.Template().title, L"Wähle");
  EXPECT_FALSE(PickDialog(resources, nullptr, 6).DisplayDialog());
}

TEST(Dialogs, EndWithTheirOwner) {
  const TestResources resources;
  std::optional<CWnd> owner(std::in_place);
  PickDialog dialog(resources, &*owner);
  EXPECT_TRUE(dialog.DisplayDialog());  // an owner without a window is none
  EXPECT_EQ(dialog.GetParent(), nullptr);
  dialog.DestroyWindow();
  ASSERT_TRUE(owner->Create(nullptr) && dialog.DisplayDialog());
  EXPECT_EQ(dialog.GetParent(), &*owner);
  owner.reset();
  EXPECT_FALSE(dialog.IsWindow());
  EXPECT_TRUE(dialog.DisplayDialog());  // and one that is gone is none
}

TEST(Views, HearOfWindowsBelowThemAndOnceOfABatch) {
  using Handles = std::vector<WindowHandle>;
  struct Noting : WindowView {
    void Shown(CWnd& window) override { shown.push_back(window.Handle()); }
    void Changed(CWnd& window) override { changed[&window]++; }
    void Gone(WindowHandle window) override { gone.push_back(window); }
    Handles shown;
    std::map<CWnd*, int> changed;
    Handles gone;
  };
  Noting view;
  CWnd frame;
  frame.SetView(&view);
  ASSERT_TRUE(frame.Create(nullptr));
  const TestResources resources;
  PickDialog dialog(resources, &frame);
  CXListCtrl& list = dialog.list;
  ASSERT_TRUE(dialog.DisplayDialog());
  EXPECT_EQ(view.shown, (Handles{frame.Handle(), dialog.Handle(), list.Handle()}));
  FillList(list);
  EXPECT_GT(view.changed[&list], 0);
  view.changed.clear();
  try {
    const BatchInsertMode batch(list);
    for (int i = 0; i < 100; ++i) list.AddItem(L"row");
    EXPECT_EQ(view.changed[&list], 0);
    throw std::runtime_error("in the midst of it");
  } catch (const std::runtime_error&) {
  }
  EXPECT_EQ(view.changed[&list], 1);
  list.AddItem(L"row");
  EXPECT_EQ(view.changed[&list], 2);
  view.changed.clear();
  Noting own;
  list.SetView(&own);
  list.ChooseEntry(0, 1, 8);
  EXPECT_EQ(own.changed[&list], 1);
  list.SetFocus();
  list.KillFocus();
  EXPECT_EQ(own.changed[&list], 3);
  EXPECT_EQ(view.changed[&list], 0);
  list.SetView(nullptr);
  dialog.DestroyWindow();
  EXPECT_EQ(view.gone, (Handles{list.Handle(), dialog.Handle()}));
}

TEST(TextPictures, KeepTheirShapeWhateverTheTextsAre) {
  CXListCtrl list;
  CComboBoxX combo;
  ASSERT_TRUE(list.Create(nullptr) && combo.Create(nullptr));
  FillChecks(list, 2);
  list.SetItemText(0, 0, L"a\nb\x9B");                                    // control characters
  list.SetItemText(1, 0, std::wstring(L"測定\xD83D\xDE00") + L"x\x301");  // wide, pair, combining
  list.ToggleCheckbox(1, 0);
  list.AutosizeColumnWidth(0);
  const TextView::Lines whole = TextView::Draw(static_cast<const CWnd&>(list));
  for (int i = 2; i < 9; ++i) list.AddItem(L"row " + std::to_wstring(i));
  list.SetComboBox(4, 0, fruits, 3);
  combo.AddString(L"apple");
  combo.AddString(L"pear");
  combo.SetCurSel(1);
  EXPECT_EQ(SideBySide({TextView::Draw(combo), TextView::DrawEntries(combo),
                        TextView::Draw(list, {6, 5, 4}), TextView::Draw(list, {7, 5, 4}),
                        TextView::Draw(list, {10, 5, 3}), TextView::Draw(list, {10, 6, 3}),
                        TextView::Draw(list, {10, 6, INT_MAX}), whole}),
            R"(
┌─────────┐  ┌───────┐  ┌────┐  ┌─────┐  ┌────────┐  ┌────────┐  ┌────────┐  ┌─────────────┐
│ pear  ▾ │  │ apple │  │ [… │  │ [-… │  │ [-] a… │  │ [-] a… │  │ [-] a… │  │ [-] all     │
└─────────┘  │▐pear ▌│  ├────┤  ├─────┤  ├────────┤  ├────────┤  ├────────┤  ├─────────────┤
             └───────┘  │ a… ↕  │ … ▾ ↕  │ row 3  ↕  │ row 3  ▲  │ row 7  ▲  │ [ ] a b     │
                        └────┘  └─────┘  └────────┘  │ app… ▾ ▼  │ row 8  │  │ [x] 測定😀x́ │
                                                     └────────┘  └────────┘  └─────────────┘
)");
  EXPECT_TRUE(TextView::DrawEntries(list, 0, 0).empty());

  // What no screen has is drawn at a size that one could have.
  for (const int size : {INT_MIN, INT_MAX}) {
    const TextView::Lines lines = TextView::Draw(list, {size, size, size});
    EXPECT_TRUE(!lines.empty() && lines.size() <= 10'000U && TextColumns(lines[0]) <= 10'000);
  }
}

}  // namespace
