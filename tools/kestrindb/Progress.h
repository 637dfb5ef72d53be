// A bar on standard error that shows how far a long command has come.
//
// It is for people: without a terminal nothing is written, and what is over within a second goes
// without a bar. The bar leaves no trace when it is destroyed.
#pragma once

#include <chrono>
#include <string>

namespace kestrindb {

class Progress {
 public:
  Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();

  // `done` runs from 0 to 1; `what` tells what is at work now. May be called as often as one likes:
  // the bar is drawn anew ten times in a second.
  void Show(double done, const std::string& what);

 private:
  using Clock = std::chrono::steady_clock;

  bool is_watched_;
  bool is_drawn_ = false;
  Clock::time_point next_;
};

}  // namespace kestrindb
