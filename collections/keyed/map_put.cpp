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

// What to record after one more key or value, whose name nameOf(handle) tells where it is no box.
template <class NameOf>
RuntimeTypeName commonTypeWith(RuntimeTypeName recorded, void* handle, NameOf nameOf) {
  const RuntimeTypeName box = vc::boxTypeName(handle);
  return box.empty() ? vc::commonTypeName(recorded, nameOf(handle)) : vc::commonTypeName(recorded, box);
}

// Records the types of what is put. Neither allocates in the collected heap nor runs user code; throws with nothing
// changed when there is no memory for a new name.
[[gnu::noinline]] void recordTypes(MapData& map, const NativeMapEntry& entry) {
  const RuntimeTypeName keyType = commonTypeWith(map.keyType, entry.key, mapKeyRuntimeTypeName);
  const RuntimeTypeName valueType = commonTypeWith(map.valueType, entry.value, vc::mapValueTypeName);
  map.keyType = keyType;
  map.valueType = valueType;
  map.lastKeyClass = classOfObject(entry.key);
  map.lastValueClass = classOfObject(entry.value);
}

// Inserts or replaces at the place that a search came to, unless user code raised during it. All that can fail comes
// before the first change.
template <vc::KeyedTable<NativeMapEntry> Table>
[[gnu::always_inline]] inline void putAt(MapData& map, Table& table, typename Table::Place place,
                                         const NativeCollectionKey& key, const NativeMapEntry& entry) {
  vc::assertMayBeKept(entry.key);
  vc::assertMayBeKept(entry.value);
  if (place.failed) return;
  if (place.node == nullptr) table.makeRoom(place, key);
  if (!recordsClasses(map, classOfObject(entry.key), classOfObject(entry.value))) recordTypes(map, entry);

  if (place.node != nullptr) {
    place.node->entry = entry;
  } else {
    table.insert(place, key, entry);
  }
}

[[gnu::noinline]] void putAny(void* map, MapData& data, const NativeMapEntry entry) {
  const NativeCollectionKey key = vc::mapKeyOf(data, entry.key);
  if (hasPendingError()) return;
  const MapDataLock lock(data);
  data.withTable([&](auto& table) { putAt(data, table, table.find(key), key, entry); });
  vc::writeSizeField(map, data.count());
}

// Puts by a key whose words decide, into a plain hash map while no error is pending.
template <class Words>
[[gnu::always_inline]] inline void putByWords(void* map, MapData& data, const Words& words,
                                              const NativeMapEntry& entry) {
  putAt(data, data.hash, data.hash.locateWords(words), words.key(), entry);
  vc::writeSizeField(map, data.hash.count());
}

[[gnu::noinline]] void putOther(void* map, MapData& data, const NativeMapEntry entry) {
  vc::withShortTextKey(
      entry.key, [&](const vc::KeyWords& words) { putByWords(map, data, words, entry); },
      [&] { putAny(map, data, entry); });
}

}  // namespace

// The common cases, an integer or a short text and a plain hash map, need neither a key in memory nor a lock.
void vorn_collections_Map_put(void* map, void* key, void* value) {
  if (map == nullptr) return;
  if (key == nullptr) return vc::errors::raiseMapKeyIsNull();
  MapData& data = *getMapData(map);
  const NativeMapEntry entry{key, value};
  if (!data.isPlainHash() || mayHavePendingError()) return putAny(map, data, entry);
  vc::withIntegerKey(
      key, [&](vc::IntegerWords words) { putByWords(map, data, words, entry); }, [&] { putOther(map, data, entry); });
}

void vorn_collections_Map__set(void* map, void* key, void* value) { vorn_collections_Map_put(map, key, value); }

void vorn_collections_Map_operator_index_eq(void* map, void* key, void* value) {
  vorn_collections_Map_put(map, key, value);
}
