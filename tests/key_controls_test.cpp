// The controls with which a user picks ids and keys: what is offered, what is kept although it
// isn't, and what the owner hears. All of it is worked as a user works it.
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "controls/ClavisComboBox.h"
#include "controls/ClavisListCtrl.h"
#include "controls/KestrinCtrl.h"
#include "controls/KestrinDialog.h"
#include "controls/OfferedIds.h"
#include "frame/ModuleStrings.h"
#include "interfaces/TextView.h"
#include "test_store.h"

namespace {

using Mask = CKestrinCtrl::ElementMask;
using Params = CQtParamInstance;

constexpr int virtual_mode = 7 + (1 << 11);

// Controls ask the data base of the process.
class KeyControls : public testing::Test {
 protected:
  KeyControls() {
    SetUserLanguage("en");
    Load(R"(
<TMode>: {
9 "Coast"
5 "Standstill"
7 "Run-up"
2055 "Band"
}
<TModeProperty>: {
5 1 1024
7 1 0
}
<TInstrument>: {
1001 "RMS"
2001 "RMS track"
}
<TInstrumentParam>: {
12 2001 "high"
10 1001 "RMS"
11 2001 "low"
}
<TChannel>: {
3 "Sync"
}
<TLocation>: {
1 "Shaft"
2 "Gear"
}
<TLocationProperty>: {
1 1
2 6
}
<TApplicationSignal>: {
21 "Acceleration"
22 "Sound"
23 "Bare"
}
<TAppSignalProperty>: {
21 1 "g"
22 2 "Pa"
}
)");
  }

  ~KeyControls() override {
    Params::ShowIdsInDialogs(false);
    params_.PurgeTables();
  }

  void Load(const std::string& sections) {
    const testing_support::Log log;
    params_.PurgeTables();
    testing_support::FillCandidateLake(testing_support::version + sections);
    EXPECT_TRUE(params_.ReadTablesFromCandidateLake());
    CParameterLake::Lake().clear();
    EXPECT_TRUE(log.lines.empty()) << Text::ToUtf8(log.Text());
  }

 private:
  Params params_;
};

CClavis Key(int mode, int instrument, int channel, int location, int parameter, int sensor) {
  const int ids[] = {mode, instrument, channel, location, parameter, sensor};
  return CClavis(ids);
}

// Every entry as "text=id", the selected one behind a *.
std::string Entries(const CComboBox& combo) {
  std::string all;
  for (int i = 0; i < combo.GetCount(); ++i) {
    all += i == combo.GetCurSel() ? " *" : " ";
    all += Text::ToUtf8(combo.GetLBText(i)) + "=" + std::to_string(combo.GetItemData(i));
  }
  return all;
}

// Every row as "text=id", the checked ones behind a +.
std::string Rows(const CXListCtrl& list) {
  std::string all;
  for (int row = 0; row < list.GetItemCount(); ++row) {
    all += list.GetCheckbox(row, 0) == checked ? " +" : " ";
    all += Text::ToUtf8(list.GetItemText(row, 0)) + "=" + std::to_string(list.GetItemData(row));
  }
  return all;
}

// The entries of a cell's drop-down as "text=id", the selected one behind a *.
std::string DropDown(const CXListCtrl& list, int row) {
  std::string all;
  const ListCell* const cell = list.GetCell(row, 1);
  if (!cell || !cell->list) return "none";
  for (const auto& [id, text] : *cell->list) {
    all += id == cell->selected ? " *" : " ";
    all += Text::ToUtf8(text) + "=" + std::to_string(id);
  }
  return all;
}

// All cells of column `column`, each behind a blank.
std::string Column(const CXListCtrl& list, int column) {
  std::string all;
  for (int row = 0; row < list.GetItemCount(); ++row) {
    all += " " + Text::ToUtf8(list.GetItemText(row, column));
  }
  return all;
}

std::string Drawn(const CXListCtrl& list) {
  std::string lines;
  for (const CString& line : TextView::Draw(list)) lines += Text::ToUtf8(line) + "\n";
  return lines;
}

// A window that notes the messages of key editors as "element:id", the second message in brackets.
class Listener : public CWnd {
 public:
  static unsigned int SecondMessage() { return RegisterWindowMessage(L"key controls test"); }

