// Vorn_deepEquals and the equality half of the collection comparison.
#include <cmath>
#include <limits>

#include "collections/core/port/comparison.h"
#include "collections/core/port/object_layout.h"
#include "tests/runtime/comparisons.h"
#include "tests/support/held_mutex.h"
#include "tests/support/runtime_test.h"
#include "tests/support/threads.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

using Equality = RuntimeTest;

TEST_F(Equality, Identity_ComesFirst) {
  EXPECT_TRUE(equals(nullptr, nullptr));
  const Handle nan = floating("Double", std::nan(""));
  EXPECT_TRUE(equals(nan, nan));
  const Handle object = plain(1);
  EXPECT_TRUE(equals(object, object));
}

TEST_F(Equality, Null_EqualsOnlyNull) {
  for (const Handle& handle :
       {integer("Int", 0), boolean(false), string(""), text(""), object("ArrayList"), hooked(0)}) {
    EXPECT_FALSE(equals(handle, nullptr)) << vorn_type_name(handle);
  }
}

TEST_F(Equality, Numbers_ByExactValueAcrossKinds) {
  EXPECT_TRUE(equals(integer("Int", 3), integer("Long", 3)));
  EXPECT_TRUE(equals(integer("Byte", 3), floating("Float", 3)));
  EXPECT_TRUE(equals(floating("Double", 0.0), floating("Double", -0.0)));
  EXPECT_TRUE(equals(integer("ULong", std::numeric_limits<std::int64_t>::min()), floating("Double", 0x1p63)));
  EXPECT_FALSE(equals(integer("ULong", -1), integer("Long", -1)));
  EXPECT_FALSE(equals(integer("Long", (1LL << 53) + 1), floating("Double", 0x1p53)));
  EXPECT_FALSE(equals(floating("Double", std::nan("")), floating("Double", std::nan(""))));
  EXPECT_FALSE(equals(integer("Int", 3), floating("Double", 3.5)));
}

TEST_F(Equality, CharactersAndBooleans_ByTypeAndValue) {
  EXPECT_TRUE(equals(integer("Char", 'a'), integer("Char", 'a')));
  EXPECT_TRUE(equals(integer("CodeUnit", 'a'), integer("CodeUnit", 'a')));
  EXPECT_FALSE(equals(integer("Char", 'a'), integer("Char", 'b')));
  EXPECT_FALSE(equals(integer("Char", 'a'), integer("CodeUnit", 'a')));
  EXPECT_FALSE(equals(integer("Char", 'a'), integer("Int", 'a')));
  EXPECT_FALSE(equals(integer("Char", 1), boolean(true)));
  EXPECT_FALSE(equals(boolean(true), integer("Int", 1)));
  EXPECT_FALSE(equals(boolean(true), boolean(false)));
}

TEST_F(Equality, Texts_ByBytesWhateverTheirForm) {
  EXPECT_TRUE(equals(string("text"), string("text")));
  EXPECT_TRUE(equals(string("text"), text("text")));
  EXPECT_TRUE(equals(text("text"), text("text")));
  EXPECT_TRUE(equals(string(""), text("")));
  EXPECT_FALSE(equals(string("text"), text("texts")));
  EXPECT_FALSE(equals(string("1"), integer("Int", 1)));
}

TEST_F(Equality, OtherObjects_ByIdentity) {
  EXPECT_FALSE(equals(plain(1), plain(1)));
  EXPECT_FALSE(equals(object("Object"), object("Object")));
  EXPECT_FALSE(equals(object("Type"), object("Type")));
  EXPECT_FALSE(equals(plain(1), object("ArrayList")));
}

constexpr const char* kMutableLists[] = {"ArrayList", "ArrayListSync", "LinkedList", "LinkedListSync",
                                         "ArrayList<Object>"};

