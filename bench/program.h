// What the benchmark programs share: their defaults and how they treat memory.
#pragma once

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <vorn/runtime.hpp>

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "bench/comparison_table.h"
#include "bench/measurement.h"

namespace vorn::bench {

inline bool choosesItsOwnOutput(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument.starts_with("--benchmark_format") || argument.starts_with("--benchmark_list_tests")) return true;
  }
  return false;
}

// The program's defaults in front of the given options, which override them.
inline std::vector<char*> withDefaults(int argc, char** argv) {
  static std::string defaults[] = {"--benchmark_repetitions=3", "--benchmark_min_time=0.03",
                                   "--benchmark_min_warmup_time=0.01"};
  std::vector<char*> arguments(argv, argv + 1);
  for (std::string& argument : defaults) arguments.push_back(argument.data());
  arguments.insert(arguments.end(), argv + 1, argv + argc);
  arguments.push_back(nullptr);
  return arguments;
}

// Freed memory stays with the process and is used again: without this the peers' figures would be dominated by the
// first touch of fresh pages, which a collected heap does not pay in every round.
inline void keepFreedMemory() {
  mallopt(M_MMAP_THRESHOLD, 1 << 30);
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
}

// Registers one benchmark as "operation/library/size"; nothing for a library that has no such operation.
inline void registerBenchmark(const char* operation, const char* library, Measured measured, std::int64_t size) {
  if (measured == nullptr) return;
  const std::string name = std::string(operation) + "/" + library + "/" + std::to_string(size);
  // The CPU time of the whole process: a collector's threads would count, other programs on the machine do not.
  benchmark::RegisterBenchmark(name.c_str(), [measured, size](benchmark::State& state) {
    measured(state, size);
  })->MeasureProcessCPUTime();
}

// The main function of a benchmark program. `registerAll(rows)` registers the benchmarks and their rows; when all ran
// and the table is printed, `printMore()` follows.
template <class RegisterAll, class PrintMore>
int runBenchmarks(int argc, char** argv, const std::vector<std::string>& libraries, RegisterAll registerAll,
                  PrintMore printMore) {
  keepFreedMemory();
  const bool ownOutput = choosesItsOwnOutput(argc, argv);
  std::vector<char*> arguments = withDefaults(argc, argv);
  int count = static_cast<int>(arguments.size()) - 1;
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
  const RuntimeScope runtime;
  if (!runtime.running()) {
    std::fprintf(stderr, "%s: cannot start the runtime\n", argv[0]);
    return 1;
  }
  std::vector<ComparisonTable::Row> rows;
  registerAll(rows);
  if (ownOutput) {
    benchmark::RunSpecifiedBenchmarks();
  } else {
    ComparisonTable table;
    if (benchmark::RunSpecifiedBenchmarks(&table) == 0) return 0;
    table.print(rows, libraries);
    printMore();
  }
  benchmark::Shutdown();
  return 0;
}

}  // namespace vorn::bench
