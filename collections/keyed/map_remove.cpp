// Removing from maps.

#include <vorn/collections/map.h>

#include "collections/core/port/pending_errors.h"
#include "collections/keyed/key_of.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/size_field.h"

namespace vc = vorn::collections;

namespace {

template <vc::KeyedTable<NativeMapEntry> Table>
bool removeLocked(Table& table, const NativeCollectionKey& key) {
  const auto place = table.find(key);
  if (place.node == nullptr) return false;
  table.remove(place);
  return true;
}

}  // namespace

bool vorn_collections_Map_remove(void* map, void* key) {
  if (map == nullptr || key == nullptr) return false;
  MapData& data = *getMapData(map);
  const NativeCollectionKey nativeKey = vc::mapKeyOf(data, key);
  if (hasPendingError()) return false;
  const MapDataLock lock(data);
  const bool removed = data.withTable([&](auto& table) { return removeLocked(table, nativeKey); });
  vc::writeSizeField(map, data.count());
  return removed;
}

void vorn_collections_Map_clear(void* map) {
  if (map == nullptr) return;
  MapData& data = *getMapData(map);
  const MapDataLock lock(data);
  data.withTable([](auto& table) { table.clear(); });
  data.keyType = data.valueType = {};
  data.lastKeyClass = data.lastValueClass = nullptr;
  vc::writeSizeField(map, 0);
}
