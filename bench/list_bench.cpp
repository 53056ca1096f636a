// The list natives beside std::vector, GLib and, for sorting, Highway's vqsort where its library is installed. How to
// read what it prints stands in docs/benchmarks.md; --benchmark_filter=-sort leaves the sorts out, which take most of
// the time.

#include <vector>

#include "bench/bulk_operations.h"
#include "bench/list_operations.h"
#include "bench/program.h"
#include "bench/sort_rows.h"

namespace {

using namespace vorn::bench;  // NOLINT(google-build-using-namespace): the program's own namespace

constexpr std::int64_t kSizes[] = {1'000, 1'000'000};
constexpr std::int64_t kBulkSizes[] = {1'000, 1'000'000, 10'000'000};

// Element by element, and searches.
constexpr Operation kOperations[] = {
    {"addInt", natives::addInt, standard::append, glib::append},
    {"addPrimitiveI64, Long", natives::addLong, standard::append, nullptr},
    {"addPrimitiveDouble", natives::addDouble, standard::append, nullptr},
    {"addInt synchronised", natives::addIntSynchronised, standard::appendLocked, glib::appendLocked},
    {"add boxed Int, unboxing", natives::addBoxed, standard::appendFromBox, glib::appendFromBox},
    {"add boxed Int, as handle", natives::addHandle, standard::appendPointer, glib::appendPointer},
    {"addAt the end", natives::addAtEnd, standard::insertFromBoxAtEnd, glib::insertFromBoxAtEnd},
    {"add to linked list", natives::addLinked, standard::appendLinked, glib::appendLinked},
    {"iterate linked list", natives::iterateLinked, standard::iterateLinked, glib::iterateLinked},
    {"getInt", natives::getInt, standard::read, glib::read},
    {"getIntFast", natives::getIntFast, standard::read, glib::read},
    {"getDouble", natives::getDouble, standard::readDouble, glib::readDouble},
    {"operator_index, new box", natives::operatorIndex, standard::readIntoBox, glib::readIntoBox},
    {"operator_index_eq", natives::operatorIndexEq, standard::writeFromBox, glib::writeFromBox},
    {"removeAt the end", natives::removeAtEnd, standard::removeLast, glib::removeLast},
    {"size", natives::size, standard::size, glib::size},
    {"sizeFast", natives::sizeFast, standard::size, glib::size},
    {"count absent Int", natives::countAbsentInt, standard::countInt, glib::countInt},
    {"operator_in absent Int", natives::operatorInAbsentInt, standard::findInt, glib::findInt},
    {"indexOf absent Double", natives::indexOfAbsentDouble, standard::findDouble, glib::findDouble},
    {"count absent Double", natives::countAbsentDouble, standard::countDouble, glib::countDouble},
    {"operator_in absent Double", natives::operatorInAbsentDouble, standard::findDouble, glib::findDouble},
    {"indexOf absent, boxed list", natives::indexOfAbsentBoxed, standard::findBox, glib::findBox},
};

// On whole lists, per element of the result. A native that makes a list writes memory that was not written lately,
// while a vector gets the block back that was just freed.
constexpr Operation kBulkOperations[] = {
    {"sumInt", natives::sumInt, standard::sumInt, glib::sumInt},
    {"sumI64Fast, Long", natives::sumLong, standard::sumLong, nullptr},
    {"sumF64Fast, Double", natives::sumDouble, standard::sumDouble, nullptr},
    {"indexOf absent Int", natives::indexOfAbsentInt, standard::findInt, glib::findInt},
    {"reverse", natives::reverse, standard::reverse, nullptr},
    {"slice [1:-1]", natives::slice, standard::slice, glib::slice},
    {"slice [::2]", natives::sliceEverySecond, standard::sliceEverySecond, nullptr},
    {"concat", natives::concat, standard::concat, glib::concat},
    {"repeat 10 times", natives::repeat, standard::concat, nullptr},
    {"addAll", natives::addAll, standard::addAll, glib::addAll},
    {"addAll, Int to Long", natives::addAllWidening, standard::widen, nullptr},
    {"addAll, synchronised both", natives::addAllSynchronised, standard::addAll, nullptr},
    {"addAll of a boxed list", natives::addAllBoxed, nullptr, nullptr},
    {"addAll of a linked list", natives::addAllLinked, nullptr, nullptr},
    {"addAll of a set", natives::addAllOfSet, nullptr, nullptr},
    {"sliceAssign [:], Int", natives::sliceAssignInts, standard::addAll, nullptr},
    {"sliceAssign [:], linked list", natives::sliceAssignLinked, nullptr, nullptr},
    {"shuffle", natives::shuffle, standard::shuffle, nullptr},
    {"commitPrimitiveI64DataSize, Char", natives::commitChars, standard::narrow, nullptr},
    {"commitIntDataSize", natives::commitInts, standard::narrow, nullptr},
    {"i64DataPtr", natives::i64DataPtr, standard::widen, nullptr},
    {"write through newPrimitiveData", natives::writeThroughPointer, standard::writeThroughPointer, nullptr},
};

}  // namespace

int main(int argc, char** argv) {
  Benchmarks benchmarks;
  add(benchmarks, kOperations, kSizes);
  add(benchmarks, kBulkOperations, kBulkSizes);
  addSorts(benchmarks);
  return runBenchmarks(argc, argv,
                       {.topic = "list",
                        .libraries = {"vorn", "C++", "GLib", "vqsort"},
                        .benchmarks = std::move(benchmarks),
                        .printMore = [] { natives::printMemory(1'000'000); }});
}
