// The path for processors with AVX2.
#include <cstdint>
#include <utility>

#include "collections/core/kernels/sort/sort_paths.h"

#if defined(__x86_64__)
#include <immintrin.h>

// From here to the end of the file everything is compiled for the wide registers. No standard header may follow.
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2,bmi,bmi2,popcnt"))), apply_to = function)
#else
#pragma GCC target("avx2,bmi,bmi2,popcnt")
#endif

#include "collections/core/kernels/sort/gather_table.h"
#include "collections/core/kernels/sort/vector_engine.h"

namespace vorn::collections {

namespace {

// A register on its own, because a template argument would lose its alignment.
struct Register256 {
  __m256i bits;
};

struct Split256 {
  Register256 gathered;
  std::int64_t greater;
};

constexpr GatherTable<8, 1> kGather32;
constexpr GatherTable<4, 2> kGather64;

// A window into these gives a mask of the first lanes.
alignas(64) constexpr std::int32_t kFirstLanes32[16] = {-1, -1, -1, -1, -1, -1, -1, -1};
alignas(64) constexpr std::int64_t kFirstLanes64[8] = {-1, -1, -1, -1};

[[gnu::always_inline]] inline __m256i loadBits(const void* from) {
  return _mm256_loadu_si256(static_cast<const __m256i*>(from));
}

[[gnu::always_inline]] inline __m256i permuteByBytes(__m256i keys, const std::uint8_t* places) {
  const __m128i bytes = _mm_loadl_epi64(static_cast<const __m128i*>(static_cast<const void*>(places)));
  return _mm256_permutevar8x32_epi32(keys, _mm256_cvtepu8_epi32(bytes));
}

// What does not depend on the width of the lanes.
struct Avx2Common {
  using Reg = Register256;

  [[gnu::always_inline]] static Reg load(const void* from) { return {loadBits(from)}; }
  [[gnu::always_inline]] static void store(void* to, Reg reg) {
    _mm256_storeu_si256(static_cast<__m256i*>(to), reg.bits);
  }
};

struct Avx2Lanes32 : Avx2Common {
  using Key = std::int32_t;
  using Slot = SortSlot<Key>;
  static constexpr int kLanes = 8;

  [[gnu::always_inline]] static __m256i lanesBelow(std::int64_t end) {
    const std::int64_t clamped = end >= kLanes ? kLanes : (end <= 0 ? 0 : end);
    return loadBits(kFirstLanes32 + kLanes - clamped);
  }
  [[gnu::always_inline]] static Reg broadcast(Key key) { return {_mm256_set1_epi32(key)}; }
  [[gnu::always_inline]] static Reg loadUpTo(const Slot* from, std::int64_t count) {
    const __m256i lanes = lanesBelow(count);
    const __m256i keys = _mm256_maskload_epi32(&from->key, lanes);
    return {_mm256_or_si256(keys, _mm256_andnot_si256(lanes, _mm256_set1_epi32(0x7FFFFFFF)))};
  }
  // Masked stores are slow on some processors, even those that store every lane.
  [[gnu::always_inline]] static void storeUpTo(Slot* to, Reg reg, std::int64_t count) {
    if (count >= kLanes) {
      store(to, reg);
    } else if (count > 0) {
      _mm256_maskstore_epi32(&to->key, lanesBelow(count), reg.bits);
    }
  }
  [[gnu::always_inline]] static void storeLanes(Slot* to, Reg reg, std::int64_t from, std::int64_t end) {
    _mm256_maskstore_epi32(&to->key, _mm256_andnot_si256(lanesBelow(from), lanesBelow(end)), reg.bits);
  }
  [[gnu::always_inline]] static Reg min(Reg a, Reg b) { return {_mm256_min_epi32(a.bits, b.bits)}; }
  [[gnu::always_inline]] static Reg max(Reg a, Reg b) { return {_mm256_max_epi32(a.bits, b.bits)}; }
  [[gnu::always_inline]] static bool anyGreater(Reg a, Reg b) {
    return _mm256_movemask_epi8(_mm256_cmpgt_epi32(a.bits, b.bits)) != 0;
  }

