#include "collections/arraylist/store.h"

#include <vorn/collections/array_list.h>

#include "collections/arraylist/object_cursor.h"
#include "collections/core/elements/primitive_elements.h"
#include "collections/core/elements/primitive_values.h"
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/elements/store_forms.h"
#include "collections/core/index_rules.h"
#include "collections/core/kinds.h"
#include "collections/core/port/borrowed_box.h"

namespace vc = vorn::collections;

namespace vorn::collections {

namespace {

bool keepsUnboxed(const ListData& list, const BulkPrimitiveListValue& value) {
  return value.type() == keptElementType(list);
}

void insertBoxed(ListData& list, std::uint64_t index, void* value) {
  assertMayBeKept(value);
  materializePrimitiveList(list, 1);
  if (list.linked) {
    list.linkedObjects.insertAt(index, value);
  } else {
    list.objects.insertAt(index, value);
  }
}

}  // namespace

bool rawReplacement(const ListData& list, void* value, BulkPrimitiveListValue& raw) {
  return (listValueToDeclaredPrimitiveValue(list, value, raw) && keepsUnboxed(list, raw)) ||
         (objectToPrimitiveListValue(value, raw) && keepsUnboxed(list, raw));
}

void appendValueOrRaise(ListData& list, void* value) {
  if (appendInPlace(list, value)) return;
  BulkPrimitiveListValue raw;
  switch (chooseStoreFormOrRaise(list, value, raw)) {
    case StoreForm::Refused:
      return;
    case StoreForm::Adopted:
      if (!adoptPrimitiveKindOrRaise(list, raw)) return;
      [[fallthrough]];
    case StoreForm::Kept:
      return primitiveListAppend(list, raw.integer, raw.floating);
    case StoreForm::Boxed:
      assertMayBeKept(value);
      materializePrimitiveList(list, 1);
      return list.objectPushBack(value);
  }
}

void insertValueOrRaise(ListData& list, std::uint64_t index, void* value) {
  BulkPrimitiveListValue raw;
  switch (chooseStoreFormOrRaise(list, value, raw)) {
    case StoreForm::Refused:
      return;
    case StoreForm::Adopted:
      if (!adoptPrimitiveKindOrRaise(list, raw)) return;
      [[fallthrough]];
    case StoreForm::Kept:
      return primitiveListInsertAt(list, index, raw.integer, raw.floating);
    case StoreForm::Boxed:
      return insertBoxed(list, index, value);
  }
}

void replaceValueOrRaise(ListData& list, std::uint64_t index, void* value) {
  if (storeBoxOfSameType(list, list.primitive.data, index, value)) return;
  BulkPrimitiveListValue raw;
  if (list.isUnboxed() && rawReplacement(list, value, raw)) {
    return primitiveListWrite(list, index, raw.integer, raw.floating);
  }
  if (!ensureListValueMatchesDeclaredElementType(list, value)) return;
  assertMayBeKept(value);
  materializePrimitiveList(list);
  ObjectCursor(list).replace(index, value);
}

}  // namespace vorn::collections

void vorn_collections_ArrayList_addAt(void* list, long long index, void* value) {
  if (list == nullptr) return;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  const auto at = vc::insertionIndexOrRaise(data.logicalSize(), index);
  if (!at) return;
  vc::insertValueOrRaise(data, *at, value);
}

void vorn_collections_ArrayList_operator_index_eq(void* list, long long index, void* value) {
  if (list == nullptr) return;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  const std::uint64_t size = data.logicalSize();
  if (index >= 0 && static_cast<std::uint64_t>(index) == size) return vc::appendValueOrRaise(data, value);
  const auto at = vc::elementIndexOrRaise(size, index);
  if (!at) return;
  vc::replaceValueOrRaise(data, *at, value);
}
