// Element types: a normalised type name with the primitive kind that its values are kept as.
#pragma once

#include <string_view>

#include "collections/core/port/object_layout.h"
#include "collections/core/storage/list_data.h"

namespace vorn::collections {

// The kind usually follows from the name. It need not: raw values may come under any name, and a buffer of doubles may
// be named "Char".
struct ElementType {
  PrimitiveKind kind = PrimitiveKind::None;
  RuntimeTypeName name;

  friend bool operator==(const ElementType&, const ElementType&) = default;
};

// The type of a normalised name.
inline ElementType elementTypeNamed(RuntimeTypeName name) { return {kindOf(name.primitiveType()), name}; }

// The element type of boxes of a primitive type; None gives "Object" without a kind.
inline ElementType elementTypeOf(PrimitiveType type) { return {kindOf(type), typeNameOf(type)}; }

// The type of a name that comes as text, normalised. Interns names that are not those of primitive types.
ElementType normalizedElementType(std::string_view typeName);

// A list's declared element type; an unset type gives "Object".
inline ElementType declaredElementType(const ListData& list) {
  return elementTypeNamed(normalizedTypeName(list.elementType));
}

// Whether every value is of the type that a list declares.
inline bool isObjectType(const ElementType& type) { return type.name == typeNameOf(PrimitiveType::None); }

// What a list keeps its unboxed elements as.
inline ElementType keptElementType(const ListData& list) { return {list.primitiveKind, list.primitiveType}; }

}  // namespace vorn::collections

// Kind of a normalised type name: exact, case-sensitive, no prefix stripped; None for every other name.
ListData::PrimitiveKind primitiveKindForType(std::string_view name);

// Canonical short form of a type name: the short name; "Object" for the empty name. A view into `name` or a constant.
std::string_view normalizePrimitiveTypeName(std::string_view name);

// Predicates on a C string type name, with or without "vorn."; null gives false. "Char" and "CodeUnit" are not
// int-like, which element comparison relies on.
bool isIntLikeListType(const char* name);
bool isFloatLikeListType(const char* name);
