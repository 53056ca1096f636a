#include "bench/floors.h"

#include <vorn/collections/array_list.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace vorn::bench {

namespace {

void emptyCall(benchmark::State& state, std::int64_t elements) {
  for (auto _ : state) {
    for (std::int64_t i = 0; i < elements; ++i) keep(vorn_collections_ArrayList_size(nullptr));
  }
  countElements(state, elements);
}

void readMemory(benchmark::State& state, std::int64_t elements) {
  const std::vector<char> bytes(static_cast<std::size_t>(elements) * 4, 'a');
  for (auto _ : state) keep(std::memchr(bytes.data(), 'b', bytes.size()));
  countElements(state, elements);
}

void copyMemory(benchmark::State& state, std::int64_t elements) {
  const std::vector<char> source(static_cast<std::size_t>(elements) * 4, 'a');
  std::vector<char> memory(std::max(source.size(), std::size_t{64} << 20), 'b');
  std::size_t at = 0;
  for (auto _ : state) {
    std::memcpy(memory.data() + at, source.data(), source.size());
    keep(memory.data());
    at = memory.size() - at >= 2 * source.size() ? at + source.size() : 0;
  }
  countElements(state, elements);
}

constexpr Floor kFloors[] = {
    {kEmptyCall, emptyCall},
    {kMallocAndFree, mallocAndFreeBox},
    {kReadMemory, readMemory},
    {kCopyMemory, copyMemory},
};

}  // namespace

void mallocAndFreeBox(benchmark::State& state, std::int64_t elements) {
  struct PlainBox {
    std::int64_t words[4];
  };
  for (auto _ : state) {
    for (std::int64_t i = 0; i < elements; ++i) {
      auto* const box = static_cast<PlainBox*>(std::malloc(sizeof(PlainBox)));
      *box = {{1, 2, 3, i}};
      keep(box);
      std::free(box);
    }
  }
  countElements(state, elements);
}

std::span<const Floor> floors() { return kFloors; }

}  // namespace vorn::bench
