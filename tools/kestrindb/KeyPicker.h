// The key editor at a keyboard, without any terminal: keys come in and become gestures on the
// dialog, pictures come out.
//
// One stop of the dialog is marked: a row that takes input, or a button. The arrow keys move the
// mark, Enter or Space works what is marked, Delete takes the value of a row away. Enter on a row
// opens its drop-down, and so does a character, which then begins a search: only the entries that
// hold the text, or whose ids begin with it, stay, and those on top that begin with it, whatever
// their capitals as far as the program's locale (LC_CTYPE) knows such letters. Escape takes one
// step back: it clears the search, closes the drop-down, closes the dialog. A click works what it
// meets.
#pragma once

#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "lKestrinDb.h"

namespace kestrindb {

enum class KeyPress {
  up,
  down,
  left,
  right,
  page_up,
  page_down,
  home,
  end,
  enter,
  escape,
  backspace,
  del
};

struct ScreenSize {
  int width;  // columns
  int height;
};

// What a screen shows: pictures, of which a later one covers those before it, and the place that is
// marked. A screen too small for the smallest dialog has to cut them.
struct ScreenPicture {
  struct Layer {
    int x;
    int y;
    kestrin::TextView::Lines lines;
  };
  std::vector<Layer> layers;
  std::vector<kestrin::CRect> unknown;  // values of which the data base knows no name
  kestrin::CRect mark;
};

// An open drop-down: the entries that the typed text leaves, of which one is marked.
class EntryFinder {
 public:
  EntryFinder(const std::map<int, CString>& entries, int selected);

  void Type(std::wstring_view text);
  // The keys that move the mark, backspace and delete; others do nothing.
  void Press(KeyPress key);
  // Marks the entry that the last picture showed there; false if it showed none.
  bool MarkAt(kestrin::CPoint place);

  bool HasText() const { return !typed_.empty(); }
  // The id of the marked entry; empty if the search has left none.
  std::optional<int> Marked() const;
  // "3 of 14"
  CString PlaceText() const;

  // Adds the list below a cell, or above it where there is more room and it needs that.
  void Draw(ScreenSize screen, const kestrin::CRect& cell, ScreenPicture& picture);

 private:
  void Search();

  std::vector<std::pair<int, CString>> entries_;
  int selected_;
  CString typed_;
  CComboBoxX found_;  // its items' data are the ids
  int width_;
  int page_ = 1;
  int first_shown_ = 0;
  kestrin::CRect shown_;  // where the last picture showed entries
};

// Use it on one thread, and one at a time: key editors share the lists of their drop-downs.
class KeyPicker {
 public:
  explicit KeyPicker(const CClavis& key);
  KeyPicker(const KeyPicker&) = delete;
  KeyPicker& operator=(const KeyPicker&) = delete;
  ~KeyPicker() = default;

  void Press(KeyPress key);
  // Text without control characters.
  void Type(std::wstring_view text);
  // At a place of the last picture.
  void Click(kestrin::CPoint place);
  // As the dialog's close box.
  void Close() { dialog_.Close(); }

  bool IsOpen() const { return dialog_.IsWindow(); }
  // The key that OK has confirmed; empty before, and if the dialog was closed in another way.
  const std::optional<CClavis>& Chosen() const { return chosen_; }

  ScreenPicture Draw(ScreenSize screen);

 private:
  struct Stop {
    int row;     // -1: a button
    int button;  // its item
  };

  int DropDownColumn(int row) const;
  std::vector<Stop> Stops() const;
  Stop Marked() const;
  void MoveTo(int stop);
  void MoveToDefaultButton();
  void MoveToButtonBeside(bool right);
  void Open();
  void Choose();
  bool IsUnknown(int row) const;
  void Clear();
  ScreenSize DialogSize(ScreenSize screen) const;

  CKestrinDialog dialog_;
  std::optional<CClavis> chosen_;
  CXListCtrl* list_ = nullptr;  // of the dialog
  int list_item_ = 0;
  int marked_ = 0;  // index of a stop
  int first_row_ = 0;
  std::optional<EntryFinder> open_;
  std::vector<std::pair<kestrin::CRect, int>> places_;  // of the stops in the last picture
};

}  // namespace kestrindb
