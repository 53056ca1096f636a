// The number of a layout, made from all its rows: whatever changes in one of them changes it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "collections/array/array_data.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/type_name.h"
#include "collections/core/storage/list_data.h"

namespace vorn::collections {

// The objects are no standard-layout types, for which alone the language promises that there is an offset; both
// compilers have it all the same.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

// FNV-1a over the values, as a positive int (Fowler, Noll and Vo; RFC 9923).
constexpr int inlineLayoutDigest() {
  std::uint32_t digest = 2166136261U;
  const auto add = [&digest](std::size_t value) {
    for (; value != 0; value >>= 8) digest = (digest ^ (static_cast<std::uint32_t>(value & 0xFF))) * 16777619U;
    digest = (digest ^ 0x100U) * 16777619U;
  };
#define VORN_INLINE_ROW(name, expression, meaning) add(static_cast<std::size_t>(expression));
#include "collections/inline/layout.def"
  return static_cast<int>(digest >> 1);
}

#pragma GCC diagnostic pop

}  // namespace vorn::collections
