#include "tables/RowText.h"

#include <algorithm>
#include <cwchar>
#include <optional>
#include <string_view>

#include "interfaces/sea/PrWin.h"
#include "interfaces/text/Number.h"
#include "interfaces/text/Text.h"
#include "interfaces/text/Utf.h"

using namespace kestrin;
using namespace std::string_view_literals;

namespace TableType {

bool strcopy(wchar_t* dst, const wchar_t* src, unsigned int dst_size) {
  return strcopy(dst, std::wstring_view(src != nullptr ? src : L""), dst_size);
}

bool strcopy(wchar_t* dst, std::wstring_view src, unsigned int dst_size) {
  if (dst_size == 0) return false;
  const bool fits = src.size() < dst_size;
  if (!fits) {
    PrWin::Output(PrWin::category_text_cut, PrWin::style_info,
                  L"TableType::strcopy(): copy truncated because destination string with length %d "
                  L"can't take '%.*s'\n",
                  static_cast<int>(dst_size), static_cast<int>(src.size()), src.data());
  }
  const std::size_t length = fits ? src.size() : dst_size - 1;
  std::wmemmove(dst, src.data(), length);
  dst[length] = L'\0';
  return fits;
}

}  // namespace TableType

namespace {

// A message about a line, made in one block of memory: a file of nothing but bad lines must not
// cost much more than one of good ones.
class Message {
 public:
  explicit Message(std::size_t line_size) { text_.reserve(line_size + words); }

  Message& Add(std::wstring_view text) {
    text_ += text;
    return *this;
  }
  // A zero would end the log's text in the middle of a line.
  Message& Add(std::string_view bytes) {
    const std::size_t start = text_.size();
    text_.resize(start + bytes.size());
    const wchar_t* const end = Utf::Widen(bytes, Utf::lax, text_.data() + start);
    text_.resize(static_cast<std::size_t>(end - text_.data()));
    if (bytes.find('\0') != bytes.npos) std::replace(text_.begin(), text_.end(), L'\0', L'\xFFFD');
    return *this;
  }
  void Output(PrWin::Style style) const { PrWin::Output(text_, PrWin::category_data_base, style); }

 private:
  static constexpr std::size_t words = 150;  // of a message, besides the line

  std::wstring text_;
};

}  // namespace

namespace DynTables {

void log_error(const wchar_t* where, const wchar_t* table, const std::wstring& line) {
  RowText::LogBadLine(where, table, Text::ToBytes(line));
}

}  // namespace DynTables

