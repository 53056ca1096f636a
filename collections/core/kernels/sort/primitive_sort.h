// Sorting of unboxed elements.
#pragma once

#include <cstdint>

namespace vorn::collections {

// Sorts ascending, in place, without allocating: an introspective quicksort that falls back on a heap sort, so never
// more than O(n log n). Equal elements come in no particular order. Among floating elements NaNs go to the end, in no
// particular order and with their payloads; -0.0 and +0.0 come out as often as they went in and stand side by side.
void sortPrimitive(std::int8_t* data, std::uint64_t count);
void sortPrimitive(std::uint8_t* data, std::uint64_t count);
void sortPrimitive(std::int16_t* data, std::uint64_t count);
void sortPrimitive(std::uint16_t* data, std::uint64_t count);
void sortPrimitive(std::int32_t* data, std::uint64_t count);
void sortPrimitive(std::uint32_t* data, std::uint64_t count);
void sortPrimitive(std::int64_t* data, std::uint64_t count);
void sortPrimitive(std::uint64_t* data, std::uint64_t count);
void sortPrimitive(float* data, std::uint64_t count);
void sortPrimitive(double* data, std::uint64_t count);

// The instruction sets that have a path of their own. Each path handles every type; kinds that gain nothing from wide
// registers share the plain code.
enum class SortPath : unsigned char { Plain, Avx2, Avx512 };

// Whether this processor can run the path.
bool sortPathSupported(SortPath path);

// The path that sortPrimitive takes, found out once.
SortPath bestSortPath();

// Sorts on a path that the processor supports; for tests and measurements.
template <class Element>
void sortPrimitiveOn(SortPath path, Element* data, std::uint64_t count);

}  // namespace vorn::collections
