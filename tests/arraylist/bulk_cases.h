// What the tests of whole-list operations share: messages, slices with omitted bounds, one list of every storage, a
// held mutex, and a sweep over failing allocations.
#pragma once

#include <pthread.h>

#include <new>
#include <optional>

#include "tests/arraylist/list_cases.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/error_texts.h"

namespace vorn::tests {

inline constexpr const char* kAddAllError = error_texts::kAddAllSource;
inline constexpr const char* kStepError = error_texts::kSliceStepZero;
inline constexpr const char* kRangeError = error_texts::kSliceAssignmentRange;
inline constexpr const char* kSourceError = error_texts::kSliceAssignmentSource;
inline constexpr const char* kExtendedError = error_texts::kExtendedSliceCount;
inline constexpr const char* kSumError = error_texts::kSumOfNull;

// ---- Slices ---------------------------------------------------------------------------------------------------------

// A bound as the program wrote it; none when omitted. An omitted bound is passed as a number that would be wrong.
using Bound = std::optional<long long>;
inline constexpr Bound kOmitted = std::nullopt;

inline Handle slice(void* list, Bound start, Bound stop, long long step = 1) {
  void* const written = vorn_box_boolean(true);  // one of the two shared boxes
  return vorn_collections_ArrayList_slice(list, start.value_or(2), stop.value_or(2), step, start ? written : nullptr,
                                          stop ? written : nullptr);
}

inline void sliceAssign(void* list, Bound start, Bound stop, long long step, void* source) {
  void* const written = vorn_box_boolean(true);
  vorn_collections_ArrayList_sliceAssign(list, start.value_or(2), stop.value_or(2), step, start ? written : nullptr,
                                         stop ? written : nullptr, source);
}

// The positions that start:stop:step selects of n elements, for bounds and steps of a moderate size.
inline std::vector<std::size_t> slicePositions(long long n, Bound start, Bound stop, long long step) {
  const long long lowest = step > 0 ? 0 : -1;
  const long long highest = step > 0 ? n : n - 1;
  const auto resolve = [&](Bound bound, long long omitted) {
    if (!bound) return omitted;
    const long long position = *bound < 0 ? *bound + n : *bound;
    return position < lowest ? lowest : position > highest ? highest : position;
  };
  const long long first = resolve(start, step > 0 ? 0 : n - 1);
  const long long end = resolve(stop, step > 0 ? n : -1);
  std::vector<std::size_t> positions;
  for (long long i = first; step > 0 ? i < end : i > end; i += step) positions.push_back(static_cast<std::size_t>(i));
  return positions;
}

// ---- Lists ----------------------------------------------------------------------------------------------------------

// The class of an object without its module and its type arguments.
inline std::string familyOf(void* handle) {
  std::string name = vorn_type_name(handle);
  name = name.substr(0, name.find('<'));
  return name.substr(name.rfind('.') + 1);
}

// A list of the class filled with Int boxes.
inline Handle intList(const std::string& type, const std::vector<long long>& values) {
  Handle result = object(type);
  for (const long long value : values) vorn_collections_ArrayList_add(result, integer("Int", value));
  return result;
}

// A list of the class filled with unboxed integers (doubles) of an element type, unchecked.
inline Handle rawList(const std::string& type, const char* element, const std::vector<long long>& values) {
  Handle result = object(type);
  for (const long long value : values) vorn_collections_ArrayList_addPrimitiveI64(result, value, element);
  return result;
}
inline Handle rawDoubles(const std::string& type, const char* element, const std::vector<double>& values) {
  Handle result = object(type);
  for (const double value : values) vorn_collections_ArrayList_addPrimitiveDouble(result, value, element);
  return result;
}

// A list with the palette of an element type.
inline Handle paletteList(bool linked, bool synchronised, const std::string& element) {
  const Palette palette = paletteOf(element);
  Handle result = object(className(linked, synchronised, element));
  for (const PaletteEntry& entry : palette) vorn_collections_ArrayList_add(result, entry.value);
  return result;
}

// Runs check(list) for a list of every class and element type: unboxed of each kind, boxed and linked.
template <class Check>
void forEachList(Check check) {
  std::vector<std::string> elements = primitiveNames();
  elements.insert(elements.end(), {"", "app.Item"});
  for (const bool linked : {false, true}) {
    for (const bool synchronised : {false, true}) {
      for (const std::string& element : elements) {
        SCOPED_TRACE(className(linked, synchronised, element));
        const Handle target = paletteList(linked, synchronised, element);
        check(target);
      }
    }
  }
}

// The stored handles of a boxed list, for comparison only.
inline std::vector<const void*> handlesOf(void* list) { return Snapshot(list).handles; }

// ---- Failures -------------------------------------------------------------------------------------------------------

// The same for an operation on a list, which each failure must leave as it was.
template <class Operation>
int sweepFailuresOnList(void* receiver, Operation operation) {
  const Snapshot before(receiver);
  const Elements elements = elementsOf(receiver);
  return sweepAllocationFailures(operation, [&] {
    EXPECT_UNTOUCHED(receiver, before);
    EXPECT_EQ(elementsOf(receiver), elements);
  });
}

}  // namespace vorn::tests
