// The list natives beside std::vector and GLib, at a size that stays in the first-level cache and at a million.
//
// Prints the benchmarks as they run and then one table. All options of Google Benchmark work; with --benchmark_format
// set, only that output appears.
#include <benchmark/benchmark.h>
#include <vorn/runtime.h>

#include <cstdio>
#include <string>
#include <vector>

#include "bench/comparison_table.h"
#include "bench/list_operations.h"
#include "bench/program.h"

namespace {

using namespace vorn::bench;  // NOLINT(google-build-using-namespace): the program's own namespace

constexpr std::int64_t kSizes[] = {1000, 1000000};

constexpr ListOperation kOperations[] = {
    {"addInt", natives::addInt, standard::append, glib::append, 2.5},
    {"addInt synchronised", natives::addIntSynchronised, standard::appendLocked, glib::appendLocked, 0},
    {"add boxed Int, unboxing", natives::addBoxed, standard::appendFromBox, glib::appendFromBox, 12},
    {"add boxed Int, as handle", natives::addHandle, standard::appendPointer, glib::appendPointer, 12},
    {"addAt the end", natives::addAtEnd, standard::insertFromBoxAtEnd, glib::insertFromBoxAtEnd, 0},
    {"add to linked list", natives::addLinked, standard::appendLinked, glib::appendLinked, 0},
    {"getInt", natives::getInt, standard::read, glib::read, 3},
    {"getIntFast", natives::getIntFast, standard::read, glib::read, 2},
    {"getDouble", natives::getDouble, standard::readDouble, glib::readDouble, 0},
    {"operator_index, new box", natives::operatorIndex, standard::readIntoBox, glib::readIntoBox, 15},
    {"operator_index_eq", natives::operatorIndexEq, standard::writeFromBox, glib::writeFromBox, 0},
    {"removeAt the end", natives::removeAtEnd, standard::removeLast, glib::removeLast, 0},
    {"size", natives::size, standard::size, glib::size, 0},
    {"sizeFast", natives::sizeFast, standard::size, glib::size, 0},
    {"indexOf absent Int", natives::indexOfAbsentInt, standard::findInt, glib::findInt, 0.08},
    {"count absent Int", natives::countAbsentInt, standard::countInt, glib::countInt, 0.08},
    {"operator_in absent Int", natives::operatorInAbsentInt, standard::findInt, glib::findInt, 0.08},
    {"indexOf absent Double", natives::indexOfAbsentDouble, standard::findDouble, glib::findDouble, 0},
    {"count absent Double", natives::countAbsentDouble, standard::countDouble, glib::countDouble, 0},
    {"operator_in absent Double", natives::operatorInAbsentDouble, standard::findDouble, glib::findDouble, 0},
    {"indexOf absent, boxed list", natives::indexOfAbsentBoxed, standard::findBox, glib::findBox, 0},
};

void registerBenchmark(const ListOperation& operation, const char* library, Measured measured, std::int64_t size) {
  const std::string name = std::string(operation.name) + "/" + library + "/" + std::to_string(size);
  // The CPU time of the whole process: a collector's threads would count, other programs on the machine do not.
  benchmark::RegisterBenchmark(name.c_str(), [measured, size](benchmark::State& state) {
    measured(state, size);
  })->MeasureProcessCPUTime();
}

}  // namespace

int main(int argc, char** argv) {
  keepFreedMemory();
  const bool ownOutput = choosesItsOwnOutput(argc, argv);
  std::vector<char*> arguments = withDefaults(argc, argv);
  int count = static_cast<int>(arguments.size()) - 1;
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
  if (vorn_runtime_start(nullptr) == 0) {
    std::fprintf(stderr, "list_bench: cannot start the runtime\n");
    return 1;
  }
  std::vector<ComparisonTable::Row> rows;
  for (const ListOperation& operation : kOperations) {
    for (const std::int64_t size : kSizes) {
      registerBenchmark(operation, "vorn", operation.vorn, size);
      registerBenchmark(operation, "C++", operation.standard, size);
      registerBenchmark(operation, "GLib", operation.glib, size);
      rows.push_back({operation.name, size, operation.limit});
    }
  }
  if (ownOutput) {
    benchmark::RunSpecifiedBenchmarks();
  } else {
    ComparisonTable table;
    if (benchmark::RunSpecifiedBenchmarks(&table) == 0) return 0;
    table.print(rows, {"vorn", "C++", "GLib"});
    natives::printMemory(1000000);
    natives::printCallFloor();
  }
  benchmark::Shutdown();
  return 0;
}
