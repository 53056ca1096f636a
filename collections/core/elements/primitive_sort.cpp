#include "collections/core/elements/primitive_sort.h"

#include "collections/core/kernels/sort/primitive_sort.h"
#include "collections/core/kinds.h"

namespace vc = vorn::collections;

namespace vorn::collections {

void sortElements(PrimitiveKind kind, unsigned char* data, std::uint64_t n) {
  if (n < 2) return;
  visitKind(kind, [&](auto tag) { sortPrimitive(reinterpret_cast<typename decltype(tag)::Element*>(data), n); });
}

}  // namespace vorn::collections

template <class T>
void primitiveListSortTyped(ListData& list) {
  vc::sortPrimitive(reinterpret_cast<T*>(list.primitive.data), list.primitive.size);
}

void primitiveListSort(ListData& list) {
  if (list.primitive.size < 2) return;
  vc::visitKind(list.primitiveKind, [&](auto tag) { primitiveListSortTyped<typename decltype(tag)::Element>(list); });
}
