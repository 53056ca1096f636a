// Natives that work on ranges: slices, slice assignment, concatenation.
#include <vorn/collections/array.h>

#include "collections/array/array_data.h"
#include "collections/array/collected_slots.h"
#include "collections/array/result_arrays.h"
#include "collections/array/slot_copies.h"
#include "collections/arraylist/collect_values.h"
#include "collections/arraylist/slice_indexes.h"
#include "collections/core/errors.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/roots.h"

namespace vc = vorn::collections;

namespace vorn::collections {

void* allocateArrayLike(void* array, ArrayData** out) {
  *out = nullptr;
  void* result = Vorn_allocObject(Vorn_objectTypeName(array));
  if (result != nullptr) *out = getArrayData(result);
  return result;
}

}  // namespace vorn::collections

void* vorn_collections_Array_slice(void* array, long long start, long long stop, long long step, void* hasStart,
                                   void* hasStop) {
  if (array == nullptr) return nullptr;
  if (step == 0) {
    vc::errors::raiseSliceStepZero();
    return nullptr;
  }
  return vc::filledArrayLike(array, [&](const ArrayData& source, ArrayData& target) {
    const vc::SliceExpression expression{start, stop, step, hasStart, hasStop};
    const vc::SlicePositions positions = expression.over(arrayLogicalSize(source));
    vc::recreateArrayStorage(target, source.elementType, source.slotKind, positions.count);
    vc::copySlots(source, positions.first, positions.step, positions.count, target, 0);
    return true;
  });
}

void vorn_collections_Array_sliceAssign(void* array, long long start, long long stop, long long step, void* hasStart,
                                        void* hasStop, void* source) {
  if (array == nullptr) return;
  if (step == 0) return vc::errors::raiseSliceStepZero();
  vc::CollectedValues values;
  if (!collectOrderedCollectionValues(source, array, values)) return vc::errors::raiseSliceAssignmentSource();
  if (!values.complete()) return;
  ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  const vc::SliceExpression expression{start, stop, step, hasStart, hasStop};
  const vc::SlicePositions positions = expression.over(arrayLogicalSize(data));
  if (positions.size() != values.size()) return vc::errors::raiseFixedSliceCount();
  vc::HandleVector boxes;
  void* const* const handles = vc::handlesForSlots(data.slotKind, values, boxes);
  vc::assignCollectedOrRaise(data, positions, values, handles, vc::AfterRefusal::Stop);
}

void* vorn_collections_Array_concat(void* array, void* other) {
  if (array == nullptr || other == nullptr) return nullptr;
  vc::CollectedValues values;
  if (!collectOrderedCollectionValues(other, nullptr, values)) {
    vc::errors::raiseArrayConcatSource();
    return nullptr;
  }
  if (!values.complete()) return nullptr;
  return vc::filledArrayLike(array, [&](const ArrayData& source, ArrayData& target) {
    const std::uint64_t size = arrayLogicalSize(source);
    vc::HandleVector boxes;
    void* const* const handles = vc::handlesForSlots(source.slotKind, values, boxes);
    vc::recreateArrayStorage(target, source.elementType, source.slotKind, size + values.size());
    vc::copySlots(source, 0, 1, size, target, 0);
    const vc::SlicePositions behind{static_cast<long long>(size), 1, values.size()};
    return vc::assignCollectedOrRaise(target, behind, values, handles, vc::AfterRefusal::Stop);
  });
}
