#include "RowParser.h"

#include <algorithm>

using namespace kestrin;

namespace benchmarks {

std::vector<TableType::FieldKind> FieldKinds(const TableCatalogue::TableInfo& table) {
  std::vector<TableType::FieldKind> kinds;
  for (const auto* part : {&table.key, &table.row}) {
    for (const auto& field : *part) {
      const bool is_key = field.kind == TableType::FieldKind::key;
      kinds.insert(kinds.end(), is_key ? Clavis::element_count : 1,
                   is_key ? TableType::FieldKind::integer : field.kind);
    }
  }
  return kinds;
}

void AppendWide(std::wstring& wide, std::string_view utf8) {
  const auto is_ascii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  while (!utf8.empty()) {
    const auto other = std::find_if_not(utf8.begin(), utf8.end(), is_ascii);
    // Appending a range of other characters would go through a string of its own.
    const std::size_t size = wide.size();
    wide.resize(size + static_cast<std::size_t>(other - utf8.begin()));
    std::copy(utf8.begin(), other, wide.begin() + static_cast<std::ptrdiff_t>(size));
    const auto ascii = std::find_if(other, utf8.end(), is_ascii);
    if (other != ascii) wide += Text::FromUtf8({other, ascii});
    utf8.remove_prefix(static_cast<std::size_t>(ascii - utf8.begin()));
  }
}

}  // namespace benchmarks
