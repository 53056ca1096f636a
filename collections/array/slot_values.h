// Slots and language values: storing a value with its type test, comparing the two. The caller holds the array's
// lock. None of these raises; failures are results.
#pragma once

#include "collections/array/array_data.h"
#include "collections/core/elements/accepted_values.h"
#include "collections/core/elements/element_types.h"

// Stores a value: unboxed where the kind takes it, as the handle where the element type does. False, with the slot
// unchanged, for a value that does not fit. Handles of the types Object, String, CodeUnit and Char are not tested at
// all; any other class tests its instances. Neither allocates nor runs user code.
bool assignArraySlotValue(ArrayData& array, std::uint64_t index, void* value);

// Whether the slot equals the value; false for an index that is out of range, and for a null value against an unboxed
// slot. May run user code, raise and allocate for handles.
bool arraySlotEqualsObject(const ArrayData& array, std::uint64_t index, void* value);

namespace vorn::collections {

// A value in the two forms of a scalar. False when it does not fit the array's unboxed slots, and for handles.
struct SlotScalar {
  long long integer = 0;
  double floating = 0.0;
};
bool readSlotScalar(const ArrayData& array, void* value, SlotScalar& scalar);

// What of the raw values of a type fits the array's unboxed slots: exactly what assignArraySlotValue takes of their
// boxes. Not for arrays of handles.
AcceptedValues acceptedBySlots(const ArrayData& array, const ElementType& type);

}  // namespace vorn::collections
