// The rows of a lake, line by line and as a table reads them: what becomes of each line, and
// whether its ids are known.

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <memory>
#include <optional>

#include "frame/QtParamInstance.h"
#include "inspect/ParameterCheckRun.h"
#include "interfaces/signal/Clavis.h"
#include "interfaces/text/Number.h"
#include "interfaces/text/Text.h"
#include "interfaces/text/Utf.h"
#include "tables/FieldOr.h"
#include "tables/RowText.h"
#include "trigger/TriggerStore.h"

namespace kestrin::ParameterCheck {
namespace {

using TableCatalogue::FieldInfo;
using TableCatalogue::IdKind;
using TableCatalogue::RowBuffer;
using TableCatalogue::TableInfo;
using TableType::FieldKind;
using TableType::FieldRef;

// A line with at least this many characters from a text on is told to be near the limit.
constexpr std::size_t near_limit = RowText::max_text_rest - 18;

// ---- ids that the tables know --------------------------------------------------------------

class KnownIds {
 public:
  explicit KnownIds(const CQtParamDistillery& data) : data_(data) {}

  bool Knows(IdKind kind, int id) {
    auto& ids = ids_[static_cast<std::size_t>(kind)];
    if (!ids) ids = Collect(TableCatalogue::HomeOf(kind), data_);
    return std::binary_search(ids->begin(), ids->end(), id);
  }

  // True if the table that names ids of a kind has no rows. Its ids are told together then, since
  // one slip, such as a misspelt name of the table, is behind all of them.
  bool LacksHome(IdKind kind) const { return ids_[static_cast<std::size_t>(kind)]->empty(); }

  struct Homeless {
    Finding* first = nullptr;
    std::size_t count = 0;
  };
  Homeless& HomelessOf(IdKind kind) { return homeless_[static_cast<std::size_t>(kind)]; }

  void TellHomeless() {
    for (std::size_t i = 0; i < homeless_.size(); ++i) {
      const auto& [finding, count] = homeless_[i];
      if (finding == nullptr || count < 2) continue;
      const auto& home = TableCatalogue::HomeOf(static_cast<IdKind>(i));
      finding->message =
          std::string("no ") + home.what + " has a row: " + home.section +
          " is missing or empty, and " + std::to_string(count) +
          " ids in the file lead nowhere. Is the section there, under its right name?";
    }
  }

 private:
  static std::vector<int> Collect(const TableCatalogue::IdHome& home,
                                  const CQtParamDistillery& data) {
    std::vector<int> ids;
    TableCatalogue::Find(home.section)->walk(data, [&](const auto& columns) {
      ids.push_back(*static_cast<const int*>(columns[home.key_field].place));
    });
    std::sort(ids.begin(), ids.end());
    return ids;
  }

