// kestrin_benchmarks [--markdown=FILE] [--json=FILE] [options of Google Benchmark]
//
// Runs all benchmarks and prints the medians and the goals as a table; also into files, if asked.
// With a filter of Google Benchmark's no memory is measured.

#include <malloc.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "Benchmarks.h"
#include "Figures.h"

namespace {

// Takes "--name=value" out of the arguments; empty if it is not among them.
std::string TakeOption(std::vector<char*>& arguments, std::string_view name) {
  const auto option = std::find_if(arguments.begin(), arguments.end(), [&](std::string_view text) {
    return text.starts_with(name) && text.substr(name.size()).starts_with('=');
  });
  if (option == arguments.end()) return {};
  std::string value = *option + name.size() + 1;
  arguments.erase(option);
  return value;
}

void RunAll(benchmarks::Figures& figures) {
  PrWin::SetSink([](std::wstring_view, auto, auto) {});  // what listeners cost isn't the library's
  const benchmarks::Files files;
  if (benchmark::GetBenchmarkFilter().empty()) {
    figures.Add("250 thousand", benchmarks::MeasureMemory(files.medium));
    figures.Add("2.5 million", benchmarks::MeasureMemory(files.large));
  }
  benchmarks::RegisterLoads(files);
  benchmarks::RegisterLakes(files);
  benchmarks::RegisterLookUps(files);
  benchmarks::RegisterQueries(files);
  benchmark::RunSpecifiedBenchmarks(&figures);
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<char*> arguments(argv, argv + argc);
  const std::string markdown = TakeOption(arguments, "--markdown");
  const std::string json = TakeOption(arguments, "--json");

  // Interleaved, so that a slow minute of the machine falls on all of them.
  static std::string interleaved = "--benchmark_enable_random_interleaving=true";
  arguments.insert(arguments.begin() + 1, interleaved.data());
  int count = static_cast<int>(arguments.size());
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;

  benchmarks::Figures figures;
  RunAll(figures);
  figures.WriteMarkdown(std::cout << '\n');
  if (!markdown.empty()) {
    std::ofstream out(markdown);
    figures.WriteMarkdown(out);
  }
  if (!json.empty()) {
    std::ofstream out(json);
    figures.WriteJson(out);
  }
}
