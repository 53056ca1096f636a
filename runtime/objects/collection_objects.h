// Making the objects of the collection classes that have a native record.
//
// Such an object is one block: the record's buffers may point into it, and as long as the object is reachable, so is
// its record. The mutex of a synchronised collection ends the block. It is never destroyed: a finalizer would have to
// run inside some allocation, on a thread that may hold that very lock.
#pragma once

#include "runtime/objects/runtime_class.h"

struct ListData;

namespace vorn::runtime {

// A new, empty list; *record is its record. Allocates; std::bad_alloc.
ObjectRecord* newList(const RuntimeClass& type, ListData** record = nullptr);

// A new array without elements; its constructor native gives it an element type and a size. Allocates; std::bad_alloc.
ObjectRecord* newArray(const RuntimeClass& type);

// A new, empty map or set. Allocates; std::bad_alloc.
ObjectRecord* newMap(const RuntimeClass& type);
ObjectRecord* newSet(const RuntimeClass& type);

}  // namespace vorn::runtime
