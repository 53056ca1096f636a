// Natives that append: boxed values through the declared type, raw values by kind.

#include <vorn/collections/array_list.h>

#include <string_view>

#include "collections/arraylist/store.h"
#include "collections/core/elements/accepted_values.h"
#include "collections/core/elements/element_types.h"
#include "collections/core/elements/primitive_elements.h"
#include "collections/core/elements/primitive_values.h"
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/elements/store_forms.h"
#include "collections/core/errors.h"
#include "collections/core/kinds.h"
#include "collections/core/number_rules.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/unicode.h"

namespace vc = vorn::collections;
using vc::PrimitiveKind;
using vc::PrimitiveType;

namespace {

BulkPrimitiveListValue intValue(long long value) {
  return vc::rawPrimitiveValue(vc::elementTypeOf(PrimitiveType::Int), value);
}

// Appends a raw value as the declared element type when that takes it, otherwise under its own kind.
void appendRawValue(ListData& list, const BulkPrimitiveListValue& value) {
  BulkPrimitiveListValue declared;
  appendPrimitiveValue(list, rawPrimitiveValueToDeclared(list, value, declared) ? declared : value);
}

// The common case of addInt: the list keeps Ints unboxed, its declared type is Int or none, so that the value's low
// bits are what gets stored whatever its range, and there is room. Kept free of calls, so that the native needs no
// frame.
inline bool appendToIntStorage(ListData& list, long long value) {
  SmallPrimitiveBuffer& buffer = list.primitive;
  if (list.primitiveKind != PrimitiveKind::Int || buffer.elementSize != sizeof(std::int32_t)) return false;
  if (!list.elementType.empty() && list.elementType != list.primitiveType) return false;
  if (buffer.size == buffer.capacity) return false;
  vc::storeElement(vc::KindTag<PrimitiveKind::Int, std::int32_t>{}, buffer.data, buffer.size, value, 0.0);
  ++buffer.size;
  return true;
}

// The first Int of most lists: an empty one that declares Int or nothing keeps Ints from then on. What the ordinary path
// asks of value and types is known here.
bool adoptInts(ListData& list) {
  const RuntimeTypeName ints = vc::typeNameOf(PrimitiveType::Int);
  if (list.linked || list.isUnboxed() || list.objects.size != 0) return false;
  if (!list.elementType.empty() && list.elementType != ints) return false;
  configurePrimitiveStorage(list, PrimitiveKind::Int);
  beginPrimitiveStorage(list, PrimitiveKind::Int, ints);
  return true;
}

// Whether the list keeps its elements under its kind's own name, and as such takes the value: the character types,
// which have their kind's second name, take some only.
template <class Value>
inline bool keptUnderOwnNameTakes(const ListData& list, Value value) {
  const PrimitiveType type = list.primitiveType.primitiveType();
  if (type == vc::plainTypeOf(list.primitiveKind)) [[likely]]
    return true;
  return vc::kindOf(type) == list.primitiveKind &&
         vc::storableValues(list.primitiveType).contains(vc::integerReading(value));
}

// Equality of names without a call: they are short.
inline bool sameText(const char* left, const char* right) {
  while (*left == *right && *left != '\0') {
    ++left;
    ++right;
  }
  return *left == *right;
}

// The common case of the other raw appends: a list that keeps values of just that type, declared so or not at all, and
// room. The low bits are then what gets stored whatever the value. The name is compared as it stands: one under a
// module takes the ordinary path.
template <class Value>
inline bool appendToStorageOf(ListData& list, const char* typeName, Value value) {
  SmallPrimitiveBuffer& buffer = list.primitive;
  if (!list.isUnboxed() || buffer.size >= buffer.capacity) return false;
  if (!list.elementType.empty() && list.elementType != list.primitiveType) return false;
  if (!keptUnderOwnNameTakes(list, value) || !sameText(list.primitiveType.get().data(), typeName)) return false;
  return vc::visitKind(
      list.primitiveKind,
      [&](auto tag) {
        using Tag = decltype(tag);
        if (buffer.elementSize != sizeof(typename Tag::Element)) return false;
        const long long integer = vc::isFloatingKind(Tag::kind) ? 0 : vc::integerReading(value);
        vc::storeElement(tag, buffer.data, buffer.size, integer, static_cast<double>(value));
        ++buffer.size;
        return true;
      },
      false);
}

[[gnu::noinline]] void lockedAdd(ListData& list, void* value) {
  const ListDataLock lock(list);
  vc::appendValueOrRaise(list, value);
}

[[gnu::noinline]] void lockedAddInt(ListData& list, long long value) {
  const ListDataLock lock(list);
  if (appendToIntStorage(list, value) || (adoptInts(list) && appendToIntStorage(list, value))) return;
  appendRawValue(list, intValue(value));
}

template <class Value>
[[gnu::noinline]] void lockedAddRaw(ListData& list, Value value, const vc::ElementType& type) {
  const ListDataLock lock(list);
  appendRawValue(list, vc::rawPrimitiveValue(type, value));
}

// The kind and name of a raw append's type argument.
vc::ElementType rawElementType(const char* typeName, PrimitiveType whenNull, PrimitiveKind whenNoKind) {
  if (typeName == nullptr) return vc::elementTypeOf(whenNull);
  vc::ElementType type = vc::normalizedElementType(typeName);
  if (type.kind == PrimitiveKind::None) type.kind = whenNoKind;
  return type;
}

}  // namespace

void vorn_collections_ArrayList_add(void* list, void* value) {
  if (list == nullptr) return vc::errors::raiseAddOnNull();
  ListData& data = *getListData(list);
  if (!data.synchronized && vc::appendInPlace(data, value)) return;
  lockedAdd(data, value);
}

void vorn_collections_ArrayList_addInt(void* list, long long value) {
  if (list == nullptr) return;
  ListData& data = *getListData(list);
  if (!data.synchronized && appendToIntStorage(data, value)) [[likely]]
    return;
  lockedAddInt(data, value);
}

void vorn_collections_ArrayList_addPrimitiveI64(void* list, long long value, const char* typeName) {
  if (list == nullptr) return;
  ListData& data = *getListData(list);
  if (!data.synchronized && appendToStorageOf(data, typeName != nullptr ? typeName : "Int", value)) [[likely]]
    return;
  lockedAddRaw(data, value, rawElementType(typeName, PrimitiveType::Int, PrimitiveKind::Long));
}

void vorn_collections_ArrayList_addPrimitiveDouble(void* list, double value, const char* typeName) {
  if (list == nullptr) return;
  ListData& data = *getListData(list);
  if (!data.synchronized && appendToStorageOf(data, typeName != nullptr ? typeName : "Double", value)) [[likely]]
    return;
  lockedAddRaw(data, value, rawElementType(typeName, PrimitiveType::Double, PrimitiveKind::Double));
}

void vorn_collections_ArrayList_addPrimitiveBool(void* list, bool value) {
  if (list == nullptr) return;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  appendPrimitiveValue(data, vc::rawPrimitiveValue(vc::elementTypeOf(PrimitiveType::Boolean), value ? 1LL : 0LL));
}

void vorn_collections_ArrayList_addIntToData(ListData* data, long long value) {
  if (data == nullptr) return;
  const ListDataLock lock(*data);
  appendPrimitiveValue(*data, intValue(value));
}