  const CQtParamDistillery& data_;
  static constexpr auto kinds = static_cast<std::size_t>(IdKind::none);
  std::array<std::optional<std::vector<int>>, kinds> ids_;
  std::array<Homeless, kinds> homeless_ = {};
};

// ---- fields --------------------------------------------------------------------------------

// A field of a line at hand; the ints of a key inside a row are fields of their own.
struct NamedField {
  std::string name;
  FieldRef ref;
  IdKind id;
  bool at_home;                   // this is the field that makes ids of this kind known
  std::optional<int> known = {};  // the last id that was found
};

void AppendFields(std::vector<NamedField>& fields, const TableInfo& table,
                  const std::vector<FieldInfo>& infos, const std::vector<FieldRef>& refs) {
  const bool is_key = &infos == &table.key;
  for (std::size_t i = 0; i < infos.size(); ++i) {
    const IdKind kind = infos[i].id;
    if (refs[i].kind != FieldKind::key) {
      const bool at_home = is_key && kind != IdKind::none &&
                           TableCatalogue::HomeOf(kind).section == table.section &&
                           TableCatalogue::HomeOf(kind).key_field == i;
      fields.push_back({infos[i].name, refs[i], kind, at_home});
      continue;
    }
    int element = 0;
    for (int& id : static_cast<QClavis*>(refs[i].place)->id) {
      const auto which = static_cast<Clavis::qOrder>(element);
      fields.push_back({infos[i].name + " (" + Text::ToUtf8(Clavis::ElementName(which, 1)) + ")",
                        {FieldKind::integer, &id},
                        static_cast<IdKind>(element++),
                        false});
    }
  }
}

void AppendToKey(std::wstring& key, const FieldRef& field) {
  if (field.kind == FieldKind::text) {
    key += static_cast<const wchar_t*>(field.place);
  } else if (field.kind == FieldKind::real) {
    float value = *static_cast<const float*>(field.place);
    if (value == 0 || std::isnan(value)) value = std::abs(value);
    int bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    key += static_cast<wchar_t>(bits);
  } else {
    key += static_cast<wchar_t>(*static_cast<const int*>(field.place));
  }
}

std::wstring KeyIn(const RowBuffer& buffer) {
  std::wstring key;
  for (const FieldRef& field : buffer.key) AppendToKey(key, field);
  return key;
}

std::wstring_view Word(std::wstring_view text) {
  text = Text::Trim(text);
  return text.substr(0, static_cast<std::size_t>(
                            std::find_if(text.begin(), text.end(), Text::IsSpace) - text.begin()));
}

std::string CodeOf(wchar_t c) {
  constexpr const char* digits = "0123456789ABCDEF";
  std::string code = "U+";
  for (int shift = 12; shift >= 0; shift -= 4) {
    code += digits[(static_cast<unsigned>(c) >> static_cast<unsigned>(shift)) & 0xFU];
  }
  return code;
}

bool IsTypographicMinus(wchar_t c) {
  return c == 0x2212 || c == 0x2010 || c == 0x2013 || c == 0x2014;
}
bool IsNoBreakSpace(wchar_t c) { return c == 0xA0 || c == 0x2007 || c == 0x202F || c == 0xFEFF; }
bool IsControl(wchar_t c) { return c < L' ' || (c >= 0x7F && c <= 0x9F); }

// What is odd at a place where a number should begin.
std::string OddStart(std::wstring_view rest) {
  rest = Text::Trim(rest);
  if (rest.empty()) return "";
  if (IsTypographicMinus(rest[0])) {
    return ": a typographic minus (" + CodeOf(rest[0]) + ")? Write the one of the keyboard, -";
  }
  if (IsNoBreakSpace(rest[0])) {
    return ": a no-break space (" + CodeOf(rest[0]) + ") is no white space here; type a blank";
  }
  if (rest[0] == L'"') return ": a text stands where a number belongs; is a field missing?";
  for (const wchar_t* const mark : {L"<<<<<<<", L"=======", L">>>>>>>"}) {
    if (rest.starts_with(mark)) return ": a conflict of a merge that isn't resolved?";
  }
  return "";
}

// ---- lines ---------------------------------------------------------------------------------

// Checks the lines of one table.
class TableCheck {
 public:
  TableCheck(Run& run, KnownIds& known, const TableInfo& table)
      : run_(run), known_(known), table_(table), buffer_(table.new_row()) {
    AppendFields(fields_, table, table.key, buffer_->key);
    AppendFields(fields_, table, table.row, buffer_->row);
    starts_.resize(fields_.size());
    for (const NamedField& field : fields_) {
      if (field.id == IdKind::instrument && instrument_ == nullptr) instrument_ = &field;
      if (field.id == IdKind::parameter && parameter_ == nullptr && !field.at_home) {
        parameter_ = &field;
      }
      if (field.name == "polygon_mode") polygon_mode_ = &field;
    }
  }

  void Check(const CLake::CNode& section) {
    may_repeat_ = table_.unique_keys && table_.row_count(run_.data) != section.unnamed_size();
    for (auto child = section.begin_unnamed(); child != section.end_unnamed(); ++child) {
      CheckLine(**child);
      first_line_ = false;
    }
  }

 private:
  // What a field leaves behind that looks odd. It is told with what goes wrong behind the field, or
  // else alone.
  struct Oddity {
    Kind kind;
    std::size_t field;
    std::size_t column;
    std::string what;
    std::string follows;  // if the line can be read on
    std::string hint;
  };

