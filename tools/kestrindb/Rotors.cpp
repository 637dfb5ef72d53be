// kestrindb rotors FILE MODE: the order sources of a test step, where they sit, how fast they turn.

#include <iostream>

#include "Commands.h"
#include "Names.h"

namespace kestrindb {
namespace {

// One order source. "order" is where it shows on the axis of its speed source: its base order times
// its ratio to the speed source, as floats.
Json DescribeOrderSource(const CQtParamInstance& params, int mode, int source, int rotor) {
  const auto& speeds = params.Store().Table<L"<TRotorSpeed>">();
  const auto speed = speeds.find({params.PhysModeId(mode), rotor});
  const int signal = params.RotorSpeedSourceAppId(mode, source);
  const float base_order = params.BaseOrder(mode, source);
  const float ratio = params.RotorFrequencyRelativeToSpeedSourceRotor(mode, source);
  Json json;
  json["order_source"] = source;
  json["rotor"] = rotor;
  json["speed"] = speed == speeds.end() ? Json() : ShortNumber(speed->second.speed);
  json["speed_source"] = params.RotorSpeedSource(CQtParamInstance::VirtMode2BaseMode(mode), source);
  json["signal"] = signal;
  json["signal_name"] = Utf8(params.ApplicationSignalName(signal));
  json["base_order"] = ShortNumber(base_order);
  json["ratio"] = ShortNumber(ratio);
  json["order"] = ShortNumber(base_order * ratio);
  return json;
}

}  // namespace

Json DescribeRotors(const CQtParamInstance& params, const Request& request) {
  const int mode = *request.mode;
  const int phys_mode = params.PhysModeId(mode);
  Json json;
  json["mode"] = mode;
  json["mode_name"] = StepName(params, mode);
  json["phys_mode"] = phys_mode;
  json["phys_mode_name"] = Utf8(params.PhysModeName(phys_mode));
  json["order_sources"] = Json::array();
  for (const auto& [key, row] : params.Store().Table<L"<TOrderSource2Rotor>">()) {
    if (key[1] == phys_mode) {
      json["order_sources"].push_back(DescribeOrderSource(params, mode, key[0], row.ref));
    }
  }
  return json;
}

void PrintRotors(const Json& json) {
  PrintFacts(15, {{"test step", Cell(json, "mode")}, {"physical mode", Cell(json, "phys_mode")}});
  std::cout << '\n';
  PrintTable(json["order_sources"], {{"order source", "order_source"},
                                     {"rotor", "rotor", "none"},
                                     {"speed", "speed", "none"},
                                     {"speed source", "speed_source", "none"},
                                     {"signal", "signal", "none"},
                                     {"base order", "base_order", "none"},
                                     {"ratio", "ratio", "none"},
                                     {"order", "order", "none"}});
}

}  // namespace kestrindb
