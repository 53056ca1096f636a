// Unboxed elements that arrays take from other collections: every storage as source against a tuple of its boxes.
#include "tests/array/array_cases.h"
#include "tests/support/sequences.h"
#include "tests/support/sources.h"

namespace vorn::tests {
namespace {

class ArrayUnboxedSources : public RuntimeTest {};

struct Outcome {
  Elements errors;
  Elements items;
  std::string elementType;
  std::vector<unsigned char> bytes;
  friend bool operator==(const Outcome&, const Outcome&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
    return out << outcome.elementType << " " << ::testing::PrintToString(outcome.items) << " "
               << ::testing::PrintToString(outcome.bytes) << " after " << ::testing::PrintToString(outcome.errors);
  }
};

Outcome outcomeOf(void* array) {
  Outcome outcome;
  outcome.errors = takeErrors();
  if (array == nullptr) return outcome;
  EXPECT_ARRAY_AT_REST(array);
  outcome.items = itemsOf(array);
  outcome.elementType = recordOf(array).elementType.get();
  outcome.bytes = ArrayState(array).bytes;
  return outcome;
}

// Runs operation(array, source, its size) with every source and its boxes on equal arrays of every type; it gives the
// array to look at.
template <class Operation>
void compareRoutes(const std::vector<SourceCase>& sources, Operation operation) {
  std::vector<std::string> elements = primitiveNames();
  elements.insert(elements.end(), {"Object", "String", "app.Item"});
  for (const std::string& element : elements) {
    for (const bool synchronised : {false, true}) {
      if (onStressHeap() && (synchronised || element > "D")) continue;
      for (const SourceCase& source : sources) {
        const long long size = vorn_collections_Tuple_size(source.boxes);
        const Handle target = newArray(arrayType(element, synchronised), size + 1);
        const Handle other = newArray(arrayType(element, synchronised), size + 1);
        const Handle result = operation(target, source.source, size);
        const Outcome outcome = outcomeOf(result);
        const Handle otherResult = operation(other, source.boxes, size);
        ASSERT_EQ(outcome, outcomeOf(otherResult)) << arrayType(element, synchronised) << " from " << source.name;
      }
    }
  }
}

TEST_F(ArrayUnboxedSources, SliceAssign_IsTheSameAsFromBoxes) {
  compareRoutes(unboxedSources(), [](const Handle& array, void* source, long long) {
    arraySliceAssign(array, 1, kOmitted, 1, source);
    return array;
  });
}

TEST_F(ArrayUnboxedSources, SliceAssignBackward_IsTheSameAsFromBoxes) {
  compareRoutes(unboxedSources(), [](const Handle& array, void* source, long long size) {
    arraySliceAssign(array, size - 1, kOmitted, -1, source);
    return array;
  });
}

TEST_F(ArrayUnboxedSources, Concat_IsTheSameAsFromBoxes) {
  compareRoutes(unboxedSources(), [](const Handle& array, void* source, long long) {
    return Handle(vorn_collections_Array_concat(array, source));
  });
}

TEST_F(ArrayUnboxedSources, CopyCtorOfAList_IsTheSameAsFromBoxes) {
  std::vector<SourceCase> lists = unboxedLists(false);
  for (const std::vector<SourceCase>& more : {unboxedLists(true), unboxedImmutables()}) {
    lists.insert(lists.end(), more.begin(), more.end());
  }
  compareRoutes(lists, [](const Handle& array, void* source, long long) {
    vorn_collections_Array_copyCtor(array, source);
    return array;
  });
}

TEST_F(ArrayUnboxedSources, TheArrayItself_IsTakenAsItWas) {
  for (const char* type : {"Array<Int>", "ArraySync<Int>", "Array<Object>"}) {
    const Handle array = intArray(type, {1, 2, 3});
    arraySliceAssign(array, kOmitted, kOmitted, -1, array);
    EXPECT_EQ(integersOf(array), (Integers{3, 2, 1}));
    const Handle both = vorn_collections_Array_concat(array, array);
    EXPECT_EQ(integersOf(both), (Integers{3, 2, 1, 3, 2, 1}));
  }
}

}  // namespace
}  // namespace vorn::tests
