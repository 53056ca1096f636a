#include "collections/core/storage/primitive_copies.h"

#include <algorithm>
#include <cstring>

#include "collections/core/kernels/element_access.h"
#include "collections/core/kinds.h"

namespace vorn::collections {

void gatherElements(const unsigned char* from, long long first, long long step, std::uint64_t count,
                    std::uint64_t width, unsigned char* to) {
  auto position = static_cast<std::uint64_t>(first);
  if (step == 1) {
    std::memcpy(to, from + position * width, count * width);
    return;
  }
  visitWidth(width, [&](auto bits) {
    using Bits = decltype(bits);
    for (std::uint64_t i = 0; i < count; ++i, position += static_cast<std::uint64_t>(step)) {
      std::memcpy(to + i * sizeof(Bits), from + position * sizeof(Bits), sizeof(Bits));
    }
  });
}

void scatterElements(const unsigned char* from, std::uint64_t count, std::uint64_t width, unsigned char* to,
                     long long first, long long step) {
  if (count == 0) return;  // there may be no address to copy from
  auto position = static_cast<std::uint64_t>(first);
  if (step == 1) {
    std::memcpy(to + position * width, from, count * width);
    return;
  }
  visitWidth(width, [&](auto bits) {
    using Bits = decltype(bits);
    for (std::uint64_t i = 0; i < count; ++i, position += static_cast<std::uint64_t>(step)) {
      std::memcpy(to + position * sizeof(Bits), from + i * sizeof(Bits), sizeof(Bits));
    }
  });
}

void appendPrimitiveElements(const ListData& source, long long first, long long step, std::uint64_t count,
                             ListData& target) {
  SmallPrimitiveBuffer& to = target.primitive;
  to.reserve(to.size + count);
  const std::uint64_t width = to.elementSize;
  gatherElements(source.primitive.data, first, step, count, width, to.data + to.size * width);
  to.size += count;
}

void repeatPrimitiveElements(ListData& target, std::uint64_t total) {
  SmallPrimitiveBuffer& buffer = target.primitive;
  const std::uint64_t width = buffer.elementSize;
  // What is there doubles with every copy, so that short lists do not cost a call per repetition.
  while (buffer.size < total) {
    const std::uint64_t more = std::min(buffer.size, total - buffer.size);
    std::memcpy(buffer.data + buffer.size * width, buffer.data, more * width);
    buffer.size += more;
  }
}

}  // namespace vorn::collections
