#include "collections/keyed/map_snapshot.h"

#include <utility>

#include "collections/keyed/map_data.h"

namespace vc = vorn::collections;

namespace vorn::collections {

void snapshotTypedMapEntries(const MapData& map, MapEntryVector& entries, RuntimeTypeName& valueType) {
  const MapDataLock lock(map);
  valueType = map.valueType;
  entries->reserve(map.count());
  map.forEach([&](const NativeCollectionKey&, const NativeMapEntry& entry) {
    entries->push_back({entry.key, entry.value});
  });
}

}  // namespace vorn::collections

vc::MapEntryVector::Storage snapshotMapEntries(const MapData& map) {
  vc::MapEntryVector entries;
  RuntimeTypeName valueType;
  vc::snapshotTypedMapEntries(map, entries, valueType);
  return std::move(*entries);
}
