// The streams behind nextFastRandomU64.
#pragma once

#include <cstdint>

namespace vorn::runtime {

// The step and the output function of SplitMix64 (Steele, Lea and Flood, "Fast splittable pseudorandom number
// generators", 2014): a counter with an odd step, whose values are mixed by multiplications and shifts.
inline constexpr std::uint64_t kRandomStep = 0x9E3779B97F4A7C15ULL;

inline std::uint64_t mixRandomBits(std::uint64_t bits) {
  bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9ULL;
  bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBULL;
  return bits ^ (bits >> 31);
}

inline std::uint64_t nextRandom(std::uint64_t& state) { return mixRandomBits(state += kRandomStep); }

// Sets the seed from which every further stream comes and numbers the streams from 0 again. 0 means the default seed.
void seedRandomStreams(std::uint64_t seed);

// The starting state of the next stream. The first one belongs to the thread that started the runtime.
[[nodiscard]] std::uint64_t nextRandomStream();

}  // namespace vorn::runtime
