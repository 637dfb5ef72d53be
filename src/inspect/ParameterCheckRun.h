// What the parts of a check share: the findings so far, the lines of a lake, the data base that was
// loaded from it. Inside the library only.
#pragma once

#include <algorithm>
#include <cstddef>
#include <deque>
#include <map>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "frame/QtParamDistillery.h"
#include "inspect/ParameterCheck.h"
#include "inspect/TableCatalogue.h"
#include "lake/Lake.h"

namespace kestrin::ParameterCheck {

// Findings as they come. Of a kind in a section the first ones are kept, the others counted, so
// that a file which is all wrong costs no more than one that is all right.
class Findings {
 public:
  explicit Findings(std::size_t most_of_a_kind) : most_(std::max<std::size_t>(most_of_a_kind, 1)) {}

  // A finding to be completed, or null if it is only counted. Good until the findings are taken.
  Finding* Add(Kind kind, std::size_t line, std::string_view section = {});

  // True if a finding more would only be counted.
  bool IsFull(Kind kind, std::string_view section) const;

  // Ordered by lines.
  std::vector<Finding> Take();

 private:
  struct Count {
    std::size_t all = 0;
    Finding* last = nullptr;
  };

  std::size_t most_;
  std::deque<Finding> findings_;
  // By section and kind.
  std::map<std::string, std::map<Kind, Count>, std::less<>> counts_;
};

// The lines of a lake by their nodes. It counts on from the last line that was asked for, so that
// asking costs little in the order of the file.
class Lines {
 public:
  explicit Lines(const CLake& lake) : lake_(lake), at_(lake.begin()) {}
  // Of a node of the lake.
  std::size_t Of(const CLake::CNode& node);
  // 0 if there is none.
  std::size_t OfKey(const wchar_t* key);

 private:
  const CLake& lake_;
  CLake::const_iterator at_;
  std::size_t number_ = 1;
};

// Which line each row came from, for tables with unique keys. A key is a text of its ids, one
// element each, so that a key of any record is found by its ids.
using KeyLines = std::map<std::wstring, std::size_t>;

template <class Ids>
std::wstring KeyOf(const Ids& ids) {
  std::wstring key;
  for (const int id : ids) key += static_cast<wchar_t>(id);
  return key;
}

struct Run {
  const CLake& lake;
  const Options& options;
  Findings findings;
  Lines lines;
  CQtParamDistillery data;
  std::map<std::string, KeyLines, std::less<>> rows = {};  // of the sections that were asked for
  std::set<std::size_t> bad_lines = {};
  bool is_bytewise = false;   // UTF-8 of which each byte was read as a character; it is told once
  std::size_t cut_line = 0;   // in which the file broke off; it is told once
  std::size_t swallowed = 0;  // the first line that an unclosed section takes in by mistake

  // 0 if no line of a table with unique keys has that key.
  std::size_t LineOf(std::string_view section, std::span<const int> key);
};

// At most so much of a text, in quotes.
std::string Quoted(std::wstring_view text);

bool IsBlankOrComment(const CLake::CNode& node);

// Quotes that look like those of a text and are none: typographic, Chinese, full-width ones.
bool IsOddQuote(wchar_t c);

// False if nothing in the lake is known.
bool CheckNesting(Run& run);

// The data must have been loaded.
void CheckRows(Run& run);

// The lines of a table by the keys that a load reads from them.
KeyLines ReadKeys(Run& run, const TableCatalogue::TableInfo& table);

// A row that the log of the load spoke of.
struct LoggedRow {
  std::string section;
  std::vector<int> key;

  friend auto operator<=>(const LoggedRow&, const LoggedRow&) = default;
};

void CheckMeaning(Run& run, const std::vector<LoggedRow>& logged);

// What the bytes of a file show by themselves. True if the lake that was read from them means
// nothing.
bool CheckBytes(Run& run, std::string_view bytes);

}  // namespace kestrin::ParameterCheck
