// The embedding API: looking into lists.
#include <vorn/runtime.h>

#include "collections/core/port/object_layout.h"
#include "collections/core/storage/list_data.h"

namespace {

void describe(const ListData& list, vorn_list_storage_info& info) {
  info.element_type = list.elementType.get().data();
  info.primitive_type = list.primitiveType.get().data();
  info.size = list.logicalSize();
  if (list.isUnboxed()) {
    info.storage = VORN_LIST_PRIMITIVE;
    info.capacity = list.primitive.capacity;
    info.bytes_per_element = list.primitive.elementSize;
  } else if (list.linked) {
    info.storage = VORN_LIST_LINKED;
    info.capacity = info.size;
    info.bytes_per_element = sizeof(LinkedHandles::Node);
  } else {
    info.storage = VORN_LIST_OBJECTS;
    info.capacity = list.objects.capacity;
    info.bytes_per_element = sizeof(void*);
  }
}

}  // namespace

extern "C" int vorn_list_get_storage(void* list, vorn_list_storage_info* info) {
  if (info == nullptr || !isObjectPointer(list)) return 0;
  if (static_cast<const ObjectRecord*>(list)->kind() != ObjectKind::List) return 0;
  const ListData& data = *getListData(list);
  const ListDataLock lock(data);
  describe(data, *info);
  return 1;
}
