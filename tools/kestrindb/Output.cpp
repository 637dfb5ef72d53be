#include "Output.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>

#include "Answer.h"

namespace kestrindb {
namespace {

std::string_view Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value ? value : "";
}

bool ShowsColours(int file) {
  return isatty(file) != 0 && Variable("NO_COLOR").empty() && Variable("TERM") != "dumb";
}

std::string Painted(std::string_view text, Colour colour, bool shows_colours) {
  if (!shows_colours || text.empty()) return std::string(text);
  constexpr const char* codes[] = {"1", "36", "1;31", "33", "2"};
  return std::string("\x1B[") + codes[static_cast<int>(colour)] + 'm' + std::string(text) +
         "\x1B[0m";
}

bool FitsTheTerminal(const std::string& text) {
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_row == 0) return true;
  return std::count(text.begin(), text.end(), '\n') < size.ws_row;
}

// False if there is no such program. One that the user leaves early is fine.
bool Page(const std::string& text) {
  setenv("LESS", "FRX", 0);  // colours, and no screen of its own for what fits
  std::FILE* const pager = popen(std::string(Variable("PAGER")).c_str(), "w");
  if (!pager) return false;
  auto* const before = std::signal(SIGPIPE, SIG_IGN);
  std::fwrite(text.data(), 1, text.size(), pager);
  const int status = pclose(pager);
  std::signal(SIGPIPE, before);
  constexpr int not_found = 127;
  return !WIFEXITED(status) || WEXITSTATUS(status) != not_found;
}

}  // namespace

std::string Painted(std::string_view text, Colour colour) {
  static const bool shows_colours = ShowsColours(STDOUT_FILENO);
  return Painted(text, colour, shows_colours);
}

std::string PaintedForErrors(std::string_view text, Colour colour) {
  return Painted(text, colour, ShowsColours(STDERR_FILENO));
}

std::string Unaltered(const std::string& text) {
  return isatty(STDOUT_FILENO) != 0 ? Printable(text) : text;
}

int ColumnsOf(std::string_view text) {
  std::string plain(text);
  for (auto at = plain.find("\x1B["); at != std::string::npos; at = plain.find("\x1B[", at)) {
    plain.erase(at, plain.find('m', at) + 1 - at);
  }
  return kestrin::TextColumns(Wide(plain));
}

void PrintByPages(const std::function<void()>& print) {
  if (isatty(STDOUT_FILENO) == 0 || Variable("PAGER").empty()) return print();
  std::ostringstream text;
  std::streambuf* const before = std::cout.rdbuf(text.rdbuf());
  try {
    print();
  } catch (...) {
    std::cout.rdbuf(before);
    throw;
  }
  std::cout.rdbuf(before);
  if (FitsTheTerminal(text.str()) || !Page(text.str())) std::cout << text.str();
}

}  // namespace kestrindb
