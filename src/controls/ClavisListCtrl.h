// A list in which a user checks any ids of a key element.
//
// A selection is a set of ids; {-1} stands for all, whatever they are. Order of calls: Init, then
// Fill and Retrieve as often as wanted.
//
// Use it on the window's thread only.
#pragma once

#include <set>

#include "interfaces/signal/Clavis.h"
#include "interfaces/windows/XListCtrl.h"

class KESTRIN_API CClavisListCtrl : public CXListCtrl {
 public:
  // Makes the column for an element. The rows go.
  void Init(Clavis::qOrder element);

  // Offers the ids of the element and checks those of the selection. Others that it holds are
  // forgotten. See CClavisComboBox for `filter`.
  void Fill(const std::set<int>& selection, unsigned int filter = 0);

  // The ids that are checked, {-1} if all rows are, also all of none. Returns the number of checked
  // rows.
  unsigned int Retrieve(std::set<int>& selection);

  // Whether the user has changed a check box since the last Fill or Retrieve.
  bool Changes() const { return changes_; }

  // True at first; for the next Fill.
  void HideVirtualModes(bool hide) { hide_virtual_modes_ = hide; }

  void OnItemStateChange(int row, int sub_item, int state) override;

 private:
  Clavis::qOrder element_ = Clavis::Sensor;
  bool changes_ = false;
  bool hide_virtual_modes_ = true;
};