  [[gnu::always_inline]] static Split256 split(Reg keys, Reg bound) {
    const auto greater =
        static_cast<unsigned>(_mm256_movemask_ps(_mm256_castsi256_ps(_mm256_cmpgt_epi32(keys.bits, bound.bits))));
    return {{permuteByBytes(keys.bits, kGather32.places[greater])}, __builtin_popcount(greater)};
  }

  template <int kSize>
  [[gnu::always_inline]] static Reg reverseGroups(Reg reg) {
    if constexpr (kSize == 2) return {_mm256_shuffle_epi32(reg.bits, 0xB1)};
    if constexpr (kSize == 4) return {_mm256_shuffle_epi32(reg.bits, 0x1B)};
    if constexpr (kSize == 8) return reverse(reg);
  }
  [[gnu::always_inline]] static Reg reverse(Reg reg) {
    return {_mm256_permutevar8x32_epi32(reg.bits, _mm256_setr_epi32(7, 6, 5, 4, 3, 2, 1, 0))};
  }
  template <int kDistance>
  [[gnu::always_inline]] static Reg swapLanes(Reg reg) {
    if constexpr (kDistance == 1) return {_mm256_shuffle_epi32(reg.bits, 0xB1)};
    if constexpr (kDistance == 2) return {_mm256_shuffle_epi32(reg.bits, 0x4E)};
  }
  template <int kDistance>
  [[gnu::always_inline]] static Reg lowerUpper(Reg a, Reg b) {
    constexpr int kUpper = kDistance == 1 ? 0xAA : (kDistance == 2 ? 0xCC : 0xF0);
    return {_mm256_blend_epi32(min(a, b).bits, max(a, b).bits, kUpper)};
  }

  template <KeyOrder kOrder>
  [[gnu::always_inline]] static Reg toKey(Reg reg) {
    if constexpr (kOrder == KeyOrder::Unsigned) return {_mm256_xor_si256(reg.bits, _mm256_set1_epi32(kSign))};
    if constexpr (kOrder == KeyOrder::Floating) {
      return {_mm256_sub_epi32(flipNegative(reg.bits), _mm256_set1_epi32(kNaNs))};
    }
    return reg;
  }
  template <KeyOrder kOrder>
  [[gnu::always_inline]] static Reg fromKey(Reg reg) {
    if constexpr (kOrder == KeyOrder::Floating) {
      return {flipNegative(_mm256_add_epi32(reg.bits, _mm256_set1_epi32(kNaNs)))};
    }
    return toKey<kOrder>(reg);
  }

 private:
  static constexpr auto kSign = static_cast<std::int32_t>(KeyMapping<Key, KeyOrder::Signed>::kSign);
  static constexpr auto kNaNs = static_cast<std::int32_t>(KeyMapping<Key, KeyOrder::Floating>::negativeNaNs());

  [[gnu::always_inline]] static __m256i flipNegative(__m256i bits) {
    return _mm256_xor_si256(bits, _mm256_srli_epi32(_mm256_srai_epi32(bits, 31), 1));
  }
};

// Keys of two bytes in lanes of four: they are widened on their way in and narrowed on their way out.
struct Avx2Lanes16 : Avx2Lanes32 {
  using Key = std::int16_t;
  using Slot = SortSlot<Key>;

