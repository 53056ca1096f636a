// How numbers become integers, in storage, kernels and the runtime alike.
#pragma once

#include <limits>

namespace vorn::collections {

// Truncation toward zero; NaN, infinities and everything outside the signed 64-bit range give the minimum value.
inline long long truncateToI64(double value) {
  if (value >= -0x1p63 && value < 0x1p63) [[likely]]
    return static_cast<long long>(value);
  return std::numeric_limits<long long>::min();
}

// The integer reading of a raw value, which comes as either type.
constexpr long long integerReading(long long value) { return value; }
inline long long integerReading(double value) { return truncateToI64(value); }

}  // namespace vorn::collections
