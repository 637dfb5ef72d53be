// Walking the tables for what a user can choose.
#include "controls/OfferedIds.h"

#include <utility>

#include "frame/QtParamInstance.h"
#include "interfaces/text/Number.h"
#include "tables/FieldOr.h"

using namespace kestrin;

namespace {

using OfferedIds::Choice;
using OfferedIds::Entry;
using OfferedIds::Reading;

CString WithId(CString text, int id) {
  text += L"  [";
  Number::Append(text, id);
  text += L']';
  return text;
}

CString EntryText(const wchar_t* name, int id, Reading reading) {
  const bool with_id = reading == Reading::name_and_id && CQtParamInstance::ShowIdsInDialogs();
  return with_id ? WithId(name, id) : CString(name);
}

// The bits that a filter is held against.
unsigned int FilterBits(const CQtParamInstance& params, Clavis::qOrder element, int id) {
  switch (element) {
    case Clavis::Instrument:
      return static_cast<unsigned int>(CQtParamInstance::ResultType(id));
    case Clavis::Location:
      return params.LocationPropertyFlag(id);
    case Clavis::Sensor:
      return static_cast<unsigned int>(
          FieldOr(params.AppSignalProperty(), id, &QVAppSignalProperty::signal_type, 0));
    default:
      return ~0U;
  }
}

bool IsOffered(const CQtParamInstance& params, Clavis::qOrder element, int id, Choice choice) {
  if (element == Clavis::Mode) {
    if (params.ModeIsHidden(id)) return false;
    if (choice.hide_virtual_modes && CQtParamInstance::IsVirtualMode(id)) return false;
  }
  return choice.filter == 0 || (FilterBits(params, element, id) & choice.filter) != 0;
}

}  // namespace

std::vector<Entry> OfferedIds::OfElement(Clavis::qOrder element, Choice choice, Reading reading) {
  std::vector<Entry> entries;
  if (element < 0 || element >= Clavis::element_count || element == Clavis::Parameter) {
    return entries;
  }
  const CQtParamInstance params;
  for (const auto& [key, name] : params.IdNameMap(element)) {
    const int id = key[0];
    if (!IsOffered(params, element, id, choice)) continue;
    entries.push_back({id, EntryText(name.text, id, reading)});
  }
  return entries;
}

std::vector<Entry> OfferedIds::OfInstrument(int instrument, Reading reading) {
  std::vector<Entry> entries;
  const CQtParamInstance params;
  for (const auto& [key, parameter] : params.InstrumentParam()) {
    if (parameter.instrument != instrument) continue;
    entries.push_back({key[0], EntryText(parameter.name, key[0], reading)});
  }
  return entries;
}

std::vector<Entry> OfferedIds::AllParameters() {
  std::vector<Entry> entries;
  const CQtParamInstance params;
  const bool with_ids = CQtParamInstance::ShowIdsInDialogs();
  for (const auto& [key, parameter] : params.InstrumentParam()) {
    Entry& entry = entries.emplace_back(Entry{key[0], {}});
    if (with_ids) {
      entry.text = params.InstrumentName(parameter.instrument);
      entry.text += L' ';
      entry.text += parameter.name;
      entry.text = WithId(std::move(entry.text), entry.id);
    } else {
      params.FormatInstrParamText(entry.text, -1, entry.id);
    }
  }
  return entries;
}

CString OfferedIds::UnknownText(Clavis::qOrder element, int id) {
  CString text = L"(";
  text += Clavis::ElementName(element, 1);
  text += L' ';
  Number::Append(text, id);
  text += L')';
  return text;
}
