// kestrindb channel FILE MODE CHANNEL: from a channel up to its base channel.

#include <algorithm>
#include <iostream>

#include "Commands.h"
#include "Names.h"

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

}  // namespace

Json DescribeChannel(const CQtParamInstance& params, const Request& request) {
  const int mode = *request.mode;
  const int channel = request.channel;
  Json json;
  json["mode"] = mode;
  json["mode_name"] = StepName(params, mode);
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

void PrintChannel(const Json& json) {
  PrintFacts(14, {{"test step", Cell(json, "mode")},
                  {"base channel", WithName(Cell(json["base"], "id"), Cell(json["base"], "name"))},
                  {"flags", Cell(json, "flags")}});
  std::cout << '\n';
  PrintTable(json["chain"], {{"channel", "id"}, {"name", "name"}, {"own type", "type"}});
}

}  // namespace kestrindb
