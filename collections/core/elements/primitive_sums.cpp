#include "collections/core/elements/primitive_sums.h"

#include "collections/core/elements/primitive_elements.h"
#include "collections/core/kernels/sum_kernels.h"
#include "collections/core/kinds.h"
#include "collections/core/number_rules.h"

namespace vc = vorn::collections;

long long primitiveListSumI64(const ListData& list) {
  const SmallPrimitiveBuffer& buffer = list.primitive;
  if (!list.isUnboxed()) return 0;
  if (!vc::isFloatingKind(list.primitiveKind)) return vc::sumIntegers(list.primitiveKind, buffer.data, buffer.size);
  return vc::truncateToI64(vc::sumFloating(list.primitiveKind, buffer.data, buffer.size));
}
