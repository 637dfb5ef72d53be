// Names, ids and validity: what goes with an id of the name tables, and the settings that are
// shared by all handles.

#include <algorithm>
#include <cassert>
#include <cwchar>
#include <optional>

#include "frame/QtParamDerived.h"
#include "frame/QtParamDistillery.h"
#include "frame/QtParamInstance.h"
#include "interfaces/sea/ResourceSea.h"
#include "interfaces/signal/Clavis.h"
#include "interfaces/windows/ComboBoxX.h"
#include "tables/FieldOr.h"

using namespace kestrin;

namespace {

constexpr const wchar_t* show_ids_setting = L"ShowIdsInDialogs";

// The id of the first row that fits, or -1.
template <class Table, class Fits>
int FirstId(const Table& table, Fits fits) {
  const auto row = std::find_if(table.begin(), table.end(),
                                [&](const auto& candidate) { return fits(candidate.second); });
  return row == table.end() ? -1 : row->first[0];
}

bool SameText(const wchar_t* a, const wchar_t* b) {
  return std::wcsncmp(a, b, TableType::text_width) == 0;
}

const wchar_t* NeverNull(const wchar_t* text) { return text != nullptr ? text : L""; }

}  // namespace

int CQtParamInstance::ModeId(const wchar_t* name) const { return Mode().Idx(name); }
bool CQtParamInstance::IsValidMode(int id) const { return Mode().IsValidId(id); }

const wchar_t* CQtParamInstance::PhysModeName(int id) const { return PhysMode().Name(id); }
int CQtParamInstance::PhysModeId(const wchar_t* name) const { return PhysMode().Idx(name); }
bool CQtParamInstance::IsValidPhysMode(int id) const { return PhysMode().IsValidId(id); }

const wchar_t* CQtParamInstance::ChannelName(int id) const { return Channel().Name(id); }
int CQtParamInstance::ChannelId(const wchar_t* name) const { return Channel().Idx(name); }
bool CQtParamInstance::IsValidChannel(int id) const { return Channel().IsValidId(id); }

const wchar_t* CQtParamInstance::LocationName(int id) const { return Location().Name(id); }
int CQtParamInstance::LocationId(const wchar_t* name) const { return Location().Idx(name); }
bool CQtParamInstance::IsValidLocation(int id) const { return Location().IsValidId(id); }

const wchar_t* CQtParamInstance::InstrumentName(int id) const { return Instrument().Name(id); }
int CQtParamInstance::InstrumentId(const wchar_t* name) const { return Instrument().Idx(name); }
bool CQtParamInstance::IsValidInstrument(int id) const { return Instrument().IsValidId(id); }

const wchar_t* CQtParamInstance::ApplicationSignalName(int id) const {
  return ApplicationSignal().Name(id);
}
int CQtParamInstance::ApplicationSignalId(const wchar_t* name) const {
  return ApplicationSignal().Idx(name);
}
bool CQtParamInstance::IsValidApplicationSignal(int id) const {
  return ApplicationSignal().IsValidId(id);
}

const wchar_t* CQtParamInstance::SensorGroupName(int id) const { return SensorGroup().Name(id); }
int CQtParamInstance::SensorGroupId(const wchar_t* name) const { return SensorGroup().Idx(name); }

const wchar_t* CQtParamInstance::ResamplingJobName(int id) const {
  return ResamplingJob().Name(id);
}
int CQtParamInstance::ResamplingJobId(const wchar_t* name) const {
  return ResamplingJob().Idx(name);
}
const wchar_t* CQtParamInstance::ResamplingSetName(int id) const {
  return ResamplingSet().Name(id);
}
int CQtParamInstance::ResamplingSetId(const wchar_t* name) const {
  return ResamplingSet().Idx(name);
}

const wchar_t* CQtParamInstance::TypeAliasName(int id) const { return TypeNames().Name(id); }
int CQtParamInstance::TypeAliasId(const wchar_t* name) const { return TypeNames().Idx(name); }
const wchar_t* CQtParamInstance::BenchAliasName(int id) const { return BenchNames().Name(id); }
int CQtParamInstance::BenchAliasId(const wchar_t* name) const { return BenchNames().Idx(name); }

const wchar_t* CQtParamInstance::InstrumentParamName(int id) const {
  return FieldOr(InstrumentParam(), id, &QVInstrumentParam::name, L"");
}

int CQtParamInstance::InstrumentParamId(const wchar_t* name, int instrument) const {
  return FirstId(InstrumentParam(), [&](const QVInstrumentParam& row) {
    return row.instrument == instrument && SameText(row.name, NeverNull(name));
  });
}

const wchar_t* CQtParamInstance::TriggerName(int id) const {
  return FieldOr(Trigger(), id, &QVTrigger::name, L"");
}

int CQtParamInstance::TriggerId(const wchar_t* name) const {
  return FirstId(Trigger(),
                 [&](const QVTrigger& row) { return SameText(row.name, NeverNull(name)); });
}

int CQtParamInstance::TriggerId(int instrument_param) const {
  return store_->Derived().TriggerId(instrument_param);
}

const wchar_t* CQtParamInstance::ClavisElementName(int element, int id) const {
  if (element == Clavis::Mode) return ModeName(id);
  if (element == Clavis::Parameter) return InstrumentParamName(id);
  assert(element >= Clavis::Mode && element <= Clavis::Sensor);
  if (element < Clavis::Mode || element > Clavis::Sensor) return L"";
  return IdNameMap(element).Name(id);
}

const CDynNameIdTable& CQtParamInstance::IdNameMap(int element) const {
  switch (element) {
    case Clavis::Mode:
      return Mode();
    case Clavis::Instrument:
      return Instrument();
    case Clavis::Channel:
      return Channel();
    case Clavis::Location:
      return Location();
    case Clavis::Sensor:
      return ApplicationSignal();
    default:
      assert(false && "an element with names by id");
      return Mode();
  }
}

unsigned CQtParamInstance::LocationPropertyFlag(int location) const {
  return static_cast<unsigned>(
      FieldOr(LocationProperty(), location, &QVLocationProperty::flags, 0));
}

int CQtParamInstance::TimeSignalId() { return CQtParamDistillery::TimeSignalId(); }

bool CQtParamInstance::ShowIdsInDialogs() {
  return CSeaBase::MessagesSea()->LookupGetBool(show_ids_setting, 0, false);
}

void CQtParamInstance::ShowIdsInDialogs(bool show) {
  CSeaBase::MessagesSea()->LookupBool(lookup::access_store, show_ids_setting, show, 0);
}

int CQtParamInstance::FillTypeNameCombo(CComboBox& combo, const wchar_t* selection) const {
  // An entry without a name can be the one to keep as well.
  std::optional<CString> kept;
  if (combo.GetCurSel() >= 0) kept = combo.GetLBText(combo.GetCurSel());
  if (selection != nullptr && *selection != L'\0') kept = selection;
  combo.ResetContent();
  for (const auto& [id, name] : TypeNames()) {
    combo.SetItemData(combo.AddString(name.text), id[0]);
  }
  const auto count = static_cast<int>(TypeNames().size());
  if (!kept) return count;
  if (count == 0) combo.AddString(*kept);
  combo.SetCurSel(combo.FindStringExact(-1, *kept));
  return count;
}
