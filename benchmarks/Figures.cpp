#include "Figures.h"

#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string_view>

namespace benchmarks {
namespace {

// "At most" or "at least" a limit: a figure over another one.
struct Goal {
  enum Sense { at_most, at_least };

  std::string what;
  Sense sense;
  double limit;
  std::string figure;
  std::string over;

  bool IsMetBy(double measured) const {
    return sense == at_most ? measured <= limit : measured >= limit;
  }
};

// Two that do the same don't always take the same time: what counts as not slower.
constexpr double not_slower = 1.05;

std::vector<Goal> Goals() {
  using enum Goal::Sense;
  const std::string ours = "/lKestrinDb";
  const std::string load = "load/250 thousand";
  const std::string first = ", first of a process";
  const std::string lake = "lake/read and write";
  std::vector<Goal> goals = {
      {"Load of 250 thousand lines over the bare limit", at_most, 1.8, load + ours,
       load + "/bare limit"},
      {"The same over SQLite", at_most, 0.5, load + ours, load + "/SQLite"},
      {"First load of a process over the bare limit", at_most, 2, load + first + ours,
       load + first + "/bare limit"},
      {"Load of shuffled rows over sorted ones", at_most, 1.5, load + ", shuffled" + ours,
       load + ours},
      {"Load of bad lines over good ones", at_most, 2, load + ", bad lines" + ours, load + ours},
      {"Load of 2.5 million lines over 250 thousand", at_most, 11, "load/2.5 million" + ours,
       load + ours},
      {"Lake read and written over the bytes alone", at_most, 1.5, lake + ours,
       lake + "/bare limit"},
  };
  for (const std::string lines : {"250 thousand", "2.5 million"}) {
    goals.push_back({"Peak memory of a load of " + lines + " lines over the file", at_most, 8.5,
                     "memory/" + lines + "/peak", "memory/" + lines + "/file"});
  }
  for (const std::string how : {"/again", "/any"}) {
    for (const std::string what : {"name by id", "id by name", "row by key"}) {
      const std::string look_up = "look-up/" + what + "/";
      goals.push_back({what + how + ": lKestrinDb over std::map", at_most, not_slower,
                       look_up + "lKestrinDb" + how, look_up + "std::map" + how});
      if (what == "row by key") continue;
      goals.push_back({what + how + ": SQLite over lKestrinDb", at_least, 8,
                       look_up + "SQLite" + how, look_up + "lKestrinDb" + how});
    }
  }
  return goals;
}

std::string Format(const char* form, double number) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), form, number);
  return text.data();
}

std::string InUnit(const std::string& name, double value) {
  if (name.starts_with("memory/")) return Format("%.1f MB", value / 1e6);
  return value < 1e-5 ? Format("%.1f ns", value * 1e9) : Format("%.1f ms", value * 1e3);
}

// A goal and what was measured of it, if it was.
std::optional<double> Measured(const Goal& goal, const std::map<std::string, double>& values) {
  const auto figure = values.find(goal.figure);
  if (figure == values.end()) return std::nullopt;
  const auto over = values.find(goal.over);
  if (over == values.end()) return std::nullopt;
  return figure->second / over->second;
}

}  // namespace

void Figures::ReportRuns(const std::vector<Run>& runs) {
  ConsoleReporter::ReportRuns(runs);
  for (const Run& run : runs) {
    if (run.aggregate_name != "median") continue;
    const std::string& name = run.run_name.function_name;
    const bool is_manual = run.run_name.time_type == "manual_time";
    const double time = is_manual ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
    values_[name] = time / benchmark::GetTimeUnitMultiplier(run.time_unit);
  }
}

void Figures::Add(const std::string& name, const Memory& memory) {
  const std::string topic = "memory/" + name + "/";
  const auto add = [&](const char* what, std::size_t bytes) {
    values_[topic + what] = static_cast<double>(bytes);
  };
  add("file", memory.file);
  add("peak", memory.peak);
  add("tables alone", memory.tables);
}

void Figures::WriteMarkdown(std::ostream& out) const {
  out << "| What | Goal | Measured | Met |\n|---|---:|---:|---|\n";
  for (const Goal& goal : Goals()) {
    const auto measured = Measured(goal, values_);
    if (!measured) continue;
    out << "| " << goal.what << " | at " << (goal.sense == Goal::at_most ? "most " : "least ")
        << Format("%.4g", goal.limit) << " | " << Format("%.3g", *measured) << " | "
        << (goal.IsMetBy(*measured) ? "yes" : "**no**") << " |\n";
  }
  out << "\n| Figure | Median |\n|---|---:|\n";
  for (const auto& [name, value] : values_) {
    out << "| " << name << " | " << InUnit(name, value) << " |\n";
  }
}

void Figures::WriteJson(std::ostream& out) const {
  nlohmann::ordered_json goals = nlohmann::ordered_json::array();
  for (const Goal& goal : Goals()) {
    const auto measured = Measured(goal, values_);
    if (!measured) continue;
    goals.push_back({{"what", goal.what},
                     {goal.sense == Goal::at_most ? "at_most" : "at_least", goal.limit},
                     {"measured", *measured},
                     {"met", goal.IsMetBy(*measured)}});
  }
  out << nlohmann::ordered_json{{"goals", goals}, {"figures", values_}}.dump(2) << '\n';
}

}  // namespace benchmarks