TEST_F(Equality, MutableLists_ByContentAcrossClassesAndStorages) {
  for (const char* left : kMutableLists) {
    for (const char* right : kMutableLists) {
      EXPECT_TRUE(equals(object(left), object(right))) << left << " " << right;
      const Handle numbers = list(left, {integer("Int", 1), integer("Int", 2)});
      EXPECT_TRUE(equals(numbers, list(right, {integer("Int", 1), integer("Int", 2)}))) << left << " " << right;
      EXPECT_TRUE(equals(numbers, list(right, {integer("Long", 1), floating("Double", 2)}))) << left << " " << right;
      EXPECT_FALSE(equals(numbers, list(right, {integer("Int", 1), integer("Int", 3)}))) << left << " " << right;
      EXPECT_FALSE(equals(numbers, list(right, {integer("Int", 1)}))) << left << " " << right;
      EXPECT_FALSE(equals(numbers, list(right, {integer("Int", 1), nullptr}))) << left << " " << right;
      EXPECT_FALSE(equals(numbers, list(right, {string("1"), integer("Int", 2)}))) << left << " " << right;
      EXPECT_TRUE(equals(list(left, {string("a"), nullptr}), list(right, {text("a"), nullptr})))
          << left << " " << right;
    }
  }
}

TEST_F(Equality, UnboxedLists_ByValueAcrossTheirTypes) {
  const auto listOf = [](const char* type, std::initializer_list<std::int64_t> values) {
    Handle result = object("ArrayList");
    for (const std::int64_t value : values) vorn_collections_ArrayList_addPrimitiveI64(result, value, type);
    return result;
  };
  const auto floats = [](const char* type, std::initializer_list<double> values) {
    Handle result = object("ArrayList");
    for (const double value : values) vorn_collections_ArrayList_addPrimitiveDouble(result, value, type);
    return result;
  };
  EXPECT_TRUE(equals(listOf("Int", {1, 2}), listOf("Int", {1, 2})));
  EXPECT_TRUE(equals(listOf("Byte", {1, 2}), listOf("Long", {1, 2})));
  EXPECT_TRUE(equals(listOf("Int", {1, 2}), floats("Double", {1, 2})));
  EXPECT_FALSE(equals(listOf("Int", {1, 2}), floats("Double", {1, 2.5})));
  EXPECT_FALSE(equals(listOf("Long", {-1}), listOf("ULong", {-1})));
  EXPECT_TRUE(equals(listOf("Char", {'a'}), listOf("Char", {'a'})));
  EXPECT_FALSE(equals(listOf("Char", {'a'}), listOf("UInt", {'a'})));
  EXPECT_FALSE(equals(listOf("CodeUnit", {'a'}), listOf("Char", {'a'})));
  EXPECT_FALSE(equals(listOf("CodeUnit", {'a'}), listOf("UShort", {'a'})));
  EXPECT_TRUE(equals(floats("Double", {0.0, 0.5}), floats("Double", {-0.0, 0.5})));
  EXPECT_TRUE(equals(floats("Float", {0.5}), floats("Double", {0.5})));
  EXPECT_FALSE(equals(floats("Double", {std::nan("")}), floats("Double", {std::nan("")})));
  EXPECT_FALSE(equals(floats("Float", {std::nan("")}), floats("Double", {std::nan("")})));
}

