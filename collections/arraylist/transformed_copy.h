// The frame of natives that give a changed copy of their receiver: reverseNew and sortNew.
#pragma once

#include "collections/arraylist/result_lists.h"
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/objects.h"
#include "collections/core/storage/list_data.h"

namespace vorn::collections {

// A new list of the receiver's class holding its elements. Unboxed storage is copied under the receiver's lock, then
// the new list's, and changed there by `onPrimitive`. Handles are copied under the receiver's lock, which is released
// before `onHandles` changes the copy, as that may run user code. Null when the list cannot be had. Allocates.
template <class OnPrimitive, class OnHandles>
void* transformedCopy(void* list, OnPrimitive onPrimitive, OnHandles onHandles) {
  ListData& source = *getListData(list);
  ListData* target = nullptr;
  HandleVector handles;
  {
    const ListDataLock lock(source);
    if (source.isUnboxed()) {
      const RootedHandle result(allocateListOfClass(Vorn_objectTypeName(list), &target));
      if (target == nullptr) return nullptr;
      const ListDataLock lockResult(*target);
      copyPrimitiveListStorage(source, *target);
      onPrimitive(*target);
      return result.get();
    }
    source.copyObjectsTo(*handles);
  }
  onHandles(*handles);
  const RootedHandle result(allocateListOfClass(Vorn_objectTypeName(list), &target));
  if (target == nullptr) return nullptr;
  const ListDataLock lockResult(*target);
  target->objectAssign(*handles);
  return result.get();
}

}  // namespace vorn::collections
