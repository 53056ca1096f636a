// Sorting of unboxed elements, on the path in use (vector_path.h).
#pragma once

#include <cstdint>

namespace vorn::collections {

// Sorts ascending, in place, without allocating: an introspective quicksort that falls back on a heap sort, so never
// more than O(n log n). Equal elements come in no particular order. Among floating elements NaNs go to the end, in no
// particular order and with their payloads; -0.0 and +0.0 come out as often as they went in and stand side by side.
template <class Element>
void sortPrimitive(Element* data, std::uint64_t count);

}  // namespace vorn::collections
