// Every table that a handle gives, with the fields of its rows.
#include "use.h"

// The first row of a table; the sample leaves none empty.
template <class Key, class Row>
const Row& first(const CDbUniqueMap<Key, Row>& table) {
  assert(!table.empty());
  return table.begin()->second;
}

int main() {
  CQtParamInstance db = load();
  const CQtParamInstance& reader = db;
  const QVInstrumentParam& parameter = first(db.InstrumentParam());
  const QVAppSignalProperty& signal = first(reader.AppSignalProperty());
  const QVTriggerParams& axis = first(reader.TriggerParam());
  const QVErrorGroup& severity = first(reader.SeverityProperty());
  const QVIpLearnParameter& learned = first(db.IpLearnParameter());
  const QVLimitBase& limit = first(db.LimSValue());
  const CDbMultiMap<QIdx1, QVSensorGroupList>& members = db.SensorGroupList();
  const CDbMultiMap<QIdx1, QVAutoModeSelector>& selectors = db.AutoModeSelector();
  use(parameter.instrument, parameter.name, first(db.Trigger()).name, signal.signal_type,
      signal.unit_text, signal.unit_code, signal.unit_prefix, axis.start, axis.stop, axis.step,
      axis.direction, severity.text_1, severity.text_2, learned.time_1, learned.time_2, limit,
      first(db.ModeProperty()).phys_mode, first(db.ModeProperty()).flags,
      first(db.LocationProperty()).flags, first(db.ChannelProperty()).resampling_type,
      first(db.IpPolygon()).class_id, first(db.IpPolygon()).name, first(reader.ErrorCode()).text,
      first(db.ClavisUserNames()).name, first(db.LearnProcedures()).text,
      first(db.RetypeDefinition()).ref, first(db.IpCalcParameter()).ValueText());
  use(first(db.ModeTranslate()), first(db.InstrumentProperty()), first(db.ResamplingParams()),
      first(db.SensorConfiguration()), first(reader.SignalDispatch()), first(db.AutoMode()),
      first(db.IpParamAndStore()), first(db.IpRunTest()), first(db.LimCValue()),
      first(db.LimArea()), first(db.IpPolygonProperty()), first(db.RelativeLimit()),
      first(db.ExternalError()), first(db.ShadowGroupProperty()), members);
  std::wcout << selectors.begin()->second.clavis;

  CUniqueTreeMap<QIdx1, QVAutoModeParams>& bands = db.AutoModeParams();
  QVAutoModeParams& band = bands.Assign(QIdx1(2), reader.AutoModeParams().begin()->second)->second;
  band.start += band.step * static_cast<float>(band.directional);
  db.AppSignalProperty().insert({QIdx1(99), signal});
  db.SignalDispatch().insert({QIdx1(99), QVSignalDispatch()});
  db.TriggerParam().insert({QIdx3(99, 1, 1), QVTriggerParams()});
  std::int32_t& grave = std::get<1>(db.SeverityProperty().begin()->second.tuple());
  grave += 1;
  std::wcout << grave + std::get<4>(db.ErrorCode().begin()->second.tuple()) << '\n';
}