TEST_F(Equality, UnboxedElements_EqualTheirBoxes) {
  const std::pair<const char*, std::int64_t> cases[] = {
      {"Int", -5}, {"ULong", -1}, {"Char", 'x'}, {"CodeUnit", 0xD800}};
  for (const auto& [type, value] : cases) {
    const Handle unboxed = object("ArrayList");
    vorn_collections_ArrayList_addPrimitiveI64(unboxed, value, type);
    vorn_list_storage_info info;
    ASSERT_EQ(vorn_list_get_storage(unboxed, &info), 1);
    ASSERT_EQ(info.storage, VORN_LIST_PRIMITIVE) << type;
    EXPECT_TRUE(equals(unboxed, list("LinkedList", {integer(type, value)}))) << type;
    EXPECT_FALSE(equals(unboxed, list("LinkedList", {integer(type, value - 1)}))) << type;
    EXPECT_FALSE(equals(unboxed, list("LinkedList", {string("x")}))) << type;
    EXPECT_FALSE(equals(unboxed, list("LinkedList", {plain(1)}))) << type;
  }
  const Handle booleans = object("ArrayList");
  vorn_collections_ArrayList_addPrimitiveBool(booleans, true);
  EXPECT_TRUE(equals(booleans, list("LinkedList", {boolean(true)})));
  EXPECT_FALSE(equals(booleans, list("LinkedList", {boolean(false)})));
  EXPECT_FALSE(equals(booleans, list("LinkedList", {integer("Int", 1)})));
  EXPECT_TRUE(equals(booleans, list("ArrayList", {boolean(true)})));
}

TEST_F(Equality, ImmutableLists_AreAFamilyOfTheirOwn) {
  EXPECT_TRUE(equals(object("ImmutableList"), object("ImmutableList<Int>")));
  for (const char* name : kMutableLists) EXPECT_FALSE(equals(object("ImmutableList"), object(name))) << name;
}

TEST_F(Equality, NestedLists_ByContent) {
  const auto nested = [](const char* inner, int value) {
    return list("ArrayList",
                {list(inner, {integer("Int", 1), list("LinkedListSync", {integer("Int", value)})}), string("x")});
  };
  EXPECT_TRUE(equals(nested("ArrayList", 2), nested("LinkedList", 2)));
  EXPECT_FALSE(equals(nested("ArrayList", 2), nested("LinkedList", 3)));
}

TEST_F(Equality, ListsThatContainThemselves_AreComparedToAnEnd) {
  const auto cyclic = [](const char* name, int value) {
    Handle result = list(name, {integer("Int", value), string("x")});
    vorn_collections_ArrayList_add(result, result);
    return result;
  };
  EXPECT_TRUE(equals(cyclic("ArrayList", 1), cyclic("LinkedListSync", 1)));
  EXPECT_FALSE(equals(cyclic("ArrayList", 1), cyclic("ArrayList", 2)));
  // A cycle of one list against a cycle of two.
  const Handle one = list("ArrayList", {string("x")});
  vorn_collections_ArrayList_add(one, one);
  const Handle first = list("ArrayList", {string("x")});
  const Handle second = list("ArrayList", {string("x")});
  vorn_collections_ArrayList_add(first, second);
  vorn_collections_ArrayList_add(second, first);
  EXPECT_TRUE(equals(one, first));
}

TEST_F(Equality, DeepNesting_NeedsNoNativeStack) {
  const auto deep = [](int levels, int value) {
    Handle result = list("ArrayList", {string(std::to_string(value))});
    for (int i = 0; i < levels; ++i) {
      const Handle outer = object("ArrayList");
      vorn_collections_ArrayList_add(outer, result);
      result = outer.get();
    }
    return result;
  };
  const int levels = onStressHeap() ? 300 : 100000;
  const Handle left = deep(levels, 1);
  EXPECT_TRUE(equals(left, deep(levels, 1)));
  EXPECT_FALSE(equals(left, deep(levels, 2)));
}

TEST_F(Equality, SharedParts_AreComparedOnce) {
  const auto diamond = [](int levels) {
    Handle result = list("ArrayList", {string("end")});
    for (int i = 0; i < levels; ++i) {
      const Handle outer = list("ArrayList", {result, result});
      result = outer.get();
    }
    return result;
  };
  EXPECT_TRUE(equals(diamond(60), diamond(60)));
}

TEST_F(Equality, Hook_DecidesForInstances) {
  EXPECT_TRUE(equals(hooked(1), hooked(1)));
  EXPECT_FALSE(equals(hooked(1), hooked(2)));
  EXPECT_TRUE(equals(list("ArrayList", {hooked(1), hooked(2)}), list("LinkedList", {hooked(1), hooked(2)})));
  EXPECT_FALSE(equals(list("ArrayList", {hooked(1), hooked(2)}), list("LinkedList", {hooked(1), hooked(3)})));
}

