#include "collections/core/kernels/sort/primitive_sort.h"

#include <type_traits>

#include "collections/core/kernels/sort/sort_paths.h"

namespace vorn::collections {

namespace {

SortPath findBestPath() {
  if (sortPathSupported(SortPath::Avx512)) return SortPath::Avx512;
  return sortPathSupported(SortPath::Avx2) ? SortPath::Avx2 : SortPath::Plain;
}

template <class Element>
using KeyOf =
    std::conditional_t<sizeof(Element) == 1, std::int8_t,
                       std::conditional_t<sizeof(Element) == 2, std::int16_t,
                                          std::conditional_t<sizeof(Element) == 4, std::int32_t, std::int64_t>>>;

template <class Element>
constexpr KeyOrder orderOf() {
  if (std::is_floating_point_v<Element>) return KeyOrder::Floating;
  return std::is_signed_v<Element> ? KeyOrder::Signed : KeyOrder::Unsigned;
}

}  // namespace

bool sortPathSupported(SortPath path) {
  switch (path) {
    case SortPath::Plain:
      return true;
#if defined(__x86_64__)
    case SortPath::Avx2:
      return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2") &&
             __builtin_cpu_supports("popcnt");
    case SortPath::Avx512:
      return sortPathSupported(SortPath::Avx2) && __builtin_cpu_supports("avx512f") &&
             __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq") &&
             __builtin_cpu_supports("avx512vl");
#endif
    default:
      return false;
  }
}

SortPath bestSortPath() {
  static const SortPath best = findBestPath();
  return best;
}

template <class Element>
void sortPrimitiveOn([[maybe_unused]] SortPath path, Element* data, std::uint64_t count) {
  auto* slots = reinterpret_cast<SortSlot<KeyOf<Element>>*>(data);
#if defined(__x86_64__)
  if constexpr (sizeof(Element) > 1) {
    if (path == SortPath::Avx512) return sortAvx512(slots, count, orderOf<Element>());
    if (path == SortPath::Avx2) return sortAvx2(slots, count, orderOf<Element>());
  }
#endif
  sortPlain(slots, count, orderOf<Element>());
}

#define VORN_SORT_ELEMENT(type)                                                         \
  template void sortPrimitiveOn<type>(SortPath path, type * data, std::uint64_t count); \
  void sortPrimitive(type* data, std::uint64_t count) { sortPrimitiveOn(bestSortPath(), data, count); }

VORN_SORT_ELEMENT(std::int8_t)
VORN_SORT_ELEMENT(std::uint8_t)
VORN_SORT_ELEMENT(std::int16_t)
VORN_SORT_ELEMENT(std::uint16_t)
VORN_SORT_ELEMENT(std::int32_t)
VORN_SORT_ELEMENT(std::uint32_t)
VORN_SORT_ELEMENT(std::int64_t)
VORN_SORT_ELEMENT(std::uint64_t)
VORN_SORT_ELEMENT(float)
VORN_SORT_ELEMENT(double)

#undef VORN_SORT_ELEMENT

}  // namespace vorn::collections
