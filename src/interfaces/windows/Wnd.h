// Windows without a screen: the ground of the lists, combos and dialogs of this layer.
//
// A CWnd is a model. It knows its parent, its owner, its place and its messages, and the classes
// above it hold rows, cells, selections and buttons; nobody draws here. What a user does is offered
// as operations, the gestures (click here, choose that entry, press this button), and what changes
// is told to a view, if there is one. A control does not know whether one is there, so the same
// control serves a toolkit window, a terminal and a program without any screen.
//
// The object and its window are two things. The object lives as long as its holder wants; its
// window lives from Create to DestroyWindow, and the parent's end is its end too. A handler of a
// message may destroy any window and delete any object, also the one that is sending. So whoever
// has to speak to a window more than once, or works on after it has sent a message, holds a
// WindowHandle and no pointer. A handle names one object for its whole life and no other ever; a
// message to it goes nowhere while the object has no window.
//
// A window, with its handle and everything that it holds, belongs to one thread: the one that uses
// it. Windows of different threads don't disturb each other.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string_view>
#include <vector>

#include "interfaces/Export.h"
#include "interfaces/text/Text.h"

namespace kestrin {

using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;

// A colour as 0x00BBGGRR.
using COLORREF = std::uint32_t;
constexpr COLORREF RGB(unsigned red, unsigned green, unsigned blue) {
  return (red & 0xFFU) | (green & 0xFFU) << 8U | (blue & 0xFFU) << 16U;
}
inline constexpr COLORREF default_color = ~COLORREF{0};  // -1: whatever the window uses by itself

// The system's colours, by the numbers that controls use.
enum SystemColor : int {
  color_window = 5,
  color_window_text = 8,
  color_highlight = 13,
  color_highlight_text = 14,
  color_face = 15,
};

}  // namespace kestrin

// The highlight and the face are equal to no other colour that a cell takes. Any other index gives
// black.
KESTRIN_API kestrin::COLORREF GetSysColor(int index);

namespace kestrin {

// A point of a window, in pixels from its upper left corner. A list counts from the corner of its
// whole content: a view that scrolls adds its offset.
struct CPoint {
  int x = 0;
  int y = 0;
};

// The right and the lower edge are outside.
struct CRect {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;

  constexpr int Width() const { return right - left; }
  constexpr int Height() const { return bottom - top; }
  constexpr bool PtInRect(CPoint p) const {
    return p.x >= left && p.x < right && p.y >= top && p.y < bottom;
  }
};

// The columns of a fixed-width screen that a text takes: 2 for a wide character, 0 for a combining
// one, 1 for any other. Independent of the locale.
KESTRIN_API int TextColumns(std::wstring_view text);

}  // namespace kestrin

// The number of the message of that name. The same name gives the same number as long as the
// process lives; the numbers run from 0xC000 on. Any thread.
KESTRIN_API unsigned int RegisterWindowMessage(std::wstring_view name);

namespace kestrin {

// Sent to the parent of a control that a user has worked: wParam is the control's id, with the
// notification in the bits from 16 on.
inline constexpr unsigned int WM_COMMAND = 0x0111;
enum CommandCode : unsigned int { command_clicked = 0, command_selection_changed = 1 };
constexpr WPARAM CommandParam(int control, CommandCode code) {
  return (static_cast<unsigned int>(control) & 0xFFFFU) | static_cast<unsigned int>(code) << 16U;
}

// What a click was made with.
enum MouseFlags : unsigned int { mouse_left = 1, mouse_shift = 4, mouse_control = 8 };

class CWnd;

// Names a CWnd object, whether or not it has a window and whether or not it still lives.
enum class WindowHandle : std::uint64_t { none = 0 };

}  // namespace kestrin

// True while the object lives and has its window.
KESTRIN_API bool IsWindow(kestrin::WindowHandle window);

// Runs the receiver's handler and returns what that returns; 0 if the window is gone or does not
// handle the message.
KESTRIN_API kestrin::LRESULT SendMessage(kestrin::WindowHandle window, unsigned int message,
                                         kestrin::WPARAM w, kestrin::LPARAM l);

