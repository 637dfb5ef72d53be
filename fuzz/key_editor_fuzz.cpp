// The controls in which a user picks keys, under random gestures: keys are filled in, entries are
// chosen, tables are loaded in between, and whoever hears of a choice fills the editor anew,
// destroys its window or deletes it. Beside each editor stands a model of the key that it must give
// back.

#include <array>
#include <bitset>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "Fuzz.h"
#include "controls/ClavisComboBox.h"
#include "controls/ClavisListCtrl.h"
#include "controls/KestrinCtrl.h"
#include "controls/KestrinDialog.h"
#include "frame/QtParamInstance.h"
#include "lake/Lake.h"

using namespace kestrin;

namespace fuzz {
namespace {

constexpr int extra_message = 0x8001;

void Rows(CLake& lake, const wchar_t* section, std::initializer_list<const wchar_t*> rows) {
  for (const wchar_t* const row : rows) lake[section].push_back(row);
}

CLake MakeLake(bool large) {
  CLake lake;
  lake[L"<DbDesign.CacheVersion>"] = L"215";
  lake[L"<DbDesign.CacheMinorVersion>"] = L"1";
  Rows(lake, L"<TMode>", {L"1 \"Run up\"", L"5 Coast", L"2049 Band"});
  Rows(lake, L"<TModeProperty>", {L"1 1 0", L"5 1 1024"});
  Rows(lake, L"<TInstrument>", {L"1001 RMS", L"2001 Track"});
  Rows(lake, L"<TInstrumentParam>", {L"10 1001 RMS", L"11 2001 low", L"12 2001 high"});
  if (!large) return lake;
  Rows(lake, L"<TChannel>", {L"1 Raw", L"3 Sync", L"0 Raw"});
  Rows(lake, L"<TLocation>", {L"1 Shaft", L"2 Gear", L"2147483647 Far"});
  Rows(lake, L"<TApplicationSignal>", {L"7 Speed"});
  Rows(lake, L"<TMode>", {L"2 \"\"", L"9 Late"});
  return lake;
}

class World {
 public:
  explicit World(Input input) : input_(input) {
    const std::size_t choice = Choice();
    if (choice != loaded_) Load(choice);  // it would take longer than most of what follows
    CQtParamInstance::ShowIdsInDialogs((input_.Below(2)) != 0);
    frame_.Create(nullptr);
    for (Editor& editor : editors_) Make(editor);
    frame_.OnMessage(WM_KESTRINCTRL_SELCHANGED,
                     [this](WPARAM w, LPARAM l) { return Heard(static_cast<int>(w), l); });
    frame_.OnMessage(extra_message,
                     [this](WPARAM w, LPARAM l) { return Heard(static_cast<int>(w), l); });
    list_.Create(&frame_);
    combo_.Create(&frame_);
    list_.Init(Clavis::Mode);
  }

  void Run() {
    for (int i = 0; i < 200 && !input_.empty(); ++i) {
      Gesture();
      for (const Editor& editor : editors_) RequireKey(editor);
    }
  }

 private:
  struct Editor {
    std::unique_ptr<CKestrinCtrl> control;
    CClavis key;                                 // what retrieve has to give
    std::bitset<Clavis::element_count> visible;  // by the last fill
  };

  // ---- what the input says ----

  int Id() {
    static constexpr std::array ids = {-1, 0,  1, 5, 9, 1001, 2001,    10,
                                       11, 12, 3, 7, 2, 2049, INT_MAX, INT_MIN};
    return ids[input_.Below(ids.size())];
  }
  Clavis::qOrder Element() {
    return static_cast<Clavis::qOrder>(input_.Below(Clavis::element_count));
  }
  CKestrinCtrl::ElementMask Mask() { return input_.Take<std::uint8_t>(); }
  CClavis Key() {
    CClavis key;
    for (unsigned i = 0; i < Clavis::element_count; ++i) key[i] = Id();
    return key;
  }

