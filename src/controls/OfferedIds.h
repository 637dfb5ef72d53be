// Which ids of a key element are offered to a user, and how an entry reads: the one place that the
// combo, the check list and the key editor ask.
//
// All questions go to the data base of the process as it is at the call. Texts are copies, so that
// a control outlives a new load; then it shows what it was filled with.
//
// Use it on the window's thread only, as the controls.
#pragma once

#include <vector>

#include "interfaces/signal/Clavis.h"
#include "interfaces/text/Text.h"

namespace kestrin::OfferedIds {

struct Entry {
  int id;
  CString text;
};

struct Choice {
  // See CClavisComboBox::Fill.
  unsigned int filter = 0;
  // Hidden test steps are never offered.
  bool hide_virtual_modes = true;
};

enum class Reading {
  name,
  name_and_id,  // "name  [id]" if ShowIdsInDialogs, else the name
};

// The ids of an element, in ascending order. Nothing for Parameter, whose names are unique only
// within an instrument, and for an element that doesn't exist.
std::vector<Entry> OfElement(Clavis::qOrder element, Choice choice, Reading reading);

// The parameters of one instrument.
std::vector<Entry> OfInstrument(int instrument, Reading reading);

// All parameters, told with their instruments; with ids if ShowIdsInDialogs.
std::vector<Entry> AllParameters();

// An id that isn't offered, but in use: "(sensor 12)".
CString UnknownText(Clavis::qOrder element, int id);

}  // namespace kestrin::OfferedIds
