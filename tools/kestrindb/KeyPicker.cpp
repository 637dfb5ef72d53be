#include "KeyPicker.h"

#include <algorithm>
#include <cwctype>
#include <limits>

using namespace kestrin;

namespace kestrindb {
namespace {

// The first of `page` lines to show so that `marked` is among them and no line stays empty that one
// of the `count` could fill, moving no further than needed.
int ScrollTo(int first, int marked, int page, int count) {
  const int least = std::max(marked - page + 1, 0);
  return std::clamp(first, least, std::max(std::min(marked, count - page), least));
}

CString Folded(CString text) {
  for (wchar_t& c : text) c = static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c)));
  return text;
}

int ColumnsOf(const TextView::Lines& picture) { return TextColumns(picture.front()); }

}  // namespace

// --- The open drop-down ---

EntryFinder::EntryFinder(const std::map<int, CString>& entries, int selected)
    : entries_(entries.begin(), entries.end()), selected_(selected) {
  Search();
  width_ = ColumnsOf(TextView::DrawEntries(found_));
}

void EntryFinder::Type(std::wstring_view text) {
  typed_ += text;
  Search();
}

void EntryFinder::Press(KeyPress key) {
  constexpr int far = std::numeric_limits<int>::max() / 2;
  const auto move = [this](int by) {
    found_.SetCurSel(std::clamp(found_.GetCurSel() + by, 0, std::max(found_.GetCount() - 1, 0)));
  };
  switch (key) {
    case KeyPress::up:
      return move(-1);
    case KeyPress::down:
      return move(1);
    case KeyPress::page_up:
      return move(-page_);
    case KeyPress::page_down:
      return move(page_);
    case KeyPress::home:
      return move(-far);
    case KeyPress::end:
      return move(far);
    case KeyPress::backspace:
      // Characters beyond 16 bits are pairs.
      if (!typed_.empty() && typed_.back() >= 0xDC00 && typed_.back() < 0xE000) typed_.pop_back();
      if (!typed_.empty()) typed_.pop_back();
      return Search();
    default:
      return;
  }
}

void EntryFinder::Search() {
  const CString wanted = Folded(typed_);
  found_.ResetContent();
  for (const bool at_begin : {true, false}) {
    for (const auto& [id, text] : entries_) {
      const std::size_t place = Folded(text).find(wanted);
      if (place == CString::npos || (place == 0) != at_begin) continue;
      const int index = found_.AddString(text);
      found_.SetItemData(index, id);
      if (typed_.empty() && id == selected_) found_.SetCurSel(index);
    }
  }
  if (found_.GetCurSel() == -1) found_.SetCurSel(0);
}

std::optional<int> EntryFinder::Marked() const {
  if (found_.GetCurSel() == -1) return std::nullopt;
  return found_.GetItemData(found_.GetCurSel());
}

void EntryFinder::Draw(ScreenSize screen, CPoint place, ScreenPicture& picture) {
  constexpr int borders = 2;
  const int width = std::min(width_, screen.width);
  const int height = std::min(found_.GetCount() + borders, std::max(screen.height, borders + 1));
  const int x = std::clamp(place.x, 0, screen.width - width);
  const int y = std::clamp(place.y, 0, std::max(screen.height - height, 0));
  page_ = std::max(height - borders, 1);
  const int marked = std::max(found_.GetCurSel(), 0);
  first_shown_ = ScrollTo(first_shown_, marked, page_, found_.GetCount());
  picture.layers.push_back({x, y, TextView::DrawEntries(found_, {width, height, first_shown_})});

  // What was typed stands in the upper border; of a long text the end.
  std::wstring_view end = typed_;
  while (!end.empty() && TextColumns(end) > width - 2 * borders) end.remove_prefix(1);
  if (!end.empty()) picture.layers.push_back({x + 1, y, {L' ' + CString(end) + L' '}});

  const int line = y + 1 + marked - first_shown_;
  picture.mark = {x + 1, line, x + width - 1, line + 1};
}

// --- The dialog ---

KeyPicker::KeyPicker(const CClavis& key) {
  dialog_.on_ok = [this](const CClavis& confirmed) { chosen_ = confirmed; };
  dialog_.Display(key);
  for (const DialogItem& item : dialog_.Template().items) {
    if (auto* const list = dynamic_cast<CXListCtrl*>(dialog_.GetDlgItem(item.id))) {
      list_ = list;
      list_item_ = item.id;
    }
  }
}

int KeyPicker::DropDownColumn(int row) const {
  for (int column = 0; column < list_->GetColumnCount(); ++column) {
    if (list_->GetCell(row, column)->list) return column;
  }
  return -1;
}

// From top to bottom; the buttons in the order of the template, so that the default one is next to
// the rows.
std::vector<KeyPicker::Stop> KeyPicker::Stops() const {
  std::vector<Stop> stops;
  for (int row = 0; row < list_->GetItemCount(); ++row) {
    if (list_->GetEnabled(row) && DropDownColumn(row) != -1) stops.push_back({row, 0});
  }
  for (const DialogItem& item : dialog_.Template().items) {
    if (!dialog_.GetDlgItem(item.id)) stops.push_back({-1, item.id});
  }
  return stops;
}

