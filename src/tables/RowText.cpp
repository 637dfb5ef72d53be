#include "tables/RowText.h"

#include <algorithm>
#include <cwchar>
#include <optional>

#include "interfaces/sea/PrWin.h"
#include "interfaces/text/Number.h"
#include "interfaces/text/Text.h"
#include "interfaces/text/Utf.h"

using namespace kestrin;

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

// Room for what a message about a line says besides the line. A file of nothing but bad lines must
// not cost much more than one of good ones, so a message takes one block of memory.
constexpr std::size_t words_of_a_message = 150;

// A zero would end the log's text in the middle of a line.
void AppendWithoutZeros(std::wstring& text, std::wstring_view line) {
  const std::size_t start = text.size();
  text.append(line);
  std::replace(text.begin() + static_cast<std::ptrdiff_t>(start), text.end(), L'\0', L'\xFFFD');
}

}  // namespace

namespace DynTables {

void log_error(const wchar_t* where, const wchar_t* table, const std::wstring& line) {
  std::wstring text;
  text.reserve(line.size() + words_of_a_message);
  text.append(where).append(L": Error reading line '");
  AppendWithoutZeros(text, line);
  text.append(L"' of table '").append(table).append(L"'\n");
  PrWin::Output(text.c_str(), PrWin::category_data_base, PrWin::style_bad_line);
}

}  // namespace DynTables

namespace kestrin::RowText {
namespace {

using TableType::FieldKind;
using TableType::FieldRef;
using TableType::FieldView;

// What the conversion of each number kind says when it fails.
struct FailureTexts {
  const char* no_digits;
  const char* out_of_range;
};
constexpr FailureTexts stoi_texts{"invalid stoi argument", "stoi argument out of range"};
constexpr FailureTexts stoul_texts{"invalid stoul argument", "stoul argument out of range"};
constexpr FailureTexts stol_texts{"invalid stol argument", "stol argument out of range"};
constexpr FailureTexts stoll_texts{"invalid stoll argument", "stoll argument out of range"};
constexpr FailureTexts stof_texts{"invalid stof argument", "stof argument out of range"};

// How much of a line a field has taken, and why not what it takes.
struct Step {
  std::size_t used;
  const char* failure;
};

template <class T, class Scanned>
Step Take(T& field, const Scanned& number, const FailureTexts& texts) {
  if (number.state == Number::State::no_digits) return {0, texts.no_digits};
  if (number.state == Number::State::out_of_range) return {0, texts.out_of_range};
  field = static_cast<T>(number.value);
  return {number.used, nullptr};
}

Step ReadReal(float& field, std::string_view line) {
  const auto number = Number::ScanDouble(line);
  const Number::Scanned<float> rounded{Number::ToFloat(number.value), number.state, number.used};
  return Take(field, rounded, stof_texts);
}

Step ReadKey(QClavis& key, std::string_view line);

Step ReadNumber(const FieldRef& field, std::string_view line) {
  switch (field.kind) {
    case FieldKind::integer:
    case FieldKind::long_int:
      return Take(*static_cast<int*>(field.place), Number::ScanInteger<int>(line),
                  field.kind == FieldKind::integer ? stoi_texts : stol_texts);
    case FieldKind::unsigned_int:
      return Take(*static_cast<unsigned*>(field.place), Number::ScanInteger<unsigned>(line),
                  stoul_texts);
    case FieldKind::long_long:
      return Take(*static_cast<long long*>(field.place), Number::ScanInteger<long long>(line),
                  stoll_texts);
    case FieldKind::real:
      return ReadReal(*static_cast<float*>(field.place), line);
    case FieldKind::key:
      return ReadKey(*static_cast<QClavis*>(field.place), line);
    case FieldKind::text:
      break;
  }
  return {0, nullptr};
}

Step ReadKey(QClavis& key, std::string_view line) {
  const std::size_t size = line.size();
  Step step{0, nullptr};
  for (int& element : key.id) {
    if (line.empty() || step.failure != nullptr) break;
    step = ReadNumber({FieldKind::integer, &element}, line);
    line.remove_prefix(step.used);
  }
  return {size - line.size(), step.failure};
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

void LogFailure(std::string_view reason, std::string_view line) {
  const std::wstring rest = Text::FromBytes(line);
  std::wstring text;
  text.reserve(rest.size() + words_of_a_message);
  text.append(L"Error converting parameter sea to parameter tables: '");
  text.append(reason.begin(), reason.end()).append(L"' for substring '");
  AppendWithoutZeros(text, rest);
  text.append(L"'\n");
  PrWin::Output(text.c_str(), PrWin::category_data_base, PrWin::style_none);
}

}  // namespace

Result ReadFields(std::span<const FieldRef> fields, std::string_view& line) {
  std::string_view rest = line;
  Result result{true, fields.size(), nullptr};
  for (std::size_t i = 0; i < fields.size() && result.ok; ++i) {
    if (fields[i].kind == FieldKind::text) {
      const auto used = ReadText(static_cast<wchar_t*>(fields[i].place), rest);
      rest.remove_prefix(used.value_or(0));
      if (!used) result = {false, i, nullptr};
    } else if (!rest.empty()) {
      const Step step = ReadNumber(fields[i], rest);
      rest.remove_prefix(step.used);
      if (step.failure != nullptr) result = {false, i, step.failure};
    }
  }
  line = rest;
  return result;
}

bool Read(std::span<const FieldRef> fields, std::string_view& line) {
  const Result result = ReadFields(fields, line);
  if (result.reason != nullptr) LogFailure(result.reason, line);
  return result.ok;
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
