// What the kernel tests share: one run for each vector path, ranges that end at unmapped memory, and readings of packed
// elements that are written without the library's own dispatch.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "collections/core/kernels/vector_path.h"
#include "collections/core/kinds.h"
#include "tests/support/guarded_memory.h"

namespace vorn::tests {

using collections::PrimitiveKind;
using collections::VectorPath;

// Runs a test on one path and puts the former one back.
class OnEveryPath : public ::testing::TestWithParam<VectorPath> {
 protected:
  void SetUp() override {
    if (!collections::isVectorPathAvailable(GetParam())) GTEST_SKIP() << "not available here";
  }

 private:
  collections::VectorPathScope scope_{GetParam()};
};

inline std::string pathTestName(const ::testing::TestParamInfo<VectorPath>& path) {
  return collections::vectorPathName(path.param);
}

#define VORN_ON_EVERY_PATH(suite) \
  INSTANTIATE_TEST_SUITE_P(Paths, suite, ::testing::ValuesIn(collections::kVectorPaths), pathTestName)

inline constexpr PrimitiveKind kIntegerKinds[] = {PrimitiveKind::SByte,  PrimitiveKind::Byte, PrimitiveKind::Short,
                                                  PrimitiveKind::UShort, PrimitiveKind::Int,  PrimitiveKind::UInt,
                                                  PrimitiveKind::Long,   PrimitiveKind::ULong};

inline constexpr PrimitiveKind kAllKinds[] = {PrimitiveKind::SByte,  PrimitiveKind::Byte,   PrimitiveKind::Short,
                                              PrimitiveKind::UShort, PrimitiveKind::Int,    PrimitiveKind::UInt,
                                              PrimitiveKind::Long,   PrimitiveKind::ULong,  PrimitiveKind::Float,
                                              PrimitiveKind::Double, PrimitiveKind::Boolean};

inline std::uint64_t widthOf(PrimitiveKind kind) {
  switch (kind) {
    case PrimitiveKind::Short:
    case PrimitiveKind::UShort:
      return 2;
    case PrimitiveKind::Int:
    case PrimitiveKind::UInt:
    case PrimitiveKind::Float:
      return 4;
    case PrimitiveKind::Long:
    case PrimitiveKind::ULong:
    case PrimitiveKind::Double:
      return 8;
    default:
      return 1;
  }
}

inline bool isFloating(PrimitiveKind kind) { return kind == PrimitiveKind::Float || kind == PrimitiveKind::Double; }

// The 64 bits that element i stands for: sign- or zero-extended, 0 or 1 for Boolean.
inline std::uint64_t integerAt(PrimitiveKind kind, const unsigned char* data, std::uint64_t i) {
  const std::uint64_t width = widthOf(kind);
  std::uint64_t bits = 0;
  for (std::uint64_t byte = width; byte > 0; --byte) bits = bits << 8 | data[i * width + byte - 1];
  if (kind == PrimitiveKind::Boolean) return bits == 0 ? 0 : 1;
  const bool isSigned = kind == PrimitiveKind::SByte || kind == PrimitiveKind::Short || kind == PrimitiveKind::Int;
  if (isSigned && (bits >> (8 * width - 1)) != 0) bits |= ~std::uint64_t{0} << (8 * width);
  return bits;
}

inline double floatingAt(PrimitiveKind kind, const unsigned char* data, std::uint64_t i) {
  if (kind == PrimitiveKind::Float) {
    float element;
    std::memcpy(&element, data + i * 4, 4);
    return element;
  }
  double element;
  std::memcpy(&element, data + i * 8, 8);
  return element;
}

// Repeatable pseudo-random numbers (SplitMix64).
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}

  std::uint64_t next() {
    state_ += 0x9E3779B97F4A7C15;
    std::uint64_t z = state_;
    z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9;
    z = (z ^ z >> 27) * 0x94D049BB133111EB;
    return z ^ z >> 31;
  }
  std::uint64_t below(std::uint64_t limit) { return next() % limit; }
  void fill(unsigned char* data, std::uint64_t bytes) {
    for (std::uint64_t i = 0; i < bytes; ++i) data[i] = static_cast<unsigned char>(next());
  }

 private:
  std::uint64_t state_;
};

}  // namespace vorn::tests
