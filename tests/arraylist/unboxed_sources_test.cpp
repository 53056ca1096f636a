// Unboxed elements go from one collection to another without boxes, and end as if each had been read, boxed and stored
// one after the other. Every storage as source is held against a tuple of its boxes, which takes the other way.
#include "tests/arraylist/bulk_cases.h"
#include "tests/support/sequences.h"
#include "tests/support/sources.h"

namespace vorn::tests {
namespace {

class UnboxedSources : public RuntimeTest {};

// What a list is, all but for the identity of its boxes.
struct Outcome {
  Elements errors;
  Elements elements;
  std::string storage;
  std::string declared;
  int kind = 0;
  std::vector<unsigned char> bytes;
  friend bool operator==(const Outcome&, const Outcome&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
    return out << outcome.storage << " of kind " << outcome.kind << " declared \"" << outcome.declared << "\" "
               << ::testing::PrintToString(outcome.elements) << " after " << ::testing::PrintToString(outcome.errors);
  }
};

Outcome outcomeOf(void* list) {
  Outcome outcome;
  outcome.errors = takeErrors();
  EXPECT_AT_REST(list);
  outcome.elements = elementsOf(list);
  outcome.storage = storageOf(list);
  outcome.declared = declaredTypeOf(list);
  outcome.kind = static_cast<int>(kindOf(list));
  outcome.bytes = Snapshot(list).bytes;
  return outcome;
}

using Maker = Handle (*)(const std::string& element, bool linked, bool synchronised);

// Lists of a declared type by how they are filled.
struct Filling {
  const char* name;
  Maker make;
};
const Filling kFillings[] = {
    {"empty", [](const std::string& element, bool linked,
                 bool synchronised) { return object(className(linked, synchronised, element)); }},
    {"palette",
     [](const std::string& element, bool linked, bool synchronised) {
       return paletteList(linked, synchronised, element == "Object" || element == "app.Foo" ? "" : element);
     }},
    {"boxed",
     [](const std::string& element, bool linked, bool synchronised) {
       Handle list = paletteList(linked, synchronised, element == "Object" || element == "app.Foo" ? "" : element);
       vorn_collections_ArrayList_operator_in(list, nullptr);
       return list;
     }},
    {"raw Ints",
     [](const std::string& element, bool linked, bool synchronised) {
       Handle list = object(className(linked, synchronised, element));
       for (const int value : {300, -1, 7, 70000}) vorn_collections_ArrayList_addInt(list, value);
       return list;
     }},
    {"raw Chars",
     [](const std::string& element, bool linked, bool synchronised) {
       Handle list = object(className(linked, synchronised, element));
       for (const int value : {65, 66, 67}) vorn_collections_ArrayList_addPrimitiveI64(list, value, "Char");
       return list;
     }},
};

std::vector<std::string> declaredTypes() {
  std::vector<std::string> types = primitiveNames();
  types.insert(types.end(), {"", "Object", "app.Item", "app.Foo"});
  return types;
}

// Runs operation(target, source) with every source and its boxes on equal targets of every kind.
template <class Operation>
void compareRoutes(Operation operation) {
  std::vector<SourceCase> sources = unboxedSources();
  if (onStressHeap()) sources.resize(20);
  int compared = 0;
  for (const std::string& element : declaredTypes()) {
    for (const Filling& filling : kFillings) {
      for (const int flags : {0, 1, 2}) {
        // Every allocation collects there, with all sources alive.
        if (onStressHeap() && (flags != 0 || (element != "Char" && element != "Long"))) continue;
        for (const SourceCase& source : sources) {
          const Handle target = filling.make(element, flags == 1, flags == 2);
          const Handle other = filling.make(element, flags == 1, flags == 2);
          takeErrors();
          const long long size = vorn_collections_Tuple_size(source.boxes);
          operation(target, source.source, size);
          const Outcome outcome = outcomeOf(target);
          operation(other, source.boxes, size);
          ASSERT_EQ(outcome, outcomeOf(other))
              << className(flags == 1, flags == 2, element) << ", " << filling.name << ", from " << source.name;
          ++compared;
        }
      }
    }
  }
  EXPECT_GT(compared, onStressHeap() ? 150 : 5000);
}

TEST_F(UnboxedSources, AddAll_IsTheSameAsFromBoxes) {
  compareRoutes([](void* target, void* source, long long) { vorn_collections_ArrayList_addAll(target, source); });
}

TEST_F(UnboxedSources, AddAllAt_IsTheSameAsFromBoxes) {
  compareRoutes([](void* target, void* source, long long) { vorn_collections_ArrayList_addAllAt(target, 1, source); });
}

TEST_F(UnboxedSources, SliceAssign_IsTheSameAsFromBoxes) {
  compareRoutes([](void* target, void* source, long long size) { sliceAssign(target, 0, size, 1, source); });
}

TEST_F(UnboxedSources, SliceAssignBackward_IsTheSameAsFromBoxes) {
  compareRoutes(
      [](void* target, void* source, long long size) { sliceAssign(target, size - 1, kOmitted, -1, source); });
}

TEST_F(UnboxedSources, SliceAssignOfAnotherCount_IsTheSameAsFromBoxes) {
  compareRoutes([](void* target, void* source, long long size) { sliceAssign(target, 1, size, 1, source); });
}

// What compareRoutes goes by, once by hand.
TEST_F(UnboxedSources, ElementsUnderAForeignName_ComeAsTheirBoxesAre) {
  const Handle target = object("ArrayList");
  vorn_collections_ArrayList_addAll(target, rawList("ArrayList", "Foo", {5}));
  EXPECT_EQ(storageOf(target), "Int");
  EXPECT_EQ(vorn_collections_ArrayList_indexOf(target, integer("Int", 5), 0), 0);
}

// ---- The list itself ------------------------------------------------------------------------------------------------

// Every list added to itself, or assigned to a part of itself, beside an equal list that takes the boxes.
template <class Operation>
void compareSelf(Operation operation) {
  for (const bool synchronised : {false, true}) {
    const std::vector<SourceCase> lists = unboxedLists(synchronised);
    const std::vector<SourceCase> equals = unboxedLists(synchronised);
    for (std::size_t i = 0; i < lists.size(); ++i) {
      const long long size = vorn_collections_Tuple_size(lists[i].boxes);
      operation(lists[i].source, lists[i].source, size);
      const Outcome outcome = outcomeOf(lists[i].source);
      operation(equals[i].source, equals[i].boxes, size);
      EXPECT_EQ(outcome, outcomeOf(equals[i].source)) << lists[i].name;
    }
  }
}

TEST_F(UnboxedSources, TheListItself_IsTakenAsItWas) {
  compareSelf([](void* target, void* source, long long) { vorn_collections_ArrayList_addAll(target, source); });
  compareSelf([](void* target, void* source, long long) { vorn_collections_ArrayList_addAllAt(target, 1, source); });
  compareSelf([](void* target, void* source, long long) { sliceAssign(target, kOmitted, kOmitted, -1, source); });
  compareSelf([](void* target, void* source, long long) { sliceAssign(target, 1, 1, 1, source); });
}

}  // namespace
}  // namespace vorn::tests
