// What the collections library offers to other modules of the language runtime, beside its natives. C++ only.
//
// The records are those that the runtime's own getListData and getArrayData hand out; here they are only passed on. A
// function that raises nothing reports failure by its result.
#pragma once

#include <vorn/collections/export.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct ArrayData;
struct ListData;

// The runtime's allocator of collected, scanned memory; its definition is needed to use a vector of handles.
template <class T>
struct VornGcAllocator;

// Arrays' storage. None of these locks: the caller holds the array's lock where it needs one.

// The number of slots.
VORN_EXPORT std::uint64_t arrayLogicalSize(const ArrayData& array);

// Empties the array: both stores and the counters. Element type and slot kind stay.
VORN_EXPORT void clearArrayStorage(ArrayData& array);

// Gives the array n slots of its kind, all zero, false or null; what it held is discarded. Throws std::bad_alloc with
// nothing changed. Allocates.
VORN_EXPORT void resizeArrayStorage(ArrayData& array, std::uint64_t n);

// Makes the target an element-for-element copy of the source: element type, slot kind, slots. A record copied to itself
// stays as it is. Throws std::bad_alloc with nothing changed. Allocates.
VORN_EXPORT void copyArrayStorage(const ArrayData& source, ArrayData& target);

// The slot as a signed 64-bit integer: sign- or zero-extended, the same bits for UInt64, truncated toward zero for
// floating kinds (outside the signed range and for NaN: the minimum value), 0 or 1 for Bool, 0 for Object. The index is
// not checked, here and below.
VORN_EXPORT long long arrayReadI64(const ArrayData& array, std::uint64_t index);

// The slot as a double: floating kinds as stored, 0.0 for Object, else the double of the integer reading.
VORN_EXPORT double arrayReadF64(const ArrayData& array, std::uint64_t index);

// The slot as a handle: unboxed slots become new boxes of the element type. Null for an index that is out of range.
// Allocates for unboxed slots.
VORN_EXPORT void* arraySlotToObject(const ArrayData& array, std::uint64_t index);

// Bytes in and out of arrays of bytes. A failure is false, and the error text is overwritten then only. Both lock a
// synchronised array.

// Replaces the vector's contents by the array's bytes; a null array has none. False, with the vector unchanged and the
// text "Expected Byte[]", for an array of another slot kind than UInt8.
VORN_EXPORT bool Vorn_readByteArrayData(void* array, std::vector<unsigned char>& out, std::string& error);

// Copies bytes into the array's first slots; they may overlap with the array's own. False, with nothing written, for
// null and for another slot kind ("Expected Byte[]") and for an array that is too short ("Destination Byte[] is too
// small").
VORN_EXPORT bool Vorn_writeByteArrayData(void* array, const unsigned char* bytes, std::size_t count,
                                         std::string& error);

// The list's elements as handles, in order, read under its lock; unboxed elements are boxed under their type name. The
// caller stores the vector in rooted memory before it allocates again. Allocates.
VORN_EXPORT std::vector<void*, VornGcAllocator<void*>> snapshotListObjectValues(ListData& list);

// Looking values up in maps. Both take the map's lock, store null in the slot first, and answer false for a null map.
// They allocate only where keys of user classes, tuples or immutable lists do.

// Whether the map has the key; its value then goes to the slot. False also for a null key, when an error is pending
// after the key was made, and when user code raises during the search.
VORN_EXPORT bool tryMapLookupObjectValue(void* map, void* key, void** slot);

// The same for the key that a text is.
VORN_EXPORT bool tryMapLookupValue(void* map, std::string_view key, void** slot);

// The display text of a value: texts quoted and escaped, collections with their tags. Locks the collections that it
// shows; may run user code, raise and allocate; throws std::runtime_error for collections nested too deeply.
VORN_EXPORT std::string valueToDisplayString(void* value);

namespace vorn::collections {

struct InternedTypeName;

// The type names that the library itself refers to: those of the primitive types and "Object". Null for every other
// name. Interning a name begins here.
VORN_EXPORT const InternedTypeName* standardTypeName(std::string_view name);

}  // namespace vorn::collections

namespace vorn::collections::errors {

// The errors of numbers that no character or code unit has, which the runtime's conversions raise as storing into a
// list does. Both record a pending error and return.
[[gnu::cold]] VORN_EXPORT void raiseCodeUnitOutOfRange();
[[gnu::cold]] VORN_EXPORT void raiseCharNotScalar();

}  // namespace vorn::collections::errors
