// Choosing a key at a terminal: the keys do what they say, a search finds what a user means, no
// screen is too small, and the answer comes out clean while the screen is in use.
#include <fcntl.h>
#include <pty.h>
#include <sys/ioctl.h>

#include <clocale>

#include "../tools/kestrindb/KeyPicker.h"
#include "control_support.h"

namespace {

using Key = kestrindb::KeyPress;
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

// --- At a terminal ---

// kestrindb at a pseudo terminal, its standard output in a file; it ends after a minute at most.
class Session {
 public:
  explicit Session(std::vector<std::string> arguments, const char* terminal = "xterm") {
    arguments.insert(arguments.begin(), {KESTRINDB, "pick", KESTRIN_SAMPLES "/gearbox.par"});
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    const winsize size{24, 80, 0, 0};
    child_ = forkpty(&tty_, nullptr, nullptr, &size);
    if (child_ != 0) return;
    setenv("TERM", terminal, 1);
    setenv("LC_ALL", "C", 1);
    dup2(open(answer_.path().c_str(), O_WRONLY), STDOUT_FILENO);
    alarm(60);
    execv(KESTRINDB, argv.data());
    _exit(127);
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session() { close(tty_); }

  // Sends the keys when the screen shows the text, from where the one before stood on.
  void At(std::string_view text, std::string_view keys) {
    std::size_t found = std::string::npos;
    while ((found = screen_.find(text, seen_)) == std::string::npos) {
      if (!Read()) FAIL() << screen_;
    }
    seen_ = found + text.size();
    EXPECT_EQ(write(tty_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
  }
  void Resize(unsigned short lines, unsigned short columns) {
    const winsize size{lines, columns, 0, 0};
    EXPECT_EQ(ioctl(tty_, TIOCSWINSZ, &size), 0);
  }
  // The exit status, and what was answered.
  std::string End() {
    while (Read()) {
    }
    int status = 0;
    waitpid(child_, &status, 0);
    return std::to_string(WIFEXITED(status) ? WEXITSTATUS(status) : -1) + '\n' + answer_.bytes();
  }
  const std::string& Screen() const { return screen_; }

 private:
  bool Read() {
    char buffer[4096];
    const ssize_t count = read(tty_, buffer, sizeof buffer);
    if (count > 0) screen_.append(buffer, static_cast<std::size_t>(count));
    return count > 0;
  }

  pid_t child_ = -1;
  int tty_ = -1;
  const ScratchFile answer_;
  std::string screen_;
  std::size_t seen_ = 0;
};

class PickAtTerminal : public testing::Test {
 protected:
  void SetUp() override {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    if (terminal == -1) GTEST_SKIP() << "there is no pseudo terminal";
    close(terminal);
  }
};

TEST_F(PickAtTerminal, AnswersWhatTheUserHasConfirmed) {
  const std::tuple<const char*, std::string, std::string> cases[] = {
      {"", "\tOrder spectrum\r\x1BOF\r",
       "0\nids                   130 2500 -1 -1 -1 -1\nnames only  "},
      {"--bare", "\x1BOF\r", "0\n130 1700 -1 -1 17001 -1\n"},
      {"--json", "\x1BOF\r", "0\n{\n  \"key\": [\n    130,\n    1700,"},
      {"--ids", "\tzz\x1B\x1B\x1B", "3\n"},
      {"", "\x03", "3\n"}};
  for (const auto& [option, keys, answer] : cases) {
    std::vector<std::string> arguments{"130", "1700", "-1", "-1", "17001", "-1", "--lang", "de"};
    if (*option != 0) arguments.emplace_back(option);
    Session session(arguments);
    session.At("Schlüssel-Spezifikation", "");
    session.At("Mesh 1 H1", keys);
    EXPECT_EQ(session.End().substr(0, answer[0] == '0' ? answer.size() : 99), answer);
    EXPECT_NE(session.Screen().find("\x1B[?1049l"), std::string::npos) << "screen given back";
  }
}

TEST_F(PickAtTerminal, FollowsTheWindowAndRefusesWhatIsNoScreen) {
  Session session({"--lang", "en"});
  session.At("Esc leaves", "");
  session.Resize(12, 60);
  session.At("▼", "\x1B[1;5A");  // no key of the picker, and not Esc either
  session.Resize(24, 80);
  session.At("sensor", "\x03");
  EXPECT_EQ(session.End(), "3\n");
  Session dumb({}, "dumb");
  EXPECT_EQ(dumb.End(), "4\n");
  EXPECT_NE(dumb.Screen().find("TERM"), std::string::npos);
}

}  // namespace
