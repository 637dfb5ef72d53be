// The lines that a table is read from, one by one.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "interfaces/sea/ResourceSea.h"
#include "lake/Lake.h"
#include "tables/RowRecords.h"

namespace kestrin::tables {

class LineSource {
 public:
  virtual ~LineSource() = default;

  // False behind the last line. The line is good until the next call.
  virtual bool Next(std::wstring_view& line) = 0;

  // Reads the fields of the key and then those of the row, until one fails: a bad line is logged,
  // and false comes back.
  bool ReadRow(std::wstring_view line, std::span<const TableType::FieldRef> key,
               std::span<const TableType::FieldRef> row, const wchar_t* table) const;

 protected:
  // How much of a bad line the log shows.
  enum class Shown { whole_line, what_is_left };
  explicit LineSource(Shown shown) : shown_(shown) {}
  LineSource(const LineSource&) = default;
  LineSource& operator=(const LineSource&) = default;

 private:
  Shown shown_;
};

// The unnamed lines of a section of a lake.
class SectionLines : public LineSource {
 public:
  explicit SectionLines(const CLake::CNode& section);
  bool Next(std::wstring_view& line) override;

 private:
  CLake::CNode::UnnamedChildren::const_iterator next_;
  CLake::CNode::UnnamedChildren::const_iterator end_;
};

// The lines of a list of a sea, which the sea has.
class SeaLines : public LineSource {
 public:
  SeaLines(const CResourceSea& sea, const wchar_t* name);
  bool Next(std::wstring_view& line) override;

 private:
  CResourceList list_;
  CString line_;
};

}  // namespace kestrin::tables
