#include "Progress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <iostream>
#include <new>
#include <system_error>

namespace kestrindb {
namespace {

constexpr std::chrono::milliseconds patience(1000);
constexpr std::chrono::milliseconds pause(100);
constexpr int bar_width = 30;
constexpr const char* erase_line = "\r\x1b[K";

std::size_t Columns() {
  winsize size{};
  const bool told = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return told ? size.ws_col : 80;
}

// One row of the terminal, since no more can be erased.
std::string Bar(double done, const std::string& what) {
  const auto filled = static_cast<std::size_t>(done * bar_width);
  const std::string bar = '[' + std::string(filled, '#') + std::string(bar_width - filled, '.') +
                          "] " + std::to_string(static_cast<int>(done * 100)) + " %  " + what;
  return bar.substr(0, Columns() - 1);
}

}  // namespace

Progress::Progress() {
  if (isatty(STDERR_FILENO) == 0) return;
  try {
    painter_ = std::jthread([this](const std::stop_token& stop) { DrawUntil(stop); });
  } catch (const std::system_error&) {
    // There can be no thread, and the command does without a bar.
  }
}

void Progress::Show(double done, const std::string& what) {
  const std::scoped_lock lock(mutex_);
  done_ = std::clamp(done, 0.0, 1.0);
  what_ = what;
}

void Progress::Print(const std::string& lines) {
  const std::scoped_lock lock(mutex_);
  Erase();
  std::cerr << lines << std::flush;
}

void Progress::DrawUntil(const std::stop_token& stop) {
  std::unique_lock lock(mutex_);
  for (auto wait = patience;; wait = pause) {
    stopped_.wait_for(lock, stop, wait, [] { return false; });
    if (stop.stop_requested()) break;
    try {
      std::cerr << erase_line + Bar(done_, what_) << std::flush;
      is_drawn_ = true;
    } catch (const std::bad_alloc&) {
      // The next bar may find memory.
    }
  }
  Erase();
}

void Progress::Erase() {
  if (is_drawn_) std::cerr << erase_line << std::flush;
  is_drawn_ = false;
}

}  // namespace kestrindb
