// A drop-down box: texts, each with an integer, of which one can be chosen.
//
// Entries stand in the order in which they came, or sorted by their text. Filling is cheap in both:
// ten thousand entries are nothing special.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "interfaces/windows/Wnd.h"

class KESTRIN_API CComboBox : public kestrin::CWnd {
 public:
  enum class Order {
    insertion,
    sorted,  // by text: A and a count the same there, and only there
  };

  explicit CComboBox(Order order = Order::insertion) : order_(order) {}

  void ResetContent();

  // The index of the new entry. In a sorted box the entries from there on move up by one; a
  // selected entry stays selected.
  int AddString(std::wstring_view text);

  // False, -1 or an empty text for an index that doesn't exist. A new entry holds 0.
  bool SetItemData(int index, int data);
  int GetItemData(int index) const;
  CString GetLBText(int index) const;
  int GetCount() const { return static_cast<int>(positions_.size()); }

  // The selected entry, -1 for none. An index that doesn't exist clears the selection.
  int GetCurSel() const { return selected_; }
  void SetCurSel(int index);

  // The first entry behind `start` with exactly this text, going round once; -1 if there is none.
  // Start -1 looks at the whole list from its beginning.
  int FindStringExact(int start, std::wstring_view text) const;

  // Gesture: the user picks an entry. The parent hears of it with WM_COMMAND and
  // command_selection_changed. False, and nothing done, if there is no such entry or no window.
  bool ChooseEntry(int index);

 protected:
  void OnDestroy() override { ResetContent(); }

 private:
  struct Entry {
    CString text;
    int data = 0;
  };

  const Entry* Find(int index) const;

  Order order_;
  // A sorted insertion moves only the small numbers of `positions`, never the entries.
  std::vector<Entry> entries_;
  std::vector<std::uint32_t> positions_;
  int selected_ = -1;
};

// The box that the suite's dialogs use, and from which its controls derive.
class KESTRIN_API CComboBoxX : public CComboBox {
 public:
  using CComboBox::CComboBox;
};
