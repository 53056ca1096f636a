// The path for processors with AVX-512 (F, BW, DQ, VL).
#include <cstdint>
#include <utility>

#include "collections/core/kernels/sort/sort_paths.h"

#if defined(__x86_64__)
#if !defined(__clang__)
// The intrinsics of g++ 12 pass registers that are undefined on purpose, and it warns of each.
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>

// From here to the end of the file everything is compiled for the wide registers. No standard header may follow.
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx512f,avx512bw,avx512dq,avx512vl,bmi,bmi2,lzcnt,popcnt"))), \
                             apply_to = function)
#else
#pragma GCC target("avx512f,avx512bw,avx512dq,avx512vl,bmi,bmi2,lzcnt,popcnt")
#endif

#include "collections/core/kernels/sort/gather_table.h"
#include "collections/core/kernels/sort/vector_engine.h"

namespace vorn::collections {

namespace {

// A register on its own, because a template argument would lose its alignment.
struct Register512 {
  __m512i bits;
};

constexpr GatherTable<8, 1> kGather;

struct Split512 {
  Register512 gathered;
  std::int64_t greater;
};

// What does not depend on the width of the lanes.
struct Avx512Common {
  using Reg = Register512;

  [[gnu::always_inline]] static Reg load(const void* from) { return {_mm512_loadu_si512(from)}; }
  [[gnu::always_inline]] static void store(void* to, Reg reg) { _mm512_storeu_si512(to, reg.bits); }
};

struct Avx512Lanes32 : Avx512Common {
  using Key = std::int32_t;
  static constexpr int kLanes = 16;
  static constexpr __mmask16 kWithBit[] = {0, 0xAAAA, 0xCCCC, 0, 0xF0F0, 0, 0, 0, 0xFF00};

  [[gnu::always_inline]] static __mmask16 lanesBelow(std::int64_t end) {
    return static_cast<__mmask16>(end >= kLanes ? 0xFFFFU : end <= 0 ? 0U : (1U << static_cast<unsigned>(end)) - 1U);
  }
  [[gnu::always_inline]] static Reg broadcast(Key key) { return {_mm512_set1_epi32(key)}; }
  [[gnu::always_inline]] static Reg loadUpTo(const void* from, std::int64_t count) {
    return {_mm512_mask_loadu_epi32(_mm512_set1_epi32(0x7FFFFFFF), lanesBelow(count), from)};
  }
  [[gnu::always_inline]] static void storeUpTo(void* to, Reg reg, std::int64_t count) {
    _mm512_mask_storeu_epi32(to, lanesBelow(count), reg.bits);
  }
  [[gnu::always_inline]] static void storeLanes(void* to, Reg reg, std::int64_t from, std::int64_t end) {
    _mm512_mask_storeu_epi32(to, static_cast<__mmask16>(lanesBelow(end) & ~lanesBelow(from)), reg.bits);
  }
  [[gnu::always_inline]] static Reg min(Reg a, Reg b) { return {_mm512_min_epi32(a.bits, b.bits)}; }
  [[gnu::always_inline]] static Reg max(Reg a, Reg b) { return {_mm512_max_epi32(a.bits, b.bits)}; }
  [[gnu::always_inline]] static bool anyGreater(Reg a, Reg b) { return _mm512_cmpgt_epi32_mask(a.bits, b.bits) != 0; }

  // Two compressions joined by an expansion stay in registers; compressing into memory is microcode on some processors.
  [[gnu::always_inline]] static Split512 split(Reg keys, Reg bound) {
    const __mmask16 greater = _mm512_cmpgt_epi32_mask(keys.bits, bound.bits);
    const auto count = static_cast<unsigned>(__builtin_popcount(greater));
    const __m512i low = _mm512_maskz_compress_epi32(_knot_mask16(greater), keys.bits);
    const __m512i high = _mm512_maskz_compress_epi32(greater, keys.bits);
    const auto top = static_cast<__mmask16>(0xFFFF0000U >> count);
    return {{_mm512_mask_expand_epi32(low, top, high)}, count};
  }