  Listener() {
    OnMessage(WM_KESTRINCTRL_SELCHANGED, [this](WPARAM w, LPARAM l) { return Note(w, l, "", ""); });
    OnMessage(SecondMessage(), [this](WPARAM w, LPARAM l) { return Note(w, l, "[", "]"); });
  }

  std::string heard;
  std::function<void()> on_message;

 private:
  LRESULT Note(WPARAM w, LPARAM l, const char* open, const char* close) {
    heard += " " + (open + std::to_string(w)) + ":" + std::to_string(l) + close;
    const auto action = on_message;  // a copy, since it may delete this window
    if (action) action();
    return 0;
  }
};

// --- One element ---

TEST_F(KeyControls, TheComboOffersWhatTheFilterLetsThrough) {
  struct Case {
    Clavis::qOrder element;
    int selected;
    unsigned int filter;
    const char* entries;
    int retrieved;
  };
  const Case cases[] = {
      {Clavis::Mode, -1, 0, " *(not assigned)=-1 Run-up=7 Coast=9", -1},
      {Clavis::Mode, 9, 0xFF, " (not assigned)=-1 Run-up=7 *Coast=9", 9},  // never filtered
      {Clavis::Mode, 5, 0, " (not assigned)=-1 Run-up=7 Coast=9 *(test step 5)=5", 5},
      {Clavis::Instrument, 1001, 0, " (not assigned)=-1 *RMS=1001 RMS track=2001", 1001},
      {Clavis::Instrument, 1001, 1, " (not assigned)=-1 *RMS=1001", 1001},
      {Clavis::Instrument, 1001, 2, " (not assigned)=-1 RMS track=2001 *(instrument 1001)=1001",
       1001},
      {Clavis::Instrument, -1, 0x80, " *(not assigned)=-1", -1},
      {Clavis::Channel, 3, 0xFF, " (not assigned)=-1 *Sync=3", 3},
      {Clavis::Location, -2, 3, " (not assigned)=-1 Shaft=1 Gear=2", -1},  // nothing is selected
      {Clavis::Location, 2, 4, " (not assigned)=-1 *Gear=2", 2},
      {Clavis::Sensor, 0, 0, " (not assigned)=-1 Acceleration=21 Sound=22 Bare=23 *(sensor 0)=0",
       0},
      {Clavis::Sensor, 23, 3, " (not assigned)=-1 Acceleration=21 Sound=22 *(sensor 23)=23", 23},
      {Clavis::Sensor, INT_MAX, 2, " (not assigned)=-1 Sound=22 *(sensor 2147483647)=2147483647",
       INT_MAX},
      {Clavis::Parameter, 10, 0, " (not assigned)=-1 *(parameter 10)=10", 10},
      {static_cast<Clavis::qOrder>(6), -1, 0, " *(not assigned)=-1", -1},
  };
  CClavisComboBox combo;
  EXPECT_EQ(combo.Retrieve(), -1);
  ASSERT_TRUE(combo.Create(nullptr));
  for (const Case& c : cases) {
    combo.Fill(c.element, c.selected, c.filter);
    EXPECT_EQ(Entries(combo), c.entries);
    EXPECT_EQ(combo.Retrieve(), c.retrieved) << c.entries;
  }

  combo.Fill(Clavis::Location, -2);
  EXPECT_EQ(combo.GetCurSel(), -1);
  ASSERT_TRUE(combo.ChooseEntry(2));
  EXPECT_EQ(combo.Retrieve(), 2);

  combo.HideVirtualModes(false);
  combo.Fill(Clavis::Mode, virtual_mode);
  EXPECT_EQ(Entries(combo), " (not assigned)=-1 Run-up=7 Coast=9 *Band=2055");
  Params::ShowIdsInDialogs(true);
  combo.Fill(Clavis::Channel, 5);
  EXPECT_EQ(Entries(combo), " (not assigned)=-1 Sync  [3]=3 *(channel 5)=5");
}

TEST_F(KeyControls, TheComboOffersTheParametersOfOneInstrument) {
  struct Case {
    int instrument;
    int selected;
    const char* entries;
    int retrieved;
  };
  const Case cases[] = {
      {-1, 5, " *(not assigned)=-1", -1},
      {2001, 12, " (not assigned)=-1 low=11 *high=12", 12},
      {2001, -1, " *(not assigned)=-1 low=11 high=12", -1},
      {2001, 10, " (not assigned)=-1 low=11 high=12 *(parameter 10)=10", 10},
      {2001, -7, " (not assigned)=-1 low=11 high=12", -1},
      {77, 0, " (not assigned)=-1 *(parameter 0)=0", 0},
      {-2, 0, " (not assigned)=-1 *(parameter 0)=0", 0},
  };
  CClavisComboBox combo;
  for (const Case& c : cases) {
    combo.FillIp(c.instrument, c.selected);
    EXPECT_EQ(Entries(combo), c.entries);
    EXPECT_EQ(combo.Retrieve(), c.retrieved);
  }
  Params::ShowIdsInDialogs(true);
  combo.FillIp(1001, 10);
  EXPECT_EQ(Entries(combo), " (not assigned)=-1 *RMS  [10]=10");
}

TEST_F(KeyControls, TheCheckListGivesBackWhatIsChecked) {
  using Ids = std::set<int>;
  struct Case {
    Clavis::qOrder element;
    const char* heading;
    Ids selection;
    unsigned int filter;
    const char* rows;
    Ids retrieved;
    unsigned int count;
  };
  const Case cases[] = {
      {Clavis::Mode, "all test steps", {9, 5}, 0, " Run-up=7 +Coast=9", {9}, 1},
      {Clavis::Mode, "all test steps", {7, 9, 12}, 0, " +Run-up=7 +Coast=9", {-1}, 2},
      {Clavis::Instrument, "all instruments", {-1}, 1, " +RMS=1001", {-1}, 1},
      {Clavis::Channel, "all channels", {}, 1, " Sync=3", {}, 0},
      {Clavis::Location, "all objects", {-1, 2}, 0, " +Shaft=1 +Gear=2", {-1}, 2},
      {Clavis::Location, "all objects", {2}, 8, "", {-1}, 0},
      {Clavis::Parameter,
       "all parameters",
       {11},
       8,
       " RMS=10 +RMS track low=11 RMS track high=12",
       {11},
       1},
      {Clavis::Sensor, "all sensors", {22, 23}, 3, " Acceleration=21 +Sound=22", {22}, 1},
      {static_cast<Clavis::qOrder>(6), "all (reserved)", {}, 0, "", {-1}, 0},
  };
  CClavisListCtrl list;
  ASSERT_TRUE(list.Create(nullptr));
  Ids ids = {99};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.heading);
    list.Init(c.element);
    ASSERT_EQ(list.GetColumnCount(), 1);
    EXPECT_EQ(Text::ToUtf8(list.GetColumn(0)->heading), c.heading);
    EXPECT_EQ(list.GetExtendedStyle(), 0x60U);
    list.Fill(c.selection, c.filter);
    EXPECT_FALSE(list.Changes());
    EXPECT_EQ(Rows(list), c.rows);
    EXPECT_EQ(list.Retrieve(ids), c.count);
    EXPECT_EQ(ids, c.retrieved);
  }

  list.Init(Clavis::Sensor);
  EXPECT_EQ(list.GetHeaderCheckedState(0), unchecked);
  list.Fill({}, 0x80);
  EXPECT_EQ(list.GetHeaderCheckedState(0), mixed);
  list.Fill({21});
  EXPECT_EQ(list.GetHeaderCheckedState(0), mixed);
  EXPECT_EQ(Drawn(list),
            "┌──────────────────┐\n"
            "│ [-] all sensors  │\n"
            "├──────────────────┤\n"
            "│ [x] Acceleration │\n"
            "│ [ ] Sound        │\n"
            "│ [ ] Bare         │\n"
            "└──────────────────┘\n");
  ASSERT_TRUE(list.ToggleCheckbox(0, 0));
  EXPECT_TRUE(list.Changes());
  ASSERT_TRUE(list.ToggleCheckbox(2, 0));
  EXPECT_EQ(list.Retrieve(ids), 1U);
  EXPECT_EQ(ids, Ids{23});
  EXPECT_FALSE(list.Changes());
  ASSERT_TRUE(list.ClickHeading(0));
  EXPECT_TRUE(list.Changes());
  EXPECT_EQ(list.Retrieve(ids), 3U);
  EXPECT_EQ(ids, Ids{-1});
  ASSERT_TRUE(list.ToggleCheckbox(1, 0));
  list.Fill({});
  EXPECT_FALSE(list.Changes());

  Params::ShowIdsInDialogs(true);
  list.HideVirtualModes(false);
  list.Init(Clavis::Mode);
  list.Fill({});
  EXPECT_EQ(Rows(list), " Run-up  [7]=7 Coast  [9]=9 Band  [2055]=2055");
  list.Init(Clavis::Parameter);
  list.Fill({});
  EXPECT_EQ(Rows(list), " RMS RMS  [10]=10 RMS track low  [11]=11 RMS track high  [12]=12");
}