  Finding* Tell(Kind kind, std::string message) {
    Finding* const finding = run_.findings.Add(kind, line_, table_.section);
    if (finding != nullptr) finding->message = std::move(message);
    return finding;
  }
  Finding* TellField(Kind kind, std::size_t field, std::size_t column, std::string message) {
    Finding* const finding = Tell(kind, std::move(message));
    if (finding == nullptr) return nullptr;
    finding->field = fields_[field].name;
    finding->position = field + 1;
    finding->column = column;
    return finding;
  }

  // As a table reads a line: whatever becomes of its fields, a row is made.
  void CheckLine(const CLake::CNode& node) {
    line_ = run_.lines.Of(node);
    if (line_ == run_.cut_line || (run_.swallowed != 0 && line_ > run_.swallowed)) return;
    if (IsBlankOrComment(node)) {
      EmptyTexts(0);
      read_ = 0;
      const std::size_t first = EnterKey();
      TellBlank(first);
      if (first == 0) CheckNeeded();
      return;
    }
    fault_ = nullptr;
    const bool whole = ReadFields(node.bytes(room_));
    const std::size_t first = EnterKey();
    if (first == 0) {
      CheckIds();
      return CheckNeeded();
    }
    const std::string other = "line " + std::to_string(first);
    if (whole) {
      fault_ = Tell(Kind::duplicate_key,
                    "the key " + ShownKey() + " stands in " + other +
                        " already: that row stays, this one is dropped. Give it another key or "
                        "remove it");
    } else if (fault_ != nullptr) {
      fault_->message += "; the row is dropped, since " + other + " has its key";
    }
    if (fault_ != nullptr) fault_->other_line = first;
  }

  // False if the line is bad or short.
  bool ReadFields(std::string_view value) {
    value_ = value;
    oddity_.reset();
    is_odd_ = false;
    unquoted_.reset();
    std::string_view rest = value;
    for (read_ = 0; read_ < fields_.size(); ++read_) {
      if (rest.empty()) {
        TellOddity();
        EmptyTexts(read_);
        TellShort();
        return false;
      }
      const std::string_view before = rest;
      starts_[read_] = before;
      const RowText::Result result = RowText::ReadFields({&fields_[read_].ref, 1}, rest);
      if (!result.ok) {
        TellBad(result.reason, before);
        return false;
      }
      TellOddity();
      const std::string_view used = before.substr(0, before.size() - rest.size());
      if (IsText(read_)) {
        LookAtText(used, before);
      } else {
        LookAtNumber(used, rest);
      }
    }
    if (!Utf::Trim(rest).empty()) {
      TellExtra(rest);
    } else {
      TellOddity();
    }
    return true;
  }

  bool IsText(std::size_t field) const { return fields_[field].ref.kind == FieldKind::text; }

  // The place of a part of the line, from 1.
  std::size_t ColumnOf(std::string_view part) const {
    while (const std::size_t space = Utf::SpaceLength(part)) part.remove_prefix(space);
    return Text::FromBytes({value_.data(), part.data()}).size() + 1;
  }

  void TellOddity() {
    if (!oddity_) return;
    TellField(oddity_->kind, oddity_->field, oddity_->column,
              oddity_->what + oddity_->follows + oddity_->hint);
    is_odd_ = true;
    oddity_.reset();
  }

  void LookAtNumber(std::string_view used, std::string_view rest) {
    const NamedField& field = fields_[read_];
    if (field.ref.kind == FieldKind::real &&
        !std::isfinite(*static_cast<const float*>(field.ref.place))) {
      const bool is_typed = used.find_first_of("nN") != used.npos;
      Finding* const finding = TellField(
          Kind::infinite_number, read_, ColumnOf(used),
          std::string(Utf::Trim(used)) +
              (is_typed ? " is a number without bounds, or none at all. Write one that is measured"
                        : " is beyond what the field holds, up to 3.4e38, and becomes infinite. "
                          "Correct the number"));
      if (finding != nullptr && is_typed) finding->severity = Severity::note;
    }
    if (field.ref.kind == FieldKind::unsigned_int && used.find('-') != used.npos) {
      TellField(Kind::negative_number, read_, ColumnOf(used),
                "the field holds no negative numbers: " + std::string(Utf::Trim(used)) +
                    " becomes " + Shown(read_) + ". Write a number from 0 up");
    }
    const bool text_follows = read_ + 1 < fields_.size() && IsText(read_ + 1);
    if (rest.empty() || Utf::SpaceLength(rest) > 0 || (rest[0] == '"' && text_follows)) return;
    const std::string number(Utf::Trim(used));
    const std::wstring behind = Text::FromBytes(rest);
    const std::wstring_view word = Word(behind);
    oddity_.emplace(
        Oddity{Kind::number_runs_on, read_, ColumnOf(used), "the number ends behind " + number,
               ", and " + Quoted(word) + " is taken for the next field", RunOnHint(number, word)});
  }

