#include "collections/core/kernels/sum_kernels.h"

#include "collections/core/kernels/element_access.h"
#include "collections/core/kernels/kernel_table.h"

namespace vorn::collections {

namespace {

// One chain of additions, each waiting for the last: the order of the elements is part of the result.
template <class Element>
double sumInOrder(const unsigned char* data, std::uint64_t n) {
  double total = 0.0;
  for (std::uint64_t i = 0; i < n; ++i) total += static_cast<double>(loadElement<Element>(data, i));
  return total;
}

}  // namespace

long long sumIntegers(PrimitiveKind kind, const unsigned char* data, std::uint64_t n) {
  if (!isIntegerKind(kind) && kind != PrimitiveKind::Boolean) return 0;
  const kernels::KernelTable& table = kernels::kernelsFor(n * primitiveWidth(kind));
  return static_cast<long long>(table.sums[static_cast<std::uint8_t>(kind)](data, n));
}

double sumFloating(PrimitiveKind kind, const unsigned char* data, std::uint64_t n) {
  return visitKind(
      kind,
      [&](auto tag) {
        if constexpr (isFloatingKind(decltype(tag)::kind)) return sumInOrder<typename decltype(tag)::Element>(data, n);
        return 0.0;
      },
      0.0);
}

}  // namespace vorn::collections
