// Element type names with their kinds: what every boxed store looks up, in a form that does it once.
#pragma once

#include <array>
#include <string_view>

#include "collections/core/list_data.h"
#include "collections/core/runtime_object_layout.h"

namespace vorn::collections {

// A normalised type name and the primitive kind it selects, if any.
struct ElementType {
  ListData::PrimitiveKind kind = ListData::PrimitiveKind::None;
  std::string_view name;  // a view into the name it was made from, or a constant
};

// By BoxedType: "Object" without a kind, the kinds under their own names, the two character types.
extern const std::array<ElementType, static_cast<std::size_t>(BoxedType::CodeUnit) + 1> elementTypes;

// The element type of boxes of this type; None gives "Object" without a kind.
inline ElementType elementTypeOf(BoxedType type) { return elementTypes[static_cast<std::size_t>(type)]; }

// Normalises a type name and looks its kind up. Names of primitive types, short or under "vorn.", take a path that
// calls nothing; the others go through normalizePrimitiveTypeName.
ElementType normalizedElementType(std::string_view typeName);

// The same for a list's declared element type; an unset type gives "Object".
ElementType declaredElementType(const ListData& list);

}  // namespace vorn::collections
