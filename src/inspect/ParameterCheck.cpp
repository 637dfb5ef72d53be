#include "inspect/ParameterCheck.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <set>
#include <string_view>
#include <unordered_map>

#include "inspect/TableCatalogue.h"
#include "interfaces/signal/Clavis.h"
#include "interfaces/text/Text.h"
#include "lake/Lake.h"
#include "tables/QTableManager.h"
#include "tables/RowText.h"

namespace kestrin::ParameterCheck {
namespace {

using TableCatalogue::RowBuffer;
using TableCatalogue::TableInfo;
using TableType::FieldKind;
using TableType::FieldRef;

// A line with at least this many characters from a text on is told to be near the limit.
constexpr std::size_t near_limit = RowText::max_text_rest - 18;

using LineNumbers = std::unordered_map<const CLake::CNode*, std::size_t>;

LineNumbers NumberLines(const CLake& lake) {
  LineNumbers numbers;
  for (const CLake::CNode& node : lake) numbers.emplace(&node, numbers.size() + 1);
  return numbers;
}

bool IsBlankOrComment(const CLake::CNode& node) {
  return node.key().empty() && node.value().empty();
}

bool IsClosing(const CLake::CNode& node) {
  return node.key().empty() && node.value().starts_with(L'}');
}

std::string Quoted(const std::wstring& text) {
  constexpr std::size_t shown = 60;
  std::string quoted("'");
  quoted += Text::ToUtf8(text.substr(0, shown));
  quoted += text.size() > shown ? "...'" : "'";
  return quoted;
}

// A field of a line at hand; the ints of a key inside a row are fields of their own.
struct NamedField {
  std::string name;
  FieldRef ref;
};

void AppendFields(std::vector<NamedField>& fields,
                  const std::vector<TableCatalogue::FieldInfo>& infos,
                  const std::vector<FieldRef>& refs) {
  for (std::size_t i = 0; i < infos.size(); ++i) {
    if (refs[i].kind != FieldKind::key) {
      fields.push_back({infos[i].name, refs[i]});
      continue;
    }
    int element = 0;
    for (int& id : static_cast<QClavis*>(refs[i].place)->id) {
      const auto which = static_cast<Clavis::qOrder>(element++);
      fields.push_back({infos[i].name + " (" + Text::ToUtf8(Clavis::ElementName(which, 1)) + ")",
                        {FieldKind::integer, &id}});
    }
  }
}

// The value of a field such that two are the same text exactly if they are the same key.
std::wstring KeyText(const FieldRef& field) {
  std::wstring text;
  if (field.kind == FieldKind::real) {
    float value = *static_cast<const float*>(field.place);
    if (value == 0 || std::isnan(value)) value = std::abs(value);
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return std::to_wstring(bits);
  }
  const TableType::FieldView view{field.kind, field.place};
  RowText::Append(text, {&view, 1});
  return text;
}

// Checks the lines of one table.
class TableCheck {
 public:
  TableCheck(const TableInfo& table, const LineNumbers& numbers, std::vector<Finding>& findings)
      : table_(table), numbers_(numbers), findings_(findings), buffer_(table.new_row()) {
    AppendFields(fields_, table.key, buffer_->key);
    AppendFields(fields_, table.row, buffer_->row);
  }

  void Run(const CLake::CNode& section) {
    for (auto child = section.begin_unnamed(); child != section.end_unnamed(); ++child) {
      CheckLine(**child);
      first_line_ = false;
    }
  }

 private:
  Finding& Tell(Kind kind, std::size_t line, std::string message) {
    findings_.push_back({kind, line, 0, Text::FromUtf8(table_.section), "", 0, std::move(message)});
    return findings_.back();
  }

  void TellField(Kind kind, std::size_t line, std::size_t field, std::string message) {
    Finding& finding = Tell(kind, line, std::move(message));
    finding.field = fields_[field].name;
    finding.position = field + 1;
  }

