// Sorting natives.

#include <vorn/collections/array_list.h>

#include <algorithm>

#include "collections/arraylist/object_sort.h"
#include "collections/arraylist/transformed_copy.h"
#include "collections/core/elements/primitive_sort.h"
#include "collections/core/kinds.h"
#include "collections/core/port/object_layout.h"

namespace vc = vorn::collections;
using vc::PrimitiveKind;

namespace {

void sortLocked(ListData& list) {
  if (list.isUnboxed()) return primitiveListSort(list);
  vc::sortObjects(list);
}

bool sortsAsI64(PrimitiveKind kind) { return vc::isIntegerKind(kind) || kind == PrimitiveKind::Boolean; }

// Sorts unboxed elements of one family directly; any other list goes to the ordinary native, without the lock.
template <bool (*kOfFamily)(PrimitiveKind)>
void sortFamily(void* list) {
  if (list == nullptr) return;
  ListData& data = *getListData(list);
  {
    const ListDataLock lock(data);
    if (kOfFamily(data.primitiveKind)) return primitiveListSort(data);
  }
  vorn_collections_ArrayList_sort(list);
}

}  // namespace

void vorn_collections_ArrayList_sort(void* list) {
  if (list == nullptr) return;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  sortLocked(data);
}

void* vorn_collections_ArrayList_sortNew(void* list) {
  if (list == nullptr) return nullptr;
  return vc::transformedCopy(
      list, [](ListData& result) { primitiveListSort(result); },
      [](vc::HandleVector::Storage& handles) { vc::sortHandles(handles.data(), handles.size()); });
}

void vorn_collections_ArrayList_sortI64Fast(void* list) { sortFamily<sortsAsI64>(list); }

void vorn_collections_ArrayList_sortF64Fast(void* list) { sortFamily<vc::isFloatingKind>(list); }
