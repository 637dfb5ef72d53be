// The memory of a load, measured in a process of its own: what this one has had before would hide
// it. The child is this program again, with the file as its argument; it prints its figures in
// bytes, and the parent reads them.

#include <malloc.h>
#include <sys/resource.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

#include "Benchmarks.h"

namespace benchmarks {
namespace {

std::size_t PeakBytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

std::size_t CurrentBytes() {
  constexpr std::size_t page = 4096;
  std::ifstream statm("/proc/self/statm");
  std::size_t all = 0;
  std::size_t resident = 0;
  statm >> all >> resident;
  return resident * page;
}

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
