// Natives that remove elements.

#include <vorn/collections/array_list.h>

#include "collections/arraylist/search.h"
#include "collections/core/elements/primitive_elements.h"
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/index_rules.h"
#include "collections/core/port/object_layout.h"

namespace vc = vorn::collections;

void vorn_collections_ArrayList_removeAt(void* list, long long index) {
  if (list == nullptr) return;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  const auto at = vc::elementIndexOrRaise(data.logicalSize(), index);
  if (!at) return;
  if (data.isUnboxed()) {
    primitiveListEraseAt(data, *at);
  } else {
    data.objectErase(*at);
  }
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
