// Values that compare by content without looking behind a handle: numbers, characters, Booleans.
#pragma once

#include <bit>
#include <cstdint>

#include "collections/core/port/comparison.h"

namespace vorn::runtime {

// A boxed value without its box. Characters and Booleans are no numbers: only values of one family are comparable.
struct Scalar {
  enum class Family : std::uint8_t { Number, Char, CodeUnit, Boolean };

  Family family = Family::Number;
  NativeNumericValue value{};
};

// Whether the handle is a boxed value, and which.
bool readScalar(const void* handle, Scalar& scalar);

inline NativeNumericValue signedNumber(std::int64_t value) {
  return {NativeNumericValue::Kind::Signed, static_cast<std::uint64_t>(value)};
}
inline NativeNumericValue unsignedNumber(std::uint64_t value) { return {NativeNumericValue::Kind::Unsigned, value}; }
inline NativeNumericValue floatingNumber(double value) {
  return {NativeNumericValue::Kind::Floating, std::bit_cast<std::uint64_t>(value)};
}

inline bool scalarsEqual(const Scalar& left, const Scalar& right) {
  return left.family == right.family && compareNativeNumericValues(left.value, right.value) == 0;
}

}  // namespace vorn::runtime