// --- The key editor ---

TEST_F(KeyControls, TheEditorKeepsIdsThatNoTableKnows) {
  struct Case {
    const char* what;
    CClavis key;
    unsigned long long visible;
    std::vector<std::string> drop_downs;  // from the first row on
    CClavis retrieved;
  };
  const Case cases[] = {
      {"all known",
       Key(9, 2001, 3, 1, 12, 22),
       0x3F,
       {" —=-1 Run-up=7 *Coast=9", " —=-1 RMS=1001 *RMS track=2001", " —=-1 *Sync=3",
        " —=-1 *Shaft=1 Gear=2", " —=-1 low=11 *high=12", " —=-1 Acceleration=21 *Sound=22 Bare=23",
        "none"},
       Key(9, 2001, 3, 1, 12, 22)},
      {"none",
       CClavis(),
       0x3F,
       {" *—=-1 Run-up=7 Coast=9", " *—=-1 RMS=1001 RMS track=2001", " *—=-1 Sync=3",
        " *—=-1 Shaft=1 Gear=2", " *—=-1", " *—=-1 Acceleration=21 Sound=22 Bare=23"},
       CClavis()},
      {"hidden, virtual and gone",
       Key(5, 77, 4, INT_MAX, 10, -5),
       0x3F,
       {" —=-1 *(test step 5)=5 Run-up=7 Coast=9",
        " —=-1 *(instrument 77)=77 RMS=1001 RMS track=2001", " —=-1 Sync=3 *(channel 4)=4",
        " —=-1 Shaft=1 Gear=2 *(object 2147483647)=2147483647", " —=-1 *(parameter 10)=10",
        " *(sensor -5)=-5 —=-1 Acceleration=21 Sound=22 Bare=23"},
       Key(5, 77, 4, INT_MAX, 10, -5)},
      {"a virtual test step",
       Key(virtual_mode, -1, -1, -1, 11, -1),
       0x11,
       {" —=-1 Run-up=7 Coast=9 *(test step 2055)=2055", " *—=-1", "none"},
       Key(virtual_mode, -1, -1, -1, -1, -1)},  // no instrument, no parameter
      {"test step and sensor",
       Key(7, 1001, 3, 1, 10, 21),
       0x21,
       {" —=-1 *Run-up=7 Coast=9", " —=-1 *Acceleration=21 Sound=22 Bare=23", "none"},
       Key(7, -1, -1, -1, -1, 21)},
      {"nothing visible", Key(7, 1001, 3, 1, 10, 21), 0, {"none"}, CClavis()},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    CKestrinCtrl editor;
    EXPECT_EQ(editor.retrieve(), CClavis());
    ASSERT_TRUE(editor.Create(nullptr));
    editor.set_visible_mask(c.visible);
    editor.fill(c.key);
    EXPECT_EQ(editor.GetItemCount(), static_cast<int>(Mask(c.visible).count()));
    for (std::size_t row = 0; row < c.drop_downs.size(); ++row) {
      EXPECT_EQ(DropDown(editor, static_cast<int>(row)), c.drop_downs[row]);
    }
    EXPECT_EQ(editor.retrieve(), c.retrieved);
    editor.DestroyWindow();
    EXPECT_EQ(editor.retrieve(), CClavis());
  }
}

