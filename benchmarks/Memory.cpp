// The memory of a load, measured in a process of its own: what this one has had before would hide
// it. The child is kestrin_load_once, which stands beside this program and prints a line of bytes.

#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>

#include "Benchmarks.h"

namespace benchmarks {
namespace {

struct ClosePipe {
  void operator()(std::FILE* pipe) const { static_cast<void>(pclose(pipe)); }
};

}  // namespace

Memory MeasureMemory(const TemporaryFile& file) {
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe");
  const std::string host = self.parent_path() / "kestrin_load_once";
  const std::string command = "'" + host + "' '" + file.Name() + "'";
  const std::unique_ptr<std::FILE, ClosePipe> pipe(popen(command.c_str(), "r"));
  if (!pipe) throw std::runtime_error("can't run " + command);
  std::array<char, 256> line{};
  if (std::fgets(line.data(), line.size(), pipe.get()) == nullptr) {
    throw std::runtime_error("no figures from " + command);
  }
  Memory memory{std::filesystem::file_size(file.Name())};
  std::istringstream(line.data()) >> memory.peak >> memory.tables;
  return memory;
}

}  // namespace benchmarks
