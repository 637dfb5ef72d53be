// The command-line host, run for a test at a terminal of its own.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "lake_bytes.h"

inline constexpr const char* sample = KESTRIN_SAMPLES "/gearbox.par";

// kestrindb at a pseudo terminal, its standard output in a file.
class Session {
 public:
  explicit Session(std::vector<std::string> arguments, const char* terminal = "xterm") {
    arguments.insert(arguments.begin(), KESTRINDB);
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    const winsize size{24, 80, 0, 0};
    child_ = forkpty(&tty_, nullptr, nullptr, &size);
    if (child_ == 0) {
      setenv("TERM", terminal, 1);
      setenv("LC_ALL", "C", 1);
      dup2(open(answer_.path().c_str(), O_WRONLY), STDOUT_FILENO);
      execv(KESTRINDB, argv.data());
      _exit(127);
    }
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session() {
    if (child_ > 0) End();
    close(tty_);
  }

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

  // The exit status, -1 for none: one that is still running is given up.
  int End() {
    while (Read()) {
    }
    if (timed_out_) kill(child_, SIGKILL);
    int status = 0;
    waitpid(child_, &status, 0);
    child_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  const std::string& Screen() const { return screen_; }
  std::string Answer() const { return answer_.bytes(); }  // after the end

 private:
  // False at the end of what the child shows, and when it shows nothing for a long time.
  bool Read() {
    constexpr int long_time = 60'000;  // ms
    pollfd waiting{tty_, POLLIN, 0};
    if (!timed_out_) timed_out_ = poll(&waiting, 1, long_time) == 0;
    if (timed_out_) return false;
    char buffer[4096];
    const ssize_t count = read(tty_, buffer, sizeof buffer);
    if (count > 0) screen_.append(buffer, static_cast<std::size_t>(count));
    return count > 0;
  }

  pid_t child_ = -1;
  int tty_ = -1;
  const ScratchFile answer_;
  bool timed_out_ = false;
  std::string screen_;
  std::size_t seen_ = 0;
};

// Some machines that build have no pseudo terminals to give.
class AtTerminal : public testing::Test {
 protected:
  void SetUp() override {
    int controller = -1;
    int terminal = -1;
    if (openpty(&controller, &terminal, nullptr, nullptr, nullptr) != 0) {
      GTEST_SKIP() << "no pseudo terminal";
    }
    close(controller);
    close(terminal);
  }
};
