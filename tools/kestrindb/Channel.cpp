// kestrindb channel FILE MODE CHANNEL: from a channel up to its base channel.

#include <algorithm>
#include <iostream>
#include <memory>

#include "Command.h"

namespace kestrindb {
namespace {

Json TypeNames(unsigned type) {
  Json names = Json::array();
  if ((type & CQtParamInstance::channel_sync) != 0) names.push_back("sync");
  if ((type & CQtParamInstance::channel_mix) != 0) names.push_back("mix");
  if ((type & CQtParamInstance::channel_fix) != 0) names.push_back("fix");
  return names;
}

Json NamedChannel(const CQtParamInstance& params, int channel) {
  return {{"id", channel}, {"name", Utf8(params.ChannelName(channel))}};
}

// The channel and its parents; where the chain closes on itself it ends, as it does in the library.
std::vector<int> Chain(const CQtParamInstance& params, int mode, int channel) {
  std::vector<int> chain;
  do {
    chain.push_back(channel);
    channel = params.ParentChannel(mode, channel);
  } while (channel != -1 && std::find(chain.begin(), chain.end(), channel) == chain.end());
  return chain;
}

Json DescribeChannel(const CQtParamInstance& params, int mode, int channel) {
  Json json;
  json["mode"] = mode;
  json["mode_name"] = Utf8(params.ModeName(mode));
  json["chain"] = Json::array();
  for (const int member : Chain(params, mode, channel)) {
    Json entry = NamedChannel(params, member);
    entry["type"] = TypeNames(params.ChannelResamplingType(member));
    json["chain"].push_back(std::move(entry));
  }
  json["base"] = NamedChannel(params, params.BaseChannel(mode, channel));
  json["flags"] = TypeNames(static_cast<unsigned>(params.ChannelFlags(mode, channel)));
  return json;
}

std::string Joined(const Json& names) {
  std::string text;
  for (const Json& name : names) text += (text.empty() ? "" : " ") + name.get<std::string>();
  return text;
}

void PrintChannel(const Json& json) {
  std::cout << "test step     " << WithName(json["mode"], json["mode_name"]) << "\nbase channel  "
            << WithName(json["base"]["id"], json["base"]["name"]) << "\nflags         "
            << Joined(json["flags"]) << "\n\n";
  std::vector<std::vector<std::string>> rows;
  for (const Json& entry : json["chain"]) {
    rows.push_back({entry["id"].dump(), entry["name"].get<std::string>(), Joined(entry["type"])});
  }
  PrintTable({"channel", "name", "own type"}, rows);
}

}  // namespace

void AddChannel(CommandLine& line) {
  auto file = std::make_shared<std::string>();
  auto mode = std::make_shared<int>(0);
  auto channel = std::make_shared<int>(0);
  CLI::App* command =
      line.Add("channel", "A channel in a test step: its parents up to the base channel, its flags",
               [file, mode, channel, &line] {
                 const DataBase data(*file);
                 data.RequireAccepted();
                 data.RequireMode(*mode);
                 if (!data.params.IsValidChannel(*channel)) {
                   throw Failure(data_bad, "There is no channel " + std::to_string(*channel) +
                                               "; see kestrindb names FILE channel.");
                 }
                 const Json json = DescribeChannel(data.params, *mode, *channel);
                 line.json ? Print(json) : PrintChannel(json);
                 return data.LoadStatus();
               });
  command->add_option("FILE", *file, "Parameter file")->required();
  command->add_option("MODE", *mode, "Id of a test step")->required();
  command->add_option("CHANNEL", *channel, "Id of a channel")->required();
}

}  // namespace kestrindb
