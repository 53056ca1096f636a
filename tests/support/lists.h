// Lists for tests: makers of every class and storage, their elements in readable form, and whole records to compare
// before and after what must change nothing.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/support/allocation_failure.h"
#include "tests/support/held_mutex.h"
#include "tests/support/runtime_test.h"
#include "tests/support/values.h"

namespace vorn::tests {

// ---- Makers ---------------------------------------------------------------------------------------------------------

// A list class by its two flags and its element type ("" for an untyped list).
std::string className(bool linked, bool synchronised, const std::string& element = "");

// A list of the class filled with Int boxes.
Handle intList(const std::string& type, const std::vector<long long>& values);

// A list of the class filled with unboxed integers (doubles) of an element type, unchecked.
Handle rawList(const std::string& type, const char* element, const std::vector<long long>& values);
Handle rawDoubles(const std::string& type, const char* element, const std::vector<double>& values);

// A list with the palette of an element type.
Handle paletteList(bool linked, bool synchronised, const std::string& element);

// Runs check(list) for a list of every class and element type: unboxed of each kind, boxed and linked.
void forEachList(const std::function<void(const Handle& list)>& check);

// ---- Contents -------------------------------------------------------------------------------------------------------

// The elements of a list as `operator_index` gives them.
std::vector<std::string> elementsOf(void* list);

// The stored handles of a boxed list, read from the record itself.
std::vector<void*> handlesOf(const ListData& data);
std::vector<const void*> handlesOf(void* list);

// The live storage in words: "Int", "Char", ... for unboxed elements kept under that name and its kind, "objects" or
// "linked".
std::string storageOf(void* list);

ListData::PrimitiveKind kindOf(void* list);
std::string declaredTypeOf(void* list);

// Everything that a caller can tell apart in a list, to be compared before and after what must change nothing. Room that
// was made is no change, nor is what a data pointer has mirrored. Handles are kept for comparison only.
struct Snapshot {
  explicit Snapshot(void* list) : Snapshot(*getListData(list)) {}
  explicit Snapshot(const ListData& data);

  bool operator==(const Snapshot&) const = default;
  friend std::ostream& operator<<(std::ostream& out, const Snapshot& snapshot);

  int kind = 0;
  int flags = 0;
  std::string elementType;
  std::string primitiveType;
  std::uint64_t size = 0;
  std::vector<unsigned char> bytes;
  std::vector<void*> handles;
};

// ---- Locks ----------------------------------------------------------------------------------------------------------

// Whether nobody holds the list's lock. True for an unsynchronised list.
bool isUnlocked(void* list);

class HeldMutex : public HeldRecordMutex<ListData> {
 public:
  explicit HeldMutex(void* list) : HeldRecordMutex(*getListData(list)) {}
};

// The list is whole and nobody holds its lock.
#define EXPECT_AT_REST(list)                      \
  do {                                            \
    EXPECT_VALID_LIST(list);                      \
    EXPECT_TRUE(::vorn::tests::isUnlocked(list)); \
  } while (false)

// The list is as it was, whole, and nobody holds its lock.
#define EXPECT_UNTOUCHED(list, snapshot)                  \
  do {                                                    \
    EXPECT_EQ(::vorn::tests::Snapshot(list), (snapshot)); \
    EXPECT_AT_REST(list);                                 \
  } while (false)

// Runs an operation on a list with its first, second, ... allocation failing (see sweepAllocationFailures); each failure
// must leave the list as it was.
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
