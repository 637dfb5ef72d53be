// kestrindb mode FILE ID: a test step, and what its id holds if it is a virtual one.

#include <iostream>

#include "Commands.h"
#include "Names.h"

namespace kestrindb {
namespace {

// The id of the virtual test step with a base and an index for each row of <TAutoModeParam>. Throws
// Failure if there is no such id.
int Pack(const CQtParamInstance& params, const std::vector<std::string>& parts) {
  const int base = KnownId(params, Clavis::Mode, parts.front());
  const std::size_t rows = params.AutoModeParams().size();
  if (parts.size() != rows + 1) {
    throw Failure(data_bad, "<TAutoModeParam> has " + std::to_string(rows) +
                                " rows, so --make takes a base and as many indices, not " +
                                std::to_string(parts.size() - 1) + ".");
  }
  std::vector<int> indices;
  for (auto part = parts.begin() + 1; part != parts.end(); ++part) {
    const auto index = IntegerOf(*part);
    if (!index) throw Failure(data_bad, "'" + *part + "' is no index of a band.");
    indices.push_back(*index);
  }
  const int id =
      CQtParamInstance::VirtModeGenerateId(base, params.VirtModeExtension(indices.data()));
  bool comes_back = CQtParamInstance::VirtMode2BaseMode(id) == base;
  for (std::size_t i = 0; i < rows; ++i) {
    comes_back = comes_back && CQtParamInstance::VirtModeDigit(id, i) - 1 == indices[i];
  }
  if (comes_back) return id;
  throw Failure(data_bad,
                "These numbers don't fit into an id: a base runs from 0 to 2047, an index from -1 "
                "to 62, and all digits together must stay below 2^20.");
}

}  // namespace

Json DescribeMode(const CQtParamInstance& params, const Request& request) {
  const int id = request.mode ? *request.mode : Pack(params, request.make);
  const int base = CQtParamInstance::VirtMode2BaseMode(id);
  const int phys_mode = params.PhysModeId(id);
  const auto props = params.ModeProperty().find(base);
  Json json;
  json["id"] = id;
  json["virtual"] = CQtParamInstance::IsVirtualMode(id);
  json["base"] = base;
  json["extension"] = CQtParamInstance::VirtModeExtension(id);
  json["digits"] = Json::array();
  std::size_t i = 0;
  for (const auto& row : params.AutoModeParams()) {
    const int digit = CQtParamInstance::VirtModeDigit(id, i++);
    json["digits"].push_back({{"signal", row.first[0]},
                              {"signal_name", Utf8(params.ApplicationSignalName(row.first[0]))},
                              {"digit", digit},
                              {"index", digit - 1}});
  }
  json["name"] = StepName(params, id);
  json["base_name"] = StepName(params, base);
  json["phys_mode"] = phys_mode;
  json["phys_mode_name"] = Utf8(params.PhysModeName(phys_mode));
  json["flags"] = props == params.ModeProperty().end() ? 0U : props->second.flags;
  json["hidden"] = params.ModeIsHidden(id);
  return json;
}

void PrintMode(const Json& json) {
  const bool lacks_band = json["virtual"] && Cell(json, "name").empty();
  PrintFacts(15, {{"id", Cell(json, "id") + (json["virtual"] ? "  virtual" : "")},
                  {"name", lacks_band ? "none: a virtual test step has a band of each signal"
                                      : Cell(json, "name")},
                  {"base", Cell(json, "base")},
                  {"extension", Cell(json, "extension")},
                  {"physical mode", Cell(json, "phys_mode")},
                  {"flags", Cell(json, "flags") + (json["hidden"] ? "  hidden" : "")}});
  if (!json["virtual"]) return;
  std::cout << '\n';
  PrintTable(json["digits"],
             {{"signal", "signal"}, {"digit", "digit"}, {"band index", "index", "none"}});
}

}  // namespace kestrindb