TEST_F(KeyControls, EveryChoiceIsToldAndAnotherInstrumentEmptiesTheParameter) {
  Listener parent;
  ASSERT_TRUE(parent.Create(nullptr));
  CKestrinCtrl editor;
  ASSERT_TRUE(editor.Create(&parent));
  editor.fill(Key(7, 2001, 3, 1, 11, 21));
  EXPECT_FALSE(editor.ChooseEntry(0, 1, 5));  // hidden
  EXPECT_FALSE(editor.ChooseEntry(0, 0, 9));
  ASSERT_TRUE(editor.ChooseEntry(0, 1, 9));
  ASSERT_TRUE(editor.ChooseEntry(4, 1, 12));
  ASSERT_TRUE(editor.ChooseEntry(5, 1, -1));
  EXPECT_EQ(parent.heard, " 0:9 4:12 5:-1");
  EXPECT_EQ(editor.retrieve(), Key(9, 2001, 3, 1, 12, -1));

  parent.heard.clear();
  editor.set_on_change_message(Listener::SecondMessage());
  ASSERT_TRUE(editor.ChooseEntry(1, 1, 1001));
  EXPECT_EQ(parent.heard, " 1:1001 [1:1001]");
  EXPECT_EQ(DropDown(editor, 4), " *—=-1 RMS=10");
  EXPECT_EQ(editor.retrieve(), Key(9, 1001, 3, 1, -1, -1));
  ASSERT_TRUE(editor.ChooseEntry(4, 1, 10));
  ASSERT_TRUE(editor.ChooseEntry(1, 1, 1001));  // also the same instrument again
  EXPECT_EQ(editor.retrieve(), Key(9, 1001, 3, 1, -1, -1));
  ASSERT_TRUE(editor.ChooseEntry(1, 1, -1));
  EXPECT_EQ(DropDown(editor, 4), " *—=-1");

  // With the instrument hidden there are no parameters to choose from.
  parent.heard.clear();
  editor.set_on_change_message(0);
  editor.set_visible_mask(0b110000);
  ASSERT_TRUE(editor.ChooseEntry(0, 1, 7)) << "the rows are those of the last fill";
  editor.fill(Key(7, 2001, 3, 1, 11, 21));
  ASSERT_TRUE(editor.ChooseEntry(1, 1, 22));
  EXPECT_EQ(parent.heard, " 0:7 5:22");
  EXPECT_EQ(editor.retrieve(), Key(-1, -1, -1, -1, -1, 22));
}

