#include "statistics.h"

#include <vorn/collections/array_list.h>

#include <algorithm>

namespace text_statistics {

namespace {

// The element that would stand at `position` (counted from 0) if the list were sorted, for values from 0 to
// `greatest`. Halves the range of values until one is left: no second list, and the list stays in its order.
long long selectInt(void* list, long long position, long long greatest) {
  const long long size = vorn_collections_ArrayList_sizeFast(list);
  long long low = 0;
  long long high = greatest;
  while (low < high) {
    const long long middle = low + (high - low) / 2;
    long long notGreater = 0;
    for (long long i = 0; i < size; ++i) notGreater += vorn_collections_ArrayList_getIntFast(list, i) <= middle ? 1 : 0;
    if (notGreater > position) {
      high = middle;
    } else {
      low = middle + 1;
    }
  }
  return low;
}

}  // namespace

LengthFigures lengthFigures(void* lengths) {
  LengthFigures figures;
  const long long size = vorn_collections_ArrayList_sizeFast(lengths);
  if (size == 0) return figures;
  long long total = 0;
  for (long long i = 0; i < size; ++i) {
    const long long length = vorn_collections_ArrayList_getIntFast(lengths, i);
    total += length;
    figures.longest = std::max(figures.longest, length);
  }
  figures.mean = static_cast<double>(total) / static_cast<double>(size);
  const long long below = selectInt(lengths, (size - 1) / 2, figures.longest);
  const long long above = size % 2 != 0 ? below : selectInt(lengths, size / 2, figures.longest);
  figures.median = static_cast<double>(below + above) / 2;
  return figures;
}

double meanOfDoubles(void* values) {
  const long long size = vorn_collections_ArrayList_sizeFast(values);
  double total = 0;
  for (long long i = 0; i < size; ++i) total += vorn_collections_ArrayList_getDouble(values, i);
  return size == 0 ? 0 : total / static_cast<double>(size);
}

double greatestDouble(void* values) {
  const long long size = vorn_collections_ArrayList_sizeFast(values);
  double greatest = 0;
  for (long long i = 0; i < size; ++i) greatest = std::max(greatest, vorn_collections_ArrayList_getDouble(values, i));
  return greatest;
}

}  // namespace text_statistics