  // As a table reads a line: whatever becomes of its fields, a row is made.
  void CheckLine(const CLake::CNode& node) {
    const std::size_t line = numbers_.at(&node);
    if (IsBlankOrComment(node)) {
      EmptyTexts(0);
      TellBlank(line, EnterKey(line));
      return;
    }
    const bool whole = ReadFields(line, node.value());
    const std::size_t first = EnterKey(line);
    if (first == 0) return;
    const std::string dropped =
        "having the key of line " + std::to_string(first) + ", whose row stays";
    Finding& finding = whole ? Tell(Kind::duplicate_key, line,
                                    "the key " + ShownKey() + " stands already: the row is dropped")
                             : findings_.back();
    finding.message += whole ? ", " + dropped : "; the row is dropped, " + dropped;
    finding.other_line = first;
  }

  // False if the line was told to be bad or short.
  bool ReadFields(std::size_t line, std::wstring_view rest) {
    for (std::size_t i = 0; i < fields_.size(); ++i) {
      if (rest.empty()) {
        EmptyTexts(i);
        TellShort(line, i);
        return false;
      }
      const std::size_t length = rest.size();
      const RowText::Result result = RowText::ReadFields({&fields_[i].ref, 1}, rest);
      if (!result.ok) {
        TellBad(line, i, result.reason, rest);
        return false;
      }
      if (IsText(i) && length >= near_limit) {
        TellField(Kind::text_near_limit, line, i,
                  std::to_string(length) + " characters from this text to the end of the line; " +
                      std::to_string(RowText::max_text_rest + 1) + " can't be read");
      }
    }
    if (!Text::Trim(rest).empty()) {
      Tell(Kind::extra_fields, line,
           "the table has " + std::to_string(fields_.size()) +
               " fields; ignored behind them: " + Quoted(std::wstring(rest)));
    }
    return true;
  }

  bool IsText(std::size_t field) const { return fields_[field].ref.kind == FieldKind::text; }

  // Texts that a line doesn't reach become empty, unlike numbers.
  void EmptyTexts(std::size_t first) {
    for (std::size_t i = first; i < fields_.size(); ++i) {
      if (IsText(i)) *static_cast<wchar_t*>(fields_[i].ref.place) = L'\0';
    }
  }

  void TellShort(std::size_t line, std::size_t field) {
    std::string kept;
    std::string emptied;
    for (std::size_t i = field; i < fields_.size(); ++i) {
      std::string& list = IsText(i) ? emptied : kept;
      list += (list.empty() ? "" : ", ") + fields_[i].name + (IsText(i) ? "" : " = " + Shown(i));
    }
    std::string message = "the line ends here";
    if (!kept.empty()) {
      message += first_line_ ? "; left at their defaults: " : "; taken over from the line before: ";
      message += kept;
    }
    if (!emptied.empty()) message += "; empty: " + emptied;
    TellField(Kind::short_line, line, field, std::move(message));
  }

  void TellBad(std::size_t line, std::size_t field, const char* reason, std::wstring_view rest) {
    std::string message = reason != nullptr
                              ? std::string(reason) + " at " + Quoted(std::wstring(rest))
                              : std::to_string(rest.size()) +
                                    " characters from this text to the end of the line; " +
                                    std::to_string(RowText::max_text_rest) + " can be read";
    if (table_.container == "tree" && table_.row.size() == 1 && !told_index_) {
      told_index_ = true;
      message += " (and a bad line keeps all names of this table from being found by name)";
    }
    TellField(Kind::bad_line, line, field, std::move(message));
  }

  void TellBlank(std::size_t line, std::size_t first_of_key) {
    std::string message = "a blank or comment line inside a table makes a row";
    if (first_of_key != 0) {
      message += "; it is dropped, having the key of line " + std::to_string(first_of_key);
    } else if (first_line_) {
      message += ", of defaults";
    } else {
      message += ": empty texts, and the numbers of the line before";
    }
    Tell(Kind::blank_line, line, std::move(message)).other_line = first_of_key;
  }