  std::size_t Choice() { return input_.Below(no_tables + 1); }

  static void Load(std::size_t choice) {
    static const std::array<CLake, no_tables> lakes = {MakeLake(false), MakeLake(true)};
    CQtParamInstance params;
    params.PurgeTables();
    loaded_ = no_tables;
    if (choice == no_tables) return;
    CParameterLake::Lake() = lakes[choice];
    Require(params.ReadTablesFromCandidateLake(), "the tables can be loaded");
    CParameterLake::Lake().clear();
    loaded_ = choice;
  }

  // ---- editors and their models ----

  void Make(Editor& editor) {
    editor = {};
    editor.control = std::make_unique<CKestrinCtrl>();
    editor.control->Create(&frame_, 1);
    editor.control->set_on_change_message(extra_message);
  }

  void Fill(Editor& editor) {
    const CClavis key = Key();
    editor.control->fill(key);
    editor.visible = editor.control->get_visible_mask();
    editor.key = {};
    for (unsigned i = 0; i < Clavis::element_count; ++i) {
      if (editor.visible[i]) editor.key[i] = key[i];
    }
    // Without an instrument there are no parameters.
    if (editor.key.Instrument() == -1) editor.key[Clavis::Parameter] = -1;
  }

  static void RequireKey(const Editor& editor) {
    if (editor.control) {
      Require(editor.control->retrieve() == editor.key, "an editor gives back its key");
    }
  }

  void Choose(Editor& editor) {
    CKestrinCtrl& control = *editor.control;
    const int row = static_cast<int>(input_.Below(7)) - 1;
    const int id = Id();
    const CClavis before = control.retrieve();
    choosing_ = &editor;
    is_heard_ = false;
    const bool chosen = control.ChooseEntry(row, 1, id);
    Require(chosen || !choosing_ || (editor.control && editor.control->retrieve() == before),
            "an entry that can't be chosen changes nothing");
    choosing_ = nullptr;
  }

  // The choice stands in the key before anybody hears of it. Then the receiver does what it wants.
  LRESULT Heard(int element, LPARAM id) {
    Require(element >= 0 && element < Clavis::element_count, "a message names an element");
    if (choosing_ != nullptr && !is_heard_) {
      is_heard_ = true;  // the second message tells the same, and comes behind what was done then
      choosing_->key[static_cast<unsigned>(element)] = static_cast<int>(id);
      if (element == Clavis::Instrument) choosing_->key[Clavis::Parameter] = -1;
      RequireKey(*choosing_);
    }
    Editor& editor = editors_[input_.Below(editors_.size())];
    switch (input_.Below(8)) {
      case 0:
        if (editor.control) Fill(editor);
        break;
      case 1:
        DestroyWindow(editor);
        break;
      case 2:
        if (&editor == choosing_) choosing_ = nullptr;
        editor = {};
        break;
      case 3:
        Load(Choice());
        break;
      case 4:
        if (&editor == choosing_) choosing_ = nullptr;
        Make(editor);
        break;
      default:
        break;
    }
    return 0;
  }

  static void DestroyWindow(Editor& editor) {
    if (editor.control && editor.control->DestroyWindow()) editor.key = {};
  }

  // ---- gestures ----