  [[gnu::always_inline]] static Reg load(const void* from) {
    return {_mm256_cvtepi16_epi32(_mm_loadu_si128(static_cast<const __m128i*>(from)))};
  }
  [[gnu::always_inline]] static void store(void* to, Reg reg) {
    _mm_storeu_si128(static_cast<__m128i*>(to), narrowed(reg));
  }
  [[gnu::always_inline]] static Reg broadcast(Key key) { return {_mm256_set1_epi32(key)}; }
  // There are no masked accesses to lanes of two bytes, and only the last row of a block is ever a partial one.
  [[gnu::always_inline]] static Reg loadUpTo(const Slot* from, std::int64_t count) {
    if (count >= kLanes) return load(from);
    Slot keys[kLanes];
    for (std::int64_t i = 0; i < kLanes; ++i) keys[i].key = i < count ? from[i].key : KeyLimits<Key>::kLargest;
    return load(keys);
  }
  [[gnu::always_inline]] static void storeUpTo(Slot* to, Reg reg, std::int64_t count) {
    if (count >= kLanes) {
      store(to, reg);
    } else if (count > 0) {
      storeLanes(to, reg, 0, count);
    }
  }
  [[gnu::always_inline]] static void storeLanes(Slot* to, Reg reg, std::int64_t from, std::int64_t end) {
    Slot keys[kLanes];
    store(keys, reg);
    for (std::int64_t i = from; i < end; ++i) to[i].key = keys[i].key;
  }

  // Flipping the sign of a widened key flips all bits that copy it.
  template <KeyOrder kOrder>
  [[gnu::always_inline]] static Reg toKey(Reg reg) {
    if constexpr (kOrder == KeyOrder::Unsigned) return {_mm256_xor_si256(reg.bits, _mm256_set1_epi32(-0x8000))};
    return reg;
  }
  template <KeyOrder kOrder>
  [[gnu::always_inline]] static Reg fromKey(Reg reg) {
    return toKey<kOrder>(reg);
  }

 private:
  [[gnu::always_inline]] static __m128i narrowed(Reg reg) {
    return _mm_packs_epi32(_mm256_castsi256_si128(reg.bits), _mm256_extracti128_si256(reg.bits, 1));
  }
};

struct Avx2Lanes64 : Avx2Common {
  using Key = std::int64_t;
  using Slot = SortSlot<Key>;
  static constexpr int kLanes = 4;

  [[gnu::always_inline]] static __m256i lanesBelow(std::int64_t end) {
    const std::int64_t clamped = end >= kLanes ? kLanes : (end <= 0 ? 0 : end);
    return loadBits(kFirstLanes64 + kLanes - clamped);
  }
  [[gnu::always_inline]] static Reg broadcast(Key key) { return {_mm256_set1_epi64x(key)}; }
  [[gnu::always_inline]] static Reg loadUpTo(const Slot* from, std::int64_t count) {
    const __m256i lanes = lanesBelow(count);
    const __m256i keys = _mm256_maskload_epi64(pointerTo(from), lanes);
    return {_mm256_or_si256(keys, _mm256_andnot_si256(lanes, _mm256_set1_epi64x(0x7FFFFFFFFFFFFFFF)))};
  }
  [[gnu::always_inline]] static void storeUpTo(Slot* to, Reg reg, std::int64_t count) {
    if (count >= kLanes) {
      store(to, reg);
    } else if (count > 0) {
      _mm256_maskstore_epi64(pointerTo(to), lanesBelow(count), reg.bits);
    }
  }
  [[gnu::always_inline]] static void storeLanes(Slot* to, Reg reg, std::int64_t from, std::int64_t end) {
    _mm256_maskstore_epi64(pointerTo(to), _mm256_andnot_si256(lanesBelow(from), lanesBelow(end)), reg.bits);
  }
  // There is no minimum of 64-bit lanes; one comparison serves both where the compiler sees the pair.
  [[gnu::always_inline]] static Reg min(Reg a, Reg b) {
    return {_mm256_blendv_epi8(a.bits, b.bits, _mm256_cmpgt_epi64(a.bits, b.bits))};
  }
  [[gnu::always_inline]] static Reg max(Reg a, Reg b) {
    return {_mm256_blendv_epi8(b.bits, a.bits, _mm256_cmpgt_epi64(a.bits, b.bits))};
  }
  [[gnu::always_inline]] static bool anyGreater(Reg a, Reg b) {
    return _mm256_movemask_epi8(_mm256_cmpgt_epi64(a.bits, b.bits)) != 0;
  }