  // The line whose row has the key already, or 0.
  std::size_t EnterKey(std::size_t line) {
    if (!table_.unique_keys) return 0;
    std::wstring key;
    for (std::size_t i = 0; i < buffer_->key.size(); ++i) key += KeyText(fields_[i].ref) + L'\n';
    const auto [first, is_new] = lines_by_key_.emplace(std::move(key), line);
    return is_new ? 0 : first->second;
  }

  std::string Shown(std::size_t field) const {
    std::wstring text;
    const TableType::FieldView view{fields_[field].ref.kind, fields_[field].ref.place};
    RowText::Append(text, {&view, 1});
    return Text::ToUtf8(text);
  }

  std::string ShownKey() const {
    std::string shown;
    for (std::size_t i = 0; i < buffer_->key.size(); ++i) {
      shown += (shown.empty() ? "" : " ") + Shown(i);
    }
    return shown;
  }

  const TableInfo& table_;
  const LineNumbers& numbers_;
  std::vector<Finding>& findings_;
  std::unique_ptr<RowBuffer> buffer_;
  std::vector<NamedField> fields_;
  std::map<std::wstring, std::size_t> lines_by_key_;
  bool first_line_ = true;
  bool told_index_ = false;
};

bool IsTable(const std::wstring& key) {
  return key.starts_with(L'<') && TableCatalogue::Find(Text::ToUtf8(key)) != nullptr;
}

// Checks how the lines nest and what stands at the top.
class NestingCheck {
 public:
  explicit NestingCheck(std::vector<Finding>& findings) : findings_(findings) {}

  void Run(const CLake& lake) {
    std::size_t number = 0;
    for (const CLake::CNode& node : lake) {
      ++number;
      if (IsClosing(node)) {
        if (open_.empty()) {
          TellUnreachable(number,
                          static_cast<std::size_t>(std::distance(lake.begin(), lake.end())));
          break;
        }
        open_.pop_back();
        continue;
      }
      if (open_.empty()) CheckTop(node, number);
      if (open_.size() == 1 && node.is_named() && IsTable(open_.back().key)) {
        Tell(Kind::keyed_line, number, 0, open_.back().key,
             "the colon makes this a line with the key " + Quoted(node.key()) +
                 ", which is no row of the table");
      }
      if (node.value() == L"{") open_.push_back({number, node.key()});
    }
    for (const Open& section : open_) {
      Tell(Kind::unclosed_section, section.line, 0, section.key,
           "the section has no closing bracket and takes in all that follows");
    }
    for (const auto& [key, top] : tops_) {
      if (top.opened || !IsTable(key)) continue;
      Tell(Kind::no_section, top.line, 0, key,
           "a table's name that opens no section: the value must be { alone");
    }
  }

 private:
  struct Open {
    std::size_t line;
    std::wstring key;
  };
  // The first line of a key, and whether it or a later one opens a section.
  struct Top {
    std::size_t line;
    bool opened;
  };

  void Tell(Kind kind, std::size_t line, std::size_t other, const std::wstring& section,
            std::string message) {
    findings_.push_back({kind, line, other, section, "", 0, std::move(message)});
  }

  void TellUnreachable(std::size_t line, std::size_t last) {
    std::string message = "this bracket closes no section";
    if (last == line + 1) message += " and ends the data base; the line behind it is not read";
    if (last > line + 1) {
      message += " and ends the data base; lines " + std::to_string(line + 1) + " to " +
                 std::to_string(last) + " are not read";
    }
    Tell(Kind::unreachable_lines, line, last == line ? 0 : last, L"", std::move(message));
  }

  void CheckTop(const CLake::CNode& node, std::size_t line) {
    const bool is_section = node.value() == L"{";
    if (!node.is_named()) {
      if (IsBlankOrComment(node)) return;
      Tell(Kind::outside_section, line, 0, L"",
           is_section ? "a section without a name; its lines are not read"
                      : "a row outside every section; it is not read");
      return;
    }
    if (is_section && !IsTable(node.key())) {
      Tell(Kind::unknown_section, line, 0, node.key(), "no table of this name is known; not read");
    }
    const auto [first, is_new] = tops_.try_emplace(node.key(), Top{line, is_section});
    if (is_new) return;
    const std::string before = "line " + std::to_string(first->second.line);
    if (!is_section) {
      Tell(Kind::duplicate_line, line, first->second.line, L"",
           "the key " + Quoted(node.key()) + " stands in " + before +
               " already; that line stays, this one is ignored");
    } else if (first->second.opened) {
      Tell(Kind::duplicate_section, line, first->second.line, node.key(),
           "stands in " + before + " already, whose lines give way to those of this section");
    }
    first->second.opened = first->second.opened || is_section;
  }

