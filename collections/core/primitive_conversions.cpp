#include "collections/core/primitive_conversions.h"

#include <bit>

#include "collections/core/element_access.h"
#include "collections/core/element_types.h"
#include "collections/core/errors.h"
#include "collections/core/primitive_elements.h"
#include "collections/core/primitive_kinds.h"
#include "collections/core/roots.h"

using vorn::collections::AcceptedValues;
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

// The integers that an integer kind can hold. ULong holds the non-negative half: its upper half cannot be told from
// negative numbers in a signed pair.
AcceptedValues integersOf(PrimitiveKind kind) {
  return vorn::collections::visitKind(
      kind,
      [](auto tag) {
        using Limits = std::numeric_limits<typename decltype(tag)::Element>;
        if constexpr (!isIntegerKind(decltype(tag)::kind)) {
          return AcceptedValues{};
        } else if constexpr (decltype(tag)::kind == PrimitiveKind::ULong) {
          return AcceptedValues{0, std::numeric_limits<long long>::max()};
        } else {
          return AcceptedValues{Limits::min(), Limits::max()};
        }
      },
      AcceptedValues{});
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
bool accepts(const ElementType& declared, void* handle, const BulkPrimitiveListValue* own,
             BulkPrimitiveListValue& converted) {
  if (declared.kind != PrimitiveKind::None) return own != nullptr && convertToDeclared(declared, *own, converted);
  // The name is a suffix of a NUL-terminated one, or a literal.
  return sameName(declared.name, "Object") || handle == nullptr || Vorn_isInstanceOf(handle, declared.name.data());
}

bool acceptedOrRaise(const ElementType& declared, void* handle, const BulkPrimitiveListValue* own,
                     BulkPrimitiveListValue& converted) {
  if (accepts(declared, handle, own, converted)) return true;
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

bool AcceptedValues::containsAllOf(PrimitiveKind kind) const {
  // The upper half of ULong reads as negative.
  const AcceptedValues held = kind == PrimitiveKind::ULong || !isIntegerKind(kind) ? all() : integersOf(kind);
  return least <= held.least && greatest >= held.greatest && !scalarsOnly;
}

AcceptedValues acceptedValues(const ElementType& declared, const ElementType& value) {
  constexpr AcceptedValues kNone;
  if (declared.kind == PrimitiveKind::Boolean) {
    return value.kind == PrimitiveKind::Boolean && sameName(value.name, declared.name) ? AcceptedValues::all() : kNone;
  }
  // The two character types match nothing but themselves.
  const bool takesUnits = sameName(declared.name, kCodeUnit);
  if (takesUnits || sameName(value.name, kCodeUnit)) {
    return takesUnits && sameName(value.name, kCodeUnit) ? storableValues(kCodeUnit) : kNone;
  }
  const bool takesScalars = sameName(declared.name, kChar);
  if (takesScalars || sameName(value.name, kChar)) {
    return takesScalars && sameName(value.name, kChar) ? storableValues(kChar) : kNone;
  }
  if (isIntegerKind(declared.kind)) return isIntegerKind(value.kind) ? integersOf(declared.kind) : kNone;
  const bool numeric = isFloatingKind(value.kind) || isIntegerKind(value.kind) || value.kind == PrimitiveKind::Boolean;
  return isFloatingKind(declared.kind) && numeric ? AcceptedValues::all() : kNone;
}

AcceptedValues storableValues(std::string_view typeName) {
  if (sameName(typeName, kCodeUnit)) return {0, 0xFFFF};
  return sameName(typeName, kChar) ? AcceptedValues::scalars() : AcceptedValues::all();
}

bool declaredTypeAccepts(const ListData& list, void* handle) {
  const ElementType declared = declaredElementType(list);
  BulkPrimitiveListValue own;
  BulkPrimitiveListValue raw;
  const bool unboxed = declared.kind != PrimitiveKind::None && objectToPrimitiveListValue(handle, own);
  return accepts(declared, handle, unboxed ? &own : nullptr, raw);
}

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
