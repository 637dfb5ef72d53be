#include "KeyPicker.h"

#include <algorithm>
#include <cwctype>
#include <limits>

#include "PickTexts.h"

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

bool Holds(const CRect& area, CPoint place) {
  return place.x >= area.left && place.x < area.right && place.y >= area.top &&
         place.y < area.bottom;
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
    case KeyPress::del:
      typed_.clear();
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
      const bool begins = place == 0 || std::to_wstring(id).starts_with(wanted);
      if ((place == CString::npos && !begins) || begins != at_begin) continue;
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

CString EntryFinder::PlaceText() const {
  return std::to_wstring(found_.GetCurSel() + 1) + L' ' + TextsOfPicker().of + L' ' +
         std::to_wstring(found_.GetCount());
}

bool EntryFinder::MarkAt(CPoint place) {
  if (!Holds(shown_, place)) return false;
  found_.SetCurSel(first_shown_ + place.y - shown_.top);
  return true;
}

void EntryFinder::Draw(ScreenSize screen, const CRect& cell, ScreenPicture& picture) {
  constexpr int borders = 2;
  const auto whole = static_cast<int>(entries_.size()) + borders;
  const int above = std::min(cell.top, screen.height);
  const int below = screen.height - cell.bottom;
  const bool upwards = whole > below && above > below;
  const int room = std::max(upwards ? above : below, borders + 1);
  const int width = std::min(width_, screen.width);
  const int height = std::min(found_.GetCount() + borders, room);
  const int x = std::clamp(cell.left - 1, 0, screen.width - width);
  const int y =
      std::clamp(upwards ? cell.top - height : cell.bottom, 0, std::max(screen.height - height, 0));
  page_ = std::max(height - borders, 1);
  const int marked = std::max(found_.GetCurSel(), 0);
  first_shown_ = ScrollTo(first_shown_, marked, page_, found_.GetCount());
  picture.layers.push_back({x, y, TextView::DrawEntries(found_, {width, height, first_shown_})});
  shown_ = {x + 1, y + 1, x + width - 1, y + height - 1};

  // What was typed stands in the upper border; of a long text the end.
  std::wstring_view end = typed_;
  while (!end.empty() && TextColumns(end) > width - 2 * borders) end.remove_prefix(1);
  if (!end.empty()) picture.layers.push_back({x + 1, y, {L' ' + CString(end) + L' '}});
  if (found_.GetCount() == 0) {
    picture.layers.push_back({x + 1, y + 1, {L' ' + CString(TextsOfPicker().none) + L' '}});
  }

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
    if (key == KeyPress::escape && !open_->HasText()) return open_.reset();
    return open_->Press(key == KeyPress::escape ? KeyPress::del : key);
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
    case KeyPress::del:
      return Clear();
    case KeyPress::enter:
      if (Marked().row != -1) return Open();
      dialog_.PressButton(Marked().button);
  }
}

void KeyPicker::Clear() {
  const int row = Marked().row;
  if (row == -1) return;
  list_->ChooseEntry(row, DropDownColumn(row), -1);
  list_->AutosizeColumnWidth(-1);
}

void KeyPicker::Click(CPoint place) {
  if (!IsOpen()) return;
  if (open_) return open_->MarkAt(place) ? Choose() : open_.reset();
  for (const auto& [area, stop] : places_) {
    if (!Holds(area, place)) continue;
    MoveTo(stop);
    return Press(KeyPress::enter);
  }
}

void KeyPicker::Type(std::wstring_view text) {
  if (!IsOpen() || text.empty()) return;
  if (!open_ && text == L" ") return Press(KeyPress::enter);
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

// Whether the list shows it as "(sensor 12)".
bool KeyPicker::IsUnknown(int row) const {
  const auto element = static_cast<Clavis::qOrder>(list_->GetItemKey(row));
  return list_->GetCell(row, DropDownColumn(row))->text ==
         CString(L"(") + Clavis::ElementName(element, 1) + L' ' +
             std::to_wstring(list_->GetItemData(row)) + L')';
}

ScreenPicture KeyPicker::Draw(ScreenSize screen) {
  ScreenPicture picture;
  places_.clear();
  if (!IsOpen()) return picture;
  const ScreenSize size = DialogSize(screen);
  TextView::Frame frame{size.width, size.height, first_row_};
  const CRect list = TextView::ItemPlace(dialog_, list_item_, frame);
  const std::vector<Stop> stops = Stops();
  const Stop marked = Marked();
  if (marked.row != -1) {
    const int around = static_cast<int>(TextView::Draw(*list_).size()) - list_->GetItemCount();
    first_row_ = ScrollTo(first_row_, marked.row, list.Height() - around, list_->GetItemCount());
    frame.first_row = first_row_;
  }
  const auto cell_of = [&](int row, int column) {
    const CRect cell =
        TextView::CellPlace(*list_, row, column, {list.Width(), list.Height(), first_row_});
    return CRect{list.left + cell.left, list.top + cell.top, list.left + cell.right,
                 list.top + cell.bottom};
  };
  for (std::size_t i = 0; i < stops.size(); ++i) {
    const auto& [row, button] = stops[i];
    CRect area;
    if (row == -1) {
      area = TextView::ItemPlace(dialog_, button, frame);
    } else {
      const CRect cell = cell_of(row, 0);
      area = {list.left + 1, cell.top, list.right - 1, cell.bottom};
      if (!open_ && IsUnknown(row)) picture.unknown.push_back(cell_of(row, DropDownColumn(row)));
    }
    places_.emplace_back(area, static_cast<int>(i));
    if (static_cast<int>(i) == marked_) picture.mark = area;
  }
  picture.layers.push_back({0, 0, TextView::Draw(dialog_, frame)});
  if (screen.height > size.height) {
    const PickTexts& texts = TextsOfPicker();
    --screen.height;
    picture.layers.push_back(
        {0, screen.height, {open_ ? open_->PlaceText() + L"  " + texts.list : texts.dialog}});
  }
  if (open_) open_->Draw(screen, cell_of(marked.row, DropDownColumn(marked.row)), picture);
  return picture;
}

}  // namespace kestrindb
