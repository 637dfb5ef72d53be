// Rotors and orders, channels, calculation parameters, polygons, spectrum intervals and triggers.
#include "use.h"

void use_parameters(const CQtParamInstance& db) {
  QVIpCalcParameter parameter;
  const std::tuple<wchar_t*> field = parameter.tuple();
  TableType::strcopy(std::get<0>(field), L"12abc", 200);
  const QVIpCalcParameter copy(parameter);
  std::list<CString> texts;
  use(copy.ValueText(), copy.ValueFloat(), copy.tuple(), QVIpCalcParameter::s_version,
      QVIpCalcParameter::NumEnums, QVIpCalcParameter::GetCalcParamEnumText(43),
      QVIpCalcParameter::GetCalcParamEnumSubText(1, 0));
  assert(copy.ValueInt() == 12 && QVIpCalcParameter::GetCalcParamEnumTexts(texts) == 43u);
  assert(QVIpCalcParameter::GetCalcParamEnumSubTexts(34, texts) == 3u);

  QVIpSvTrackPolygon row;
  const std::tuple<int&, int&, int&, int&, float&, int&, float&, float&, float&, float&> fields =
      row.tuple();
  std::get<0>(fields) = 7;
  const QVIpSvTrackPolygon same(row);
  assert(same.track_a == 7 && std::get<3>(same.tuple()) == -1);
  use(same.track_b, same.track_c, same.polygon_id, same.offset, same.polygon_mode, same.x_start,
      same.x_end, same.y_start, same.y_end, QVIpSvTrackPolygon::s_version);
  const std::map<QClavis, CVIpSvTrackPolygon>& tracks = db.IpTrackPolygon();
  const std::map<std::pair<int, int>, CVPoint>& points = db.IpPolygonValues();
  const CVIpSvTrackPolygon& track = tracks.begin()->second;
  const CVPoint& point = points.lower_bound({track.polygon_id, 0})->second;
  use(track.track_a, track.track_c, point.x, point.y);
}

void use_intervals(const CQtParamInstance& db) {
  QVSpecIntervalEntry::Definition positions[10];
  assert(OrderInterpreter::GetSpecPositions(L"H1-O2-M3-L4;H5+O6", positions, 10) == 2u);
  QVSpecIntervalEntry::Definition& lower = positions[0];
  const QVSpecIntervalEntry::Definition reader(lower);
  lower.frequency() = reader.frequency() + 1.0F;
  lower.order() = lower.modulation() = reader.order() + reader.modulation();
  lower.harmonic() = reader.harmonic() * static_cast<float>(reader.lines());
  lower.lines() += 1;
  lower.domain() = QVSpecIntervalEntry::domain_mixed;
  assert(reader.domain() == QVSpecIntervalEntry::domain_order);
  positions[1].clear();
  const QVSpecIntervalEntry entry(lower, positions[1]), none, copy(entry);

  QVSpecIntervalEntry ranges[16];
  assert(CQtSpecIntervalStore::Range(L"H1-O2;H1+O2", ranges, 32) == 1u);
  const std::map<QIdx1, QVIpSvOfSpec>& records = db.IpSvOfSpec();
  const QVIpSvOfSpec& record = records.begin()->second;
  use(record.interpretation, record.definition, record.reference, db.SpecIntervalDefinition(17001));
  const auto range = db.SpecIntervalRange(17001);
  CQtSpecInterval interval(db);
  interval.LoadTransformParams(130, 1, 11);
  float low = 0.0F, high = 0.0F;
  const CQtSpecInterval::index_range_result_t result =
      interval.FrequencyRange(range.first->second, 0.25F, 1.0F, low, high);
  assert(result == CQtSpecInterval::index_range_ok && interval.RatioAssembly2SpeedSrc() > 0.0F);
  CQtSpecInterval::IndexInterval lines;
  assert(interval.IndexRange(ranges[0], lines, 400, 0.25F, 1.0F) == 0);
  use(lines.start_frequency, lines.stop_frequency, lines.start_index, lines.stop_index);
  std::vector<CQtSpecInterval::IndexInterval> pieces(1, lines);
  assert(CQtSpecInterval::InvertIndexIntervalCollection(pieces) == 1u);
}

void use_triggers(const CQtParamInstance& db) {
  const CTriggerStore store(db);
  unsigned int mask = 0;
  assert(store.dimensions(160, 2, mask) && mask == 1 && store.dimension(160, 2) == 0);
  CTriggerStore::CIntervals axes;
  CTriggerStore::CInterval axis, row(QVTriggerParams{});
  const CTriggerStore::CInterval made(1000.0F, 50.0F, 40, true);
  assert(store.field(160, 2, axes) && store.field(160, 2, 0, axis));
  row = QVTriggerParams();
  row.set(1000.0F, 50.0F, 3000.0F);
  use(row.start(), row.len(), row.step(), row.stop(), row.raising(), store.max_dims());
  row.clear();
  CTriggerStore::CDimensions values;
  std::int64_t cell = 0;
  float value = 0.0F;
  assert(store.cell(160, 2, 0, 1175.0F, cell, true) && store.position(160, 2, cell, 0, value));
  assert(store.position(160, 2, cell, 0, values) && store.cell(160, 2, values, cell, false));
  assert(CTriggerStore::position(axes, cell, 0, values));
  assert(CTriggerStore::cell(axes, values, cell, true));
  cell = 0;
  assert(CTriggerStore::cell(made, 0, 1175.0F, cell, false) && CTriggerStore::dimensions_d == 4);
  assert(CTriggerStore::position(made, cell, 0, value) && value == 1200.0F);
}

int main() {
  const CQtParamInstance db = load();
  use(db.PhysicalGear(130, 11), db.OrderSource2Rotor(130, 11), db.RotorSpeedSource(130, 11),
      db.RotorSpeedSourceAppId(130, 11), db.SpeedInfoOfRotor(130, 1), db.BaseOrder(130, 11),
      db.FrequencyRatioToGeneratingRotor(130, 1, 2), db.ParentChannel(130, 7),
      db.RotorFrequencyRelativeToSpeedSourceRotor(130, 11), db.BaseChannel(130, 7),
      db.ChannelFlags(130, 3), db.ChannelResamplingType(1));
  const auto range = db.OrderSourceRange(130, 3, 1);
  for (auto entry = range.first; entry != range.second; ++entry) assert(entry->second.ref > 0);
  assert(db.ChannelIsFix(1) && db.ChannelIsSync(3) && db.ChannelIsMix(6));
  use_parameters(db);
  use_intervals(db);
  use_triggers(db);
}
