#include "console/storage_view.h"

#include <string_view>

#include "collections/array/array_data.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/type_name.h"
#include "collections/core/storage/list_data.h"
#include "collections/keyed/map_data.h"
#include "collections/keyed/set_data.h"
#include "console/values.h"

namespace vorn::console {

namespace {

void viewUnboxed(const SmallPrimitiveBuffer& buffer, StorageView& view) {
  view.size = buffer.size;
  view.capacity = buffer.capacity;
  view.isInline = buffer.data == buffer.inlineBytes;
  view.bytesPerElement = buffer.elementSize;
}

void viewObjects(const SmallObjectVector& objects, StorageView& view) {
  view.live = "boxed handles";
  view.size = objects.size;
  view.capacity = objects.capacity;
  view.isInline = objects.data == objects.inlineSlots;
  view.bytesPerElement = sizeof(void*);
}

void viewList(ListData& list, StorageView& view) {
  const ListDataLock lock(list);
  view.synchronised = list.synchronized;
  view.declared = std::string(list.elementType.get());
  if (list.isUnboxed()) {
    view.live = "unboxed " + std::string(list.primitiveType.get());
    viewUnboxed(list.primitive, view);
  } else if (list.linked) {
    view.live = "linked nodes";
    view.size = list.linkedObjects.count;
    view.bytesPerElement = sizeof(LinkedHandles::Node);
  } else {
    viewObjects(list.objects, view);
  }
}

void viewArray(ArrayData& array, StorageView& view) {
  const ArrayDataLock lock(array);
  view.synchronised = array.synchronized;
  view.declared = std::string(array.elementType.get());
  if (array.isUnboxed()) {
    view.live = "unboxed " + view.declared;
    viewUnboxed(array.primitive, view);
  } else {
    viewObjects(array.objects, view);
  }
}

template <class Table>
void viewHash(const Table& table, StorageView& view) {
  view.live = "hash table";
  view.hashed = true;
  view.size = table.count();
  view.capacity = table.chunks().capacity();
  view.buckets = table.bucketCount();
  view.bytesPerElement = sizeof(typename Table::Node);
}

void viewMap(MapData& map, StorageView& view) {
  const MapDataLock lock(map);
  view.synchronised = map.synchronized;
  const std::string key(map.keyType.get());
  if (!key.empty()) view.declared = key + ": " + std::string(map.valueType.get());
  if (map.hashed) {
    viewHash(map.hash, view);
  } else {
    view.live = "ordered tree";
    view.size = map.ordered.count();
    view.bytesPerElement = sizeof(collections::OrderedTable::Node) + sizeof(collections::OrderedTable::Link);
  }
}

void viewSet(SetData& set, StorageView& view) {
  const SetDataLock lock(set);
  view.synchronised = set.synchronized;
  viewHash(set.table, view);
}

}  // namespace

bool viewStorage(void* handle, StorageView& view) {
  switch (familyOf(handle)) {
    case Family::List:
    case Family::ImmutableList:
      viewList(*getListData(handle), view);
      return true;
    case Family::Array:
      viewArray(*getArrayData(handle), view);
      return true;
    case Family::Map:
      viewMap(*getMapData(handle), view);
      return true;
    case Family::HashSet:
      viewSet(*getSetData(handle), view);
      return true;
    case Family::Tuple:
    case Family::None:
      break;
  }
  return false;
}

}  // namespace vorn::console
