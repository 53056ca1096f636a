#include "runtime/keys/hash_seed.h"

#include <unistd.h>

#include <chrono>

#include "collections/core/port/collection_key.h"
#include "runtime/threads/fast_random.h"

// Until the runtime starts there are no tables, and keys of texts are all that could be made.
KeyHashSeed Vorn_keyHashSeed = {};

namespace vorn::runtime {
namespace {

// What a system without a source of randomness still has.
std::uint64_t hardlyRandomBits() {
  const auto now = static_cast<std::uint64_t>(std::chrono::high_resolution_clock::now().time_since_epoch().count());
  const auto address = reinterpret_cast<std::uint64_t>(&now);
  return mixRandomBits(now) ^ mixRandomBits(address) ^ static_cast<std::uint64_t>(getpid());
}

}  // namespace

void drawKeyHashSeed(std::uint64_t seed) {
  if (seed == 0 && getentropy(&Vorn_keyHashSeed, sizeof(Vorn_keyHashSeed)) == 0) return;
  std::uint64_t state = seed != 0 ? seed : hardlyRandomBits();
  Vorn_keyHashSeed = {nextRandom(state), nextRandom(state), nextRandom(state), nextRandom(state), nextRandom(state)};
}

}  // namespace vorn::runtime