TEST_F(KeyControls, TheOwnerHearsIfThereIsNoParent) {
  Listener owner;
  CKestrinCtrl editor;
  ASSERT_TRUE(editor.Create(nullptr));
  editor.fill(CClavis());
  ASSERT_TRUE(editor.ChooseEntry(0, 1, 7));  // nobody is there
  editor.SetOwner(&owner);
  ASSERT_TRUE(editor.ChooseEntry(0, 1, 9));  // the owner has no window
  EXPECT_EQ(owner.heard, "");
  ASSERT_TRUE(owner.Create(nullptr));
  ASSERT_TRUE(editor.ChooseEntry(0, 1, 7));
  EXPECT_EQ(owner.heard, " 0:7");
  owner.DestroyWindow();
  ASSERT_TRUE(editor.ChooseEntry(0, 1, 9));
  EXPECT_EQ(owner.heard, " 0:7");
  EXPECT_EQ(editor.retrieve().Mode(), 9);

  Listener parent;
  ASSERT_TRUE(owner.Create(nullptr));
  ASSERT_TRUE(parent.Create(nullptr));
  editor.DestroyWindow();
  ASSERT_TRUE(editor.Create(&parent));
  editor.fill(CClavis());
  ASSERT_TRUE(editor.ChooseEntry(0, 1, 7));
  EXPECT_EQ(parent.heard + "," + owner.heard, " 0:7, 0:7");
}

TEST_F(KeyControls, ReceiversMayFillCloseAndDelete) {
  for (const char* const what :
       {"fill", "reload", "no second", "close", "delete", "delete the parent"}) {
    SCOPED_TRACE(what);
    auto parent = std::make_unique<Listener>();
    ASSERT_TRUE(parent->Create(nullptr));
    auto editor = std::make_unique<CKestrinCtrl>();
    ASSERT_TRUE(editor->Create(parent.get()));
    editor->set_on_change_message(Listener::SecondMessage());
    editor->fill(Key(7, 2001, 3, 1, 11, 21));
    std::string heard;
    parent->on_message = [&, task = std::string(what)] {
      heard = parent->heard;
      if (task == "fill") editor->fill(Key(9, 1001, -1, -1, -1, -1));
      if (task == "reload") Load("<TMode>: {\n1 One\n}\n");
      if (task == "no second") editor->set_on_change_message(0);
      if (task == "close") editor->DestroyWindow();
      if (task == "delete") editor.reset();
      if (task == "delete the parent") parent.reset();
    };
    ASSERT_TRUE(editor->ChooseEntry(1, 1, -1));
    const std::string task = what;
    EXPECT_EQ(heard, parent && task != "no second" ? " 1:-1 [1:-1]" : " 1:-1");
    if (task == "fill") {
      EXPECT_EQ(editor->retrieve(), Key(9, 1001, -1, -1, -1, -1));
    }
    if (task == "reload") {
      EXPECT_EQ(editor->retrieve(), Key(7, -1, 3, 1, -1, 21));
      EXPECT_EQ(Column(*editor, 1), " Run-up — Sync Shaft — Acceleration");
      editor->fill(Key(7, -1, -1, -1, -1, -1));
      EXPECT_EQ(DropDown(*editor, 0), " —=-1 One=1 *(test step 7)=7");
      Load("");
    }
  }
}

