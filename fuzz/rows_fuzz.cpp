// Rows: the first byte chooses one of the tables and with it the kinds of the fields, the rest is a
// line. What could be read is written, and reads back the same.

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "Fuzz.h"
#include "inspect/TableCatalogue.h"
#include "interfaces/text/Text.h"
#include "tables/RowText.h"

using namespace kestrin;

namespace fuzz {
namespace {

using TableType::FieldKind;

std::vector<TableType::FieldRef> AllFields(const TableCatalogue::RowBuffer& row) {
  std::vector<TableType::FieldRef> fields = row.key;
  fields.insert(fields.end(), row.row.begin(), row.row.end());
  return fields;
}

std::wstring Written(const std::vector<TableType::FieldRef>& fields) {
  std::vector<TableType::FieldView> views;
  for (const auto& field : fields) views.push_back({field.kind, field.place});
  std::wstring line;
  RowText::Append(line, views);
  return line;
}

// Texts go out without quotes, so that a text with blanks, or none, doesn't come back.
bool ComesBack(const TableType::FieldRef& field) {
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
  const std::wstring text = Text::FromUtf8(AsText(bytes.subspan(1)));

  const auto row = table.new_row();
  const auto fields = AllFields(*row);
  std::wstring_view rest = text;
  const RowText::Result result = RowText::ReadFields(fields, rest);
  Require(text.ends_with(rest), "what is left is the end of the line");
  Require(result.field <= fields.size() && result.ok == (result.field == fields.size()),
          "the number of fields read says whether all were");
  std::wstring_view logging = text;
  Require(RowText::Read(AllFields(*table.new_row()), logging) == result.ok,
          "both operations read the same");
  Require((log.logged().lines != 0) == (result.reason != nullptr), "a failed number is logged");

  const std::wstring line = Written(fields);
  if (line.size() > RowText::max_text_rest || !std::ranges::all_of(fields, ComesBack)) return;
  const auto again = table.new_row();
  const auto fields_again = AllFields(*again);
  rest = line;
  Require(RowText::ReadFields(fields_again, rest).ok && rest.empty(),
          "what was written can be read, all of it");
  Require(Written(fields_again) == line, "what reads back the same is written the same");
}

}  // namespace fuzz
