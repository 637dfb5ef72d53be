#include <lKestrinDb.h>

#include <cstdio>

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  CLake& lake = CParameterLake::Lake();
  lake.read(kestrin::Text::FromUtf8(argv[1]));  // the file
  CQtParamInstance params;                      // the handle
  if (!params.ReadTablesFromCandidateLake()) {
    const auto& refusal = lake.last_refusal() ? lake.last_refusal() : params.LastRefusal();
    std::fprintf(stderr, "%s\n", kestrin::Text::ToUtf8(refusal.sentence).c_str());
    return 1;
  }
  for (const auto& [key, channel] : params.Channel()) {  // a table, in the order of its ids
    std::printf("%d %s\n", key[0], kestrin::Text::ToUtf8(params.ChannelName(key[0])).c_str());
  }
}
