// Searches for one needle among packed elements.
//
// The needle comes as the raw pair that a list keeps for a value: `integer` counts for the integer kinds and Boolean,
// `floating` for Float and Double. Integers match when the element, sign- or zero-extended to 64 bits, has the bits of
// `integer`; Boolean elements when (byte != 0) equals a needle of 0 or 1; floating elements by IEEE equality after
// widening, so that a NaN never matches and the two zeros match each other. A needle that no element of the kind can
// equal is not searched for. The data may stand at any address, and nothing outside the range is read.
#pragma once

#include <cstdint>

#include "collections/core/kinds.h"

namespace vorn::collections {

// What the searches answer when nothing is found.
inline constexpr std::uint64_t kNotFound = ~std::uint64_t{0};

// Position of the first match at or after `from`, below `size`.
std::uint64_t findFirstElement(PrimitiveKind kind, const unsigned char* data, std::uint64_t from, std::uint64_t size,
                               long long integer, double floating);

// Position of the last match below `end`.
std::uint64_t findLastElement(PrimitiveKind kind, const unsigned char* data, std::uint64_t end, long long integer,
                              double floating);

// Number of matches below `size`.
std::uint64_t countElements(PrimitiveKind kind, const unsigned char* data, std::uint64_t size, long long integer,
                            double floating);

}  // namespace vorn::collections
