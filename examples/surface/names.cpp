// Names and ids, test steps, instruments and the texts of keys.
#include "use.h"

void use_names(CQtParamInstance& db) {
  const wchar_t* name = L"Spur 30 Hz low load";
  use(db.PhysModeName(1), db.ChannelName(3), db.LocationName(10), db.InstrumentName(1001),
      db.InstrumentParamName(10011), db.SensorGroupName(1), db.ResamplingJobName(1),
      db.ResamplingSetName(1), db.TriggerName(1), db.TypeAliasName(1), db.BenchAliasName(1),
      db.ApplicationSignalName(1), db.ClavisElementName(5, 1));
  use(db.PhysModeId(name), db.ChannelId(name), db.LocationId(name), db.InstrumentId(name),
      db.InstrumentParamId(name, 1001), db.SensorGroupId(name), db.ResamplingJobId(name),
      db.ResamplingSetId(name), db.TriggerId(name), db.TypeAliasId(name), db.BenchAliasId(name),
      db.ApplicationSignalId(name), db.TriggerId(10011), CQtParamInstance::TimeSignalId());
  assert(db.IsValidMode(130) && db.IsValidPhysMode(1) && db.IsValidChannel(3));
  assert(db.IsValidLocation(10) && db.IsValidInstrument(1001) && db.IsValidApplicationSignal(1));
  assert(db.ModeId(name) == 130 && db.ModeName(130) == std::wstring(name));

  const CUniqueTreeMap<QIdx1, QIdxName>& map = db.IdNameMap(5);
  for (const auto& [id, text] : map) use(id, text);
  const CDynNameIdTable& configurations = db.SensorConfigName();
  use(configurations, db.Mode(), db.PhysMode(), db.Channel(), db.Location(), db.Instrument(),
      db.SensorGroup(), db.ResamplingJob(), db.ResamplingSet(), db.TypeNames(), db.BenchNames(),
      db.SignalUnit(), db.ApplicationSignal());
  const CMeasuringUnit unit = db.ApplicationSignalUnit(2);
  const CString file = db.BaseType();
  use(unit, file, db.AliasType(), db.CalibFileName(), db.LearnFileName());
  CComboBox combo;
  assert(db.FillTypeNameCombo(combo, L"PHM09-GB spur") == 3 && db.LocationPropertyFlag(10) == 4u);
}

void use_modes(CQtParamInstance& db) {
  int bands[] = {2, 1};
  const int extension = CQtParamInstance::VirtModeExtension(268293);
  const int id = CQtParamInstance::VirtModeGenerateId(130, extension);
  assert(CQtParamInstance::IsVirtualMode(id) && CQtParamInstance::VirtMode2BaseMode(id) == 130);
  const auto row = db.AutoModeParams().begin();
  const float position = db.VirtModePosition(row->second, 2);
  const std::wstring part = db.VirtModeNameFragment(row, true, position, 0);
  assert(db.VirtModeExtension(bands) == 131 && db.VirtModeName(id) == db.ModeName(id));
  assert(db.AddVModeName(id, L"Named") && !db.ModeIsHidden(id) && db.PhysModeId(id) == 1);
  assert(!db.ModeIsOfType(id, QVModeProps::mode_hidden) && !part.empty());
  assert(db.ModeIsOfType(db.ModeProperty().find(QIdx1(900))->second, QVModeProps::mode_hidden));
}

void use_texts(const CQtParamInstance& db) {
  const CClavis key;
  const QClavis row;
  const std::bitset<6> mask(0x21);
  const CQtParamInstance::show_id_t show = CQtParamInstance::show_id_never;
  const std::wstring whole = db.FormatClavisText(key, CQtParamInstance::show_id_always, mask);
  use(db.FormatClavisText(row, show, mask), db.FormatClavisText(key, mask),
      db.FormatClavisText(row, mask), db.FormatClavisTextNice(key, L"-"),
      db.FormatClavisTextNice(row, L"-"), CQtParamInstance::show_id_if_no_name);
  CString buffer;
  const wchar_t* text = db.FormatInstrParamText(buffer, -1, 10011);
  assert(whole == L"(Nil) [-1] / (Nil) [-1]" && text == std::wstring(L"RMS"));
  use(db.FormatInstrParamText(buffer, row), db.FormatLocaChanText(buffer, row),
      db.FormatLocaChanText(buffer, 10, 1));
}

int main() {
  CQtParamInstance db = load();
  use_names(db);
  use_modes(db);
  use_texts(db);
  assert(CQtParamInstance::ResultType(2600) == 4 && db.IsSingleValueInstrument(1001));
  assert(db.IsTrackInstrument(3500) && db.IsSpectrumInstrument(2500));
  assert(db.Is2dDataInstrument(3600) && db.InstrumentParameterToInstrument(10011) == 1001);
  assert(CQtParamInstance::ScalarInstrumentToTrackInstrument(1070) == 2070);
  assert(CQtParamInstance::TrackInstrumentToScalarInstrument(2070) == 1700);
}
