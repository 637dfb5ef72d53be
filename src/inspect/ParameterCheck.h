// What is wrong in a parameter file, and where: everything that a load logs, everything that it
// passes over in silence, and what can't mean what it says. A check loads the lake into a data base
// of its own and changes nothing: neither the lake nor what the process has loaded.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "interfaces/Export.h"

class CLake;

namespace kestrin::ParameterCheck {

enum class Kind {
  // of the file as a whole
  unreadable_file,    // it couldn't be read, or not to its end
  utf16,              // its text is UTF-16
  binary,             // it is no text
  not_utf8,           // behind the mark: bytes that end the text, or a form that UTF-8 forbids
  no_utf8_mark,       // characters beyond ASCII, and no mark: each byte is read as a character
  no_parameter_file,  // nothing in it is known
  refused_version,    // the load refuses the data base, for its version or because it is empty

  // of how its lines nest
  keyed_line,         // a line with a colon inside a table is no row
  no_section,         // the name of a table stands at a line that opens no section
  nested_section,     // a table inside of another section, which no table reads
  unknown_section,    // a section that no table reads
  unknown_line,       // a named line that nothing reads
  cut_name,           // a document's name without quotes ends at its first blank
  duplicate_section,  // a section's rows are replaced by those of a later one
  duplicate_line,     // a named line at the top that is ignored, an earlier one has its key
  outside_section,    // a row, or a section without a name, that nothing reads
  unclosed_section,   // the section ends with the file
  unreachable_lines,  // lines behind a closing bracket too many

  // of a row
  bad_line,           // a field can't be converted: the row is stored as far as it was read
  duplicate_key,      // the row is dropped, that of the other line stays
  blank_line,         // a blank or comment line inside a table makes a row
  short_line,         // behind its end numbers keep the values of the line before, texts are empty
  extra_fields,       // what stands behind the last field is ignored
  number_runs_on,     // a number ends in the middle of a word
  infinite_number,    // a number beyond the largest float, or none
  negative_number,    // in a field that holds none
  id_out_of_range,    // an id that its element can't have
  wrong_quotes,       // a text in quotes that are none
  quote_not_closed,   // a text that ends with the line
  nul_in_text,        // a text that ends at a zero
  control_character,  // a character that can't be seen in a text
  text_near_limit,    // little room is left in the line from a text on
  unknown_parameter,  // a relative limit's parameter is in no table: the load fails

  // of what rows mean together
  bad_definition,          // an order definition with an error of syntax: it has no intervals
  odd_definition,          // one with an odd number of positions: it has no intervals
  cut_definition,          // one with more positions than are kept
  unread_in_definition,    // characters of one that nothing reads
  reversed_definition,     // an interval that ends below its start at any speed
  no_base_order,           // an order source that no channel sees
  closed_channels,         // channels that inherit from each other in a circle
  ambiguous_polygon,       // several rows of track polygons match a key: the first counts
  duplicate_name,          // a name that leads to another id
  no_number,               // a calculation parameter that is an id has another text
  unknown_calc_parameter,  // a number that the system has no use for
  no_step,                 // an axis of a trigger without cells
  other_instrument,        // a key with a parameter of another instrument
  unknown_id,              // an id that no table knows, or all those of a table without rows
};

enum class Severity {
  error,  // a load logs it, or loses a row
  loss,   // a load passes it over in silence, and something isn't as it was written
  note,   // it can't mean what it says, or is worth a look
};

struct Finding {
  Kind kind;
  Severity severity;
  std::size_t line;         // from 1; 0 if none stands for it
  std::size_t column;       // in UTF-16 code units from 1; 0 if the finding is about the line
  std::size_t other_line;   // the line that the message speaks of besides, or 0
  std::string section;      // with its angle brackets; empty outside of sections
  std::string field;        // name of the field, empty if the finding is not about one
  std::size_t position;     // of the field in its line, from 1; 0 with no field
  std::string message;      // what is so, what becomes of it, and what to do; no full stop
  std::size_t further = 0;  // findings of this kind in this section that are not listed
};

struct Options {
  bool references = true;           // whether ids are looked up in the tables that name them
  std::size_t most_of_a_kind = 20;  // listed in a section, 1 at least; the last tells of the others
};

// "bad_line" and so on; "error", "loss", "note".
KESTRIN_API const char* Name(Kind kind);
KESTRIN_API const char* Name(Severity severity);

// All findings in the order of their lines. Any thread, as long as the lake isn't changed. Costs
// about as much as a load, also in memory. Columns count from where the white space in front of a
// line ends, which a lake doesn't hold.
KESTRIN_API std::vector<Finding> Check(const CLake& lake, const Options& options = {});

// The same with what only the bytes show from which the lake was read, and true columns. A file in
// UTF-16 or without text has one finding.
KESTRIN_API std::vector<Finding> Check(const CLake& lake, std::string_view bytes,
                                       const Options& options = {});

}  // namespace kestrin::ParameterCheck
