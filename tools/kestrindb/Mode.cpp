// kestrindb mode FILE ID: a test step, and what its id holds if it is a virtual one.

#include <iostream>
#include <memory>

#include "Command.h"

namespace kestrindb {
namespace {

Json DescribeMode(const CQtParamInstance& params, int id) {
  Json json;
  json["id"] = id;
  json["virtual"] = CQtParamInstance::IsVirtualMode(id);
  json["base"] = CQtParamInstance::VirtMode2BaseMode(id);
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
  json["base_name"] = Utf8(params.ModeName(json["base"].get<int>()));
  const int phys_mode = params.PhysModeId(id);
  json["phys_mode"] = phys_mode;
  json["phys_mode_name"] = Utf8(params.PhysModeName(phys_mode));
  const auto props = params.ModeProperty().find(json["base"].get<int>());
  json["flags"] = props == params.ModeProperty().end() ? 0U : props->second.flags;
  json["hidden"] = params.ModeIsHidden(id);
  return json;
}

void PrintMode(const Json& json) {
  std::cout << "id             " << json["id"] << (json["virtual"] ? "  virtual" : "") << '\n'
            << "name           " << json["name"].get<std::string>() << '\n'
            << "base           " << WithName(json["base"], json["base_name"]) << '\n'
            << "extension      " << json["extension"] << '\n'
            << "physical mode  " << WithName(json["phys_mode"], json["phys_mode_name"]) << '\n'
            << "flags          " << json["flags"] << (json["hidden"] ? "  hidden" : "") << '\n';
  if (!json["virtual"]) return;
  std::vector<std::vector<std::string>> rows;
  for (const Json& row : json["digits"]) {
    rows.push_back({WithName(row["signal"], row["signal_name"]), row["digit"].dump(),
                    row["index"] == -1 ? "none" : row["index"].dump()});
  }
  std::cout << '\n';
  PrintTable({"signal", "digit", "band index"}, rows);
}

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
  return id;
}

}  // namespace

void AddMode(CommandLine& line) {
  auto file = std::make_shared<std::string>();
  auto id = std::make_shared<int>(0);
  auto numbers = std::make_shared<std::vector<int>>();
  CLI::App* command =
      line.Add("mode", "A test step: name, physical mode, flags, and the parts of a virtual one",
               [file, id, numbers, &line] {
                 const DataBase data(*file);
                 data.RequireAccepted();
                 const int mode = numbers->empty() ? *id : Pack(data.params, *numbers);
                 data.RequireMode(mode);
                 const Json json = DescribeMode(data.params, mode);
                 line.json ? Print(json) : PrintMode(json);
                 return data.LoadStatus();
               });
  command->add_option("FILE", *file, "Parameter file")->required();
  auto* what = command->add_option_group("mode");
  what->add_option("ID", *id, "Id of a test step");
  what->add_option("--make", *numbers,
                   "BASE INDEX...: the id of the virtual mode with that base and a band index (-1: "
                   "none) for each row of <TAutoModeParam>")
      ->expected(1, CLI::detail::expected_max_vector_size);
  what->require_option(1);
}

}  // namespace kestrindb
