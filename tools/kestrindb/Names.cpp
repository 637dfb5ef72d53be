// kestrindb names FILE ELEMENT: ids and names of a key element; and names for the other commands.
#include "Names.h"

#include <charconv>

#include "Commands.h"

using namespace kestrin;

namespace kestrindb {
namespace {

struct Words {
  const char* noun;
  const char* word;
};

constexpr Words words[] = {{"test step", "test-step"}, {"instrument", "instrument"},
                           {"channel", "channel"},     {"object", "object"},
                           {"parameter", "parameter"}, {"signal", "signal"},
                           {"trigger", "trigger"}};

std::string ListOf(int element) { return std::string("names FILE ") + Word(element); }

[[noreturn]] void RefuseId(const CQtParamInstance& params, int element, int id) {
  std::vector<std::wstring> known;
  for (const auto& row : NamesOf(params, element)) known.push_back(std::to_wstring(row.first));
  const int base = element == Clavis::Mode ? CQtParamInstance::VirtMode2BaseMode(id) : id;
  throw Failure(data_bad, std::string("There is no ") + Noun(element) + ' ' + std::to_string(base) +
                              (base == id ? "" : ", the base of " + std::to_string(id)) + '.' +
                              Hint(std::to_string(base), known, ListOf(element)));
}

[[noreturn]] void RefuseName(const CQtParamInstance& params, int element, const std::string& name) {
  std::vector<std::wstring> known;
  for (const auto& row : NamesOf(params, element)) known.push_back(row.second);
  throw Failure(data_bad, std::string("There is no ") + Noun(element) + " '" + name + "'." +
                              Hint(name, known, ListOf(element)));
}

[[noreturn]] void RefuseSeveral(const CQtParamInstance& params, int element,
                                const std::string& name, const std::vector<int>& ids) {
  std::string list;
  for (const int id : ids) {
    list += (list.empty() ? "" : ", ") + std::to_string(id);
    if (element != Clavis::Parameter) continue;
    list += " of " + NameOf(params, Clavis::Instrument, params.InstrumentParameterToInstrument(id));
  }
  throw Failure(data_bad, "The name '" + name + "' belongs to several: " + list + '.');
}

}  // namespace

const char* Noun(int element) { return words[element].noun; }
const char* Word(int element) { return words[element].word; }

Names NamesOf(const CQtParamInstance& params, int element) {
  Names names;
  const auto add = [&](const auto& table, auto name) {
    for (const auto& row : table) names.emplace_back(row.first[0], name(row.second));
  };
  const auto name = [](const auto& row) { return row.name; };
  if (element == trigger_element) {
    add(params.Trigger(), name);
  } else if (element == Clavis::Parameter) {
    add(params.InstrumentParam(), name);
  } else {
    add(params.IdNameMap(element), [](const auto& row) { return row.text; });
  }
  return names;
}

std::string NameOf(const CQtParamInstance& params, int element, int id) {
  if (element == Clavis::Mode) return StepName(params, id);
  return Utf8(element == trigger_element ? params.TriggerName(id)
                                         : params.ClavisElementName(element, id));
}

std::string StepName(const CQtParamInstance& params, int mode) {
  const bool is_made = CQtParamInstance::IsVirtualMode(mode) && !params.IsValidMode(mode);
  for (std::size_t i = 0; is_made && i < params.AutoModeParams().size(); ++i) {
    if (CQtParamInstance::VirtModeDigit(mode, i) == 0) return {};
  }
  return Utf8(params.ModeName(mode));
}

bool IsKnown(const CQtParamInstance& params, int element, int id) {
  switch (element) {
    case trigger_element:
      return params.Trigger().find(id) != params.Trigger().end();
    case Clavis::Parameter:
      return params.InstrumentParam().find(id) != params.InstrumentParam().end();
    case Clavis::Mode:
      return params.IsValidMode(id) || params.IsValidMode(CQtParamInstance::VirtMode2BaseMode(id));
    default:
      return params.IdNameMap(element).IsValidId(id);
  }
}

int KnownId(const CQtParamInstance& params, int element, const std::string& text) {
  const int id = IdOf(params, element, text);
  if (!IsKnown(params, element, id)) RefuseId(params, element, id);
  return id;
}

int IdOf(const CQtParamInstance& params, int element, const std::string& text, int instrument) {
  if (const auto id = IntegerOf(text)) return *id;
  const std::wstring name = Wide(text);
  std::vector<int> ids;
  for (const auto& row : NamesOf(params, element)) {
    if (row.second != name) continue;
    if (instrument != -1 && params.InstrumentParameterToInstrument(row.first) != instrument) {
      continue;
    }
    ids.push_back(row.first);
  }
  if (ids.empty()) RefuseName(params, element, text);
  if (ids.size() > 1) RefuseSeveral(params, element, text, ids);
  return ids.front();
}

std::optional<int> IntegerOf(std::string_view text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::string Hint(const std::string& wrong, const std::vector<std::wstring>& known,
                 const std::string& list) {
  const auto nearest = Text::Nearest(Wide(wrong), known);
  if (nearest) return " Did you mean " + Utf8(known[*nearest]) + "?";
  return " See kestrindb " + list + '.';
}

Json DescribeNames(const CQtParamInstance& params, const Request& request) {
  Json json = Json::array();
  for (const auto& [id, name] : NamesOf(params, request.element)) {
    json.push_back({{"id", id}, {"name", Utf8(name)}});
  }
  return json;
}

void PrintNames(const Json& json) { PrintTable(json, {{"id", "id"}, {"name", "name"}}); }

}  // namespace kestrindb
