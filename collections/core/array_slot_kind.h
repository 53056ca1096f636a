// How a slot of a fixed array is represented: the primitive kinds under other numbers, and handles.
#pragma once

#include <cstddef>
#include <cstdint>

#include "collections/core/kinds.h"

// The numbering is shared with compiled code: a slot kind is the primitive kind's number less one, so that Int8 is 0,
// and handles come last.
enum class ArraySlotKind : std::uint8_t {
#define VORN_PRIMITIVE_KIND(value, enumerator, type, width, family, slot) slot = (value)-1,
#include "collections/core/kinds.def"
  Object = 11,  // a handle
};

namespace vorn::collections {

// None for handles.
constexpr PrimitiveKind primitiveKindOf(ArraySlotKind kind) {
  return kind == ArraySlotKind::Object ? PrimitiveKind::None
                                       : static_cast<PrimitiveKind>(static_cast<std::uint8_t>(kind) + 1);
}

// The element width of an array's buffer of unboxed slots; 1 for an array of handles, where that buffer stays empty.
constexpr std::uint64_t slotWidth(ArraySlotKind kind) { return primitiveWidth(primitiveKindOf(kind)); }

// Object for None.
constexpr ArraySlotKind slotKindOf(PrimitiveKind kind) {
  return kind == PrimitiveKind::None ? ArraySlotKind::Object
                                     : static_cast<ArraySlotKind>(static_cast<std::uint8_t>(kind) - 1);
}

}  // namespace vorn::collections

// The width of an unboxed slot in bytes; 0 for handles.
constexpr std::size_t arraySlotKindSize(ArraySlotKind kind) {
  if (kind == ArraySlotKind::Object) return 0;
  return vorn::collections::primitiveWidth(vorn::collections::primitiveKindOf(kind));
}

constexpr bool arraySlotKindIsFloating(ArraySlotKind kind) {
  return vorn::collections::isFloatingKind(vorn::collections::primitiveKindOf(kind));
}
