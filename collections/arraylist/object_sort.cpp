#include "collections/arraylist/object_sort.h"

#include <algorithm>
#include <cstring>

#include "collections/arraylist/object_cursor.h"
#include "collections/core/equality/element_order.h"
#include "collections/core/kernels/sort/introsort.h"
#include "collections/core/pending_error_watch.h"
#include "collections/core/port/comparison.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/roots.h"
#include "collections/core/scratch.h"
#include "collections/core/storage/list_data.h"

namespace vorn::collections {

namespace {

// Up to here numbers sort stably and on the stack.
constexpr std::uint64_t kFewNumbers = 32;

struct NumberedHandle {
  NativeNumericValue number;
  void* handle;
};

// Reads every element's number; false at the first that has none.
bool readNumbers(const SmallObjectVector& objects, NumberedHandle* pairs) {
  for (std::uint64_t i = 0; i < objects.size; ++i) {
    pairs[i] = {{}, objects.data[i]};
    if (!tryReadNativeNumericValue(objects.data[i], pairs[i].number)) return false;
  }
  return true;
}

bool numberLess(const NumberedHandle& left, const NumberedHandle& right) {
  return compareNativeNumericValuesForSort(left.number, right.number) < 0;
}

// Puts the boxes themselves into the order of their numbers. Comparing numbers runs no user code and allocates nothing, so
// that no handle is lost that stands in the pairs alone meanwhile.
void writeBack(const NumberedHandle* pairs, SmallObjectVector& objects) {
  for (std::uint64_t i = 0; i < objects.size; ++i) objects.data[i] = pairs[i].handle;
}

// False, with nothing changed, when an element is not a number.
bool sortFewNumbers(SmallObjectVector& objects) {
  NumberedHandle pairs[kFewNumbers] = {};
  if (!readNumbers(objects, pairs)) return false;
  insertionSort(pairs, objects.size, numberLess);
  writeBack(pairs, objects);
  return true;
}

bool sortManyNumbers(SmallObjectVector& objects) {
  // Most lists that are not numeric show it at once, before a buffer is made.
  NativeNumericValue first{};
  if (!tryReadNativeNumericValue(objects.data[0], first)) return false;
  RootedVector<NumberedHandle> pairs;
  pairs->resize(objects.size);
  if (!readNumbers(objects, pairs->data())) return false;
  introsort(pairs->data(), objects.size, numberLess);
  writeBack(pairs->data(), objects);
  return true;
}

// A String with the first sixteen bytes of its text as numbers, which are ordered as the bytes are: shorter texts have
// zeros there. Most pairs are told apart by them, without a look at either object.
struct TextKey {
  std::uint64_t first;
  std::uint64_t second;
  void* string;
};

TextKey textKeyOf(void* string) {
  std::uint64_t start[2];
  std::memcpy(start, static_cast<const StringObject*>(string)->text, sizeof(start));
  return {__builtin_bswap64(start[0]), __builtin_bswap64(start[1]), string};
}

bool textLess(const TextKey& left, const TextKey& right) {
  if (left.first != right.first) return left.first < right.first;
  if (left.second != right.second) return left.second < right.second;
  return compareStringObjects(left.string, right.string) < 0;
}

// Sorts Strings, whose order is that of their bytes and runs no user code; false, with nothing changed, when an element
// is something else. The keys are rooted while the handles are written back, since some then stand nowhere else.
bool sortStrings(void** handles, std::uint64_t count) {
  if (!std::all_of(handles, handles + count, isStringObject)) return false;
  constexpr std::size_t kFewTexts = 32;
  Scratch<TextKey, kFewTexts> keys(count);
  std::transform(handles, handles + count, keys.data(), textKeyOf);
  introsort(keys.data(), count, textLess);
  const RootedRange root(keys.data(), count * sizeof(TextKey));
  std::transform(keys.data(), keys.data() + count, handles, [](const TextKey& key) { return key.string; });
  return true;
}

// Sorts a copy, because user code may change the list meanwhile, and puts back as much as the list then has room for:
// nothing where its elements are unboxed by then. Nor when the list was declared anew with another element type, which
// need not take these elements.
void sortByElementOrder(ListData& list) {
  const RuntimeTypeName elementType = list.elementType;
  HandleVector handles;
  list.copyObjectsTo(*handles);
  if (!sortHandles(handles->data(), handles->size())) return;
  if (list.elementType != elementType) return;
  ObjectCursor cursor(list);
  const std::uint64_t count = std::min<std::uint64_t>(handles->size(), list.objectCount());
  for (std::uint64_t i = 0; i < count; ++i) cursor.replace(i, (*handles)[i]);
}

}  // namespace

bool sortHandles(void** handles, std::uint64_t count) {
  if (sortStrings(handles, count)) return true;
  const PendingErrorWatch watch;
  bool failed = false;
  introsort(handles, count, [&](void* left, void* right) {
    if (failed) return false;
    const bool less = compareListValues(left, right) < 0;
    failed = watch.raised();
    return less && !failed;
  });
  return !failed;
}

void sortHandlesThroughErrors(void** handles, std::uint64_t count) {
  if (sortStrings(handles, count)) return;
  introsort(handles, count, [](void* left, void* right) { return compareListValues(left, right) < 0; });
}

void sortObjects(ListData& list) {
  if (list.objectCount() < 2) return;
  if (!list.linked) {
    if (list.objects.size <= kFewNumbers ? sortFewNumbers(list.objects) : sortManyNumbers(list.objects)) return;
  }
  sortByElementOrder(list);
}

}  // namespace vorn::collections
