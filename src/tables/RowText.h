// The text of a row, and back.
//
//   line   :=  key field ... key field  row field ... row field  anything
//   field  :=  number  |  word  |  " any characters but quotes "
//
// Fields are separated by white space. There are no comments, no field names and no escapes in a
// line; what stands behind the last field is ignored. A number field takes what the number takes
// and leaves the rest to the next field. Where a line has ended, number fields keep the value that
// they had and text fields become empty: a table reads all its lines into one record, so a short
// line takes over the numbers of the line before.
//
// Lines are read as bytes, in the form of Text::ToBytes; limits count the elements of wide text,
// and other bytes in a text become U+FFFD. Reading and writing don't depend on the host's locale.
// Everything here may run on any thread.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "interfaces/Export.h"
#include "tables/RowRecords.h"

namespace TableType {

// Copies src into the buffer dst of dst_size wide characters. True if all of it fitted; else dst
// holds the beginning, ended by a zero, and the cut is logged. A null src is an empty text; a
// dst_size of 0 leaves dst alone. The two may overlap.
KESTRIN_API bool strcopy(wchar_t* dst, const wchar_t* src, unsigned int dst_size);
KESTRIN_API bool strcopy(wchar_t* dst, std::wstring_view src, unsigned int dst_size);

}  // namespace TableType

namespace DynTables {

// Logs a bad line of a table as one text.
KESTRIN_API void log_error(const wchar_t* where, const wchar_t* table, const std::wstring& line);

}  // namespace DynTables

namespace kestrin::RowText {

// What became of reading a list of fields. A text field fails without a reason of its own, when the
// rest of the line is too long.
struct Result {
  bool ok = true;
  std::size_t field = 0;         // fields read well, so the index of the one that failed
  const char* reason = nullptr;  // failure text of a number field
};

// Characters that the rest of a line may hold where a text field begins.
inline constexpr std::size_t max_text_rest = TableType::text_width - 2;

// Reads the fields from left to right and takes what they used off the front of line. Stops at the
// first that fails: it and those behind it keep their values, and line still begins with it. Of a
// key inside a row the ids in front of the one that fails are read.
KESTRIN_API Result ReadFields(std::span<const TableType::FieldRef> fields, std::string_view& line);

// The same with a log line for a number that failed.
KESTRIN_API bool Read(std::span<const TableType::FieldRef> fields, std::string_view& line);

// DynTables::log_error with a line in the form of Text::ToBytes.
KESTRIN_API void LogBadLine(std::wstring_view where, std::wstring_view table,
                            std::string_view line);

// Appends the fields with one blank between each two. Texts go out without quotes.
KESTRIN_API void Append(std::wstring& text, std::span<const TableType::FieldView> fields);

template <class Record>
void AppendRecord(std::wstring& text, const Record& record) {
  Append(text, TableType::Refs(record));
}

}  // namespace kestrin::RowText
