#include "collections/arraylist/add_all.h"

#include <vorn/collections/array_list.h>

#include <cstring>
#include <optional>
#include <vector>

#include "collections/arraylist/collect_values.h"
#include "collections/core/elements/accepted_values.h"
#include "collections/core/elements/element_types.h"
#include "collections/core/elements/primitive_elements.h"
#include "collections/core/elements/primitive_values.h"
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/elements/store_forms.h"
#include "collections/core/errors.h"
#include "collections/core/index_rules.h"
#include "collections/core/kernels/element_access.h"
#include "collections/core/kinds.h"
#include "collections/core/port/roots.h"
#include "collections/core/port/type_names.h"

namespace vc = vorn::collections;
using vc::PrimitiveKind;

namespace {

// Where a batch goes: an append ignores the index.
struct InsertionPoint {
  long long index = 0;
  bool append = true;

  [[nodiscard]] std::optional<std::uint64_t> resolveOrRaise(std::uint64_t size) const {
    return append ? std::optional(size) : vc::insertionIndexOrRaise(size, index);
  }
};

// Opens a gap of `count` elements at `index` and gives its address. Allocates before anything changes.
unsigned char* openPrimitiveGap(SmallPrimitiveBuffer& buffer, std::uint64_t index, std::uint64_t count) {
  buffer.reserve(buffer.size + count);
  unsigned char* gap = buffer.data + index * buffer.elementSize;
  std::memmove(gap + count * buffer.elementSize, gap, (buffer.size - index) * buffer.elementSize);
  buffer.size += count;
  return gap;
}

// Makes the list ready to keep `count` elements more of a type that it can keep unboxed, and opens the gap for them.
unsigned char* openUnboxedGap(ListData& list, std::uint64_t index, std::uint64_t count, const vc::ElementType& type) {
  if (!list.isUnboxed()) {
    vc::resetToPrimitiveStorage(list, type.kind, type.name, count);
  } else {
    configurePrimitiveStorage(list, list.primitiveKind);
  }
  return openPrimitiveGap(list.primitive, index, count);
}

void insertHandles(ListData& list, std::uint64_t index, void* const* handles, std::uint64_t count) {
  materializePrimitiveList(list, count);
  if (list.linked) {
    list.linkedObjects.insertAllAt(index, handles, count);
  } else {
    list.objects.insertAllAt(index, handles, count);
  }
}

// ---- Boxed values ---------------------------------------------------------------------------------------------------

// The batch as raw values of one kind and name, if it has one: the declared kind, or the first value's own.
bool convertBatch(const ListData& list, void* const* values, std::uint64_t count,
                  std::vector<BulkPrimitiveListValue>& batch) {
  const bool declared = vc::declaredElementType(list).kind != PrimitiveKind::None;
  batch.reserve(count);
  for (std::uint64_t i = 0; i < count; ++i) {
    BulkPrimitiveListValue raw;
    if (declared) {
      if (!listValueToDeclaredPrimitiveValue(list, values[i], raw)) return false;
    } else {
      if (!objectToPrimitiveListValue(values[i], raw)) return false;
      if (!batch.empty() && raw.type() != batch[0].type()) return false;
    }
    batch.push_back(raw);
  }
  return true;
}

void insertBatchUnboxedOrRaise(ListData& list, std::uint64_t index, const std::vector<BulkPrimitiveListValue>& batch) {
  for (const BulkPrimitiveListValue& value : batch) {
    if (!vc::checkCharacterRangeOrRaise(value.typeName, value.integer)) return;
  }
  unsigned char* gap = openUnboxedGap(list, index, batch.size(), batch[0].type());
  vc::visitKind(list.primitiveKind, [&](auto tag) {
    for (std::uint64_t i = 0; i < batch.size(); ++i) vc::storeElement(tag, gap, i, batch[i].integer, batch[i].floating);
  });
}

void insertHandlesOrRaise(ListData& list, std::uint64_t index, const vc::CollectedValues& values) {
  void* const* const handles = values.handles();
  for (std::uint64_t i = 0; i < values.size(); ++i) {
    if (!ensureListValueMatchesDeclaredElementType(list, handles[i])) return;
  }
  std::vector<BulkPrimitiveListValue> batch;
  if (convertBatch(list, handles, values.size(), batch) &&
      primitiveStorageCompatible(list, batch[0].kind, batch[0].typeName)) {
    insertBatchUnboxedOrRaise(list, index, batch);
  } else {
    insertHandles(list, index, handles, values.size());
  }
}

// ---- Raw values -----------------------------------------------------------------------------------------------------

// Whether the declared type takes every raw value. The first one that it does not take is boxed and refused as its box
// is. A class takes either all boxes of one type or none of them.
bool declaredTypeTakesOrRaise(const ListData& list, const vc::ElementType& declared,
                              const vc::CollectedValues& values) {
  std::uint64_t refused = values.size();
  if (declared.kind != PrimitiveKind::None) {
    refused = values.firstOutside(vc::acceptedValues(declared, values.type()));
  } else if (!vc::isObjectType(declared)) {
    refused = 0;
  }
  if (refused == values.size()) return true;
  // No root: refusing a value allocates nothing.
  return ensureListValueMatchesDeclaredElementType(list, values.handleAt(refused));
}

// Does what insertHandlesOrRaise does with the boxes of these values, and makes none of them unless they are kept.
void insertRawOrRaise(ListData& list, std::uint64_t index, const vc::CollectedValues& values) {
  const vc::ElementType declared = vc::declaredElementType(list);
  if (!declaredTypeTakesOrRaise(list, declared, values)) return;
  const vc::ElementType type = declared.kind != PrimitiveKind::None ? declared : values.type();
  if (!primitiveStorageCompatible(list, type.kind, type.name)) {
    vc::HandleVector boxes;
    return insertHandles(list, index, values.handles(values.size(), boxes), values.size());
  }
  const std::uint64_t outside = values.firstOutside(vc::storableValues(type.name));
  if (outside != values.size()) {
    vc::RawRun run;
    values.readRun(outside, run);
    vc::checkCharacterRangeOrRaise(type.name, run.integers[0]);
    return;
  }
  values.storeAs(type.kind, openUnboxedGap(list, index, values.size(), type));
}

void addAll(void* list, InsertionPoint point, void* source) {
  vc::CollectedValues values;
  if (!collectListInsertionValues(source, list, values)) return vc::errors::raiseAddAllSource();
  if (values.complete()) arrayListAddAllCaptured(list, point.index, point.append, values);
}

}  // namespace

void arrayListAddAllCaptured(void* list, long long index, bool append, const vc::CollectedValues& values) {
  if (list == nullptr || values.size() == 0) return;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  const InsertionPoint point{index, append};
  const auto at = point.resolveOrRaise(data.logicalSize());
  if (!at) return;
  if (values.raw()) {
    insertRawOrRaise(data, *at, values);
  } else {
    insertHandlesOrRaise(data, *at, values);
  }
}

void vorn_collections_ArrayList_addAll(void* list, void* source) { addAll(list, {0, true}, source); }

void vorn_collections_ArrayList_addAllAt(void* list, long long index, void* source) {
  addAll(list, {index, false}, source);
}
