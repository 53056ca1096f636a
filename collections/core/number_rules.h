// Two rules of numbers that storage, kernels and the runtime share.
#pragma once

#include <limits>

namespace vorn::collections {

// Truncation toward zero; NaN, infinities and everything outside the signed 64-bit range give the minimum value.
inline long long truncateToI64(double value) {
  if (value >= -0x1p63 && value < 0x1p63) [[likely]]
    return static_cast<long long>(value);
  return std::numeric_limits<long long>::min();
}

// Whether a number is a Unicode scalar: at most U+10FFFF and no surrogate.
constexpr bool isUnicodeScalar(long long value) {
  const auto bits = static_cast<unsigned long long>(value);
  return bits <= 0x10FFFF && (bits < 0xD800 || bits > 0xDFFF);
}

}  // namespace vorn::collections
