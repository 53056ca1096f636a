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

namespace vc = vorn::collections;
using vc::PrimitiveKind;
using vc::PrimitiveType;

namespace {

void setInteger(BulkPrimitiveListValue& out, const vc::ElementType& type, long long value) {
  out = {type.kind, type.name, value, static_cast<double>(value)};
}

void setFloating(BulkPrimitiveListValue& out, const vc::ElementType& type, double value) {
  out = {type.kind, type.name, vc::truncateToI64(value), value};
}

// A user class may bear the name of a primitive type in a module of its own; its objects then count as that type and
// keep their value in a field.
[[gnu::noinline]] bool instanceToPrimitiveListValue(void* handle, BulkPrimitiveListValue& out) {
  if (getObject(handle)->kind() != ObjectKind::Instance) return false;
  const char* typeName = Vorn_objectTypeName(handle);
  if (typeName == nullptr) return false;
  const PrimitiveType named = vc::primitiveTypeNamed(normalizePrimitiveTypeName(typeName));
  if (named == PrimitiveType::None) return false;
  const vc::ElementType type = vc::elementTypeOf(named);
  if (vc::isFloatingKind(type.kind)) {
    setFloating(out, type, Vorn_getField_double(handle, vc::kValueField));
  } else if (type.kind == PrimitiveKind::Boolean) {
    setInteger(out, type, Vorn_getField_i1(handle, vc::kValueField) ? 1 : 0);
  } else {
    setInteger(out, type, Vorn_getField_i64(handle, vc::kValueField));
  }
  return true;
}

}  // namespace

long long readListItemI64(void* handle) {
  const RegisteredObject* record = getRegisteredObjectUnsafe(handle);
  if (record != nullptr && record->kind() == ObjectKind::IntegerBox) return record->integer;
  return Vorn_getField_i64(handle, vc::kValueField);
}

void* boxPrimitiveListValue(PrimitiveKind kind, RuntimeTypeName typeName, long long integer, double floating) {
  if (vc::isFloatingKind(kind)) {
    return boxFloatingLikeLocal(typeName.empty() ? vc::typeNameOf(PrimitiveType::Double) : typeName, floating);
  }
  if (kind == PrimitiveKind::Boolean) return Vorn_boxBool(integer != 0);
  return boxIntegerLikeLocal(typeName.empty() ? vc::typeNameOf(PrimitiveType::Int) : typeName, integer);
}

void* boxPrimitiveElement(const ListData& list, std::uint64_t index) {
  // Only the reading that the box keeps is made.
  return vc::visitKind(
      list.primitiveKind,
      [&](auto tag) {
        constexpr bool kFloating = vc::isFloatingKind(decltype(tag)::kind);
        const unsigned char* const data = list.primitive.data;
        return boxPrimitiveListValue(decltype(tag)::kind, list.primitiveType,
                                     kFloating ? 0 : vc::readElementI64(tag, data, index),
                                     kFloating ? vc::readElementF64(tag, data, index) : 0.0);
      },
      static_cast<void*>(nullptr));
}

bool objectToPrimitiveListValue(void* handle, BulkPrimitiveListValue& out) {
  const RegisteredObject* box = getRegisteredObjectUnsafe(handle);
  if (box == nullptr) return false;
  if (box->kind() > ObjectKind::CharacterBox) return instanceToPrimitiveListValue(handle, out);
  const vc::ElementType type = vc::elementTypeOf(boxedTypeOf(*box));
  if (vc::isFloatingKind(type.kind)) {
    setFloating(out, type, std::bit_cast<double>(box->integer));
  } else {
    setInteger(out, type, box->integer);
  }
  return true;
}

bool convertPrimitiveListValueToDeclared(PrimitiveKind declaredKind, RuntimeTypeName declaredName,
                                         const BulkPrimitiveListValue& value, long long& integer, double& floating) {
  if (!vc::acceptedValues({declaredKind, declaredName}, value.type()).contains(value.integer)) {
    return false;
  }
  if (vc::isFloatingKind(declaredKind) && vc::isFloatingKind(value.kind)) {
    floating = value.floating;
    integer = vc::truncateToI64(floating);
  } else {
    integer = declaredKind == PrimitiveKind::Boolean ? (value.integer != 0 ? 1 : 0) : value.integer;
    floating = static_cast<double>(integer);
  }
  return true;
}
