#include "Figures.h"

#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <string_view>

namespace benchmarks {
namespace {

// "At most" or "at least" a limit: a figure over another one, or by itself.
struct Goal {
  enum Sense { at_most, at_least };

  std::string what;
  Sense sense;
  double limit;
  std::string figure;
  std::string over;  // empty for a figure by itself
  bool in_nanoseconds = false;

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
      {"Load of 250 thousand lines over the bare limit", at_most, 3, load + ours,
       load + "/bare limit"},
      {"The same over SQLite", at_most, 0.5, load + ours, load + "/SQLite"},
      {"First load of a process over the bare limit", at_most, 3, load + first + ours,
       load + first + "/bare limit"},
      {"Load of shuffled rows over sorted ones", at_most, 1.5, load + ", shuffled" + ours,
       load + ours},
      {"Load of bad lines over good ones", at_most, 2, load + ", bad lines" + ours, load + ours},
      {"Load of 2.5 million lines over 250 thousand", at_most, 12, "load/2.5 million" + ours,
       load + ours},
      {"The same, each as the first load of a process", at_most, 12,
       "load/2.5 million" + first + ours, load + first + ours},
      {"Lake read and written over the bytes alone", at_most, 3, lake + ours, lake + "/bare limit"},
  };
  for (const std::string lines : {"250 thousand", "2.5 million"}) {
    goals.push_back({"Peak memory of a load of " + lines + " lines over the file", at_most, 12,
                     "memory/" + lines + "/peak", "memory/" + lines + "/file"});
  }
  for (const std::string how : {"/again", "/any"}) {
    for (const std::string what : {"name by id", "id by name", "row by key"}) {
      const std::string look_up = "look-up/" + what + "/";
      goals.push_back({what + how + ": SQLite over lKestrinDb", at_least, 20,
                       look_up + "SQLite" + how, look_up + "lKestrinDb" + how});
      for (const std::string rival : {"flat_map", "std::map"}) {
        goals.push_back({what + how + ": lKestrinDb over " + rival, at_most, not_slower,
                         look_up + "lKestrinDb" + how, look_up + rival + how});
      }
    }
  }
  const std::initializer_list<std::pair<std::string, double>> limits = {
      {"IndexRange", 15},
      {"cell on a kept axis", 10},
      {"cell in the tables, one test step", 10},
      {"cell in the tables, any test step", 10},
      {"position on a kept axis", 10},
      {"position in the tables, one test step", 10},
      {"position in the tables, any test step", 10},
      {"FormatClavisText", 400}};
  for (const auto& [query, limit] : limits) {
    for (const std::string how : {"/again", "/any"}) {
      goals.push_back({query + how, at_most, limit, "query/" + query + how, "", true});
    }
  }
  const std::string text = "FormatClavisText/any";
  goals.push_back({text + ", allocations", at_most, 1, "query/" + text + "/allocations", ""});
  return goals;
}

std::string Format(const char* form, double number) {
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), form, number);
  return text.data();
}

std::string InUnit(const std::string& name, double value) {
  if (name.starts_with("memory/")) return Format("%.1f MB", value / 1e6);
  if (name.ends_with("/allocations")) return Format("%.3g", value);
  return value < 1e-5 ? Format("%.1f ns", value * 1e9) : Format("%.1f ms", value * 1e3);
}

// A goal and what was measured of it, if it was.
std::optional<double> Measured(const Goal& goal, const std::map<std::string, double>& values) {
  const auto figure = values.find(goal.figure);
  if (figure == values.end()) return std::nullopt;
  if (goal.over.empty()) return figure->second * (goal.in_nanoseconds ? 1e9 : 1);
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
    for (const auto& [counter, value] : run.counters) {
      if (value != 0) values_[name + "/" + counter] = value;
    }
  }
}

void Figures::Add(const std::string& name, const Memory& memory) {
  const std::string topic = "memory/" + name + "/";
  const auto add = [&](const char* what, std::size_t bytes) {
    values_[topic + what] = static_cast<double>(bytes);
  };
  add("file", memory.file);
  add("before", memory.before);
  add("peak", memory.peak);
  add("lake cleared", memory.cleared);
  add("lake cleared and trimmed", memory.trimmed);
  add("peak with a second lake", memory.peak_of_second_lake);
}

void Figures::WriteMarkdown(std::ostream& out) const {
  out << "| What | Goal | Measured | Met |\n|---|---:|---:|---|\n";
  for (const Goal& goal : Goals()) {
    const auto measured = Measured(goal, values_);
    if (!measured) continue;
    const char* form = goal.in_nanoseconds ? "%.4g ns" : "%.4g";
    out << "| " << goal.what << " | at " << (goal.sense == Goal::at_most ? "most " : "least ")
        << Format(form, goal.limit) << " | " << Format(form, *measured) << " | "
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
