// Copies of a map's entries, taken under its lock and worked on without it.
#pragma once

#include "collections/core/port/roots.h"
#include "collections/core/port/type_name.h"
#include "collections/keyed/map_entry.h"

struct MapData;

namespace vorn::collections {

using MapEntryVector = RootedVector<MapEntrySnapshot>;

}  // namespace vorn::collections

// The entries in storage order, read under the map's lock: ascending for ordered storage, that of hash_table.h for hash
// storage. The caller stores the vector in rooted memory before it allocates again. Allocates; runs no other code.
vorn::collections::MapEntryVector::Storage snapshotMapEntries(const MapData& map);

namespace vorn::collections {

// The same into an empty rooted vector, with the value type that is recorded at the same moment.
void snapshotTypedMapEntries(const MapData& map, MapEntryVector& entries, RuntimeTypeName& valueType);

}  // namespace vorn::collections
