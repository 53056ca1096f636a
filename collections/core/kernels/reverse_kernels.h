// Reversal of packed elements.
#pragma once

#include <cstdint>

namespace vorn::collections {

// Reverses n elements of `width` bytes (1, 2, 4 or 8; nothing happens for another width) in place. The data may stand
// at any address.
void reverseElements(unsigned char* data, std::uint64_t n, std::uint64_t width);

}  // namespace vorn::collections
