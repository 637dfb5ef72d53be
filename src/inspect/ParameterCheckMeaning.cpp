// What rows mean together. The data base that was loaded from the lake knows: its derived tables,
// the log of their making, and the operations that hosts ask are what is looked at here.

#include <algorithm>
#include <array>
#include <list>
#include <optional>
#include <set>

#include "frame/QtParamDerived.h"
#include "frame/QtParamInstance.h"
#include "inspect/ParameterCheckRun.h"
#include "interfaces/signal/Clavis.h"
#include "interfaces/text/Number.h"
#include "interfaces/text/Text.h"
#include "spec/OrderInterpreter.h"
#include "tables/FieldOr.h"
#include "trigger/TriggerStore.h"

namespace kestrin::ParameterCheck {
namespace {

// A field of a table, from 1; 0 if a finding is about the row.
struct Place {
  const char* section;
  std::size_t field;
};

constexpr const char* calc_parameters = "<TIpCalcParameter>";
constexpr Place calc_text = {calc_parameters, 3};
constexpr unsigned max_positions = CQtSpecIntervalStore::max_orders;

using Positions = std::array<QVSpecIntervalEntry::Definition, max_positions>;

class MeaningCheck {
 public:
  explicit MeaningCheck(Run& run) : run_(run), params_(&run.data) {}

  void CheckLogged(const LoggedRow& row) {
    const std::string& section = row.section;
    if (section == calc_parameters) CheckRefusedDefinition(row.key[0]);
    if (section == "<TOrderSource2Rotor>") TellNoBaseOrder(row.key[0], row.key[1]);
    if (section == "<TChannelInheritance>") TellClosedChannels(row.key[0], row.key[1]);
    if (section == "<TIpParamAndStore>") TellAmbiguousPolygon(QClavis(CClavis(row.key.data())));
  }

  void CheckTables() {
    CheckNames();
    for (const auto& [key, row] : params_.IpCalcParameter()) {
      CheckNumber(key[0], key[1]);
      if (key[1] == QVIpCalcParameter::trigger) CheckTrigger(key[0], row);
      if (key[1] == QVIpCalcParameter::definition) CheckDefinition(key[0], row.ValueText());
      if (key[1] == QVIpCalcParameter::base_order_reference) CheckOrderSource(key[0], row);
    }
    CheckAxes();
    if (run_.options.references) CheckRotors();
  }

 private:
  Finding* Tell(Kind kind, const Place& place, std::span<const int> key, std::string message) {
    const auto& [section, field] = place;
    Finding* const finding = run_.findings.Add(kind, run_.LineOf(section, key), section);
    if (finding == nullptr) return nullptr;
    finding->message = std::move(message);
    if (field != 0) {
      const auto& table = *TableCatalogue::Find(section);
      const std::size_t keys = table.key.size();
      finding->field = field <= keys ? table.key[field - 1].name : table.row[field - keys - 1].name;
      finding->position = field;
    }
    return finding;
  }
  Finding* Tell(Kind kind, const Place& place, std::initializer_list<int> key,
                std::string message) {
    return Tell(kind, place, std::span(key.begin(), key.size()), std::move(message));
  }

  // ---- order definitions ----

  // About the character at an offset in it.
  void TellDefinition(Kind kind, int parameter, std::size_t offset, std::string message) {
    Finding* const finding =
        Tell(kind, calc_text, {parameter, QVIpCalcParameter::definition}, std::move(message));
    if (finding == nullptr || finding->line == 0) return;
    const std::wstring_view line =
        std::next(run_.lake.begin(), static_cast<std::ptrdiff_t>(finding->line) - 1)->value();
    std::wstring_view rest = line;
    for (int id = 0; id < 2; ++id) rest.remove_prefix(Number::ScanInt(rest).used);
    rest = Text::Trim(rest);
    if (rest.starts_with(L'"')) rest.remove_prefix(1);
    finding->column = static_cast<std::size_t>(rest.data() - line.data()) + offset + 1;
  }

  const wchar_t* Definition(int parameter) const {
    const wchar_t* const text = params_.SpecIntervalDefinition(static_cast<unsigned>(parameter));
    return text != nullptr ? text : L"";
  }

