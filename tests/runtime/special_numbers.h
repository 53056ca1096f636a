// Numbers that obey rules of their own.
#pragma once

#include <limits>

namespace vorn::tests {

inline constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();

}  // namespace vorn::tests
