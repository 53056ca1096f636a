// Typed dispatch over the kinds table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <utility>

#include "collections/core/list_data.h"

namespace vorn::collections {

using PrimitiveKind = ListData::PrimitiveKind;

// What a visitor of visitKind receives: the kind and its element type.
template <PrimitiveKind kKind, class ElementType>
struct KindTag {
  static constexpr PrimitiveKind kind = kKind;
  using Element = ElementType;
};

// Calls visitor(KindTag<...>{}) for a kind other than None; gives `otherwise` for None or an unknown value. Visits are
// never nested: two kinds at once meet as raw value pairs or, when equal, as bytes.
template <class Visitor, class Result>
inline Result visitKind(PrimitiveKind kind, Visitor&& visitor, Result otherwise) {
  switch (kind) {
#define VORN_PRIMITIVE_KIND(value, enumerator, type, width, name, secondName) \
  case PrimitiveKind::enumerator:                                             \
    return static_cast<Result>(visitor(KindTag<PrimitiveKind::enumerator, type>{}));
#include "collections/core/primitive_kinds.def"
#undef VORN_PRIMITIVE_KIND
    case PrimitiveKind::None:
      break;
  }
  return otherwise;
}

// The same for visitors that return nothing.
template <class Visitor>
inline void visitKind(PrimitiveKind kind, Visitor&& visitor) {
  visitKind(
      kind,
      [&](auto tag) {
        visitor(tag);
        return true;
      },
      false);
}

// Calls visitor with an unsigned integer of the width (1, 2, 4 or 8), for work that only moves bits.
template <class Visitor>
inline void visitWidth(std::uint64_t width, Visitor&& visitor) {
  switch (width) {
    case 1:
      return visitor(std::uint8_t{});
    case 2:
      return visitor(std::uint16_t{});
    case 4:
      return visitor(std::uint32_t{});
    case 8:
      return visitor(std::uint64_t{});
    default:
      return;
  }
}

// Element width of a kind; 1 for None and unknown values.
inline constexpr std::uint64_t primitiveWidth(PrimitiveKind kind) {
  switch (kind) {
#define VORN_PRIMITIVE_KIND(value, enumerator, type, width, name, secondName) \
  case PrimitiveKind::enumerator:                                             \
    static_assert(sizeof(type) == (width));                                   \
    return width;
#include "collections/core/primitive_kinds.def"
#undef VORN_PRIMITIVE_KIND
    case PrimitiveKind::None:
      break;
  }
  return 1;
}

inline constexpr bool isIntegerKind(PrimitiveKind kind) {
  return kind >= PrimitiveKind::SByte && kind <= PrimitiveKind::ULong;
}

inline constexpr bool isFloatingKind(PrimitiveKind kind) {
  return kind == PrimitiveKind::Float || kind == PrimitiveKind::Double;
}

}  // namespace vorn::collections