  template <int kSize>
  [[gnu::always_inline]] static Reg reverseGroups(Reg reg) {
    if constexpr (kSize == 2) return {_mm512_shuffle_epi32(reg.bits, static_cast<_MM_PERM_ENUM>(0xB1))};
    if constexpr (kSize == 4) return {_mm512_shuffle_epi32(reg.bits, static_cast<_MM_PERM_ENUM>(0x1B))};
    if constexpr (kSize == 8) {
      const __m512i places = _mm512_setr_epi32(7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8);
      return {_mm512_permutexvar_epi32(places, reg.bits)};
    }
    if constexpr (kSize == 16) return reverse(reg);
  }
  [[gnu::always_inline]] static Reg reverse(Reg reg) {
    const __m512i places = _mm512_setr_epi32(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
    return {_mm512_permutexvar_epi32(places, reg.bits)};
  }
  template <int kDistance>
  [[gnu::always_inline]] static Reg swapLanes(Reg reg) {
    if constexpr (kDistance == 1) return {_mm512_shuffle_epi32(reg.bits, static_cast<_MM_PERM_ENUM>(0xB1))};
    if constexpr (kDistance == 2) return {_mm512_shuffle_epi32(reg.bits, static_cast<_MM_PERM_ENUM>(0x4E))};
    if constexpr (kDistance == 4) return {_mm512_permutex_epi64(reg.bits, 0x4E)};
  }
  template <int kDistance>
  [[gnu::always_inline]] static Reg lowerUpper(Reg a, Reg b) {
    return {_mm512_mask_max_epi32(_mm512_min_epi32(a.bits, b.bits), kWithBit[kDistance], a.bits, b.bits)};
  }

  template <KeyOrder kOrder>
  [[gnu::always_inline]] static Reg toKey(Reg reg) {
    if constexpr (kOrder == KeyOrder::Unsigned) return {_mm512_xor_si512(reg.bits, _mm512_set1_epi32(kSign))};
    if constexpr (kOrder == KeyOrder::Floating) {
      return {_mm512_sub_epi32(flipNegative(reg.bits), _mm512_set1_epi32(kNaNs))};
    }
    return reg;
  }
  template <KeyOrder kOrder>
  [[gnu::always_inline]] static Reg fromKey(Reg reg) {
    if constexpr (kOrder == KeyOrder::Floating) {
      return {flipNegative(_mm512_add_epi32(reg.bits, _mm512_set1_epi32(kNaNs)))};
    }
    return toKey<kOrder>(reg);
  }

 private:
  static constexpr auto kSign = static_cast<std::int32_t>(KeyMapping<Key, KeyOrder::Signed>::kSign);
  static constexpr auto kNaNs = static_cast<std::int32_t>(KeyMapping<Key, KeyOrder::Floating>::negativeNaNs());

  [[gnu::always_inline]] static __m512i flipNegative(__m512i bits) {
    return _mm512_xor_si512(bits, _mm512_srli_epi32(_mm512_srai_epi32(bits, 31), 1));
  }
};

// Keys of two bytes in lanes of four: they are widened on their way in and narrowed on their way out. Half of each
// register is wasted, and it still took a third of the time of the plain path.
struct Avx512Lanes16 : Avx512Lanes32 {
  using Key = std::int16_t;

  [[gnu::always_inline]] static Reg load(const void* from) {
    return {_mm512_cvtepi16_epi32(_mm256_loadu_si256(static_cast<const __m256i*>(from)))};
  }
  [[gnu::always_inline]] static void store(void* to, Reg reg) {
    _mm256_storeu_si256(static_cast<__m256i*>(to), _mm512_cvtepi32_epi16(reg.bits));
  }
  [[gnu::always_inline]] static Reg broadcast(Key key) { return {_mm512_set1_epi32(key)}; }
  [[gnu::always_inline]] static Reg loadUpTo(const void* from, std::int64_t count) {
    return {_mm512_cvtepi16_epi32(_mm256_mask_loadu_epi16(_mm256_set1_epi16(0x7FFF), lanesBelow(count), from))};
  }
  [[gnu::always_inline]] static void storeUpTo(void* to, Reg reg, std::int64_t count) {
    _mm256_mask_storeu_epi16(to, lanesBelow(count), _mm512_cvtepi32_epi16(reg.bits));
  }
  [[gnu::always_inline]] static void storeLanes(void* to, Reg reg, std::int64_t from, std::int64_t end) {
    _mm256_mask_storeu_epi16(to, static_cast<__mmask16>(lanesBelow(end) & ~lanesBelow(from)),
                             _mm512_cvtepi32_epi16(reg.bits));
  }

  // Flipping the sign of a widened key flips all bits that copy it.
  template <KeyOrder kOrder>
  [[gnu::always_inline]] static Reg toKey(Reg reg) {
    if constexpr (kOrder == KeyOrder::Unsigned) return {_mm512_xor_si512(reg.bits, _mm512_set1_epi32(-0x8000))};
    return reg;
  }
  template <KeyOrder kOrder>
  [[gnu::always_inline]] static Reg fromKey(Reg reg) {
    return toKey<kOrder>(reg);
  }
};

struct Avx512Lanes64 : Avx512Common {
  using Key = std::int64_t;
  static constexpr int kLanes = 8;
  static constexpr __mmask8 kWithBit[] = {0, 0xAA, 0xCC, 0, 0xF0};

