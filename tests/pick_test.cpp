// Choosing a key at a terminal: the keys do what they say, a search finds what a user means, no
// screen is too small, and the answer comes out clean while the screen is in use.
#include <gtest/gtest.h>

#include <array>
#include <clocale>
#include <string>
#include <vector>

#include "../tools/kestrindb/KeyPicker.h"
#include "control_support.h"
#include "tool_session.h"

namespace {

using kestrindb::Key;
using kestrindb::KeyPicker;
using kestrindb::ScreenPicture;

CClavis KeyOf(const std::array<int, Clavis::element_count>& ids) { return CClavis(ids.data()); }

// --- Without a terminal ---

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
  Press(picker, {Key::escape, Key::enter, Key::end, Key::enter});  // the first Enter opens anew
  Press(picker, {Key::down, Key::down, Key::down, Key::down, Key::down});
  EXPECT_EQ(Shown(picker).at(12), L">│  [  Cancel   ]             «    OK     » │");
  Press(picker, {Key::down, Key::right, Key::up, Key::end, Key::left, Key::right, Key::enter});
  EXPECT_FALSE(picker.IsOpen());
  EXPECT_EQ(picker.Chosen(), KeyOf({-1, 4, -1, -1, -1, 7}));

  KeyPicker other(KeyOf({-1, 3, -1, -1, 12, 7}));
  Press(other, {Key::end, Key::left, Key::enter, Key::enter});
  other.Type(L"x");
  EXPECT_FALSE(other.IsOpen());
  EXPECT_EQ(other.Chosen(), std::nullopt);
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
  Press(picker, {Key::enter, Key::end, Key::enter});
  EXPECT_EQ(picker.Chosen(), KeyOf({-1, 2, -1, -1, -1, -1}));
}

TEST_F(PickKeys, NoScreenIsTooSmall) {
  for (const int width : {1, 2, 3, 10, 24, 40, 200}) {
    for (const int height : {1, 2, 5, 11, 12, 100}) {
      const kestrindb::ScreenSize screen{width, height};
      KeyPicker picker(KeyOf({-1, 3, -1, -1, 12, 7}));
      picker.Draw(screen);
      Press(picker, {Key::down, Key::down, Key::down});
      const CRect row = picker.Draw(screen).mark;
      Press(picker, {Key::up, Key::up});
      picker.Type(L"e");
      const CRect entry = picker.Draw(screen).mark;
      if (width < 24 || height < 11) continue;
      for (const CRect& mark : {row, entry}) {
        EXPECT_TRUE(mark.top >= 0 && mark.bottom <= height && mark.left > 0 && mark.right < width)
            << width << "x" << height << ": " << mark.left << ' ' << mark.top;
      }
      EXPECT_NE(SideBySide({Shown(picker, screen)}).find(">│▐Summenpegel "), std::string::npos);
    }
  }
}

// --- At a terminal ---

using PickAtTerminal = AtTerminal;

constexpr const char* restored_screen = "\x1B[?1049l";

TEST_F(PickAtTerminal, AnswersWhatTheUserHasConfirmed) {
  const std::string another_instrument = "\tOrder spectrum\r";
  const std::string ok = "\x1BOF\r";
  const struct {
    std::vector<std::string> options;
    std::string keys;
    int status;
    std::string answer;  // how it begins; nothing is nothing at all
  } cases[] = {
      {{}, another_instrument + ok, 0, "ids                   130 2500 -1 -1 -1 -1\nnames only  "},
      {{"--bare"}, ok, 0, "130 1700 -1 -1 17001 -1\n"},
      {{"--json"}, ok, 0, "{\n  \"key\": [\n    130,\n    1700,"},
      {{"--ids"}, another_instrument + "\x1B", 3, ""},
      {{}, "\x03", 3, ""},
  };
  for (const auto& [options, keys, status, answer] : cases) {
    std::vector<std::string> arguments{"pick", sample,  "130", "1700",   "-1",
                                       "-1",   "17001", "-1",  "--lang", "de"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    Session session(arguments);
    ASSERT_TRUE(session.WaitFor("Schlüssel-Spezifikation")) << session.Screen();
    ASSERT_TRUE(session.WaitFor("Mesh 1 H1")) << session.Screen();
    session.Send(keys);
    EXPECT_EQ(session.End(), status) << session.Screen();
    EXPECT_EQ(session.Answer().substr(0, answer.empty() ? std::string::npos : answer.size()),
              answer);
    EXPECT_NE(session.Screen().find(restored_screen), std::string::npos);
  }
}

TEST_F(PickAtTerminal, FollowsTheWindowAndRefusesWhatIsNoScreen) {
  Session session({"pick", sample, "--lang", "en"});
  ASSERT_TRUE(session.WaitFor("Esc leaves"));
  session.Resize(12, 60);
  ASSERT_TRUE(session.WaitFor("▼")) << session.Screen();
  session.Send("\x1B[1;5A");  // no key of the picker, and not Esc either
  session.Resize(24, 80);
  ASSERT_TRUE(session.WaitFor("sensor")) << session.Screen();
  session.Send("\x03");
  EXPECT_EQ(session.End(), 3);

  Session dumb({"pick", sample}, "dumb");
  EXPECT_EQ(dumb.End(), 4);
  EXPECT_NE(dumb.Screen().find("TERM"), std::string::npos);
}

}  // namespace