  std::string RunOnHint(const std::string& number, std::wstring_view behind) const {
    const std::string in = " in `" + fields_[read_].name + "`? Write ";
    const auto digits =
        static_cast<std::size_t>(std::find_if(behind.begin() + 1, behind.end(),
                                              [](wchar_t c) { return c < L'0' || c > L'9'; }) -
                                 behind.begin());
    if (behind[0] == L',' && fields_[read_].ref.kind != FieldKind::real) {
      return ": a comma separates no fields; type a blank";
    }
    if (behind[0] == L',' && digits > 1) {
      return ": a decimal comma" + in + number + '.' + Text::ToUtf8(behind.substr(1, digits - 1));
    }
    if (behind[0] == L'.') return ": `" + fields_[read_].name + "` takes whole numbers only";
    if (number == "0" && Text::Lower(behind[0]) == L'x') {
      const std::string hex = Text::ToUtf8(behind.substr(1));
      unsigned long long value = 0;
      std::from_chars(hex.data(), hex.data() + hex.size(), value, 16);
      return ": hexadecimal" + in + std::to_string(value);
    }
    if (IsNoBreakSpace(behind[0])) {
      return ": a no-break space (" + CodeOf(behind[0]) + ") separates no fields; type a blank";
    }
    return ": write the number alone, and a blank behind it";
  }

  void LookAtText(std::string_view used, std::string_view before) {
    const std::wstring wide = Text::FromBytes(used);
    const std::wstring_view text = Text::Trim(wide);
    const bool quoted = text.starts_with(L'"');
    const std::size_t length = before.size() < near_limit ? 0 : Text::FromBytes(before).size();
    if (length >= near_limit) {
      TellField(Kind::text_near_limit, read_, ColumnOf(used),
                std::to_string(length) + " characters from this text to the end of the line; " +
                    std::to_string(RowText::max_text_rest + 1) + " can't be read");
    }
    if (quoted && (text.size() == 1 || !text.ends_with(L'"'))) {
      TellField(Kind::quote_not_closed, read_, ColumnOf(used),
                "the quote is never closed, and the text takes in the rest of the line. Close it");
    }
    if (used.find('\0') != used.npos) {
      TellField(Kind::nul_in_text, read_, ColumnOf(used),
                "the text holds a zero (U+0000) and ends there. Remove the zero");
    }
    const auto control = std::find_if(text.begin(), text.end(), [this](wchar_t c) {
      return c != L'\0' && IsControl(c) && !(run_.is_bytewise && c >= 0x80);
    });
    if (control != text.end()) {
      TellField(Kind::control_character, read_, ColumnOf(used),
                "the text holds a character that can't be seen (" + CodeOf(*control) +
                    (*control == L'\t' ? ", a tab" : "") + "). Type a blank in its place");
    }
    if (quoted) return;
    unquoted_ = read_;
    if (text.empty() || !IsOddQuote(text[0])) return;
    oddity_.emplace(Oddity{
        Kind::wrong_quotes, read_, ColumnOf(used),
        "the quotes (" + CodeOf(text[0]) + ") count as letters, and the text is " + Quoted(text),
        "", ". Write the straight ones, \""});
  }

