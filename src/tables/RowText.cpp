#include "tables/RowText.h"

#include <algorithm>
#include <cwchar>

#include "interfaces/sea/PrWin.h"
#include "interfaces/text/Number.h"
#include "interfaces/text/Text.h"

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

constexpr const char* no_error = nullptr;

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

// Stores a scanned number and takes it off the line, or tells why not.
template <class T, class Scanned>
const char* Take(T& field, const Scanned& number, const FailureTexts& texts,
                 std::wstring_view& line) {
  if (number.state == Number::State::no_digits) return texts.no_digits;
  if (number.state == Number::State::out_of_range) return texts.out_of_range;
  field = static_cast<T>(number.value);
  line.remove_prefix(number.used);
  return no_error;
}

const char* ReadInt(int& field, std::wstring_view& line) {
  if (line.empty()) return no_error;
  return Take(field, Number::ScanInt(line), stoi_texts, line);
}

const char* ReadKey(QClavis& key, std::wstring_view& line) {
  for (int& element : key.id) {
    if (const char* failure = ReadInt(element, line)) return failure;
  }
  return no_error;
}

const char* ReadNumber(const FieldRef& field, std::wstring_view& line) {
  if (line.empty()) return no_error;
  switch (field.kind) {
    case FieldKind::integer:
      return ReadInt(*static_cast<int*>(field.place), line);
    case FieldKind::unsigned_int:
      return Take(*static_cast<unsigned*>(field.place), Number::ScanUnsigned(line), stoul_texts,
                  line);
    case FieldKind::long_int:
      return Take(*static_cast<int*>(field.place), Number::ScanInt(line), stol_texts, line);
    case FieldKind::long_long:
      return Take(*static_cast<long long*>(field.place), Number::ScanLongLong(line), stoll_texts,
                  line);
    case FieldKind::real: {
      const auto number = Number::ScanDouble(line);
      const Number::Scanned<float> rounded{Number::ToFloat(number.value), number.used,
                                           number.state};
      return Take(*static_cast<float*>(field.place), rounded, stof_texts, line);
    }
    case FieldKind::key:
      return ReadKey(*static_cast<QClavis*>(field.place), line);
    case FieldKind::text:
      break;
  }
  return no_error;
}

// False if the rest of the line is too long.
bool ReadText(wchar_t* text, std::wstring_view& line) {
  if (line.size() > max_text_rest) return false;
  const auto first = std::find_if_not(line.begin(), line.end(), Text::IsSpace);
  const bool quoted = first != line.end() && *first == L'"';
  const auto begin = quoted ? first + 1 : first;
  const auto end =
      quoted ? std::find(begin, line.end(), L'"') : std::find_if(begin, line.end(), Text::IsSpace);
  const auto rest = quoted && end != line.end() ? end + 1 : end;
  *std::copy(begin, end, text) = L'\0';
  line.remove_prefix(static_cast<std::size_t>(rest - line.begin()));
  return true;
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

void LogFailure(std::string_view reason, std::wstring_view rest) {
  std::wstring text;
  text.reserve(rest.size() + words_of_a_message);
  text.append(L"Error converting parameter sea to parameter tables: '");
  text.append(reason.begin(), reason.end()).append(L"' for substring '");
  AppendWithoutZeros(text, rest);
  text.append(L"'\n");
  PrWin::Output(text.c_str(), PrWin::category_data_base, PrWin::style_none);
}

}  // namespace

Result ReadFields(std::span<const FieldRef> fields, std::wstring_view& line) {
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (fields[i].kind == FieldKind::text) {
      if (!ReadText(static_cast<wchar_t*>(fields[i].place), line)) return {false, i, nullptr};
    } else if (const char* failure = ReadNumber(fields[i], line)) {
      return {false, i, failure};
    }
  }
  return {true, fields.size(), nullptr};
}

bool Read(std::span<const FieldRef> fields, std::wstring_view& line) {
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
