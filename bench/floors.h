// What nothing can be faster than on the machine that runs the benchmarks: marks for limits where no other library does
// the same work.
#pragma once

#include <span>

#include "bench/measurement.h"

namespace vorn::bench {

// Floors are named as operations of this library.
inline constexpr const char* kFloor = "floor";

// A call of an exported native that returns at once.
inline constexpr const char* kEmptyCall = "empty call";
// std::malloc and std::free of 32 bytes with a value written to them, as a box is with a value in it.
inline constexpr const char* kMallocAndFree = "malloc and free";
// std::memchr for a byte that is not there, for each four bytes.
inline constexpr const char* kReadMemory = "read memory";
// std::memcpy to another place in 64 MB each time, as a collected heap hands out blocks, for each four bytes.
inline constexpr const char* kCopyMemory = "copy memory";

// The second of these, which is also what a box is compared with.
void mallocAndFreeBox(benchmark::State& state, std::int64_t elements);

struct Floor {
  const char* name;
  Measured measured;
};
std::span<const Floor> floors();

}  // namespace vorn::bench
