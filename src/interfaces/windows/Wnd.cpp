// The table of handles, and what all windows share.
#include "interfaces/windows/Wnd.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>

using namespace kestrin;

namespace {

// From handle to object. An object stands here for its whole life, so a handle held by anybody
// tells for sure whether the object behind it is still there.
class HandleTable {
 public:
  WindowHandle Add(CWnd* window) {
    const std::lock_guard guard(lock_);
    last_ = WindowHandle{static_cast<std::uint64_t>(last_) + 1};
    windows_.emplace(last_, window);
    return last_;
  }
  void Remove(WindowHandle handle) {
    const std::lock_guard guard(lock_);
    windows_.erase(handle);
  }
  CWnd* Find(WindowHandle handle) const {
    const std::lock_guard guard(lock_);
    const auto found = windows_.find(handle);
    return found == windows_.end() ? nullptr : found->second;
  }

 private:
  mutable std::mutex lock_;
  std::unordered_map<WindowHandle, CWnd*> windows_;
  WindowHandle last_ = WindowHandle::none;
};

// Never destroyed, like the numbers of messages below: a static object of the host may hold a
// window that was made after it, and ends after everything else.
HandleTable& Handles() {
  static auto* const table = new HandleTable;
  return *table;
}

thread_local WindowHandle focus = WindowHandle::none;

struct Range {
  char32_t first;
  char32_t last;
};

bool InAny(char32_t c, const Range* begin, const Range* end) {
  return std::any_of(begin, end, [c](Range r) { return c >= r.first && c <= r.last; });
}

int CharacterColumns(char32_t c) {
  static constexpr Range combining[] = {{0x300, 0x36F},   {0x483, 0x489},   {0x591, 0x5BD},
                                        {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x200B, 0x200F},
                                        {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}};
  static constexpr Range wide[] = {{0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0xA4CF},
                                   {0xA960, 0xA97C},   {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},
                                   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},
                                   {0x1F300, 0x1F64F}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};
  if (c < 0x300) return 1;
  if (InAny(c, std::begin(combining), std::end(combining))) return 0;
  return InAny(c, std::begin(wide), std::end(wide)) ? 2 : 1;
}

}  // namespace

COLORREF GetSysColor(int index) {
  switch (index) {
    case color_window:
      return RGB(255, 255, 255);
    case color_window_text:
      return RGB(0, 0, 0);
    case color_highlight:
      return RGB(0, 120, 215);
    case color_highlight_text:
      return RGB(255, 255, 255);
    case color_face:
      return RGB(240, 240, 240);
    default:
      return RGB(0, 0, 0);
  }
}

int kestrin::TextColumns(std::wstring_view text) {
  int columns = 0;
  while (!text.empty()) columns += CharacterColumns(Text::TakeCharacter(text));
  return columns;
}

unsigned int RegisterWindowMessage(std::wstring_view name) {
  constexpr unsigned int first_number = 0xC000;
  static std::mutex lock;
  static auto* const numbers = new std::map<std::wstring, unsigned int>;
  const std::lock_guard guard(lock);
  const auto next = first_number + static_cast<unsigned int>(numbers->size());
  return numbers->try_emplace(std::wstring(name), next).first->second;
}

bool IsWindow(WindowHandle window) {
  const CWnd* const object = Handles().Find(window);
  return object && object->IsWindow();
}

LRESULT SendMessage(WindowHandle window, unsigned int message, WPARAM w, LPARAM l) {
  const CWnd* const object = Handles().Find(window);
  if (!object || !object->IsWindow()) return 0;
  const auto found = object->handlers_.find(message);
  if (found == object->handlers_.end()) return 0;
  // A copy, since the handler may take itself away, or the whole window.
  const CWnd::MessageHandler handler = found->second;
  return handler(w, l);
}

CWnd::CWnd() : handle_(Handles().Add(this)) {}

CWnd::~CWnd() {
  CloseWindow();
  Handles().Remove(handle_);
}