  std::vector<Finding>& findings_;
  std::vector<Open> open_;
  std::map<std::wstring, Top> tops_;
};

void CheckVersion(const CLake& lake, const LineNumbers& numbers, std::vector<Finding>& findings) {
  const kestrin::Refusal refusal = CQTableManager::WhyRefused(lake);
  if (!refusal) return;
  const auto line_of = [&](const wchar_t* key) {
    const auto line = lake[key];
    return line.exists() ? numbers.at(&*line) : 0;
  };
  findings.push_back({Kind::refused_version, line_of(CQTableManager::major_key),
                      line_of(CQTableManager::minor_key), L"", "", 0,
                      Text::ToUtf8(refusal.sentence)});
}

// Relative limits whose parameter no row of <TInstrumentParam> has.
void CheckRelativeLimits(const CLake& lake, const LineNumbers& numbers,
                         std::vector<Finding>& findings) {
  const auto parameters = lake[L"<TInstrumentParam>"];
  const auto limits = lake[L"<TGrex15>"];
  if (!limits.exists()) return;
  const auto ids_of = [](const CLake::CNode& section, const char* table, std::size_t field,
                         auto use) {
    const auto buffer = TableCatalogue::Find(table)->new_row();
    for (auto child = section.begin_unnamed(); child != section.end_unnamed(); ++child) {
      std::wstring_view rest = (*child)->value();
      RowText::ReadFields(buffer->key, rest);
      use(*static_cast<const int*>(buffer->key[field].place), **child);
    }
  };
  std::set<int> known;
  if (parameters.exists()) {
    ids_of(*parameters, "<TInstrumentParam>", 0,
           [&](int id, const CLake::CNode&) { known.insert(id); });
  }
  ids_of(*limits, "<TGrex15>", Clavis::Parameter, [&](int id, const CLake::CNode& node) {
    if (known.contains(id)) return;
    findings.push_back({Kind::unknown_parameter, numbers.at(&node), 0, L"<TGrex15>", "parameter",
                        Clavis::Parameter + 1,
                        "the parameter " + std::to_string(id) +
                            " is not in <TInstrumentParam>: the load of the data base fails"});
  });
}

}  // namespace

const char* Name(Kind kind) {
  // In the order of the enumeration.
  static constexpr const char* names[] = {
      "refused_version", "bad_line",         "duplicate_key",     "blank_line",
      "short_line",      "extra_fields",     "text_near_limit",   "keyed_line",
      "no_section",      "unknown_section",  "duplicate_section", "duplicate_line",
      "outside_section", "unclosed_section", "unreachable_lines", "unknown_parameter"};
  const auto index = static_cast<std::size_t>(kind);
  return index < std::size(names) ? names[index] : "";
}

std::vector<Finding> Check(const CLake& lake) {
  std::vector<Finding> findings;
  const LineNumbers numbers = NumberLines(lake);
  CheckVersion(lake, numbers, findings);
  NestingCheck(findings).Run(lake);
  for (const TableInfo& table : TableCatalogue::Tables()) {
    const auto section = lake[Text::FromUtf8(table.section)];
    if (section.exists() && section->is_section()) {
      TableCheck(table, numbers, findings).Run(*section);
    }
  }
  CheckRelativeLimits(lake, numbers, findings);
  std::stable_sort(findings.begin(), findings.end(),
                   [](const Finding& a, const Finding& b) { return a.line < b.line; });
  return findings;
}

}  // namespace kestrin::ParameterCheck
