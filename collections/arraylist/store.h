// Storing one language value in a list. The caller holds the list's lock.
#pragma once

#include <cstdint>

struct ListData;

namespace vorn::collections {

// Appends a value, unboxed where the list allows. A value that the declared element type refuses raises and changes
// nothing. Allocates.
void appendValueOrRaise(ListData& list, void* value);

// Inserts a value before `index` (at most the size), as appendValueOrRaise does at the end.
void insertValueOrRaise(ListData& list, std::uint64_t index, void* value);

// Replaces the element at `index` (below the size).
void replaceValueOrRaise(ListData& list, std::uint64_t index, void* value);

}  // namespace vorn::collections
