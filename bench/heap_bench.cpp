// The heap and boxes beside malloc: what a block costs in a loop that drops it at once, collections included; lists of
// Int beside std::vector. How to read what it prints stands in docs/benchmarks.md.

#include <vorn/collections/array_list.h>
#include <vorn/runtime.hpp>

#include <cstdlib>

#include "bench/bulk_operations.h"
#include "bench/floors.h"
#include "bench/native_support.h"
#include "bench/program.h"
#include "collections/core/port/memory.h"

namespace {

using namespace vorn::bench;  // NOLINT(google-build-using-namespace): the program's own namespace

constexpr std::int64_t kSizes[] = {1'000, 1'000'000};

// Does `work(i)` for each element.
template <class Work>
void repeat(benchmark::State& state, std::int64_t elements, Work work) {
  for (auto _ : state) {
    for (std::int64_t i = 0; i < elements; ++i) work(i);
  }
  natives::requireNoErrors();
  countElements(state, elements);
}

template <std::size_t bytes>
void mallocAndFree(benchmark::State& state, std::int64_t elements) {
  repeat(state, elements, [](std::int64_t) {
    void* const block = std::malloc(bytes);
    keep(block);
    std::free(block);
  });
}

template <std::size_t bytes>
void atomicBlock(benchmark::State& state, std::int64_t elements) {
  repeat(state, elements, [](std::int64_t) { keep(Vorn_gcAllocAtomic(bytes)); });
}

template <std::size_t bytes>
void scannedBlock(benchmark::State& state, std::int64_t elements) {
  repeat(state, elements, [](std::int64_t) { keep(Vorn_gcAlloc(bytes)); });
}

void boxInt(benchmark::State& state, std::int64_t elements) {
  repeat(state, elements, [](std::int64_t i) { keep(vorn_box_int(static_cast<std::int32_t>(i))); });
}

void boxIntByName(benchmark::State& state, std::int64_t elements) {
  repeat(state, elements, [](std::int64_t i) { keep(vorn_box_integer("Int", i)); });
}

void boxDouble(benchmark::State& state, std::int64_t elements) {
  repeat(state, elements, [](std::int64_t i) { keep(vorn_box_double(static_cast<double>(i))); });
}

void boxDoubleByName(benchmark::State& state, std::int64_t elements) {
  repeat(state, elements, [](std::int64_t i) { keep(vorn_box_floating("Double", static_cast<double>(i))); });
}

void unboxInt(benchmark::State& state, std::int64_t elements) {
  const vorn::Handle box(vorn_box_int(7));
  std::int32_t value = 0;
  repeat(state, elements, [&](std::int64_t) { keep(vorn_unbox_int(box, &value)); });
}

void unboxIntByFamily(benchmark::State& state, std::int64_t elements) {
  const vorn::Handle box(vorn_box_int(7));
  std::int64_t value = 0;
  repeat(state, elements, [&](std::int64_t) { keep(vorn_unbox_integer(box, &value)); });
}

void operatorIndex(benchmark::State& state, std::int64_t elements) {
  const vorn::Handle list(vorn_object_new("ArrayList<Int>"));
  natives::fillInts(list, elements);
  repeat(state, elements, [&list](std::int64_t i) { keep(vorn_collections_ArrayList_operator_index(list, i)); });
}

// With a million boxes alive, which every collection marks.
void boxIntBesideAMillion(benchmark::State& state, std::int64_t elements) {
  const vorn::Handle list(vorn_object_new("ArrayList<Object>"));
  natives::fillBoxes(list, 1'000'000);
  boxInt(state, elements);
}

constexpr Operation kBlocks[] = {
    {"box Int", boxInt, mallocAndFreeBox, nullptr},
    {"box Int by name", boxIntByName, mallocAndFreeBox, nullptr},
    {"box Double", boxDouble, mallocAndFreeBox, nullptr},
    {"box Double by name", boxDoubleByName, mallocAndFreeBox, nullptr},
    {"box Int beside a million boxes", boxIntBesideAMillion, mallocAndFreeBox, nullptr},
    {"unbox Int", unboxInt, nullptr, nullptr},
    {"unbox Int by its family", unboxIntByFamily, nullptr, nullptr},
    {"operator_index, new box", operatorIndex, mallocAndFreeBox, nullptr},
    {"atomic block of 32 bytes", atomicBlock<32>, mallocAndFree<32>, nullptr},
    {"atomic block of 64 bytes", atomicBlock<64>, mallocAndFree<64>, nullptr},
    {"scanned block of 32 bytes", scannedBlock<32>, mallocAndFree<32>, nullptr},
    {"scanned block of 64 bytes", scannedBlock<64>, mallocAndFree<64>, nullptr},
};

// Blocks of a list's size, and what it takes to fill them.
constexpr Operation kLists[] = {
    {"slice [1:-1]", natives::slice, standard::slice, nullptr},
    {"concat", natives::concat, standard::concat, nullptr},
    {"repeat 10 times", natives::repeat, standard::concat, nullptr},
    {"write through newPrimitiveData", natives::writeThroughPointer, standard::writeThroughPointer, nullptr},
};

}  // namespace

int main(int argc, char** argv) {
  Benchmarks benchmarks;
  add(benchmarks, kBlocks, kSizes);
  add(benchmarks, kLists, kSizes);
  return runBenchmarks(argc, argv,
                       {.topic = "heap", .libraries = {"vorn", "C++"}, .benchmarks = std::move(benchmarks)});
}