  void CheckRefusedDefinition(int parameter) {
    const wchar_t* const text = Definition(parameter);
    Positions positions;
    const auto reading = OrderInterpreter::Interpret(text, positions.data(), max_positions);
    const auto& error = reading.error;
    if (error.reason == OrderInterpreter::Reason::none) {
      TellDefinition(Kind::odd_definition, parameter, 0,
                     "the definition " + Quoted(text) + " has " + std::to_string(reading.count) +
                         " positions, and only pairs make intervals: the parameter has none. Add "
                         "the position that is missing");
      return;
    }
    TellDefinition(Kind::bad_definition, parameter, error.offset,
                   "the definition " + Quoted(text) + " has an error at its character " +
                       std::to_string(error.offset + 1) + ", " +
                       Quoted(std::wstring_view(text).substr(error.offset)) + ": " +
                       Text::ToUtf8(OrderInterpreter::ReasonText(error.reason)) +
                       "; the parameter has no interval. Correct the text from there on");
  }

  void CheckDefinition(int parameter, const wchar_t* text) {
    const auto passed = OrderInterpreter::FindPassedOver(text, max_positions);
    if (passed.dropped != 0) {
      TellDefinition(Kind::cut_definition, parameter, 0,
                     "a definition holds " + std::to_string(max_positions) + " positions; the " +
                         std::to_string(passed.dropped) + " behind them are dropped");
    }
    std::string unread;
    for (const auto& passage : passed.unread) {
      unread += (unread.empty() ? "" : ", ") +
                Quoted(std::wstring_view(text).substr(passage.offset, passage.length));
    }
    if (!unread.empty()) {
      TellDefinition(Kind::unread_in_definition, parameter, passed.unread[0].offset,
                     "of the definition " + Quoted(text) + " nothing reads " + unread +
                         ". The letters are F, O, M, L and H, in capitals");
    }
    const auto [first, last] = params_.SpecIntervalRange(static_cast<unsigned>(parameter));
    const auto reversed =
        std::find_if(first, last, [](const auto& interval) { return IsReversed(interval.second); });
    if (reversed == last) return;
    const int number = reversed->first[1] / 2 + 1;
    TellDefinition(Kind::reversed_definition, parameter, 0,
                   "interval " + std::to_string(number) + " of the definition " + Quoted(text) +
                       " ends below its start at any speed. Exchange its two positions");
  }

  // No speed, base order or resolution is negative, so that a term less moves a bound down.
  static bool IsReversed(const QVSpecIntervalEntry& interval) {
    const auto& low = interval.lower();
    const auto& high = interval.upper();
    const bool none_higher = high.frequency() <= low.frequency() && high.order() <= low.order() &&
                             high.harmonic() <= low.harmonic() &&
                             high.modulation() <= low.modulation() && high.lines() <= low.lines();
    return none_higher && high != low;
  }

  // ---- other calculation parameters ----

  void CheckNumber(int parameter, int number) {
    static const unsigned count = [] {
      std::list<CString> texts;
      return QVIpCalcParameter::GetCalcParamEnumTexts(texts);
    }();
    if (number >= 0 && static_cast<unsigned>(number) < count) return;
    Tell(Kind::unknown_calc_parameter, {calc_parameters, 2}, {parameter, number},
         "there is no calculation parameter " + std::to_string(number) +
             ": their numbers are 0 to " + std::to_string(count - 1) + ". Correct the number");
  }

  // True of a text where an id belongs.
  bool TellNoNumber(int parameter, int number, const QVIpCalcParameter& row) {
    const std::wstring_view text = TableType::TextIn(row.text);
    const auto scanned = Number::ScanInt(text);
    if (text.empty() || (scanned.used != 0 && Text::Trim(text.substr(scanned.used)).empty())) {
      return false;
    }
    Tell(Kind::no_number, calc_text, {parameter, number},
         Quoted(text) + " is no id, and counts as " + std::to_string(scanned.value) +
             ". Write the id");
    return true;
  }

  void CheckTrigger(int parameter, const QVIpCalcParameter& row) {
    const int id = row.ValueInt();
    if (TellNoNumber(parameter, QVIpCalcParameter::trigger, row)) return;
    if (!run_.options.references || id == -1 || RowOf(params_.Trigger(), id) != nullptr) return;
    Tell(Kind::unknown_id, calc_text, {parameter, QVIpCalcParameter::trigger},
         "trigger " + std::to_string(id) +
             " has no row in <TTrigger>. Add it there or correct the id");
  }

