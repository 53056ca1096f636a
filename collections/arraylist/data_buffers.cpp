// The data-buffer protocol: compiled code asks for raw memory, writes unboxed values without a call per element, and
// commits their number.

#include <vorn/collections/array_list.h>

#include <algorithm>

#include "collections/arraylist/creation.h"
#include "collections/core/elements/element_types.h"
#include "collections/core/elements/primitive_elements.h"
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/errors.h"
#include "collections/core/kernels/element_access.h"
#include "collections/core/kinds.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/type_names.h"

namespace vc = vorn::collections;
using vc::PrimitiveKind;

namespace {

std::uint64_t countOf(long long n) { return static_cast<std::uint64_t>(std::max(n, 0LL)); }

bool isI64MirrorKind(PrimitiveKind kind) { return vc::isIntegerKind(kind) || kind == PrimitiveKind::Boolean; }

// The type a mirror buffer is asked for; a kind the mirror does not serve becomes its widest one.
vc::ElementType i64BufferType(const char* typeName) {
  vc::ElementType type = vc::normalizedElementType(typeName != nullptr ? typeName : "Int");
  if (!isI64MirrorKind(type.kind)) type.kind = PrimitiveKind::Long;
  return type;
}
vc::ElementType f64BufferType(const char* typeName) {
  vc::ElementType type = vc::normalizedElementType(typeName != nullptr ? typeName : "Double");
  if (type.kind != PrimitiveKind::Float) type.kind = PrimitiveKind::Double;
  return type;
}

// Empties the list and types it. A linked list never gets primitive storage: it takes the declared type only, and the
// commit will refuse it.
void prepareStorage(ListData& list, const vc::ElementType& type) {
  if (list.linked) {
    clearListStorage(list);
  } else {
    vc::resetToPrimitiveStorage(list, type.kind, type.name, 0);
  }
  list.elementType = type.name;
}

// Gives an existing list a mirror with room for n values. The room comes first, so that without memory the list stays
// as it was.
template <class Mirror>
auto* prepareMirror(ListData& list, Mirror& mirror, const vc::ElementType& type, long long n) {
  mirror.reserve(countOf(n));
  prepareStorage(list, type);
  return mirror.data;
}

// A new plain list with a mirror sized n; the primitive buffer stays empty until the commit.
template <auto kMirror>
auto newMirrorData(const vc::ElementType& type, long long n, void** outList)
    -> decltype((static_cast<ListData*>(nullptr)->*kMirror).data) {
  *outList = nullptr;
  ListData* data = nullptr;
  const vc::RootedHandle list(Vorn_allocArrayListObjectFast(false, &data, false));
  if (list.get() == nullptr || data == nullptr) return nullptr;
  auto& mirror = data->*kMirror;
  auto* values = prepareMirror(*data, mirror, type, n);
  mirror.size = countOf(n);
  *outList = list.get();
  return values;
}

// The commits below work on the record; only the callers know about locks.

// Sets the size of a mirror, grown when the count exceeds what was prepared: the values past that are undefined.
template <class Mirror>
std::uint64_t commitMirrorSize(Mirror& mirror, long long n) {
  const std::uint64_t count = countOf(n);
  mirror.reserve(count);
  mirror.size = count;
  return count;
}

void commitI64Mirror(ListData& list, PrimitiveKind kind, RuntimeTypeName typeName, long long n) {
  const std::uint64_t count = commitMirrorSize(list.i64Mirror, n);
  primitiveListAssignFromI64Values(list, kind, typeName, list.i64Mirror.data, count);
}

void commitInt(ListData& list, long long n) {
  if (!vc::isIntegerKind(list.primitiveKind)) return vc::errors::raiseIntStorageExpected();
  commitI64Mirror(list, PrimitiveKind::Int, vc::typeNameOf(vc::PrimitiveType::Int), n);
}

void commitI64(ListData& list, long long n) {
  if (!isI64MirrorKind(list.primitiveKind)) return vc::errors::raiseIntegerStorageExpected();
  commitI64Mirror(list, list.primitiveKind, list.primitiveType, n);
}

void commitDouble(ListData& list, long long n) {
  if (!vc::isFloatingKind(list.primitiveKind)) return vc::errors::raiseFloatingStorageExpected();
  const std::uint64_t count = commitMirrorSize(list.f64Mirror, n);
  primitiveListAssignFromF64Values(list, list.primitiveKind, list.primitiveType, list.f64Mirror.data, count);
}

void commitPrimitive(ListData& list, long long n) {
  if (!list.isUnboxed()) return vc::errors::raisePrimitiveStorageExpected();
  list.primitive.reserve(countOf(n));
  list.primitive.size = countOf(n);
  list.i64Mirror.size = 0;
  list.f64Mirror.size = 0;
}

template <auto kCommit>
void commitLocked(void* list, long long n) {
  if (list == nullptr) return;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  kCommit(data, n);
}

// The Fast forms never lock, not even a synchronised list.
template <auto kCommit>
void commitUnlocked(void* list, long long n) {
  auto* data = nativeRecordOrNull<ListData>(list, ObjectKind::List);
  if (data == nullptr) return commitLocked<kCommit>(list, n);
  kCommit(*data, n);
}

// Refills a mirror from the primitive elements.
template <class Mirror, class Read>
auto* refreshMirror(const ListData& list, Mirror& mirror, Read read) {
  const std::uint64_t size = list.primitive.size;
  mirror.size = 0;
  mirror.reserve(size);
  vc::visitKind(list.primitiveKind, [&](auto tag) {
    for (std::uint64_t i = 0; i < size; ++i) mirror.data[i] = read(tag, i);
  });
  mirror.size = size;
  return mirror.data;
}

}  // namespace

