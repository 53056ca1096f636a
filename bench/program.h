// What the benchmark programs share: their options, how they run and how they treat memory.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "bench/measurement.h"

namespace vorn::bench {

// Whose time is taken. The processor's is that of the whole process: a collector's threads count, other programs on the
// machine do not. Where threads work side by side, only the clock on the wall tells what they gain.
enum class Clock { Processor, Wall };

// One thing to measure, named "operation/library/elements".
struct Benchmark {
  std::string operation;
  std::string library;
  std::int64_t elements;
  std::function<void(benchmark::State&)> run;
  Clock clock = Clock::Processor;
  int repetitions = 0;  // 0: as many as its being limited and its size ask for
};

using Benchmarks = std::vector<Benchmark>;

// Appends a measured function; nothing for a library that has no such operation.
void add(Benchmarks& benchmarks, const char* operation, const char* library, Measured measured, std::int64_t elements);

// The same for a table of operations at several sizes, as "vorn", "C++" and "GLib".
void add(Benchmarks& benchmarks, std::span<const Operation> operations, std::span<const std::int64_t> sizes);

struct Program {
  const char* topic;                        // names its limits
  std::vector<std::string> libraries;       // the columns of its table
  Benchmarks benchmarks;                    // in the order of the table
  std::function<void()> printMore = [] {};  // what follows the tables
};

// The main function of a benchmark program: starts the runtime, measures and prints. Beside the options of Google
// Benchmark it takes --peer=LIBRARY:FILE, any number of times, for figures that another program measured.
int runBenchmarks(int argc, char** argv, const Program& program);

}  // namespace vorn::bench
