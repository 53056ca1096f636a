// Element type names with their kinds: what every boxed store looks up, in a form that does it once.
#pragma once

#include <string_view>

#include "collections/core/list_data.h"

namespace vorn::collections {

// A normalised type name and the primitive kind it selects, if any.
struct ElementType {
  ListData::PrimitiveKind kind = ListData::PrimitiveKind::None;
  std::string_view name;  // a view into the name it was made from, or a constant
};

// Normalises a type name and looks its kind up. Names of primitive types, short or under "vorn.", take a path that
// calls nothing; the others go through normalizePrimitiveTypeName.
ElementType normalizedElementType(std::string_view typeName);

// The same for a list's declared element type; an unset type gives "Object".
ElementType declaredElementType(const ListData& list);

}  // namespace vorn::collections
