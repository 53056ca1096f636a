// The seed of all hashes of keys.
#pragma once

#include <cstdint>

namespace vorn::runtime {

// Draws Vorn_keyHashSeed: from the system's randomness, or, so that runs are alike, from a seed that is not 0. Once,
// when the process's heap is made: tables keep hashes.
void drawKeyHashSeed(std::uint64_t seed);

}  // namespace vorn::runtime