  // An order source needs a rotor that turns and a base order, in one physical mode at least.
  void CheckOrderSource(int parameter, const QVIpCalcParameter& row) {
    const int source = row.ValueInt();
    if (TellNoNumber(parameter, QVIpCalcParameter::base_order_reference, row)) return;
    if (!run_.options.references || source == -1) return;
    if (!sources_) CollectSources();
    const char* const lack =
        !sources_->sitting.contains(source)
            ? " sits on no rotor: it is neither in <TOrderSource2Rotor> nor in <TRotorSpeed>"
        : !sources_->turning.contains(source) ? " sits on a rotor without a speed in <TRotorSpeed>"
        : !sources_->counting.contains(source)
            ? " has no base order: its physical gear has no row in <TBaseOrder>"
            : nullptr;
    if (lack == nullptr) return;
    Tell(Kind::unknown_id, calc_text, {parameter, QVIpCalcParameter::base_order_reference},
         "order source " + std::to_string(source) + lack + ". Add it there or correct the id");
  }

  // What sits on a rotor in a physical mode needs its speed there, and that a speed source.
  void CheckRotors() {
    const auto& rotors = run_.data.Table<L"<TRotorSpeed>">();
    const auto& sources = run_.data.Table<L"<TRotorSpeedSource>">();
    const auto told = [](int rotor, const char* lack, int phys_mode, const char* table) {
      return "rotor " + std::to_string(rotor) + lack + std::to_string(phys_mode) +
             ". Add a row to " + table + ", or correct the id";
    };
    std::set<int> known;
    for (const auto& [key, row] : rotors) {
      known.insert(key[1]);
      if (sources.empty() || RowOf(sources, {key[0], key[1]}) != nullptr) continue;
      Tell(Kind::unknown_id, {"<TRotorSpeed>", 2}, key.id,
           told(key[1], " has no speed source in physical mode ", key[0], "<TRotorSpeedSource>"));
    }
    for (const auto& [key, row] : run_.data.Table<L"<TOrderSource2Rotor>">()) {
      if (!known.contains(row.ref) || RowOf(rotors, {key[1], row.ref}) != nullptr) continue;
      Tell(Kind::unknown_id, {"<TOrderSource2Rotor>", 3}, key.id,
           told(row.ref, " has no speed in physical mode ", key[1], "<TRotorSpeed>"));
    }
  }

  // A source that its table doesn't map is the rotor, or the physical gear, of the same number.
  void CollectSources() {
    const CQtSpeedInfo& speeds = run_.data.Derived().SpeedInfo();
    const auto& rotors = run_.data.Table<L"<TRotorSpeed>">();
    Sources& found = sources_.emplace();
    for (const auto& [key, row] : rotors) {
      found.sitting.insert(key[1]);
      found.turning.insert(key[1]);
    }
    for (const auto& [key, row] : run_.data.Table<L"<TOrderSource2Rotor>">()) {
      found.sitting.insert(key[0]);
      if (RowOf(rotors, {key[1], row.ref}) != nullptr) found.turning.insert(key[0]);
    }
    for (const auto& [gear, row] : run_.data.Table<L"<TBaseOrder>">()) {
      found.counting.insert(gear[0]);
    }
    for (const auto& [key, row] : run_.data.Table<L"<TVirtual2PhysGear>">()) {
      if (speeds.BaseOrderOf(row.ref) != nullptr) found.counting.insert(key[1]);
      const int rotor = speeds.RotorOf(key[0], row.ref);
      if (RowOf(rotors, {key[0], rotor}) != nullptr) found.turning.insert(key[1]);
    }
  }

  // ---- what the log of the load says ----

  // Counts one that is only counted, before it is looked at: there may be millions.
  bool TellFull(Kind kind, const char* section) {
    if (!run_.findings.IsFull(kind, section)) return false;
    run_.findings.Add(kind, 0, section);
    return true;
  }

  void TellNoBaseOrder(int source, int phys_mode) {
    const int gear = run_.data.Derived().SpeedInfo().PhysicalGearOf(phys_mode, source);
    Tell(Kind::no_base_order, {"<TOrderSource2Rotor>", 0}, {source, phys_mode},
         "order source " + std::to_string(source) + " has no base order in physical mode " +
             std::to_string(phys_mode) + ", and no channel sees it there: its physical gear " +
             std::to_string(gear) + " has no row in <TBaseOrder>. Add it there");
  }

