#include "collections/array/slot_copies.h"

#include <algorithm>

#include "collections/core/storage/primitive_copies.h"

namespace vorn::collections {

void copySlots(const ArrayData& source, long long first, long long step, std::uint64_t count, ArrayData& target,
               std::uint64_t at) {
  if (!source.isUnboxed()) {
    auto position = static_cast<std::uint64_t>(first);
    for (std::uint64_t i = 0; i < count; ++i, position += static_cast<std::uint64_t>(step)) {
      target.objects.data[at + i] = source.objects.data[position];
    }
    return;
  }
  // The kind's own width, as every read of a slot has it, even when a prepared record claims another.
  const std::uint64_t width = slotWidth(source.slotKind);
  unsigned char* const copies = target.primitive.data + at * width;
  gatherElements(source.primitive.data, first, step, count, width, copies);
  // Compiled code may have left any non-zero byte for true; a copied slot is written as a value, 0 or 1.
  if (source.slotKind == ArraySlotKind::Bool) {
    std::transform(copies, copies + count, copies, [](unsigned char byte) { return byte != 0 ? 1 : 0; });
  }
}

}  // namespace vorn::collections
