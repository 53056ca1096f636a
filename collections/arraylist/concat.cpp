// Lists made of other lists: concat and repeat.

#include <vorn/collections/array_list.h>

#include <limits>
#include <new>

#include "collections/arraylist/result_lists.h"
#include "collections/arraylist/snapshots.h"
#include "collections/core/elements/element_types.h"
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/objects.h"
#include "collections/core/storage/primitive_copies.h"

namespace vc = vorn::collections;

namespace {

// Appends a list's elements to a result that holds boxed elements. The caller has locked both.
void appendBoxed(const ListData& source, ListData& result) {
  vc::HandleVector handles;
  vc::appendListObjectsLocked(source, *handles);
  if (!result.linked) result.objects.reserve(result.objects.size + handles->size());
  for (void* handle : *handles) result.objectPushBack(handle);
}

// Elements of a list at this moment; none for null.
std::uint64_t sizeNow(void* list) {
  if (list == nullptr) return 0;
  const ListData& data = *getListData(list);
  const ListDataLock lock(data);
  return data.logicalSize();
}

// The first operand: the new list takes over its storage, with room for what will probably follow.
void copyFirst(const ListData& source, std::uint64_t expected, ListData& result) {
  if (!source.isUnboxed() || result.linked) return appendBoxed(source, result);
  vc::adoptPrimitiveStorageOf(source, result, source.primitive.size + expected);
  vc::appendPrimitiveElements(source, 0, 1, source.primitive.size, result);
}

// The second operand: unboxed only behind elements of its own kind and name. `classElementType` is what the result's
// class declares, to which a result in boxed storage goes back.
void appendSecond(const ListData& source, ListData& result, RuntimeTypeName classElementType) {
  if (source.isUnboxed() && vc::keptElementType(source) == vc::keptElementType(result)) {
    return vc::appendPrimitiveElements(source, 0, 1, source.primitive.size, result);
  }
  materializePrimitiveList(result, source.logicalSize());
  result.elementType = classElementType;
  appendBoxed(source, result);
}

std::uint64_t repeatedSize(std::uint64_t size, std::uint64_t times) {
  if (size != 0 && times > std::numeric_limits<std::uint64_t>::max() / size) throw std::bad_alloc();
  return size * times;
}

void repeatInto(const ListData& source, std::uint64_t times, ListData& result) {
  const std::uint64_t size = source.logicalSize();
  if (source.isUnboxed()) {
    const std::uint64_t total = repeatedSize(size, times);
    vc::adoptPrimitiveStorageOf(source, result, total);
    vc::appendPrimitiveElements(source, 0, 1, size, result);
    return vc::repeatPrimitiveElements(result, total);
  }
  vc::HandleVector handles;
  handles->reserve(repeatedSize(size, times));
  for (std::uint64_t i = 0; i < times && size != 0; ++i) source.copyObjectsTo(*handles);
  result.objectAssign(*handles);
}

}  // namespace

void* vorn_collections_ArrayList_concat(void* list, void* other) {
  const char* className = Vorn_objectTypeName(list);
  const bool named = className != nullptr && className[0] != '\0';
  ListData* data = nullptr;
  const vc::RootedHandle result(vc::allocateListOfClass(named ? className : "ArrayList", &data));
  if (data == nullptr) return result.get();
  const RuntimeTypeName classElementType = data->elementType;
  // One operand after the other: never are both locked.
  if (list != nullptr) {
    const std::uint64_t expected = sizeNow(other);
    const ListData& source = *getListData(list);
    const ListDataLock lock(source);
    const ListDataLock lockResult(*data);
    copyFirst(source, expected, *data);
  }
  if (other != nullptr) {
    const ListData& source = *getListData(other);
    const ListDataLock lock(source);
    const ListDataLock lockResult(*data);
    appendSecond(source, *data, classElementType);
  } else {
    const ListDataLock lockResult(*data);
    materializePrimitiveList(*data);
    data->elementType = classElementType;
  }
  return result.get();
}

void* vorn_collections_ArrayList_repeat(void* list, long long count) {
  ListData* data = nullptr;
  const vc::RootedHandle result(allocateMutableListResultLike(list, &data));
  if (list == nullptr || count <= 0 || data == nullptr) return result.get();
  const ListData& source = *getListData(list);
  const ListDataLock lock(source);
  const ListDataLock lockResult(*data);
  repeatInto(source, static_cast<std::uint64_t>(count), *data);
  return result.get();
}