TEST_F(KeyControls, RowsShowFlagsExtraRowsAndIds) {
  Params::ShowIdsInDialogs(true);
  CKestrinCtrl editor;
  editor.set_none_is_any(true);
  editor.set_ttnil_text(L"");
  editor.on_entry_chosen = [](int, int) { FAIL() << "fill puts its own in"; };
  editor.add_extra_row(L"Second", L"b", 5, 40);
  editor.add_extra_row(L"First", L"a", 1);
  editor.add_extra_row(L"", L"no name", 2, 20);
  editor.add_extra_row(L"Beyond", L"c", 6, 60);
  editor.add_extra_row(L"Beyond", L"c", UINT_MAX, 60);
  ASSERT_TRUE(editor.Create(nullptr));
  editor.set_readonly_mask(0b000010);
  editor.set_visible_mask(0b100011);
  EXPECT_EQ(editor.get_readonly_mask(), Mask(0b000010));
  EXPECT_EQ(editor.get_visible_mask(), Mask(0b100011));
  editor.fill(Key(7, 1001, 3, 1, 10, -1));
  const std::string expected =
      "┌────────────┬──────────┬──────┐\n"
      "│ Section    │ Value    │   Id │\n"
      "├────────────┼──────────┼──────┤\n"
      "│ test step  │ Run-up ▾ │    7 │\n"
      "│·instrument·│·RMS    ▾·│·1001·│\n"
      "│ sensor     │ (*)    ▾ │   -1 │\n"
      "│ First      │ a        │   -1 │\n"
      "│ Second     │ b        │   40 │\n"
      "└────────────┴──────────┴──────┘\n";
  EXPECT_EQ(Drawn(editor), expected);
  EXPECT_FALSE(editor.ChooseEntry(1, 1, 2001));
  EXPECT_EQ(editor.GetItemKey(2), 5);
  EXPECT_EQ(editor.GetItemKey(4), 105);
  EXPECT_EQ(editor.GetExtendedStyle(), 0x20U);
  COLORREF text = 0;
  COLORREF background = 0;
  ASSERT_TRUE(editor.GetItemColors(3, 0, text, background));
  EXPECT_EQ(text, RGB(100, 100, 100));
  EXPECT_EQ(background, RGB(230, 235, 255));
  ASSERT_TRUE(editor.ChooseEntry(2, 1, 21));
  EXPECT_EQ(Column(editor, 2), " 7 1001 21 -1 40");
  EXPECT_NE(Drawn(editor).find("Acceleration ▾"), std::string::npos) << Drawn(editor);

  // The default text stays; virtual test steps come on demand; the third column doesn't go.
  Params::ShowIdsInDialogs(false);
  editor.set_none_is_any(false);
  editor.hide_virtual_modes(false);
  editor.set_readonly_mask({});
  editor.set_visible_mask(1);
  editor.fill(CClavis());
  EXPECT_EQ(DropDown(editor, 0), " *(*)=-1 Run-up=7 Coast=9 Band=2055");
  EXPECT_EQ(Column(editor, 2), " -1 -1 40");
  editor.TtNilText() = L"any";
  editor.fill(CClavis());
  EXPECT_EQ(Column(editor, 1), " any a b");
}

TEST_F(KeyControls, AFillOfOneEditorRenewsTheListsOfAll) {
  CKestrinCtrl first;
  CKestrinCtrl second;
  ASSERT_TRUE(first.Create(nullptr));
  ASSERT_TRUE(second.Create(nullptr));
  first.fill(Key(5, -1, -1, -1, -1, -1));
  second.fill(Key(7, 1001, -1, -1, 10, -1));
  EXPECT_EQ(DropDown(first, 4), " *—=-1 RMS=10");
  EXPECT_FALSE(first.ChooseEntry(0, 1, 5));  // its unknown test step is not in the list any more
  EXPECT_EQ(first.retrieve().Mode(), 5);     // but in its row
}

