#include <vorn/collections/hash_set.h>
#include <vorn/collections/map.h>
#include <vorn/runtime.h>

#include <cstdio>

#include "bench/keyed_operations.h"
#include "bench/limits.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/roots.h"
#include "collections/keyed/map_data.h"

namespace vorn::bench::natives {

namespace {

using collections::HandleVector;
using collections::RootedHandle;

void makeKeys(HandleVector& keys, std::int64_t elements) {
  keys->reserve(static_cast<std::size_t>(elements));
  for (const std::uint32_t number : shuffledOrder(elements, kPutOrder)) {
    keys->push_back(vorn_box_int(static_cast<std::int32_t>(number)));
  }
}

void putAll(void* map, HandleVector& keys) {
  for (void* key : *keys) vorn_collections_Map_put(map, key, key);
}

void putInMaps(benchmark::State& state, HandleVector& keys) {
  for (auto _ : state) {
    const RootedHandle map(vorn_object_new("Map"));
    putAll(map.get(), keys);
    keep(map.get());
  }
  countElements(state, static_cast<std::int64_t>(keys->size()));
}

// A set emptied element by element, taking the first or the last each time.
void drain(benchmark::State& state, std::int64_t elements, long long end) {
  HandleVector keys;
  makeKeys(keys, elements);
  for (auto _ : state) {
    state.PauseTiming();
    const RootedHandle set(vorn_object_new("HashSet"));
    for (void* key : *keys) vorn_collections_HashSet_add(set.get(), key);
    state.ResumeTiming();
    for (std::int64_t left = elements; left > 0; --left) {
      vorn_collections_HashSet_remove(set.get(), vorn_collections_HashSet_operator_index(set.get(), end));
    }
  }
  countElements(state, elements);
}

void drainFront(benchmark::State& state, std::int64_t elements) { drain(state, elements, 0); }
void drainEnd(benchmark::State& state, std::int64_t elements) { drain(state, elements, -1); }

constexpr std::int64_t kLeft = 10;

void listKeys(benchmark::State& state, void* map) {
  for (auto _ : state) keep(vorn_collections_Map_keys(map));
  countElements(state, kLeft);
}

// The keys of a map that had so many entries and has ten.
void listKeysLeft(benchmark::State& state, std::int64_t elements) {
  const RootedHandle map(vorn_object_new("Map"));
  HandleVector keys;
  makeKeys(keys, elements);
  putAll(map.get(), keys);
  keys->resize(static_cast<std::size_t>(elements - kLeft));
  for (void* key : *keys) vorn_collections_Map_remove(map.get(), key);
  listKeys(state, map.get());
}

// The keys of one that never had more.
void listFewKeys(benchmark::State& state, std::int64_t /*elements*/) {
  const RootedHandle map(vorn_object_new("Map"));
  HandleVector keys;
  makeKeys(keys, kLeft);
  putAll(map.get(), keys);
  listKeys(state, map.get());
}

// The inverse of the finaliser of SplitMix64: numbers whose mixed upper halves are all zero, and other ones.
std::int64_t unmixed(std::uint64_t bits) {
  const auto inverse = [](std::uint64_t factor) {
    std::uint64_t result = factor;
    for (int i = 0; i < 6; ++i) result *= 2 - factor * result;
    return result;
  };
  const auto unshifted = [](std::uint64_t value, int shift) {
    std::uint64_t result = value;
    for (int i = 0; i <= 64 / shift; ++i) result = value ^ (result >> shift);
    return result;
  };
  bits = unshifted(bits, 31) * inverse(0x94D049BB133111EBULL);
  bits = unshifted(bits, 27) * inverse(0xBF58476D1CE4E5B9ULL);
  return static_cast<std::int64_t>(unshifted(bits, 30));
}

void putNumbers(benchmark::State& state, std::int64_t elements, std::uint64_t spread) {
  HandleVector keys;
  keys->reserve(static_cast<std::size_t>(elements));
  for (std::int64_t i = 0; i < elements; ++i) {
    const auto number = static_cast<std::uint64_t>(i);
    keys->push_back(vorn_box_long(unmixed(number + ((number * spread) << 32))));
  }
  putInMaps(state, keys);
}

// Numbers that an unseeded mixing function gives one hash, and numbers without pattern.
void putChosen(benchmark::State& state, std::int64_t elements) { putNumbers(state, elements, 0); }
void putRandom(benchmark::State& state, std::int64_t elements) { putNumbers(state, elements, 2654435761U); }

void putTuples(benchmark::State& state, std::int64_t elements, int depth) {
  HandleVector keys;
  keys->reserve(static_cast<std::size_t>(elements));
  const RootedHandle filler(vorn_box_int(7));
  for (std::int64_t i = 0; i < elements; ++i) {
    RootedHandle tuple(vorn_box_int(static_cast<std::int32_t>(i)));
    for (int level = 0; level < depth; ++level) {
      void* items[] = {filler.get(), tuple.get()};
      tuple = vorn_tuple_new(nullptr, items, 2);
    }
    keys->push_back(tuple.get());
  }
  putInMaps(state, keys);
}

// Tuples of two, one of them sixteen levels deep and different at the bottom.
void putNestedTuples(benchmark::State& state, std::int64_t elements) { putTuples(state, elements, 16); }
void putFlatTuples(benchmark::State& state, std::int64_t elements) { putTuples(state, elements, 1); }

struct Proportion {
  const char* name;
  Measured measured;
  std::int64_t large;
};
constexpr Proportion kProportions[] = {
    {"set drain from the front", drainFront, kLarge},
    {"set drain from the end", drainEnd, kLarge},
    {"keys of ten left", listKeysLeft, kLarge},
    {"keys of ten", listFewKeys, kLarge},
    {"put chosen Int", putChosen, 40'000},
    {"put random Int", putRandom, 40'000},
    {"put tuple of depth 16", putNestedTuples, 40'000},
    {"put flat tuple", putFlatTuples, 40'000},
};

}  // namespace

void addProportions(Benchmarks& benchmarks) {
  for (const Proportion& proportion : kProportions) {
    for (const std::int64_t elements : {kSmall, proportion.large}) {
      add(benchmarks, proportion.name, kOwn, proportion.measured, elements);
    }
  }
}

void printMapMemory(std::int64_t elements) {
  HandleVector keys;
  makeKeys(keys, elements);
  const RootedHandle map(vorn_object_new("Map"));
  putAll(map.get(), keys);
  const auto& table = getMapData(map.get())->hash;
  const auto& lines = table.lines();
  const std::uint64_t bytes = (lines.bucketCount() + lines.furtherCapacity()) * sizeof(collections::BucketLine) +
                              table.chunks().capacity() * sizeof(collections::HashTable<NativeMapEntry>::Node);
  std::printf("A map of %lld entries holds %.1f bytes an entry.\n", static_cast<long long>(elements),
              static_cast<double>(bytes) / static_cast<double>(elements));
}

}  // namespace vorn::bench::natives
