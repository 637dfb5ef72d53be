// Look-ups in a table that answer a miss by themselves.
#pragma once

namespace kestrin {

// The row of a key, null if there is none.
template <class Table>
const typename Table::mapped_type* RowOf(const Table& table, const typename Table::key_type& key) {
  const auto found = table.find(key);
  return found == table.end() ? nullptr : &found->second;
}

// A field of that row, a text as its characters, or else `miss`.
template <class Table, class T, class Miss>
auto FieldOr(const Table& table, const typename Table::key_type& key, T Table::mapped_type::*field,
             Miss miss) {
  const auto* const row = RowOf(table, key);
  return row != nullptr ? row->*field : miss;
}

}  // namespace kestrin
