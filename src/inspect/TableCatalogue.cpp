#include "inspect/TableCatalogue.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <sstream>
#include <type_traits>
#include <utility>

#include "frame/QtParamDerived.h"
#include "frame/QtParamDistillery.h"
#include "interfaces/text/Text.h"
#include "tables/RowText.h"

namespace kestrin::TableCatalogue {
namespace {

using TableType::FieldKind;
using TableType::FieldView;

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

std::string DefaultText(const FieldView& field) {
  std::wstring text;
  RowText::Append(text, {&field, 1});
  return Text::ToUtf8(text);
}

// The fields of a record; some that a load derives are no records of a table.
template <class Record>
auto FieldsOf(const Record& record) {
  return TableType::Refs(record);
}
std::array<FieldView, 2> FieldsOf(const std::pair<int, int>& ids) {
  return {{{FieldKind::integer, &ids.first}, {FieldKind::integer, &ids.second}}};
}
std::array<FieldView, 2> FieldsOf(const CVPoint& point) {
  return {{{FieldKind::real, &point.x}, {FieldKind::real, &point.y}}};
}
std::array<FieldView, 3> FieldsOf(const CVIpSvTrackPolygon& polygon) {
  return {{{FieldKind::integer, &polygon.track_a},
           {FieldKind::integer, &polygon.track_c},
           {FieldKind::integer, &polygon.polygon_id}}};
}
std::array<FieldView, 3> FieldsOf(const QVIpSvOfSpec& record) {
  return {{{FieldKind::integer, &record.interpretation},
           {FieldKind::text, record.definition != nullptr ? record.definition : L""},
           {FieldKind::integer, &record.reference}}};
}

// The fields of a new record under the names given.
template <class Record>
std::vector<FieldInfo> Describe(const std::vector<std::string>& names) {
  const Record record{};
  std::vector<FieldInfo> fields;
  for (const FieldView& field : FieldsOf(record)) {
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

// The fields that hold ids, of one table or, without a section, of all that have a field so named.
struct IdField {
  const char* section;
  const char* name;
  IdKind kind;
};
constexpr IdField id_fields[] = {
    {"<TChannelInheritance>", "ref", IdKind::channel},
    {"<TVirtual2PhysGear>", "ref", IdKind::phys_gear},
    {"<TSpeedSource>", "ref", IdKind::sensor},
    {"<TRotorSpeedSource>", "ref", IdKind::speed_source},
    {"<TOrderSource2Rotor>", "ref", IdKind::rotor},
    {"<TRetype>", "ref", IdKind::type},
    {"<TModeTranslate>", "id", IdKind::mode},
    {nullptr, "mode", IdKind::mode},
    {nullptr, "instrument", IdKind::instrument},
    {nullptr, "channel", IdKind::channel},
    {nullptr, "location", IdKind::location},
    {nullptr, "parameter", IdKind::parameter},
    {nullptr, "sensor", IdKind::sensor},
    {nullptr, "signal", IdKind::sensor},
    {nullptr, "phys_mode", IdKind::phys_mode},
    {nullptr, "trigger", IdKind::trigger},
    {nullptr, "speed_source", IdKind::speed_source},
    {nullptr, "rotor", IdKind::rotor},
    {nullptr, "phys_gear", IdKind::phys_gear},
    {nullptr, "sensor_group", IdKind::sensor_group},
    {nullptr, "type", IdKind::type},
    {nullptr, "polygon", IdKind::polygon},
    {nullptr, "polygon_id", IdKind::polygon_points},
};

void TellIds(const std::string& section, std::vector<FieldInfo>& fields) {
  for (FieldInfo& field : fields) {
    const auto* const found =
        std::find_if(std::begin(id_fields), std::end(id_fields), [&](const IdField& ids) {
          return field.name == ids.name && (ids.section == nullptr || section == ids.section);
        });
    if (found != std::end(id_fields)) field.id = found->kind;
  }
}

void AddColumns(std::vector<FieldInfo>& columns, const std::vector<FieldInfo>& fields) {
  for (const FieldInfo& field : fields) {
    if (field.kind != FieldKind::key) {
      columns.push_back(field);
      continue;
    }
    auto ids = Describe<QClavis>(Words(Utf8(tables::clavis)));
    TellIds("", ids);
    for (FieldInfo& id : ids) {
      id.name.insert(0, field.name + "_");
      columns.push_back(std::move(id));
    }
  }
}

void AddValue(std::vector<FieldView>& values, const FieldView& field) {
  if (field.kind != FieldKind::key) return values.push_back(field);
  for (const FieldView& id : FieldsOf(*static_cast<const QClavis*>(field.place))) {
    values.push_back(id);
  }
}

// `rows_of` finds the rows in a data base, and is the same for every one.
template <class RowsOf>
RowsInfo DescribeRows(std::string section, std::vector<FieldInfo> key, std::vector<FieldInfo> row,
                      bool unique_keys, RowsOf) {
  TellIds(section, key);
  TellIds(section, row);
  std::vector<FieldInfo> columns;
  AddColumns(columns, key);
  const std::size_t key_columns = columns.size();
  AddColumns(columns, row);
  const bool completed = section == "<TGrex15>";
  return {std::move(section),
          std::move(key),
          std::move(row),
          unique_keys,
          unique_keys && !completed,
          std::move(columns),
          key_columns,
          [](const CQtParamDistillery& data) { return RowsOf()(data).size(); },
          [](const CQtParamDistillery& data, const RowVisitor& visit) {
            std::vector<FieldView> values;
            for (const auto& [row_key, row_values] : RowsOf()(data)) {
              values.clear();
              for (const FieldView& field : FieldsOf(row_key)) AddValue(values, field);
              for (const FieldView& field : FieldsOf(row_values)) AddValue(values, field);
              visit(values);
            }
          }};
}

template <class Entry>
TableInfo Describe(int making_place) {
  using Table = typename Entry::Table;
  const ContainerInfo container = Container(static_cast<const Table*>(nullptr));
  return {
      DescribeRows(Utf8(Entry::section),
                   Describe<typename Table::key_type>(Words(Utf8(Entry::key_fields))),
                   DescribeRow<typename Table::mapped_type>(), container.unique_keys,
                   [](const CQtParamDistillery& data) -> const Table& {
                     return data.Table<Entry::section>();
                   }),
      making_place,
      Entry::reading_place,
      Utf8(Entry::accessor),
      container.name,
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

template <class RowsOf>
RowsInfo DescribeDerived(const char* section, const std::string& key, const std::string& row,
                         RowsOf rows_of) {
  using Rows = std::remove_cvref_t<decltype(rows_of(std::declval<const CQtParamDerived&>()))>;
  return DescribeRows(
      section, Describe<typename Rows::key_type>(Words(key)),
      Describe<typename Rows::mapped_type>(Words(row)), true,
      [](const CQtParamDistillery& data) -> const Rows& { return RowsOf()(data.Derived()); });
}

std::vector<RowsInfo> DescribeAllDerived() {
  using Derived = CQtParamDerived;
  const std::string clavis = Utf8(tables::clavis);
  return {DescribeDerived(
              "<PiBaseChannelId>", "mode channel", "ref flags",
              [](const Derived& d) -> auto& { return d.ChannelInfo().BaseChannels(); }),
          DescribeDerived(
              "<PiSpecIntervalStore>", "parameter index",
              "lower_frequency lower_order lower_harmonic lower_modulation lower_lines "
              "upper_frequency upper_order upper_harmonic upper_modulation upper_lines",
              [](const Derived& d) -> auto& { return d.SpecIntervals().Intervals(); }),
          DescribeDerived(
              "<PiRotor2OrderSources>", "phys_mode speed_source rotor number", "ref",
              [](const Derived& d) -> auto& { return d.RotorInfo().OrderSources(); }),
          DescribeDerived(
              "<IpTrackPolygon>", clavis, "track_a track_c polygon_id",
              [](const Derived& d) -> auto& { return d.GrexInfo().IpTrackPolygon; }),
          DescribeDerived(
              "<IpPolygonValues>", "polygon point", "x y",
              [](const Derived& d) -> auto& { return d.GrexInfo().IpPolygonValues; }),
          DescribeDerived(
              "<IpSvOfSpec>", "parameter", "interpretation definition reference",
              [](const Derived& d) -> auto& { return d.SpecIntervals().IpSvOfSpec(); })};
}

template <class Info>
const Info* FindIn(const std::vector<Info>& all, std::string_view section) {
  const auto found = std::find_if(all.begin(), all.end(), [&](const Info& info) {
    const std::string_view name(info.section);
    return name == section || name.substr(1, name.size() - 2) == section;
  });
  return found == all.end() ? nullptr : &*found;
}

}  // namespace

std::vector<FieldView> RowBuffer::Columns() const {
  std::vector<FieldView> columns;
  for (const auto* fields : {&key, &row}) {
    for (const auto& field : *fields) AddValue(columns, {field.kind, field.place});
  }
  return columns;
}

const std::vector<TableInfo>& Tables() {
  static const std::vector<TableInfo> tables = DescribeAll();
  return tables;
}

const std::vector<RowsInfo>& DerivedTables() {
  static const std::vector<RowsInfo> derived = DescribeAllDerived();
  return derived;
}

const TableInfo* Find(std::string_view section) { return FindIn(Tables(), section); }

const RowsInfo* FindRows(std::string_view section) {
  const RowsInfo* const table = Find(section);
  return table != nullptr ? table : FindIn(DerivedTables(), section);
}

const IdHome& HomeOf(IdKind kind) {
  // In the order of the enumeration.
  static constexpr IdHome homes[] = {
      {"test step", "<TMode>", 0},
      {"instrument", "<TInstrument>", 0},
      {"channel", "<TChannel>", 0},
      {"object", "<TLocation>", 0},
      {"parameter", "<TInstrumentParam>", 0},
      {"signal", "<TApplicationSignal>", 0},
      {"physical mode", "<TPhysMode>", 0},
      {"trigger", "<TTrigger>", 0},
      {"speed source", "<TSpeedSource>", 0},
      {"rotor", "<TRotorSpeed>", 1},
      {"physical gear", "<TBaseOrder>", 0},
      {"sensor group", "<TSensorGroup>", 0},
      {"test type", "<TAliasType>", 0},
      {"polygon", "<TIpPolygon>", 0},
      {"polygon", "<TIpPolygonValue>", 0},
  };
  static_assert(std::size(homes) == static_cast<std::size_t>(IdKind::none));
  return homes[static_cast<std::size_t>(kind)];
}

const RowsInfo* NamesOf(IdKind kind) {
  if (kind == IdKind::none) return nullptr;
  if (kind == IdKind::polygon_points) kind = IdKind::polygon;
  const RowsInfo* const home = Find(HomeOf(kind).section);
  return NameColumn(*home) ? home : nullptr;
}

std::optional<std::size_t> NameColumn(const RowsInfo& info) {
  const auto& columns = info.columns;
  const auto is_name = [](const FieldInfo& column) { return column.name == "name"; };
  const auto name = std::find_if(columns.begin(), columns.end(), is_name);
  if (info.key_columns != 1 || name == columns.begin() || name == columns.end()) return {};
  return static_cast<std::size_t>(name - columns.begin());
}

const char* KindName(TableType::FieldKind kind) {
  // In the order of the enumeration.
  static constexpr const char* names[] = {
      "integer", "unsigned", "long", "long long", "float", "text", "key (6 integers)"};
  static_assert(std::size(names) == static_cast<std::size_t>(FieldKind::key) + 1);
  const auto index = static_cast<std::size_t>(kind);
  return index < std::size(names) ? names[index] : "";
}

Value ValueOf(const FieldView& column) {
  switch (column.kind) {
    case FieldKind::integer:
    case FieldKind::long_int:
      return static_cast<long long>(*static_cast<const int*>(column.place));
    case FieldKind::unsigned_int:
      return static_cast<long long>(*static_cast<const unsigned*>(column.place));
    case FieldKind::long_long:
      return *static_cast<const long long*>(column.place);
    case FieldKind::real:
      return *static_cast<const float*>(column.place);
    case FieldKind::text:
    case FieldKind::key:
      break;
  }
  std::wstring text;
  RowText::Append(text, {&column, 1});
  return Text::ToUtf8(text);
}

std::string ToText(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  std::array<char, 32> digits;
  char* end = digits.data() + digits.size();
  if (const auto* number = std::get_if<float>(&value)) {
    if (std::isnan(*number)) return "nan";  // whatever its sign
    // Left to itself, to_chars prefers "1e+05" to "100000", since it is shorter.
    const float size = std::abs(*number);
    const bool is_plain = size == 0 || (size >= 1e-4F && size < 1e7F);
    end = is_plain ? std::to_chars(digits.data(), end, *number, std::chars_format::fixed).ptr
                   : std::to_chars(digits.data(), end, *number).ptr;
  } else {
    end = std::to_chars(digits.data(), end, std::get<long long>(value)).ptr;
  }
  return {digits.data(), end};
}

}  // namespace kestrin::TableCatalogue
