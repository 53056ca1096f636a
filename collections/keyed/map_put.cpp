// Inserting into maps.

#include <vorn/collections/map.h>

#include "collections/core/errors.h"
#include "collections/core/port/pending_errors.h"
#include "collections/keyed/key_of.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/map_types.h"
#include "collections/keyed/size_field.h"

namespace vc = vorn::collections;

namespace {

// The names of what is put, looked up before the map is locked.
struct EntryTypes {
  std::string_view key;
  std::string_view value;
};

// Inserts or replaces, unless user code raised during the search. All that can fail comes before the first change.
template <vc::KeyedTable<NativeMapEntry> Table>
void putLocked(MapData& map, Table& table, const NativeCollectionKey& key, const NativeMapEntry& entry,
               const EntryTypes& types) {
  const auto place = table.find(key);
  if (place.failed) return;
  const RuntimeTypeName keyType = vc::commonTypeName(map.keyType, types.key);
  const RuntimeTypeName valueType = vc::commonTypeName(map.valueType, types.value);
  if (place.node == nullptr) table.makeRoom(key);

  map.keyType = keyType;
  map.valueType = valueType;
  if (place.node != nullptr) {
    place.node->entry = entry;
  } else {
    table.insert(place, key, entry);
  }
}

}  // namespace

void vorn_collections_Map_put(void* map, void* key, void* value) {
  if (map == nullptr) return;
  if (key == nullptr) return vc::errors::raiseMapKeyIsNull();
  MapData& data = *getMapData(map);
  const NativeCollectionKey nativeKey = vc::mapKeyOf(data, key);
  if (hasPendingError()) return;
  const EntryTypes types{mapKeyRuntimeTypeName(key), vc::mapValueTypeName(value)};
  const MapDataLock lock(data);
  const NativeMapEntry entry{key, value};
  data.withTable([&](auto& table) { putLocked(data, table, nativeKey, entry, types); });
  vc::writeSizeField(map, data.count());
}

void vorn_collections_Map__set(void* map, void* key, void* value) { vorn_collections_Map_put(map, key, value); }

void vorn_collections_Map_operator_index_eq(void* map, void* key, void* value) {
  vorn_collections_Map_put(map, key, value);
}
