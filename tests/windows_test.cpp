// What controls stand on: messages arrive once and in order, nothing is ever sent to a window that
// is gone, gestures that make no sense do nothing, and views hear of what changed.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <memory>
#include <optional>

#include "interfaces/ComboBoxX.h"
#include "interfaces/Dialog3d.h"
#include "interfaces/TextView.h"
#include "interfaces/XListCtrl.h"

namespace {

std::string Utf8(const TextView::Lines& lines) {
  std::string out;
  for (const CString& line : lines) out += Text::ToUtf8(line) + "\n";
  return out;
}

const std::map<int, CString> fruits = {{-1, L"—"}, {3, L"apple"}, {8, L"pear"}};

// Two rows: a drop-down in the first, a disabled one in the second.
void FillList(CXListCtrl& list) {
  list.InsertColumn(0, L"Section", ColumnFormat::left, 66);
  list.InsertColumn(1, L"Value", ColumnFormat::left, 66);
  list.InsertColumn(2, L"Id", ColumnFormat::right, 30);
  list.AddItem(L"Fruit", nullptr, 40);
  list.SetComboBox(0, 1, fruits, 3);
  list.SetItemText(0, 2, 3);
  list.AddItem(L"Other");
  list.SetComboBox(1, 1, fruits, 8);
  list.SetEnabled(1, false);
}

// A list that notes what its base class tells it.
class NotingList : public CXListCtrl {
 public:
  std::vector<std::pair<int, int>> noted;  // row and state
  std::function<void()> on_note;