TEST_F(Equality, Hook_OfTheLeftObjectIsAskedFirst) {
  const Handle left = hooked(1);
  const Handle right = hooked(2);
  std::vector<std::pair<void*, void*>> calls;
  userHooks.equals = [&](void* self, void* other) {
    calls.emplace_back(self, other);
    return true;
  };
  EXPECT_EQ(Vorn_deepEquals(left, right), 1);
  EXPECT_EQ(calls, (std::vector<std::pair<void*, void*>>{{left, right}}));
}

TEST_F(Equality, Hook_OfTheRightObjectServesWhenTheLeftHasNone) {
  const Handle withHook = hooked(1);
  for (const Handle& other : {plain(1), integer("Int", 1), string("s"), text("s"), object("ArrayList")}) {
    std::vector<std::pair<void*, void*>> calls;
    userHooks.equals = [&](void* self, void* argument) {
      calls.emplace_back(self, argument);
      return true;
    };
    EXPECT_EQ(Vorn_deepEquals(other, withHook), 1) << vorn_type_name(other);
    EXPECT_EQ(calls, (std::vector<std::pair<void*, void*>>{{withHook, other}})) << vorn_type_name(other);
  }
}

TEST_F(Equality, Hook_SeesUnboxedElementsAsBoxes) {
  const Handle numbers = list("ArrayList<Int>", {integer("Int", 5)});
  const Handle objects = list("ArrayList", {hooked(5)});
  userHooks.equals = [](void* self, void* other) {
    string("churn");  // the box stays alive while the hook runs
    std::int64_t value = 0;
    return vorn_unbox_integer(other, &value) != 0 && value == idOf(self);
  };
  EXPECT_TRUE(equals(numbers, objects));
  EXPECT_FALSE(equals(numbers, list("ArrayList", {hooked(6)})));
}

TEST_F(Equality, HookThatRaises_EndsTheComparison) {
  int calls = 0;
  userHooks.equals = [&](void*, void*) {
    ++calls;
    vorn_raise("ValueException", "from equals");
    return true;
  };
  EXPECT_EQ(Vorn_deepEquals(list("ArrayList", {hooked(1), hooked(2)}), list("ArrayList", {hooked(1), hooked(2)})), 0);
  EXPECT_EQ(calls, 1);
  EXPECT_RAISED("ValueException: from equals");
}

TEST_F(Equality, OlderErrors_DoNotCount) {
  vorn_raise("ValueException", "older");
  EXPECT_TRUE(equals(list("ArrayList", {hooked(1), hooked(2)}), list("ArrayList", {hooked(1), hooked(2)})));
  EXPECT_RAISED("ValueException: older");
}

TEST_F(Equality, ErrorRaisedOnTopOfAnOlderOne_Counts) {
  vorn_raise("ValueException", "older");
  userHooks.equals = [&](void*, void*) {
    vorn_raise("ValueException", "newer");
    return true;
  };
  EXPECT_EQ(Vorn_deepEquals(hooked(1), hooked(1)), 0);
  EXPECT_EQ(takeErrors(), (std::vector<std::string>{"ValueException: older", "ValueException: newer"}));
}

TEST_F(Equality, HooksThatCompareWhatTheyReferTo_EndOnCycles) {
  userHooks.equals = [](void* self, void* other) {
    return idOf(self) == idOf(other) && vorn_equals(nextOf(self), nextOf(other)) != 0;
  };
  const auto ring = [](int last) {
    Handle first = hooked(1);
    const Handle second = hooked(last);
    vorn_field_set_handle(first, "next", second);
    vorn_field_set_handle(second, "next", first);
    return first;
  };
  EXPECT_TRUE(equals(ring(2), ring(2)));
  EXPECT_FALSE(equals(ring(2), ring(3)));
}

