// Choosing a key at a terminal: the keys do what they say, a search finds what a user means, no
// screen is too small, and the answer comes out clean while the screen is in use.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <clocale>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

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
    if (child_ == 0) {
      setenv("TERM", terminal, 1);
      setenv("LC_ALL", "C", 1);
      dup2(open(answer_.path().c_str(), O_WRONLY), STDOUT_FILENO);
      alarm(60);
      execv(KESTRINDB, argv.data());
      _exit(127);
    }
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session() { close(tty_); }

  // False if the screen doesn't show the text from here on.
  bool WaitFor(std::string_view text) {
    std::size_t found = std::string::npos;
    while ((found = screen_.find(text, seen_)) == std::string::npos) {
      if (!Read()) return false;
    }
    seen_ = found + text.size();
    return true;
  }
  void Send(std::string_view keys) {
    EXPECT_EQ(write(tty_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
  }
  void Resize(unsigned short lines, unsigned short columns) {
    const winsize size{lines, columns, 0, 0};
    EXPECT_EQ(ioctl(tty_, TIOCSWINSZ, &size), 0);
  }
  // The exit status.
  int End() {
    while (Read()) {
    }
    int status = 0;
    waitpid(child_, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  const std::string& Screen() const { return screen_; }
  std::string Answer() const { return answer_.bytes(); }

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
    const int tty = posix_openpt(O_RDWR);
    if (tty < 0) GTEST_SKIP() << "this machine has no pseudo terminal to give";
    close(tty);
  }
};

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
    std::vector<std::string> arguments{"130", "1700", "-1", "-1", "17001", "-1", "--lang", "de"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    Session session(arguments);
    ASSERT_TRUE(session.WaitFor("Schlüssel-Spezifikation")) << session.Screen();
    ASSERT_TRUE(session.WaitFor("Mesh 1 H1")) << session.Screen();
    session.Send(keys);
    EXPECT_EQ(session.End(), status) << session.Screen();
    EXPECT_EQ(session.Answer().substr(0, answer.empty() ? std::string::npos : answer.size()),
              answer);
    EXPECT_NE(session.Screen().find("\x1B[?1049l"), std::string::npos) << "screen given back";
  }
}

TEST_F(PickAtTerminal, FollowsTheWindowAndRefusesWhatIsNoScreen) {
  Session session({"--lang", "en"});
  ASSERT_TRUE(session.WaitFor("Esc leaves"));
  session.Resize(12, 60);
  ASSERT_TRUE(session.WaitFor("▼")) << session.Screen();
  session.Send("\x1B[1;5A");  // no key of the picker, and not Esc either
  session.Resize(24, 80);
  ASSERT_TRUE(session.WaitFor("sensor")) << session.Screen();
  session.Send("\x03");
  EXPECT_EQ(session.End(), 3);

  Session dumb({}, "dumb");
  EXPECT_EQ(dumb.End(), 4);
  EXPECT_NE(dumb.Screen().find("TERM"), std::string::npos);
}

}  // namespace
