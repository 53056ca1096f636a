// What a block holds, as far as a collector cares.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vorn::runtime {

enum class BlockKind : std::uint8_t {
  Scanned,  // zeroed; searched for handles
  Atomic,   // contents undefined; never searched
};

// What a block is asked for as.
enum class BlockUse : std::uint8_t {
  Handle,  // an object or a text, which somebody is about to be given
  Memory,  // of a collection
};

inline constexpr std::size_t kBlockKinds = 2;

}  // namespace vorn::runtime
