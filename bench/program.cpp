#include "bench/program.h"

#include <malloc.h>
#include <vorn/runtime.hpp>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <string_view>

#include "bench/comparison_table.h"

namespace vorn::bench {

namespace {

// From here on an iteration is long, and needs few repetitions.
constexpr std::int64_t kLarge = 100'000;

std::string nameOf(const Benchmark& benchmark) {
  return benchmark.operation + "/" + benchmark.library + "/" + std::to_string(benchmark.elements);
}

// ---- Options --------------------------------------------------------------------------------------------------------

bool isGiven(const std::vector<char*>& arguments, std::string_view option) {
  return std::any_of(arguments.begin(), arguments.end(),
                     [option](const char* argument) { return std::string_view(argument).starts_with(option); });
}

// Takes the --peer options out and reads their files. False when one cannot be read.
bool takePeers(std::vector<char*>& arguments, Figures& figures) {
  constexpr std::string_view kOption = "--peer=";
  std::vector<char*> others;
  for (char* const argument : arguments) {
    const std::string_view text = argument;
    if (!text.starts_with(kOption)) {
      others.push_back(argument);
      continue;
    }
    const std::string value(text.substr(kOption.size()));
    const std::size_t colon = value.find(':');
    if (colon == std::string::npos || !figures.addFromFile(value.substr(0, colon), value.substr(colon + 1))) {
      std::fprintf(stderr, "bench: cannot read figures from '%s' (LIBRARY:FILE)\n", value.c_str());
      return false;
    }
  }
  arguments = others;
  return true;
}

// Reads the options, the program's defaults in front of the given ones, which override them. Repetitions of different
// benchmarks take turns, so that what disturbs the machine for a while disturbs all of them alike. False for an option
// that nobody knows.
bool initialize(std::vector<char*> arguments) {
  static std::string defaults[] = {"--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.02"};
  for (std::string& argument : defaults) arguments.insert(arguments.begin() + 1, argument.data());
  int count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);
  benchmark::Initialize(&count, arguments.data());
  return !benchmark::ReportUnrecognizedArguments(count, arguments.data());
}

// ---- Running --------------------------------------------------------------------------------------------------------

// Freed memory stays with the process and is used again: without this the peers' figures would be dominated by the
// first touch of fresh pages, which a collected heap does not pay in every round.
void keepFreedMemory() {
  mallopt(M_MMAP_THRESHOLD, 1 << 30);
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
}

// Keeps the figures of every repetition.
class Collector : public benchmark::BenchmarkReporter {
 public:
  Collector(const Benchmarks& benchmarks, Figures& figures) : figures_(figures) {
    for (const Benchmark& benchmark : benchmarks) byName_[nameOf(benchmark)] = &benchmark;
    SetErrorStream(&ignored_);  // a size of which no benchmark passes the filter is no error
  }

  bool ReportContext(const Context& context) override {
    if (!began_) PrintBasicContext(&std::cerr, context);
    began_ = true;
    return true;
  }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      const auto counter = run.counters.find("ns_per_element");
      if (run.run_type != Run::RT_Iteration || counter == run.counters.end()) continue;
      const Benchmark& benchmark = *byName_.at(run.run_name.function_name);
      figures_.add(benchmark.operation, benchmark.library, benchmark.elements, counter->second.value);
    }
  }

 private:
  Figures& figures_;
  std::map<std::string, const Benchmark*> byName_;
  std::ostringstream ignored_;
  bool began_ = false;
};

bool isLimited(const Benchmark& benchmark, std::span<const LimitedRow> limits) {
  return std::any_of(limits.begin(), limits.end(), [&](const LimitedRow& row) {
    const bool own = benchmark.library == kOwn && benchmark.operation == row.operation;
    const bool mark = benchmark.library == row.limit.against.library && benchmark.operation == row.markOperation();
    return benchmark.elements == row.elements && (own || mark);
  });
}

int repetitionsOf(const Benchmark& benchmark, std::span<const LimitedRow> limits) {
  if (benchmark.repetitions != 0) return benchmark.repetitions;
  const bool large = benchmark.elements >= kLarge;
  if (!isLimited(benchmark, limits)) return large ? 2 : 3;
  return large ? 5 : 9;
}

// Registers the benchmarks of one size, or all of them.
void registerBenchmarks(const Benchmarks& benchmarks, std::span<const LimitedRow> limits, bool repetitionsGiven,
                        const std::int64_t* elements) {
  for (const Benchmark& benchmark : benchmarks) {
    if (elements != nullptr && benchmark.elements != *elements) continue;
    auto* const registered = benchmark::RegisterBenchmark(nameOf(benchmark).c_str(), benchmark.run);
    if (!repetitionsGiven) registered->Repetitions(repetitionsOf(benchmark, limits));
    if (benchmark.clock == Clock::Wall) {
      registered->UseRealTime();
    } else {
      registered->MeasureProcessCPUTime();
    }
  }
}