  [[gnu::always_inline]] static __mmask8 lanesBelow(std::int64_t end) {
    return static_cast<__mmask8>(end >= kLanes ? 0xFFU : end <= 0 ? 0U : (1U << static_cast<unsigned>(end)) - 1U);
  }
  [[gnu::always_inline]] static Reg broadcast(Key key) { return {_mm512_set1_epi64(key)}; }
  [[gnu::always_inline]] static Reg loadUpTo(const void* from, std::int64_t count) {
    return {_mm512_mask_loadu_epi64(_mm512_set1_epi64(0x7FFFFFFFFFFFFFFF), lanesBelow(count), from)};
  }
  [[gnu::always_inline]] static void storeUpTo(void* to, Reg reg, std::int64_t count) {
    _mm512_mask_storeu_epi64(to, lanesBelow(count), reg.bits);
  }
  [[gnu::always_inline]] static void storeLanes(void* to, Reg reg, std::int64_t from, std::int64_t end) {
    _mm512_mask_storeu_epi64(to, static_cast<__mmask8>(lanesBelow(end) & ~lanesBelow(from)), reg.bits);
  }
  [[gnu::always_inline]] static Reg min(Reg a, Reg b) { return {_mm512_min_epi64(a.bits, b.bits)}; }
  [[gnu::always_inline]] static Reg max(Reg a, Reg b) { return {_mm512_max_epi64(a.bits, b.bits)}; }
  [[gnu::always_inline]] static bool anyGreater(Reg a, Reg b) { return _mm512_cmpgt_epi64_mask(a.bits, b.bits) != 0; }

  // One permutation by table: with eight lanes the table is small, and it took two thirds of the time of compressing.
  [[gnu::always_inline]] static Split512 split(Reg keys, Reg bound) {
    const __mmask8 greater = _mm512_cmpgt_epi64_mask(keys.bits, bound.bits);
    const auto count = static_cast<unsigned>(__builtin_popcount(greater));
    const __m128i bytes =
        _mm_loadl_epi64(static_cast<const __m128i*>(static_cast<const void*>(kGather.places[greater])));
    return {{_mm512_permutexvar_epi64(_mm512_cvtepu8_epi64(bytes), keys.bits)}, count};
  }

  template <int kSize>
  [[gnu::always_inline]] static Reg reverseGroups(Reg reg) {
    if constexpr (kSize == 2) return {_mm512_shuffle_epi32(reg.bits, static_cast<_MM_PERM_ENUM>(0x4E))};
    if constexpr (kSize == 4) return {_mm512_permutex_epi64(reg.bits, 0x1B)};
    if constexpr (kSize == 8) return reverse(reg);
  }
  [[gnu::always_inline]] static Reg reverse(Reg reg) {
    return {_mm512_permutexvar_epi64(_mm512_setr_epi64(7, 6, 5, 4, 3, 2, 1, 0), reg.bits)};
  }
  template <int kDistance>
  [[gnu::always_inline]] static Reg swapLanes(Reg reg) {
    if constexpr (kDistance == 1) return {_mm512_shuffle_epi32(reg.bits, static_cast<_MM_PERM_ENUM>(0x4E))};
    if constexpr (kDistance == 2) return {_mm512_permutex_epi64(reg.bits, 0x4E)};
  }
  template <int kDistance>
  [[gnu::always_inline]] static Reg lowerUpper(Reg a, Reg b) {
    return {_mm512_mask_max_epi64(_mm512_min_epi64(a.bits, b.bits), kWithBit[kDistance], a.bits, b.bits)};
  }

  template <KeyOrder kOrder>
  [[gnu::always_inline]] static Reg toKey(Reg reg) {
    if constexpr (kOrder == KeyOrder::Unsigned) return {_mm512_xor_si512(reg.bits, _mm512_set1_epi64(kSign))};
    if constexpr (kOrder == KeyOrder::Floating) {
      return {_mm512_sub_epi64(flipNegative(reg.bits), _mm512_set1_epi64(kNaNs))};
    }
    return reg;
  }
  template <KeyOrder kOrder>
  [[gnu::always_inline]] static Reg fromKey(Reg reg) {
    if constexpr (kOrder == KeyOrder::Floating) {
      return {flipNegative(_mm512_add_epi64(reg.bits, _mm512_set1_epi64(kNaNs)))};
    }
    return toKey<kOrder>(reg);
  }

 private:
  static constexpr auto kSign = static_cast<std::int64_t>(KeyMapping<Key, KeyOrder::Signed>::kSign);
  static constexpr auto kNaNs = static_cast<std::int64_t>(KeyMapping<Key, KeyOrder::Floating>::negativeNaNs());

  [[gnu::always_inline]] static __m512i flipNegative(__m512i bits) {
    return _mm512_xor_si512(bits, _mm512_srli_epi64(_mm512_srai_epi64(bits, 63), 1));
  }
};

}  // namespace

void sortAvx512(SortSlot<std::int16_t>* slots, std::uint64_t count, KeyOrder order) {
  sortByOrder<VectorEngine<Avx512Lanes16>>(slots, count, order);
}

void sortAvx512(SortSlot<std::int32_t>* slots, std::uint64_t count, KeyOrder order) {
  sortByOrder<VectorEngine<Avx512Lanes32>>(slots, count, order);
}

void sortAvx512(SortSlot<std::int64_t>* slots, std::uint64_t count, KeyOrder order) {
  sortByOrder<VectorEngine<Avx512Lanes64>>(slots, count, order);
}

}  // namespace vorn::collections

#if defined(__clang__)
#pragma clang attribute pop
#endif
#endif
