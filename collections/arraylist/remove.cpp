// Natives that remove elements.

#include <vorn/collections/array_list.h>

#include <cstdint>

#include "collections/arraylist/search.h"
#include "collections/core/elements/primitive_elements.h"
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/index_rules.h"
#include "collections/core/kinds.h"
#include "collections/core/port/object_layout.h"

namespace vc = vorn::collections;

namespace {

// The common case of removeAt: the last of unboxed elements. Kept free of calls, so that the native needs no frame.
inline bool removeLastUnboxed(ListData& list, long long index) {
  SmallPrimitiveBuffer& buffer = list.primitive;
  if (!list.isUnboxed() || index < 0 || static_cast<std::uint64_t>(index) + 1 != buffer.size) return false;
  if (buffer.elementSize != vc::primitiveWidth(list.primitiveKind)) return false;
  --buffer.size;
  return true;
}

[[gnu::noinline]] void lockedRemoveAt(ListData& list, long long index) {
  const ListDataLock lock(list);
  const auto at = vc::elementIndexOrRaise(list.logicalSize(), index);
  if (!at) return;
  if (list.isUnboxed()) {
    primitiveListEraseAt(list, *at);
  } else {
    list.objectErase(*at);
  }
}

}  // namespace

void vorn_collections_ArrayList_removeAt(void* list, long long index) {
  if (list == nullptr) return;
  ListData& data = *getListData(list);
  if (!data.synchronized && removeLastUnboxed(data, index)) return;
  lockedRemoveAt(data, index);
}

bool vorn_collections_ArrayList_remove(void* list, void* value) {
  if (list == nullptr) return false;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  return vc::removeEqual(data, value);
}

void vorn_collections_ArrayList_clear(void* list) {
  if (list == nullptr) return;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  clearListStorage(data);
}
