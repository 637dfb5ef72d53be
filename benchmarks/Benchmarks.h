// What is measured, a function and a file a topic. Each registers benchmarks under names of the
// form topic/what/who, from which Figures.cpp makes its ratios.
#pragma once

#include <benchmark/benchmark.h>
#include <lKestrinDb.h>
#include <malloc.h>
#include <time.h>

#include <bit>
#include <cstddef>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "ParameterFile.h"

namespace benchmarks {

// The parameter files that all work on.
struct Files {
  TemporaryFile small{[] { return MakeParameterFile(25'000, Order::sorted); }};
  TemporaryFile medium{[] { return MakeParameterFile(250'000, Order::sorted); }};
  TemporaryFile shuffled{[] { return MakeParameterFile(250'000, Order::shuffled); }};
  TemporaryFile bad{[] { return WithBadLines(MakeParameterFile(250'000, Order::sorted)); }};
  TemporaryFile large{[] { return MakeParameterFile(2'500'000, Order::sorted); }};
};

void RegisterLoads(const Files& files);
void RegisterLakes(const Files& files);
void RegisterLookUps(const Files& files);
void RegisterQueries(const Files& files);

// Bytes of the process over a load.
struct Memory {
  std::size_t file;        // the size of the file
  std::size_t peak = 0;    // of the load
  std::size_t tables = 0;  // what is left when the lake is given back, also by the heap
};

Memory MeasureMemory(const TemporaryFile& file);

// A data base of its own, loaded from a file. The candidate lake holds the file until this goes.
class DataBase {
 public:
  explicit DataBase(const std::string& file);
  ~DataBase() { CParameterLake::Lake().clear(); }
  DataBase(const DataBase&) = delete;
  DataBase& operator=(const DataBase&) = delete;

  CQtParamInstance Params() { return CQtParamInstance(&store_); }
  const CQtParamDistillery& Store() const { return store_; }

 private:
  CQtParamDistillery store_;
};

// CPU time of the process: what else runs on the machine counts little.
inline double CpuSeconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// Long work, done once a repetition, and once before its time begins. Its result is destroyed
// outside of the time. The first work of a process has to get its memory from the system: for that
// the heap is given back. Later work finds it in the heap: all of it, so that what is measured
// doesn't hang on which sizes the C library would have kept.
enum class Heap { kept, given_back };

template <class Work>
void RegisterWork(const std::string& name, int repetitions, Heap heap, Work work) {
  const auto measure = [heap, work](benchmark::State& state) {
    for ([[maybe_unused]] auto _ : state) {
      work();
      if (heap == Heap::given_back) malloc_trim(0);
      const double start = CpuSeconds();
      auto result = work();
      state.SetIterationTime(CpuSeconds() - start);
      benchmark::DoNotOptimize(result);
    }
  };
  benchmark::RegisterBenchmark(name.c_str(), measure)
      ->UseManualTime()
      ->Iterations(1)
      ->Repetitions(repetitions)
      ->DisplayAggregatesOnly()
      ->Unit(benchmark::kMillisecond);
}

// Short questions are asked in turn and over again: "again" a few, as many as a test step has
// measured quantities, whose answers the processor soon has at hand; "any" so many that it can't
// learn them.
constexpr std::size_t few = 1024;
constexpr std::size_t questions = 65536;
static_assert(std::has_single_bit(few) && std::has_single_bit(questions));

// Keys of a table, one for each question, at random. They are copies: reading one in its place
// would fetch the very row that the library is about to find, and for its rivals another one.
template <class Rows>
std::vector<typename Rows::key_type> AnyKeys(const Rows& rows) {
  std::vector<typename Rows::key_type> all;
  for (const auto& row : rows) all.push_back(row.first);
  std::mt19937_64 random;
  std::vector<typename Rows::key_type> drawn;
  for (std::size_t i = 0; i < questions; ++i) drawn.push_back(all[random() % all.size()]);
  return drawn;
}

// What is asked has to be there: a miss would be measured for nothing.
inline void Require(bool found, const char* what) {
  if (!found) throw std::runtime_error(what);
}

// `ask` takes the number of a question, which is below `questions`.
template <class Ask>
void RegisterQuestion(const std::string& name, Ask ask) {
  for (const std::size_t count : {few, questions}) {
    const char* const how = count == few ? "/again" : "/any";
    benchmark::RegisterBenchmark((name + how).c_str(),
                                 [ask, count](benchmark::State& state) {
                                   std::size_t i = 0;
                                   for ([[maybe_unused]] auto _ : state) {
                                     benchmark::DoNotOptimize(ask(i));
                                     i = (i + 1) &
                                         (count - 1);  // a division takes as long as a short answer
                                   }
                                 })
        ->Repetitions(9)
        ->MinTime(0.05)
        ->DisplayAggregatesOnly();
  }
}

}  // namespace benchmarks
