// The natives of maps and sets beside the C++ standard library, GLib and Abseil, and beside Go and PyPy where `./dev
// bench keyed` finds them, at a size that stays in the caches and at a million. How to read what it prints stands in
// docs/benchmarks.md.

#include <cstdio>

#include "bench/keyed_operations.h"
#include "bench/program.h"

using namespace vorn::bench;  // NOLINT(google-build-using-namespace): the program's own namespace

int main(int argc, char** argv) {
  Benchmarks benchmarks;
  natives::addKeyed(benchmarks);
  natives::addProportions(benchmarks);
  standard::addKeyed(benchmarks);
  glib::addKeyed(benchmarks);
  abseil::addKeyed(benchmarks);
  return runBenchmarks(argc, argv,
                       {.topic = "keyed",
                        .libraries = {"vorn", "C++", "GLib", "Abseil", "Go", "PyPy"},
                        .benchmarks = std::move(benchmarks),
                        .printMore = [] {
                          natives::printMapMemory(kLarge);
                          if (largestGrowth() < 10'000'000) {
                            std::printf("Maps of 10000000 entries were left out: less than 6 GB of memory are free.\n");
                          }
                        }});
}
