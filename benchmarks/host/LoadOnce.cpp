// kestrin_load_once FILE
//
// A host as small as can be: it loads a file, gives the lake back, and prints in bytes what it had
// in memory, as the members of benchmarks::Memory. It is a program of its own, since the benchmarks
// bring libraries and files that no host has.

#include <lKestrinDb.h>
#include <malloc.h>

#include <cstddef>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

using namespace kestrin;

namespace {

// A line of the process's status, such as "VmHWM:  5000 kB". What getrusage calls the peak may be
// that of the parent.
std::size_t BytesOf(std::string_view what) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(what)) return std::stoul(line.substr(what.size())) * 1024;
  }
  throw std::runtime_error("the system doesn't tell " + std::string(what));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  CLake& lake = CParameterLake::Lake();
  lake.read(Text::FromUtf8(argv[1]));
  if (!CQtParamInstance().ReadTablesFromCandidateLake()) return 1;
  lake.clear();
  malloc_trim(0);
  std::printf("%zu %zu\n", BytesOf("VmHWM:"), BytesOf("VmRSS:"));
}