  // A text without quotes may have been meant to go on.
  std::string QuotesHint(std::wstring_view rest) const {
    if (!unquoted_) return "";
    if (*unquoted_ + 1 != read_) {
      return ": is the text in `" + fields_[*unquoted_].name +
             "` one with blanks? Then put it in quotes";
    }
    const std::wstring_view next = Word(rest);
    if (rest.find(L'"') != rest.npos) return ". Is something in front of the quote too much?";
    const std::wstring start = Text::FromBytes(starts_[*unquoted_]);
    return ". A text with blanks? Put it in quotes: \"" + Text::ToUtf8(Word(start)) + ' ' +
           Text::ToUtf8(next) + (next == Text::Trim(rest) ? "" : " ...") + '"';
  }

  void TellExtra(std::string_view rest) {
    if (is_odd_) return;
    const std::wstring wide = Text::FromBytes(rest);
    const std::wstring_view extra = Text::Trim(wide);
    const bool comment = extra.starts_with(L';');
    const std::string what =
        oddity_ ? oddity_->what : "the table has " + std::to_string(fields_.size()) + " fields";
    const std::string hint = comment             ? ""
                             : oddity_           ? oddity_->hint
                             : IsText(read_ - 1) ? QuotesHint(wide)
                                                 : ". Remove it";
    Finding* const finding =
        TellField(oddity_ ? oddity_->kind : Kind::extra_fields, fields_.size() - 1, ColumnOf(rest),
                  what + "; the rest of the line is not read: " + Quoted(extra) + hint);
    if (finding != nullptr && comment) finding->severity = Severity::note;
  }

  // Texts that a line doesn't reach become empty, unlike numbers.
  void EmptyTexts(std::size_t first) {
    for (std::size_t i = first; i < fields_.size(); ++i) {
      if (IsText(i)) *static_cast<wchar_t*>(fields_[i].ref.place) = L'\0';
    }
  }

  // What the fields from here on hold.
  std::string Kept(bool texts_empty) const {
    std::string kept;
    std::string emptied;
    for (std::size_t i = read_; i < fields_.size(); ++i) {
      const bool empty = texts_empty && IsText(i);
      std::string& list = empty ? emptied : kept;
      list += (list.empty() ? "" : ", ") + fields_[i].name + (empty ? "" : " = " + Shown(i));
    }
    if (!kept.empty()) {
      kept.insert(
          0, first_line_ ? "; left at their defaults: " : "; taken over from the line before: ");
    }
    if (!emptied.empty()) kept += "; empty: " + emptied;
    return kept;
  }

  void TellShort() {
    if (run_.findings.IsFull(Kind::short_line, table_.section)) {
      fault_ = Tell(Kind::short_line, "");
      return;
    }
    fault_ = TellField(Kind::short_line, read_, Text::FromBytes(value_).size() + 1,
                       "the line ends here" + Kept(true) + ". Write the row out in full");
  }

  void TellBad(const char* reason, std::string_view line) {
    run_.bad_lines.insert(line_);
    if (run_.findings.IsFull(Kind::bad_line, table_.section)) {
      Tell(Kind::bad_line, "");
      return;
    }
    const std::wstring rest = Text::FromBytes(line);
    std::string message;
    if (reason == nullptr) {
      message = std::to_string(rest.size()) +
                " characters from this text to the end of the line; " +
                std::to_string(RowText::max_text_rest) + " can be read. Shorten the line";
    } else {
      const bool too_large = std::strstr(reason, "out of range") != nullptr;
      message = (too_large ? Quoted(Word(rest)) + " is beyond the numbers that the field can hold"
                           : "no number at " + Quoted(Text::Trim(rest))) +
                HintOf(rest) + " (in the log: '" + reason + "'); the rest of the line is not read";
    }
    message += Kept(false);
    if (reason != nullptr && HintOf(rest).empty()) message += ". Write a number that fits";
    if (table_.container == "tree" && table_.row.size() == 1 && !told_index_) {
      told_index_ = true;
      message += "; as long as a line is bad no name of this table is found";
    }
    fault_ = TellField(Kind::bad_line, read_, ColumnOf(line), std::move(message));
  }

  // Why a number may not have been found.
  std::string HintOf(std::wstring_view rest) const {
    if (oddity_) return oddity_->hint;
    const std::string odd = OddStart(rest);
    return odd.empty() ? QuotesHint(rest) : odd;
  }

