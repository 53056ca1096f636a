#include "collections/core/kernels/sort/primitive_sort.h"

#include <limits>
#include <type_traits>

#include "collections/core/kernels/kernel_table.h"

namespace vorn::collections {

namespace {

template <class Element>
constexpr KeyOrder orderOf() {
  if (!std::numeric_limits<Element>::is_integer) return KeyOrder::Floating;
  return std::is_signed_v<Element> ? KeyOrder::Signed : KeyOrder::Unsigned;
}

}  // namespace

template <class Element>
void sortPrimitive(Element* data, std::uint64_t count) {
  constexpr KeyOrder kOrder = orderOf<Element>();
  if constexpr (sizeof(Element) == 1) {
    sortPlain(reinterpret_cast<SortSlot<std::int8_t>*>(data), count, kOrder);
  } else {
    const kernels::SortKernels& sorts = kernels::activeKernels.load(std::memory_order_relaxed)->sorts;
    if constexpr (sizeof(Element) == 2) {
      sorts.words(reinterpret_cast<SortSlot<std::int16_t>*>(data), count, kOrder);
    } else if constexpr (sizeof(Element) == 4) {
      sorts.doubleWords(reinterpret_cast<SortSlot<std::int32_t>*>(data), count, kOrder);
    } else {
      sorts.quadWords(reinterpret_cast<SortSlot<std::int64_t>*>(data), count, kOrder);
    }
  }
}

template void sortPrimitive(std::int8_t* data, std::uint64_t count);
template void sortPrimitive(std::uint8_t* data, std::uint64_t count);
template void sortPrimitive(std::int16_t* data, std::uint64_t count);
template void sortPrimitive(std::uint16_t* data, std::uint64_t count);
template void sortPrimitive(std::int32_t* data, std::uint64_t count);
template void sortPrimitive(std::uint32_t* data, std::uint64_t count);
template void sortPrimitive(std::int64_t* data, std::uint64_t count);
template void sortPrimitive(std::uint64_t* data, std::uint64_t count);
template void sortPrimitive(float* data, std::uint64_t count);
template void sortPrimitive(double* data, std::uint64_t count);

}  // namespace vorn::collections
