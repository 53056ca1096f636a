// The operations of lanes_sse2.h that aarch64 needs, what its sums add with, and the wider vectors of its reversals:
// every such processor has these instructions. docs/architectures.md has what they come to.
#pragma once

#include <arm_neon.h>

#include <bit>
#include <cstdint>

#include "collections/core/kinds.h"

namespace vorn::collections::kernels::neon {

struct Lanes {
  using Vector = uint8x16_t;
  static constexpr std::uint64_t kBytes = 16;
  static constexpr int kSearchedAtOnce = 16;

  static Vector load(const unsigned char* at) { return vld1q_u8(at); }
  static void store(unsigned char* at, Vector value) { vst1q_u8(at, value); }

  static Vector zero() { return vdupq_n_u8(0); }
  static Vector broadcast8(std::uint64_t bits) { return vdupq_n_u8(static_cast<std::uint8_t>(bits)); }
  static Vector broadcast16(std::uint64_t bits) {
    return vreinterpretq_u8_u16(vdupq_n_u16(static_cast<std::uint16_t>(bits)));
  }
  static Vector broadcast32(std::uint64_t bits) {
    return vreinterpretq_u8_u32(vdupq_n_u32(static_cast<std::uint32_t>(bits)));
  }
  static Vector broadcast64(std::uint64_t bits) { return vreinterpretq_u8_u64(vdupq_n_u64(bits)); }

  static Vector bitAnd(Vector a, Vector b) { return vandq_u8(a, b); }
  static Vector bitOr(Vector a, Vector b) { return vorrq_u8(a, b); }

  static Vector add8(Vector a, Vector b) { return vaddq_u8(a, b); }
  static Vector subtract8(Vector a, Vector b) { return vsubq_u8(a, b); }
  static Vector add64(Vector a, Vector b) {
    return vreinterpretq_u8_u64(vaddq_u64(vreinterpretq_u64_u8(a), vreinterpretq_u64_u8(b)));
  }
  static Vector minimum8(Vector a, Vector b) { return vminq_u8(a, b); }

  // Unsigned bytes, eight to a 64-bit lane.
  static Vector sums8(Vector a) { return vreinterpretq_u8_u64(vpaddlq_u32(vpaddlq_u16(vpaddlq_u8(a)))); }
  // The sum of the 64-bit lanes.
  static std::uint64_t total64(Vector a) { return vaddvq_u64(vreinterpretq_u64_u8(a)); }

  static Vector equal8(Vector a, Vector b) { return vceqq_u8(a, b); }
  static Vector equal16(Vector a, Vector b) {
    return vreinterpretq_u8_u16(vceqq_u16(vreinterpretq_u16_u8(a), vreinterpretq_u16_u8(b)));
  }
  static Vector equal32(Vector a, Vector b) {
    return vreinterpretq_u8_u32(vceqq_u32(vreinterpretq_u32_u8(a), vreinterpretq_u32_u8(b)));
  }
  static Vector equal64(Vector a, Vector b) {
    return vreinterpretq_u8_u64(vceqq_u64(vreinterpretq_u64_u8(a), vreinterpretq_u64_u8(b)));
  }
  static Vector equalFloat(Vector a, Vector b) {
    return vreinterpretq_u8_u32(vceqq_f32(vreinterpretq_f32_u8(a), vreinterpretq_f32_u8(b)));
  }
  static Vector equalDouble(Vector a, Vector b) {
    return vreinterpretq_u8_u64(vceqq_f64(vreinterpretq_f64_u8(a), vreinterpretq_f64_u8(b)));
  }

  // Nothing takes one bit of each byte; narrowing 16 bits to the eight in their middle leaves four.
  static constexpr std::uint64_t kMaskBits = 4;
  static std::uint64_t byteMask(Vector a) {
    return vget_lane_u64(vreinterpret_u64_u8(vshrn_n_u16(vreinterpretq_u16_u8(a), 4)), 0);
  }

  // Each half in reverse order, and the halves in each other's place.
  template <std::uint64_t kWidth>
  static Vector reversed(Vector a) {
    Vector halves = a;
    if constexpr (kWidth == 4) halves = vreinterpretq_u8_u32(vrev64q_u32(vreinterpretq_u32_u8(a)));
    if constexpr (kWidth == 2) halves = vreinterpretq_u8_u16(vrev64q_u16(vreinterpretq_u16_u8(a)));
    if constexpr (kWidth == 1) halves = vrev64q_u8(a);
    return vextq_u8(halves, halves, 8);
  }
};

using Vector = Lanes::Vector;

// Two vectors as one, for reversals: they are loaded and stored by one instruction.
struct PairedLanes {
  struct Vector {
    Lanes::Vector lower;
    Lanes::Vector upper;
  };
  static constexpr std::uint64_t kBytes = 2 * Lanes::kBytes;

  static Vector load(const unsigned char* at) { return {Lanes::load(at), Lanes::load(at + Lanes::kBytes)}; }
  static void store(unsigned char* at, Vector value) {
    Lanes::store(at, value.lower);
    Lanes::store(at + Lanes::kBytes, value.upper);
  }