  void TellClosedChannels(int channel, int mode) {
    constexpr Place place = {"<TChannelInheritance>", 3};
    if (TellFull(Kind::closed_channels, place.section)) return;
    constexpr std::size_t most = 8;
    std::string chain = std::to_string(channel);
    std::size_t count = 0;
    int next = channel;
    do {
      next = params_.ParentChannel(mode, next);
      if (count++ < most) chain += " > " + std::to_string(next);
    } while (next != channel);
    if (count > most) chain += " > ... > " + std::to_string(channel);
    const bool own_row = run_.LineOf(place.section, std::array{channel, mode}) != 0;
    Tell(Kind::closed_channels, place, {channel, own_row ? mode : -1},
         "channels inherit from each other in a circle, in test step " + std::to_string(mode) +
             ": " + chain + ". Remove the row of the channel that is measured itself");
  }

  void TellAmbiguousPolygon(const QClavis& key) {
    constexpr Place place = {"<TIpParamAndStore>", 0};
    if (TellFull(Kind::ambiguous_polygon, place.section)) return;
    std::vector<std::size_t> lines;
    for (const auto& [match, row] : run_.data.Table<L"<TGrex10001>">()) {
      if (CClavis(key.id) & CClavis(match.id)) {
        lines.push_back(run_.LineOf("<TGrex10001>", match.id));
      }
    }
    Finding* const finding = Tell(
        Kind::ambiguous_polygon, place, key.id,
        std::to_string(lines.size()) + " rows of <TGrex10001> match this key: the one of line " +
            std::to_string(lines[0]) + " counts, not that of line " + std::to_string(lines[1]) +
            ". Let one of them say more, or remove it");
    if (finding != nullptr) finding->other_line = lines[0];
  }

  // ---- names and triggers ----

  // By its name a row must be found.
  void CheckNames() {
    tables::All::ForEach([&](auto entry) {
      using Entry = decltype(entry);
      if constexpr (std::is_same_v<typename Entry::Table, CDynNameIdTable>) {
        const std::string section = Text::ToUtf8(Entry::section.text);
        const CDynNameIdTable& table = run_.data.Table<Entry::section>();
        for (const auto& [id, name] : table) {
          TellSameName({section.c_str(), 2}, id[0], name.text, table.Idx(name.text));
        }
      }
    });
    CheckRowNames({"<TTrigger>", 2}, params_.Trigger(), [](const auto&) { return 0; });
    CheckRowNames({"<TInstrumentParam>", 3}, params_.InstrumentParam(),
                  [](const QVInstrumentParam& row) { return row.instrument; });
  }

  // Of rows that are found by their names and by what they belong to: the first one is.
  template <class Table, class Owner>
  void CheckRowNames(const Place& place, const Table& table, Owner owner) {
    std::map<std::pair<int, std::wstring_view>, int> first;
    for (const auto& [id, row] : table) {
      const std::pair key(owner(row), std::wstring_view(row.name));
      TellSameName(place, id[0], row.name, first.emplace(key, id[0]).first->second);
    }
  }

  void TellSameName(const Place& place, int id, const wchar_t* name, int found) {
    if (found == -1 || found == id || name[0] == L'\0') return;
    const std::size_t line = run_.LineOf(place.section, std::array{found});
    Finding* const finding =
        Tell(Kind::duplicate_name, place, {id},
             "the name " + Quoted(name) + " stands in line " + std::to_string(line) +
                 " too: by the name only " + std::to_string(found) + " is found, not " +
                 std::to_string(id));
    if (finding != nullptr) finding->other_line = line;
  }

  void CheckAxes() {
    for (const auto& [key, row] : params_.TriggerParam()) {
      if (CTriggerStore::CInterval(row).len() != 0) continue;
      if (run_.bad_lines.contains(run_.LineOf("<TTriggerParam>", key.id))) continue;
      Tell(Kind::no_step, {"<TTriggerParam>", 8}, key.id,
           "no whole step leads from start to stop: the axis has no cells. Give it a step above 0 "
           "that is no longer than the axis");
    }
  }

  Run& run_;
  const CQtParamInstance params_;

  // Order sources that have a rotor, one with a speed, a base order.
  struct Sources {
    std::set<int> sitting;
    std::set<int> turning;
    std::set<int> counting;
  };
  std::optional<Sources> sources_;
};

}  // namespace

void CheckMeaning(Run& run, const std::vector<LoggedRow>& logged) {
  MeaningCheck check(run);
  for (const LoggedRow& row : logged) check.CheckLogged(row);
  check.CheckTables();
}

}  // namespace kestrin::ParameterCheck
