#include "collections/keyed/map_lookup.h"

#include <vorn/collections/map.h>

#include "collections/core/errors.h"
#include "collections/keyed/key_of.h"
#include "collections/keyed/map_data.h"

namespace vc = vorn::collections;

namespace {

const NativeMapEntry* findLocked(const MapData& map, const NativeCollectionKey& key) {
  if (map.hashed) {
    const auto place = map.hash.find(key);
    return place.node != nullptr ? &place.node->entry : nullptr;
  }
  const auto place = map.ordered.find(key);
  return place.node != nullptr ? &place.node->entry : nullptr;
}

}  // namespace

bool tryMapLookupStorageValue(void* map, const NativeCollectionKey& key, void** slot) {
  *slot = nullptr;
  if (map == nullptr) return false;
  const MapData& data = *getMapData(map);
  const MapDataLock lock(data);
  const NativeMapEntry* const entry = findLocked(data, key);
  if (entry == nullptr) return false;
  *slot = entry->value;
  return true;
}

bool tryMapLookupObjectValue(void* map, void* key, void** slot) {
  *slot = nullptr;
  if (key == nullptr) return false;
  const auto nativeKey = vc::mapKeyOf(key);
  return nativeKey && tryMapLookupStorageValue(map, *nativeKey, slot);
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
