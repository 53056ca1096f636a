// Storing one language value in a list. The caller holds the list's lock.
#pragma once

#include <cstdint>

#include "collections/core/elements/primitive_values.h"

struct ListData;
struct BulkPrimitiveListValue;

namespace vorn::collections {

// Appends a value, unboxed where the list allows. A value that the declared element type refuses raises and changes
// nothing. Allocates.
void appendValueOrRaise(ListData& list, void* value);

// Inserts a value before `index` (at most the size), as appendValueOrRaise does at the end.
void insertValueOrRaise(ListData& list, std::uint64_t index, void* value);

// The raw value to write over an element of unboxed storage, when the storage can keep it: the value as the declared
// type, else as its own. A character type may refuse it all the same, when it is out of range.
bool rawReplacement(const ListData& list, void* value, BulkPrimitiveListValue& raw);

// Replaces the element at `index` (below the size).
void replaceValueOrRaise(ListData& list, std::uint64_t index, void* value);

}  // namespace vorn::collections
