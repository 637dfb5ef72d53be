#include "tables/LineSource.h"

#include "tables/RowText.h"

namespace kestrin::tables {

bool LineSource::ReadRow(std::wstring_view line, std::span<const TableType::FieldRef> key,
                         std::span<const TableType::FieldRef> row, const wchar_t* table) const {
  std::wstring_view rest = line;
  if (RowText::Read(key, rest) && RowText::Read(row, rest)) return true;
  DynTables::log_error(L"CQParamSeaTypedTable< T >::ReadTable()", table,
                       std::wstring(shown_ == Shown::whole_line ? line : rest));
  return false;
}

SectionLines::SectionLines(const CLake::CNode& section)
    : LineSource(Shown::whole_line), next_(section.begin_unnamed()), end_(section.end_unnamed()) {}

bool SectionLines::Next(std::wstring_view& line) {
  if (next_ == end_) return false;
  line = (*next_++)->value();
  return true;
}

SeaLines::SeaLines(const CResourceSea& sea, const wchar_t* name)
    : LineSource(Shown::what_is_left), list_(&sea, name) {
  list_.GotoHead();
}

bool SeaLines::Next(std::wstring_view& line) {
  if (!list_.IsValid()) return false;
  list_.GetCurrentLine()->GetLine(line_);
  list_.GotoNext();
  line = line_;
  return true;
}

}  // namespace kestrin::tables
