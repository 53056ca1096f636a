// Sorting unboxed elements by their kind.
#pragma once

#include "collections/core/storage/list_data.h"

namespace vorn::collections {

// Sorts n packed elements of a kind in place; nothing for None. The data is aligned to the element's width.
void sortElements(ListData::PrimitiveKind kind, unsigned char* data, std::uint64_t n);

}  // namespace vorn::collections

// Sorts the unboxed elements in place, ascending; floating NaNs go last in no particular order, and the two zeros are
// equal. Nothing for a list without a kind. Does not allocate.
void primitiveListSort(ListData& list);

// The same for elements known to be of type T.
template <class T>
void primitiveListSortTyped(ListData& list);
