#include "collections/core/kernels/kernel_table.h"

#if defined(__x86_64__)

#include <algorithm>
#include <bit>
#include <limits>
#include <type_traits>

#include "collections/core/kernels/lanes_avx2.h"
#include "collections/core/kernels/search_kernels.h"
#include "collections/core/kernels/vector_edges.h"
#include "collections/core/kinds.h"

#define VORN_KERNEL VORN_TARGET_AVX2

namespace vorn::collections::kernels {

namespace avx2 {

#include "collections/core/kernels/x86_adders.inc"

#include "collections/core/kernels/vector_kernels.inc"

#include "collections/core/kernels/aligned_reverse_loop.inc"

}  // namespace avx2

constexpr KernelTable kAvx2Kernels = {
    VectorPath::Avx2,
    avx2::Lanes::kBytes,
    &kSse2Kernels,
    true,
    sumKernels([](auto tag) -> SumKernel { return avx2::sum<decltype(tag)::kind>; }),
    VORN_SEARCH_KERNELS(avx2::findFirst, avx2::findLast, avx2::count),
    {avx2::reverse<1>, avx2::reverse<2>, avx2::reverse<4>, avx2::reverse<8>},
    {sortAvx2, sortAvx2, sortAvx2},
};

constexpr KernelTable kAvx512Kernels = [] {
  KernelTable table = kAvx2Kernels;
  table.path = VectorPath::Avx512;
  table.sorts = {sortAvx512, sortAvx512, sortAvx512};
  return table;
}();

}  // namespace vorn::collections::kernels

#endif