TEST_F(Equality, CyclesThroughListsAndHooks_End) {
  userHooks.equals = [](void* self, void* other) {
    return idOf(self) == idOf(other) && vorn_equals(nextOf(self), nextOf(other)) != 0;
  };
  const auto ring = [](int key) {
    Handle owner = hooked(key);
    const Handle children = list("ArrayList", {string("x"), owner});
    vorn_field_set_handle(owner, "next", children);
    return owner;
  };
  EXPECT_TRUE(equals(ring(1), ring(1)));
  EXPECT_TRUE(equals(nextOf(ring(1)), nextOf(ring(1))));
  EXPECT_FALSE(equals(nextOf(ring(1)), nextOf(ring(2))));
}

TEST_F(Equality, HooksThatChangeTheLists_DoNoHarm) {
  const Handle left = list("ArrayList", {hooked(1), list("ArrayList", {string("inner")}), hooked(2)});
  const Handle right = list("LinkedList", {hooked(1), list("ArrayList", {string("inner")}), hooked(2)});
  userHooks.equals = [&](void* self, void* other) {
    vorn_collections_ArrayList_clear(left);
    vorn_collections_ArrayList_clear(right);
    for (int i = 0; i < 20; ++i) string("churn");
    return idOf(self) == idOf(other);
  };
  EXPECT_EQ(Vorn_deepEquals(left, right), 1);  // the comparison goes on with what it copied
  EXPECT_EQ(vorn_collections_ArrayList_size(left), 0);
}

TEST_F(Equality, ListsComparedAlready_StayAliveUntilTheEnd) {
  // A list that was found equal is met again as "equal" by its address, so that its address must not become another's
  // meanwhile, even when a hook drops the list. Two of them: the first few pairs are kept in another place than the
  // rest.
  for (const int listsBefore : {0, 8}) {
    void* dropped = nullptr;
    const auto build = [&dropped, listsBefore](int first) {
      Handle result = object("ArrayList");
      for (int i = 0; i < listsBefore; ++i) vorn_collections_ArrayList_add(result, list("ArrayList", {string("x")}));
      const Handle inner = list("ArrayList", {string("inner")});
      dropped = inner;
      const Handle holder = list("ArrayList", {inner});
      const Handle dropper = hooked(first);
      vorn_field_set_handle(dropper, "next", holder);
      vorn_collections_ArrayList_add(result, holder);
      vorn_collections_ArrayList_add(result, dropper);
      // What comes next takes the places where the comparison had copied the list to.
      const Handle next = list("ArrayList", {string("a"), string("b"), string("c")});
      vorn_collections_ArrayList_add(result, next);
      vorn_collections_ArrayList_add(result, hooked(2));
      return result;
    };
    const Handle left = build(1);
    const Handle right = build(1);
    bool checked = false;
    userHooks.equals = [&](void* self, void* other) {
      if (idOf(self) == 1) {
        vorn_collections_ArrayList_clear(nextOf(self));
        vorn_collections_ArrayList_clear(nextOf(other));
      } else {
        for (int i = 0; i < 20; ++i) string("churn");
        vorn_heap_collect();
        checked = isObjectPointer(dropped);
      }
      return true;
    };
    EXPECT_EQ(Vorn_deepEquals(left, right), 1);
    EXPECT_TRUE(checked) << listsBefore;
  }
}

TEST_F(Equality, NoLockIsHeldWhileHooksRun) {
  const Handle left = list("ArrayListSync", {hooked(1)});
  const Handle right = list("LinkedListSync", {hooked(1)});
  int unlocked = 0;
  userHooks.equals = [&](void*, void*) {
    for (const Handle& list : {left, right}) {
      if (!isRecordLocked(*getListData(list))) ++unlocked;
    }
    return true;
  };
  EXPECT_EQ(Vorn_deepEquals(left, right), 1);
  EXPECT_EQ(unlocked, 2);
}

