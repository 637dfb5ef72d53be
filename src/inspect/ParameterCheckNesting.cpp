// How the lines of a lake nest, and what stands at its top.

#include <algorithm>
#include <array>
#include <iterator>

#include "inspect/ParameterCheckRun.h"
#include "interfaces/text/Text.h"
#include "tables/QTableManager.h"

namespace kestrin::ParameterCheck {
namespace {

constexpr std::array named_lines = {
    CQTableManager::major_key,     CQTableManager::minor_key,     CQtParamStore::base_type_key,
    CQtParamStore::alias_type_key, CQtParamStore::calib_file_key, CQtParamStore::learn_file_key,
};

bool IsClosing(const CLake::CNode& node) {
  std::string room;
  return !node.is_named() && node.bytes(room).starts_with('}');
}

// As Chinese keyboards type them.
constexpr wchar_t wide_colon_sign = 0xFF1A;
constexpr wchar_t wide_bracket_sign = 0xFF5B;

// Whether a value was meant to open a section.
bool IsBracket(std::wstring_view value) {
  return value.starts_with(L'{') || value.starts_with(wide_bracket_sign) || value == L"(" ||
         value == L"[";
}

bool IsTable(const std::wstring& key) {
  return key.starts_with(L'<') && TableCatalogue::Find(Text::ToUtf8(key)) != nullptr;
}

bool IsNamedLine(const std::wstring& key) {
  return std::find(named_lines.begin(), named_lines.end(), key) != named_lines.end();
}

bool IsIds(std::wstring_view key) { return key.find_first_not_of(L"-0123456789 \t\"") == key.npos; }

// "; did you mean <TMode>?", or nothing.
std::string Suggestion(const std::wstring& key) {
  static const std::vector<std::wstring> known = [] {
    std::vector<std::wstring> names(named_lines.begin(), named_lines.end());
    for (const auto& table : TableCatalogue::Tables())
      names.push_back(Text::FromUtf8(table.section));
    return names;
  }();
  const auto nearest = Text::Nearest(key, known);
  return nearest ? "; did you mean " + Text::ToUtf8(known[*nearest]) + "?" : "";
}

std::string LineRange(std::size_t first, std::size_t last) {
  return first == last ? "line " + std::to_string(first)
                       : "lines " + std::to_string(first) + " to " + std::to_string(last);
}

class NestingCheck {
 public:
  explicit NestingCheck(Run& run) : run_(run) {}

  bool Check() {
    for (const CLake::CNode& node : run_.lake) {
      ++number_;
      if (!CheckLine(node)) break;
    }
    if (run_.cut_line == 0) TellUnclosed();
    for (const auto& [key, top] : tops_) {
      if (!top.opened && IsTable(key)) TellNoSection(key, top);
    }
    CheckNames();
    return knows_something_;
  }

 private:
  struct Open {
    std::size_t line;
    std::wstring key;
    std::size_t first_table = 0;  // the line of a table that stands inside
    std::size_t tables = 0;
  };
  // The first line of a key, and whether it or a later one opens a section.
  struct Top {
    std::size_t line;
    bool opened;
    std::wstring value;
  };

  void Tell(Kind kind, std::string_view section, std::string message, std::size_t other = 0) {
    TellAt(number_, kind, section, std::move(message), other);
  }
  void TellAt(std::size_t line, Kind kind, std::string_view section, std::string message,
              std::size_t other = 0) {
    Finding* const finding = run_.findings.Add(kind, line, section);
    if (finding == nullptr) return;
    finding->message = std::move(message);
    finding->other_line = other;
  }

