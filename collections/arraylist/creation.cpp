#include "collections/arraylist/creation.h"

#include <algorithm>
#include <cstring>

#include "collections/core/elements/element_types.h"
#include "collections/core/elements/primitive_elements.h"
#include "collections/core/elements/primitive_values.h"
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/errors.h"
#include "collections/core/kinds.h"
#include "collections/core/port/borrowed_box.h"
#include "collections/core/port/objects.h"
#include "collections/core/port/type_names.h"
#include "collections/core/scratch.h"

namespace vc = vorn::collections;
using vc::PrimitiveKind;

namespace {

// Fills the list unboxed if every value is of the first one's kind and name; false, with the list unchanged, otherwise.
// Boxes may hold a Char or CodeUnit out of range; assigning them raises, and the list stays empty.
bool assignUnboxed(ListData& list, void** values, unsigned long count) {
  BulkPrimitiveListValue first;
  if (!objectToPrimitiveListValue(values[0], first)) return false;
  const bool floating = vc::isFloatingKind(first.kind);
  vc::Scratch<long long> integers(floating ? 0 : count);
  vc::Scratch<double> doubles(floating ? count : 0);
  for (unsigned long i = 0; i < count; ++i) {
    BulkPrimitiveListValue value;
    if (!objectToPrimitiveListValue(values[i], value)) return false;
    if (value.type() != first.type()) return false;
    if (floating) {
      doubles[i] = value.floating;
    } else {
      integers[i] = value.integer;
    }
  }
  if (floating) {
    primitiveListAssignFromF64Values(list, first.kind, first.typeName, doubles.data(), count);
  } else {
    primitiveListAssignFromI64Values(list, first.kind, first.typeName, integers.data(), count);
  }
  return true;
}

void assignHandles(ListData& list, void** values, unsigned long count) {
  if (!list.linked) list.objects.reserve(count);
  for (unsigned long i = 0; i < count; ++i) {
    vc::assertMayBeKept(values[i]);
    list.objectPushBack(values[i]);
  }
}

}  // namespace

void* createArrayListLiteralFromValues(bool synchronised, void** values, unsigned long count) {
  const vc::RootedRange keepValues(values, count * sizeof(void*));
  ListData* data = nullptr;
  const vc::RootedHandle list(Vorn_allocArrayListObjectFast(synchronised, &data, true));
  if (list.get() == nullptr || data == nullptr) return nullptr;
  const ListDataLock lock(*data);
  if (count != 0 && !assignUnboxed(*data, values, count)) assignHandles(*data, values, count);
  return list.get();
}

void* createArrayListLiteralFromIntValues(const long long* values, unsigned long count) {
  ListData* data = nullptr;
  const vc::RootedHandle list(Vorn_allocArrayListObjectFast(false, &data, false));
  if (list.get() == nullptr || data == nullptr) return nullptr;
  primitiveListAssignFromI64Values(*data, PrimitiveKind::Int, vc::typeNameOf(vc::PrimitiveType::Int), values, count);
  return list.get();
}

void* createArrayListPrimitiveEmpty(const char* typeName, bool synchronised) {
  // No root: a list without elements allocates nothing more.
  ListData* data = nullptr;
  void* const list = Vorn_allocArrayListObjectFast(synchronised, &data, false);
  if (list == nullptr || data == nullptr) return nullptr;
  const ListDataLock lock(*data);
  if (typeName == nullptr) {
    data->elementType = {};
    return list;
  }
  const vc::ElementType type = vc::normalizedElementType(typeName);
  data->elementType = type.name;
  if (type.kind != PrimitiveKind::None && !data->linked) {
    vc::resetToPrimitiveStorage(*data, type.kind, data->elementType, 0);
  }
  return list;
}

void* createArrayListPrimitiveDataBuffer(bool synchronised, long long n, const char* typeName, void** outList) {
  *outList = nullptr;
  ListData* data = nullptr;
  const vc::RootedHandle list(Vorn_allocArrayListObjectFast(synchronised, &data, false));
  if (list.get() == nullptr || data == nullptr) return nullptr;
  const vc::ElementType type = vc::normalizedElementType(typeName != nullptr ? typeName : "Int");
  if (type.kind == PrimitiveKind::None) {
    vc::errors::raisePrimitiveStorageExpected();
    return nullptr;
  }
  const ListDataLock lock(*data);
  const auto size = static_cast<std::uint64_t>(std::max(n, 0LL));
  vc::resetToPrimitiveStorage(*data, type.kind, type.name, size);
  data->elementType = data->primitiveType;
  data->primitive.size = size;
  *outList = list.get();
  return data->primitive.data;
}
