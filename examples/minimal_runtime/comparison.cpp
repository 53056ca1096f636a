// Numbers, equality and order.
#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/map.h>
#include <vorn/collections/runtime_helpers.hpp>

#include <cfloat>

#include "minimal_runtime.h"

using namespace minimal;
using Kind = NativeNumericValue::Kind;

namespace {
static_assert(LDBL_MANT_DIG >= 64, "a long double has to hold all 64-bit integers");

// Values are compared with others of their place only, and the places are in the order of keys.
enum Place { kNull, kNumber, kOtherBox, kText = 20, kSingle, kTuple, kImmutableList, kList, kArray, kMap, kSet };

int placeOf(void* handle, Seen seen) {
  if (handle == nullptr) return kNull;
  const RuntimeClass& type = *classOf(handle);
  if (type.kind < ObjectKind::BooleanBox) return kNumber;
  if (type.kind < ObjectKind::String) return kOtherBox + static_cast<int>(type.boxedType);  // each of its own
  if (type.kind == ObjectKind::String) return kText;
  if (type.kind == ObjectKind::Tuple) return kTuple;
  if (isImmutableListLike(type.name)) return kImmutableList;
  if (type.kind < ObjectKind::Tuple || seen == Seen::AsKeys) return kSingle;
  return kList + static_cast<int>(type.kind) - static_cast<int>(ObjectKind::List);
}

// Texts, and sequences of one kind, have an order of their own.
bool haveOrder(void* left, void* right) {
  const int place = placeOf(left, Seen::AsOrdered);
  return place >= kText && place != kSingle && place < kMap && place == placeOf(right, Seen::AsOrdered);
}

template <class T>
int threeWay(T left, T right) {
  return (left > right) - (left < right);
}

bool isSubset(void* left, void* right, int place) {
  const Handles keys = elementsOf(place == kMap ? vorn_collections_Map_keys(left) : left);
  return std::all_of(keys.begin(), keys.end(), [&](void* key) {
    if (place == kSet) return vorn_collections_HashSet_operator_in(right, key);
    void* value = nullptr;
    return vorn_collections_Map_tryGet(right, key, &value) &&
           Vorn_deepEquals(vorn_collections_Map__get(left, key), value) != 0;
  });
}
}  // namespace

Handles minimal::elementsOf(void* collection) {
  ListData* data = nullptr;
  vorn_collections_ArrayList_addAll(Vorn_allocArrayListObjectFast(false, &data, true), collection);
  return snapshotListObjectValues(*data);
}
int minimal::compare(void* left, void* right, Seen seen) {
  const int place = placeOf(left, seen);
  if (left == right || place != placeOf(right, seen)) return threeWay(place, placeOf(right, seen));
  NativeNumericValue a{};
  NativeNumericValue b{};
  if (tryReadNativeNumericValue(left, a) && tryReadNativeNumericValue(right, b)) {
    return seen == Seen::AsEqual ? compareNativeNumericValues(a, b) : compareNativeNumericValuesForSort(a, b);
  }
  if (place < kText) return threeWay(Vorn_getField_i64(left, "_value"), Vorn_getField_i64(right, "_value"));
  if (place == kText) return compareStringObjects(left, right);
  if (place == kSingle || (place >= kMap && seen != Seen::AsEqual)) return threeWay(left, right);
  // A pair that is met again while it is compared counts as equal, so that collections may hold themselves.
  static thread_local std::vector<std::pair<void*, void*>> pairs;
  if (std::find(pairs.begin(), pairs.end(), std::pair(left, right)) != pairs.end()) return 0;
  pairs.emplace_back(left, right);
  const std::unique_ptr<void, void (*)(void*)> leave(left, [](void*) { pairs.pop_back(); });
  if (place >= kMap) return isSubset(left, right, place) && isSubset(right, left, place) ? 0 : 1;
  const Handles x = elementsOf(left);
  const Handles y = elementsOf(right);
  for (std::size_t i = 0; i < std::min(x.size(), y.size()); ++i) {
    if (const int order = compare(x[i], y[i], seen); order != 0) return order;
  }
  return threeWay(x.size(), y.size());
}
long double minimal::exactly(const NativeNumericValue& number) {
  if (number.kind == Kind::Floating) return std::bit_cast<double>(number.payload);
  if (number.kind == Kind::Unsigned) return static_cast<long double>(number.payload);
  return static_cast<long double>(static_cast<std::int64_t>(number.payload));
}
bool tryReadNativeNumericValue(void* handle, NativeNumericValue& value) {
  const RegisteredObject* box = getRegisteredObjectUnsafe(handle);
  if (box == nullptr || box->kind() > ObjectKind::FloatingBox) return false;
  const bool isUnsigned = boxedTypeOf(*box) == vc::PrimitiveType::ULong;
  value.kind = box->kind() == ObjectKind::FloatingBox ? Kind::Floating : (isUnsigned ? Kind::Unsigned : Kind::Signed);
  value.payload = static_cast<std::uint64_t>(box->integer);
  return true;
}
int compareNativeNumericValues(const NativeNumericValue& left, const NativeNumericValue& right) {
  const long double a = exactly(left);
  const long double b = exactly(right);
  return a == b ? 0 : (a < b ? -1 : 1);  // 1 for a NaN
}
int compareNativeNumericValuesForSort(const NativeNumericValue& left, const NativeNumericValue& right) {
  const bool leftIsNan = std::isnan(exactly(left));
  const bool rightIsNan = std::isnan(exactly(right));
  return leftIsNan || rightIsNan ? leftIsNan - rightIsNan : compareNativeNumericValues(left, right);
}
int compareStringObjects(void* left, void* right) { return stringTextFromPtr(left).compare(stringTextFromPtr(right)); }
int Vorn_deepEquals(void* left, void* right) { return compare(left, right, Seen::AsEqual) == 0 ? 1 : 0; }
bool Vorn_collectionObjectsEqual(void* left, void* right, bool& equal) {
  if (haveOrder(left, right)) equal = Vorn_deepEquals(left, right) != 0;
  return haveOrder(left, right);
}
bool Vorn_collectionObjectsLess(void* left, void* right, bool& less) {
  if (haveOrder(left, right)) less = compare(left, right, Seen::AsOrdered) < 0;
  return haveOrder(left, right);
}