  // False if nothing behind the line is read.
  bool CheckLine(const CLake::CNode& node) {
    if (IsClosing(node)) {
      if (open_.empty()) {
        TellUnreachable();
        return false;
      }
      if (open_.size() == 1) TellNested(open_.front());
      open_.pop_back();
      return true;
    }
    std::string room;
    const bool opens = node.bytes(room) == "{";
    if (open_.empty()) {
      CheckTop(node, opens);
    } else if (opens && IsTable(node.key())) {
      if (open_.front().tables++ == 0) open_.front().first_table = number_;
    } else if (open_.size() == 1 && node.is_named() && IsTable(open_.back().key)) {
      Tell(Kind::keyed_line, Text::ToUtf8(open_.back().key),
           opens ? "a section inside of a table is not read. Put it behind the table"
                 : "the colon makes this a line with the key " + Quoted(node.key()) +
                       ", which is no row of the table. " +
                       (IsIds(node.key()) ? "Remove the colon"
                                          : "Put a text that holds a colon in quotes"));
    }
    if (opens) open_.push_back({number_, node.key()});
    return true;
  }

  void CheckTop(const CLake::CNode& node, bool opens) {
    if (!node.is_named()) {
      if (IsBlankOrComment(node) || TellNoColon(node.value()) || shut_ != 0) return;
      return Tell(Kind::outside_section, "",
                  opens ? "a section without a name; its lines are not read. Write <Name>: {"
                        : "a row outside every section; it is not read. Is the line missing that "
                          "opens its section?");
    }
    const std::wstring& key = node.key();
    knows_something_ = knows_something_ || IsTable(key) || IsNamedLine(key);
    shut_ = !opens && IsBracket(node.value()) ? number_ : 0;
    if (opens && !IsTable(key)) {
      // Counted with all others: a file can have any number of names that nobody knows.
      if (Finding* const finding = run_.findings.Add(Kind::unknown_section, number_)) {
        finding->message = "no table has the name " + Quoted(key) +
                           "; the lines of this section are not read" + Suggestion(key);
      }
    } else if (!opens && !IsTable(key) && !IsNamedLine(key)) {
      if (Finding* const finding = run_.findings.Add(Kind::unknown_line, number_)) {
        const std::string suggestion = Suggestion(key);
        finding->message = "nothing reads a line with the key " + Quoted(key) + suggestion;
        if (!suggestion.empty()) finding->severity = Severity::loss;
      }
    }
    const auto [first, is_new] = tops_.try_emplace(key, Top{number_, opens, node.value()});
    if (is_new) return;
    const std::string before = "line " + std::to_string(first->second.line);
    if (!opens) {
      Tell(Kind::duplicate_line, "",
           "the key " + Quoted(key) + " stands in " + before +
               " already; that line stays, this one is ignored. Remove one of the two",
           first->second.line);
    } else if (first->second.opened) {
      Tell(Kind::duplicate_section, Text::ToUtf8(key),
           "stands in " + before +
               " already, whose lines give way to those of this section. Put all rows into one",
           first->second.line);
    }
    first->second.opened = first->second.opened || opens;
  }

  // True of a line that begins with a name in angle brackets but has no colon behind it.
  bool TellNoColon(std::wstring_view value) {
    std::size_t end = 0;
    while (end < value.size() && value[end] == L'<') {
      const std::size_t close = value.find(L'>', end);
      if (close == value.npos) return false;
      end = close + 1;
    }
    const std::wstring key(value.substr(0, end));
    std::wstring_view rest = Text::Trim(value.substr(end));
    const bool wide_colon = rest.starts_with(wide_colon_sign);
    if (wide_colon || rest.starts_with(L'=')) rest = Text::Trim(rest.substr(1));
    const bool opens = IsBracket(rest);
    if (end == 0 || !(opens || IsTable(key) || IsNamedLine(key))) return false;
    knows_something_ = knows_something_ || IsTable(key) || IsNamedLine(key);
    if (opens) shut_ = number_;
    Tell(Kind::outside_section, "",
         std::string(wide_colon ? "the colon behind the name is a full-width one (U+FF1A)"
                                : "no colon stands behind the name") +
             (opens ? ", so that no section begins; the rows below are not read. Write "
                    : ", and the line is not read. Write ") +
             Text::ToUtf8(key) + ": " + (opens ? "{" : Text::ToUtf8(rest)));
    return true;
  }

