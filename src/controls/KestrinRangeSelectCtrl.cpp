// From key lists to the grid, and from flags to its selection.
#include "controls/KestrinRangeSelectCtrl.h"

#include "interfaces/signal/Clavis.h"

void CKestrinRangeSelectCtrl::fill() { CRangeSelectCtrl<6>::fill(lists_); }

CString CKestrinRangeSelectCtrl::col_head_names(int entry) {
  return Clavis::ElementName(static_cast<Clavis::qOrder>(entry), 2);
}

void CKestrinRangeSelectCtrl::send_active_list(std::span<const ActiveIds, 6> active) {
  for (int column = 0; column < static_cast<int>(m_size); ++column) {
    deselect_all(column);
    clear_anchor(column);
    const ActiveIds& flags = active[static_cast<std::size_t>(column)];
    for (int row = 0; row < GetItemCount(); ++row) {
      const int id = cell_id({row, column});
      if (id < 0) continue;
      const auto flag = flags.find(id);
      if (flag != flags.end() && flag->second) select_cell({row, column});
    }
  }
}
