#include "inspect/ParameterCheck.h"

#include <algorithm>
#include <iterator>
#include <tuple>

#include "frame/LoadForInspection.h"
#include "inspect/ParameterCheckRun.h"
#include "interfaces/sea/LogListener.h"
#include "interfaces/text/Text.h"
#include "tables/QTableManager.h"

namespace kestrin::ParameterCheck {
namespace {

struct KindInfo {
  const char* name;
  Severity severity;
};

const KindInfo& InfoOf(Kind kind) {
  using enum Severity;
  // In the order of the enumeration.
  static constexpr KindInfo infos[] = {
      {"unreadable_file", error},
      {"utf16", error},
      {"binary", error},
      {"not_utf8", error},
      {"no_utf8_mark", loss},
      {"no_parameter_file", error},
      {"refused_version", error},
      {"keyed_line", error},
      {"no_section", error},
      {"nested_section", loss},
      {"unknown_section", loss},
      {"unknown_line", note},
      {"cut_name", loss},
      {"duplicate_section", error},
      {"duplicate_line", loss},
      {"outside_section", error},
      {"unclosed_section", error},
      {"unreachable_lines", error},
      {"bad_line", error},
      {"duplicate_key", error},
      {"blank_line", loss},
      {"short_line", loss},
      {"extra_fields", loss},
      {"number_runs_on", loss},
      {"infinite_number", loss},
      {"negative_number", loss},
      {"id_out_of_range", loss},
      {"wrong_quotes", loss},
      {"quote_not_closed", note},
      {"nul_in_text", loss},
      {"control_character", note},
      {"text_near_limit", note},
      {"unknown_parameter", error},
      {"bad_definition", error},
      {"odd_definition", error},
      {"cut_definition", loss},
      {"unread_in_definition", note},
      {"reversed_definition", note},
      {"no_base_order", error},
      {"closed_channels", error},
      {"ambiguous_polygon", error},
      {"duplicate_name", note},
      {"no_number", loss},
      {"unknown_calc_parameter", note},
      {"no_step", note},
      {"other_instrument", note},
      {"unknown_id", note},
  };
  static_assert(std::size(infos) == static_cast<std::size_t>(Kind::unknown_id) + 1);
  return infos[static_cast<std::size_t>(kind)];
}

// Why the file wasn't read to its end, and why its version is refused.
void CheckRefusals(Run& run) {
  const auto tell = [&run](Kind kind, std::size_t line, std::string message) -> Finding& {
    Finding& finding = *run.findings.Add(kind, line);
    if (message.ends_with('.')) message.pop_back();
    finding.message = std::move(message);
    return finding;
  };
  if (const Refusal& file = run.lake.last_refusal()) {
    run.cut_line = static_cast<std::size_t>(file.line);
    if (file.reason == Refusal::broken_text) {
      tell(Kind::not_utf8, run.cut_line,
           "the bytes in this line are not UTF-8, and nothing from there on is read. Save the file "
           "as UTF-8 with a byte order mark");
    } else {
      tell(Kind::unreadable_file, run.cut_line, Text::ToUtf8(file.sentence));
      if (run.lake.empty()) return;
    }
  }
  if (const Refusal version = CQTableManager::WhyRefused(run.lake)) {
    tell(Kind::refused_version, run.lines.OfKey(CQTableManager::major_key),
         Text::ToUtf8(version.sentence))
        .other_line = run.lines.OfKey(CQTableManager::minor_key);
  }
}

// The rows of which the load logs something but that a line can't be read, each once.
std::vector<LoggedRow> Load(Run& run) {
  std::vector<LoggedRow> rows;
  const LogListener listener([&](std::wstring_view, const LogSubject* subject) {
    if (subject == nullptr || subject->key.empty()) return;
    LoggedRow row{Text::ToUtf8(subject->section), {subject->key.begin(), subject->key.end()}};
    if (rows.empty() || rows.back() != row) rows.push_back(std::move(row));
  });
  LoadForInspection::Run(run.data, run.lake);
  return rows;
}

void CheckLake(Run& run) {
  CheckRefusals(run);
  const std::vector<LoggedRow> logged = Load(run);
  if (!CheckNesting(run) && !run.lake.empty()) {
    run.findings = Findings(1);
    run.findings.Add(Kind::no_parameter_file, 1)->message =
        "the file holds no version line, no name and no table: it is no parameter file";
    return;
  }
  CheckRows(run);
  CheckMeaning(run, logged);
}

// Moves columns behind the white space with which their lines begin.
void CompleteColumns(std::vector<Finding>& findings, std::string_view bytes) {
  std::size_t number = 1;
  for (Finding& finding : findings) {
    for (; number < finding.line; ++number) {
      bytes.remove_prefix(std::min(bytes.find('\n'), bytes.size() - 1) + 1);
    }
    if (finding.column == 0) continue;
    const std::wstring line = Text::FromUtf8(bytes.substr(0, bytes.find('\n')));
    finding.column += static_cast<std::size_t>(Text::Trim(line).data() - line.data());
  }
}

}  // namespace

Finding* Findings::Add(Kind kind, std::size_t line, std::string_view section) {
  auto place = counts_.find(section);
  if (place == counts_.end()) place = counts_.emplace(section, std::map<Kind, Count>()).first;
  Count& count = place->second[kind];
  if (++count.all > most_) return nullptr;
  findings_.push_back({.kind = kind,
                       .severity = InfoOf(kind).severity,
                       .line = line,
                       .column = 0,
                       .other_line = 0,
                       .section = std::string(section),
                       .field = {},
                       .position = 0,
                       .message = {}});
  return count.last = &findings_.back();
}

bool Findings::IsFull(Kind kind, std::string_view section) const {
  const auto place = counts_.find(section);
  if (place == counts_.end()) return false;
  const auto count = place->second.find(kind);
  return (count == place->second.end() ? 0 : count->second.all) >= most_;
}

std::vector<Finding> Findings::Take() {
  for (auto& [section, kinds] : counts_) {
    for (auto& [kind, count] : kinds) {
      if (count.all > most_ && count.last != nullptr) count.last->further = count.all - most_;
    }
  }
  std::vector<Finding> findings(std::move_iterator(findings_.begin()),
                                std::move_iterator(findings_.end()));
  std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
    return std::tie(a.line, a.column) < std::tie(b.line, b.column);
  });
  return findings;
}

