// Where ranges and vectors do not meet: the masks for vectors that overlap others, and the way to an aligned address.
#pragma once

#include <cstdint>

namespace vorn::collections::kernels {

struct EdgeMask {
  unsigned char bytes[96];
};

// 32 clear bytes, 32 set ones, 32 clear ones: a vector loaded from the right place keeps its first or its last bytes.
inline constexpr EdgeMask kEdgeMask = [] {
  EdgeMask mask = {};
  for (int i = 32; i < 64; ++i) mask.bytes[i] = 0xFF;
  return mask;
}();

// Where to load a mask that keeps the first bytes of a vector.
inline const unsigned char* maskKeepingFirst(std::uint64_t kept) { return kEdgeMask.bytes + 64 - kept; }

// The same for the last ones.
inline const unsigned char* maskKeepingLast(std::uint64_t vectorBytes, std::uint64_t kept) {
  return kEdgeMask.bytes + 32 - vectorBytes + kept;
}

// Distance from the last aligned address at or before `at`. Vectors that cross cache lines take twice the time to load
// and three times to store, and half of those at an address that is aligned for half a vector only do.
inline std::uint64_t bytesPastAlignment(const unsigned char* at, std::uint64_t vectorBytes) {
  return reinterpret_cast<std::uintptr_t>(at) % vectorBytes;
}

}  // namespace vorn::collections::kernels
