// The range select grid over keys: one column per element of a key, in which the user marks the ids
// that belong to a range of keys.
//
// The owner's order of calls is send_kestrin_list, fill, send_active_list, and later retrieve,
// which gives the ids with their flags in the form that send_active_list takes. Use it on the
// window's thread only.
#pragma once

#include <algorithm>

#include "controls/RangeSelectCtrl.h"

class KESTRIN_API CKestrinRangeSelectCtrl : public CRangeSelectCtrl<6> {
 public:
  // What can be selected, by Clavis::qOrder. Shows with the next fill.
  void send_kestrin_list(std::span<const EntryList, 6> lists) {
    std::copy(lists.begin(), lists.end(), lists_.begin());
  }

  void fill() override;

  // What is selected, by column. Ids that a map lacks are not; the selection before and the anchors
  // are forgotten.
  void send_active_list(std::span<const ActiveIds, 6> active);

  CString col_head_names(int entry) override;

 private:
  EntryLists lists_;
};
