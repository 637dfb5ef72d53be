#include <lKestrinDb.h>

#include <cstdio>

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  CParameterLake::Lake().read(kestrin::Text::FromUtf8(argv[1]));  // the file
  CQtParamInstance params;                                        // the handle
  if (!params.ReadTablesFromCandidateLake()) return 1;            // refused: the log tells why
  for (const auto& [key, channel] : params.Channel()) {  // a table, in the order of its ids
    std::printf("%d %s\n", key[0], kestrin::Text::ToUtf8(params.ChannelName(key[0])).c_str());
  }
}
