// Registers of four 32-bit keys, for the base case of the plain path: every x86-64 processor has them. (What
// block_sort.h asks for, and no more: partitioning without a permutation by variable places gains nothing.)
#pragma once

#if defined(__SSE2__)
#include <emmintrin.h>

#include <cstdint>

#include "collections/core/kernels/sort/key_order.h"
#include "collections/core/kernels/sort/sort_paths.h"

namespace vorn::collections {

// A register on its own, because a template argument would lose its alignment.
struct Register128 {
  __m128i bits;
};

struct Sse2Lanes32 {
  using Key = std::int32_t;
  using Slot = SortSlot<Key>;
  using Reg = Register128;
  static constexpr int kLanes = 4;

  [[gnu::always_inline]] static Reg load(const Slot* from) {
    return {_mm_loadu_si128(static_cast<const __m128i*>(static_cast<const void*>(from)))};
  }
  [[gnu::always_inline]] static void store(Slot* to, Reg reg) {
    _mm_storeu_si128(static_cast<__m128i*>(static_cast<void*>(to)), reg.bits);
  }
  [[gnu::always_inline]] static Reg loadUpTo(const Slot* from, std::int64_t count) {
    if (count >= kLanes) return load(from);
    Slot keys[kLanes];
    for (std::int64_t i = 0; i < kLanes; ++i) keys[i].key = i < count ? from[i].key : KeyLimits<Key>::kLargest;
    return load(keys);
  }
  [[gnu::always_inline]] static void storeUpTo(Slot* to, Reg reg, std::int64_t count) {
    if (count >= kLanes) return store(to, reg);
    Slot keys[kLanes];
    store(keys, reg);
    for (std::int64_t i = 0; i < count; ++i) to[i].key = keys[i].key;
  }

  // There is no minimum of signed 32-bit lanes yet. The difference to exchange is the same for both of a pair.
  [[gnu::always_inline]] static Reg min(Reg a, Reg b) { return {_mm_xor_si128(a.bits, exchanged(a, b))}; }
  [[gnu::always_inline]] static Reg max(Reg a, Reg b) { return {_mm_xor_si128(b.bits, exchanged(a, b))}; }

  template <int kSize>
  [[gnu::always_inline]] static Reg reverseGroups(Reg reg) {
    static_assert(kSize == 2 || kSize == 4);
    return {_mm_shuffle_epi32(reg.bits, kSize == 2 ? 0xB1 : 0x1B)};
  }
  template <int kDistance>
  [[gnu::always_inline]] static Reg swapLanes(Reg reg) {
    static_assert(kDistance == 1);
    return {_mm_shuffle_epi32(reg.bits, 0xB1)};
  }
  template <int kDistance>
  [[gnu::always_inline]] static Reg lowerUpper(Reg a, Reg b) {
    static_assert(kDistance == 1 || kDistance == 2);
    const __m128i upper = kDistance == 1 ? _mm_setr_epi32(0, -1, 0, -1) : _mm_setr_epi32(0, 0, -1, -1);
    return {_mm_or_si128(_mm_andnot_si128(upper, min(a, b).bits), _mm_and_si128(upper, max(a, b).bits))};
  }

 private:
  [[gnu::always_inline]] static __m128i exchanged(Reg a, Reg b) {
    return _mm_and_si128(_mm_xor_si128(a.bits, b.bits), _mm_cmpgt_epi32(a.bits, b.bits));
  }
};

}  // namespace vorn::collections
#endif
