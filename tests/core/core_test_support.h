// Makers and descriptions shared by the tests of the library's core.
#pragma once

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "collections/core/elements/primitive_elements.h"
#include "collections/core/elements/primitive_values.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/type_names.h"
#include "collections/core/storage/list_data.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/kinds.h"
#include "tests/support/lists.h"
#include "tests/support/runtime_test.h"

namespace vorn::tests {

inline constexpr long long kMinLong = std::numeric_limits<long long>::min();
inline constexpr long long kMaxLong = std::numeric_limits<long long>::max();
inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();

inline Kind kindNumbered(int value) { return static_cast<Kind>(value); }

inline ListData& record(const Handle& list) { return *getListData(list); }

inline RuntimeTypeName named(std::string_view name) { return internRuntimeTypeName(name); }

// A raw value of the named kind whose integer and double agree.
inline BulkPrimitiveListValue rawInteger(std::string_view name, long long value) {
  return {namedKind(name).kind(), named(name), value, static_cast<double>(value)};
}

// Puts an empty record into primitive storage under the name, without calling what is under test.
inline void makePrimitive(ListData& list, std::string_view name) {
  const NamedKind& row = namedKind(name);
  list.primitive.resetToInline(row.width);
  list.primitiveKind = row.kind();
  list.primitiveType = named(name);
}

// An untyped ArrayList in primitive storage. Every value serves as the integer and, converted, as the double.
inline Handle primitiveList(std::string_view name, std::initializer_list<long long> values = {}) {
  Handle result = object("ArrayList");
  makePrimitive(record(result), name);
  for (const long long value : values) primitiveListAppend(record(result), value, static_cast<double>(value));
  return result;
}

// The stored bits of one element.
template <class Element>
Element elementAt(const ListData& list, std::uint64_t index) {
  EXPECT_EQ(list.primitive.elementSize, sizeof(Element));
  Element element;
  std::memcpy(&element, list.primitive.data + index * sizeof(Element), sizeof(Element));
  return element;
}

// All elements of primitive storage by the integer reading.
inline std::vector<long long> integersOf(const ListData& list) {
  std::vector<long long> result;
  for (std::uint64_t i = 0; i < list.primitive.size; ++i) result.push_back(primitiveListReadI64(list, i));
  return result;
}

// A value as text: type and contents of boxes and texts, the address of everything else.
inline std::string describeValue(void* handle) {
  if (handle == nullptr) return "null";
  char buffer[96];
  if (vorn_is_object(handle) == 0) return std::string("text ") + static_cast<const char*>(handle);
  std::string result = vorn_type_name(handle);
  std::int64_t integerValue = 0;
  double floatingValue = 0;
  bool booleanValue = false;
  if (const char* characters = vorn_string_text(handle); characters != nullptr) {
    return result + " " + characters;
  } else if (vorn_unbox_floating(handle, &floatingValue) != 0) {
    std::snprintf(buffer, sizeof(buffer), " %.17g", floatingValue);
  } else if (vorn_unbox_boolean(handle, &booleanValue) != 0) {
    std::snprintf(buffer, sizeof(buffer), " %s", booleanValue ? "true" : "false");
  } else if (vorn_unbox_integer(handle, &integerValue) != 0) {
    std::snprintf(buffer, sizeof(buffer), " %" PRId64, integerValue);
  } else {
    std::snprintf(buffer, sizeof(buffer), " at %p", handle);
  }
  return result + buffer;
}

inline std::vector<std::string> describeObjects(const ListData& list) {
  std::vector<std::string> result;
  for (void* handle : handlesOf(list)) result.push_back(describeValue(handle));
  return result;
}

// A snapshot that tells the mirrors apart as well.
struct RecordSnapshot : Snapshot {
  explicit RecordSnapshot(const ListData& list)
      : Snapshot(list), mirroredIntegers(list.i64Mirror.size), mirroredDoubles(list.f64Mirror.size) {}
  bool operator==(const RecordSnapshot&) const = default;

  std::uint64_t mirroredIntegers;
  std::uint64_t mirroredDoubles;
};

// The sweep with a fresh start made before each attempt.
template <class Prepare, class Attempt, class Check>
int sweepAllocationFailures(Prepare prepare, Attempt attempt, Check check) {
  prepare();
  return sweepAllocationFailures(attempt, [&] {
    check();
    prepare();
  });
}

}  // namespace vorn::tests
