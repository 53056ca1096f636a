// Assigning the values of another collection to slots.
#pragma once

#include "collections/array/array_data.h"
#include "collections/arraylist/collected_values.h"
#include "collections/arraylist/slice_indexes.h"

namespace vorn::collections {

// The values as handles where slots of the kind need them, and null where raw values go in as they are. Boxes are made
// here, for as long as `boxes` lives, so that assigning allocates nothing. Allocates.
void* const* handlesForSlots(ArraySlotKind kind, const CollectedValues& values, HandleVector& boxes);

// What follows a value that does not fit.
enum class AfterRefusal { Stop, GoOn };

// Assigns all values to as many positions, in order, each as by assignArraySlotValue; `handles` come from
// handlesForSlots. Each value that does not fit raises; what was assigned stays. False when there was one. The caller
// holds the array's lock. Does not allocate.
bool assignCollectedOrRaise(ArrayData& array, const SlicePositions& positions, const CollectedValues& values,
                            void* const* handles, AfterRefusal then);

}  // namespace vorn::collections