  void Gesture() {
    Editor& editor = editors_[input_.Below(editors_.size())];
    const std::size_t gesture = input_.Below(16);
    if (!editor.control) return Make(editor);
    CKestrinCtrl& control = *editor.control;
    switch (gesture) {
      case 0:
      case 1:
        return Fill(editor);
      case 2:
        return control.set_visible_mask(Mask());
      case 3:
        return control.set_readonly_mask(Mask() & Mask());
      case 4:
        control.hide_virtual_modes(input_.Below(2) != 0);
        control.set_none_is_any(input_.Below(2) != 0);
        return control.set_ttnil_text(input_.Below(2) != 0 ? L"any" : L"");
      case 5:
        return control.add_extra_row(input_.Below(2) != 0 ? L"Bench" : L"", L"4",
                                     static_cast<unsigned>(input_.Below(9)), Id());
      case 6:
        DestroyWindow(editor);
        return;
      case 7:
        control.Create(&frame_, static_cast<int>(input_.Below(3)));
        return;
      case 8:
        return Make(editor);
      case 9:
        return Load(Choice());
      case 10:
        return Dialog();
      case 11:
        return Combo();
      case 12:
        return List();
      case 13:
        control.Click({input_.Take<std::int16_t>(), input_.Take<std::int16_t>()},
                      input_.Take<std::uint8_t>());
        return;
      default:
        return Choose(editor);
    }
  }

  void Combo() {
    const int id = Id();
    combo_.HideVirtualModes(input_.Below(2) != 0);
    if (input_.Below(2) != 0) {
      const int instrument = Id();
      combo_.FillIp(instrument, id);
      if (instrument != -1 && id >= -1) Require(combo_.Retrieve() == id, "a combo keeps its id");
    } else {
      combo_.Fill(Element(), id, input_.Take<std::uint8_t>());
      if (id >= -1) Require(combo_.Retrieve() == id, "a combo keeps its id");
    }
    const int entry = static_cast<int>(input_.Below(20)) - 2;
    const int data = combo_.GetItemData(entry);
    if (combo_.ChooseEntry(entry)) Require(combo_.Retrieve() == data, "a choice is kept");
  }

  void List() {
    if (input_.Below(3) == 0) list_.Init(Element());
    std::set<int> wanted;
    for (std::size_t count = input_.Below(4); count > 0; --count) wanted.insert(Id());
    list_.Fill(wanted, input_.Take<std::uint8_t>());
    Require(!list_.Changes(), "a fill is no change");
    const bool changed = list_.ToggleCheckbox(static_cast<int>(input_.Below(6)), 0);
    Require(changed == list_.Changes(), "a change is told");
    if (input_.Below(4) == 0) list_.ClickHeading(0);
    std::set<int> selection;
    const unsigned count = list_.Retrieve(selection);
    Require(count <= static_cast<unsigned>(list_.GetItemCount()), "checked rows are rows");
    Require(selection.contains(-1) || count == selection.size(), "each checked row has its id");
  }

  void Dialog() {
    auto dialog = std::make_unique<CKestrinDialog>(&frame_);
    const CClavis key = Key();
    const CKestrinCtrl::ElementMask mask = Mask();
    std::optional<CClavis> result;
    const bool is_deleted = input_.Below(3) == 0;
    dialog->on_ok = [&result, &dialog, is_deleted](const CClavis& chosen) {
      result = chosen;
      if (is_deleted) dialog.reset();
    };
    dialog->set_visible_mask(mask);
    dialog->Display(key);
    dialog->Display(Key());
    const bool pressed = dialog->PressButton(input_.Below(2) != 0 ? 1 : 2);
    Require(pressed, "a dialog has two buttons");
    if (!result) return;
    for (unsigned i = 0; i < Clavis::element_count; ++i) {
      const bool lost = !mask[i] || (i == Clavis::Parameter && (*result)[Clavis::Instrument] == -1);
      Require((*result)[i] == (lost ? -1 : key[i]), "OK gives the key");
    }
  }

  // What the tables hold, which outlasts an input: one of the lakes, or nothing.
  static constexpr std::size_t no_tables = 2;
  static inline std::size_t loaded_ = no_tables;

  Input input_;
  CWnd frame_;
  std::array<Editor, 2> editors_;
  Editor* choosing_ = nullptr;
  bool is_heard_ = false;
  CClavisComboBox combo_;
  CClavisListCtrl list_;
};

}  // namespace

void KeyEditor(Bytes bytes) {
  const QuietLog log;
  World(Input(bytes)).Run();
}

}  // namespace fuzz
