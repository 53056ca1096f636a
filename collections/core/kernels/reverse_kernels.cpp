#include "collections/core/kernels/reverse_kernels.h"

#include "collections/core/kernels/kernel_table.h"

namespace vorn::collections {

namespace {

constexpr std::uint8_t kNoWidth = 0xFF;
// The binary logarithm by width.
constexpr std::uint8_t kWidthLog2[] = {kNoWidth, 0, 1, kNoWidth, 2, kNoWidth, kNoWidth, kNoWidth, 3};

}  // namespace

void reverseElements(unsigned char* data, std::uint64_t n, std::uint64_t width) {
  if (n < 2 || width >= sizeof kWidthLog2 || kWidthLog2[width] == kNoWidth) return;
  kernels::kernelsFor(n * width).reversals[kWidthLog2[width]](data, n);
}

}  // namespace vorn::collections