// The floors that limits are set against, at the sizes where they are.
Benchmarks floorsOf(std::span<const LimitedRow> limits) {
  Benchmarks result;
  for (const Floor& floor : floors()) {
    std::set<std::int64_t> sizes;
    for (const LimitedRow& row : limits) {
      if (row.limit.against.library == std::string_view(kFloor) && row.markOperation() == std::string_view(floor.name))
        sizes.insert(row.elements);
    }
    for (const std::int64_t elements : sizes) add(result, floor.name, kFloor, floor.measured, elements);
  }
  return result;
}

// The rows that this program measured at least one library of.
std::vector<Row> rowsOf(const Benchmarks& benchmarks, const Figures& figures) {
  std::vector<Row> rows;
  for (const Benchmark& benchmark : benchmarks) {
    if (!figures.find(benchmark.operation, benchmark.library, benchmark.elements)) continue;
    const Row row{benchmark.operation, benchmark.elements};
    if (std::find(rows.begin(), rows.end(), row) == rows.end()) rows.push_back(row);
  }
  return rows;
}

// Libraries of the table that neither this program nor another one measured.
std::vector<std::string> missingLibraries(const Program& program, const Figures& figures) {
  std::vector<std::string> missing;
  for (const std::string& library : program.libraries) {
    const bool registered = std::any_of(program.benchmarks.begin(), program.benchmarks.end(),
                                        [&](const Benchmark& benchmark) { return benchmark.library == library; });
    if (!registered && !figures.hasLibrary(library)) missing.push_back(library);
  }
  return missing;
}

}  // namespace

void add(Benchmarks& benchmarks, const char* operation, const char* library, Measured measured, std::int64_t elements) {
  if (measured == nullptr) return;
  benchmarks.push_back({operation, library, elements, [=](benchmark::State& state) { measured(state, elements); }});
}

void add(Benchmarks& benchmarks, std::span<const Operation> operations, std::span<const std::int64_t> sizes) {
  for (const Operation& operation : operations) {
    for (const std::int64_t elements : sizes) {
      add(benchmarks, operation.name, kOwn, operation.vorn, elements);
      add(benchmarks, operation.name, "C++", operation.standard, elements);
      add(benchmarks, operation.name, "GLib", operation.glib, elements);
    }
  }
}

int runBenchmarks(int argc, char** argv, const Program& program) {
  keepFreedMemory();
  std::vector<char*> arguments(argv, argv + argc);
  Figures figures;
  if (!takePeers(arguments, figures)) return 1;
  const bool ownOutput = isGiven(arguments, "--benchmark_format") || isGiven(arguments, "--benchmark_list_tests");
  const bool toFile = isGiven(arguments, "--benchmark_out");
  const bool repetitionsGiven = isGiven(arguments, "--benchmark_repetitions");
  if (!initialize(arguments)) return 1;
  const RuntimeScope runtime;
  if (!runtime.running()) {
    std::fprintf(stderr, "%s: cannot start the runtime\n", argv[0]);
    return 1;
  }

  const std::span<const LimitedRow> limits = limitsOf(program.topic);
  Benchmarks benchmarks = program.benchmarks;
  for (Benchmark& floor : floorsOf(limits)) benchmarks.push_back(std::move(floor));
  if (ownOutput) {
    registerBenchmarks(benchmarks, limits, repetitionsGiven, nullptr);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
  }

  Collector collector(benchmarks, figures);
  if (toFile) {
    registerBenchmarks(benchmarks, limits, repetitionsGiven, nullptr);
    benchmark::RunSpecifiedBenchmarks(&collector);
  } else {
    // Small sizes first, while the heap is as small as that of a program that has nothing larger.
    std::set<std::int64_t> sizes;
    for (const Benchmark& benchmark : benchmarks) sizes.insert(benchmark.elements);
    for (const std::int64_t elements : sizes) {
      registerBenchmarks(benchmarks, limits, repetitionsGiven, &elements);
      benchmark::RunSpecifiedBenchmarks(&collector);
      benchmark::ClearRegisteredBenchmarks();
    }
  }
  const std::vector<Row> rows = rowsOf(program.benchmarks, figures);
  if (rows.empty()) {
    std::fprintf(stderr, "%s: no benchmark has such a name\n", argv[0]);
    return 0;
  }
  printFigures(figures, rows, program.libraries);
  printLimits(figures, limits, missingLibraries(program, figures));
  program.printMore();
  benchmark::Shutdown();
  return 0;
}

}  // namespace vorn::bench
