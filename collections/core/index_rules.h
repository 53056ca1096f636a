// The index rules of single-element natives. Each gives the usable position, or nothing after raising IndexException.
#pragma once

#include <cstdint>
#include <optional>

#include "collections/core/errors.h"

namespace vorn::collections {

// A checked index: a negative one counts from the end; the result must be at least 0 and below the size.
inline std::optional<std::uint64_t> elementIndexOrRaise(std::uint64_t size, long long index) {
  // Wraps to something far past any size when the index is still negative after adding the size.
  const std::uint64_t position = static_cast<std::uint64_t>(index) + (index < 0 ? size : 0);
  if (position < size) [[likely]]
    return position;
  errors::raiseIndexOutOfBounds();
  return std::nullopt;
}

// An insertion position: 0 to the size inclusive, no counting from the end.
inline std::optional<std::uint64_t> insertionIndexOrRaise(std::uint64_t size, long long index) {
  if (const auto position = static_cast<std::uint64_t>(index); position <= size) [[likely]]
    return position;
  errors::raiseIndexOutOfBounds();
  return std::nullopt;
}

}  // namespace vorn::collections
