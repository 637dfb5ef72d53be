// Answers as JSON, and printed for people out of it.
//
// An id whose name is known stands in a record as "mode" beside "mode_name".
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lKestrinDb.h"

namespace kestrindb {

using Json = nlohmann::ordered_json;

inline std::string Utf8(std::wstring_view text) { return kestrin::Text::ToUtf8(text); }
inline std::wstring Wide(std::string_view text) { return kestrin::Text::FromUtf8(text); }

// A text that holds what somebody wrote into a file, safe for a terminal: control characters but
// line feeds and tabs as \x1b. In JSON they stand as JSON has them.
std::string Printable(std::string_view text);
std::string PrintableJson(const Json& json);

// A float in the fewest digits that read back as the same float. Infinite and NaN are null.
Json ShortNumber(float number);

// The kinds of values in place of the values, and of each list one element with what all of its
// elements have.
Json Layout(const Json& value);

// An id and its name as people read them: "130  Spur 30 Hz low load", or "130" where it has none.
std::string WithName(const std::string& id, const std::string& name);

// "1 finding", "2 findings", "1,280 findings".
std::string PluralOf(std::size_t count, const std::string& what);

// A value as people read it: a text without quotes, a list with blanks between, nothing for null.
std::string CellText(const Json& value);

// A field of a record as people read it, an id with its name. Empty if the record doesn't have it;
// `none` stands for null and for the id -1.
std::string Cell(const Json& record, const char* field, const char* none = nullptr);

// A line for each heading, the texts from column `width` on.
void PrintFacts(int width, const std::vector<std::pair<const char*, std::string>>& facts);

// What a column of a table shows of each record, as Cell() has it.
struct Column {
  const char* heading;
  const char* field;
  const char* none = nullptr;
};

// A table for a terminal: columns aligned, those with nothing but numbers to the right.
void PrintTable(const Json& records, const std::vector<Column>& columns);

}  // namespace kestrindb
