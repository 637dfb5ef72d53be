// Choosing a key at a terminal: the keys do what they say, a search finds what a user means, and no
// screen is too small. What a terminal adds stands in cases/sessions/pictures.txt.
#include <clocale>

#include "../tools/kestrindb/KeyPicker.h"
#include "control_support.h"

namespace {

using Key = kestrindb::KeyPress;
using kestrindb::KeyPicker;
using kestrindb::ScreenPicture;

CClavis KeyOf(const std::array<int, Clavis::element_count>& ids) { return CClavis(ids.data()); }

class PickKeys : public ProcessBase {
 protected:
  PickKeys()
      : ProcessBase(
            "<TInstrument>: {\n1 Summenpegel\n2 \"Örtlicher Pegel\"\n"
            "3 \"Pegel über Zeit\"\n4 RMS\n}\n"
            "<TInstrumentParam>: {\n11 3 A\n12 3 B\n13 4 C\n}\n") {
    std::setlocale(LC_CTYPE, "C.UTF-8");  // as the terminal does it
  }
  ~PickKeys() override { std::setlocale(LC_CTYPE, "C"); }

  static void Press(KeyPicker& picker, std::initializer_list<Key> keys) {
    for (const Key key : keys) picker.Press(key);
  }

  // The uppermost picture, with > in front of the marked line.
  static TextView::Lines Shown(KeyPicker& picker, kestrindb::ScreenSize screen = {80, 24}) {
    const ScreenPicture picture = picker.Draw(screen);
    TextView::Lines shown;
    for (const ScreenPicture::Layer& layer : picture.layers) {
      if (layer.lines.size() == 1) continue;  // the help, what was typed
      shown = layer.lines;
      int y = layer.y;
      for (CString& line : shown) line.insert(0, 1, y++ == picture.mark.top ? L'>' : L' ');
    }
    return shown;
  }
};

TEST_F(PickKeys, RowsDropDownsAndButtonsAreWorkedByKeys) {
  KeyPicker picker(KeyOf({-1, 3, -1, -1, 12, 7}));
  Press(picker, {Key::backspace, Key::left, Key::up, Key::down});
  const TextView::Lines dialog = Shown(picker);
  Press(picker, {Key::enter, Key::down});
  // A low screen shows the end of a drop-down, a higher one again all of it.
  EXPECT_EQ(SideBySide({Shown(picker, {80, 5}), Shown(picker), dialog}), R"(
 ┌─────────────────┐   ┌─────────────────┐   ╒═ Key Specification ══════════════════════╕
 │ Örtlicher Pegel ▲   │ —               │   │                                          │
 │ Pegel über Zeit │   │ Summenpegel     │   │  ┌────────────┬────────────────────────┐ │
>│▐RMS            ▌│   │ Örtlicher Pegel │   │  │ Section    │ Value                  │ │
 └─────────────────┘   │ Pegel über Zeit │   │  ├────────────┼────────────────────────┤ │
                      >│▐RMS            ▌│   │  │ test step  │ —                    ▾ │ │
                       └─────────────────┘  >│  │ instrument │ Pegel über Zeit      ▾ │ │
                                             │  │ channel    │ —                    ▾ │ │
                                             │  │ object     │ —                    ▾ │ │
                                             │  │ parameter  │ B                    ▾ │ │
                                             │  │ sensor     │ (sensor 7)           ▾ │ │
                                             │  └────────────┴────────────────────────┘ │
                                             │  [  Cancel   ]             «    OK     » │
                                             │                                          │
                                             │                                          │
                                             └──────────────────────────────────────────┘
)");
  Shown(picker, {80, 5});  // three lines are a page of it
  picker.Press(Key::page_up);
  EXPECT_EQ(Shown(picker, {80, 5}).at(1), L">│▐Summenpegel    ▌▲");
  Press(picker, {Key::escape, Key::enter, Key::end, Key::enter});  // the first Enter opens anew
  Press(picker, {Key::down, Key::down, Key::down, Key::down, Key::down});
  EXPECT_EQ(Shown(picker).at(12), L">│  [  Cancel   ]             «    OK     » │");
  Press(picker, {Key::down, Key::right, Key::up, Key::end, Key::left, Key::right, Key::enter});
  EXPECT_FALSE(picker.IsOpen());
  EXPECT_EQ(picker.Chosen(), KeyOf({-1, 4, -1, -1, -1, 7}));
}

TEST_F(PickKeys, ClicksSpaceAndDeleteWorkWhatTheyMeet) {
  KeyPicker picker(KeyOf({-1, 3, -1, -1, 12, 7}));
  const ScreenPicture closed = picker.Draw({80, 24});
  ASSERT_EQ(closed.unknown.size(), 1U) << "sensor 7";
  EXPECT_EQ(closed.unknown[0].top, 10);
  picker.Click({6, 10});
  Press(picker, {Key::escape, Key::del});
  EXPECT_TRUE(picker.Draw({80, 24}).unknown.empty());
  picker.Click({6, 6});
  picker.Type(L"3");
  EXPECT_EQ(picker.Draw({80, 24}).layers.at(1).lines.at(0).substr(0, 8), L"1 of 1  ");
  EXPECT_EQ(Shown(picker).at(1), L">│▐Pegel über Zeit▌│");
  picker.Press(Key::escape);  // one step back: all entries; on a low screen above the row
  const ScreenPicture low = picker.Draw({80, 13});
  EXPECT_EQ(low.layers.at(1).lines.at(0).substr(0, 8), L"4 of 5  ");
  EXPECT_EQ(low.layers.at(2).y, 0);
  EXPECT_EQ(low.mark.top, 4);
  picker.Click({20, 1});
  picker.Type(L" ");
  picker.Draw({80, 13});
  picker.Click({0, 0});
  picker.Press(Key::end);
  EXPECT_TRUE(picker.IsOpen());
  picker.Type(L" ");
  EXPECT_EQ(picker.Chosen(), CClavis());
}

TEST_F(PickKeys, ASearchTakesBeginningsFirstAndAnyCase) {
  KeyPicker picker{CClavis()};
  picker.Press(Key::down);
  picker.Type(L"PE");
  picker.Type(L"GEL");
  const TextView::Lines three = Shown(picker);
  picker.Type(L"\xD83D\xDE00");
  const TextView::Lines none = Shown(picker);
  picker.Press(Key::enter);  // nothing is left to choose
  Press(picker, {Key::backspace, Key::end});
  EXPECT_EQ(SideBySide({none, three, Shown(picker)}), R"(
 ┌─────────────────┐   ┌─────────────────┐   ┌─────────────────┐
>└─────────────────┘  >│▐Pegel über Zeit▌│   │ Pegel über Zeit │
                       │ Summenpegel     │   │ Summenpegel     │
                       │ Örtlicher Pegel │  >│▐Örtlicher Pegel▌│
                       └─────────────────┘   └─────────────────┘
)");
  Press(picker, {Key::escape, Key::down, Key::up});
  picker.Type(L"ÖRT");
  Press(picker, {Key::enter, Key::end, Key::left, Key::enter});
  EXPECT_FALSE(picker.IsOpen());
  EXPECT_EQ(picker.Chosen(), std::nullopt) << "Cancel";
}

TEST_F(PickKeys, NoScreenIsTooSmall) {
  for (const int width : {1, 2, 3, 10, 24, 200}) {
    for (const int height : {1, 2, 5, 11, 100}) {
      KeyPicker picker(KeyOf({-1, 3, -1, -1, 12, 7}));
      picker.Draw({width, height});
      Press(picker, {Key::down, Key::down, Key::down});
      const CRect row = picker.Draw({width, height}).mark;
      Press(picker, {Key::up, Key::up});
      picker.Type(L"e");
      for (const CRect& mark : {row, picker.Draw({width, height}).mark}) {
        EXPECT_TRUE(width < 24 || height < 11 ||
                    (mark.top >= 0 && mark.bottom <= height && mark.left > 0 && mark.right < width))
            << width << "x" << height << ": " << mark.left << ' ' << mark.top;
      }
    }
  }
}

}  // namespace
