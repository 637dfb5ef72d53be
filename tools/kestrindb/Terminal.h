// The terminal at which kestrindb was started, as a screen and a keyboard.
//
// It is the controlling terminal and not standard output, so that the answer of a command can go
// into a variable or a file while the user works at the screen. The screen is given back when the
// object ends, however that comes about.
#pragma once

#include <csignal>
#include <cstdio>
#include <memory>
#include <optional>

#include "KeyPicker.h"

struct screen;  // what curses calls SCREEN

namespace kestrindb {

class Terminal {
 public:
  // Takes the screen. Throws Failure if there is no terminal or none that can show a screen.
  Terminal();

  // As the user has it now.
  ScreenSize Size() const;
  // What goes beyond the screen is cut.
  void Show(const ScreenPicture& picture);

  struct Input {
    std::optional<KeyPress> key;
    CString text;  // a character
    std::optional<kestrin::CPoint> click;
    bool closed = false;  // the user interrupts, or the terminal is gone
  };
  // Waits for the user. Empty if only the size has changed, or for a key that nobody needs.
  Input Next();

 private:
  struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  struct EndScreen {
    void operator()(screen* taken) const;
  };

  // Holds the signal of a new size back until Next waits, so that none falls between drawing and
  // waiting and is lost.
  class ResizeSignal {
   public:
    ResizeSignal();
    ResizeSignal(const ResizeSignal&) = delete;
    ResizeSignal& operator=(const ResizeSignal&) = delete;
    ~ResizeSignal();
    const sigset_t& WhileWaiting() const { return before_; }

   private:
    sigset_t before_{};
  };

  ResizeSignal resize_signal_;
  std::unique_ptr<std::FILE, CloseFile> tty_;
  std::unique_ptr<screen, EndScreen> screen_;
};

}  // namespace kestrindb
