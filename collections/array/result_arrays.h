// New arrays that natives give as results.
#pragma once

#include "collections/array/array_data.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/roots.h"

namespace vorn::collections {

// An instance of the array's own class, whose constructor has not run; *out is its record. Null, for both, when it
// cannot be had. Allocates; the caller roots the result.
void* allocateArrayLike(void* array, ArrayData** out);

// A new array of the receiver's class, filled by fill(source, target) while both are locked, the receiver first. Null
// when it cannot be had and when fill() answers false. Allocates.
template <class Fill>
void* filledArrayLike(void* array, Fill fill) {
  ArrayData* target = nullptr;
  const RootedHandle result(allocateArrayLike(array, &target));
  if (target == nullptr) return nullptr;
  const ArrayData& source = *getArrayData(array);
  const ArrayDataLock lock(source);
  const ArrayDataLock lockResult(*target);
  return fill(source, *target) ? result.get() : nullptr;
}

}  // namespace vorn::collections
