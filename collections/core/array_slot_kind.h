// How a slot of a fixed array is represented: the primitive kinds under other numbers, and handles.
#pragma once

#include <cstddef>
#include <cstdint>

#include "collections/core/kinds.h"

namespace vorn::collections {

// The number of the slots that hold handles. The numbering is shared with compiled code: the slot kind of a primitive kind
// is its number less one, so that Int8 is 0, up to the handles; kinds behind that keep their number.
inline constexpr std::uint8_t kHandleSlots = 11;

constexpr std::uint8_t slotNumberOf(std::uint8_t primitiveKind) {
  return static_cast<std::uint8_t>(primitiveKind <= kHandleSlots ? primitiveKind - 1 : primitiveKind);
}

}  // namespace vorn::collections

enum class ArraySlotKind : std::uint8_t {
#define VORN_PRIMITIVE_KIND(value, enumerator, type, width, family, slot) slot = vorn::collections::slotNumberOf(value),
#include "collections/core/kinds.def"
  Object = vorn::collections::kHandleSlots,  // a handle
};

namespace vorn::collections {

// None for handles.
constexpr PrimitiveKind primitiveKindOf(ArraySlotKind kind) {
  const auto number = static_cast<std::uint8_t>(kind);
  if (number == kHandleSlots) return PrimitiveKind::None;
  return static_cast<PrimitiveKind>(number < kHandleSlots ? number + 1 : number);
}

// The element width of an array's buffer of unboxed slots; 1 for an array of handles, where that buffer stays empty.
constexpr std::uint64_t slotWidth(ArraySlotKind kind) { return primitiveWidth(primitiveKindOf(kind)); }

// Object for None.
constexpr ArraySlotKind slotKindOf(PrimitiveKind kind) {
  return kind == PrimitiveKind::None ? ArraySlotKind::Object
                                     : static_cast<ArraySlotKind>(slotNumberOf(static_cast<std::uint8_t>(kind)));
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