  void TellUnreachable() {
    const auto last = static_cast<std::size_t>(std::distance(run_.lake.begin(), run_.lake.end()));
    std::string message = "this bracket closes no section";
    if (last > number_) {
      message += " and ends the data base: " + LineRange(number_ + 1, last) +
                 (last == number_ + 1 ? " is" : " are") + " not read";
    }
    message += shut_ == 0 ? ". Remove it"
                          : ". It belongs to line " + std::to_string(shut_) + "; mend that one";
    Tell(Kind::unreachable_lines, "", std::move(message), last == number_ ? 0 : last);
  }

  void TellNested(const Open& outer) {
    if (outer.tables == 0 || !IsTable(outer.key)) return;
    TellAt(outer.first_table, Kind::nested_section, Text::ToUtf8(outer.key),
           "a table inside of another section is not read" +
               std::string(outer.tables == 1 ? ""
                                             : ", nor are " + std::to_string(outer.tables - 1) +
                                                   " more below it") +
               ". Is a line with } missing above it, and one too many below?",
           outer.line);
  }

  void TellUnclosed() {
    if (!open_.empty()) run_.swallowed = open_.front().first_table;
    for (const Open& section : open_) {
      std::string message = "the section has no closing bracket and takes in all that follows";
      if (section.tables > 0) {
        message +=
            ": the table in line " + std::to_string(section.first_table) +
            (section.tables == 1 ? " is"
                                 : " and " + std::to_string(section.tables - 1) + " more are") +
            " not read";
      }
      TellAt(section.line, Kind::unclosed_section, Text::ToUtf8(section.key),
             message + ". Put a line with } behind its last row");
    }
  }

  void TellNoSection(const std::wstring& key, const Top& top) {
    if (top.value.starts_with(wide_bracket_sign)) {
      return TellAt(top.line, Kind::no_section, Text::ToUtf8(key),
                    "the bracket is a full-width one (U+FF5B) and opens no section; the rows below "
                    "are not read. Write " +
                        Text::ToUtf8(key) + ": {");
    }
    const bool has_bracket = top.value.starts_with(L'{') && top.value.size() > 1;
    TellAt(top.line, Kind::no_section, Text::ToUtf8(key),
           has_bracket ? "the bracket opens no section, since " +
                             Quoted(Text::Trim(std::wstring_view(top.value).substr(1))) +
                             " stands behind it; the rows below are not read. Put a comment into a "
                             "line of its own, in front of the section"
                       : "a table's name that opens no section: its value must be { alone");
  }

  // Of two documents the file tells more than what was taken.
  void CheckNames() {
    const std::pair<const wchar_t*, const CString&> names[] = {
        {CQtParamStore::base_type_key, run_.data.BaseType()},
        {CQtParamStore::alias_type_key, run_.data.AliasType()},
        {CQtParamStore::calib_file_key, run_.data.CalibFileName()},
        {CQtParamStore::learn_file_key, run_.data.LearnFileName()},
    };
    for (const auto& [key, name] : names) {
      const auto line = run_.lake[key];
      if (!line.exists()) continue;
      const std::wstring& value = line->value();
      const bool quoted = value.starts_with(L'"');
      if (value == (quoted ? L'"' + name + L'"' : name)) continue;
      TellAt(run_.lines.Of(*line), Kind::cut_name, "",
             "the name is " + Quoted(name) + "; the rest of the line is not read" +
                 (quoted ? ""
                  : !value.empty() && IsOddQuote(value[0])
                      ? ". Write straight quotes, \""
                      : ". Put it in quotes: \"" + Text::ToUtf8(value) + '"'));
    }
  }

  Run& run_;
  std::size_t number_ = 0;
  std::vector<Open> open_;
  std::map<std::wstring, Top> tops_;
  std::size_t shut_ = 0;  // a line whose bracket opens no section; in front of the closing one
  bool knows_something_ = false;
};

}  // namespace

bool CheckNesting(Run& run) { return NestingCheck(run).Check(); }

}  // namespace kestrin::ParameterCheck
