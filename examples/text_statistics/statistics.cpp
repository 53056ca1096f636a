#include "statistics.h"

#include <vorn/collections/array_list.h>
#include <vorn/runtime.hpp>

#include <algorithm>

namespace text_statistics {

LengthFigures lengthFigures(void* lengths) {
  LengthFigures figures;
  const long long size = vorn_collections_ArrayList_sizeFast(lengths);
  if (size == 0) return figures;
  figures.total = vorn_collections_ArrayList_sumI64Fast(lengths);
  figures.mean = static_cast<double>(figures.total) / static_cast<double>(size);
  // A copy, because the lengths stay in the order of the words.
  const vorn::Handle sorted(vorn_collections_ArrayList_sortNew(lengths));
  figures.longest = vorn_collections_ArrayList_getInt(sorted, -1);
  const long long below = vorn_collections_ArrayList_getIntFast(sorted, (size - 1) / 2);
  const long long above = vorn_collections_ArrayList_getIntFast(sorted, size / 2);
  figures.median = static_cast<double>(below + above) / 2;
  return figures;
}

long long percentile(void* sorted, int percent) {
  const long long size = vorn_collections_ArrayList_sizeFast(sorted);
  const long long upTo = (size * percent + 99) / 100;
  return vorn_collections_ArrayList_getIntFast(sorted, upTo - 1);
}

long long countUpTo(void* sorted, long long bound) {
  long long low = 0;
  long long high = vorn_collections_ArrayList_sizeFast(sorted);
  while (low < high) {
    const long long middle = low + (high - low) / 2;
    if (vorn_collections_ArrayList_getIntFast(sorted, middle) <= bound) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return low;
}

double meanOfDoubles(void* values) {
  const long long size = vorn_collections_ArrayList_sizeFast(values);
  return size == 0 ? 0 : vorn_collections_ArrayList_sumF64Fast(values) / static_cast<double>(size);
}

double greatestDouble(void* values) {
  const double* const elements = vorn_collections_ArrayList_f64DataPtr(values);
  const long long size = vorn_collections_ArrayList_sizeFast(values);
  return size == 0 ? 0 : *std::max_element(elements, elements + size);
}

}  // namespace text_statistics
