// The natives of maps and sets, called through the shared libraries with keys that are boxed already.
#include <vorn/collections/hash_set.h>
#include <vorn/collections/map.h>
#include <vorn/runtime.h>

#include <cstdio>

#include "bench/keyed_operations.h"
#include "collections/core/roots.h"
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

void printMemory(std::int64_t elements) {
  HandleVector keys;
  makeKeys(keys, Keys::Int, elements, kPutOrder);
  const RootedHandle map(vorn_object_new("Map"));
  putAll(map.get(), keys);
  const auto& table = getMapData(map.get())->hash;
  std::uint64_t bytes = table.bucketCount() * sizeof(table.bucket(0));
  using Node = collections::HashTable<NativeMapEntry>::Node;
  using Pool = collections::NodePool<Node>;
  for (const Pool::Block* block = table.pool().firstBlock(); block != nullptr; block = block->next) {
    bytes += Pool::kHeaderBytes + block->capacity * sizeof(Node);
  }
  std::printf("A map of %lld entries holds %.1f bytes an entry.\n", static_cast<long long>(elements),
              static_cast<double>(bytes) / static_cast<double>(elements));
}

}  // namespace vorn::bench::natives
