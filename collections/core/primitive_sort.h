// Sorting a list's primitive storage.
#pragma once

#include "collections/core/list_data.h"

// Sorts the unboxed elements in place, ascending; floating NaNs go last in no particular order, and the two zeros are
// equal. Nothing for a list without a kind. Does not allocate.
void primitiveListSort(ListData& list);

// The same for elements known to be of type T.
template <class T>
void primitiveListSortTyped(ListData& list);