  template <std::uint64_t kWidth>
  static Vector reversed(Vector a) {
    return {Lanes::reversed<kWidth>(a.upper), Lanes::reversed<kWidth>(a.lower)};
  }
};

// ---- Sums ------------------------------------------------------------------------------------------------------------

// One instruction widens neighbours, adds the two and adds that to a lane of their double width, for either signedness.
inline uint16x8_t plusPairs(uint16x8_t sums, uint8x16_t elements) { return vpadalq_u8(sums, elements); }
inline int16x8_t plusPairs(int16x8_t sums, int8x16_t elements) { return vpadalq_s8(sums, elements); }
inline uint32x4_t plusPairs(uint32x4_t sums, uint16x8_t elements) { return vpadalq_u16(sums, elements); }
inline int32x4_t plusPairs(int32x4_t sums, int16x8_t elements) { return vpadalq_s16(sums, elements); }
inline uint64x2_t plusPairs(uint64x2_t sums, uint32x4_t elements) { return vpadalq_u32(sums, elements); }
inline int64x2_t plusPairs(int64x2_t sums, int32x4_t elements) { return vpadalq_s32(sums, elements); }

// Adds elements of one or two bytes in lanes of their double width, which it widens in time.
template <class Elements, class Pairs, std::uint64_t kMost>
struct NarrowAdder {
  static constexpr std::uint64_t kMostAdditions = kMost;
  Pairs pairs = {};
  Vector sum = Lanes::zero();

  void add(Vector elements) { pairs = plusPairs(pairs, std::bit_cast<Elements>(elements)); }
  void flush() {
    sum = lanes();
    pairs = Pairs{};
  }
  Vector lanes() const { return Lanes::add64(sum, widened(pairs)); }

 private:
  static Vector widened(uint32x4_t sums) { return std::bit_cast<Vector>(vpaddlq_u32(sums)); }
  static Vector widened(int32x4_t sums) { return std::bit_cast<Vector>(vpaddlq_s32(sums)); }
  static Vector widened(uint16x8_t sums) { return widened(vpaddlq_u16(sums)); }
  static Vector widened(int16x8_t sums) { return widened(vpaddlq_s16(sums)); }
};

// Elements of four bytes, whose lanes never have to be widened again.
template <class Elements, class Pairs>
struct PairAdder {
  static constexpr std::uint64_t kMostAdditions = ~std::uint64_t{0};
  Pairs pairs = {};

  void add(Vector elements) { pairs = plusPairs(pairs, std::bit_cast<Elements>(elements)); }
  void flush() {}
  Vector lanes() const { return std::bit_cast<Vector>(pairs); }
};

struct Adder8 {
  static constexpr std::uint64_t kMostAdditions = ~std::uint64_t{0};
  // As 64-bit lanes, since g++ 12 copies registers when every addition changes their type.
  uint64x2_t sum = {};

  void add(Vector elements) { sum = vaddq_u64(sum, std::bit_cast<uint64x2_t>(elements)); }
  void flush() {}
  Vector lanes() const { return std::bit_cast<Vector>(sum); }
};

// A pair of bytes is at most 510 or at least -256, so that 16 bits hold 128 of them; 32 bits hold 32768 pairs of two-byte
// elements.
template <PrimitiveKind kKind>
struct AdderChoice {
  using Type = Adder8;
};
template <>
struct AdderChoice<PrimitiveKind::Boolean> {
  using Type = NarrowAdder<uint8x16_t, uint16x8_t, 128>;
};
template <>
struct AdderChoice<PrimitiveKind::Byte> {
  using Type = NarrowAdder<uint8x16_t, uint16x8_t, 128>;
};
template <>
struct AdderChoice<PrimitiveKind::SByte> {
  using Type = NarrowAdder<int8x16_t, int16x8_t, 128>;
};
template <>
struct AdderChoice<PrimitiveKind::UShort> {
  using Type = NarrowAdder<uint16x8_t, uint32x4_t, 32768>;
};
template <>
struct AdderChoice<PrimitiveKind::Short> {
  using Type = NarrowAdder<int16x8_t, int32x4_t, 32768>;
};
template <>
struct AdderChoice<PrimitiveKind::UInt> {
  using Type = PairAdder<uint32x4_t, uint64x2_t>;
};
template <>
struct AdderChoice<PrimitiveKind::Int> {
  using Type = PairAdder<int32x4_t, int64x2_t>;
};

template <PrimitiveKind kKind>
using AdderOf = typename AdderChoice<kKind>::Type;

// The adders take elements as they are, but for truth, which any byte may stand for.
template <PrimitiveKind kKind>
Vector adjusted(Vector elements) {
  if constexpr (kKind == PrimitiveKind::Boolean) return Lanes::minimum8(elements, Lanes::broadcast8(1));
  return elements;
}

constexpr std::uint64_t adjustmentOf(PrimitiveKind) { return 0; }

}  // namespace vorn::collections::kernels::neon
