// Natives of immutable lists. Reading is what it is for every list; construction and sorting fill a list that is new.

#include <vorn/collections/array_list.h>
#include <vorn/collections/immutable_list.h>

#include "collections/arraylist/object_sort.h"
#include "collections/arraylist/search.h"
#include "collections/arraylist/snapshots.h"
#include "collections/core/elements/primitive_sort.h"
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/errors.h"
#include "collections/core/storage/list_data.h"
#include "collections/immutable/list_arguments.h"

namespace vc = vorn::collections;

namespace {

void resetLocked(ListData& list) {
  clearListStorage(list);
  list.elementType = {};
}

// Fills a new list with the elements of another one.
void fillFrom(const ListData& source, ListData& target) {
  vc::HandleVector handles;
  {
    const ListDataLock lock(source);
    if (source.isUnboxed() && !target.linked) {
      const ListDataLock lockTarget(target);
      resetLocked(target);
      return copyPrimitiveListStorage(source, target);
    }
    vc::appendListObjectsLocked(source, *handles);
  }
  const ListDataLock lock(target);
  clearListStorage(target);
  target.objectAssign(*handles);
}

// Fills a new list with the sorted elements of another one of its class.
void fillSorted(const ListData& source, ListData& target) {
  vc::HandleVector handles;
  {
    const ListDataLock lock(source);
    if (source.isUnboxed()) {
      const ListDataLock lockTarget(target);
      copyPrimitiveListStorage(source, target);
      return primitiveListSort(target);
    }
    source.copyObjectsTo(*handles);
  }
  vc::sortHandles(handles->data(), handles->size());
  const ListDataLock lock(target);
  target.objectAssign(*handles);
}

void* newListOfClassOf(void* list) {
  const char* name = Vorn_objectTypeName(list);
  return Vorn_allocObject(name != nullptr && *name != '\0' ? name : "ImmutableList");
}

}  // namespace

void vorn_collections_ImmutableList_ctor(void* list, void* source) {
  if (list == nullptr) return;
  ListData& target = *getListData(list);
  {
    const ListDataLock lock(target);
    resetLocked(target);
  }
  if (source == nullptr) return;
  if (!vc::isList(source)) return vc::errors::raiseImmutableListSource();
  // A list that is its own source is empty by now, and its mutex must not be locked twice.
  if (source != list) fillFrom(*getListData(source), target);
}

long long vorn_collections_ImmutableList_size(void* list) {
  if (list == nullptr) return 0;
  const ListData& data = *getListData(list);
  const ListDataLock lock(data);
  return static_cast<long long>(data.logicalSize());
}

void* vorn_collections_ImmutableList_operator_index(void* list, long long index) {
  return vorn_collections_ArrayList_operator_index(list, index);
}

void vorn_collections_ImmutableList_operator_index_eq(void*, long long, void*) {
  vc::errors::raiseImmutableListReadOnly();
}

long long vorn_collections_ImmutableList_indexOf(void* list, void* value, long long start) {
  if (list == nullptr) return -1;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  return arrayListIndexOfLocked(data, value, start, false);
}

long long vorn_collections_ImmutableList_lastIndexOf(void* list, void* value, long long start) {
  if (list == nullptr) return -1;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  return arrayListIndexOfLocked(data, value, start, true);
}

void* vorn_collections_ImmutableList_sortNew(void* list) {
  if (list == nullptr) return nullptr;
  const vc::RootedHandle result(newListOfClassOf(list));
  if (result.get() == nullptr) return nullptr;
  fillSorted(*getListData(list), *getListData(result.get()));
  return result.get();
}
