#include "tests/support/slices.h"

namespace vorn::tests {

Handle slice(void* list, Bound start, Bound stop, long long step) {
  return vorn_collections_ArrayList_slice(list, boundOf(start), boundOf(stop), step, markOf(start), markOf(stop));
}

void sliceAssign(void* list, Bound start, Bound stop, long long step, void* source) {
  vorn_collections_ArrayList_sliceAssign(list, boundOf(start), boundOf(stop), step, markOf(start), markOf(stop),
                                         source);
}

std::vector<std::size_t> slicePositions(long long n, Bound start, Bound stop, long long step) {
  const long long lowest = step > 0 ? 0 : -1;
  const long long highest = step > 0 ? n : n - 1;
  const auto resolve = [&](Bound bound, long long omitted) {
    if (!bound) return omitted;
    const long long position = *bound < 0 ? *bound + n : *bound;
    return position < lowest ? lowest : position > highest ? highest : position;
  };
  const long long first = resolve(start, step > 0 ? 0 : n - 1);
  const long long end = resolve(stop, step > 0 ? n : -1);
  std::vector<std::size_t> positions;
  for (long long i = first; step > 0 ? i < end : i > end; i += step) positions.push_back(static_cast<std::size_t>(i));
  return positions;
}

}  // namespace vorn::tests
