// A bar on standard error that shows how far a long command has come.
//
// It is for people: without a terminal no bar is drawn, and what is over within a second goes
// without one. A thread of its own draws it, so that it stands there too while the command is in a
// call that tells nothing of itself. The bar leaves no trace when it is destroyed.
#pragma once

#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>

namespace kestrindb {

class Progress {
 public:
  Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() = default;

  // `done` runs from 0 to 1; `what` tells what is at work now. May be called as often as one likes:
  // the bar is drawn anew ten times in a second.
  void Show(double done, const std::string& what);

  // Writes whole lines to standard error, in the place of the bar, which comes again below them.
  void Print(const std::string& lines);

 private:
  void DrawUntil(const std::stop_token& stop);
  void Erase();

  std::mutex mutex_;
  std::condition_variable_any stopped_;
  double done_ = 0;
  std::string what_;
  bool is_drawn_ = false;
  std::jthread painter_;  // the last member: it ends before the others do
};

}  // namespace kestrindb
