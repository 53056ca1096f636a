// The list natives beside std::vector, GLib and, for sorting, Highway's vqsort where its library is installed.
//
// Prints the benchmarks as they run and then one table. All options of Google Benchmark work (for instance
// --benchmark_filter=sort, or =-sort to leave the sorts out, which take most of the time); with --benchmark_format set,
// only that output appears.

#include <span>
#include <vector>

#include "bench/bulk_operations.h"
#include "bench/comparison_table.h"
#include "bench/list_operations.h"
#include "bench/program.h"
#include "bench/sort_rows.h"

namespace {

using namespace vorn::bench;  // NOLINT(google-build-using-namespace): the program's own namespace

constexpr std::int64_t kSizes[] = {1'000, 1'000'000};
constexpr std::int64_t kBulkSizes[] = {1'000, 1'000'000, 10'000'000};

// Element by element, and searches.
constexpr Operation kOperations[] = {
    {"addInt", natives::addInt, standard::append, glib::append, 2.5},
    {"addPrimitiveI64, Long", natives::addLong, standard::append, nullptr, 0},
    {"addPrimitiveDouble", natives::addDouble, standard::append, nullptr, 0},
    {"addInt synchronised", natives::addIntSynchronised, standard::appendLocked, glib::appendLocked, 0},
    {"add boxed Int, unboxing", natives::addBoxed, standard::appendFromBox, glib::appendFromBox, 12},
    {"add boxed Int, as handle", natives::addHandle, standard::appendPointer, glib::appendPointer, 12},
    {"addAt the end", natives::addAtEnd, standard::insertFromBoxAtEnd, glib::insertFromBoxAtEnd, 0},
    {"add to linked list", natives::addLinked, standard::appendLinked, glib::appendLinked, 0},
    {"iterate linked list", natives::iterateLinked, standard::iterateLinked, glib::iterateLinked, 0},
    {"getInt", natives::getInt, standard::read, glib::read, 3},
    {"getIntFast", natives::getIntFast, standard::read, glib::read, 2},
    {"getDouble", natives::getDouble, standard::readDouble, glib::readDouble, 0},
    {"operator_index, new box", natives::operatorIndex, standard::readIntoBox, glib::readIntoBox, 15},
    {"operator_index_eq", natives::operatorIndexEq, standard::writeFromBox, glib::writeFromBox, 0},
    {"removeAt the end", natives::removeAtEnd, standard::removeLast, glib::removeLast, 0},
    {"size", natives::size, standard::size, glib::size, 0},
    {"sizeFast", natives::sizeFast, standard::size, glib::size, 0},
    {"count absent Int", natives::countAbsentInt, standard::countInt, glib::countInt, 0.08},
    {"operator_in absent Int", natives::operatorInAbsentInt, standard::findInt, glib::findInt, 0.08},
    {"indexOf absent Double", natives::indexOfAbsentDouble, standard::findDouble, glib::findDouble, 0},
    {"count absent Double", natives::countAbsentDouble, standard::countDouble, glib::countDouble, 0},
    {"operator_in absent Double", natives::operatorInAbsentDouble, standard::findDouble, glib::findDouble, 0},
    {"indexOf absent, boxed list", natives::indexOfAbsentBoxed, standard::findBox, glib::findBox, 0},
};

// On whole lists, per element of the result. A native that makes a list writes memory that was not written lately,
// while a vector gets the block back that was just freed: what that costs is the second row.
constexpr Operation kBulkOperations[] = {
    {"read memory", nullptr, standard::readMemory, nullptr, 0},
    {"copy to memory not in a cache", nullptr, standard::copyUncached, nullptr, 0},
    {"sumInt", natives::sumInt, standard::sumInt, glib::sumInt, 0.06, 1'000},
    {"sumI64Fast, Long", natives::sumLong, standard::sumLong, nullptr, 0},
    {"sumF64Fast, Double", natives::sumDouble, standard::sumDouble, nullptr, 0},
    {"indexOf absent Int", natives::indexOfAbsentInt, standard::findInt, glib::findInt, 0.03, 1'000},
    {"reverse", natives::reverse, standard::reverse, nullptr, 0},
    {"slice [1:-1]", natives::slice, standard::slice, glib::slice, 0},
    {"slice [::2]", natives::sliceEverySecond, standard::sliceEverySecond, nullptr, 0},
    {"concat", natives::concat, standard::concat, glib::concat, 0},
    {"repeat 10 times", natives::repeat, standard::concat, nullptr, 0},
    {"addAll", natives::addAll, standard::addAll, glib::addAll, 0},
    {"addAll, Int to Long", natives::addAllWidening, standard::widen, nullptr, 0},
    {"addAll, synchronised both", natives::addAllSynchronised, standard::addAll, nullptr, 0},
    {"addAll of a boxed list", natives::addAllBoxed, nullptr, nullptr, 0},
    {"addAll of a linked list", natives::addAllLinked, nullptr, nullptr, 0},
    {"addAll of a set", natives::addAllOfSet, nullptr, nullptr, 0},
    {"sliceAssign [:], Int", natives::sliceAssignInts, standard::addAll, nullptr, 0},
    {"sliceAssign [:], linked list", natives::sliceAssignLinked, nullptr, nullptr, 0},
    {"shuffle", natives::shuffle, standard::shuffle, nullptr, 0},
    {"commitPrimitiveI64DataSize, Char", natives::commitChars, standard::narrow, nullptr, 0},
    {"commitIntDataSize", natives::commitInts, standard::narrow, nullptr, 0.3, 1'000'000},
    {"i64DataPtr", natives::i64DataPtr, standard::widen, nullptr, 0.3, 1'000'000},
    {"write through newPrimitiveData", natives::writeThroughPointer, standard::writeThroughPointer, nullptr, 0},
};

void registerOperations(std::span<const Operation> operations, std::span<const std::int64_t> sizes,
                        std::vector<ComparisonTable::Row>& rows) {
  for (const Operation& operation : operations) {
    for (const std::int64_t size : sizes) {
      registerBenchmark(operation.name, "vorn", operation.vorn, size);
      registerBenchmark(operation.name, "C++", operation.standard, size);
      registerBenchmark(operation.name, "GLib", operation.glib, size);
      rows.push_back({operation.name, size, size <= operation.limitUpTo ? operation.limit : 0});
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  return runBenchmarks(
      argc, argv, {"vorn", "C++", "GLib", "vqsort"},
      [](std::vector<ComparisonTable::Row>& rows) {
        registerOperations(kOperations, kSizes, rows);
        registerOperations(kBulkOperations, kBulkSizes, rows);
        registerSorts(rows);
      },
      [] {
        natives::printMemory(1000000);
        natives::printCallFloor();
      });
}
