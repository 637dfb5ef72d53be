#include "inspect/TableCatalogue.h"

#include <algorithm>
#include <sstream>
#include <type_traits>

#include "frame/QtParamStore.h"
#include "interfaces/text/Text.h"
#include "tables/RowText.h"

namespace kestrin::TableCatalogue {
namespace {

template <std::size_t n>
std::string Utf8(const tables::Word<n>& word) {
  return Text::ToUtf8(word.text);
}

std::vector<std::string> Words(const std::string& text) {
  std::vector<std::string> words;
  std::istringstream in(text);
  for (std::string word; in >> word;) words.push_back(word);
  return words;
}

std::string DefaultText(const TableType::FieldView& field) {
  std::wstring text;
  RowText::Append(text, {&field, 1});
  return Text::ToUtf8(text);
}

// The fields of a new record by what its tuple() tells, under the names given.
template <class Record>
std::vector<FieldInfo> Describe(const std::vector<std::string>& names) {
  const Record record;
  std::vector<FieldInfo> fields;
  for (const TableType::FieldView& field : TableType::Refs(record)) {
    fields.push_back({names[fields.size()], field.kind, DefaultText(field)});
  }
  return fields;
}

template <class Record>
std::vector<FieldInfo> DescribeRow() {
  if constexpr (std::is_same_v<Record, QIdxName>)
    return Describe<Record>({"name"});
  else if constexpr (std::is_same_v<Record, QIdx1>)
    return Describe<Record>({"id"});
  else {
    std::vector<std::string> names;
    std::vector<const char*> notes;
    std::apply(
        [&](const auto&... field) {
          (names.emplace_back(field.name), ...);
          (notes.push_back(field.default_note), ...);
        },
        Record::fields());
    std::vector<FieldInfo> fields = Describe<Record>(names);
    for (std::size_t i = 0; i < fields.size(); ++i) {
      if (notes[i] != nullptr) fields[i].default_text = notes[i];
    }
    return fields;
  }
}

struct ContainerInfo {
  const char* name;
  bool unique_keys;
};
template <class K, class V, class Less, class Alloc>
ContainerInfo Container(const CUniqueVectorMap<K, V, Less, Alloc>*) {
  return {"sorted vector", true};
}
template <class K, class V, class Less, class Alloc>
ContainerInfo Container(const CUniqueTreeMap<K, V, Less, Alloc>*) {
  return {"tree", true};
}
template <class K, class V, class Less>
ContainerInfo Container(const CDbMultiMap<K, V, Less>*) {
  return {"multi map", false};
}

template <class Key, class Row>
class TypedRow : public RowBuffer {
 public:
  TypedRow() {
    const auto key_fields = TableType::Refs(key_);
    const auto row_fields = TableType::Refs(row_);
    key.assign(key_fields.begin(), key_fields.end());
    row.assign(row_fields.begin(), row_fields.end());
  }

 private:
  Key key_;
  Row row_;
};

template <class Entry>
TableInfo Describe(int making_place) {
  using Table = typename Entry::Table;
  const ContainerInfo container = Container(static_cast<const Table*>(nullptr));
  return {
      making_place,
      Entry::reading_place,
      Entry::section.text,
      Utf8(Entry::accessor),
      container.name,
      Describe<typename Table::key_type>(Words(Utf8(Entry::key_fields))),
      DescribeRow<typename Table::mapped_type>(),
      container.unique_keys,
      [](const CQtParamStore& store) { return store.Table<Entry::section>().size(); },
      [](const CQtParamStore& store, int limit) { DumpRows(store.Table<Entry::section>(), limit); },
      []() -> std::unique_ptr<RowBuffer> {
        return std::make_unique<TypedRow<typename Table::key_type, typename Table::mapped_type>>();
      }};
}

std::vector<TableInfo> DescribeAll() {
  std::vector<TableInfo> tables;
  tables::All::ForEach([&](auto entry) {
    tables.push_back(Describe<decltype(entry)>(static_cast<int>(tables.size()) + 1));
  });
  std::sort(tables.begin(), tables.end(), [](const TableInfo& a, const TableInfo& b) {
    return a.reading_place < b.reading_place;
  });
  return tables;
}

}  // namespace

const std::vector<TableInfo>& Tables() {
  static const std::vector<TableInfo> tables = DescribeAll();
  return tables;
}

const TableInfo* Find(std::wstring_view section) {
  const auto& all = Tables();
  const auto found = std::find_if(all.begin(), all.end(), [&](const TableInfo& table) {
    const std::wstring_view name(table.section);
    return name == section || name.substr(1, name.size() - 2) == section;
  });
  return found == all.end() ? nullptr : &*found;
}

const char* KindName(TableType::FieldKind kind) {
  // In the order of the enumeration.
  static constexpr const char* names[] = {
      "integer", "unsigned", "long", "long long", "float", "text", "key (6 integers)"};
  const auto index = static_cast<std::size_t>(kind);
  return index < std::size(names) ? names[index] : "";
}

}  // namespace kestrin::TableCatalogue
