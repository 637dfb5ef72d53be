// The controls with which a user picks ids and keys: what is offered, what is kept although it
// isn't, and what the owner hears. All of it is worked as a user works it.
#include "control_support.h"
#include "controls/ClavisComboBox.h"
#include "controls/ClavisListCtrl.h"
#include "controls/KestrinCtrl.h"
#include "controls/KestrinDialog.h"

namespace {

using Params = CQtParamInstance;

constexpr auto no_element = static_cast<Clavis::qOrder>(6);

class KeyControls : public ProcessBase {
 protected:
  KeyControls()
      : ProcessBase(
            "<TMode>: {\n9 Coast\n5 Standstill\n7 Run-up\n2055 Band\n}\n"
            "<TModeProperty>: {\n5 1 1024\n7 1 0\n}\n"
            "<TInstrument>: {\n1001 RMS\n2001 \"RMS track\"\n}\n"
            "<TInstrumentParam>: {\n12 2001 high\n10 1001 RMS\n11 2001 low\n}\n"
            "<TChannel>: {\n3 Sync\n}\n"
            "<TLocation>: {\n1 Shaft\n2 Gear\n}\n"
            "<TLocationProperty>: {\n1 1\n2 6\n}\n"
            "<TApplicationSignal>: {\n21 Acceleration\n22 Sound\n23 Bare\n}\n"
            "<TAppSignalProperty>: {\n21 1 g\n22 2 Pa\n}\n") {}
};

CClavis Key(int mode, int instrument, int channel, int location, int parameter, int sensor) {
  const int ids[] = {mode, instrument, channel, location, parameter, sensor};
  return CClavis(ids);
}

// Every row, the checked ones behind a +.
std::string Rows(const CXListCtrl& list) {
  std::string all;
  for (int row = 0; row < list.GetItemCount(); ++row) {
    AddEntry(all, list.GetCheckbox(row, 0) == checked ? "+" : "", list.GetItemText(row, 0),
             list.GetItemData(row));
  }
  return all;
}

// Every entry of a cell's drop-down, the selected one behind a *.
std::string DropDown(const CXListCtrl& list, int row) {
  const ListCell* const cell = list.GetCell(row, 1);
  if (!cell || !cell->list) return "none";
  std::string all;
  for (const auto& [id, text] : *cell->list) {
    AddEntry(all, id == cell->selected ? "*" : "", text, id);
  }
  return all;
}

// A window that notes the messages of key editors as "element:id", the second message in brackets.
class Listener : public CWnd {
 public:
  static unsigned int SecondMessage() { return RegisterWindowMessage(L"key controls test"); }

  Listener() {
    OnMessage(WM_KESTRINCTRL_SELCHANGED, [this](WPARAM w, LPARAM l) { return Note(w, l, "", ""); });
    OnMessage(SecondMessage(), [this](WPARAM w, LPARAM l) { return Note(w, l, "[", "]"); });
  }

  std::string Heard() { return std::exchange(heard_, {}); }
  std::function<void()> on_message;

 private:
  LRESULT Note(WPARAM w, LPARAM l, const char* open, const char* close) {
    heard_ += " " + (open + std::to_string(w)) + ":" + std::to_string(l) + close;
    if (on_message) on_message();
    return 0;
  }