namespace kestrin {

// Puts windows on a screen. A view only takes note: it must not change, destroy or delete a window
// inside one of these calls.
class KESTRIN_API WindowView {
 public:
  virtual ~WindowView() = default;
  // The window exists now; a parent is shown before its children. What it holds comes with Changed.
  virtual void Shown(CWnd& window) = 0;
  // Something of its picture is different, and be it the focus. Called often: mark the window and
  // draw later.
  virtual void Changed(CWnd& window) = 0;
  // The window is gone; children go before their parent.
  virtual void Gone(WindowHandle window) = 0;
};

class KESTRIN_API CWnd {
 public:
  // For the declarations of classes made of this one.
  using WPARAM = kestrin::WPARAM;
  using LPARAM = kestrin::LPARAM;
  using LRESULT = kestrin::LRESULT;
  using COLORREF = kestrin::COLORREF;
  using CPoint = kestrin::CPoint;
  using CRect = kestrin::CRect;
  using MessageHandler = std::function<LRESULT(WPARAM, LPARAM)>;

  CWnd();
  virtual ~CWnd();
  CWnd(const CWnd&) = delete;
  CWnd& operator=(const CWnd&) = delete;

  // Gives the object its window and runs PreSubclassWindow. A parent must have a window itself; its
  // end destroys this window. `id` is a number from 0 to 65535 that tells it from its siblings,
  // `area` the place within the parent, in its units. False, and nothing done, if the object has a
  // window already or the parent has none; false also if PreSubclassWindow gave it up again. What
  // is called while its window ends may call it: the end is then brought to its end first.
  bool Create(CWnd* parent, int id = 0, CRect area = {});

  // Destroys the window, its children first. The object stays and can be given a window again.
  // False if there is none.
  bool DestroyWindow();

  WindowHandle Handle() const { return handle_; }
  bool IsWindow() const { return exists_; }
  CRect Area() const { return area_; }

  // Null if there is no parent or its object is gone.
  CWnd* GetParent() const;

  // The window that hears of this one, if it isn't the parent: see SetOwner. Without one it is the
  // parent. Null if the owner's object is gone.
  CWnd* GetOwner() const;

  // A plain receiver of messages: neither has to have a window yet, and the end of one leaves the
  // other alone. Null for none.
  void SetOwner(CWnd* window);

  // The child window with this id, or null.
  CWnd* GetDlgItem(int item) const;

  // From now on `handler` answers `message`; an empty one takes the answer back. It may do
  // anything, also delete this object.
  void OnMessage(unsigned int message, MessageHandler handler);

  // Gesture: the user gives the keyboard to this window, which takes it from the window that had it
  // on this thread.
  void SetFocus();
  // Gesture: the keyboard leaves this window for some other program.
  void KillFocus();
  bool HasFocus() const;

  // From now on `view` is told of this window and of all windows below that have no view of their
  // own; of those that are there already it hears with their next change. It must outlive its place
  // here; null takes it away.
  void SetView(WindowView* view) { view_ = view; }

 protected:
  // The window is there: the place to set it up. This and the next may set off anything, like the
  // handler of a message.
  virtual void PreSubclassWindow() {}
  // The window is gone: the place to drop what only a window holds. Not called when the object
  // itself ends.
  virtual void OnDestroy() {}

  virtual void OnSetFocus(CWnd* /*loser*/) {}
  virtual void OnKillFocus(CWnd* /*winner*/) {}

  // Tells the view that the picture is different.
  void NotifyChanged();

  // Tells the parent that the user has worked this control.
  void NotifyParent(CommandCode code) const;

 private:
  friend kestrin::LRESULT(::SendMessage)(kestrin::WindowHandle window, unsigned int message,
                                         kestrin::WPARAM w, kestrin::LPARAM l);

  WindowView* FindView() const;
  void LoseFocus(CWnd* winner);
  static void TellChanged(WindowHandle window);
  void EndWindow();
  bool CloseWindow();

  const WindowHandle handle_;
  bool exists_ = false;
  bool ending_ = false;  // its children are, and the view has not heard of its own end yet
  WindowHandle parent_ = WindowHandle::none;
  WindowHandle owner_ = WindowHandle::none;
  int id_ = 0;
  CRect area_;
  std::vector<WindowHandle> children_;
  std::map<unsigned int, MessageHandler> handlers_;
  WindowView* view_ = nullptr;
};

}  // namespace kestrin