 protected:
  void OnItemStateChange(int row, int sub_item, int state) override {
    noted.emplace_back(row, state);
    CXListCtrl::OnItemStateChange(row, sub_item, state);
    const auto note = on_note;  // a copy, since it may delete the list
    if (note) note();
  }
};

void FillChecks(CXListCtrl& list, int count) {
  list.InsertColumn(0, L"all", ColumnFormat::left, 90);
  list.SetHeaderAutoCheckbox(true);
  list.SetBatchInsertMode(true);
  for (int i = 0; i < count; ++i) list.SetCheckbox(list.AddItem(L"x"), 0, unchecked);
  list.SetBatchInsertMode(false);
}

TEST(Windows, MessagesReachTheLivingAndOnlyThem) {
  const unsigned int message = RegisterWindowMessage(L"windows test");
  EXPECT_EQ(RegisterWindowMessage(L"windows test"), message);
  EXPECT_NE(RegisterWindowMessage(L"Windows test"), message);
  EXPECT_GE(message, 0xC000U);

  auto window = std::make_unique<CWnd>();
  const WindowHandle handle = window->Handle();
  int calls = 0;
  window->OnMessage(message, [&](WPARAM w, LPARAM l) {
    ++calls;
    return static_cast<LRESULT>(w) + l;
  });
  EXPECT_EQ(SendMessage(handle, message, 5, -7), 0);  // no window yet
  EXPECT_FALSE(IsWindow(handle));
  ASSERT_TRUE(window->Create(nullptr));
  EXPECT_FALSE(window->Create(nullptr));
  EXPECT_EQ(SendMessage(handle, message, 5, -7), -2);
  EXPECT_EQ(SendMessage(handle, message + 1000, 5, -7), 0);
  EXPECT_TRUE(window->DestroyWindow());
  EXPECT_FALSE(window->DestroyWindow());
  SendMessage(handle, message, 5, -7);
  EXPECT_EQ(calls, 1);

  // A handler may take itself away, and the whole window.
  ASSERT_TRUE(window->Create(nullptr));
  window->OnMessage(message, [&](WPARAM, LPARAM) -> LRESULT {
    window->OnMessage(message, {});
    window.reset();
    return ++calls;
  });
  EXPECT_EQ(SendMessage(handle, message, 0, 0), 2);
  EXPECT_EQ(SendMessage(handle, message, 0, 0), 0);
  SendMessage(WindowHandle::none, message, 0, 0);
  EXPECT_EQ(calls, 2);
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
  EXPECT_EQ(child.GetParent(), parent.get());
  EXPECT_EQ(child.GetOwner(), parent.get());
  child.SetOwner(owner.get());
  EXPECT_EQ(child.GetOwner(), owner.get());
  owner.reset();
  EXPECT_EQ(child.GetOwner(), nullptr);
  EXPECT_TRUE(child.IsWindow());

  FillList(child);
  parent.reset();
  EXPECT_FALSE(child.IsWindow());
  EXPECT_FALSE(grandchild.IsWindow());
  EXPECT_EQ(child.GetParent(), nullptr);
  EXPECT_EQ(child.GetItemCount() + child.GetColumnCount(), 0);
  EXPECT_FALSE(child.ClickHeading(0));
  EXPECT_TRUE(child.Create(nullptr));  // the object can go on without it
}

TEST(Windows, TheFocusIsAtOneWindowAndLeavesWithIt) {
  class Noting : public CWnd {
   public:
    Noting(std::string& log, char name) : log_(log), name_(name) {}
    std::function<void()> on_kill;

   protected:
    void OnSetFocus(CWnd*) override { log_ += {'+', name_}; }
    void OnKillFocus(CWnd*) override {
      log_ += {'-', name_};
      if (on_kill) on_kill();
    }

   private:
    std::string& log_;
    char name_;
  };
  std::string log;
  Noting a(log, 'a');
  Noting b(log, 'b');
  a.SetFocus();  // no window, no focus
  ASSERT_TRUE(a.Create(nullptr));
  ASSERT_TRUE(b.Create(nullptr));
  a.SetFocus();
  a.SetFocus();
  b.SetFocus();
  a.KillFocus();
  b.DestroyWindow();
  a.SetFocus();
  a.on_kill = [&] { b.DestroyWindow(); };
  ASSERT_TRUE(b.Create(nullptr));
  b.SetFocus();  // b ends while a loses the focus to it
  EXPECT_EQ(log, "+a-a+b+a-a");
  EXPECT_FALSE(a.HasFocus() || b.HasFocus());
}

TEST(Lists, ChoosingAnEntryTellsTheCallbackOnce) {
  CXListCtrl list;
  ASSERT_TRUE(list.Create(nullptr));
  FillList(list);
  std::vector<std::pair<int, int>> heard;
  list.on_entry_chosen = [&](int row, int column) { heard.emplace_back(row, column); };
  EXPECT_TRUE(list.ChooseEntry(0, 1, 8));
  EXPECT_EQ(list.GetComboCurSel(0, 1), 8);
  EXPECT_EQ(list.GetItemText(0, 1), L"pear");
  struct Refused {
    int row, column, id;
  };
  const Refused refused[] = {{0, 1, 4},  {0, 0, 3},  {1, 1, 3},       {2, 1, 3},
                             {-1, 1, 3}, {0, -1, 3}, {0, INT_MAX, 3}, {INT_MIN, 1, 3}};
  for (const Refused& r : refused) EXPECT_FALSE(list.ChooseEntry(r.row, r.column, r.id)) << r.row;
  EXPECT_EQ(heard, (std::vector<std::pair<int, int>>{{0, 1}}));
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

TEST(Lists, AHandlerMayRefillDestroyOrDeleteTheList) {
  CXListCtrl list;
  ASSERT_TRUE(list.Create(nullptr));
  FillList(list);
  list.on_entry_chosen = [&](int, int) {
    list.on_entry_chosen = {};
    list.DeleteAllItems();
  };
  EXPECT_TRUE(list.ChooseEntry(0, 1, 8));
  EXPECT_EQ(list.GetItemCount(), 0);

  auto doomed = std::make_unique<NotingList>();
  ASSERT_TRUE(doomed->Create(nullptr));
  FillList(*doomed);
  doomed->on_entry_chosen = [&](int, int) { doomed.reset(); };
  EXPECT_TRUE(doomed->ChooseEntry(0, 1, 8));
  EXPECT_EQ(doomed, nullptr);

  // In the middle of a heading's click over all rows: fewer rows, no window, no object.
  for (const bool refill : {true, false}) {
    NotingList checks;
    ASSERT_TRUE(checks.Create(nullptr));
    FillChecks(checks, 5);
    checks.on_note = [&] { refill ? checks.DeleteAllItems() : void(checks.DestroyWindow()); };
    checks.ClickHeading(0);
    EXPECT_EQ(checks.noted.size(), 1U);
  }
  doomed = std::make_unique<NotingList>();
  ASSERT_TRUE(doomed->Create(nullptr));
  FillChecks(*doomed, 5);
  doomed->on_note = [&] { doomed.reset(); };
  doomed->ClickHeading(0);
  EXPECT_EQ(doomed, nullptr);
}

TEST(Lists, ClicksFindCheckBoxesAndNothingBesides) {
  NotingList list;
  ASSERT_TRUE(list.Create(nullptr));
  FillChecks(list, 3);
  list.SetItemText(1, 0, L"wider than the others");
  list.AutosizeColumnWidth(-1);
  list.SetEnabled(2, false);
  const int first = CXListCtrl::heading_height;
  const int step = CXListCtrl::row_height;
  struct Case {
    CPoint point;
    int row;
    unsigned int flags;
  };
  const Case cases[] = {
      {{8, first}, 0, hit_state_icon},        {{60, first + step - 1}, 0, hit_label},
      {{8, first + step}, 1, hit_state_icon}, {{8, first + 2 * step}, 2, hit_state_icon},
      {{8, first - 1}, -1, hit_nowhere},      {{8, first + 3 * step}, -1, hit_nowhere},
      {{-1, first}, -1, hit_nowhere},         {{list.GetColumn(0)->width, first}, -1, hit_nowhere},
      {{INT_MAX, INT_MAX}, -1, hit_nowhere},  {{INT_MIN, INT_MIN}, -1, hit_nowhere},
  };
  for (const Case& c : cases) {
    unsigned int flags = 0;
    EXPECT_EQ(list.HitTest(c.point, flags), c.row) << c.point.x << ' ' << c.point.y;
    EXPECT_EQ(flags, c.flags) << c.point.x << ' ' << c.point.y;
    if (c.point.y != first - 1) list.Click(c.point);  // not on the heading
  }
  EXPECT_TRUE(list.HasFocus());
  EXPECT_EQ(list.noted, (std::vector<std::pair<int, int>>{{0, checked}, {1, checked}}));
}

TEST(Lists, TheHeadingsCheckBoxFollowsTheRowsAndLeadsThem) {
  NotingList list;
  ASSERT_TRUE(list.Create(nullptr));
  FillChecks(list, 3);
  EXPECT_EQ(list.GetHeaderCheckedState(1), -1);
  EXPECT_TRUE(list.SetHeaderCheckedState(0, mixed));
  EXPECT_EQ(list.GetHeaderCheckedState(0), mixed);
  struct Case {
    int row;  // whose box is switched; -1: the heading's
    int state;
    int checked_rows;
  };
  const Case cases[] = {{0, mixed, 1},    {1, mixed, 2}, {2, checked, 3}, {-1, unchecked, 0},
                        {-1, checked, 3}, {1, mixed, 2}, {-1, checked, 3}};
  for (const Case& c : cases) {
    if (c.row == -1) {
      list.ClickHeading(0);
    } else {
      EXPECT_TRUE(list.ToggleCheckbox(c.row, 0));
    }
    EXPECT_EQ(list.GetHeaderCheckedState(0), c.state);
    EXPECT_EQ(list.CountCheckedItems(0, checked), c.checked_rows);
  }
  EXPECT_EQ(list.noted.size(), 3U + 3 + 3 + 1 + 1);
  // A disabled row keeps its box, and doesn't hinder the heading from clearing the others.
  EXPECT_FALSE(list.SetHeaderCheckedState(0, 2));
  list.ToggleCheckbox(2, 0);
  list.SetEnabled(2, false);
  list.ClickHeading(0);
  EXPECT_EQ(list.CountCheckedItems(0, checked), 0);
  EXPECT_FALSE(list.ToggleCheckbox(2, 0));
  EXPECT_FALSE(list.SetCheckbox(0, 0, mixed));
}

TEST(Combos, EntriesKeepTheirDataAndTheirSelection) {
  CWnd parent;
  CComboBoxX plain;
  CComboBox sorted(CComboBox::Order::sorted);
  ASSERT_TRUE(parent.Create(nullptr));
  ASSERT_TRUE(plain.Create(&parent, 7));
  ASSERT_TRUE(sorted.Create(&parent, 8));
  const wchar_t* const names[] = {L"pear", L"Apple", L"fig", L"apple", L"Öl", L"pear"};
  std::vector<int> places;
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(plain.AddString(names[i]), i);
    places.push_back(sorted.AddString(names[i]));
    EXPECT_TRUE(sorted.SetItemData(places.back(), 100 + i));
    if (i == 0) sorted.SetCurSel(0);
  }
  EXPECT_EQ(places, (std::vector<int>{0, 0, 1, 1, 4, 4}));
  EXPECT_EQ(sorted.GetLBText(sorted.GetCurSel()), L"pear");
  EXPECT_EQ(sorted.GetItemData(sorted.GetCurSel()), 100);
  EXPECT_EQ(sorted.GetItemData(sorted.FindStringExact(-1, L"Öl")), 104);
  EXPECT_EQ(plain.FindStringExact(-1, L"pear"), 0);  // the first of two
  EXPECT_EQ(plain.FindStringExact(0, L"pear"), 5);
  EXPECT_EQ(plain.FindStringExact(5, L"pear"), 0);
  EXPECT_EQ(plain.FindStringExact(-1, L"pea"), -1);
  EXPECT_EQ(plain.FindStringExact(INT_MAX, L"apple"), 3);
  for (const int bad : {-1, 6, INT_MIN, INT_MAX}) {
    EXPECT_EQ(plain.GetItemData(bad), -1);
    EXPECT_FALSE(plain.SetItemData(bad, 1));
    EXPECT_EQ(plain.GetLBText(bad), L"");
    EXPECT_FALSE(plain.ChooseEntry(bad));
  }

  std::vector<WPARAM> heard;
  parent.OnMessage(WM_COMMAND, [&](WPARAM w, LPARAM) {
    heard.push_back(w);
    return LRESULT{};
  });
  plain.SetCurSel(1);
  EXPECT_TRUE(plain.ChooseEntry(2));
  EXPECT_EQ(plain.GetCurSel(), 2);
  EXPECT_EQ(heard, std::vector<WPARAM>{CommandParam(7, command_selection_changed)});
  plain.SetCurSel(-1);
  EXPECT_EQ(plain.GetCurSel(), -1);
  plain.SetCurSel(3);
  plain.ResetContent();
  EXPECT_EQ(plain.GetCurSel(), -1);
}

// Filling takes about 32 times as long for 32 times the entries, not a thousand times. The best of
// several runs and a wide bound, since other programs share the machine.
TEST(Combos, FillingStaysLinear) {
  const auto fill_combo = [](int count) {
    CComboBoxX combo;
    combo.Create(nullptr);
    for (int i = 0; i < count; ++i) combo.SetItemData(combo.AddString(L"an entry"), i);
    EXPECT_EQ(combo.GetItemData(count - 1), count - 1);
  };
  const std::pair<const char*, std::function<void(int)>> fills[] = {
      {"combo", fill_combo}, {"checks", [](int count) {
                                CXListCtrl list;
                                list.Create(nullptr);
                                FillChecks(list, count);
                                EXPECT_EQ(list.CountCheckedItems(0, unchecked), count);
                              }}};
  for (const auto& [name, fill] : fills) {
    const auto best = [&fill = fill](int count) {
      auto least = std::chrono::steady_clock::duration::max();
      for (int run = 0; run < 3; ++run) {
        const auto start = std::chrono::steady_clock::now();
        fill(count);
        least = std::min(least, std::chrono::steady_clock::now() - start);
      }
      return least;
    };
    EXPECT_LT(best(48000), 200 * best(1500)) << name;
  }
}

class TestResources : public ResourceModule {
 public:
  TestResources() {
    using Kind = DialogItem::Kind;
    box.title = L"Pick";
    box.width = 100;
    box.height = 72;
    box.items = {{1, Kind::default_button, {60, 56, 92, 70}, L"OK"},
                 {2, Kind::button, {8, 56, 48, 70}, L"Cancel"},
                 {30, Kind::list, {8, 0, 92, 54}, L""}};
  }
  const DialogTemplate* FindDialog(unsigned int id) const override {
    return id == 5 ? &box : nullptr;
  }
  DialogTemplate box;
};

class PickDialog : public CDialog3d {
 public:
  PickDialog(const ResourceModule& resources, CWnd* owner = nullptr, unsigned int template_id = 5)
      : CDialog3d(template_id, owner, resources) {
    for (const int id : {id_ok, id_cancel}) {
      OnCommand(id, [this, id] {
        const auto handler = on_button;  // a copy, since it may delete the dialog
        handler(id);
      });
    }
  }
  std::function<void(int)> on_button;
  CXListCtrl list;

