// Natives that change the order of an array: sort and reverse, in place and as copies.
#include <vorn/collections/array.h>

#include <algorithm>

#include "collections/array/array_data.h"
#include "collections/array/result_arrays.h"
#include "collections/arraylist/object_sort.h"
#include "collections/core/array_slot_kind.h"
#include "collections/core/elements/primitive_sort.h"
#include "collections/core/kernels/reverse_kernels.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/roots.h"

namespace vc = vorn::collections;

namespace {

// Sorts a copy, because user ordering may write to the array meanwhile, and puts back as much as it then has room for;
// nothing when the array was constructed anew with elements of another type, which need not take these.
void sortObjectSlots(ArrayData& array) {
  const RuntimeTypeName elementType = array.elementType;
  vc::HandleVector handles;
  handles->assign(array.objects.data, array.objects.data + array.objects.size);
  vc::sortHandlesThroughErrors(handles->data(), handles->size());
  if (array.elementType != elementType) return;
  std::copy_n(handles->data(), std::min<std::uint64_t>(handles->size(), array.objects.size), array.objects.data);
}

void sortSlots(ArrayData& array) {
  if (!array.isUnboxed()) return sortObjectSlots(array);
  vc::sortElements(vc::primitiveKindOf(array.slotKind), array.primitive.data, array.primitive.size);
}

void reverseSlots(ArrayData& array) {
  if (!array.isUnboxed()) {
    return std::reverse(array.objects.data, array.objects.data + array.objects.size);
  }
  vc::reverseElements(array.primitive.data, array.primitive.size, array.primitive.elementSize);
}

// A new array of the receiver's type with its slots; null when it cannot be had.
void* copyOf(void* array) {
  return vc::filledArrayLike(array, [](const ArrayData& source, ArrayData& target) {
    copyArrayStorage(source, target);
    return true;
  });
}

}  // namespace

void vorn_collections_Array_sort(void* array) {
  if (array == nullptr) return;
  ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  sortSlots(data);
}

void* vorn_collections_Array_sortNew(void* array) {
  if (array == nullptr) return nullptr;
  const vc::RootedHandle result(copyOf(array));
  vorn_collections_Array_sort(result.get());
  return result.get();
}

void vorn_collections_Array_reverse(void* array) {
  if (array == nullptr) return;
  ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  reverseSlots(data);
}

void* vorn_collections_Array_reverseNew(void* array) {
  if (array == nullptr) return nullptr;
  // No root: reversing allocates nothing.
  void* const result = copyOf(array);
  vorn_collections_Array_reverse(result);
  return result;
}
