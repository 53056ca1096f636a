// Sorts that run user code: orderings that decide, raise, contradict themselves or change the list.
#include <algorithm>
#include <functional>
#include <set>

#include "tests/arraylist/sort_cases.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

Handle rankedList(const std::string& type, const std::vector<long long>& ids) {
  Handle result = object(type);
  for (const long long id : ids) vorn_collections_ArrayList_add(result, ranked(id));
  return result;
}

TEST_F(Sort, UserOrdering_Decides) {
  for (const bool linked : {false, true}) {
    for (const bool synchronised : {false, true}) {
      const std::string type = className(linked, synchronised);
      const Handle target = rankedList(type, {3, 1, 4, 1, 5, 9, 2, 6});
      vorn_collections_ArrayList_sort(target);
      EXPECT_EQ(elementsOf(target), (Elements{"Ranked 1", "Ranked 1", "Ranked 2", "Ranked 3", "Ranked 4", "Ranked 5",
                                              "Ranked 6", "Ranked 9"}));
      const Handle fresh = rankedList(type, {2, 3, 1});
      const ScopedOrdering descending([](void* self, void* other) {
        return idOf(self) > idOf(other) ? -1 : idOf(self) < idOf(other) ? 1 : 0;
      });
      vorn_collections_ArrayList_sort(fresh);
      EXPECT_EQ(elementsOf(fresh), (Elements{"Ranked 3", "Ranked 2", "Ranked 1"}));
      EXPECT_AT_REST(fresh);
    }
  }
}

TEST_F(Sort, UserOrderingThatRaises_LeavesTheListUnchanged) {
  for (const bool linked : {false, true}) {
    for (const bool synchronised : {false, true}) {
      for (const int raisingCall : {1, 2, 5, 9}) {
        SCOPED_TRACE(className(linked, synchronised) + " call " + std::to_string(raisingCall));
        const Handle target = rankedList(className(linked, synchronised), {8, 3, 7, 1, 6, 2, 5, 4});
        const Snapshot before(target);
        int calls = 0;
        const ScopedOrdering ordering([&](void* self, void* other) {
          if (++calls == raisingCall) vorn_raise("Exception", "from ordering");
          return idOf(self) < idOf(other) ? -1 : 1;
        });
        vorn_collections_ArrayList_sort(target);
        EXPECT_RAISED("Exception: from ordering");
        EXPECT_UNTOUCHED(target, before);
        calls = 0;
        const Handle copy = vorn_collections_ArrayList_sortNew(target);
        EXPECT_RAISED("Exception: from ordering");
        EXPECT_UNTOUCHED(target, before);
        if (copy.get() != nullptr) EXPECT_AT_REST(copy);
      }
    }
  }
}

TEST_F(Sort, UserOrderingThatRaisesOnTopOfAnOlderError_LeavesTheListUnchanged) {
  for (const bool linked : {false, true}) {
    const Handle target = rankedList(className(linked, true), {8, 3, 7, 1, 6, 2, 5, 4});
    const Snapshot before(target);
    int calls = 0;
    const ScopedOrdering ordering([&](void* self, void* other) {
      if (++calls == 3) vorn_raise("Exception", "from ordering");
      return idOf(self) < idOf(other) ? -1 : 1;
    });
    vorn_raise("Exception", "older");
    vorn_collections_ArrayList_sort(target);
    EXPECT_EQ(takeErrors(), (Elements{"Exception: older", "Exception: from ordering"}));
    EXPECT_UNTOUCHED(target, before);
  }
}

TEST_F(Sort, AnOlderErrorAlone_StopsNothing) {
  const Handle target = rankedList("ArrayList", {3, 1, 2});
  vorn_raise("Exception", "older");
  vorn_collections_ArrayList_sort(target);
  EXPECT_RAISED("Exception: older");
  EXPECT_EQ(elementsOf(target), (Elements{"Ranked 1", "Ranked 2", "Ranked 3"}));
}

