// New arrays that natives give as results.
#pragma once

struct ArrayData;

namespace vorn::collections {

// An instance of the array's own class, whose constructor has not run; *out is its record. Null, for both, when it
// cannot be had. Allocates; the caller roots the result.
void* allocateArrayLike(void* array, ArrayData** out);

}  // namespace vorn::collections
