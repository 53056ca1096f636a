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

[[gnu::noinline]] Found lookUpAny(const MapData& map, void* key) {
  const NativeCollectionKey nativeKey = vc::mapKeyOf(map, key);
  return hasPendingError() ? Found{} : lookUpKey(map, nativeKey);
}

// The common case, an integer in a plain map, is inlined into every lookup and needs neither a frame nor a key in memory.
inline Found lookUp(void* map, void* key) {
  const MapData& data = *getMapData(map);
  const RegisteredObject* const box = vc::integerKeyBoxOrNull(key);
  if (box == nullptr || data.synchronized || mayHavePendingError()) return lookUpAny(data, key);
  return data.withTable([&](const auto& table) { return foundIn(table.findInteger(box->integer)); });
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
  const Found result = lookUp(map, key);
  *slot = result.value;
  return result.found;
}

bool tryMapLookupValue(void* map, std::string_view key, void** slot) {
  *slot = nullptr;
  return tryMapLookupStorageValue(map, makeNativeStringCollectionKey(key), slot);
}

void* vorn_collections_Map__get(void* map, void* key) {
  return map != nullptr && key != nullptr ? lookUp(map, key).value : nullptr;
}

void* vorn_collections_Map_operator_index(void* map, void* key) {
  if (map == nullptr || key == nullptr) return nullptr;
  const Found result = lookUp(map, key);
  // Also on top of an error that making the key raised: callers see both.
  if (!result.found) vc::errors::raiseKeyNotFound();
  return result.value;
}

bool vorn_collections_Map_tryGet(void* map, void* key, void** result) {
  *result = nullptr;
  const Found looked = map != nullptr && key != nullptr ? lookUp(map, key) : Found{};
  *result = looked.value;
  return looked.found;
}

bool vorn_collections_Map_operator_in(void* map, void* key) {
  return map != nullptr && key != nullptr && lookUp(map, key).found;
}
