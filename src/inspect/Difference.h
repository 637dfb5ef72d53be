// What differs between two data bases, by table, key and field.
#pragma once

#include <functional>
#include <limits>
#include <span>

#include "inspect/TableCatalogue.h"
#include "interfaces/Export.h"

namespace kestrin::Difference {

using Columns = std::span<const TableType::FieldView>;

// Takes a row that stands in one data base alone, the other one being empty then, or in both with
// different values.
using Visitor =
    std::function<void(const TableCatalogue::RowsInfo& table, Columns before, Columns after)>;

// Whether two values of a column, which is never a key, are the same: floats bit by bit, but for
// NaN. Any thread.
KESTRIN_API bool IsSame(const TableType::FieldView& a, const TableType::FieldView& b);

// Visits what differs in the 56 tables, in the order of the tables and of their keys. Where a key
// repeats, rows that stand in both go together and the rest is compared in the order of the values.
// Points in time at and behind `loads_began` are the same: a load puts its own time where a line of
// <TIpLearnParams> tells none. Neither data base may be changed meanwhile.
KESTRIN_API void Compare(const CQtParamDistillery& before, const CQtParamDistillery& after,
                         const Visitor& visit,
                         long long loads_began = std::numeric_limits<long long>::max());

}  // namespace kestrin::Difference