TEST_F(Sort, UserOrderingThatDeclaresTheListAnew_PutsNoForeignElementsBack) {
  for (const bool linked : {false, true}) {
    const Handle target = rankedList(className(linked, true), {8, 3, 7, 1, 6, 2, 5, 4});
    int calls = 0;
    const ScopedOrdering ordering([&](void* self, void* other) {
      if (++calls == 4) {
        vorn_collections_ArrayList_prepareIntData(target, 8);
        for (int i = 0; i < 8; ++i) vorn_collections_ArrayList_add(target, integer("Int", i));
      }
      return idOf(self) < idOf(other) ? -1 : 1;
    });
    vorn_collections_ArrayList_sort(target);
    EXPECT_GE(calls, 4);
    EXPECT_EQ(elementsOf(target), (Elements{"Int 0", "Int 1", "Int 2", "Int 3", "Int 4", "Int 5", "Int 6", "Int 7"}));
    EXPECT_AT_REST(target);
  }
}

TEST_F(Sort, AListThatHoldsItself_IsSorted) {
  for (const char* type : {"ArrayListSync", "LinkedListSync"}) {
    const Handle target = object(type);
    const Handle other = list("ArrayListSync", {string("x")});
    vorn_collections_ArrayList_add(target, target);
    vorn_collections_ArrayList_add(target, other);
    vorn_collections_ArrayList_sort(target);
    EXPECT_EQ(vorn_collections_ArrayList_size(target), 2) << type;
    EXPECT_AT_REST(target);
  }
}

TEST_F(Sort, UserOrderingThatClearsTheList_LeavesAValidRecord) {
  for (const bool linked : {false, true}) {
    for (const int clearingCall : {1, 4, 9}) {
      const Handle target = rankedList(className(linked, false), {8, 3, 7, 1, 6, 2, 5, 4});
      int calls = 0;
      const ScopedOrdering ordering([&](void* self, void* other) {
        if (++calls == clearingCall) {
          vorn_collections_ArrayList_clear(target);
          vorn_heap_collect();
        }
        return idOf(self) < idOf(other) ? -1 : idOf(self) > idOf(other) ? 1 : 0;
      });
      vorn_collections_ArrayList_sort(target);
      EXPECT_GE(calls, clearingCall);
      EXPECT_AT_REST(target);
      for (const std::string& element : elementsOf(target)) EXPECT_EQ(element.substr(0, 7), "Ranked ");
    }
  }
}

TEST_F(Sort, UserOrderingThatAddsToTheList_LeavesAValidRecord) {
  for (const bool linked : {false, true}) {
    const Handle target = rankedList(className(linked, false), {8, 3, 7, 1, 6, 2, 5, 4});
    int calls = 0;
    const ScopedOrdering ordering([&](void* self, void* other) {
      const int order = idOf(self) < idOf(other) ? -1 : idOf(self) > idOf(other) ? 1 : 0;
      if (++calls <= 20) vorn_collections_ArrayList_add(target, ranked(100 + calls));
      return order;
    });
    vorn_collections_ArrayList_sort(target);
    EXPECT_AT_REST(target);
    for (const std::string& element : elementsOf(target)) EXPECT_EQ(element.substr(0, 7), "Ranked ");
  }
}

TEST_F(Sort, UserOrderingThatUnboxesTheList_LeavesAValidRecord) {
  const Handle target = rankedList("ArrayList", {3, 1, 2, 5, 4});
  bool changed = false;
  const ScopedOrdering ordering([&](void* self, void* other) {
    const int order = idOf(self) < idOf(other) ? -1 : idOf(self) > idOf(other) ? 1 : 0;
    if (!changed) {
      changed = true;
      vorn_collections_ArrayList_clear(target);
      for (int i = 0; i < 5; ++i) vorn_collections_ArrayList_addInt(target, i);
    }
    return order;
  });
  vorn_collections_ArrayList_sort(target);
  EXPECT_TRUE(changed);
  EXPECT_AT_REST(target);
  elementsOf(target);
}

TEST_F(Sort, ContradictoryUserOrdering_StillGivesAPermutation) {
  for (const bool linked : {false, true}) {
    for (const int count : {5, 20, onStressHeap() ? 24 : 300}) {
      for (const int answer : {-1, 1, 0}) {
        const Handle target = rankedList(className(linked, false), scrambled(count, 1000));
        std::vector<const void*> before = handlesOf(target);
        int calls = 0;
        const ScopedOrdering ordering([&](void*, void*) { return answer != 0 ? answer : (++calls % 3) - 1; });
        vorn_collections_ArrayList_sort(target);
        std::vector<const void*> after = handlesOf(target);
        std::sort(before.begin(), before.end());
        std::sort(after.begin(), after.end());
        EXPECT_EQ(after, before);
        EXPECT_AT_REST(target);
      }
    }
  }
}

}  // namespace
}  // namespace vorn::tests
