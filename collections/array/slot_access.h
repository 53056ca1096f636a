// Unboxed slots by the kinds table: a slot kind is a primitive kind under another number.
#pragma once

#include "collections/array/array_data.h"
#include "collections/core/element_access.h"
#include "collections/core/primitive_kinds.h"

namespace vorn::collections {

// None for handles.
constexpr PrimitiveKind primitiveKindOf(ArraySlotKind kind) {
  return kind == ArraySlotKind::Object ? PrimitiveKind::None
                                       : static_cast<PrimitiveKind>(static_cast<std::uint8_t>(kind) + 1);
}

static_assert(primitiveKindOf(ArraySlotKind::Int8) == PrimitiveKind::SByte &&
              primitiveKindOf(ArraySlotKind::UInt8) == PrimitiveKind::Byte &&
              primitiveKindOf(ArraySlotKind::Int16) == PrimitiveKind::Short &&
              primitiveKindOf(ArraySlotKind::UInt16) == PrimitiveKind::UShort &&
              primitiveKindOf(ArraySlotKind::Int32) == PrimitiveKind::Int &&
              primitiveKindOf(ArraySlotKind::UInt32) == PrimitiveKind::UInt &&
              primitiveKindOf(ArraySlotKind::Int64) == PrimitiveKind::Long &&
              primitiveKindOf(ArraySlotKind::UInt64) == PrimitiveKind::ULong &&
              primitiveKindOf(ArraySlotKind::Float32) == PrimitiveKind::Float &&
              primitiveKindOf(ArraySlotKind::Float64) == PrimitiveKind::Double &&
              primitiveKindOf(ArraySlotKind::Bool) == PrimitiveKind::Boolean);

// The width of the slots in the buffer; 1 for handles, of which there are none there.
constexpr std::uint64_t slotWidth(ArraySlotKind kind) { return primitiveWidth(primitiveKindOf(kind)); }

static_assert(slotWidth(ArraySlotKind::Int64) == arraySlotKindSize(ArraySlotKind::Int64) &&
              slotWidth(ArraySlotKind::Float32) == arraySlotKindSize(ArraySlotKind::Float32) &&
              slotWidth(ArraySlotKind::Bool) == arraySlotKindSize(ArraySlotKind::Bool));

// Copies source slots first, first + step, ... (`count` of them) into the target's slots from `at` on; the arrays have
// the same kind and room for them. Booleans arrive as 0 or 1, whatever byte stood for true.
void copySlots(const ArrayData& source, long long first, long long step, std::uint64_t count, ArrayData& target,
               std::uint64_t at);

}  // namespace vorn::collections
