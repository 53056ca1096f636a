#include "collections/keyed/map_lookup.h"

#include <vorn/collections/map.h>

#include "collections/core/errors.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/pending_errors.h"
#include "collections/keyed/key_of.h"
#include "collections/keyed/map_data.h"

namespace vc = vorn::collections;

namespace {

// What a lookup came to, in two registers.
struct Found {
  void* value = nullptr;
  bool found = false;
};

template <class Node>
Found foundIn(const Node* node) {
  return node != nullptr ? Found{node->entry.value, true} : Found{};
}

[[gnu::always_inline]] inline Found lookUpKey(const MapData& map, const NativeCollectionKey& key) {
  if (map.hashed && !map.synchronized && !key.comparesByUserCode()) return foundIn(map.hash.findPlain(key));
  const MapDataLock lock(map);
  return map.withTable([&](const auto& table) { return foundIn(table.find(key).node); });
}

// What natives want of a lookup.
Found all(Found found) { return found; }
void* valueOf(Found found) { return found.value; }
bool isFound(Found found) { return found.found; }

template <auto resultOf>
[[gnu::noinline]] auto lookUpAny(const MapData& map, void* key) {
  const NativeCollectionKey nativeKey = vc::mapKeyOf(map, key);
  return resultOf(hasPendingError() ? Found{} : lookUpKey(map, nativeKey));
}

// In a plain hash map while no error is pending, where the key is no integer.
template <auto resultOf>
[[gnu::noinline]] auto lookUpOtherKey(const MapData& map, void* key) {
  return vc::withShortTextKey(
      key, [&](const vc::KeyWords& words) { return resultOf(foundIn(map.hash.findWords(words))); },
      [&] { return lookUpAny<resultOf>(map, key); });
}

template <auto resultOf>
[[gnu::noinline]] auto lookUpInOtherMap(const MapData& map, void* key) {
  const auto otherwise = [&] { return lookUpAny<resultOf>(map, key); };
  if (map.hashed || map.synchronized || mayHavePendingError()) return otherwise();
  return vc::withIntegerKey(
      key, [&](vc::IntegerWords words) { return resultOf(foundIn(map.ordered.findInteger(words.value))); }, otherwise);
}

// The common cases, an integer or a short text in a plain map, need no key in memory. That of an integer in a hash map is
// inlined into every lookup and, since all others are jumps to these, hardly needs a frame.
template <auto resultOf>
[[gnu::always_inline]] inline auto lookUp(void* map, void* key) {
  const MapData& data = *getMapData(map);
  if (!data.isPlainHash() || mayHavePendingError()) return lookUpInOtherMap<resultOf>(data, key);
  return vc::withIntegerKey(
      key, [&](vc::IntegerWords words) { return resultOf(foundIn(data.hash.findWords(words))); },
      [&] { return lookUpOtherKey<resultOf>(data, key); });
}

}  // namespace

// The slots of the lookups below are null before anything can throw: user code may, while a key is made or compared.

bool tryMapLookupStorageValue(void* map, const NativeCollectionKey& key, void** slot) {
  *slot = nullptr;
  const Found result = map != nullptr ? lookUpKey(*getMapData(map), key) : Found{};
  *slot = result.value;
  return result.found;
}

bool tryMapLookupObjectValue(void* map, void* key, void** slot) {
  *slot = nullptr;
  if (key == nullptr) return false;
  if (map == nullptr) {
    // Its class's hash runs all the same, and may raise.
    makeNativeCollectionKey(key);
    return false;
  }
  const Found result = lookUp<all>(map, key);
  *slot = result.value;
  return result.found;
}

bool tryMapLookupValue(void* map, std::string_view key, void** slot) {
  *slot = nullptr;
  return tryMapLookupStorageValue(map, makeNativeStringCollectionKey(key), slot);
}

void* vorn_collections_Map__get(void* map, void* key) {
  return map != nullptr && key != nullptr ? lookUp<valueOf>(map, key) : nullptr;
}

void* vorn_collections_Map_operator_index(void* map, void* key) {
  if (map == nullptr || key == nullptr) return nullptr;
  const Found result = lookUp<all>(map, key);
  // Also on top of an error that making the key raised: callers see both.
  if (!result.found) vc::errors::raiseKeyNotFound();
  return result.value;
}

bool vorn_collections_Map_tryGet(void* map, void* key, void** result) {
  *result = nullptr;
  const Found looked = map != nullptr && key != nullptr ? lookUp<all>(map, key) : Found{};
  *result = looked.value;
  return looked.found;
}

bool vorn_collections_Map_operator_in(void* map, void* key) {
  return map != nullptr && key != nullptr && lookUp<isFound>(map, key);
}
