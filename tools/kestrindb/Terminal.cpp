#include "Terminal.h"

#define NCURSES_NOMACROS 1
#include <curses.h>
#include <poll.h>
#include <sys/ioctl.h>

#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <string>

#include "DataBase.h"

using namespace kestrin;

namespace kestrindb {
namespace {

constexpr int escape_delay = 50;   // ms: a longer silence after Esc makes it the key of that name
constexpr short unknown_pair = 1;  // the colours of values without a name
constexpr wint_t control_c = 3;
constexpr wint_t backspace = 8;
constexpr wint_t escape = 27;
constexpr wint_t del = 127;

// The characters of the environment's locale and nothing else of it. One that names none, or isn't
// installed, means UTF-8, in which kestrindb writes everything else too.
void UseCharactersOfTheEnvironment() {
  const char* const name = std::setlocale(LC_CTYPE, "");
  if (!name || std::strcmp(name, "C") == 0 || std::strcmp(name, "POSIX") == 0) {
    std::setlocale(LC_CTYPE, "C.UTF-8");
  }
}

// As much of a line as goes into the columns, with one element a character.
std::wstring WholeCharacters(std::wstring_view line, int columns) {
  std::wstring out;
  while (!line.empty()) {
    const std::wstring_view rest = line;
    const char32_t character = Text::TakeCharacter(line);
    columns -= TextColumns(rest.substr(0, rest.size() - line.size()));
    if (columns < 0) break;
    out += static_cast<wchar_t>(character);
  }
  return out;
}

std::optional<KeyPress> KeyOf(int kind, wint_t code) {
  constexpr struct {
    int kind;
    wint_t code;
    KeyPress key;
  } keys[] = {
      {KEY_CODE_YES, KEY_UP, KeyPress::up},
      {KEY_CODE_YES, KEY_BTAB, KeyPress::up},
      {KEY_CODE_YES, KEY_DOWN, KeyPress::down},
      {OK, L'\t', KeyPress::down},
      {KEY_CODE_YES, KEY_LEFT, KeyPress::left},
      {KEY_CODE_YES, KEY_RIGHT, KeyPress::right},
      {KEY_CODE_YES, KEY_PPAGE, KeyPress::page_up},
      {KEY_CODE_YES, KEY_NPAGE, KeyPress::page_down},
      {KEY_CODE_YES, KEY_HOME, KeyPress::home},
      {KEY_CODE_YES, KEY_END, KeyPress::end},
      {KEY_CODE_YES, KEY_ENTER, KeyPress::enter},
      {OK, L'\r', KeyPress::enter},
      {OK, L'\n', KeyPress::enter},
      {OK, escape, KeyPress::escape},
      {KEY_CODE_YES, KEY_DC, KeyPress::del},
      {KEY_CODE_YES, KEY_BACKSPACE, KeyPress::backspace},
      {OK, backspace, KeyPress::backspace},
      {OK, del, KeyPress::backspace},
  };
  for (const auto& known : keys) {
    if (known.kind == kind && known.code == code) return known.key;
  }
  return std::nullopt;
}

// What the terminal has sent already; ERR if that is nothing.
int NextPending(wint_t& character) {
  wtimeout(stdscr, 0);
  const int kind = get_wch(&character);
  wtimeout(stdscr, -1);
  return kind;
}

// A key that curses doesn't know comes as Esc with a sequence behind it, which is taken away here.
// Anything else behind Esc is a key of its own. False if Esc was Esc.
bool SkipSequenceBehindEscape() {
  wint_t character = 0;
  const int kind = NextPending(character);
  if (kind == ERR) return false;
  if (kind == OK && character == L'O') return NextPending(character) != ERR;
  if (kind == OK && character == L'[') {
    while (NextPending(character) == OK && (character < L'@' || character > L'~')) {
    }
    return true;
  }
  kind == OK ? unget_wch(static_cast<wchar_t>(character)) : ungetch(static_cast<int>(character));
  return false;
}

// What was done with the mouse; the wheel moves the mark.
Terminal::Input MouseInput() {
  Terminal::Input input;
  MEVENT event{};
  if (getmouse(&event) != OK) return input;
  if ((event.bstate & BUTTON1_PRESSED) != 0) input.click = CPoint{event.x, event.y};
  if ((event.bstate & BUTTON4_PRESSED) != 0) input.key = KeyPress::up;
  if ((event.bstate & BUTTON5_PRESSED) != 0) input.key = KeyPress::down;
  return input;
}

}  // namespace

Terminal::Terminal() : tty_(std::fopen("/dev/tty", "r+")) {
  if (!tty_) {
    throw Failure(no_terminal,
                  std::string("There is no terminal to choose at: ") + std::strerror(errno) + ".");
  }
  UseCharactersOfTheEnvironment();
  set_escdelay(escape_delay);
  screen_.reset(newterm(nullptr, tty_.get(), tty_.get()));
  if (!screen_ || !tigetstr("cup")) {
    throw Failure(
        no_terminal,
        "The terminal is of a kind that can't show a screen; the variable TERM names it.");
  }
  raw();  // Ctrl-C is a key, so that the screen is always given back
  noecho();
  nonl();
  keypad(stdscr, TRUE);
  mouseinterval(0);
  mousemask(BUTTON1_PRESSED | BUTTON4_PRESSED | BUTTON5_PRESSED, nullptr);
  const char* const no_color = std::getenv("NO_COLOR");
  if ((!no_color || *no_color == '\0') && has_colors() && start_color() == OK) {
    use_default_colors();
    init_pair(unknown_pair, COLOR_RED, -1);
  }
}

void Terminal::EndScreen::operator()(screen* taken) const {
  endwin();
  delscreen(taken);
}

Terminal::ResizeSignal::ResizeSignal() {
  sigset_t resize;
  sigemptyset(&resize);
  sigaddset(&resize, SIGWINCH);
  sigprocmask(SIG_BLOCK, &resize, &before_);
}

Terminal::ResizeSignal::~ResizeSignal() { sigprocmask(SIG_SETMASK, &before_, nullptr); }

ScreenSize Terminal::Size() const {
  winsize size{};
  const bool known =
      ioctl(fileno(tty_.get()), TIOCGWINSZ, &size) == 0 && size.ws_row > 0 && size.ws_col > 0;
  if (known && is_term_resized(size.ws_row, size.ws_col)) resizeterm(size.ws_row, size.ws_col);
  return {getmaxx(stdscr), getmaxy(stdscr)};
}

void Terminal::Show(const ScreenPicture& picture) {
  const ScreenSize size = Size();
  werase(stdscr);
  for (const ScreenPicture::Layer& layer : picture.layers) {
    int y = layer.y;
    for (const CString& line : layer.lines) {
      mvaddwstr(y++, layer.x, WholeCharacters(line, size.width - layer.x).c_str());
    }
  }
  for (const CRect& cell : picture.unknown) {
    mvchgat(cell.top, cell.left, cell.Width(), A_NORMAL, unknown_pair, nullptr);
  }
  const CRect& mark = picture.mark;
  for (int y = mark.top; y < mark.bottom; ++y) {
    mvchgat(y, mark.left, mark.Width(), A_REVERSE, 0, nullptr);
  }
  wmove(stdscr, mark.top, mark.left);
  wrefresh(stdscr);
}

Terminal::Input Terminal::Next() {
  wint_t character = 0;
  int kind = NextPending(character);
  if (kind == ERR) {
    pollfd terminal{fileno(tty_.get()), POLLIN, 0};
    if (ppoll(&terminal, 1, nullptr, &resize_signal_.WhileWaiting()) < 0) return {};
    kind = get_wch(&character);
  }
  Input input;
  if (kind == ERR || (kind == OK && character == control_c)) {
    input.closed = true;
  } else if (kind == KEY_CODE_YES && character == KEY_MOUSE) {
    return MouseInput();
  } else if (kind != OK || character != escape || !SkipSequenceBehindEscape()) {
    input.key = KeyOf(kind, character);
    const bool is_text = !input.key && kind != KEY_CODE_YES && character >= L' ';
    if (is_text) Text::AppendCharacter(input.text, character);
  }
  return input;
}

}  // namespace kestrindb
