// The heap and boxes beside malloc: what one small block costs in a loop that drops it at once, collections included.
//
// Options as in list_bench.

#include <vorn/collections/array_list.h>
#include <vorn/runtime.hpp>

#include <cstdlib>
#include <vector>

#include "bench/comparison_table.h"
#include "bench/measurement.h"
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

// ---- The floor: a block of a box's size taken and given back, as a box is with a value in it.

struct PlainBox {
  std::int64_t words[4];
};

template <std::size_t bytes>
void mallocAndFree(benchmark::State& state, std::int64_t elements) {
  repeat(state, elements, [](std::int64_t) {
    void* const block = std::malloc(bytes);
    keep(block);
    std::free(block);
  });
}

void mallocBox(benchmark::State& state, std::int64_t elements) {
  repeat(state, elements, [](std::int64_t i) {
    auto* const box = static_cast<PlainBox*>(std::malloc(sizeof(PlainBox)));
    *box = {{1, 2, 3, i}};
    keep(box);
    std::free(box);
  });
}

// ---- Ours

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

constexpr Operation kOperations[] = {
    {"box Int", boxInt, mallocBox, nullptr, 10},
    {"box Int by name", boxIntByName, mallocBox, nullptr, 0},
    {"box Double", boxDouble, mallocBox, nullptr, 10},
    {"box Double by name", boxDoubleByName, mallocBox, nullptr, 0},
    {"box Int beside a million boxes", boxIntBesideAMillion, mallocBox, nullptr, 0},
    {"unbox Int", unboxInt, nullptr, nullptr, 0},
    {"unbox Int by its family", unboxIntByFamily, nullptr, nullptr, 0},
    {"operator_index, new box", operatorIndex, mallocBox, nullptr, 0},
    {"atomic block of 32 bytes", atomicBlock<32>, mallocAndFree<32>, nullptr, 0},
    {"atomic block of 64 bytes", atomicBlock<64>, mallocAndFree<64>, nullptr, 0},
    {"scanned block of 32 bytes", scannedBlock<32>, mallocAndFree<32>, nullptr, 0},
    {"scanned block of 64 bytes", scannedBlock<64>, mallocAndFree<64>, nullptr, 0},
};

}  // namespace

int main(int argc, char** argv) {
  return runBenchmarks(
      argc, argv, {"vorn", "C++"},
      [](std::vector<ComparisonTable::Row>& rows) {
        for (const Operation& operation : kOperations) {
          for (const std::int64_t size : kSizes) {
            registerBenchmark(operation.name, "vorn", operation.vorn, size);
            registerBenchmark(operation.name, "C++", operation.standard, size);
            rows.push_back({operation.name, size, operation.limit});
          }
        }
      },
      [] {});
}
