// Rows: the first byte chooses one of the tables and with it the kinds of the fields, the rest is a
// line. A second reader, made of the conversions of the standard library, finds the same fields and
// fails at the same one. What could be read is written, and reads back the same.

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <cwchar>
#include <cwctype>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Fuzz.h"
#include "inspect/TableCatalogue.h"
#include "interfaces/text/Text.h"
#include "tables/RowText.h"

using namespace kestrin;

namespace fuzz {
namespace {

using TableType::FieldKind;
using TableType::FieldRef;

std::vector<FieldRef> AllFields(const TableCatalogue::RowBuffer& row) {
  std::vector<FieldRef> fields = row.key;
  fields.insert(fields.end(), row.row.begin(), row.row.end());
  return fields;
}

// ---- the second reader ----

// What became of a line: the text of a text field's failure is empty.
struct Outcome {
  std::size_t fields = 0;  // read well
  std::optional<std::string> failure;
  std::wstring rest;

  bool operator==(const Outcome&) const = default;
};

template <class T>
T IntegerOf(const std::wstring& line, std::size_t* used) {
  const long long value = std::stoll(line, used);
  if (!std::in_range<T>(value)) throw std::out_of_range("");
  return static_cast<T>(value);
}

// The size is what must fit: that of -1 is 1, though it reads as the largest number.
unsigned UnsignedOf(const std::wstring& line, std::size_t* used) {
  const unsigned long long value = std::stoull(line, used);
  const bool negative = line.find(L'-') < *used;
  if (!std::in_range<unsigned>(negative ? 0 - value : value)) throw std::out_of_range("");
  return static_cast<unsigned>(value);
}

// What a double can hold is in range; beyond the floats it is infinite, or 0.
float FloatOf(const std::wstring& line, std::size_t* used) {
  wchar_t* end = nullptr;
  errno = 0;
  const double value = std::wcstod(line.c_str(), &end);
  if (end == line.c_str()) throw std::invalid_argument("");
  if (errno == ERANGE && (value == 0 || std::isinf(value))) throw std::out_of_range("");
  *used = static_cast<std::size_t>(end - line.c_str());
  return static_cast<float>(value);
}

template <class T>
std::optional<std::string> TakeNumber(void* place, std::wstring& line, const std::string& function,
                                      T (*convert)(const std::wstring&, std::size_t*)) {
  if (line.empty()) return std::nullopt;  // the number stays
  try {
    std::size_t used = 0;
    *static_cast<T*>(place) = convert(line, &used);
    line.erase(0, used);
    return std::nullopt;
  } catch (const std::invalid_argument&) {
    return "invalid " + function + " argument";
  } catch (const std::out_of_range&) {
    return function + " argument out of range";
  }
}

std::optional<std::string> TakeText(wchar_t* text, std::wstring& line) {
  if (line.size() >= 199) return "";
  const auto is_space = [](wchar_t c) { return std::iswspace(static_cast<wint_t>(c)) != 0; };
  while (!line.empty() && is_space(line[0])) line.erase(0, 1);
  const bool quoted = line.starts_with(L'"');
  if (quoted) line.erase(0, 1);
  for (; !line.empty() && (quoted ? line[0] != L'"' : !is_space(line[0])); line.erase(0, 1)) {
    *text++ = line[0];
  }
  if (quoted) line.erase(0, 1);
  *text = L'\0';
  return std::nullopt;
}

std::optional<std::string> Take(const FieldRef& field, std::wstring& line) {
  switch (field.kind) {
    case FieldKind::integer:
      return TakeNumber(field.place, line, "stoi", IntegerOf<int>);
    case FieldKind::unsigned_int:
      return TakeNumber(field.place, line, "stoul", UnsignedOf);
    case FieldKind::long_int:
      return TakeNumber(field.place, line, "stol", IntegerOf<int>);
    case FieldKind::long_long:
      return TakeNumber(field.place, line, "stoll", IntegerOf<long long>);
    case FieldKind::real:
      return TakeNumber(field.place, line, "stof", FloatOf);
    case FieldKind::text:
      return TakeText(static_cast<wchar_t*>(field.place), line);
    case FieldKind::key:
      break;
  }
  std::optional<std::string> failure;
  for (int& id : static_cast<QClavis*>(field.place)->id) {
    if (!failure) failure = TakeNumber(&id, line, "stoi", IntegerOf<int>);
  }
  return failure;
}

Outcome ReadPlainly(const std::vector<FieldRef>& fields, const std::wstring& line) {
  const WideLocale locale;
  Outcome outcome{0, std::nullopt, line};
  for (const FieldRef& field : fields) {
    outcome.failure = Take(field, outcome.rest);
    if (outcome.failure) break;
    ++outcome.fields;
  }
  return outcome;
}

template <class T>
const T& As(const FieldRef& field) {
  return *static_cast<const T*>(field.place);
}

bool Same(const FieldRef& a, const FieldRef& b) {
  if (a.kind == FieldKind::text) return std::wcscmp(&As<wchar_t>(a), &As<wchar_t>(b)) == 0;
  if (a.kind == FieldKind::key) return std::ranges::equal(As<QClavis>(a).id, As<QClavis>(b).id);
  if (a.kind == FieldKind::long_long) return As<long long>(a) == As<long long>(b);
  if (a.kind == FieldKind::real && std::isnan(As<float>(a)) && std::isnan(As<float>(b)))
    return true;
  return std::memcmp(a.place, b.place, sizeof(int)) == 0;  // 0 and -0 differ
}

// ---- the library's ----

Outcome Read(const std::vector<FieldRef>& fields, std::wstring_view line) {
  const std::string bytes = Text::ToBytes(line);
  std::string_view rest = bytes;
  const RowText::Result result = RowText::ReadFields(fields, rest);
  Outcome outcome{result.field, std::nullopt, Text::FromBytes(rest)};
  if (!result.ok) outcome.failure = result.reason != nullptr ? result.reason : "";
  return outcome;
}

std::wstring Written(const std::vector<FieldRef>& fields) {
  std::vector<TableType::FieldView> views;
  for (const auto& field : fields) views.push_back({field.kind, field.place});
  std::wstring line;
  RowText::Append(line, views);
  return line;
}

// Texts go out without quotes, so that a text with blanks, or none, doesn't come back.
bool ComesBack(const FieldRef& field) {
  if (field.kind != FieldKind::text) return true;
  const std::wstring_view text(static_cast<const wchar_t*>(field.place));
  return !text.empty() && text.front() != L'"' &&
         std::none_of(text.begin(), text.end(), Text::IsSpace);
}

}  // namespace

void Rows(Bytes bytes) {
  if (bytes.empty()) return;
  const QuietLog log;
  const auto& tables = TableCatalogue::Tables();
  const auto& table = tables[bytes[0] % tables.size()];
  std::string_view any_bytes = AsText(bytes.subspan(1));
  const std::wstring text = Text::FromBytes(any_bytes);

  const auto row = table.new_row();
  const auto plain_row = table.new_row();
  const auto fields = AllFields(*row);
  const auto plain_fields = AllFields(*plain_row);
  std::wstring sevens;  // what no new row holds, so that a field that keeps its value shows it
  for (int i = 0; i < 64; ++i) sevens += L"7 ";
  ReadPlainly(fields, sevens);
  ReadPlainly(plain_fields, sevens);
  const Outcome outcome = Read(fields, text);
  Require(outcome == ReadPlainly(plain_fields, text), "the second reader gets as far");
  Require(std::ranges::equal(fields, plain_fields, Same), "the second reader reads the same");
  const std::string line_bytes = Text::ToBytes(text);
  std::string_view logging = line_bytes;
  Require(RowText::Read(AllFields(*table.new_row()), logging) == !outcome.failure,
          "both operations read the same");
  Require((log.logged().lines != 0) == !outcome.failure.value_or("").empty(),
          "a failed number is logged");

  static_cast<void>(RowText::ReadFields(AllFields(*table.new_row()), any_bytes));

  const std::wstring line = Written(fields);
  if (line.size() > RowText::max_text_rest || !std::ranges::all_of(fields, ComesBack)) return;
  const auto again = table.new_row();
  const auto fields_again = AllFields(*again);
  const Outcome outcome_again = Read(fields_again, line);
  Require(!outcome_again.failure && outcome_again.rest.empty(),
          "what was written can be read, all of it");
  Require(Written(fields_again) == line, "what reads back the same is written the same");
}

}  // namespace fuzz
