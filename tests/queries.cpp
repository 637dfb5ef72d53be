#include "queries.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <list>
#include <sstream>
#include <utility>
#include <vector>

#include "frame/QtParamDistillery.h"
#include "frame/strings/ModuleStrings.h"
#include "inspect/TableCatalogue.h"
#include "interfaces/signal/MeasuringUnit.h"
#include "interfaces/text/Number.h"
#include "interfaces/windows/ComboBoxX.h"
#include "spec/QtSpecInterval.h"
#include "spec/QtSpecIntervalStore.h"
#include "tables/RowText.h"
#include "trigger/TriggerStore.h"

using namespace kestrin;

namespace queries {
namespace {

using P = CQtParamInstance;
using Name = const wchar_t*;
using Map = std::multimap<std::string, Query>;

std::string Show(bool yes) { return yes ? "true" : "false"; }
std::string Show(const std::wstring& text) { return '"' + Text::ToUtf8(text) + '"'; }
std::string Show(Name text) { return text == nullptr ? "null" : Show(std::wstring(text)); }
std::string Show(const std::string& answer) { return answer; }
std::string Show(const char* answer) { return answer; }

template <class Number>
requires std::is_arithmetic_v<Number> std::string Show(Number number) {
  char digits[32];  // a float has the fewest that read back the same
  return {digits, std::to_chars(digits, digits + sizeof digits, number).ptr};
}

template <class... Value>
std::string Join(const Value&... values) {
  std::string joined;
  ((joined += (joined.empty() ? "" : " ") + Show(values)), ...);
  return joined;
}

template <class Rows, class ShowRow>
std::string JoinRows(const Rows& rows, ShowRow show) {
  std::string joined;
  for (const auto& row : rows) joined += (joined.empty() ? "" : ", ") + show(row);
  return joined;
}

// Key and row, as a dump shows them.
constexpr auto row_text = [](const auto& row) {
  std::wstring text;
  RowText::AppendRecord(text, row.first);
  RowText::AppendRecord(text += L' ', row.second);
  return Text::ToUtf8(text);
};

template <class Iterator>
std::string Show(const std::pair<Iterator, Iterator>& range) {
  return JoinRows(std::vector<std::iter_value_t<Iterator>>(range.first, range.second), row_text);
}

// What two forms of one operation give, which mostly is the same.
std::string Same(const std::string& one, const std::string& other) {
  return one == other ? one : one + " or " + other;
}
std::string Same(const std::wstring& one, const std::wstring& other) {
  return Same(Show(one), Show(other));
}

template <class... A, class Ask>
Query Make(bool changes, Ask ask) {
  return {{(std::is_same_v<A, Name> ? 't' : 'n')...}, changes, [ask](P& params, Arguments words) {
            return [&]<std::size_t... i>(std::index_sequence<i...>) {
              return Show(ask(params, static_cast<A>(words[i])...));
            }
            (std::index_sequence_for<A...>());
          }};
}

template <class R, class... A>
Query Of(R (P::*query)(A...) const) {
  return Make<A...>(false, [query](const P& p, A... a) { return (p.*query)(a...); });
}
template <class R, class... A>
Query Of(R (*query)(A...)) {
  return Make<A...>(false, [query](const P&, A... a) { return query(a...); });
}
template <class R, class... A>
Query Of(R (*query)(const P&, A...)) {
  return Make<A...>(false, query);
}
template <class R, class... A>
Query Of(R (*query)(P&, A...)) {
  return Make<A...>(true, query);
}

// The compiler knows what an operation is called.
template <auto query>
std::string NameOf() {
  std::string_view name = __PRETTY_FUNCTION__;
  name = name.substr(0, name.find_first_of(";]", name.find("query = ")));
  return std::string(name.substr(name.rfind("::") + 2));
}

template <auto... query>
void Add(Map& map) {
  (map.emplace(NameOf<query>(), Of(query)), ...);
}

// So many numbers of a text: "1 10 1".
std::vector<int> Ids(Name text, std::size_t count, int otherwise = -1) {
  std::istringstream numbers(text == nullptr ? "" : Text::ToUtf8(text));
  std::vector<int> ids(std::istream_iterator<int>(numbers), {});
  ids.resize(count, otherwise);
  return ids;
}

QClavis Key(Name text) {
  QClavis key;
  const std::vector<int> ids = Ids(text, Clavis::element_count);
  std::copy(ids.begin(), ids.end(), key.id);
  return key;
}

std::string ShowKey(const QClavis& key) {
  return Join(key[0], key[1], key[2], key[3], key[4], key[5]);
}

std::string Unit(const CMeasuringUnit& unit) {
  if (unit.Factor() != 1.0F || unit.Offset() != 0) return "scaled";
  return Join(static_cast<int>(unit.Unit()), unit.Prefix(), unit.Power(), unit.prefixunit(false));
}

template <class T>
std::string ShowScanned(const Number::Scanned<T>& number) {
  static const char* const states[] = {"", " no digits", " out of range"};
  return Join(number.value, number.used) + states[static_cast<int>(number.state)];
}

// A line that a field of this kind reads: its value then, what is left of the line, a failure.
std::string Field(unsigned kind, Name line) {
  int integer = 77;
  unsigned positive = 77;
  int long_int = 77;
  long long long_long = 77;
  float real = 77;
  wchar_t text[TableType::text_width] = L"old";
  QClavis key{7, 7, 7, 7, 7, 7};
  void* const places[] = {&integer, &positive, &long_int, &long_long, &real, text, &key};
  kind %= static_cast<unsigned>(std::size(places));
  const TableType::FieldRef field{static_cast<TableType::FieldKind>(kind), places[kind]};
  const std::string bytes = Text::ToBytes(line);
  std::string_view rest = bytes;
  const RowText::Result result = RowText::ReadFields({&field, 1}, rest);
  std::wstring value;
  const TableType::FieldView view{field.kind, field.place};
  RowText::Append(value, {&view, 1});
  const std::string failure = result.reason == nullptr ? "" : std::string(" ") + result.reason;
  return Join(Text::ToUtf8(value), Text::FromBytes(rest)) + (result.ok ? "" : failure);
}

using Definition = QVSpecIntervalEntry::Definition;

std::string Interpret(Name definition, unsigned room) {
  room = std::min(room, 99U);
  std::vector<Definition> positions(room);
  const auto [count, error] = OrderInterpreter::Interpret(definition, positions.data(), room);
  if (error.reason != OrderInterpreter::Reason::none) {
    return Join(error.position, std::wstring(error.letter == 0 ? 0 : 1, error.letter), error.offset,
                OrderInterpreter::ReasonText(error.reason));
  }
  positions.resize(count);
  return JoinRows(positions, [](const Definition& position) {
    std::wstring text;
    RowText::AppendRecord(text, position);
    return Join(Text::ToUtf8(text), static_cast<int>(position.domain()));
  });
}

// The bounds and lines of an interval for an assembly in a test step.
std::string IndexRange(const P& params, int mode, int speed_source, int assembly, Name definition,
                       unsigned lines, float resolution, float scale) {
  Definition bounds[2];
  const unsigned count = OrderInterpreter::GetSpecPositions(definition, bounds, 2);
  CQtSpecInterval evaluation(params);
  evaluation.LoadTransformParams(mode, speed_source, assembly);
  CQtSpecInterval::IndexInterval lines_in{-7, -7, 7, 7};
  const QVSpecIntervalEntry entry(bounds[0], bounds[count == 2 ? 1 : 0]);
  const auto result = evaluation.IndexRange(entry, lines_in, lines, resolution, scale);
  const auto& [start, stop, first, last] = lines_in;
  static const std::string results[] = {"ok", "beyond", "no base order", "no ratio", "invalid"};
  if (result != 0 && start == -7 && stop == -7 && first == 7 && last == 7) return results[result];
  return Join(results[result], start, stop, first, last);
}

// Of pairs of bounds: the lines next to them, cut out of the first.
std::string CutOut(P& /*asked for sound bounds only*/, Name bounds) {
  std::istringstream words(Text::ToUtf8(bounds));
  std::vector<CQtSpecInterval::IndexInterval> intervals;
  const auto line = [](double bound) {
    return static_cast<unsigned>(std::clamp(bound + 0.5, 0.0, 4294967295.0));
  };
  for (double start = 0, stop = 0; words >> start >> stop;) {
    intervals.push_back(
        {static_cast<float>(start), static_cast<float>(stop), line(start), line(stop)});
  }
  CQtSpecInterval::InvertIndexIntervalCollection(intervals);
  return JoinRows(intervals, [](const auto& piece) {
    const auto& [start, stop, first, last] = piece;
    return Join(start, stop, first, last);
  });
}

// How many intervals a host reads from a definition of so many positions at most, and the last.
std::string Range(P& /*logs each time*/, Name definition, unsigned most) {
  std::vector<QVSpecIntervalEntry> ranges(16);
  const unsigned count = CQtSpecIntervalStore::Range(definition, ranges.data(), most);
  if (count == 0) return "none";
  std::wstring last;
  RowText::AppendRecord(last, ranges[count - 1]);
  return Join(count, Text::ToUtf8(last));
}

// ---- triggers: by their rows, or by their axes where that differs ----

using Triggers = CTriggerStore;
constexpr std::int64_t untouched = 4711;

// "3 - 0": values of the dimensions 0 and 2.
Triggers::CDimensions Values(Name text) {
  Triggers::CDimensions values;
  std::istringstream words(text == nullptr ? "" : Text::ToUtf8(text));
  std::string word;
  for (unsigned dim = 0; dim < Triggers::dimensions_d && words >> word; ++dim) {
    values.is_set[dim] = word != "-";
    values.value[dim] = Number::ToFloat(Number::ScanDouble(Text::FromUtf8(word)).value);
  }
  return values;
}

std::string ShowValues(const Triggers::CDimensions& values) {
  std::string text;
  for (unsigned dim = 0; dim < Triggers::dimensions_d; ++dim) {
    text += (dim == 0 ? "" : " ") + (values.is_set[dim] ? Show(values.value[dim]) : "-");
  }
  return text;
}

// "3 0 0 1": the indexes of a cell, dimension 0 first.
std::int64_t CellOf(Name indexes) {
  const auto ids = Ids(indexes, Triggers::dimensions_d, 0);
  std::uint64_t cell = 0;
  for (auto id = ids.rbegin(); id != ids.rend(); ++id) cell = cell << 16 | (*id & 0xFFFF);
  return static_cast<std::int64_t>(cell);
}

std::string ShowCell(bool found, std::int64_t cell) {
  if (!found) return cell == untouched ? "none" : "changed";
  const auto index = [cell](int dim) { return static_cast<std::uint16_t>(cell >> (16 * dim)); };
  return Join(index(0), index(1), index(2), index(3));
}

std::string Axes(const P& params, int mode, int trigger) {
  const Triggers store(params);
  unsigned mask = 0;
  Triggers::CIntervals axes;
  if (store.dimensions(mode, trigger, mask) != store.field(mode, trigger, axes)) return "differ";
  std::string text =
      Join(store.dimension(mode, trigger), Same(Show(mask), Show(axes.is_set.to_ulong())));
  for (unsigned dim = 0; dim < Triggers::dimensions_d; ++dim) {
    Triggers::CInterval axis;
    if (!store.field(mode, trigger, dim, axis)) continue;
    text += ", " + Join(axis.start(), axis.stop(), axis.step(), axis.len(), axis.raising());
  }
  return text;
}

std::string Cell(const P& params, int mode, int trigger, Name values, bool clamp) {
  const Triggers store(params);
  Triggers::CIntervals axes;
  std::int64_t by_rows = untouched;
  std::int64_t by_axes = untouched;
  const bool found = store.cell(mode, trigger, Values(values), by_rows, clamp);
  const bool has_cell =
      store.field(mode, trigger, axes) && Triggers::cell(axes, Values(values), by_axes, clamp);
  return Same(ShowCell(found, by_rows), ShowCell(has_cell, by_axes));
}

std::string Edges(const P& params, int mode, int trigger, Name indexes) {
  const Triggers store(params);
  Triggers::CDimensions rows;
  Triggers::CDimensions axes;
  for (unsigned dim = 0; dim < Triggers::dimensions_d; ++dim) {
    Triggers::CInterval axis;
    rows.is_set[dim] = store.position(mode, trigger, CellOf(indexes), dim, rows.value[dim]);
    axes.is_set[dim] = store.field(mode, trigger, dim, axis) &&
                       Triggers::position(axis, CellOf(indexes), dim, axes.value[dim]);
  }
  return Same(ShowValues(rows), ShowValues(axes));
}

std::string Places(const P& params, int mode, int trigger, Name indexes, Name offset) {
  const Triggers store(params);
  Triggers::CIntervals intervals;
  Triggers::CDimensions rows;
  Triggers::CDimensions axes;
  const bool found = store.position(mode, trigger, CellOf(indexes), CellOf(offset), rows);
  if (store.field(mode, trigger, intervals) != found) return "differ";
  Triggers::position(intervals, CellOf(indexes), CellOf(offset), axes);
  if (axes.is_set.all()) axes.is_set = rows.is_set;
  return Same(ShowValues(rows), ShowValues(axes));
}

std::string ShowRows(const P& params, Name section) {
  std::vector<std::string> rows;
  const auto* const table = TableCatalogue::FindRows(Text::ToUtf8(section));
  if (table == nullptr) return "no table";
  table->walk(params.Store(), [&rows](const auto& columns) {
    std::wstring text;
    RowText::Append(text, columns);
    rows.push_back(Text::ToUtf8(text));
  });
  return JoinRows(rows, [](const std::string& row) { return row; });
}

Map MakeAll() {
  Map all;
  Add<&P::Initialized, &P::BaseType, &P::AliasType, &P::CalibFileName, &P::LearnFileName,
      &P::ModeName, &P::ModeId, &P::IsValidMode, &P::PhysModeName, &P::IsValidPhysMode,
      &P::ChannelName, &P::ChannelId, &P::IsValidChannel, &P::LocationName, &P::LocationId,
      &P::IsValidLocation, &P::InstrumentName, &P::InstrumentId, &P::IsValidInstrument,
      &P::ApplicationSignalName, &P::ApplicationSignalId, &P::IsValidApplicationSignal,
      &P::SensorGroupName, &P::SensorGroupId, &P::ResamplingJobName, &P::ResamplingJobId,
      &P::ResamplingSetName, &P::ResamplingSetId, &P::TypeAliasName, &P::TypeAliasId,
      &P::BenchAliasName, &P::BenchAliasId, &P::InstrumentParamName, &P::InstrumentParamId,
      &P::TriggerName, &P::LocationPropertyFlag, &P::TimeSignalId, &P::IsVirtualMode,
      &P::VirtMode2BaseMode, &P::VirtModeGenerateId, &P::VirtModeDigit, &P::VirtModeName,
      &P::ModeIsHidden, &P::ResultType, &P::IsSingleValueInstrument, &P::IsTrackInstrument,
      &P::IsSpectrumInstrument, &P::Is2dDataInstrument, &P::ScalarInstrumentToTrackInstrument,
      &P::TrackInstrumentToScalarInstrument, &P::InstrumentParameterToInstrument, &P::ParentChannel,
      &P::BaseChannel, &P::ChannelFlags, &P::ChannelResamplingType, &P::ChannelIsSync,
      &P::ChannelIsMix, &P::ChannelIsFix, &P::PhysicalGear, &P::OrderSource2Rotor,
      &P::RotorSpeedSource, &P::RotorSpeedSourceAppId, &P::SpeedInfoOfRotor, &P::BaseOrder,
      &P::FrequencyRatioToGeneratingRotor, &P::RotorFrequencyRelativeToSpeedSourceRotor,
      &P::OrderSourceRange, &P::SpecIntervalRange, &P::SpecIntervalDefinition,
      &QVIpCalcParameter::GetCalcParamEnumText, &QVIpCalcParameter::GetCalcParamEnumSubText>(all);
  const auto add = [&all](const char* name, auto query) { all.emplace(name, Of(+query)); };
  add("Rows", ShowRows);
  add("LastRefusal", [](const P& p) { return p.LastRefusal().sentence; });
  add("PhysModeId", [](const P& p, Name name) { return p.PhysModeId(name); });
  add("PhysModeId", [](const P& p, int mode) { return p.PhysModeId(mode); });
  add("TriggerId", [](const P& p, Name name) { return p.TriggerId(name); });
  add("TriggerId", [](const P& p, int parameter) { return p.TriggerId(parameter); });
  add("ClavisElementName", [](const P& p, int element, int id) {
    const bool is_one = element >= Clavis::Mode && element <= Clavis::Sensor;
    return is_one ? p.ClavisElementName(element, id) : L"no element";
  });
  add("IdNameMap", [](const P& p, int element, int id) {
    const bool has_one = element >= Clavis::Mode && element <= Clavis::Location;
    return has_one || element == Clavis::Sensor ? p.IdNameMap(element).Name(id) : L"no map";
  });
  add("ApplicationSignalUnit", [](P& p, int id) { return Unit(p.ApplicationSignalUnit(id)); });
  add("ShowIdsInDialogs", [](P& p, bool show) {
    p.ShowIdsInDialogs(show);
    return p.ShowIdsInDialogs();
  });
  add("Clavis", [](int instrument, int channel, int sensor, int location, int parameter) {
    QClavis key;
    QVClavisUserNames::Clavis({instrument, channel, sensor, location, parameter}, key);
    return ShowKey(key);
  });
  add("VirtModeExtension", [](int id) { return P::VirtModeExtension(id); });
  add("VirtModeExtension", [](const P& p, Name bands) {
    return p.VirtModeExtension(Ids(bands, p.AutoModeParams().size()).data());
  });
  add("VirtModeNameFragment", [](const P& p, int signal, bool up, float at, unsigned digits) {
    const auto row = p.AutoModeParams().find(signal);
    if (row == p.AutoModeParams().end()) return CString(L"no row");
    return p.VirtModeNameFragment(row, up, at, digits);
  });
  add("FillTypeNameCombo", [](const P& p, Name shown, Name selection, bool sorted) {
    CComboBox combo(sorted ? CComboBox::Order::sorted : CComboBox::Order::insertion);
    if (shown != nullptr) combo.SetCurSel(combo.AddString(shown));
    const int count = p.FillTypeNameCombo(combo, selection);
    std::string entries = Join(count, combo.GetCurSel());
    for (int i = 0; i < combo.GetCount(); ++i) {
      entries += ", " + Join(combo.GetItemData(i), combo.GetLBText(i));
    }
    return entries;
  });
  add("CMeasuringUnit", [](Name text) {
    const CMeasuringUnit before(CMeasuringUnit::pressure_bar, -3, 2, 0.5F, 7);
    CMeasuringUnit unit = before;
    if (unit.set(text)) return Join(Unit(unit), unit.prefixunit(true));
    return Show(unit == before ? "none" : "changed");
  });
  add("SetUserLanguage",
      [](P&, Name tag) { return std::string(SetUserLanguage(Text::ToUtf8(tag)).tag); });
  add("SetUserLanguage", [](P&, int id) { return std::string(SetUserLanguage(id).tag); });
  add("String", [](int id) {
    const auto of = [id](auto module) {
      return CLibMgr(module).LoadStringW(static_cast<unsigned>(id));
    };
    return Join(of(ModuleHandle::lKestrinDb), of(ModuleHandle::none));
  });
  add("Int", [](Name text) { return ShowScanned(Number::ScanInt(text)); });
  add("Double", [](Name text) { return ShowScanned(Number::ScanDouble(text)); });
  add("ToText", [](float number) { return TableCatalogue::ToText(number); });
  add("Field", Field);
  add("Line", [](Name text) {
    CLake::CNode line;
    std::wistringstream(text) >> line;
    return Text::ToUtf8(line.key() + L"|" + line.value() + L"|" + line.comment());
  });
  add("GetCalcParamEnumTexts", [] {
    std::list<CString> texts = {L"what was there"};
    const unsigned count = QVIpCalcParameter::GetCalcParamEnumTexts(texts);
    return Join(count, texts.size(), texts.front(), texts.back());
  });
  add("GetCalcParamEnumSubTexts", [](int number) {
    std::list<CString> texts = {L"what was there"};
    QVIpCalcParameter::GetCalcParamEnumSubTexts(number, texts);
    return JoinRows(texts, [](const CString& text) { return Show(text); });
  });
  add("Value", [](Name text) {
    QVIpCalcParameter row;
    TableType::strcopy(row.text, text, TableType::text_width);
    return Join(row.ValueInt(), row.ValueFloat(), row.ValueText());
  });
  add("AddVModeName", [](P& p, int mode, Name name) { return p.AddVModeName(mode, name); });
  add("ModeIsOfType", [](const P& p, int mode, unsigned number) {
    const auto flag = static_cast<QVModeProps::modeFlag>(number);
    const auto row = p.ModeProperty().find(P::VirtMode2BaseMode(mode));
    const bool by_row = row != p.ModeProperty().end() && P::ModeIsOfType(row->second, flag);
    return Same(Show(p.ModeIsOfType(mode, flag)), Show(by_row));
  });
  add("FormatClavisText", [](const P& p, int show, unsigned mask, Name ids) {
    const auto show_id = static_cast<P::show_id_t>(std::clamp(show, 0, 2));
    return Same(p.FormatClavisText(Key(ids), show_id, mask),
                p.FormatClavisText(CClavis(Key(ids).id), show_id, mask));
  });
  add("FormatClavisText", [](const P& p, unsigned mask, Name ids) {
    return Same(p.FormatClavisText(Key(ids), mask), p.FormatClavisText(CClavis(Key(ids).id), mask));
  });
  add("FormatClavisTextNice", [](const P& p, Name separator, Name ids) {
    return Same(p.FormatClavisTextNice(Key(ids), separator),
                p.FormatClavisTextNice(CClavis(Key(ids).id), separator));
  });
  add("FormatInstrParamText", [](const P& p, int instrument, int parameter) {
    CString text = L"old";
    return Same(p.FormatInstrParamText(text, {1, instrument, 1, 1, parameter, 1}),
                p.FormatInstrParamText(text, instrument, parameter));
  });
  add("FormatLocaChanText", [](const P& p, int location, int channel) {
    CString text = L"old";
    return Same(p.FormatLocaChanText(text, {1, 1, channel, location, 1, 1}),
                p.FormatLocaChanText(text, location, channel));
  });
  add("Interpret", Interpret);
  add("IndexRange", IndexRange);
  add("CutOut", CutOut);
  add("Range", Range);
  add("TriggerAxes", Axes);
  add("TriggerCell", Cell);
  add("TriggerEdges", Edges);
  add("TriggerPlaces", Places);
  return all;
}

Map& Queries() {
  static Map all = MakeAll();
  return all;
}

}  // namespace

const Map& All() { return Queries(); }

OfTest::OfTest(const std::string& name, std::string (*answer)(Name text)) {
  Queries().emplace(name, Make<Name>(true, [answer](P&, Name text) { return answer(text); }));
}

const Query* Find(const std::string& name, Arguments arguments) {
  std::string kinds;
  for (const Argument& argument : arguments) kinds += argument.kind;
  for (auto [query, end] = All().equal_range(name); query != end; ++query) {
    if (query->second.arguments == kinds) return &query->second;
  }
  return nullptr;
}

void AskAll(CQtParamInstance& params, std::span<const int> numbers, const wchar_t* text) {
  std::size_t next = 0;
  for (const auto& [name, query] : All()) {
    if (query.changes || query.arguments.empty()) continue;
    std::vector<Argument> arguments;
    for (const char kind : query.arguments) {
      arguments.push_back({kind, static_cast<double>(numbers[next++ % numbers.size()]), text});
    }
    query.ask(params, arguments);
  }
}

}  // namespace queries
