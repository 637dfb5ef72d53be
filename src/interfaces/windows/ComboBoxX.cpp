// Entries, their order and the selection of a drop-down box.
#include "interfaces/windows/ComboBoxX.h"

#include <algorithm>

#include "interfaces/text/Text.h"

using namespace kestrin;

namespace {

// The same on every machine: the order of the code units, with the capital letters of ASCII folded.
bool Before(std::wstring_view a, std::wstring_view b) {
  return std::lexicographical_compare(
      a.begin(), a.end(), b.begin(), b.end(),
      [](wchar_t x, wchar_t y) { return Text::Lower(x) < Text::Lower(y); });
}

}  // namespace

void CComboBox::ResetContent() {
  entries_.clear();
  positions_.clear();
  selected_ = -1;
  NotifyChanged();
}

int CComboBox::AddString(std::wstring_view text) {
  auto place = positions_.end();
  if (order_ == Order::sorted) {
    place = std::upper_bound(positions_.begin(), positions_.end(), text,
                             [this](std::wstring_view value, std::uint32_t position) {
                               return Before(value, entries_[position].text);
                             });
  }
  const auto index = static_cast<int>(place - positions_.begin());
  positions_.insert(place, static_cast<std::uint32_t>(entries_.size()));
  entries_.push_back({CString(text)});
  if (index <= selected_) ++selected_;
  NotifyChanged();
  return index;
}

const CComboBox::Entry* CComboBox::Find(int index) const {
  if (index < 0 || index >= GetCount()) return nullptr;
  return &entries_[positions_[static_cast<std::size_t>(index)]];
}

bool CComboBox::SetItemData(int index, int data) {
  if (!Find(index)) return false;
  entries_[positions_[static_cast<std::size_t>(index)]].data = data;
  return true;
}

int CComboBox::GetItemData(int index) const {
  const Entry* const entry = Find(index);
  return entry ? entry->data : -1;
}

CString CComboBox::GetLBText(int index) const {
  const Entry* const entry = Find(index);
  return entry ? entry->text : CString();
}

void CComboBox::SetCurSel(int index) {
  selected_ = Find(index) ? index : -1;
  NotifyChanged();
}

int CComboBox::FindStringExact(int start, std::wstring_view text) const {
  const int count = GetCount();
  const int first = start < 0 || start >= count ? 0 : start + 1;
  for (int step = 0; step < count; ++step) {
    const int index = (first + step) % count;
    if (Find(index)->text == text) return index;
  }
  return -1;
}

bool CComboBox::ChooseEntry(int index) {
  if (!IsWindow() || !Find(index)) return false;
  SetCurSel(index);
  NotifyParent(command_selection_changed);
  return true;
}