bool CWnd::Create(CWnd* parent, int id, CRect area) {
  if (exists_ || (parent && !parent->exists_)) return false;
  const WindowHandle self = handle_;
  const WindowHandle above = parent ? parent->handle_ : WindowHandle::none;
  EndWindow();  // of the window before, if its end has led here; that may end the parent too
  if (!Handles().Find(self) || exists_ || (parent && !::IsWindow(above))) return false;
  parent_ = above;
  if (parent) parent->children_.push_back(self);
  id_ = id;
  area_ = area;
  exists_ = true;
  if (WindowView* const viewer = FindView()) viewer->Shown(*this);
  PreSubclassWindow();
  return ::IsWindow(self);
}

bool CWnd::DestroyWindow() {
  const bool existed = exists_;
  EndWindow();
  return existed;
}

void CWnd::EndWindow() {
  if (CloseWindow()) OnDestroy();
}

// Everything but the virtual call, for the destructor's sake. True if this call has finished it.
//
// The window counts as gone from the first line on, so that whatever a child's end sets off finds
// no half of it. It may set off anything: the end of this object, of its parent, or a new window
// for it. Each of them comes back here and goes on where the call under way stands; that one then
// finds nothing left to do.
bool CWnd::CloseWindow() {
  const WindowHandle self = handle_;
  ending_ = ending_ || exists_;
  exists_ = false;
  if (focus == self) focus = WindowHandle::none;
  while (ending_ && !children_.empty()) {
    Handles().Find(children_.front())->EndWindow();
    if (!Handles().Find(self)) return false;
  }
  if (!ending_) return false;
  ending_ = false;
  WindowView* const viewer = FindView();
  if (CWnd* const above = GetParent()) std::erase(above->children_, self);
  parent_ = WindowHandle::none;
  if (viewer) viewer->Gone(self);
  return true;
}

CWnd* CWnd::GetParent() const { return Handles().Find(parent_); }

CWnd* CWnd::GetOwner() const {
  return owner_ == WindowHandle::none ? GetParent() : Handles().Find(owner_);
}

void CWnd::SetOwner(CWnd* window) { owner_ = window ? window->handle_ : WindowHandle::none; }

CWnd* CWnd::GetDlgItem(int item) const {
  for (const WindowHandle child : children_) {
    CWnd* const window = Handles().Find(child);
    if (window && window->exists_ && window->id_ == item) return window;
  }
  return nullptr;
}

void CWnd::OnMessage(unsigned int message, MessageHandler handler) {
  if (handler) {
    handlers_[message] = std::move(handler);
  } else {
    handlers_.erase(message);
  }
}

void CWnd::SetFocus() {
  if (!exists_ || focus == handle_) return;
  const WindowHandle self = handle_;
  const WindowHandle before = std::exchange(focus, self);
  if (CWnd* const loser = Handles().Find(before)) loser->LoseFocus(this);
  // The loser may have moved the focus on or destroyed this very window.
  if (focus != self || !::IsWindow(self)) return;
  OnSetFocus(Handles().Find(before));
  TellChanged(self);
}

void CWnd::KillFocus() {
  if (focus != handle_) return;
  focus = WindowHandle::none;
  LoseFocus(nullptr);
}

void CWnd::LoseFocus(CWnd* winner) {
  const WindowHandle self = handle_;
  OnKillFocus(winner);
  TellChanged(self);
}

void CWnd::TellChanged(WindowHandle window) {
  if (CWnd* const object = Handles().Find(window)) object->NotifyChanged();
}

bool CWnd::HasFocus() const { return focus == handle_; }

WindowView* CWnd::FindView() const {
  for (const CWnd* window = this; window; window = window->GetParent()) {
    if (window->view_) return window->view_;
  }
  return nullptr;
}

void CWnd::NotifyChanged() {
  if (!exists_) return;
  if (WindowView* const viewer = FindView()) viewer->Changed(*this);
}

void CWnd::NotifyParent(CommandCode code) const {
  ::SendMessage(parent_, WM_COMMAND, CommandParam(id_, code), static_cast<LPARAM>(handle_));
}
