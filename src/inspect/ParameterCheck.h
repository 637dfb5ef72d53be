// What is wrong in a parameter file, and where: everything that a load logs, and everything that it
// passes over in silence. A check reads a lake and changes nothing; the load behaves the same with
// and without it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "interfaces/Export.h"

class CLake;

namespace kestrin::ParameterCheck {

enum class Kind {
  refused_version,    // the load refuses the data base, for its version or because it is empty
  bad_line,           // a field can't be converted: the row is stored as far as it was read
  duplicate_key,      // the row is dropped, that of the other line stays
  blank_line,         // a blank or comment line inside a table makes a row
  short_line,         // behind its end numbers keep the values of the line before, texts are empty
  extra_fields,       // what stands behind the last field is ignored
  text_near_limit,    // little room is left in the line from a text on
  keyed_line,         // a line with a colon inside a table is no row
  no_section,         // the name of a table stands at a line that opens no section
  unknown_section,    // a section that no table reads
  duplicate_section,  // a section's rows are replaced by those of a later one
  duplicate_line,     // a named line at the top that is ignored, an earlier one has its key
  outside_section,    // a row, or a section without a name, that nothing reads
  unclosed_section,   // the section ends with the file
  unreachable_lines,  // lines behind a closing bracket too many
  unknown_parameter,  // a relative limit's parameter is in no table: the load fails
};

struct Finding {
  Kind kind;
  std::size_t line;        // from 1; 0 if none stands for it
  std::size_t other_line;  // the line that the message speaks of besides, or 0
  std::wstring section;    // with its angle brackets; empty outside of sections
  std::string field;       // name of the field, empty if the finding is not about one
  std::size_t position;    // of the field in its line, from 1; 0 with no field
  std::string message;     // one sentence, UTF-8
};

// "bad_line" and so on.
KESTRIN_API const char* Name(Kind kind);

// All findings in the order of their lines. Any thread, as long as the lake isn't changed.
KESTRIN_API std::vector<Finding> Check(const CLake& lake);

}  // namespace kestrin::ParameterCheck
