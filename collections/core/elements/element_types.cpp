#include "collections/core/elements/element_types.h"

#include "collections/core/kinds.h"
#include "collections/core/port/type_names.h"

namespace vc = vorn::collections;

namespace vorn::collections {

namespace {

const PrimitiveTypeInfo& infoOfLanguageType(const char* name) {
  return infoOf(name != nullptr ? languageTypeNamed(name) : PrimitiveType::None);
}

}  // namespace

ElementType normalizedElementType(std::string_view typeName) {
  const PrimitiveType type = languageTypeNamed(typeName);
  if (type != PrimitiveType::None) return elementTypeOf(type);
  return elementTypeNamed(normalizedTypeName(internRuntimeTypeName(typeName)));
}

}  // namespace vorn::collections

vc::PrimitiveKind primitiveKindForType(std::string_view name) { return vc::kindOf(vc::primitiveTypeNamed(name)); }

std::string_view normalizePrimitiveTypeName(std::string_view name) {
  const std::string_view shortName = shortTypeNameLocal(name);
  if (shortName == "vorn.Int") return "Int";
  return shortName.empty() ? std::string_view("Object") : shortName;
}

bool isIntLikeListType(const char* name) {
  const vc::PrimitiveTypeInfo& type = vc::infoOfLanguageType(name);
  return (type.family == vc::KindFamily::Integer && !type.isCharacter) || type.family == vc::KindFamily::Boolean;
}

bool isFloatLikeListType(const char* name) { return vc::infoOfLanguageType(name).family == vc::KindFamily::Floating; }
