// Which boxes storage of unboxed elements takes as they are, by type and by value.
#pragma once

#include <cstdint>
#include <limits>

#include "collections/core/kinds.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/storage/list_data.h"

namespace vorn::collections {

// The box that a handle is when its type is exactly the one whose values the list keeps unboxed; null for all else.
// UInt storage is told from its characters, which have a range of their own.
inline const RegisteredObject* boxOfKeptType(const ListData& list, const void* handle) {
  const RegisteredObject* const box = getRegisteredObjectUnsafe(handle);
  if (box == nullptr || box->kind() > ObjectKind::CharacterBox) return nullptr;
  const PrimitiveType type = boxedTypeOf(*box);
  if (list.primitiveType.primitiveType() != type || list.primitiveKind != kindOf(type)) return nullptr;
  if (box->kind() == ObjectKind::CharacterBox && list.primitiveKind == PrimitiveKind::UInt) return nullptr;
  return box;
}

// The bits of such a box's value that storage of a kind takes as they are, cut to its width or, for a Float, rounded:
// `span` + 1 values from `least` on.
struct KeptRange {
  std::uint64_t least = 0;
  std::uint64_t span = std::numeric_limits<std::uint64_t>::max();

  [[nodiscard]] constexpr bool has(std::uint64_t bits) const { return bits - least <= span; }
};
template <class Tag>
constexpr KeptRange keptRangeOf(Tag) {
  using Range = std::numeric_limits<typename Tag::Element>;
  if constexpr (isFloatingKind(Tag::kind)) return {};
  if constexpr (Tag::kind == PrimitiveKind::Boolean) return {0, 1};
  // It takes no value that is negative as a signed number.
  if constexpr (Tag::kind == PrimitiveKind::ULong) return {0, std::numeric_limits<std::int64_t>::max()};
  const auto least = static_cast<std::uint64_t>(Range::min());
  return {least, static_cast<std::uint64_t>(Range::max()) - least};
}

}  // namespace vorn::collections
