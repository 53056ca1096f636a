#include "collections/keyed/map_lookup.h"

#include <vorn/collections/map.h>

#include "collections/core/errors.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/pending_errors.h"
#include "collections/keyed/key_of.h"
#include "collections/keyed/map_data.h"

namespace vc = vorn::collections;

namespace {

const NativeMapEntry* findLocked(const MapData& map, const NativeCollectionKey& key) {
  return map.withTable([&](const auto& table) -> const NativeMapEntry* {
    const auto place = table.find(key);
    return place.node != nullptr ? &place.node->entry : nullptr;
  });
}

[[gnu::noinline]] bool lookUpLocked(const MapData& map, const NativeCollectionKey& key, void** slot) {
  const MapDataLock lock(map);
  const NativeMapEntry* const entry = findLocked(map, key);
  if (entry == nullptr) return false;
  *slot = entry->value;
  return true;
}

// The common case, a plain hash map and a key without user code, is inlined into every lookup.
inline bool lookUp(const MapData& map, const NativeCollectionKey& key, void** slot) {
  if (map.synchronized || !map.hashed || key.comparesByUserCode()) return lookUpLocked(map, key, slot);
  const auto* const node = map.hash.findPlain(key);
  if (node == nullptr) return false;
  *slot = node->entry.value;
  return true;
}

}  // namespace

bool tryMapLookupStorageValue(void* map, const NativeCollectionKey& key, void** slot) {
  *slot = nullptr;
  return map != nullptr && lookUp(*getMapData(map), key, slot);
}

bool tryMapLookupObjectValue(void* map, void* key, void** slot) {
  *slot = nullptr;
  if (key == nullptr) return false;
  if (map == nullptr) {
    // Its class's hash runs all the same, and may raise.
    vc::hashedKeyOf(key);
    return false;
  }
  const MapData& data = *getMapData(map);
  const RegisteredObject* const object = getRegisteredObjectUnsafe(key);
  if (vc::isIntegerKey(object)) [[likely]] {
    return !hasPendingError() && lookUp(data, integerCollectionKey(object->integer), slot);
  }
  const NativeCollectionKey nativeKey = vc::mapKeyOf(data, key);
  return !hasPendingError() && lookUp(data, nativeKey, slot);
}

bool tryMapLookupValue(void* map, std::string_view key, void** slot) {
  return tryMapLookupStorageValue(map, makeNativeStringCollectionKey(key), slot);
}

void* vorn_collections_Map__get(void* map, void* key) {
  void* value = nullptr;
  if (map != nullptr) tryMapLookupObjectValue(map, key, &value);
  return value;
}

void* vorn_collections_Map_operator_index(void* map, void* key) {
  if (map == nullptr || key == nullptr) return nullptr;
  void* value = nullptr;
  // Also on top of an error that making the key raised: callers see both.
  if (!tryMapLookupObjectValue(map, key, &value)) vc::errors::raiseKeyNotFound();
  return value;
}

bool vorn_collections_Map_tryGet(void* map, void* key, void** result) {
  *result = nullptr;
  return map != nullptr && tryMapLookupObjectValue(map, key, result);
}

bool vorn_collections_Map_operator_in(void* map, void* key) {
  void* value = nullptr;
  return map != nullptr && tryMapLookupObjectValue(map, key, &value);
}
