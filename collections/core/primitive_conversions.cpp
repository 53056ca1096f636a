#include "collections/core/primitive_conversions.h"

#include <bit>

#include "collections/core/element_access.h"
#include "collections/core/element_types.h"
#include "collections/core/errors.h"
#include "collections/core/primitive_elements.h"
#include "collections/core/primitive_kinds.h"
#include "collections/core/roots.h"

using vorn::collections::declaredElementType;
using vorn::collections::ElementType;
using vorn::collections::isFloatingKind;
using vorn::collections::isIntegerKind;
using vorn::collections::PrimitiveKind;
using vorn::collections::sameName;

namespace {

constexpr const char* kValueField = "_value";
constexpr std::string_view kCodeUnit = "CodeUnit";
constexpr std::string_view kChar = "Char";

// Whether an integer kind can hold the value. ULong holds the non-negative half: its upper half cannot be told from
// negative numbers in a signed pair.
bool fitsIntegerKind(PrimitiveKind kind, long long integer) {
  if (kind == PrimitiveKind::ULong) return integer >= 0;
  return vorn::collections::visitKind(
      kind,
      [&](auto tag) {
        using Element = typename decltype(tag)::Element;
        return static_cast<long long>(static_cast<Element>(integer)) == integer;
      },
      false);
}

// Appends to object or linked storage, materialising first. The box comes first, so that its failure changes nothing,
// and is rooted because what follows allocates.
void boxAndPushBack(ListData& list, const BulkPrimitiveListValue& value) {
  const vorn::collections::RootedHandle box(
      boxPrimitiveListValue(value.kind, value.typeName, value.integer, value.floating));
  materializePrimitiveList(list, 1);
  list.objectPushBack(box.get());
}

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

// Converts against a declared type that the caller has looked up.
bool convertToDeclared(const ElementType& declared, const BulkPrimitiveListValue& value, BulkPrimitiveListValue& out) {
  if (declared.kind == PrimitiveKind::None) return false;
  long long integer = 0;
  double floating = 0.0;
  if (!convertPrimitiveListValueToDeclared(declared.kind, declared.name, value, integer, floating)) return false;
  out = {declared.kind, declared.name, integer, floating};
  return true;
}

// The declared-type gate. `own` is the unboxed value, null when it is no primitive box; for a primitive declared type
// `converted` receives what it becomes there.
bool acceptedOrRaise(const ElementType& declared, void* handle, const BulkPrimitiveListValue* own,
                     BulkPrimitiveListValue& converted) {
  if (declared.kind != PrimitiveKind::None) {
    if (own != nullptr && convertToDeclared(declared, *own, converted)) return true;
  } else {
    // The name is a suffix of a NUL-terminated one, or a literal.
    if (sameName(declared.name, "Object") || handle == nullptr) return true;
    if (Vorn_isInstanceOf(handle, declared.name.data())) return true;
  }
  vorn::collections::errors::raiseElementTypeRefused(declared.name, Vorn_objectTypeName(handle));
  return false;
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
  const bool floating = isFloatingKind(list.primitiveKind);
  return boxPrimitiveListValue(list.primitiveKind, list.primitiveType.get(),
                               floating ? 0 : primitiveListReadI64(list, index),
                               floating ? primitiveListReadF64(list, index) : 0.0);
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
  const auto accept = [&](long long acceptedInteger, double acceptedFloating) {
    integer = acceptedInteger;
    floating = acceptedFloating;
    return true;
  };
  const long long x = value.integer;
  if (declaredKind == PrimitiveKind::Boolean) {
    if (value.kind != PrimitiveKind::Boolean || !sameName(value.typeName, declaredName)) return false;
    return accept(x != 0 ? 1 : 0, x != 0 ? 1.0 : 0.0);
  }
  if (sameName(declaredName, kCodeUnit)) {
    if (!sameName(value.typeName, kCodeUnit) || static_cast<unsigned long long>(x) >= 0x10000) return false;
    return accept(x, static_cast<double>(x));
  }
  if (sameName(value.typeName, kCodeUnit)) return false;
  if (sameName(declaredName, kChar) || sameName(value.typeName, kChar)) {
    if (!sameName(declaredName, value.typeName) || !vorn::collections::isUnicodeScalar(x)) return false;
    return accept(x, static_cast<double>(x));
  }
  if (isIntegerKind(declaredKind)) {
    if (!isIntegerKind(value.kind) || !fitsIntegerKind(declaredKind, x)) return false;
    return accept(x, static_cast<double>(x));
  }
  if (isFloatingKind(declaredKind)) {
    if (isFloatingKind(value.kind)) return accept(vorn::collections::truncateToI64(value.floating), value.floating);
    if (isIntegerKind(value.kind) || value.kind == PrimitiveKind::Boolean) return accept(x, static_cast<double>(x));
  }
  return false;
}

bool rawPrimitiveValueToDeclared(const ListData& list, const BulkPrimitiveListValue& value,
                                 BulkPrimitiveListValue& out) {
  return convertToDeclared(declaredElementType(list), value, out);
}

bool listValueToDeclaredPrimitiveValue(const ListData& list, void* handle, BulkPrimitiveListValue& out) {
  const ElementType declared = declaredElementType(list);
  BulkPrimitiveListValue value;
  return declared.kind != PrimitiveKind::None && objectToPrimitiveListValue(handle, value) &&
         convertToDeclared(declared, value, out);
}

bool primitiveStorageCompatible(const ListData& list, PrimitiveKind kind, std::string_view typeName) {
  if (list.linked) return false;
  if (list.primitiveKind != PrimitiveKind::None) {
    return kind == list.primitiveKind && list.primitiveType == typeName;
  }
  if (list.objects.size != 0) return false;
  const ElementType declared = declaredElementType(list);
  if (declared.kind != PrimitiveKind::None) return kind == declared.kind && sameName(typeName, declared.name);
  return list.elementType == std::string_view();
}

void appendPrimitiveValue(ListData& list, const BulkPrimitiveListValue& value) {
  if (list.linked) return boxAndPushBack(list, value);
  if (list.primitiveKind == PrimitiveKind::None) {
    if (list.objects.size != 0) return boxAndPushBack(list, value);
    if (!vorn::collections::adoptPrimitiveKindOrRaise(list, value)) return;
  }
  if (list.primitiveKind == value.kind && list.primitiveType == value.typeName) {
    return primitiveListAppend(list, value.integer, value.floating);
  }
  boxAndPushBack(list, value);
}

bool ensureListValueMatchesDeclaredElementType(const ListData& list, void* handle) {
  const ElementType declared = declaredElementType(list);
  BulkPrimitiveListValue own;
  BulkPrimitiveListValue raw;
  const bool unboxed = declared.kind != PrimitiveKind::None && objectToPrimitiveListValue(handle, own);
  return acceptedOrRaise(declared, handle, unboxed ? &own : nullptr, raw);
}

namespace vorn::collections {

bool adoptPrimitiveKindOrRaise(ListData& list, const BulkPrimitiveListValue& value) {
  if (!checkCharacterRangeOrRaise(value.typeName, value.integer)) return false;
  const RuntimeTypeName name = internRuntimeTypeName(value.typeName);
  configurePrimitiveStorage(list, value.kind);
  list.primitiveKind = value.kind;
  list.primitiveType = name;
  return true;
}

StoreForm chooseStoreFormOrRaise(const ListData& list, void* handle, BulkPrimitiveListValue& raw) {
  const ElementType declared = declaredElementType(list);
  // Boxed elements or nodes never make way for unboxed ones, and then only a primitive declared type looks inside.
  const bool mayUnbox = !list.linked && (list.primitiveKind != PrimitiveKind::None || list.objects.size == 0);
  BulkPrimitiveListValue own;
  const bool unboxed = (mayUnbox || declared.kind != PrimitiveKind::None) && objectToPrimitiveListValue(handle, own);
  if (!acceptedOrRaise(declared, handle, unboxed ? &own : nullptr, raw)) return StoreForm::Refused;
  if (!mayUnbox || !unboxed) return StoreForm::Boxed;
  if (declared.kind != PrimitiveKind::None && primitiveStorageCompatible(list, raw.kind, raw.typeName)) {
    return StoreForm::Unboxed;
  }
  if (!primitiveStorageCompatible(list, own.kind, own.typeName)) return StoreForm::Boxed;
  raw = own;
  return StoreForm::Unboxed;
}

}  // namespace vorn::collections