 protected:
  void DoDataExchange(CDataExchange& exchange) override {
    DDX_Control(exchange, 30, list);
    DDX_Control(exchange, 31, stray_);  // not in the template
    DDX_Control(exchange, 1, stray_);   // a button
    EXPECT_FALSE(stray_.IsWindow());
  }

 private:
  CWnd stray_;
};

TEST(Dialogs, ShowTheirItemsAndHearTheirButtons) {
  TestResources resources;
  PickDialog dialog(resources);
  std::vector<int> pressed;
  dialog.on_button = [&](int id) { pressed.push_back(id); };
  EXPECT_FALSE(dialog.PressButton(1));  // not displayed
  EXPECT_FALSE(dialog.Close());
  ASSERT_TRUE(dialog.DisplayDialog());
  EXPECT_FALSE(dialog.DisplayDialog());
  FillList(dialog.list);
  EXPECT_EQ(Utf8(TextView::Draw(dialog)),
            "╒═ Pick ══════════════════╕\n"
            "│  ┌───────────┬───────┐  │\n"
            "│  │ Section   │ Value │  │\n"
            "│  ├───────────┼───────┤  │\n"
            "│  │ Fruit     │ ap… ▾ │  │\n"
            "│  │·Other    ·│·pe… ▾·│  │\n"
            "│  │           │       │  │\n"
            "│  └───────────┴───────┘  │\n"
            "│  [ Cancel ]   «  OK  »  │\n"
            "│                         │\n"
            "└─────────────────────────┘\n");
  // Larger in both directions, and smaller than its rows.
  EXPECT_EQ(Utf8(TextView::Draw(dialog, {31, 12, 0})),
            "╒═ Pick ══════════════════════╕\n"
            "│  ┌───────────┬───────────┐  │\n"
            "│  │ Section   │ Value     │  │\n"
            "│  ├───────────┼───────────┤  │\n"
            "│  │ Fruit     │ apple   ▾ │  │\n"
            "│  │·Other    ·│·pear    ▾·│  │\n"
            "│  │           │           │  │\n"
            "│  │           │           │  │\n"
            "│  └───────────┴───────────┘  │\n"
            "│  [ Cancel ]       «  OK  »  │\n"
            "│                             │\n"
            "└─────────────────────────────┘\n");
  EXPECT_EQ(Utf8(TextView::Draw(dialog, {23, 9, 1})),
            "╒═ Pick ══════════════╕\n"
            "│  ┌───────────┬───┐  │\n"
            "│  │ Section   │ … │  │\n"
            "│  ├───────────┼───┤  │\n"
            "│  │·Other    ·│·…·▲  │\n"
            "│  └───────────┴───┘  │\n"
            "│  [ Cancel…«  OK  »  │\n"
            "│                     │\n"
            "└─────────────────────┘\n");
  for (const int size : {INT_MIN, 1, 3, 6, 9}) {
    EXPECT_FALSE(TextView::Draw(dialog, {size, size, size}).empty()) << size;
  }
  // Places: a button and the list, and in the list a cell that the scrolling has moved.
  const auto at = [](CRect place) {
    return std::vector{place.left, place.top, place.right, place.bottom};
  };
  EXPECT_EQ(at(TextView::ItemPlace(dialog, 1, {31, 12, 0})), (std::vector{20, 9, 28, 10}));
  EXPECT_EQ(at(TextView::ItemPlace(dialog, 30, {23, 9, 0})), (std::vector{3, 1, 20, 6}));
  EXPECT_EQ(at(TextView::CellPlace(dialog.list, 1, 1, {17, 5, 1})), (std::vector{13, 3, 16, 4}));
  for (const auto& [row, column] : {std::pair{0, 1}, {1, 2}, {1, -1}, {2, 0}}) {  // not shown
    EXPECT_EQ(TextView::CellPlace(dialog.list, row, column, {17, 5, 1}).Width(), 0);
  }
  EXPECT_EQ(TextView::ItemPlace(dialog, 77).Width(), 0);
  EXPECT_TRUE(dialog.PressButton(1));
  EXPECT_TRUE(dialog.PressButton(2));
  EXPECT_TRUE(dialog.Close());
  EXPECT_FALSE(dialog.PressButton(30));
  EXPECT_FALSE(dialog.PressButton(99));
  EXPECT_EQ(pressed, (std::vector<int>{1, 2, 2}));
  EXPECT_TRUE(dialog.DestroyWindow());
  EXPECT_FALSE(dialog.list.IsWindow());

  resources.box.title = L"Wähle";  // the next display asks again
  ASSERT_TRUE(dialog.DisplayDialog());
  EXPECT_EQ(dialog.Template().title, L"Wähle");
  EXPECT_FALSE(PickDialog(resources, nullptr, 6).DisplayDialog());
}

TEST(Dialogs, EndWithTheirOwnerOrInTheirOwnHandler) {
  TestResources resources;
  std::optional<CWnd> owner(std::in_place);
  PickDialog dialog(resources, &*owner);
  EXPECT_TRUE(dialog.DisplayDialog());  // an owner without a window is none
  EXPECT_EQ(dialog.GetParent(), nullptr);
  dialog.DestroyWindow();
  ASSERT_TRUE(owner->Create(nullptr));
  ASSERT_TRUE(dialog.DisplayDialog());
  EXPECT_EQ(dialog.GetParent(), &*owner);
  owner.reset();
  EXPECT_FALSE(dialog.IsWindow());
  EXPECT_TRUE(dialog.DisplayDialog());  // and one that is gone is none

  auto doomed = std::make_unique<PickDialog>(resources);
  ASSERT_TRUE(doomed->DisplayDialog());
  doomed->on_button = [&](int) { doomed.reset(); };
  EXPECT_TRUE(doomed->PressButton(1));
  EXPECT_EQ(doomed, nullptr);
}

TEST(Views, HearOfWindowsBelowThemAndOnceOfABatch) {
  struct Noting : WindowView {
    void Shown(CWnd& window) override { shown.push_back(window.Handle()); }
    void Changed(CWnd& window) override { changed[&window]++; }
    void Gone(WindowHandle window) override { gone.push_back(window); }
    std::vector<WindowHandle> shown;
    std::map<CWnd*, int> changed;
    std::vector<WindowHandle> gone;
  };
  Noting view;
  CWnd frame;
  frame.SetView(&view);
  ASSERT_TRUE(frame.Create(nullptr));
  TestResources resources;
  PickDialog dialog(resources, &frame);
  ASSERT_TRUE(dialog.DisplayDialog());
  EXPECT_EQ(view.shown, (std::vector{frame.Handle(), dialog.Handle(), dialog.list.Handle()}));
  FillList(dialog.list);
  EXPECT_GT(view.changed[&dialog.list], 0);
  view.changed.clear();
  dialog.list.SetBatchInsertMode(true);
  for (int i = 0; i < 100; ++i) dialog.list.AddItem(L"row");
  EXPECT_EQ(view.changed[&dialog.list], 0);
  dialog.list.SetBatchInsertMode(false);
  EXPECT_EQ(view.changed[&dialog.list], 1);
  Noting own;
  dialog.list.SetView(&own);
  dialog.list.ChooseEntry(0, 1, 8);
  EXPECT_EQ(view.changed[&dialog.list], 1);
  EXPECT_EQ(own.changed[&dialog.list], 1);
  dialog.list.SetFocus();
  dialog.list.KillFocus();
  EXPECT_EQ(own.changed[&dialog.list], 3);
  dialog.list.SetView(nullptr);
  dialog.DestroyWindow();
  EXPECT_EQ(view.gone, (std::vector{dialog.list.Handle(), dialog.Handle()}));
}

TEST(Windows, MayBeDeletedWhileTheyBeginAndEnd) {
  class Telling : public CWnd {
   public:
    std::function<void()> on_begin;
    std::function<void()> on_end;

   protected:
    void PreSubclassWindow() override { Run(on_begin); }
    void OnDestroy() override { Run(on_end); }

   private:
    static void Run(const std::function<void()>& action) {
      const auto copy = action;  // since it may delete the window
      if (copy) copy();
    }
  };
  auto doomed = std::make_unique<Telling>();
  doomed->on_begin = [&] { doomed.reset(); };
  EXPECT_FALSE(doomed->Create(nullptr));

  auto parent = std::make_unique<Telling>();
  Telling child;
  ASSERT_TRUE(parent->Create(nullptr));
  ASSERT_TRUE(child.Create(parent.get()));
  child.on_end = [&] { parent.reset(); };
  EXPECT_TRUE(parent->DestroyWindow());
  EXPECT_FALSE(child.IsWindow());

  // The end of one window may be the beginning of the next.
  bool ended = false;
  Telling phoenix;
  ASSERT_TRUE(phoenix.Create(nullptr));
  ASSERT_TRUE(child.Create(&phoenix));
  phoenix.on_end = [&] { ended = true; };
  child.on_end = [&] { phoenix.Create(nullptr); };
  phoenix.DestroyWindow();
  EXPECT_TRUE(phoenix.IsWindow());
  EXPECT_FALSE(ended) << "the new window must not lose what it holds";
}

TEST(TextPictures, KeepTheirShapeWhateverTheTextsAre) {
  CXListCtrl list;
  ASSERT_TRUE(list.Create(nullptr));
  FillChecks(list, 2);
  list.SetItemText(0, 0, L"a\nb\t");                                      // control characters
  list.SetItemText(1, 0, std::wstring(L"測定\xD83D\xDE00") + L"e\x301");  // wide, pair, combining
  list.ToggleCheckbox(1, 0);
  list.AutosizeColumnWidth(0);
  const std::string expected =
      "┌─────────────┐\n"
      "│ [-] all     │\n"
      "├─────────────┤\n"
      "│ [ ] a b     │\n"
      "│ [x] 測定😀e\xCC\x81 │\n"
      "└─────────────┘\n";
  EXPECT_EQ(Utf8(TextView::Draw(static_cast<const CWnd&>(list))), expected);

  for (int i = 2; i < 9; ++i) list.AddItem(L"row " + std::to_wstring(i));
  EXPECT_EQ(Utf8(TextView::Draw(list, {10, 6, 3})),
            "┌────────┐\n"
            "│ [-] a… │\n"
            "├────────┤\n"
            "│ row 3  ▲\n"
            "│ row 4  ▼\n"
            "└────────┘\n");
  EXPECT_EQ(TextView::Draw(list, {10, 6, INT_MAX})[4], L"│ row 8  │");

  CComboBoxX combo;
  ASSERT_TRUE(combo.Create(nullptr));
  combo.AddString(L"apple");
  combo.AddString(L"pear");
  combo.SetCurSel(1);
  EXPECT_EQ(Utf8(TextView::Draw(combo)) + Utf8(TextView::DrawEntries(combo)),
            "┌─────────┐\n"
            "│ pear  ▾ │\n"
            "└─────────┘\n"
            "┌───────┐\n"
            "│ apple │\n"
            "│▐pear ▌│\n"
            "└───────┘\n");
  EXPECT_TRUE(TextView::DrawEntries(list, 0, 0).empty());

  EXPECT_EQ(TextView::Draw(list, {10, 5, 3})[3], L"│ row 3  ↕");

  // A picture has the size of its frame, however small or large the wish is.
  list.InsertColumn(1, L"second", ColumnFormat::right, 40);
  list.SetItemText(0, 1, L"\x9B m");  // would steer a terminal
  TestResources resources;
  PickDialog dialog(resources);
  EXPECT_TRUE(TextView::Draw(dialog).empty());
  ASSERT_TRUE(dialog.DisplayDialog());
  const CWnd* const windows[] = {&list, &combo, &dialog};
  for (const CWnd* const window : windows) {
    for (const int width : {1, 2, 3, 4, 5, 9, 10, 11, 12, 40}) {
      for (const int height : {1, 2, 3, 4, 6, 30}) {
        const TextView::Lines lines = TextView::Draw(*window, {width, height, width});
        const bool is_combo = window == &combo;
        EXPECT_EQ(lines.size(), static_cast<std::size_t>(is_combo ? std::min(height, 3) : height));
        for (const CString& line : lines) {
          EXPECT_EQ(TextColumns(line), width) << Text::ToUtf8(line);
          EXPECT_EQ(line.find(L'\x9B'), CString::npos);
        }
      }
    }
    EXPECT_FALSE(TextView::Draw(*window, {INT_MIN, INT_MIN, INT_MIN}).empty());
    EXPECT_LE(TextView::Draw(*window, {10, INT_MAX, INT_MAX}).size(), 10'000U);
    EXPECT_LE(TextColumns(TextView::Draw(*window, {INT_MAX, 5, INT_MAX})[0]), 10'000);
  }
}

}  // namespace
