// The memory of a load, measured in a process of its own: what this one has had before would hide
// it. The child is this program again, with the file as its argument; it prints its figures in
// bytes, and the parent reads them.

#include <malloc.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "Benchmarks.h"

namespace benchmarks {
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

std::size_t CurrentBytes() { return BytesOf("VmRSS:"); }
std::size_t PeakBytes() { return BytesOf("VmHWM:"); }

struct ClosePipe {
  void operator()(std::FILE* pipe) const { static_cast<void>(pclose(pipe)); }
};

}  // namespace

void PrintMemoryOf(const std::string& file) {
  const std::size_t before = CurrentBytes();
  DataBase data_base(file);
  const std::size_t peak = PeakBytes();
  CParameterLake::Lake().clear();
  const std::size_t cleared = CurrentBytes();
  malloc_trim(0);
  const std::size_t trimmed = CurrentBytes();
  CParameterLake::Lake().read(Text::FromUtf8(file));
  const std::size_t peak_of_second_lake = PeakBytes();
  std::printf("%zu %zu %zu %zu %zu\n", before, peak, cleared, trimmed, peak_of_second_lake);
}

Memory MeasureMemory(const TemporaryFile& file) {
  const std::string program = std::filesystem::read_symlink("/proc/self/exe");
  const std::string command = "'" + program + "' --memory-of='" + file.Name() + "'";
  const std::unique_ptr<std::FILE, ClosePipe> pipe(popen(command.c_str(), "r"));
  if (!pipe) throw std::runtime_error("can't run " + command);
  std::array<char, 256> line{};
  if (std::fgets(line.data(), line.size(), pipe.get()) == nullptr) {
    throw std::runtime_error("no figures from " + command);
  }
  Memory memory{file.Size()};
  std::istringstream(line.data()) >> memory.before >> memory.peak >> memory.cleared >>
      memory.trimmed >> memory.peak_of_second_lake;
  return memory;
}

}  // namespace benchmarks