  void TellBlank(std::size_t first_of_key) {
    std::string message = "a blank or comment line inside a table is a row";
    if (first_of_key != 0) {
      message += "; it is dropped, having the key of line " + std::to_string(first_of_key);
    } else if (first_line_) {
      message += ", of defaults";
    } else {
      message += ": empty texts, and the numbers of the line before";
    }
    Finding* const finding =
        Tell(Kind::blank_line, message + ". Put it in front of the section or remove it");
    if (finding == nullptr) return;
    finding->other_line = first_of_key;
    if (first_of_key != 0) finding->severity = Severity::note;
  }

  // The line whose row has the key already, or 0.
  std::size_t EnterKey() {
    if (!may_repeat_) return 0;
    std::wstring key = KeyIn(*buffer_);
    const std::size_t before = lines_by_key_.size();
    const auto place = lines_by_key_.try_emplace(lines_by_key_.end(), std::move(key), line_);
    return lines_by_key_.size() > before ? 0 : place->second;
  }

  std::string Shown(std::size_t field) const {
    std::wstring text;
    const TableType::FieldView view{fields_[field].ref.kind, fields_[field].ref.place};
    RowText::Append(text, {&view, 1});
    return IsText(field) ? '"' + Text::ToUtf8(text) + '"' : Text::ToUtf8(text);
  }

  std::string ShownKey() const {
    std::string shown;
    for (std::size_t i = 0; i < buffer_->key.size(); ++i) {
      shown += (shown.empty() ? "" : " ") + Shown(i);
    }
    return shown;
  }

  // ---- ids ----

  int IdIn(const NamedField& field) const { return *static_cast<const int*>(field.ref.place); }

  // Of the fields that the line gave.
  void CheckIds() {
    for (std::size_t i = 0; i < read_; ++i) {
      NamedField& field = fields_[i];
      if (field.id == IdKind::none) {
        if (table_.section == "<TTriggerParam>" && field.name == "dimension") CheckAxis(i);
        continue;
      }
      const int id = IdIn(field);
      if (id == field.known || (id == -1 && !field.at_home)) continue;
      if (CheckRange(i, id) && !field.at_home) CheckKnown(i, id);
    }
    CheckInstrument();
  }

  void CheckAxis(std::size_t i) {
    const int axis = IdIn(fields_[i]);
    const int last = static_cast<int>(CTriggerStore::max_dims());
    if (axis >= 1 && axis <= last) return;
    TellField(Kind::id_out_of_range, i, ColumnOf(starts_[i]),
              "a trigger has the axes 1 to " + std::to_string(last) + "; the row of an axis " +
                  std::to_string(axis) + " is passed over");
  }

  // A relative limit needs its parameter, also where the line doesn't tell it.
  void CheckNeeded() {
    if (table_.section != "<TGrex15>") return;
    const auto i = static_cast<std::size_t>(parameter_ - fields_.data());
    const int id = IdIn(*parameter_);
    if (known_.Knows(IdKind::parameter, id)) return;
    TellField(Kind::unknown_parameter, i, i < read_ ? ColumnOf(starts_[i]) : 0,
              "parameter " + std::to_string(id) +
                  " has no row in <TInstrumentParam>, and the load fails. Add it there or correct "
                  "the id");
  }

  bool CheckRange(std::size_t i, int id) {
    std::string message;
    if (fields_[i].id == IdKind::mode && CQtParamInstance::IsVirtualMode(id)) {
      message = std::to_string(id) +
                " is beyond the test steps, 0 to 2047: it stands for a "
                "virtual one, with the base " +
                std::to_string(CQtParamInstance::VirtMode2BaseMode(id)) + ". Take a lower id";
    } else if (id == -1) {
      message = "-1 stands for no value, so that nothing leads to this row. Take an id from 0 up";
    } else if (fields_[i].id == IdKind::mode && id < 0) {
      message = "a test step below 0 shows no name. Take an id from 0 to 2047";
    } else {
      return true;
    }
    TellField(Kind::id_out_of_range, i, ColumnOf(starts_[i]), std::move(message));
    return false;
  }

