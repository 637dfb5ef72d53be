// kestrindb rotors FILE MODE: the order sources of a test step, where they sit, how fast they turn.

#include <iostream>
#include <memory>

#include "Command.h"

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

Json DescribeRotors(const CQtParamInstance& params, int mode) {
  const int phys_mode = params.PhysModeId(mode);
  Json json;
  json["mode"] = mode;
  json["mode_name"] = Utf8(params.ModeName(mode));
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
  std::cout << "test step      " << WithName(json["mode"], json["mode_name"]) << "\nphysical mode  "
            << WithName(json["phys_mode"], json["phys_mode_name"]) << "\n\n";
  const auto id = [](const Json& json_id) { return json_id == -1 ? "none" : json_id.dump(); };
  const auto number = [](const Json& json_number) {
    return json_number.is_null() ? "none" : json_number.dump();
  };
  std::vector<std::vector<std::string>> rows;
  for (const Json& row : json["order_sources"]) {
    rows.push_back({row["order_source"].dump(), id(row["rotor"]), number(row["speed"]),
                    id(row["speed_source"]),
                    id(row["signal"]) + "  " + row["signal_name"].get<std::string>(),
                    number(row["base_order"]), number(row["ratio"]), number(row["order"])});
  }
  PrintTable(
      {"order source", "rotor", "speed", "speed source", "signal", "base order", "ratio", "order"},
      rows);
}

}  // namespace

void AddRotors(CommandLine& line) {
  auto file = std::make_shared<std::string>();
  auto mode = std::make_shared<int>(0);
  CLI::App* command = line.Add(
      "rotors", "The order sources of a test step: rotors, speeds, base orders, ratios, orders",
      [file, mode, &line] {
        const DataBase data(*file);
        data.RequireAccepted();
        data.RequireMode(*mode);
        const Json json = DescribeRotors(data.params, *mode);
        line.json ? Print(json) : PrintRotors(json);
        return data.LoadStatus();
      });
  command->add_option("FILE", *file, "Parameter file")->required();
  command->add_option("MODE", *mode, "Id of a test step")->required();
}

}  // namespace kestrindb
