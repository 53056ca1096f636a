// Searches over unboxed elements, at vector speed.
#pragma once

#include <cstdint>

#include "collections/core/elements/primitive_values.h"
#include "collections/core/kernels/search_kernels.h"

namespace vorn::collections {

// Position of the first match at or after `from`, or kNotFound. The value must have the list's own kind and name.
// Integers, characters and Booleans match by integer value, floating elements by IEEE equality: a NaN never matches,
// and the two zeros match each other.
std::uint64_t findFirstPrimitive(const ListData& list, const BulkPrimitiveListValue& value, std::uint64_t from);

// Position of the last match at or before `from` (below the size), or kNotFound.
std::uint64_t findLastPrimitive(const ListData& list, const BulkPrimitiveListValue& value, std::uint64_t from);

// Number of matches.
std::uint64_t countPrimitive(const ListData& list, const BulkPrimitiveListValue& value);

}  // namespace vorn::collections
