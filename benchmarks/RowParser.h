// The straight way through a parameter file: from its bytes to the values of its rows, with no tree
// and no tables in between. The rivals of the library are fed by it, and what it costs to put the
// values into flat arrays is the limit that a load is measured against.
//
// It reads what ParameterFile.h makes, not everything that people write. A sink is told
//
//   BeginTable(table)                 the next rows are of that table of the catalogue
//   Integer(n), Real(x), Text(utf8)   the fields of a row, from left to right
//   EndRow()
#pragma once

#include <lKestrinDb.h>

#include <charconv>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace benchmarks {

// The kinds of a row's fields, those of the key in front; six integers for a key.
std::vector<TableType::FieldKind> FieldKinds(const kestrin::TableCatalogue::TableInfo& table);

template <class Sink>
class RowParser {
 public:
  explicit RowParser(Sink& sink) : sink_(sink) {}

  void Parse(std::string_view file) {
    if (file.starts_with("\xEF\xBB\xBF")) file.remove_prefix(3);
    while (!file.empty()) {
      const std::size_t feed = file.find('\n');
      Line(file.substr(0, feed));
      file.remove_prefix(feed == std::string_view::npos ? file.size() : feed + 1);
    }
  }

 private:
  void Line(std::string_view line) {
    SkipBlanks(line);
    if (line.ends_with(": {")) {
      const auto* table = kestrin::TableCatalogue::Find(line.substr(0, line.size() - 3));
      if (table == nullptr) throw std::runtime_error("no such table: " + std::string(line));
      kinds_ = FieldKinds(*table);
      in_table_ = true;
      sink_.BeginTable(*table);
    } else if (line.starts_with('}')) {
      in_table_ = false;
    } else if (in_table_) {
      Fields(line);
    }
  }

  void Fields(std::string_view line) {
    for (const TableType::FieldKind kind : kinds_) {
      SkipBlanks(line);
      switch (kind) {
        case TableType::FieldKind::text:
          sink_.Text(TakeText(line));
          break;
        case TableType::FieldKind::real:
          sink_.Real(TakeNumber<float>(line));
          break;
        default:
          sink_.Integer(TakeNumber<long long>(line));
      }
    }
    sink_.EndRow();
  }

  static void SkipBlanks(std::string_view& line) {
    while (!line.empty() && (line.front() == ' ' || line.front() == '\t')) line.remove_prefix(1);
  }

  template <class Number>
  static Number TakeNumber(std::string_view& line) {
    Number number{};
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
    if (error != std::errc()) throw std::runtime_error("no number: " + std::string(line));
    line.remove_prefix(static_cast<std::size_t>(end - line.data()));
    return number;
  }

  // All texts of these files stand in quotes.
  static std::string_view TakeText(std::string_view& line) {
    const std::size_t end = line.find('"', 1);
    if (end == std::string_view::npos) throw std::runtime_error("no text: " + std::string(line));
    const std::string_view text = line.substr(1, end - 1);
    line.remove_prefix(end + 1);
    return text;
  }

  Sink& sink_;
  std::vector<TableType::FieldKind> kinds_;
  bool in_table_ = false;
};

// Appends UTF-8 as UTF-16 code units; quick for ASCII.
void AppendWide(std::wstring& wide, std::string_view utf8);

// A sink that keeps the values of each table in flat arrays.
class FlatTables {
 public:
  struct Columns {
    std::vector<long long> integers;
    std::vector<float> reals;
    std::wstring texts;
    std::vector<std::size_t> text_ends;
  };

  void BeginTable(const kestrin::TableCatalogue::TableInfo&) { current_ = &tables_.emplace_back(); }
  void Integer(long long number) { current_->integers.push_back(number); }
  void Real(float number) { current_->reals.push_back(number); }
  void Text(std::string_view utf8) {
    AppendWide(current_->texts, utf8);
    current_->text_ends.push_back(current_->texts.size());
  }
  void EndRow() {}

 private:
  std::vector<Columns> tables_;
  Columns* current_ = nullptr;
};

}  // namespace benchmarks
