// What the measured functions that call the natives share: fillers and checks that nothing failed.
#pragma once

#include <vorn/collections/array_list.h>
#include <vorn/runtime.hpp>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "bench/measurement.h"

namespace vorn::bench::natives {

// Figures taken while natives raise or fail would mean nothing.
inline void requireNoErrors() {
  if (vorn_error_count() == 0) return;
  std::fprintf(stderr, "bench: %s: %s\n", vorn_error_class(0), vorn_error_message(0));
  std::exit(1);
}

inline void requireSize(void* list, std::int64_t size) {
  requireNoErrors();
  if (vorn_collections_ArrayList_size(list) == size) return;
  std::fprintf(stderr, "bench: a list has %lld elements instead of %lld\n", vorn_collections_ArrayList_size(list),
               static_cast<long long>(size));
  std::exit(1);
}

inline void fillInts(void* list, std::int64_t elements) {
  for (std::int64_t i = 0; i < elements; ++i) vorn_collections_ArrayList_addInt(list, elementAt(i));
}

inline void fillDoubles(void* list, std::int64_t elements) {
  for (std::int64_t i = 0; i < elements; ++i)
    vorn_collections_ArrayList_addPrimitiveDouble(list, elementAt(i), nullptr);
}

// A list of boxes: an `ArrayList<Object>` never unboxes.
inline void fillBoxes(void* list, std::int64_t elements) {
  Handle box;
  for (std::int64_t i = 0; i < elements; ++i) {
    box = vorn_box_int(elementAt(i));
    vorn_collections_ArrayList_add(list, box);
  }
}

}  // namespace vorn::bench::natives
