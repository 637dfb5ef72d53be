// What a run has measured, and the goals that the library has set itself.
#pragma once

#include <benchmark/benchmark.h>

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "Benchmarks.h"

namespace benchmarks {

// Shows what the console reporter shows, and keeps the medians.
class Figures : public benchmark::ConsoleReporter {
 public:
  Figures() : ConsoleReporter(OO_Tabular) {}

  void ReportRuns(const std::vector<Run>& runs) override;
  void Add(const std::string& name, const Memory& memory);

  // The goals and all figures; as Markdown for docs/performance.md, and as JSON. Goals whose
  // benchmarks did not run are left out.
  void WriteMarkdown(std::ostream& out) const;
  void WriteJson(std::ostream& out) const;

 private:
  // Seconds by the name of a benchmark, bytes for memory.
  std::map<std::string, double> values_;
};

}  // namespace benchmarks
