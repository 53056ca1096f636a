#include "collections/core/kernels/kernel_table.h"

#if defined(__x86_64__)

#include <algorithm>
#include <bit>
#include <limits>
#include <type_traits>

#include "collections/core/kernels/lanes_sse2.h"
#include "collections/core/kernels/search_kernels.h"
#include "collections/core/kernels/vector_edges.h"
#include "collections/core/kinds.h"

#define VORN_KERNEL

namespace vorn::collections::kernels {

namespace sse2 {

#include "collections/core/kernels/x86_adders.inc"

#include "collections/core/kernels/vector_kernels.inc"

#include "collections/core/kernels/aligned_reverse_loop.inc"

}  // namespace sse2

const KernelTable kSse2Kernels = {
    VectorPath::Sse2,
    sse2::Lanes::kBytes,
    &kPlainKernels,
    false,
    sumKernels([](auto tag) -> SumKernel { return sse2::sum<decltype(tag)::kind>; }),
    VORN_SEARCH_KERNELS(sse2::findFirst, sse2::findLast, sse2::count),
    {sse2::reverse<1>, sse2::reverse<2>, sse2::reverse<4>, sse2::reverse<8>},
    {sortPlain, sortPlain, sortPlain},
};

}  // namespace vorn::collections::kernels

#endif
