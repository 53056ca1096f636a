// The natives of maps and sets, called through the shared libraries with keys that are boxed already.
#include <vorn/collections/hash_set.h>
#include <vorn/collections/map.h>
#include <vorn/collections/tuple.h>
#include <vorn/runtime.h>

#include <cstdio>

#include "bench/keyed_operations.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/roots.h"
#include "collections/keyed/map_data.h"

namespace vorn::bench::natives {

namespace {

using collections::HandleVector;
using collections::RootedHandle;

enum class Keys { Int, AbsentInt, Text, AbsentText };

void makeKeys(HandleVector& keys, Keys kind, std::int64_t elements, std::uint64_t seed) {
  keys->reserve(static_cast<std::size_t>(elements));
  for (const std::size_t number : shuffledOrder(elements, seed)) {
    const auto value = static_cast<std::int64_t>(number);
    if (kind == Keys::Int || kind == Keys::AbsentInt) {
      keys->push_back(vorn_box_integer("Int", kind == Keys::Int ? value : -1 - value));
    } else {
      const std::string text = textKey(number, kind == Keys::AbsentText);
      keys->push_back(vorn_string_new(text.data(), text.size()));
    }
  }
}

void putAll(void* map, const HandleVector& keys) {
  for (void* key : *const_cast<HandleVector&>(keys)) vorn_collections_Map_put(map, key, key);
}

void put(benchmark::State& state, std::int64_t elements, const char* type, Keys kind) {
  HandleVector keys;
  makeKeys(keys, kind, elements, kPutOrder);
  for (auto _ : state) {
    const RootedHandle map(vorn_object_new(type));
    putAll(map.get(), keys);
    keep(map.get());
  }
  countElements(state, elements);
}

void get(benchmark::State& state, std::int64_t elements, const char* type, Keys present, Keys wanted) {
  const RootedHandle map(vorn_object_new(type));
  HandleVector keys;
  {
    HandleVector inserted;
    makeKeys(inserted, present, elements, kPutOrder);
    putAll(map.get(), inserted);
  }
  makeKeys(keys, wanted, elements, kGetOrder);
  for (auto _ : state) {
    for (void* key : *keys) keep(vorn_collections_Map__get(map.get(), key));
  }
  countElements(state, elements);
}

void walkMap(benchmark::State& state, std::int64_t elements, const char* type) {
  const RootedHandle map(vorn_object_new(type));
  HandleVector keys;
  makeKeys(keys, Keys::Int, elements, kPutOrder);
  putAll(map.get(), keys);
  for (auto _ : state) {
    getMapData(map.get())->forEach([](const NativeCollectionKey&, const NativeMapEntry& entry) { keep(entry.value); });
  }
  countElements(state, elements);
}

}  // namespace

void putInt(benchmark::State& state, std::int64_t elements) { put(state, elements, "Map", Keys::Int); }
void getInt(benchmark::State& state, std::int64_t elements) { get(state, elements, "Map", Keys::Int, Keys::Int); }
void getAbsentInt(benchmark::State& state, std::int64_t elements) {
  get(state, elements, "Map", Keys::Int, Keys::AbsentInt);
}
void putText(benchmark::State& state, std::int64_t elements) { put(state, elements, "Map", Keys::Text); }
void getText(benchmark::State& state, std::int64_t elements) { get(state, elements, "Map", Keys::Text, Keys::Text); }
void getAbsentText(benchmark::State& state, std::int64_t elements) {
  get(state, elements, "Map", Keys::Text, Keys::AbsentText);
}
void walk(benchmark::State& state, std::int64_t elements) { walkMap(state, elements, "Map"); }
void putSorted(benchmark::State& state, std::int64_t elements) { put(state, elements, "SortedMap", Keys::Int); }
void getSorted(benchmark::State& state, std::int64_t elements) {
  get(state, elements, "SortedMap", Keys::Int, Keys::Int);
}
void walkSorted(benchmark::State& state, std::int64_t elements) { walkMap(state, elements, "SortedMap"); }

void listKeys(benchmark::State& state, std::int64_t elements) {
  const RootedHandle map(vorn_object_new("Map"));
  HandleVector keys;
  makeKeys(keys, Keys::Text, elements, kPutOrder);
  putAll(map.get(), keys);
  for (auto _ : state) keep(vorn_collections_Map_keys(map.get()));
  countElements(state, elements);
}

void addInt(benchmark::State& state, std::int64_t elements) {
  HandleVector keys;
  makeKeys(keys, Keys::Int, elements, kPutOrder);
  for (auto _ : state) {
    const RootedHandle set(vorn_object_new("HashSet"));
    for (void* key : *keys) vorn_collections_HashSet_add(set.get(), key);
    keep(set.get());
  }
  countElements(state, elements);
}

// ---- Costs that must stay in proportion -----------------------------------------------------------------------------

namespace {

void drain(benchmark::State& state, std::int64_t elements, long long end) {
  HandleVector keys;
  makeKeys(keys, Keys::Int, elements, kPutOrder);
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
    keys->push_back(vorn_box_integer("Long", unmixed(number + ((number * spread) << 32))));
  }
  for (auto _ : state) {
    const RootedHandle map(vorn_object_new("Map"));
    putAll(map.get(), keys);
    keep(map.get());
  }
  countElements(state, elements);
}

void putTuples(benchmark::State& state, std::int64_t elements, int depth) {
  HandleVector keys;
  keys->reserve(static_cast<std::size_t>(elements));
  const RootedHandle filler(vorn_box_integer("Int", 7));
  for (std::int64_t i = 0; i < elements; ++i) {
    RootedHandle tuple(vorn_box_integer("Int", i));
    for (int level = 0; level < depth; ++level) {
      void* items[] = {filler.get(), tuple.get()};
      tuple = vorn_tuple_new(nullptr, items, 2);
    }
    keys->push_back(tuple.get());
  }
  for (auto _ : state) {
    const RootedHandle map(vorn_object_new("Map"));
    putAll(map.get(), keys);
    keep(map.get());
  }
  countElements(state, elements);
}

}  // namespace

void drainFront(benchmark::State& state, std::int64_t elements) { drain(state, elements, 0); }
void drainEnd(benchmark::State& state, std::int64_t elements) { drain(state, elements, -1); }

void listKeysLeft(benchmark::State& state, std::int64_t elements) {
  constexpr std::int64_t kLeft = 10;
  const RootedHandle map(vorn_object_new("Map"));
  HandleVector keys;
  makeKeys(keys, Keys::Int, elements, kPutOrder);
  putAll(map.get(), keys);
  keys->resize(static_cast<std::size_t>(elements - kLeft));
  for (void* key : *keys) vorn_collections_Map_remove(map.get(), key);
  for (auto _ : state) keep(vorn_collections_Map_keys(map.get()));
  countElements(state, kLeft);
}

void putChosen(benchmark::State& state, std::int64_t elements) { putNumbers(state, elements, 0); }
void putRandom(benchmark::State& state, std::int64_t elements) { putNumbers(state, elements, 2654435761U); }
void putNestedTuples(benchmark::State& state, std::int64_t elements) { putTuples(state, elements, 16); }
void putFlatTuples(benchmark::State& state, std::int64_t elements) { putTuples(state, elements, 1); }

void printMemory(std::int64_t elements) {
  HandleVector keys;
  makeKeys(keys, Keys::Int, elements, kPutOrder);
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
