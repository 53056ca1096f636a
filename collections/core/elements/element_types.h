// Element type names with their kinds: what every boxed store looks up, in a form that does it once.
#pragma once

#include <array>
#include <string_view>

#include "collections/core/port/object_layout.h"
#include "collections/core/storage/list_data.h"

namespace vorn::collections {

// A normalised type name and the primitive kind it selects, if any.
struct ElementType {
  ListData::PrimitiveKind kind = ListData::PrimitiveKind::None;
  std::string_view name;  // a view into the name it was made from, or a constant
};

// By PrimitiveType: "Object" without a kind, then the types under their own names.
extern const std::array<ElementType, kPrimitiveTypes> elementTypes;

// The element type of boxes of this type; None gives "Object" without a kind.
inline ElementType elementTypeOf(PrimitiveType type) { return elementTypes[static_cast<std::size_t>(type)]; }

// Normalises a type name and looks its kind up. Names of primitive types, short or under "vorn.", take a path that
// calls nothing; the others go through normalizePrimitiveTypeName.
ElementType normalizedElementType(std::string_view typeName);

// The same for a list's declared element type; an unset type gives "Object".
ElementType declaredElementType(const ListData& list);

}  // namespace vorn::collections

// Kind of a normalised type name: exact, case-sensitive, no prefix stripped; None for every other name.
ListData::PrimitiveKind primitiveKindForType(std::string_view name);

// Canonical short form of a type name: the short name; "Object" for the empty name. A view into `name` or a constant.
std::string_view normalizePrimitiveTypeName(std::string_view name);

// Predicates on a C string type name, with or without "vorn."; null gives false. "Char" and "CodeUnit" are not
// int-like, which element comparison relies on.
bool isIntLikeListType(const char* name);
bool isFloatLikeListType(const char* name);
