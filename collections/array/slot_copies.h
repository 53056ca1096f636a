// Copying runs of slots between arrays of one kind.
#pragma once

#include "collections/array/array_data.h"

namespace vorn::collections {

// Copies source slots first, first + step, ... (`count` of them) into the target's slots from `at` on; the arrays have
// the same kind and room for them. Booleans arrive as 0 or 1, whatever byte stood for true.
void copySlots(const ArrayData& source, long long first, long long step, std::uint64_t count, ArrayData& target,
               std::uint64_t at);

}  // namespace vorn::collections