  std::string heard_;
};

// --- One element ---

TEST_F(KeyControls, TheComboOffersWhatTheFilterLetsThrough) {
  // Behind the filter stand the entries but for the first.
  const std::tuple<Clavis::qOrder, int, unsigned int, const char*> cases[] = {
      {Clavis::Mode, 9, 0xFF, " Run-up=7 *Coast=9"},  // never filtered
      {Clavis::Mode, 5, 0, " Run-up=7 Coast=9 *(test step 5)=5"},
      {Clavis::Instrument, 1001, 2, " RMS track=2001 *(instrument 1001)=1001"},
      {Clavis::Channel, 3, 0xFF, " *Sync=3"},
      {Clavis::Location, -2, 3, " Shaft=1 Gear=2"},  // nothing is selected
      {Clavis::Location, 2, 4, " *Gear=2"},
      {Clavis::Sensor, 0, 0, " Acceleration=21 Sound=22 Bare=23 *(sensor 0)=0"},
      {Clavis::Sensor, 23, 3, " Acceleration=21 Sound=22 *(sensor 23)=23"},
      {Clavis::Parameter, 10, 0, " *(parameter 10)=10"}};
  CClavisComboBox combo;
  EXPECT_EQ(combo.Retrieve(), -1);
  ASSERT_TRUE(combo.Create(nullptr));
  for (const auto& [element, selected, filter, entries] : cases) {
    combo.Fill(element, selected, filter);
    EXPECT_EQ(Entries(combo), std::string(" (not assigned)=-1") + entries);
    EXPECT_EQ(combo.Retrieve(), std::max(selected, -1)) << entries;
  }
  combo.Fill(no_element, -1, 0x80);
  EXPECT_EQ(Entries(combo), " *(not assigned)=-1");
  combo.HideVirtualModes(false);
  combo.Fill(Clavis::Mode, 2055);
  EXPECT_EQ(Entries(combo), " (not assigned)=-1 Run-up=7 Coast=9 *Band=2055");
  Params::ShowIdsInDialogs(true);
  combo.Fill(Clavis::Channel, 5);
  EXPECT_EQ(Entries(combo), " (not assigned)=-1 Sync  [3]=3 *(channel 5)=5");
}

TEST_F(KeyControls, TheComboOffersTheParametersOfOneInstrument) {
  CClavisComboBox combo;
  combo.FillIp(2001, 10);
  EXPECT_EQ(Entries(combo), " (not assigned)=-1 low=11 high=12 *(parameter 10)=10");
  combo.FillIp(-1, 5);
  EXPECT_EQ(Entries(combo), " *(not assigned)=-1");
}

TEST_F(KeyControls, TheCheckListGivesBackWhatIsChecked) {
  using Ids = std::set<int>;
  const char* const all_parameters = "all parameters";
  const char* const parameters = " RMS=10 +RMS track low=11 RMS track high=12";
  const std::tuple<Clavis::qOrder, const char*, Ids, unsigned, const char*, Ids, unsigned> cases[] =
      {{Clavis::Mode, "all test steps", {9, 5}, 0, " Run-up=7 +Coast=9", {9}, 1},
       {Clavis::Mode, "all test steps", {7, 9, 12}, 0, " +Run-up=7 +Coast=9", {-1}, 2},
       {Clavis::Instrument, "all instruments", {-1}, 1, " +RMS=1001", {-1}, 1},
       {Clavis::Location, "all objects", {2}, 8, "", {-1}, 0},
       {Clavis::Parameter, all_parameters, {11}, 8, parameters, {11}, 1},
       {Clavis::Sensor, "all sensors", {22, 23}, 3, " Acceleration=21 +Sound=22", {22}, 1},
       {no_element, "all (reserved)", {}, 0, "", {-1}, 0}};
  CClavisListCtrl list;
  ASSERT_TRUE(list.Create(nullptr));
  Ids ids = {99};
  for (const auto& [element, heading, selection, filter, rows, retrieved, count] : cases) {
    list.Init(element);
    EXPECT_EQ(Text::ToUtf8(list.GetColumn(0)->heading), heading);
    list.Fill(selection, filter);
    EXPECT_FALSE(list.Changes());
    EXPECT_EQ(Rows(list), rows);
    EXPECT_EQ(list.Retrieve(ids), count) << heading;
    EXPECT_EQ(ids, retrieved) << heading;
  }

  list.Init(Clavis::Sensor);
  list.Fill({21});
  EXPECT_EQ(list.GetHeaderCheckedState(0), mixed);
  ASSERT_TRUE(list.ToggleCheckbox(0, 0) && list.ToggleCheckbox(2, 0));
  EXPECT_TRUE(list.Changes());
  EXPECT_EQ(list.Retrieve(ids), 1U);
  EXPECT_EQ(ids, Ids{23});
  EXPECT_FALSE(list.Changes());

  Params::ShowIdsInDialogs(true);
  list.HideVirtualModes(false);
  list.Init(Clavis::Mode);
  list.Fill({});
  EXPECT_EQ(Rows(list), " Run-up  [7]=7 Coast  [9]=9 Band  [2055]=2055");
}

// --- The key editor ---

TEST_F(KeyControls, TheEditorOffersItsIdsBesideThoseOfTheTables) {
  CKestrinCtrl editor;
  ASSERT_TRUE(editor.Create(nullptr));
  editor.set_visible_mask(0b101001);
  editor.fill(Key(5, 77, 4, INT_MAX, 10, -5));
  EXPECT_EQ(editor.retrieve(), Key(5, -1, -1, INT_MAX, -1, -5));
  EXPECT_EQ(DropDown(editor, 0), " —=-1 *(test step 5)=5 Run-up=7 Coast=9");
  EXPECT_EQ(DropDown(editor, 1), " —=-1 Shaft=1 Gear=2 *(object 2147483647)=2147483647");
  EXPECT_EQ(DropDown(editor, 2), " *(sensor -5)=-5 —=-1 Acceleration=21 Sound=22 Bare=23");
}

TEST_F(KeyControls, EveryChoiceIsToldAndAnotherInstrumentEmptiesTheParameter) {
  Listener parent;
  CKestrinCtrl editor;
  ASSERT_TRUE(parent.Create(nullptr) && editor.Create(&parent));
  editor.set_on_change_message(Listener::SecondMessage());
  const CClavis key = Key(7, 2001, 3, 1, 11, 21);
  editor.fill(key);
  EXPECT_FALSE(editor.ChooseEntry(0, 1, 5));  // hidden
  EXPECT_FALSE(editor.ChooseEntry(0, 0, 9));
  const std::tuple<int, int, const char*, CClavis, const char*> cases[] = {
      {0, 9, " 0:9 [0:9]", Key(9, 2001, 3, 1, 11, 21), " —=-1 *low=11 high=12"},
      {5, -1, " 5:-1 [5:-1]", Key(9, 2001, 3, 1, 11, -1), " —=-1 *low=11 high=12"},
      {1, 1001, " 1:1001 [1:1001]", Key(9, 1001, 3, 1, -1, -1), " *—=-1 RMS=10"},
      {4, 10, " 4:10 [4:10]", Key(9, 1001, 3, 1, 10, -1), " —=-1 *RMS=10"},
      {1, -1, " 1:-1 [1:-1]", Key(9, -1, 3, 1, -1, -1), " *—=-1"}};
  for (const auto& [row, id, heard, chosen, parameters] : cases) {
    EXPECT_TRUE(editor.ChooseEntry(row, 1, id));
    EXPECT_EQ(parent.Heard(), heard);
    EXPECT_EQ(editor.retrieve(), chosen);
    EXPECT_EQ(DropDown(editor, 4), parameters);
  }

  // With the instrument hidden there are no parameters to choose from. Who hears of a choice may
  // want no second message.
  editor.set_visible_mask(0b110000);
  parent.on_message = [&editor] { editor.set_on_change_message(0); };
  EXPECT_TRUE(editor.ChooseEntry(0, 1, 7)) << "the rows are those of the last fill";
  editor.fill(key);
  EXPECT_TRUE(editor.ChooseEntry(1, 1, 22));
  EXPECT_EQ(parent.Heard(), " 0:7 5:22");
  EXPECT_EQ(editor.retrieve(), Key(-1, -1, -1, -1, -1, 22));
}

TEST_F(KeyControls, TheOwnerHearsIfThereIsNoParent) {
  Listener windows[2];
  CKestrinCtrl editor;
  editor.SetOwner(&windows[0]);
  ASSERT_TRUE(windows[0].Create(nullptr) && windows[1].Create(nullptr));
  for (Listener* const parent : {static_cast<Listener*>(nullptr), &windows[1]}) {
    ASSERT_TRUE(editor.Create(parent));
    editor.fill(Key(9, -1, -1, -1, -1, -1));
    EXPECT_TRUE(editor.ChooseEntry(0, 1, 7));
    EXPECT_EQ(windows[0].Heard() + "," + windows[1].Heard(), parent ? ", 0:7" : " 0:7,");
    editor.DestroyWindow();
  }
}

TEST_F(KeyControls, RowsShowFlagsExtraRowsAndIds) {
  Params::ShowIdsInDialogs(true);
  CKestrinCtrl editor;
  editor.set_none_is_any(true);
  editor.set_ttnil_text(L"");
  editor.add_extra_row(L"Second", L"b", 5, 40);
  editor.add_extra_row(L"First", L"a", 1);
  editor.add_extra_row(L"", L"no name", 2, 20);
  editor.add_extra_row(L"Beyond", L"c", 6, 60);
  ASSERT_TRUE(editor.Create(nullptr));
  editor.set_readonly_mask(0b000010);
  editor.set_visible_mask(0b100011);
  editor.fill(Key(7, 1001, 3, 1, 10, -1));
  const TextView::Lines filled = TextView::Draw(editor);
  EXPECT_FALSE(editor.ChooseEntry(1, 1, 2001));
  EXPECT_TRUE(editor.ChooseEntry(2, 1, 21));
  EXPECT_EQ(editor.GetItemKey(2), 5);
  EXPECT_EQ(editor.GetItemKey(4), 105);
  EXPECT_EQ(SideBySide({filled, TextView::Draw(editor)}), R"(
┌────────────┬──────────┬──────┐  ┌────────────┬────────────────┬──────┐
│ Section    │ Value    │   Id │  │ Section    │ Value          │   Id │
├────────────┼──────────┼──────┤  ├────────────┼────────────────┼──────┤
│ test step  │ Run-up ▾ │    7 │  │ test step  │ Run-up       ▾ │    7 │
│·instrument·│·RMS    ▾·│·1001·│  │·instrument·│·RMS          ▾·│·1001·│
│ sensor     │ (*)    ▾ │   -1 │  │ sensor     │ Acceleration ▾ │   21 │
│ First      │ a        │   -1 │  │ First      │ a              │   -1 │
│ Second     │ b        │   40 │  │ Second     │ b              │   40 │
└────────────┴──────────┴──────┘  └────────────┴────────────────┴──────┘
)");

  // The default text stays; virtual test steps come on demand; the third column doesn't go.
  Params::ShowIdsInDialogs(false);
  editor.set_none_is_any(false);
  editor.hide_virtual_modes(false);
  editor.set_visible_mask(1);
  editor.fill(CClavis());
  EXPECT_EQ(DropDown(editor, 0), " *(*)=-1 Run-up=7 Coast=9 Band=2055");
  EXPECT_EQ(editor.GetItemText(2, 2), L"40");
}

// --- The key dialog ---

TEST_F(KeyControls, TheDialogGivesItsKeyOnOkOnly) {
  std::optional<CWnd> frame(std::in_place);
  CKestrinDialog dialog(&*frame);  // a frame without a window is none
  std::vector<CClavis> keys;
  dialog.on_ok = [&](const CClavis& key) {
    EXPECT_TRUE(dialog.is_displayed());
    keys.push_back(key);
  };
  dialog.OnBnClickedOk();  // not displayed
  EXPECT_TRUE(keys.empty());

  const CClavis first = Key(7, 2001, 3, 1, 11, 21);
  for (const std::string button : {"OK", "Cancel", "close"}) {
    dialog.Display(first);
    dialog.Display(Key(9, -1, -1, -1, -1, -1));
    EXPECT_EQ(dialog.retrieve(), first);
    ASSERT_TRUE(button == "close" ? dialog.Close() : dialog.PressButton(button == "OK" ? 1 : 2));
    EXPECT_FALSE(dialog.IsWindow());
  }
  EXPECT_EQ(keys, std::vector{first});

  SetUserLanguage("de");
  dialog.set_visible_mask(0b000011);
  dialog.set_readonly_mask(0b000001);
  ASSERT_TRUE(frame->Create(nullptr));
  dialog.Display(first);
  EXPECT_EQ(dialog.Template().title, L"Schlüssel-Spezifikation") << "in today's language";
  auto& editor = dynamic_cast<CXListCtrl&>(*dialog.GetDlgItem(3000));  // as a view reaches it
  EXPECT_FALSE(editor.ChooseEntry(0, 1, 9));
  EXPECT_TRUE(editor.ChooseEntry(1, 1, 1001));
  EXPECT_EQ(dialog.retrieve(), Key(7, 1001, -1, -1, -1, -1));
  frame.reset();
  EXPECT_FALSE(dialog.IsWindow()) << "it goes with its frame";
}

}  // namespace
