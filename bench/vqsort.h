// Highway's vqsort, the mark for the sorts, where its library is installed.
#pragma once

#include <cstddef>

#if defined(VORN_BENCH_VQSORT)
#include <hwy/contrib/sort/vqsort.h>
#endif

namespace vorn::bench {

template <class Element>
inline constexpr bool kHasVqsort =
#if defined(VORN_BENCH_VQSORT)
    sizeof(Element) > 1;
#else
    false;
#endif

#if defined(VORN_BENCH_VQSORT)
template <class Element>
void sortByVqsort(Element* data, std::size_t length) {
  static hwy::Sorter sorter;
  sorter(data, length, hwy::SortAscending());
}
#else
template <class Element>
void sortByVqsort(Element*, std::size_t) = delete;
#endif

}  // namespace vorn::bench
