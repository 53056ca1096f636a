// Searching maps by value.

#include <vorn/collections/map.h>

#include <cstdint>

#include "collections/core/equality/element_order.h"
#include "collections/core/equality/text_needle.h"
#include "collections/core/pending_error_watch.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/roots.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/user_compared_key.h"

namespace vc = vorn::collections;

namespace {

// Walks the values in storage order. Equality may run user code, which may change the map: the walk then starts again,
// and takes identity for equality after kMaxRestarts times.
template <vc::KeyedTable<NativeMapEntry> Table>
bool containsValueLocked(const Table& table, void* value) {
  const vc::PendingErrorWatch watch;
  const vc::TextNeedle text(value);
  vc::RootedHandle element;
  for (int restarts = 0; restarts <= vc::kMaxRestarts; ++restarts) {
    const std::uint64_t changesBefore = table.changes();
    auto cursor = table.walk();
    while (const auto* const node = cursor.next()) {
      if (text.differsFrom(node->entry.value)) continue;
      element = node->entry.value;
      const bool equal = listValuesEqual(element.get(), value);
      if (watch.raised()) return false;
      if (equal) return true;
      if (table.changes() != changesBefore) break;
    }
    if (table.changes() == changesBefore) return false;
  }
  auto cursor = table.walk();
  while (const auto* const node = cursor.next()) {
    if (node->entry.value == value) return true;
  }
  return false;
}

}  // namespace

bool vorn_collections_Map_containsValue(void* map, void* value) {
  if (map == nullptr) return false;
  const MapData& data = *getMapData(map);
  const MapDataLock lock(data);
  return data.withTable([&](const auto& table) { return containsValueLocked(table, value); });
}
