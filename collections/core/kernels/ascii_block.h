// Sixteen numbers of 16 or 32 bits as bytes, as far as they are ASCII: the inner loop of texts that are made of
// characters. It is the same on every processor of a kind, so that it needs no choice of a path.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#if defined(__x86_64__)
#include <emmintrin.h>
#elif defined(__aarch64__)
#include <arm_neon.h>
#endif

namespace vorn::collections {

inline constexpr std::uint64_t kAsciiBlock = 16;

// Writes up to sixteen bytes and gives how many of them, from the first one on, are ASCII characters. 0 is none of
// them, as a text ends there. `units` points at packed elements of a type of 16 or 32 bits.
template <class Unit>
inline std::uint64_t copyAscii(const unsigned char* units, char* bytes) {
  static_assert(sizeof(Unit) == 2 || sizeof(Unit) == 4);
#if defined(__x86_64__)
  // Narrowing keeps what is too large above 0x7F, or makes it 0, so that the characters are what is positive at last.
  const auto load = [units](int part) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(units) + part); };
  const auto halves = [&load](int half) {
    if constexpr (sizeof(Unit) == 4) return _mm_packs_epi32(load(2 * half), load(2 * half + 1));
    return load(half);
  };
  const __m128i narrow = _mm_packus_epi16(halves(0), halves(1));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), narrow);
  const auto characters = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpgt_epi8(narrow, _mm_setzero_si128())));
  return static_cast<std::uint64_t>(std::countr_one(characters));
#elif defined(__aarch64__)
  const auto halves = [units](int half) {
    if constexpr (sizeof(Unit) == 4) {
      const auto* const at = reinterpret_cast<const std::uint32_t*>(units) + 8 * half;
      return vcombine_u16(vqmovn_u32(vld1q_u32(at)), vqmovn_u32(vld1q_u32(at + 4)));
    } else {
      return vld1q_u16(reinterpret_cast<const std::uint16_t*>(units) + 8 * half);
    }
  };
  const uint8x16_t narrow = vcombine_u8(vqmovn_u16(halves(0)), vqmovn_u16(halves(1)));
  vst1q_u8(reinterpret_cast<std::uint8_t*>(bytes), narrow);
  // Four bits for each byte.
  const uint8x16_t characters = vcgtzq_s8(vreinterpretq_s8_u8(narrow));
  const uint8x8_t nibbles = vshrn_n_u16(vreinterpretq_u16_u8(characters), 4);
  return static_cast<std::uint64_t>(std::countr_one(vget_lane_u64(vreinterpret_u64_u8(nibbles), 0))) / 4;
#else
  for (std::uint64_t ascii = 0; ascii < kAsciiBlock; ++ascii) {
    Unit unit;
    std::memcpy(&unit, units + ascii * sizeof(unit), sizeof(unit));
    if (unit == 0 || unit >= 0x80) return ascii;
    bytes[ascii] = static_cast<char>(unit);
  }
  return kAsciiBlock;
#endif
}

}  // namespace vorn::collections
