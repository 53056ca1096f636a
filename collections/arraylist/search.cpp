#include "collections/arraylist/search.h"

#include <vorn/collections/array_list.h>

#include <algorithm>
#include <cstdint>
#include <optional>

#include "collections/arraylist/object_cursor.h"
#include "collections/core/elements/primitive_elements.h"
#include "collections/core/elements/primitive_scan.h"
#include "collections/core/elements/primitive_values.h"
#include "collections/core/elements/storage_transitions.h"
#include "collections/core/equality/element_order.h"
#include "collections/core/equality/text_needle.h"
#include "collections/core/kinds.h"
#include "collections/core/pending_error_watch.h"
#include "collections/core/port/object_layout.h"

namespace vc = vorn::collections;

namespace vorn::collections {

namespace {

long long indexOrMinusOne(std::uint64_t position) { return static_cast<long long>(position); }
static_assert(static_cast<long long>(kNotFound) == -1);

// The value as the list's own unboxed type; false when it has another one.
bool asOwnElement(const ListData& list, void* value, BulkPrimitiveListValue& raw) {
  return objectToPrimitiveListValue(value, raw) && raw.type() == keptElementType(list);
}

// Whether a primitive list can be searched unboxed for the value. Otherwise the list is boxed storage afterwards.
bool searchesUnboxed(ListData& list, void* value, BulkPrimitiveListValue& raw) {
  if (!list.isUnboxed()) return false;
  if (asOwnElement(list, value, raw)) return true;
  materializePrimitiveList(list);
  return false;
}

enum class OperandOrder { ValueFirst, ElementFirst };

// Compares boxed elements with a value, one position at a time. The element is rooted while user code may run: it may
// remove the element from the list, and then only this frame holds it. Positions are valid at the time of the call
// only; callers re-read the size for each.
class ElementMatcher {
 public:
  ElementMatcher(ListData& list, void* value, OperandOrder order)
      : value_(value), order_(order), list_(list), text_(value), cursor_(list) {}

  // Where to go on from `index` upwards, or from below `end` downwards: past elements that differ whoever is asked.
  std::uint64_t skipUpwards(std::uint64_t index) const {
    return list_.linked ? index : text_.firstCandidate(list_.objects.data, index, list_.objects.size);
  }
  std::uint64_t skipDownwards(std::uint64_t end) const {
    return list_.linked ? end : text_.candidatesEnd(list_.objects.data, end);
  }

  // Whether the element at `index` equals the value; false once user code has raised.
  bool matches(std::uint64_t index) {
    element_ = cursor_.at(index);
    if (text_.isText() && isStringObject(element_.get())) return text_.equals(element_.get());
    const bool equal = order_ == OperandOrder::ValueFirst ? listValuesEqual(value_, element_.get())
                                                          : listValuesEqual(element_.get(), value_);
    failed_ = watch_.raised();
    return equal && !failed_;
  }

  // The element that matches() compared last.
  [[nodiscard]] void* element() const { return element_.get(); }
  [[nodiscard]] bool failed() const { return failed_; }

 private:
  void* value_;
  OperandOrder order_;
  ListData& list_;
  TextNeedle text_;
  ObjectCursor cursor_;
  RootedHandle element_;
  PendingErrorWatch watch_;
  bool failed_ = false;
};

std::uint64_t findFirstObject(const ListData& list, ElementMatcher& matcher, std::uint64_t from) {
  for (std::uint64_t i = matcher.skipUpwards(from); i < list.objectCount(); i = matcher.skipUpwards(i + 1)) {
    if (matcher.matches(i)) return i;
    if (matcher.failed()) break;
  }
  return kNotFound;
}

std::uint64_t findLastObject(const ListData& list, ElementMatcher& matcher, std::uint64_t from) {
  // Equality may have shortened the list: the walk goes on from what is its end by then.
  for (std::uint64_t end = from + 1; end > 0; --end) {
    end = matcher.skipDownwards(std::min(end, list.objectCount()));
    if (end == 0) break;
    if (matcher.matches(end - 1)) return end - 1;
    if (matcher.failed()) break;
  }
  return kNotFound;
}

// Where a search starts, or nothing when there is nothing to look at.
std::optional<std::uint64_t> searchStart(std::uint64_t size, long long start, bool last) {
  if (size == 0) return std::nullopt;
  const bool insideList = start >= 0 && static_cast<std::uint64_t>(start) < size;
  if (last) return insideList ? static_cast<std::uint64_t>(start) : size - 1;
  if (start < 0) return 0;
  return insideList ? std::optional(static_cast<std::uint64_t>(start)) : std::nullopt;
}

}  // namespace

long long countEqual(ListData& list, void* value) {
  BulkPrimitiveListValue raw;
  if (searchesUnboxed(list, value, raw)) return static_cast<long long>(countPrimitive(list, raw));
  ElementMatcher matcher(list, value, OperandOrder::ValueFirst);
  long long count = 0;
  for (std::uint64_t i = matcher.skipUpwards(0); i < list.objectCount(); i = matcher.skipUpwards(i + 1)) {
    if (matcher.matches(i)) ++count;
    if (matcher.failed()) return 0;
  }
  return count;
}

bool containsEqual(ListData& list, void* value) {
  BulkPrimitiveListValue raw;
  if (searchesUnboxed(list, value, raw)) return findFirstPrimitive(list, raw, 0) != kNotFound;
  ElementMatcher matcher(list, value, OperandOrder::ValueFirst);
  return findFirstObject(list, matcher, 0) != kNotFound;
}

bool removeEqual(ListData& list, void* value) {
  BulkPrimitiveListValue raw;
  if (searchesUnboxed(list, value, raw)) {
    const std::uint64_t position = findFirstPrimitive(list, raw, 0);
    if (position == kNotFound) return false;
    primitiveListEraseAt(list, position);
    return true;
  }
  ElementMatcher matcher(list, value, OperandOrder::ElementFirst);
  const std::uint64_t position = findFirstObject(list, matcher, 0);
  if (position >= list.objectCount() || ObjectCursor(list).at(position) != matcher.element()) return false;
  list.objectErase(position);
  return true;
}

}  // namespace vorn::collections

long long arrayListIndexOfLocked(ListData& list, void* value, long long start, bool last) {
  const auto from = vc::searchStart(list.logicalSize(), start, last);
  if (!from) return -1;
  if (list.isUnboxed()) {
    BulkPrimitiveListValue raw;
    if (!vc::asOwnElement(list, value, raw)) return -1;
    return vc::indexOrMinusOne(last ? vc::findLastPrimitive(list, raw, *from)
                                    : vc::findFirstPrimitive(list, raw, *from));
  }
  vc::ElementMatcher matcher(list, value, vc::OperandOrder::ValueFirst);
  return vc::indexOrMinusOne(last ? vc::findLastObject(list, matcher, *from)
                                  : vc::findFirstObject(list, matcher, *from));
}

long long vorn_collections_ArrayList_count(void* list, void* value) {
  if (list == nullptr) return 0;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  return vc::countEqual(data, value);
}

bool vorn_collections_ArrayList_operator_in(void* list, void* value) {
  if (list == nullptr) return false;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  return vc::containsEqual(data, value);
}

long long vorn_collections_ArrayList_indexOf(void* list, void* value, long long start) {
  if (list == nullptr) return -1;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  return arrayListIndexOfLocked(data, value, start, false);
}

long long vorn_collections_ArrayList_lastIndexOf(void* list, void* value, long long start) {
  if (list == nullptr) return -1;
  ListData& data = *getListData(list);
  const ListDataLock lock(data);
  return arrayListIndexOfLocked(data, value, start, true);
}
