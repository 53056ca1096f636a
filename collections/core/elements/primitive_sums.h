// Summing a list's primitive storage.
#pragma once

#include "collections/core/storage/list_data.h"

// The sum of the unboxed elements: integers wrap around in 64 bits, Boolean counts the true ones, floating elements add
// up as doubles in index order and the total is truncated once. 0 for a list without a kind.
long long primitiveListSumI64(const ListData& list);
