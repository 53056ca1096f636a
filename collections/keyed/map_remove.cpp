// Removing from maps.

#include <vorn/collections/map.h>

#include "collections/core/port/pending_errors.h"
#include "collections/keyed/key_of.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/size_field.h"

namespace vc = vorn::collections;

namespace {

// Removes what a search came to.
template <vc::KeyedTable<NativeMapEntry> Table>
bool removeAt(Table& table, const typename Table::Place& place) {
  if (place.node == nullptr) return false;
  table.remove(place);
  return true;
}

[[gnu::noinline]] bool removeAny(void* map, MapData& data, void* key) {
  const NativeCollectionKey nativeKey = vc::mapKeyOf(data, key);
  if (hasPendingError()) return false;
  const MapDataLock lock(data);
  const bool removed = data.withTable([&](auto& table) { return removeAt(table, table.find(nativeKey)); });
  vc::writeSizeField(map, data.count());
  return removed;
}

}  // namespace

// The common case, an integer and a plain hash map, needs neither a key in memory nor a lock.
bool vorn_collections_Map_remove(void* map, void* key) {
  if (map == nullptr || key == nullptr) return false;
  MapData& data = *getMapData(map);
  const auto otherwise = [&] { return removeAny(map, data, key); };
  if (!data.isPlainHash() || mayHavePendingError()) return otherwise();
  return vc::withIntegerKey(
      key,
      [&](vc::IntegerWords words) {
        const bool removed = removeAt(data.hash, data.hash.locateWords(words));
        vc::writeSizeField(map, data.hash.count());
        return removed;
      },
      otherwise);
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
