// The elements of hash sets by position and as a list, their number, and room for them.

#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>

#include <cstdint>

#include "collections/core/index_rules.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/roots.h"
#include "collections/keyed/listing.h"
#include "collections/keyed/set_data.h"

namespace vc = vorn::collections;

namespace {

// Whether there is an element at the position, which may be negative to count from the end; it then goes to `element`.
bool readAt(const SetData& set, long long index, void*& element) {
  const SetDataLock lock(set);
  const std::uint64_t position = static_cast<std::uint64_t>(index) + (index < 0 ? set.count() : 0);
  if (position >= set.count()) return false;
  element = set.table.nth(position)->entry;
  return true;
}

}  // namespace

void* vorn_collections_HashSet_operator_index(void* set, long long index) {
  if (set == nullptr) return nullptr;
  void* element = nullptr;
  // The lock is released by now.
  if (!readAt(*getSetData(set), index, element)) vc::errors::raiseIndexOutOfBounds();
  return element;
}

void* vorn_collections_HashSet_items(void* set) {
  const vc::RootedHandle list(vorn_collections_ArrayList_literal0());
  if (set == nullptr || list.get() == nullptr) return list.get();
  const SetData& data = *getSetData(set);
  const SetDataLock lock(data);
  vc::fillListing(list.get(), data.count(), [&](auto append) {
    data.forEach([&](const NativeCollectionKey&, void* element) { append(element); });
  });
  return list.get();
}

void vorn_collections_HashSet_reserve(void* set, long long count) {
  if (set == nullptr || count <= 0) return;
  SetData& data = *getSetData(set);
  const SetDataLock lock(data);
  data.table.reserve(static_cast<std::uint64_t>(count));
}

long long vorn_collections_HashSet_size(void* set) {
  if (set == nullptr) return 0;
  const SetData& data = *getSetData(set);
  const SetDataLock lock(data);
  return static_cast<long long>(data.count());
}
