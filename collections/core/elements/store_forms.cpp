#include "collections/core/elements/store_forms.h"

#include "collections/core/elements/element_types.h"
#include "collections/core/elements/primitive_elements.h"
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/errors.h"
#include "collections/core/kernels/element_access.h"
#include "collections/core/kinds.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/roots.h"
#include "collections/core/port/type_names.h"

using vorn::collections::declaredElementType;
using vorn::collections::ElementType;
using vorn::collections::PrimitiveKind;
using vorn::collections::sameName;

namespace {

// Appends to object or linked storage, materialising first. The box comes first, so that its failure changes nothing,
// and is rooted because what follows allocates.
void boxAndPushBack(ListData& list, const BulkPrimitiveListValue& value) {
  const vorn::collections::RootedHandle box(
      boxPrimitiveListValue(value.kind, value.typeName, value.integer, value.floating));
  materializePrimitiveList(list, 1);
  list.objectPushBack(box.get());
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
  if (vorn::collections::declaredTypeAccepts(list, handle)) return true;
  vorn::collections::errors::raiseElementTypeRefused(declaredElementType(list).name, Vorn_objectTypeName(handle));
  return false;
}

namespace vorn::collections {

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