namespace kestrin::RowText {
namespace {

using TableType::FieldKind;
using TableType::FieldRef;
using TableType::FieldView;

// What the conversion of a number says when it fails; the kinds in their order.
const char* FailureText(FieldKind kind, Number::State state) {
  static constexpr const char* texts[][2] = {
      {"invalid stoi argument", "stoi argument out of range"},
      {"invalid stoul argument", "stoul argument out of range"},
      {"invalid stol argument", "stol argument out of range"},
      {"invalid stoll argument", "stoll argument out of range"},
      {"invalid stof argument", "stof argument out of range"},
  };
  return texts[static_cast<std::size_t>(kind)][state == Number::State::out_of_range ? 1 : 0];
}

// The place behind a number that was read, or else in front of it.
struct Step {
  const char* place;
  Number::State state;
};

template <class T>
Step ReadInteger(void* field, const char* place, const char* end) {
  const auto number = Number::ScanInteger<T>({place, end});
  if (number.state != Number::State::ok) return {place, number.state};
  *static_cast<T*>(field) = number.value;
  return {place + number.used, Number::State::ok};
}

Step ReadReal(float& field, const char* place, const char* end) {
  const auto number = Number::ScanDouble(std::string_view(place, end));
  if (number.state != Number::State::ok) return {place, number.state};
  field = Number::ToFloat(number.value);
  return {place + number.used, Number::State::ok};
}

Step ReadNumber(const FieldRef& field, const char* place, const char* end) {
  switch (field.kind) {
    case FieldKind::integer:
    case FieldKind::long_int:
      return ReadInteger<int>(field.place, place, end);
    case FieldKind::unsigned_int:
      return ReadInteger<unsigned>(field.place, place, end);
    case FieldKind::long_long:
      return ReadInteger<long long>(field.place, place, end);
    case FieldKind::real:
      return ReadReal(*static_cast<float*>(field.place), place, end);
    case FieldKind::key:
    case FieldKind::text:
      break;
  }
  return {place, Number::State::ok};
}

// How much of the line a text takes; nothing if the rest of the line is too long.
std::optional<std::size_t> ReadText(wchar_t* text, std::string_view line) {
  if (line.size() > max_text_rest && Text::FromBytes(line).size() > max_text_rest) return {};
  std::string_view rest = line;
  while (const std::size_t space = Utf::SpaceLength(rest)) rest.remove_prefix(space);
  const bool is_quoted = rest.starts_with('"');
  if (is_quoted) rest.remove_prefix(1);
  std::size_t size = 0;
  if (is_quoted) {
    size = std::min(rest.find('"'), rest.size());
  } else {
    while (size < rest.size() && Utf::SpaceLength(rest.substr(size)) == 0) ++size;
  }
  *Utf::Widen(rest.substr(0, size), Utf::lax, text) = L'\0';
  if (is_quoted && size < rest.size()) ++size;
  return line.size() - rest.size() + size;
}

void AppendField(std::wstring& text, const FieldView& field) {
  switch (field.kind) {
    case FieldKind::integer:
    case FieldKind::long_int:
      return Number::Append(text, *static_cast<const int*>(field.place));
    case FieldKind::unsigned_int:
      return Number::Append(text, *static_cast<const unsigned*>(field.place));
    case FieldKind::long_long:
      return Number::Append(text, *static_cast<const long long*>(field.place));
    case FieldKind::real:
      return Number::Append(text, *static_cast<const float*>(field.place));
    case FieldKind::text:
      text.append(static_cast<const wchar_t*>(field.place),
                  wcsnlen(static_cast<const wchar_t*>(field.place), TableType::text_width));
      return;
    case FieldKind::key:
      AppendRecord(text, *static_cast<const QClavis*>(field.place));
      return;
  }
}

}  // namespace

Result ReadFields(std::span<const FieldRef> fields, std::string_view& line) {
  const char* place = line.data();
  const char* const end = place + line.size();
  Result result{true, fields.size(), nullptr};
  for (std::size_t i = 0; i < fields.size() && result.ok; ++i) {
    const FieldRef& field = fields[i];
    if (field.kind == FieldKind::text) {
      const auto used = ReadText(static_cast<wchar_t*>(field.place), {place, end});
      place += used.value_or(0);
      if (!used) result = {false, i, nullptr};
    } else if (field.kind == FieldKind::key) {
      std::string_view rest(place, end);
      const Result ids = ReadFields(TableType::Refs(*static_cast<QClavis*>(field.place)), rest);
      place = rest.data();
      if (!ids.ok) result = {false, i, ids.reason};
    } else if (place != end) {
      const Step step = ReadNumber(field, place, end);
      place = step.place;
      if (step.state != Number::State::ok) {
        result = {false, i, FailureText(field.kind, step.state)};
      }
    }
  }
  line = {place, end};
  return result;
}

bool Read(std::span<const FieldRef> fields, std::string_view& line) {
  const Result result = ReadFields(fields, line);
  if (result.reason != nullptr) {
    Message(line.size())
        .Add(L"Error converting parameter sea to parameter tables: '"sv)
        .Add(std::string_view(result.reason))
        .Add(L"' for substring '"sv)
        .Add(line)
        .Add(L"'\n"sv)
        .Output(PrWin::style_none);
  }
  return result.ok;
}

void LogBadLine(std::wstring_view where, std::wstring_view table, std::string_view line) {
  Message(line.size())
      .Add(where)
      .Add(L": Error reading line '"sv)
      .Add(line)
      .Add(L"' of table '"sv)
      .Add(table)
      .Add(L"'\n"sv)
      .Output(PrWin::style_bad_line);
}

void Append(std::wstring& text, std::span<const FieldView> fields) {
  bool first = true;
  for (const FieldView& field : fields) {
    if (!first) text.push_back(L' ');
    first = false;
    AppendField(text, field);
  }
}

}  // namespace kestrin::RowText
