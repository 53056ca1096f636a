#include "collections/core/kernels/kernel_table.h"

// The order of bytes in a vector is that of memory only on little-endian processors.
#if defined(__AARCH64EL__)

#include <algorithm>
#include <bit>
#include <limits>

#include "collections/core/kernels/lanes_neon.h"
#include "collections/core/kernels/search_kernels.h"
#include "collections/core/kernels/vector_edges.h"
#include "collections/core/kinds.h"

#define VORN_KERNEL

namespace vorn::collections::kernels {

namespace neon {

#include "collections/core/kernels/vector_kernels.inc"

namespace paired {

using Lanes = PairedLanes;
using Vector = Lanes::Vector;

#include "collections/core/kernels/reverse_loops.inc"

}  // namespace paired

// Stores are not aligned: that takes a third more instructions.
template <std::uint64_t kWidth>
void reverse(unsigned char* data, std::uint64_t count) {
  if (count * kWidth < PairedLanes::kBytes) return reverseOverlapping<kWidth>(data, count);
  paired::reverseOverlapping<kWidth>(data, count);
}

}  // namespace neon

const KernelTable kNeonKernels = {
    VectorPath::Neon,
    neon::Lanes::kBytes,
    &kPlainKernels,
    true,
    sumKernels([](auto tag) -> SumKernel { return neon::sum<decltype(tag)::kind>; }),
    VORN_SEARCH_KERNELS(neon::findFirst, neon::findLast, neon::count),
    {neon::reverse<1>, neon::reverse<2>, neon::reverse<4>, neon::reverse<8>},
    {sortPlain, sortPlain, sortPlain},
};

}  // namespace vorn::collections::kernels

#endif
