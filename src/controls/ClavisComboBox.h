// A combo box in which a user picks one id of a key element, or none.
//
// The first entry is none, with the id -1. An id that is in use but not offered, since a filter
// refuses it or the tables don't know it, has an entry of its own and so isn't lost.
//
// Use it on the window's thread only.
#pragma once

#include <string_view>
#include <vector>

#include "interfaces/signal/Clavis.h"
#include "interfaces/windows/ComboBoxX.h"

namespace kestrin::OfferedIds {
struct Entry;
}

class KESTRIN_API CClavisComboBox : public CComboBoxX {
 public:
  // Offers the ids of an element and selects one; -1 selects none of them, a lower number nothing
  // at all. See OfferedIds::Choice for `filter`. Parameter has FillIp; here it offers no ids.
  void Fill(Clavis::qOrder element, int selected, unsigned int filter = 0);

  // Offers the parameters of an instrument; with instrument -1 none, and `selected` is forgotten.
  void FillIp(int instrument, int selected);

  // The id of the selected entry; -1 also if nothing is selected.
  int Retrieve() const;

  // True at first; for the next Fill.
  void HideVirtualModes(bool hide) { hide_virtual_modes_ = hide; }

 private:
  void FillWith(const std::vector<kestrin::OfferedIds::Entry>& entries, int selected);
  int Add(std::wstring_view text, int id);

  Clavis::qOrder element_ = Clavis::Sensor;
  bool hide_virtual_modes_ = true;
};
