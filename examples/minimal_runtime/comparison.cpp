// Numbers, equality and order.
#include "collections/core/port/comparison.h"

#include <vorn/collections/array_list.h>
#include <vorn/collections/hash_set.h>
#include <vorn/collections/map.h>
#include <vorn/collections/runtime_helpers.hpp>

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <utility>

#include "collections/core/port/objects.h"
#include "collections/core/port/type_names.h"
#include "collections/core/port/values.h"
#include "minimal_runtime.h"

using Kind = NativeNumericValue::Kind;
using minimal::Seen;
using minimal::threeWay;

namespace {

static_assert(LDBL_MANT_DIG >= 64, "a long double has to hold all 64-bit integers");

long double exactly(const NativeNumericValue& number) {
  if (number.kind == Kind::Floating) return std::bit_cast<double>(number.payload);
  if (number.kind == Kind::Unsigned) return static_cast<long double>(number.payload);
  return static_cast<long double>(static_cast<std::int64_t>(number.payload));
}

// Values are compared with others of their place only, and the places are in the order of keys.
enum Place { kNull, kNumber, kOtherBox, kText = 20, kSingle, kTuple, kImmutableList, kList, kArray, kMap, kSet };

int placeOf(void* handle, Seen seen) {
  if (handle == nullptr) return kNull;
  const RuntimeClass& type = *minimal::classOf(handle);
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

int compareSequences(void* left, void* right, Seen seen) {
  const minimal::Handles a = minimal::elementsOf(left);
  const minimal::Handles b = minimal::elementsOf(right);
  for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
    if (const int order = minimal::compare(a[i], b[i], seen); order != 0) return order;
  }
  return threeWay(a.size(), b.size());
}

bool isSubset(void* left, void* right, int place) {
  const minimal::Handles keys = minimal::elementsOf(place == kMap ? vorn_collections_Map_keys(left) : left);
  return std::all_of(keys.begin(), keys.end(), [&](void* key) {
    if (place == kSet) return vorn_collections_HashSet_operator_in(right, key);
    void* value = nullptr;
    return vorn_collections_Map_tryGet(right, key, &value) &&
           Vorn_deepEquals(vorn_collections_Map__get(left, key), value) != 0;
  });
}

// A pair that is met again while it is compared counts as equal, so that collections may hold themselves.
struct PairInProgress {
  static thread_local std::vector<std::pair<void*, void*>> pairs;
  PairInProgress(void* left, void* right)
      : isMetAgain(std::find(pairs.begin(), pairs.end(), std::pair(left, right)) != pairs.end()) {
    pairs.emplace_back(left, right);
  }
  ~PairInProgress() { pairs.pop_back(); }
  const bool isMetAgain;
};
thread_local std::vector<std::pair<void*, void*>> PairInProgress::pairs;

}  // namespace

minimal::Handles minimal::elementsOf(void* collection) {
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
  const auto payload = [](void* box) { return getRegisteredObjectUnsafe(box)->integer; };
  if (place < kText) return threeWay(payload(left), payload(right));
  if (place == kText) return compareStringObjects(left, right);
  if (place == kSingle || (place >= kMap && seen != Seen::AsEqual)) return threeWay(left, right);
  const PairInProgress pair(left, right);
  if (pair.isMetAgain) return 0;
  if (place < kMap) return compareSequences(left, right, seen);
  return isSubset(left, right, place) && isSubset(right, left, place) ? 0 : 1;
}

bool tryReadNativeNumericValue(void* handle, NativeNumericValue& value) {
  const RegisteredObject* box = getRegisteredObjectUnsafe(handle);
  if (box == nullptr || box->kind() > ObjectKind::FloatingBox) return false;
  const bool isUnsigned = boxedTypeOf(*box) == vorn::collections::PrimitiveType::ULong;
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

int Vorn_deepEquals(void* left, void* right) { return minimal::compare(left, right, Seen::AsEqual) == 0 ? 1 : 0; }

bool Vorn_collectionObjectsEqual(void* left, void* right, bool& equal) {
  if (haveOrder(left, right)) equal = Vorn_deepEquals(left, right) != 0;
  return haveOrder(left, right);
}

bool Vorn_collectionObjectsLess(void* left, void* right, bool& less) {
  if (haveOrder(left, right)) less = minimal::compare(left, right, Seen::AsOrdered) < 0;
  return haveOrder(left, right);
}