std::size_t Lines::Of(const CLake::CNode& node) {
  while (&*at_ != &node) {
    ++number_;
    if (++at_ != lake_.end()) continue;
    at_ = lake_.begin();
    number_ = 1;
  }
  return number_;
}

std::size_t Lines::OfKey(const wchar_t* key) {
  const auto line = lake_[key];
  return line.exists() ? Of(*line) : 0;
}

std::size_t Run::LineOf(std::string_view section, std::span<const int> key) {
  auto table = rows.find(section);
  if (table == rows.end()) {
    table = rows.emplace(section, ReadKeys(*this, *TableCatalogue::Find(section))).first;
  }
  const auto line = table->second.find(KeyOf(key));
  return line == table->second.end() ? 0 : line->second;
}

std::string Quoted(std::wstring_view text) {
  constexpr std::size_t shown = 60;
  return '\'' + Text::ToUtf8(text.substr(0, shown)) + (text.size() > shown ? "...'" : "'");
}

bool IsOddQuote(wchar_t c) {
  return c == L'\'' || c == L'`' || c == 0xAB || c == 0xBB || (c >= 0x2018 && c <= 0x201F) ||
         (c >= 0x300C && c <= 0x300F) || c == 0xFF02 || c == 0xFF07;
}

bool IsBlankOrComment(const CLake::CNode& node) {
  std::string room;
  return !node.is_named() && node.bytes(room).empty();
}

const char* Name(Kind kind) { return InfoOf(kind).name; }

const char* Name(Severity severity) {
  static constexpr const char* names[] = {"error", "loss", "note"};
  return names[static_cast<std::size_t>(severity)];
}

std::vector<Finding> Check(const CLake& lake, const Options& options) {
  Run run{lake, options, Findings(options.most_of_a_kind), Lines(lake), {}};
  CheckLake(run);
  return run.findings.Take();
}

std::vector<Finding> Check(const CLake& lake, std::string_view bytes, const Options& options) {
  Run run{lake, options, Findings(options.most_of_a_kind), Lines(lake), {}};
  if (!CheckBytes(run, bytes)) CheckLake(run);
  std::vector<Finding> findings = run.findings.Take();
  CompleteColumns(findings, bytes);
  return findings;
}

}  // namespace kestrin::ParameterCheck