void* vorn_collections_ArrayList_newPrimitiveData(long long n, const char* typeName, void** outList) {
  return createArrayListPrimitiveDataBuffer(false, n, typeName, outList);
}

void* vorn_collections_ArrayListSync_newPrimitiveData(long long n, const char* typeName, void** outList) {
  return createArrayListPrimitiveDataBuffer(true, n, typeName, outList);
}

long long* vorn_collections_ArrayList_newPrimitiveI64Data(long long n, const char* typeName, void** outList) {
  return newMirrorData<&ListData::i64Mirror>(i64BufferType(typeName), n, outList);
}

double* vorn_collections_ArrayList_newDoubleData(long long n, const char* typeName, void** outList) {
  return newMirrorData<&ListData::f64Mirror>(f64BufferType(typeName), n, outList);
}

long long* vorn_collections_ArrayList_prepareIntData(void* list, long long n) {
  if (list == nullptr) return nullptr;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  return prepareMirror(data, data.i64Mirror, vc::elementTypeOf(vc::PrimitiveType::Int), n);
}

long long* vorn_collections_ArrayList_preparePrimitiveI64Data(void* list, long long n, const char* typeName) {
  if (list == nullptr) return nullptr;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  return prepareMirror(data, data.i64Mirror, i64BufferType(typeName), n);
}

double* vorn_collections_ArrayList_prepareDoubleData(void* list, long long n, const char* typeName) {
  if (list == nullptr) return nullptr;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  return prepareMirror(data, data.f64Mirror, f64BufferType(typeName), n);
}

void vorn_collections_ArrayList_commitIntDataSize(void* list, long long n) { commitLocked<commitInt>(list, n); }

void vorn_collections_ArrayList_commitPrimitiveI64DataSize(void* list, long long n) {
  commitLocked<commitI64>(list, n);
}

void vorn_collections_ArrayList_commitPrimitiveI64DataSizeFast(void* list, long long n) {
  commitUnlocked<commitI64>(list, n);
}

void vorn_collections_ArrayList_commitDoubleDataSize(void* list, long long n) { commitLocked<commitDouble>(list, n); }

void vorn_collections_ArrayList_commitDoubleDataSizeFast(void* list, long long n) {
  commitUnlocked<commitDouble>(list, n);
}

void vorn_collections_ArrayList_commitPrimitiveDataSize(void* list, long long n) {
  commitLocked<commitPrimitive>(list, n);
}

void vorn_collections_ArrayList_commitPrimitiveDataSizeFast(void* list, long long n) {
  commitUnlocked<commitPrimitive>(list, n);
}

long long* vorn_collections_ArrayList_i64DataPtr(void* list) {
  if (list == nullptr) return nullptr;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  if (!isI64MirrorKind(data.primitiveKind)) return nullptr;
  return refreshMirror(data, data.i64Mirror,
                       [&](auto tag, std::uint64_t i) { return vc::readElementI64(tag, data.primitive.data, i); });
}

double* vorn_collections_ArrayList_f64DataPtr(void* list) {
  if (list == nullptr) return nullptr;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  if (!vc::isFloatingKind(data.primitiveKind)) return nullptr;
  return refreshMirror(data, data.f64Mirror,
                       [&](auto tag, std::uint64_t i) { return vc::readElementF64(tag, data.primitive.data, i); });
}

void* vorn_collections_ArrayList_primitiveDataPtr(void* list) {
  if (list == nullptr) return nullptr;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  if (!data.isUnboxed()) return nullptr;
  configurePrimitiveStorage(data, data.primitiveKind);
  return data.primitive.data;
}

ListData* vorn_collections_ArrayList_dataHandle(void* list) { return list != nullptr ? getListData(list) : nullptr; }

void vorn_collections_ArrayList_reserve(void* list, long long n) {
  if (list == nullptr || n <= 0) return;
  ListData& data = *getListData(list);
  if (data.linked) return;
  const ListDataLock lock(data);
  const std::uint64_t count = countOf(n);
  const bool empty = !data.isUnboxed() && data.objects.size == 0;
  const vc::ElementType declared = empty ? vc::declaredElementType(data) : vc::ElementType{};
  if (declared.kind != PrimitiveKind::None) {
    vc::resetToPrimitiveStorage(data, declared.kind, declared.name, count);
  } else if (data.isUnboxed()) {
    configurePrimitiveStorage(data, data.primitiveKind);
    data.primitive.reserve(count);
  } else {
    data.objects.reserve(count);
  }
}
