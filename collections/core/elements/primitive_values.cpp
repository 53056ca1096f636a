#include "collections/core/elements/primitive_values.h"

#include <bit>

#include "collections/core/elements/accepted_values.h"
#include "collections/core/elements/element_types.h"
#include "collections/core/kernels/element_access.h"
#include "collections/core/kinds.h"
#include "collections/core/number_rules.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/values.h"

using vorn::collections::ElementType;
using vorn::collections::isFloatingKind;
using vorn::collections::kValueField;
using vorn::collections::PrimitiveKind;

namespace {

void setInteger(BulkPrimitiveListValue& out, const ElementType& type, long long value) {
  out = {type.kind, type.name, value, static_cast<double>(value)};
}

void setFloating(BulkPrimitiveListValue& out, const ElementType& type, double value) {
  out = {type.kind, type.name, vorn::collections::truncateToI64(value), value};
}

// A user class may bear the name of a primitive type in a module of its own; its objects then count as that type and
// keep their value in a field.
[[gnu::noinline]] bool instanceToPrimitiveListValue(void* handle, BulkPrimitiveListValue& out) {
  if (getObject(handle)->kind() != ObjectKind::Instance) return false;
  const char* typeName = Vorn_objectTypeName(handle);
  if (typeName == nullptr) return false;
  const ElementType type = vorn::collections::normalizedElementType(typeName);
  if (type.kind == PrimitiveKind::None) return false;
  if (isFloatingKind(type.kind)) {
    setFloating(out, type, Vorn_getField_double(handle, kValueField));
  } else if (type.kind == PrimitiveKind::Boolean) {
    setInteger(out, type, Vorn_getField_i1(handle, kValueField) ? 1 : 0);
  } else {
    setInteger(out, type, Vorn_getField_i64(handle, kValueField));
  }
  return true;
}

}  // namespace

long long readListItemI64(void* handle) {
  const RegisteredObject* record = getRegisteredObjectUnsafe(handle);
  if (record != nullptr && record->kind() == ObjectKind::IntegerBox) return record->integer;
  return Vorn_getField_i64(handle, kValueField);
}

void* boxPrimitiveListValue(PrimitiveKind kind, std::string_view typeName, long long integer, double floating) {
  if (isFloatingKind(kind)) return boxFloatingLikeLocal(typeName.empty() ? "Double" : typeName, floating);
  if (kind == PrimitiveKind::Boolean) return Vorn_boxBool(integer != 0);
  return boxIntegerLikeLocal(typeName.empty() ? "Int" : typeName, integer);
}

void* boxPrimitiveElement(const ListData& list, std::uint64_t index) {
  // Only the reading that the box keeps is made.
  return vorn::collections::visitKind(
      list.primitiveKind,
      [&](auto tag) {
        constexpr bool kFloating = isFloatingKind(decltype(tag)::kind);
        const unsigned char* const data = list.primitive.data;
        return boxPrimitiveListValue(decltype(tag)::kind, list.primitiveType.get(),
                                     kFloating ? 0 : vorn::collections::readElementI64(tag, data, index),
                                     kFloating ? vorn::collections::readElementF64(tag, data, index) : 0.0);
      },
      static_cast<void*>(nullptr));
}

bool objectToPrimitiveListValue(void* handle, BulkPrimitiveListValue& out) {
  const RegisteredObject* box = getRegisteredObjectUnsafe(handle);
  if (box == nullptr) return false;
  if (box->kind() > ObjectKind::CharacterBox) return instanceToPrimitiveListValue(handle, out);
  const ElementType type = vorn::collections::elementTypeOf(boxedTypeOf(*box));
  if (isFloatingKind(type.kind)) {
    setFloating(out, type, std::bit_cast<double>(box->integer));
  } else {
    setInteger(out, type, box->integer);
  }
  return true;
}

bool convertPrimitiveListValueToDeclared(PrimitiveKind declaredKind, std::string_view declaredName,
                                         const BulkPrimitiveListValue& value, long long& integer, double& floating) {
  const ElementType declared{declaredKind, declaredName};
  if (!vorn::collections::acceptedValues(declared, {value.kind, value.typeName}).contains(value.integer)) return false;
  if (isFloatingKind(declaredKind) && isFloatingKind(value.kind)) {
    floating = value.floating;
    integer = vorn::collections::truncateToI64(floating);
  } else {
    integer = declaredKind == PrimitiveKind::Boolean ? (value.integer != 0 ? 1 : 0) : value.integer;
    floating = static_cast<double>(integer);
  }
  return true;
}
