// Sums over packed elements.
#pragma once

#include <cstdint>

#include "collections/core/kinds.h"

namespace vorn::collections {

// The sum of n elements of one of the eight integer kinds, each sign- or zero-extended, wrapping around at 64 bits; for
// Boolean the number of non-zero bytes. 0 for the other kinds. The data may stand at any address.
long long sumIntegers(PrimitiveKind kind, const unsigned char* data, std::uint64_t n);

// The sum of n elements of Float or Double, each widened to double and added in index order, starting from 0.0: the
// rounding of every step is fixed. 0 for the other kinds.
double sumFloating(PrimitiveKind kind, const unsigned char* data, std::uint64_t n);

}  // namespace vorn::collections
