#include "collections/arraylist/snapshots.h"

#include "collections/core/elements/primitive_values.h"
#include "collections/core/kernels/element_access.h"
#include "collections/core/kinds.h"
#include "collections/core/port/object_layout.h"

namespace vc = vorn::collections;
using vc::HandleVector;

namespace vorn::collections {

void appendBoxes(PrimitiveKind kind, RuntimeTypeName typeName, const unsigned char* elements, std::uint64_t n,
                 HandleVector::Storage& values) {
  values.reserve(values.size() + n);
  visitKind(kind, [&](auto tag) {
    for (std::uint64_t i = 0; i < n; ++i) {
      values.push_back(
          boxPrimitiveListValue(kind, typeName, readElementI64(tag, elements, i), readElementF64(tag, elements, i)));
    }
  });
}

void appendListObjectsLocked(const ListData& list, HandleVector::Storage& values) {
  if (!list.isUnboxed()) return list.copyObjectsTo(values);
  appendBoxes(list.primitiveKind, list.primitiveType, list.primitive.data, list.primitive.size, values);
}

}  // namespace vorn::collections

std::uint64_t ListStorageSnapshot::size() const {
  if (!isUnboxed()) return objects->size();
  return elements.size() / vc::primitiveWidth(primitiveKind);
}

void snapshotListStorage(void* list, ListStorageSnapshot& snapshot) {
  if (list == nullptr) return;
  const vc::RootedHandle keepList(list);
  const ListData& data = *getListData(list);
  const ListDataLock lock(data);
  snapshot.primitiveKind = data.primitiveKind;
  snapshot.primitiveType = data.primitiveType;
  if (!data.isUnboxed()) return data.copyObjectsTo(*snapshot.objects);
  const unsigned char* elements = data.primitive.data;
  snapshot.elements.assign(elements, elements + data.primitive.size * data.primitive.elementSize);
}

HandleVector::Storage snapshotListObjectValues(ListData& list) {
  HandleVector values;
  const ListDataLock lock(list);
  vc::appendListObjectsLocked(list, *values);
  return std::move(*values);
}