TEST_F(Equality, OppositeComparisonsOfSynchronisedLists_DoNotDeadlock) {
  const Handle left = list("ArrayListSync", {string("a"), string("b")});
  const Handle right = list("LinkedListSync", {string("a"), string("b")});
  const Handle numbers = list("ArrayListSync", {integer("Int", 1)});
  const Handle others = list("ArrayListSync", {integer("Int", 1)});
  const int rounds = onStressHeap() ? 50 : 5000;
  const auto compare = [rounds](void* a, void* b) {
    for (int i = 0; i < rounds; ++i) {
      if (Vorn_deepEquals(a, b) == 0) return false;
    }
    return true;
  };
  runTogether({[&] { EXPECT_TRUE(compare(left, right) && compare(numbers, others)); },
               [&] { EXPECT_TRUE(compare(right, left) && compare(others, numbers)); }});
}

TEST_F(Equality, ExhaustedMemory_PassesAsBadAlloc) {
  const Handle left = list("ArrayList", {string("a"), list("LinkedList", {string("b"), plain(1)})});
  const Handle right = list("ArrayList", {string("a"), list("LinkedList", {string("b"), plain(1)})});
  int failures = 0;
  for (int after = 0;; ++after) {
    vorn_heap_fail_allocation(after);
    try {
      EXPECT_EQ(Vorn_deepEquals(left, right), 0);
    } catch (const std::bad_alloc&) {
      ++failures;
      continue;
    }
    if (vorn_heap_failure_happened() == 0) break;
  }
  EXPECT_GT(failures, 0);
}

TEST_F(Equality, OfCollections_AnswersForListsTextsAndOrderedInstances) {
  bool equal = false;
  EXPECT_TRUE(Vorn_collectionObjectsEqual(list("ArrayList", {string("a")}), list("LinkedList", {text("a")}), equal));
  EXPECT_TRUE(equal);
  EXPECT_TRUE(Vorn_collectionObjectsEqual(object("ArrayList"), list("ArrayList", {string("a")}), equal));
  EXPECT_FALSE(equal);
  EXPECT_TRUE(Vorn_collectionObjectsEqual(object("ArrayList"), object("ImmutableList"), equal));
  EXPECT_FALSE(equal);
  EXPECT_TRUE(Vorn_collectionObjectsEqual(string("a"), string("a"), equal));
  EXPECT_TRUE(equal);
  EXPECT_TRUE(Vorn_collectionObjectsEqual(string("a"), text("b"), equal));
  EXPECT_FALSE(equal);
  EXPECT_TRUE(Vorn_collectionObjectsEqual(hooked(1), hooked(1), equal));
  EXPECT_TRUE(equal);
  EXPECT_TRUE(Vorn_collectionObjectsEqual(hooked(1), hooked(2), equal));
  EXPECT_FALSE(equal);
}

TEST_F(Equality, OfCollections_DoesNotAnswerForTheRest) {
  bool equal = true;
  EXPECT_FALSE(Vorn_collectionObjectsEqual(plain(1), plain(1), equal));
  EXPECT_FALSE(Vorn_collectionObjectsEqual(hooked(1), plain(1), equal));  // its hook declines
  EXPECT_FALSE(Vorn_collectionObjectsEqual(integer("Char", 'a'), integer("Char", 'a'), equal));
  EXPECT_FALSE(Vorn_collectionObjectsEqual(string("a"), plain(1), equal));
  EXPECT_FALSE(Vorn_collectionObjectsEqual(hooked(1), object("ArrayList"), equal));
  EXPECT_FALSE(Vorn_collectionObjectsEqual(nullptr, object("ArrayList"), equal));
  EXPECT_FALSE(Vorn_collectionObjectsEqual(nullptr, nullptr, equal));
  EXPECT_FALSE(equal);
}

}  // namespace
}  // namespace vorn::tests
