// Searches by value.
#include <vorn/collections/array.h>

#include <algorithm>

#include "collections/array/array_data.h"
#include "collections/array/slot_values.h"
#include "collections/core/array_slot_kind.h"
#include "collections/core/equality/text_needle.h"
#include "collections/core/kernels/search_kernels.h"
#include "collections/core/pending_error_watch.h"
#include "collections/core/port/object_layout.h"

namespace vc = vorn::collections;

namespace {

// Visits positions of an object array while user equality may change it: the size is read again for each, and an error
// that equality raises ends the search.
class SlotMatcher {
 public:
  SlotMatcher(const ArrayData& array, void* value) : array_(array), value_(value), text_(value) {}

  // Where to go on from `index` upwards, or from below `end` downwards: past slots that differ whoever is asked. User
  // code may have given the array other slots, and no handles.
  std::uint64_t skipUpwards(std::uint64_t index) const {
    return array_.isUnboxed() ? index : text_.firstCandidate(array_.objects.data, index, array_.objects.size);
  }
  std::uint64_t skipDownwards(std::uint64_t end) const {
    return array_.isUnboxed() ? end : text_.candidatesEnd(array_.objects.data, end);
  }

  // Whether the slot at `index` equals the value; false once user code has raised.
  bool matches(std::uint64_t index) {
    if (text_.isText() && !array_.isUnboxed() && isStringObject(array_.objects.data[index])) {
      return text_.equals(array_.objects.data[index]);
    }
    const bool equal = arraySlotEqualsObject(array_, index, value_);
    failed_ = watch_.raised();
    return equal && !failed_;
  }
  [[nodiscard]] bool failed() const { return failed_; }

 private:
  const ArrayData& array_;
  void* value_;
  vc::TextNeedle text_;
  vc::PendingErrorWatch watch_;
  bool failed_ = false;
};

std::uint64_t findFirst(const ArrayData& array, void* value, std::uint64_t from) {
  if (array.isUnboxed()) {
    vc::SlotScalar scalar;
    if (value == nullptr || !vc::readSlotScalar(array, value, scalar)) return vc::kNotFound;
    return vc::findFirstElement(vc::primitiveKindOf(array.slotKind), array.primitive.data, from, array.primitive.size,
                                scalar.integer, scalar.floating);
  }
  SlotMatcher matcher(array, value);
  for (std::uint64_t i = from; !matcher.failed(); ++i) {
    i = matcher.skipUpwards(i);
    if (i >= arrayLogicalSize(array)) break;
    if (matcher.matches(i)) return i;
  }
  return vc::kNotFound;
}

// Downwards from below `end`.
std::uint64_t findLast(const ArrayData& array, void* value, std::uint64_t end) {
  if (array.isUnboxed()) {
    vc::SlotScalar scalar;
    if (value == nullptr || !vc::readSlotScalar(array, value, scalar)) return vc::kNotFound;
    return vc::findLastElement(vc::primitiveKindOf(array.slotKind), array.primitive.data, end, scalar.integer,
                               scalar.floating);
  }
  SlotMatcher matcher(array, value);
  while (end > 0 && !matcher.failed()) {
    end = matcher.skipDownwards(std::min(end, arrayLogicalSize(array)));
    if (end == 0) break;
    --end;
    if (matcher.matches(end)) return end;
  }
  return vc::kNotFound;
}

std::uint64_t countEqual(const ArrayData& array, void* value) {
  if (array.isUnboxed()) {
    vc::SlotScalar scalar;
    if (value == nullptr || !vc::readSlotScalar(array, value, scalar)) return 0;
    return vc::countElements(vc::primitiveKindOf(array.slotKind), array.primitive.data, array.primitive.size,
                             scalar.integer, scalar.floating);
  }
  SlotMatcher matcher(array, value);
  std::uint64_t count = 0;
  for (std::uint64_t i = 0; !matcher.failed(); ++i) {
    i = matcher.skipUpwards(i);
    if (i >= arrayLogicalSize(array)) break;
    if (matcher.matches(i)) ++count;
  }
  return matcher.failed() ? 0 : count;
}

}  // namespace

long long vorn_collections_Array_count(void* array, void* value) {
  if (array == nullptr) return 0;
  const ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  return static_cast<long long>(countEqual(data, value));
}

bool vorn_collections_Array_operator_in(void* array, void* value) {
  if (array == nullptr) return false;
  const ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  return findFirst(data, value, 0) != vc::kNotFound;
}

// A negative start begins at the first element: here it does not count from the end.
long long vorn_collections_Array_indexOf(void* array, void* value, long long start) {
  if (array == nullptr) return -1;
  const ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  const auto from = static_cast<std::uint64_t>(std::max(start, 0LL));
  return static_cast<long long>(findFirst(data, value, std::min(from, arrayLogicalSize(data))));
}

// A negative start begins at the last element.
long long vorn_collections_Array_lastIndexOf(void* array, void* value, long long start) {
  if (array == nullptr) return -1;
  const ArrayData& data = *getArrayData(array);
  const ArrayDataLock lock(data);
  const std::uint64_t size = arrayLogicalSize(data);
  const bool fromEnd = start < 0 || static_cast<std::uint64_t>(start) >= size;
  return static_cast<long long>(findLast(data, value, fromEnd ? size : static_cast<std::uint64_t>(start) + 1));
}
