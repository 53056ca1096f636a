// Sorting of unboxed elements, on the path in use (vector_path.h).
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

}  // namespace vorn::collections
