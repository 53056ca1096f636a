// The natives of maps and sets beside the C++ standard library, GLib and Abseil, at a size that stays in the caches and
// at a million.
//
// Prints the benchmarks as they run and then one table. All options of Google Benchmark work; with --benchmark_format
// set, only that output appears.

#include <vector>

#include "bench/comparison_table.h"
#include "bench/keyed_operations.h"
#include "bench/program.h"

namespace {

using namespace vorn::bench;  // NOLINT(google-build-using-namespace): the program's own namespace

constexpr std::int64_t kSmall = 1000;
constexpr std::int64_t kLarge = 1000000;

constexpr KeyedOperation kOperations[] = {
    {"put Int", natives::putInt, standard::putInt, glib::putInt, abseil::putInt, 40, 110},
    {"_get Int", natives::getInt, standard::getInt, glib::getInt, abseil::getInt, 10, 40},
    {"_get absent Int", natives::getAbsentInt, standard::getAbsentInt, glib::getAbsentInt, abseil::getAbsentInt, 8, 0},
    {"put String", natives::putText, standard::putText, glib::putText, abseil::putText, 60, 220},
    {"_get String", natives::getText, standard::getText, glib::getText, abseil::getText, 20, 120},
    {"_get absent String", natives::getAbsentText, standard::getAbsentText, glib::getAbsentText, abseil::getAbsentText,
     15, 0},
    {"walk", natives::walk, standard::walk, glib::walk, abseil::walk, 15, 15},
    {"keys", natives::listKeys, nullptr, nullptr, nullptr, 0, 0},
    {"set add Int", natives::addInt, nullptr, nullptr, nullptr, 0, 0},
    {"sorted put Int", natives::putSorted, standard::putSorted, glib::putSorted, abseil::putSorted, 0, 0},
    {"sorted _get Int", natives::getSorted, standard::getSorted, glib::getSorted, abseil::getSorted, 0, 0},
    {"sorted walk", natives::walkSorted, standard::walkSorted, glib::walkSorted, abseil::walkSorted, 15, 0},
};

// What no size and no keys may make disproportionate: each row beside the one it must not leave far behind.
struct Proportion {
  const char* name;
  Measured vorn;
  std::int64_t large;
};
constexpr Proportion kProportions[] = {
    {"set drain from the front", natives::drainFront, kLarge},
    {"set drain from the end", natives::drainEnd, kLarge},
    {"keys of ten left", natives::listKeysLeft, kLarge},
    {"put chosen Int", natives::putChosen, 40000},
    {"put random Int", natives::putRandom, 40000},
    {"put tuple of depth 16", natives::putNestedTuples, 40000},
    {"put flat tuple", natives::putFlatTuples, 40000},
};

}  // namespace

int main(int argc, char** argv) {
  return runBenchmarks(
      argc, argv, {"vorn", "C++", "GLib", "Abseil"},
      [](std::vector<ComparisonTable::Row>& rows) {
        for (const KeyedOperation& operation : kOperations) {
          for (const std::int64_t size : {kSmall, kLarge}) {
            registerBenchmark(operation.name, "vorn", operation.vorn, size);
            registerBenchmark(operation.name, "C++", operation.standard, size);
            registerBenchmark(operation.name, "GLib", operation.glib, size);
            registerBenchmark(operation.name, "Abseil", operation.abseil, size);
            rows.push_back({operation.name, size, size == kSmall ? operation.smallLimit : operation.largeLimit});
          }
        }
        for (const Proportion& proportion : kProportions) {
          for (const std::int64_t size : {kSmall, proportion.large}) {
            registerBenchmark(proportion.name, "vorn", proportion.vorn, size);
            rows.push_back({proportion.name, size, 0});
          }
        }
      },
      [] { natives::printMemory(kLarge); });
}
