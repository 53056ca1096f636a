// Element operations on a list's primitive storage. A raw value travels as a pair, a signed 64-bit integer and a
// double, both always filled. Nothing here locks; indexes are checked by the caller except where stated.
#pragma once

#include <cstdint>

#include "collections/core/storage/list_data.h"

// The element as a signed 64-bit integer: sign- or zero-extended by kind, the 64 bits as stored for ULong, truncated
// toward zero for floating kinds (outside the signed range and for NaN: the minimum value), 0 or 1 for Boolean. 0 when
// the list has no primitive kind.
long long primitiveListReadI64(const ListData& list, std::uint64_t index);

// The element as a double: as stored for Double, widened for Float, 1.0 or 0.0 for Boolean, else the double of the
// integer reading.
double primitiveListReadF64(const ListData& list, std::uint64_t index);

// The three stores. Each first refuses a value outside the range of a list kept as "CodeUnit" (TypeError) or "Char"
// (ValueException), changing nothing; every other kind keeps the low bits. Write overwrites; append and insert grow
// (allocate), and an insertion index above the size changes nothing.
void primitiveListWrite(ListData& list, std::uint64_t index, long long integer, double floating);
void primitiveListAppend(ListData& list, long long integer, double floating);
void primitiveListInsertAt(ListData& list, std::uint64_t index, long long integer, double floating);

// Removes the element; an index at or past the size changes nothing.
void primitiveListEraseAt(ListData& list, std::uint64_t index);

// Reverses the elements in place.
void primitiveListReverse(ListData& list);

// Makes the list primitive storage of this kind and name, declared so as well, holding n converted values; null gives n
// zeros. Checks all values of a "CodeUnit" or "Char" first; false, after raising and with nothing changed, when one is
// out of range. A linked list keeps its storage: it is emptied and the values are appended as boxes. Allocates.
bool primitiveListAssignFromI64Values(ListData& list, ListData::PrimitiveKind kind, RuntimeTypeName typeName,
                                      const long long* values, std::uint64_t n);
bool primitiveListAssignFromF64Values(ListData& list, ListData::PrimitiveKind kind, RuntimeTypeName typeName,
                                      const double* values, std::uint64_t n);

namespace vorn::collections {

// Whether a value may be kept under the type name: false, after raising, for a "CodeUnit" or "Char" out of range.
bool checkCharacterRangeOrRaise(RuntimeTypeName typeName, long long integer);

}  // namespace vorn::collections
