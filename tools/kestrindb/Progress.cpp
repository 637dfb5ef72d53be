#include "Progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <iostream>

namespace kestrindb {
namespace {

constexpr auto patience = std::chrono::seconds(1);
constexpr auto pause = std::chrono::milliseconds(100);
constexpr int bar_width = 30;
constexpr const char* erase_line = "\r\x1b[K";

}  // namespace

Progress::Progress() : is_watched_(isatty(STDERR_FILENO) != 0), next_(Clock::now() + patience) {}

Progress::~Progress() {
  if (is_drawn_) std::cerr << erase_line << std::flush;
}

void Progress::Show(double done, const std::string& what) {
  if (!is_watched_ || Clock::now() < next_) return;
  next_ = Clock::now() + pause;
  is_drawn_ = true;
  const auto filled = static_cast<std::size_t>(std::clamp(done, 0.0, 1.0) * bar_width);
  const std::string percent = std::to_string(static_cast<int>(std::clamp(done, 0.0, 1.0) * 100));
  std::cerr << erase_line << '[' << std::string(filled, '#') << std::string(bar_width - filled, '.')
            << "] " << percent << " %  " << what << std::flush;
}

}  // namespace kestrindb