KeyPicker::Stop KeyPicker::Marked() const { return Stops().at(static_cast<std::size_t>(marked_)); }

void KeyPicker::MoveTo(int stop) {
  marked_ = std::clamp(stop, 0, static_cast<int>(Stops().size()) - 1);
}

void KeyPicker::MoveToDefaultButton() {
  const std::vector<Stop> stops = Stops();
  const auto button =
      std::find_if(stops.begin(), stops.end(), [](const Stop& stop) { return stop.row == -1; });
  MoveTo(static_cast<int>(button - stops.begin()));
}

void KeyPicker::MoveToButtonBeside(bool right) {
  const std::vector<Stop> stops = Stops();
  const Stop here = Marked();
  if (here.row != -1) return;
  const int left = TextView::ItemPlace(dialog_, here.button).left;
  for (std::size_t i = 0; i < stops.size(); ++i) {
    if (stops[i].row != -1) continue;
    const int other = TextView::ItemPlace(dialog_, stops[i].button).left;
    if (right ? other > left : other < left) marked_ = static_cast<int>(i);
  }
}

void KeyPicker::Open() {
  const int row = Marked().row;
  if (row == -1) return;
  const ListCell* const cell = list_->GetCell(row, DropDownColumn(row));
  open_.emplace(*cell->list, cell->selected);
}

void KeyPicker::Choose() {
  const std::optional<int> id = open_->Marked();
  if (!id) return;
  open_.reset();
  const int row = Marked().row;
  list_->ChooseEntry(row, DropDownColumn(row), *id);
  list_->AutosizeColumnWidth(-1);
}

void KeyPicker::Press(KeyPress key) {
  if (!IsOpen()) return;
  if (open_) {
    if (key == KeyPress::enter) return Choose();
    if (key == KeyPress::escape) return open_.reset();
    return open_->Press(key);
  }
  switch (key) {
    case KeyPress::up:
      return MoveTo(marked_ - 1);
    case KeyPress::down:
      return MoveTo(marked_ + 1);
    case KeyPress::left:
    case KeyPress::right:
      return MoveToButtonBeside(key == KeyPress::right);
    case KeyPress::home:
    case KeyPress::page_up:
      return MoveTo(0);
    case KeyPress::end:
    case KeyPress::page_down:
      return MoveToDefaultButton();
    case KeyPress::escape:
      return Close();
    case KeyPress::backspace:
      return;
    case KeyPress::enter:
      if (Marked().row != -1) return Open();
      dialog_.PressButton(Marked().button);
  }
}

void KeyPicker::Type(std::wstring_view text) {
  if (!IsOpen() || text.empty()) return;
  if (!open_) Open();
  if (open_) open_->Type(text);
}

// --- The picture ---

// As large as the list would have it, within the screen and what a dialog needs.
ScreenSize KeyPicker::DialogSize(ScreenSize screen) const {
  constexpr ScreenSize smallest{24, 11};  // one row
  const TextView::Lines dialog = TextView::Draw(dialog_);
  const TextView::Lines list = TextView::Draw(*list_);
  const CRect place = TextView::ItemPlace(dialog_, list_item_);
  const int width = ColumnsOf(dialog) + std::max(ColumnsOf(list) - place.Width(), 0);
  const int height =
      static_cast<int>(dialog.size()) + std::max(static_cast<int>(list.size()) - place.Height(), 0);
  return {std::clamp(width, smallest.width, std::max(screen.width, smallest.width)),
          std::clamp(height, smallest.height, std::max(screen.height - 1, smallest.height))};
}

ScreenPicture KeyPicker::Draw(ScreenSize screen) {
  ScreenPicture picture;
  if (!IsOpen()) return picture;
  const ScreenSize size = DialogSize(screen);
  TextView::Frame frame{size.width, size.height, first_row_};
  const CRect list = TextView::ItemPlace(dialog_, list_item_, frame);
  const Stop marked = Marked();
  if (marked.row == -1) {
    picture.mark = TextView::ItemPlace(dialog_, marked.button, frame);
  } else {
    const int around = static_cast<int>(TextView::Draw(*list_).size()) - list_->GetItemCount();
    const int page = list.Height() - around;
    first_row_ = ScrollTo(first_row_, marked.row, page, list_->GetItemCount());
    frame.first_row = first_row_;
    const CRect cell =
        TextView::CellPlace(*list_, marked.row, 0, {list.Width(), list.Height(), first_row_});
    picture.mark = {list.left + 1, list.top + cell.top, list.right - 1, list.top + cell.bottom};
  }
  picture.layers.push_back({0, 0, TextView::Draw(dialog_, frame)});
  if (screen.height > size.height) {
    picture.layers.push_back(
        {0, size.height, {L"Arrows move, Enter works, typing searches, Esc leaves."}});
  }
  if (open_) {
    const CRect cell = TextView::CellPlace(*list_, marked.row, DropDownColumn(marked.row),
                                           {list.Width(), list.Height(), first_row_});
    open_->Draw(screen, {list.left + cell.left - 1, list.top + cell.bottom}, picture);
  }
  return picture;
}

}  // namespace kestrindb
