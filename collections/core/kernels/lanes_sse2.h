// One 16-byte vector and the operations that the kernel loops are written in, for every x86-64 processor. lanes_avx2.h
// has the same operations on 32 bytes, and lanes_neon.h those that aarch64 needs; each loop is compiled against all.
#pragma once

#include <emmintrin.h>

#include <cstdint>

namespace vorn::collections::kernels::sse2 {

struct Lanes {
  using Vector = __m128i;
  static constexpr std::uint64_t kBytes = 16;
  // Vectors that a search tests before it branches, which spreads the cost of the loop's own instructions.
  static constexpr int kSearchedAtOnce = 8;

  static Vector load(const unsigned char* at) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at)); }
  static void store(unsigned char* at, Vector value) { _mm_storeu_si128(reinterpret_cast<__m128i*>(at), value); }

  static Vector zero() { return _mm_setzero_si128(); }
  static Vector broadcast8(std::uint64_t bits) { return _mm_set1_epi8(static_cast<char>(bits)); }
  static Vector broadcast16(std::uint64_t bits) { return _mm_set1_epi16(static_cast<short>(bits)); }
  static Vector broadcast32(std::uint64_t bits) { return _mm_set1_epi32(static_cast<int>(bits)); }
  static Vector broadcast64(std::uint64_t bits) { return _mm_set1_epi64x(static_cast<long long>(bits)); }

  static Vector bitAnd(Vector a, Vector b) { return _mm_and_si128(a, b); }
  static Vector bitOr(Vector a, Vector b) { return _mm_or_si128(a, b); }
  static Vector bitXor(Vector a, Vector b) { return _mm_xor_si128(a, b); }

  static Vector add8(Vector a, Vector b) { return _mm_add_epi8(a, b); }
  static Vector subtract8(Vector a, Vector b) { return _mm_sub_epi8(a, b); }
  static Vector add32(Vector a, Vector b) { return _mm_add_epi32(a, b); }
  static Vector add64(Vector a, Vector b) { return _mm_add_epi64(a, b); }
  static Vector subtract64(Vector a, Vector b) { return _mm_sub_epi64(a, b); }
  static Vector minimum8(Vector a, Vector b) { return _mm_min_epu8(a, b); }
  // The upper 32 bits of each 64-bit lane.
  static Vector upper32(Vector a) { return _mm_srli_epi64(a, 32); }
  // The lower 32 bits of each 64-bit lane moved up.
  static Vector lower32Raised(Vector a) { return _mm_slli_epi64(a, 32); }

  // Unsigned bytes, eight to a 64-bit lane.
  static Vector sums8(Vector a) { return _mm_sad_epu8(a, _mm_setzero_si128()); }
  // Signed 16-bit elements, two to a 32-bit lane.
  static Vector sums16(Vector a) { return _mm_madd_epi16(a, _mm_set1_epi16(1)); }
  // Signed 32-bit elements, two to a 64-bit lane.
  static Vector sums32(Vector a) {
    const Vector sign = _mm_srai_epi32(a, 31);
    return _mm_add_epi64(_mm_unpacklo_epi32(a, sign), _mm_unpackhi_epi32(a, sign));
  }
  // The sum of the 64-bit lanes.
  static std::uint64_t total64(Vector a) {
    return static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_add_epi64(a, _mm_unpackhi_epi64(a, a))));
  }

  // Comparisons set all bits of the lanes that match.
  static Vector equal8(Vector a, Vector b) { return _mm_cmpeq_epi8(a, b); }
  static Vector equal16(Vector a, Vector b) { return _mm_cmpeq_epi16(a, b); }
  static Vector equal32(Vector a, Vector b) { return _mm_cmpeq_epi32(a, b); }
  static Vector equal64(Vector a, Vector b) {
    const Vector halves = _mm_cmpeq_epi32(a, b);
    return _mm_and_si128(halves, _mm_shuffle_epi32(halves, _MM_SHUFFLE(2, 3, 0, 1)));
  }
  static Vector equalFloat(Vector a, Vector b) {
    return _mm_castps_si128(_mm_cmpeq_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b)));
  }
  static Vector equalDouble(Vector a, Vector b) {
    return _mm_castpd_si128(_mm_cmpeq_pd(_mm_castsi128_pd(a), _mm_castsi128_pd(b)));
  }
  // kMaskBits for each byte, the first byte's lowest; the comparisons' results are all or nothing in every byte.
  static constexpr std::uint64_t kMaskBits = 1;
  static std::uint32_t byteMask(Vector a) { return static_cast<std::uint32_t>(_mm_movemask_epi8(a)); }

  // The elements of kWidth bytes in reverse order.
  template <std::uint64_t kWidth>
  static Vector reversed(Vector a) {
    if constexpr (kWidth == 8) return _mm_shuffle_epi32(a, _MM_SHUFFLE(1, 0, 3, 2));
    if constexpr (kWidth == 4) return _mm_shuffle_epi32(a, _MM_SHUFFLE(0, 1, 2, 3));
    if constexpr (kWidth == 2) {
      const Vector quarters =
          _mm_shufflehi_epi16(_mm_shufflelo_epi16(a, _MM_SHUFFLE(0, 1, 2, 3)), _MM_SHUFFLE(0, 1, 2, 3));
      return _mm_shuffle_epi32(quarters, _MM_SHUFFLE(1, 0, 3, 2));
    }
    if constexpr (kWidth == 1) {
      const Vector swapped = _mm_or_si128(_mm_slli_epi16(a, 8), _mm_srli_epi16(a, 8));
      return reversed<2>(swapped);
    }
  }
};

using Vector = Lanes::Vector;

}  // namespace vorn::collections::kernels::sse2