  void CheckKnown(std::size_t i, int id) {
    NamedField& field = fields_[i];
    if (table_.section == "<TGrex15>" && field.id == IdKind::parameter) return;  // CheckNeeded
    if (!run_.options.references) return;
    if (field.id == IdKind::polygon_points && polygon_mode_ != nullptr &&
        polygon_mode_ < fields_.data() + read_ && IdIn(*polygon_mode_) == 1) {
      return;
    }
    if (known_.Knows(field.id, id)) {
      field.known = id;
      return;
    }
    const auto& home = TableCatalogue::HomeOf(field.id);
    const bool together = known_.LacksHome(field.id);
    if (together && known_.HomelessOf(field.id).count++ > 0) return;
    Finding* const finding =
        TellField(Kind::unknown_id, i, ColumnOf(starts_[i]),
                  std::string(home.what) + ' ' + std::to_string(id) + " has no row in " +
                      home.section + ". Add it there or correct the id");
    if (together) known_.HomelessOf(field.id).first = finding;
  }

  void CheckInstrument() {
    if (instrument_ == nullptr || parameter_ == nullptr) return;
    const auto last = std::max(instrument_, parameter_);
    if (last >= fields_.data() + read_) return;
    const int instrument = IdIn(*instrument_);
    const int parameter = IdIn(*parameter_);
    if (instrument == -1 || parameter == -1) return;
    const int own = FieldOr(run_.data.Table<L"<TInstrumentParam>">(), parameter,
                            &QVInstrumentParam::instrument, instrument);
    if (own == instrument) return;
    const auto i = static_cast<std::size_t>(instrument_ - fields_.data());
    TellField(Kind::other_instrument, i, ColumnOf(starts_[i]),
              "parameter " + std::to_string(parameter) + " is one of instrument " +
                  std::to_string(own) + ", not of " + std::to_string(instrument) +
                  ". Correct one of the two");
  }

  Run& run_;
  KnownIds& known_;
  const TableInfo& table_;
  std::unique_ptr<RowBuffer> buffer_;
  std::vector<NamedField> fields_;
  const NamedField* instrument_ = nullptr;
  const NamedField* parameter_ = nullptr;
  const NamedField* polygon_mode_ = nullptr;
  bool may_repeat_ = false;  // otherwise each line has made a row
  KeyLines lines_by_key_;

  // of the line at hand
  std::size_t line_ = 0;
  std::string room_;
  std::string_view value_;
  std::vector<std::string_view> starts_;  // of each field
  std::size_t read_ = 0;                  // fields read well
  Finding* fault_ = nullptr;              // that it is bad, short or dropped
  std::optional<std::size_t> unquoted_;   // the last text without quotes
  std::optional<Oddity> oddity_;
  bool is_odd_ = false;  // and that has been told

  bool first_line_ = true;
  bool told_index_ = false;
};

}  // namespace

void CheckRows(Run& run) {
  std::map<const CLake::CNode*, const TableInfo*> sections;
  for (const TableInfo& table : TableCatalogue::Tables()) {
    const auto section = run.lake[Text::FromUtf8(table.section)];
    if (section.exists() && section->is_section()) sections.emplace(&*section, &table);
  }
  KnownIds known(run.data);
  for (const CLake::CNode& node : run.lake) {
    if (!node.is_section()) continue;
    const auto found = sections.find(&node);
    if (found != sections.end()) TableCheck(run, known, *found->second).Check(node);
  }
  known.TellHomeless();
}

KeyLines ReadKeys(Run& run, const TableInfo& table) {
  KeyLines lines;
  const auto section = run.lake[Text::FromUtf8(table.section)];
  if (!table.unique_keys || !section.exists() || !section->is_section()) return lines;
  const auto buffer = table.new_row();
  std::string room;
  for (auto child = section->begin_unnamed(); child != section->end_unnamed(); ++child) {
    std::string_view rest = (*child)->bytes(room);
    RowText::ReadFields(buffer->key, rest);  // what isn't read stays as in the line before
    lines.try_emplace(lines.end(), KeyIn(*buffer), run.lines.Of(**child));
  }
  return lines;
}

}  // namespace kestrin::ParameterCheck
