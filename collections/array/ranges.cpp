// Natives that work on ranges: slices, slice assignment, concatenation.
#include <vorn/collections/array.h>

#include "collections/array/array_data.h"
#include "collections/array/result_arrays.h"
#include "collections/array/slot_access.h"
#include "collections/array/slot_values.h"
#include "collections/arraylist/collect_values.h"
#include "collections/arraylist/slice_indexes.h"
#include "collections/core/errors.h"
#include "collections/core/roots.h"
#include "collections/core/runtime_interface.h"

namespace vc = vorn::collections;

namespace vorn::collections {

void* allocateArrayLike(void* array, ArrayData** out) {
  *out = nullptr;
  void* result = Vorn_allocObject(Vorn_objectTypeName(array));
  if (result != nullptr) *out = getArrayData(result);
  return result;
}

}  // namespace vorn::collections

namespace {

vc::SliceSequence sliceOf(const ArrayData& array, long long start, long long stop, long long step, void* hasStart,
                          void* hasStop) {
  return vc::sliceSequence(static_cast<long long>(arrayLogicalSize(array)), start, stop, step, hasStart != nullptr,
                           hasStop != nullptr);
}

// Assigns value by value from `position` on; false, after raising, at the first refusal. What was assigned stays.
bool assignValuesOrRaise(ArrayData& array, const vc::SliceSequence& slice, const vc::HandleVector::Storage& values) {
  auto position = static_cast<std::uint64_t>(slice.first);
  for (void* value : values) {
    if (!assignArraySlotValue(array, position, value)) {
      vc::errors::raiseInvalidArrayElement();
      return false;
    }
    position += static_cast<std::uint64_t>(slice.step);
  }
  return true;
}

}  // namespace

void* vorn_collections_Array_slice(void* array, long long start, long long stop, long long step, void* hasStart,
                                   void* hasStop) {
  if (array == nullptr) return nullptr;
  if (step == 0) {
    vc::errors::raiseSliceStepZero();
    return nullptr;
  }
  return vc::filledArrayLike(array, [&](const ArrayData& source, ArrayData& target) {
    const vc::SliceSequence slice = sliceOf(source, start, stop, step, hasStart, hasStop);
    vc::recreateArrayStorage(target, source.elementType, source.slotKind, slice.count);
    vc::copySlots(source, slice.first, slice.step, slice.count, target, 0);
    return true;
  });
}

void vorn_collections_Array_sliceAssign(void* array, long long start, long long stop, long long step, void* hasStart,
                                        void* hasStop, void* source) {
  if (array == nullptr) return;
  if (step == 0) return vc::errors::raiseSliceStepZero();
  vc::HandleVector values;
  if (!collectOrderedCollectionValues(source, *values)) return vc::errors::raiseSliceAssignmentSource();
  ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  const vc::SliceSequence slice = sliceOf(data, start, stop, step, hasStart, hasStop);
  if (slice.count != values->size()) return vc::errors::raiseFixedSliceCount();
  assignValuesOrRaise(data, slice, *values);
}

void* vorn_collections_Array_concat(void* array, void* other) {
  if (array == nullptr || other == nullptr) return nullptr;
  vc::HandleVector values;
  if (!collectOrderedCollectionValues(other, *values)) {
    vc::errors::raiseArrayConcatSource();
    return nullptr;
  }
  return vc::filledArrayLike(array, [&](const ArrayData& source, ArrayData& target) {
    const std::uint64_t size = arrayLogicalSize(source);
    vc::recreateArrayStorage(target, source.elementType, source.slotKind, size + values->size());
    vc::copySlots(source, 0, 1, size, target, 0);
    return assignValuesOrRaise(target, {static_cast<long long>(size), 1, values->size()}, *values);
  });
}