  [[gnu::always_inline]] static Split256 split(Reg keys, Reg bound) {
    const auto greater =
        static_cast<unsigned>(_mm256_movemask_pd(_mm256_castsi256_pd(_mm256_cmpgt_epi64(keys.bits, bound.bits))));
    return {{permuteByBytes(keys.bits, kGather64.places[greater])}, __builtin_popcount(greater)};
  }

  template <int kSize>
  [[gnu::always_inline]] static Reg reverseGroups(Reg reg) {
    if constexpr (kSize == 2) return {_mm256_shuffle_epi32(reg.bits, 0x4E)};
    if constexpr (kSize == 4) return reverse(reg);
  }
  [[gnu::always_inline]] static Reg reverse(Reg reg) { return {_mm256_permute4x64_epi64(reg.bits, 0x1B)}; }
  template <int kDistance>
  [[gnu::always_inline]] static Reg swapLanes(Reg reg) {
    if constexpr (kDistance == 1) return {_mm256_shuffle_epi32(reg.bits, 0x4E)};
  }
  template <int kDistance>
  [[gnu::always_inline]] static Reg lowerUpper(Reg a, Reg b) {
    constexpr int kUpper = kDistance == 1 ? 0xCC : 0xF0;
    return {_mm256_blend_epi32(min(a, b).bits, max(a, b).bits, kUpper)};
  }

  template <KeyOrder kOrder>
  [[gnu::always_inline]] static Reg toKey(Reg reg) {
    if constexpr (kOrder == KeyOrder::Unsigned) return {_mm256_xor_si256(reg.bits, _mm256_set1_epi64x(kSign))};
    if constexpr (kOrder == KeyOrder::Floating) {
      return {_mm256_sub_epi64(flipNegative(reg.bits), _mm256_set1_epi64x(kNaNs))};
    }
    return reg;
  }
  template <KeyOrder kOrder>
  [[gnu::always_inline]] static Reg fromKey(Reg reg) {
    if constexpr (kOrder == KeyOrder::Floating) {
      return {flipNegative(_mm256_add_epi64(reg.bits, _mm256_set1_epi64x(kNaNs)))};
    }
    return toKey<kOrder>(reg);
  }

 private:
  static constexpr auto kSign = static_cast<std::int64_t>(KeyMapping<Key, KeyOrder::Signed>::kSign);
  static constexpr auto kNaNs = static_cast<std::int64_t>(KeyMapping<Key, KeyOrder::Floating>::negativeNaNs());

  // The intrinsics spell the 64-bit integer differently from std::int64_t.
  [[gnu::always_inline]] static const long long* pointerTo(const Slot* slot) {
    return static_cast<const long long*>(static_cast<const void*>(slot));
  }
  [[gnu::always_inline]] static long long* pointerTo(Slot* slot) {
    return static_cast<long long*>(static_cast<void*>(slot));
  }
  [[gnu::always_inline]] static __m256i flipNegative(__m256i bits) {
    const __m256i negative = _mm256_cmpgt_epi64(_mm256_setzero_si256(), bits);
    return _mm256_xor_si256(bits, _mm256_srli_epi64(negative, 1));
  }
};

}  // namespace

void sortAvx2(SortSlot<std::int16_t>* slots, std::uint64_t count, KeyOrder order) {
  sortByOrder<VectorEngine<Avx2Lanes16>>(slots, count, order);
}

void sortAvx2(SortSlot<std::int32_t>* slots, std::uint64_t count, KeyOrder order) {
  sortByOrder<VectorEngine<Avx2Lanes32>>(slots, count, order);
}

void sortAvx2(SortSlot<std::int64_t>* slots, std::uint64_t count, KeyOrder order) {
  sortByOrder<VectorEngine<Avx2Lanes64>>(slots, count, order);
}

}  // namespace vorn::collections

#if defined(__clang__)
#pragma clang attribute pop
#endif
#endif
