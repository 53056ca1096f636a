#include "collections/core/elements/store_forms.h"

#include "collections/core/elements/primitive_elements.h"
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/errors.h"
#include "collections/core/kinds.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/roots.h"

namespace vc = vorn::collections;
using vc::PrimitiveKind;

namespace {

// Appends to object or linked storage, materialising first. The box comes first, so that its failure changes nothing,
// and is rooted because what follows allocates.
void boxAndPushBack(ListData& list, const BulkPrimitiveListValue& value) {
  const vc::RootedHandle box(boxPrimitiveListValue(value.kind, value.typeName, value.integer, value.floating));
  materializePrimitiveList(list, 1);
  list.objectPushBack(box.get());
}

// Converts against a declared type that the caller has looked up.
bool convertToDeclared(const vc::ElementType& declared, const BulkPrimitiveListValue& value,
                       BulkPrimitiveListValue& out) {
  if (declared.kind == PrimitiveKind::None) return false;
  long long integer = 0;
  double floating = 0.0;
  if (!convertPrimitiveListValueToDeclared(declared.kind, declared.name, value, integer, floating)) return false;
  out = {declared.kind, declared.name, integer, floating};
  return true;
}

// The declared-type gate. `own` is the unboxed value, null when it is no primitive box; for a primitive declared type
// `converted` receives what it becomes there.
bool accepts(const vc::ElementType& declared, void* handle, const BulkPrimitiveListValue* own,
             BulkPrimitiveListValue& converted) {
  if (declared.kind != PrimitiveKind::None) return own != nullptr && convertToDeclared(declared, *own, converted);
  if (isObjectType(declared) || handle == nullptr) return true;
  const RuntimeClass* const type = classOfObject(handle);
  if (type != nullptr && declared.name.name->lastSeen(type)) return true;
  if (!Vorn_isInstanceOf(handle, declared.name.get().data())) return false;
  if (type != nullptr) declared.name.name->remember(type);
  return true;
}

void raiseRefused(const vc::ElementType& declared, void* handle) {
  vc::errors::raiseElementTypeRefused(declared.name.get(), Vorn_objectTypeName(handle));
}

}  // namespace

bool rawPrimitiveValueToDeclared(const ListData& list, const BulkPrimitiveListValue& value,
                                 BulkPrimitiveListValue& out) {
  return convertToDeclared(vc::declaredElementType(list), value, out);
}

bool listValueToDeclaredPrimitiveValue(const ListData& list, void* handle, BulkPrimitiveListValue& out) {
  const vc::ElementType declared = vc::declaredElementType(list);
  BulkPrimitiveListValue value;
  return declared.kind != PrimitiveKind::None && objectToPrimitiveListValue(handle, value) &&
         convertToDeclared(declared, value, out);
}

bool primitiveStorageCompatible(const ListData& list, PrimitiveKind kind, RuntimeTypeName typeName) {
  const vc::ElementType type{kind, typeName};
  if (list.linked) return false;
  if (list.isUnboxed()) return type == vc::keptElementType(list);
  if (list.objects.size != 0) return false;
  const vc::ElementType declared = vc::declaredElementType(list);
  return declared.kind != PrimitiveKind::None ? type == declared : list.elementType.empty();
}

void appendPrimitiveValue(ListData& list, const BulkPrimitiveListValue& value) {
  if (list.linked) return boxAndPushBack(list, value);
  if (!list.isUnboxed()) {
    if (list.objects.size != 0) return boxAndPushBack(list, value);
    if (!vc::adoptPrimitiveKindOrRaise(list, value)) return;
  }
  if (value.type() != vc::keptElementType(list)) return boxAndPushBack(list, value);
  primitiveListAppend(list, value.integer, value.floating);
}

bool ensureListValueMatchesDeclaredElementType(const ListData& list, void* handle) {
  if (vc::declaredTypeAccepts(list, handle)) return true;
  raiseRefused(vc::declaredElementType(list), handle);
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

StoreForm chooseStoreFormOrRaise(const ListData& list, void* handle, BulkPrimitiveListValue& raw) {
  const ElementType declared = declaredElementType(list);
  const bool typed = declared.kind != PrimitiveKind::None;
  // Boxed elements or nodes never make way for unboxed ones, and then only a primitive declared type looks inside.
  const bool mayUnbox = !list.linked && (list.isUnboxed() || list.objects.size == 0);
  BulkPrimitiveListValue own;
  const bool unboxed = (mayUnbox || typed) && objectToPrimitiveListValue(handle, own);
  if (!accepts(declared, handle, unboxed ? &own : nullptr, raw)) {
    raiseRefused(declared, handle);
    return StoreForm::Refused;
  }
  if (!mayUnbox || !unboxed) return StoreForm::Boxed;

  if (!list.isUnboxed()) {
    // An empty list becomes what it declares; without a declared type, what its first value is.
    if (!typed && !list.elementType.empty()) return StoreForm::Boxed;
    if (!typed) raw = own;
    return StoreForm::Adopted;
  }
  if (typed && raw.type() == keptElementType(list)) return StoreForm::Kept;
  if (own.type() != keptElementType(list)) return StoreForm::Boxed;
  raw = own;
  return StoreForm::Kept;
}

bool adoptPrimitiveKindOrRaise(ListData& list, const BulkPrimitiveListValue& value) {
  if (!checkCharacterRangeOrRaise(value.typeName, value.integer)) return false;
  configurePrimitiveStorage(list, value.kind);
  beginPrimitiveStorage(list, value.kind, value.typeName);
  return true;
}

}  // namespace vorn::collections