TEST_F(KeyControls, TenThousandEntriesAreFilledInOneGo) {
  std::string modes = "<TMode>: {\n";
  for (int i = 0; i < 2000; ++i) modes += std::to_string(i) + " m\n";
  modes += "}\n<TApplicationSignal>: {\n";
  for (int i = 0; i < 10000; ++i) modes += std::to_string(i) + " s\n";
  Load(modes + "}\n");
  CKestrinCtrl editor;
  ASSERT_TRUE(editor.Create(nullptr));
  editor.fill(Key(1999, -1, -1, -1, -1, 9999));
  EXPECT_EQ(editor.GetCell(5, 1)->list->size(), 10001U);
  CClavisListCtrl list;
  ASSERT_TRUE(list.Create(nullptr));
  list.Init(Clavis::Sensor);
  list.Fill({-1});
  EXPECT_EQ(list.CountCheckedItems(0, checked), 10000);
}

// --- The key dialog ---

// Reaches the dialog's editor as a view does.
CXListCtrl& EditorOf(CDialog3d& dialog) {
  return dynamic_cast<CXListCtrl&>(*dialog.GetDlgItem(3000));
}

TEST_F(KeyControls, TheDialogGivesItsKeyOnOkOnly) {
  CKestrinDialog dialog;
  std::vector<CClavis> keys;
  dialog.on_ok = [&](const CClavis& key) {
    EXPECT_TRUE(dialog.is_displayed());
    keys.push_back(key);
  };
  EXPECT_EQ(dialog.retrieve(), CClavis());
  EXPECT_FALSE(dialog.PressButton(1));
  dialog.OnBnClickedOk();
  EXPECT_TRUE(keys.empty());

  const CClavis first = Key(7, 2001, 3, 1, 11, 21);
  dialog.Display(first);
  ASSERT_TRUE(dialog.IsWindow());
  dialog.Display(Key(9, -1, -1, -1, -1, -1));
  EXPECT_EQ(dialog.retrieve(), first);
  ASSERT_TRUE(dialog.PressButton(1));
  EXPECT_EQ(keys, std::vector{first});
  EXPECT_FALSE(dialog.IsWindow());

  dialog.set_visible_mask(0b000011);
  dialog.set_readonly_mask(0b000001);
  dialog.Display(first);
  EXPECT_FALSE(EditorOf(dialog).ChooseEntry(0, 1, 9));
  ASSERT_TRUE(EditorOf(dialog).ChooseEntry(1, 1, 1001));
  EXPECT_EQ(dialog.retrieve(), Key(7, 1001, -1, -1, -1, -1));
  ASSERT_TRUE(dialog.PressButton(2));
  dialog.Display(first);
  ASSERT_TRUE(dialog.Close());
  EXPECT_FALSE(dialog.IsWindow());
  EXPECT_EQ(keys.size(), 1U);

  dialog.on_ok = nullptr;  // the key is dropped
  dialog.Display(first);
  ASSERT_TRUE(dialog.PressButton(1));
  EXPECT_FALSE(dialog.IsWindow());
}

TEST_F(KeyControls, TheDialogMayGoWhileItGivesItsKey) {
  auto dialog = std::make_unique<CKestrinDialog>();
  std::optional<CClavis> got;
  dialog->on_ok = [&, hold = std::make_shared<int>(3)](const CClavis& key) {
    dialog.reset();
    got = *hold == 3 ? key : CClavis();
  };
  dialog->Display(Key(7, -1, -1, -1, -1, -1));
  ASSERT_TRUE(dialog->PressButton(1));
  EXPECT_EQ(got, Key(7, -1, -1, -1, -1, -1));

  // The window on which it stands takes it along, and it can come again.
  auto frame = std::make_unique<CWnd>();
  ASSERT_TRUE(frame->Create(nullptr));
  CKestrinDialog on_frame(frame.get());
  on_frame.Display(CClavis());
  frame.reset();
  EXPECT_FALSE(on_frame.IsWindow());
  on_frame.Display(Key(9, -1, -1, -1, -1, -1));
  EXPECT_TRUE(on_frame.IsWindow());
  EXPECT_EQ(on_frame.retrieve().Mode(), 9);
}

}  // namespace
