#include "collections/arraylist/snapshots.h"

#include "collections/core/element_access.h"
#include "collections/core/primitive_conversions.h"
#include "collections/core/primitive_kinds.h"

using vorn::collections::HandleVector;
using vorn::collections::PrimitiveKind;

namespace {

// Boxes `n` elements at `data`. Nothing collected but the boxes is touched, so `data` may be collected memory that the
// caller keeps alive.
void appendBoxes(PrimitiveKind kind, RuntimeTypeName typeName, const unsigned char* data, std::uint64_t n,
                 HandleVector::Storage& values) {
  values.reserve(values.size() + n);
  vorn::collections::visitKind(kind, [&](auto tag) {
    for (std::uint64_t i = 0; i < n; ++i) {
      values.push_back(boxPrimitiveListValue(kind, typeName.get(), vorn::collections::readElementI64(tag, data, i),
                                             vorn::collections::readElementF64(tag, data, i)));
    }
  });
}

}  // namespace

namespace vorn::collections {

void appendListObjectsLocked(const ListData& list, HandleVector::Storage& values) {
  if (list.primitiveKind == PrimitiveKind::None) return list.copyObjectsTo(values);
  appendBoxes(list.primitiveKind, list.primitiveType, list.primitive.data, list.primitive.size, values);
}

}  // namespace vorn::collections

std::uint64_t ListStorageSnapshot::size() const {
  if (primitiveKind == PrimitiveKind::None) return objects->size();
  return elements.size() / vorn::collections::primitiveWidth(primitiveKind);
}

void snapshotListStorage(void* list, ListStorageSnapshot& snapshot) {
  if (list == nullptr) return;
  const vorn::collections::RootedHandle keepList(list);
  const ListData& data = *getListData(list);
  const ListDataLock lock(data);
  snapshot.primitiveKind = data.primitiveKind;
  snapshot.primitiveType = data.primitiveType;
  if (data.primitiveKind == PrimitiveKind::None) return data.copyObjectsTo(*snapshot.objects);
  const unsigned char* elements = data.primitive.data;
  snapshot.elements.assign(elements, elements + data.primitive.size * data.primitive.elementSize);
}

void appendSnapshotObjects(const ListStorageSnapshot& snapshot, HandleVector::Storage& values) {
  if (snapshot.primitiveKind == PrimitiveKind::None) {
    values.insert(values.end(), snapshot.objects->begin(), snapshot.objects->end());
  } else {
    appendBoxes(snapshot.primitiveKind, snapshot.primitiveType, snapshot.elements.data(), snapshot.size(), values);
  }
}

HandleVector::Storage snapshotListObjectValues(ListData& list) {
  HandleVector values;
  const ListDataLock lock(list);
  vorn::collections::appendListObjectsLocked(list, *values);
  return std::move(*values);
}
