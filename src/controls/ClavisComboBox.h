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
  // at all. Parameter has FillIp; here it offers no ids.
  //
  // With a filter that isn't 0 an instrument, an object or a sensor is offered if the filter has a
  // bit in common with its ResultType, its LocationPropertyFlag or its signal_type in
  // <TAppSignalProperty>. Result types are numbers and not bits, so no filter names one alone: 1
  // offers single values, and with them spectra (3), tracks of type 5 and what has no result (-1).
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
