// The operations of lanes_sse2.h on 32-byte vectors. Every function carries the target attribute, and nothing else
// does: the file's other code, the standard library's inline functions above all, must not be compiled with wider
// instructions, for the linker may keep that copy for the whole program.
#pragma once

#include <immintrin.h>

#include <cstdint>

#define VORN_TARGET_AVX2 __attribute__((target("avx2")))

namespace vorn::collections::kernels::avx2 {

struct Lanes {
  using Vector = __m256i;
  static constexpr std::uint64_t kBytes = 32;
  static constexpr int kSearchedAtOnce = 8;

  VORN_TARGET_AVX2 static Vector load(const unsigned char* at) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at));
  }
  VORN_TARGET_AVX2 static void store(unsigned char* at, Vector value) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(at), value);
  }

  VORN_TARGET_AVX2 static Vector zero() { return _mm256_setzero_si256(); }
  VORN_TARGET_AVX2 static Vector broadcast8(std::uint64_t bits) { return _mm256_set1_epi8(static_cast<char>(bits)); }
  VORN_TARGET_AVX2 static Vector broadcast16(std::uint64_t bits) { return _mm256_set1_epi16(static_cast<short>(bits)); }
  VORN_TARGET_AVX2 static Vector broadcast32(std::uint64_t bits) { return _mm256_set1_epi32(static_cast<int>(bits)); }
  VORN_TARGET_AVX2 static Vector broadcast64(std::uint64_t bits) {
    return _mm256_set1_epi64x(static_cast<long long>(bits));
  }

  VORN_TARGET_AVX2 static Vector bitAnd(Vector a, Vector b) { return _mm256_and_si256(a, b); }
  VORN_TARGET_AVX2 static Vector bitOr(Vector a, Vector b) { return _mm256_or_si256(a, b); }
  VORN_TARGET_AVX2 static Vector bitXor(Vector a, Vector b) { return _mm256_xor_si256(a, b); }

  VORN_TARGET_AVX2 static Vector add8(Vector a, Vector b) { return _mm256_add_epi8(a, b); }
  VORN_TARGET_AVX2 static Vector subtract8(Vector a, Vector b) { return _mm256_sub_epi8(a, b); }
  VORN_TARGET_AVX2 static Vector add32(Vector a, Vector b) { return _mm256_add_epi32(a, b); }
  VORN_TARGET_AVX2 static Vector add64(Vector a, Vector b) { return _mm256_add_epi64(a, b); }
  VORN_TARGET_AVX2 static Vector subtract64(Vector a, Vector b) { return _mm256_sub_epi64(a, b); }
  VORN_TARGET_AVX2 static Vector minimum8(Vector a, Vector b) { return _mm256_min_epu8(a, b); }
  VORN_TARGET_AVX2 static Vector upper32(Vector a) { return _mm256_srli_epi64(a, 32); }
  VORN_TARGET_AVX2 static Vector lower32Raised(Vector a) { return _mm256_slli_epi64(a, 32); }

  VORN_TARGET_AVX2 static Vector sums8(Vector a) { return _mm256_sad_epu8(a, _mm256_setzero_si256()); }
  VORN_TARGET_AVX2 static Vector sums16(Vector a) { return _mm256_madd_epi16(a, _mm256_set1_epi16(1)); }
  // Which two elements meet in a lane differs from the narrower path; only their sum matters.
  VORN_TARGET_AVX2 static Vector sums32(Vector a) {
    const Vector sign = _mm256_srai_epi32(a, 31);
    return _mm256_add_epi64(_mm256_unpacklo_epi32(a, sign), _mm256_unpackhi_epi32(a, sign));
  }
  VORN_TARGET_AVX2 static std::uint64_t total64(Vector a) {
    const __m128i halves = _mm_add_epi64(_mm256_castsi256_si128(a), _mm256_extracti128_si256(a, 1));
    return static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_add_epi64(halves, _mm_unpackhi_epi64(halves, halves))));
  }

  VORN_TARGET_AVX2 static Vector equal8(Vector a, Vector b) { return _mm256_cmpeq_epi8(a, b); }
  VORN_TARGET_AVX2 static Vector equal16(Vector a, Vector b) { return _mm256_cmpeq_epi16(a, b); }
  VORN_TARGET_AVX2 static Vector equal32(Vector a, Vector b) { return _mm256_cmpeq_epi32(a, b); }
  VORN_TARGET_AVX2 static Vector equal64(Vector a, Vector b) { return _mm256_cmpeq_epi64(a, b); }
  VORN_TARGET_AVX2 static Vector equalFloat(Vector a, Vector b) {
    return _mm256_castps_si256(_mm256_cmp_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), _CMP_EQ_OQ));
  }
  VORN_TARGET_AVX2 static Vector equalDouble(Vector a, Vector b) {
    return _mm256_castpd_si256(_mm256_cmp_pd(_mm256_castsi256_pd(a), _mm256_castsi256_pd(b), _CMP_EQ_OQ));
  }
  static constexpr std::uint64_t kMaskBits = 1;
  VORN_TARGET_AVX2 static std::uint32_t byteMask(Vector a) {
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(a));
  }

  template <std::uint64_t kWidth>
  VORN_TARGET_AVX2 static Vector reversed(Vector a) {
    if constexpr (kWidth == 8) return _mm256_permute4x64_epi64(a, _MM_SHUFFLE(0, 1, 2, 3));
    if constexpr (kWidth == 4) return _mm256_permutevar8x32_epi32(a, _mm256_setr_epi32(7, 6, 5, 4, 3, 2, 1, 0));
    // Bytes move only within the halves of a vector, which then change places.
    if constexpr (kWidth == 2) {
      const Vector places = _mm256_setr_epi8(14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1,  //
                                             14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1);
      return _mm256_permute4x64_epi64(_mm256_shuffle_epi8(a, places), _MM_SHUFFLE(1, 0, 3, 2));
    }
    if constexpr (kWidth == 1) {
      const Vector places = _mm256_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0,  //
                                             15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
      return _mm256_permute4x64_epi64(_mm256_shuffle_epi8(a, places), _MM_SHUFFLE(1, 0, 3, 2));
    }
  }
};

using Vector = Lanes::Vector;

}  // namespace vorn::collections::kernels::avx2
