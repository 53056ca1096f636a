// Inserting into maps.

#include <vorn/collections/map.h>

#include "collections/core/errors.h"
#include "collections/core/port/borrowed_box.h"
#include "collections/core/port/keys.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/pending_errors.h"
#include "collections/keyed/key_of.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/map_types.h"
#include "collections/keyed/size_field.h"

namespace vc = vorn::collections;

namespace {

// Whether the names of these classes have gone into what the map records: most maps have keys of one class and values
// of one class, and then no name is looked at.
bool recordsClasses(const MapData& map, const RuntimeClass* keyClass, const RuntimeClass* valueClass) {
  return keyClass != nullptr && keyClass == map.lastKeyClass && valueClass != nullptr &&
         valueClass == map.lastValueClass;
}

// Records the types of what is put. Neither allocates in the collected heap nor runs user code; throws with nothing
// changed when there is no memory for a new name.
[[gnu::noinline]] void recordTypes(MapData& map, const NativeMapEntry& entry) {
  const RuntimeTypeName keyType = vc::commonTypeName(map.keyType, mapKeyRuntimeTypeName(entry.key));
  const RuntimeTypeName valueType = vc::commonTypeName(map.valueType, vc::mapValueTypeName(entry.value));
  map.keyType = keyType;
  map.valueType = valueType;
  map.lastKeyClass = classOfObject(entry.key);
  map.lastValueClass = classOfObject(entry.value);
}

// Inserts or replaces, unless user code raised during the search. All that can fail comes before the first change.
template <vc::KeyedTable<NativeMapEntry> Table>
void putLocked(MapData& map, Table& table, const NativeCollectionKey& key, const NativeMapEntry& entry) {
  vc::assertMayBeKept(entry.key);
  vc::assertMayBeKept(entry.value);
  auto place = table.find(key);
  if (place.failed) return;
  if (place.node == nullptr) table.makeRoom(place, key);
  if (!recordsClasses(map, classOfObject(entry.key), classOfObject(entry.value))) recordTypes(map, entry);

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
  const MapDataLock lock(data);
  const NativeMapEntry entry{key, value};
  data.withTable([&](auto& table) { putLocked(data, table, nativeKey, entry); });
  vc::writeSizeField(map, data.count());
}

void vorn_collections_Map__set(void* map, void* key, void* value) { vorn_collections_Map_put(map, key, value); }

void vorn_collections_Map_operator_index_eq(void* map, void* key, void* value) {
  vorn_collections_Map_put(map, key, value);
}
