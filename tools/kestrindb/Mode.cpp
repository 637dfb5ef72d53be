// kestrindb mode FILE ID: a test step, and what its id holds if it is a virtual one.

#include <iostream>

#include "Commands.h"

namespace kestrindb {
namespace {

// The id of the virtual mode with that base and an index for each row of <TAutoModeParam>. Throws
// Failure if there is no such id.
int Pack(const CQtParamInstance& params, const std::vector<int>& numbers) {
  const std::vector<int> indices(numbers.begin() + 1, numbers.end());
  const std::size_t rows = params.AutoModeParams().size();
  if (indices.size() != rows) {
    throw Failure(data_bad, "<TAutoModeParam> has " + std::to_string(rows) +
                                " rows, so --make takes a base and as many indices, not " +
                                std::to_string(indices.size()) + ".");
  }
  const int id =
      CQtParamInstance::VirtModeGenerateId(numbers[0], params.VirtModeExtension(indices.data()));
  bool comes_back = CQtParamInstance::VirtMode2BaseMode(id) == numbers[0];
  for (std::size_t i = 0; i < rows; ++i) {
    comes_back = comes_back && CQtParamInstance::VirtModeDigit(id, i) - 1 == indices[i];
  }
  if (!comes_back) {
    throw Failure(
        data_bad,
        "These numbers don't fit into an id: a base runs from 0 to 2047, an index from -1 "
        "to 62, and all digits together must stay below 2^20.");
  }
  RequireMode(params, id);
  return id;
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
  json["name"] = Utf8(params.ModeName(id));
  json["base_name"] = Utf8(params.ModeName(base));
  json["phys_mode"] = phys_mode;
  json["phys_mode_name"] = Utf8(params.PhysModeName(phys_mode));
  json["flags"] = props == params.ModeProperty().end() ? 0U : props->second.flags;
  json["hidden"] = params.ModeIsHidden(id);
  return json;
}

void PrintMode(const Json& json) {
  PrintFacts(15, {{"id", Cell(json, "id") + (json["virtual"] ? "  virtual" : "")},
                  {"name", Cell(json, "name")},
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
