// The size of maps, room in them, and their equality.

#include <vorn/collections/map.h>

#include "collections/core/port/comparison.h"
#include "collections/core/port/object_layout.h"
#include "collections/keyed/map_data.h"

long long vorn_collections_Map_size(void* map) {
  if (map == nullptr) return 0;
  const MapData& data = *getMapData(map);
  const MapDataLock lock(data);
  return static_cast<long long>(data.count());
}

void vorn_collections_Map_reserve(void* map, long long count) {
  if (map == nullptr || count <= 0) return;
  MapData& data = *getMapData(map);
  if (!data.hashed) return;
  const MapDataLock lock(data);
  data.hash.reserve(static_cast<std::uint64_t>(count));
}

bool vorn_collections_Map_operator_eq(void* map, void* other) { return Vorn_deepEquals(map, other); }

bool vorn_collections_Map_operator_ne(void* map, void* other) { return !Vorn_deepEquals(map, other); }
