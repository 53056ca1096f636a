// The order of lists, texts and instances: Vorn_collectionObjectsLess and its agreement with equality.
#include <cmath>
#include <limits>

#include "collections/core/port/comparison.h"
#include "collections/core/port/object_layout.h"
#include "tests/support/runtime_test.h"
#include "tests/support/threads.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

using Order = RuntimeTest;

// "<", ">" or "=" as the two are ordered; "?" when they cannot be. Both directions must agree.
std::string relationOf(void* left, void* right) {
  bool less = false;
  bool greater = false;
  const bool forward = Vorn_collectionObjectsLess(left, right, less);
  const bool backward = Vorn_collectionObjectsLess(right, left, greater);
  EXPECT_EQ(forward, backward);
  EXPECT_FALSE(less && greater);
  if (!forward) {
    EXPECT_FALSE(less || greater);
    return "?";
  }
  return less ? "<" : (greater ? ">" : "=");
}

TEST_F(Order, Lists_AreLexicographic) {
  const auto numbers = [](const char* name, std::initializer_list<int> values) {
    Handle result = object(name);
    for (const int value : values) vorn_collections_ArrayList_add(result, integer("Int", value));
    return result;
  };
  for (const char* name : {"ArrayList", "ArrayListSync", "LinkedList", "LinkedListSync"}) {
    EXPECT_EQ(relationOf(numbers("ArrayList", {}), numbers(name, {})), "=") << name;
    EXPECT_EQ(relationOf(numbers("ArrayList", {}), numbers(name, {1})), "<") << name;
    EXPECT_EQ(relationOf(numbers("ArrayList", {1, 2}), numbers(name, {1, 2})), "=") << name;
    EXPECT_EQ(relationOf(numbers("ArrayList", {1, 2}), numbers(name, {1, 2, 0})), "<") << name;
    EXPECT_EQ(relationOf(numbers("ArrayList", {1, 3}), numbers(name, {1, 2, 9})), ">") << name;
    EXPECT_EQ(relationOf(numbers("ArrayList", {2}), numbers(name, {10})), "<") << name;
  }
}

// Two lists of one element each, boxed or not.
std::string elementOrder(const Handle& left, const Handle& right) {
  const std::string boxed = relationOf(list("LinkedList", {left}), list("LinkedList", {right}));
  EXPECT_EQ(relationOf(list("ArrayList", {left}), list("ArrayList", {right})), boxed);
  EXPECT_EQ(relationOf(list("ArrayList", {left}), list("LinkedList", {right})), boxed);
  EXPECT_EQ(relationOf(list("LinkedListSync", {left}), list("ArrayListSync", {right})), boxed);
  return boxed;
}

TEST_F(Order, Elements_NumbersByValueWithNansLast) {
  EXPECT_EQ(elementOrder(integer("Int", 1), floating("Double", 1.5)), "<");
  EXPECT_EQ(elementOrder(integer("ULong", -1), integer("Long", -1)), ">");
  EXPECT_EQ(elementOrder(integer("Byte", 7), floating("Float", 7)), "=");
  EXPECT_EQ(elementOrder(floating("Double", -0.0), floating("Double", 0.0)), "=");
  EXPECT_EQ(elementOrder(floating("Double", std::nan("")), integer("Int", 1)), ">");
  EXPECT_EQ(elementOrder(floating("Double", std::nan("")), floating("Float", std::nan(""))), "=");
}

TEST_F(Order, Elements_CharactersAndBooleansWithinTheirType) {
  EXPECT_EQ(elementOrder(integer("Char", 'a'), integer("Char", 'b')), "<");
  EXPECT_EQ(elementOrder(integer("CodeUnit", 0xD800), integer("CodeUnit", 1)), ">");
  EXPECT_EQ(elementOrder(boolean(false), boolean(true)), "<");
  EXPECT_EQ(elementOrder(integer("Char", 'a'), integer("Int", 'b')), "=");
  EXPECT_EQ(elementOrder(boolean(true), integer("Int", 0)), "=");
}

TEST_F(Order, Elements_TextsByBytesWhateverTheirForm) {
  EXPECT_EQ(elementOrder(string("a"), string("b")), "<");
  EXPECT_EQ(elementOrder(string("b"), text("a")), ">");
  EXPECT_EQ(elementOrder(text("a"), string("ab")), "<");
  EXPECT_EQ(elementOrder(string("z"), string("é")), "<");  // bytes are unsigned
  EXPECT_EQ(elementOrder(string("a"), text("a")), "=");
}

TEST_F(Order, Elements_NullComesFirst) {
  EXPECT_EQ(elementOrder(nullptr, nullptr), "=");
  for (const Handle& other : {integer("Int", -5), string(""), text(""), plain(1), object("ArrayList")}) {
    EXPECT_EQ(elementOrder(nullptr, other), "<") << vorn_type_name(other);
  }
}

TEST_F(Order, Elements_NestedListsAreLexicographicToo) {
  EXPECT_EQ(elementOrder(list("ArrayList", {integer("Int", 1)}), list("LinkedList", {integer("Int", 2)})), "<");
  EXPECT_EQ(elementOrder(list("ArrayList", {string("b")}), list("LinkedList", {string("a"), string("z")})), ">");
  EXPECT_EQ(elementOrder(object("ImmutableList"), object("ImmutableList")), "=");
}

TEST_F(Order, ElementsThatCannotBeOrdered_CountAsEqual) {
  EXPECT_EQ(elementOrder(integer("Int", 1), string("a")), "=");
  EXPECT_EQ(elementOrder(plain(1), plain(2)), "=");
  EXPECT_EQ(elementOrder(plain(1), object("ArrayList")), "=");
  EXPECT_EQ(elementOrder(object("ImmutableList"), list("ArrayList", {string("a")})), "=");
  EXPECT_EQ(relationOf(list("ArrayList", {string("x"), integer("Int", 1)}),
                       list("ArrayList", {integer("Int", 9), integer("Int", 2)})),
            "<");
}

TEST_F(Order, ListsOfDifferentFamilies_AreNotOrdered) {
  EXPECT_EQ(relationOf(object("ImmutableList"), object("ArrayList")), "?");
  EXPECT_EQ(relationOf(object("ImmutableList"), object("ImmutableList<Int>")), "=");
}

TEST_F(Order, Texts_ByBytes) {
  EXPECT_EQ(relationOf(string("a"), string("b")), "<");
  EXPECT_EQ(relationOf(string("ab"), string("a")), ">");
  EXPECT_EQ(relationOf(string("a"), string("a")), "=");
  EXPECT_EQ(relationOf(string("é"), text("z")), ">");
}

TEST_F(Order, Instances_ByHook) {
  EXPECT_EQ(relationOf(hooked(1), hooked(2)), "<");
  EXPECT_EQ(relationOf(hooked(2), hooked(2)), "=");
  EXPECT_EQ(elementOrder(hooked(3), hooked(2)), ">");
}

TEST_F(Order, Instances_WhoseHookDeclinesOrIsMissing_AreNotOrdered) {
  EXPECT_EQ(relationOf(hooked(1), plain(2)), "?");
  EXPECT_EQ(relationOf(plain(1), plain(2)), "?");
  EXPECT_EQ(relationOf(hooked(1), string("a")), "?");
  EXPECT_EQ(elementOrder(hooked(1), plain(2)), "=");
}

TEST_F(Order, Hook_OfTheRightInstanceServesTurnedAround) {
  userHooks.compare = [](void* self, void* other, bool*) {
    return idOf(self) < idOf(other) ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
  };
  EXPECT_EQ(relationOf(plain(1), hooked(2)), "<");
  EXPECT_EQ(relationOf(hooked(2), plain(1)), ">");
  EXPECT_EQ(relationOf(plain(3), hooked(2)), ">");
}

TEST_F(Order, HookThatRaises_LeavesTheErrorAndNoOrder) {
  userHooks.compare = [](void*, void*, bool*) {
    vorn_raise("ValueException", "from compare");
    return -1;
  };
  bool less = true;
  EXPECT_FALSE(Vorn_collectionObjectsLess(hooked(1), hooked(2), less));
  EXPECT_FALSE(less);
  EXPECT_RAISED("ValueException: from compare");
  EXPECT_FALSE(Vorn_collectionObjectsLess(list("ArrayList", {hooked(1)}), list("ArrayList", {hooked(2)}), less));
  EXPECT_RAISED("ValueException: from compare");
  bool equal = true;
  EXPECT_FALSE(Vorn_collectionObjectsEqual(hooked(1), hooked(2), equal));
  EXPECT_RAISED("ValueException: from compare");
}

TEST_F(Order, EverythingElse_IsNotOrdered) {
  EXPECT_EQ(relationOf(integer("Int", 1), integer("Int", 2)), "?");
  EXPECT_EQ(relationOf(integer("Char", 1), integer("Char", 2)), "?");
  EXPECT_EQ(relationOf(nullptr, string("a")), "?");
  EXPECT_EQ(relationOf(nullptr, object("ArrayList")), "?");
  EXPECT_EQ(relationOf(object("ArrayList"), string("a")), "?");
  EXPECT_EQ(relationOf(object("Type"), object("Type")), "?");
}

TEST_F(Order, ListsThatContainThemselves_AreOrderedToAnEnd) {
  const auto cyclic = [](const char* last) {
    Handle result = object("ArrayList");
    vorn_collections_ArrayList_add(result, result);
    vorn_collections_ArrayList_add(result, string(last));
    return result;
  };
  EXPECT_EQ(relationOf(cyclic("a"), cyclic("b")), "<");
  EXPECT_EQ(relationOf(cyclic("a"), cyclic("a")), "=");
}

#if defined(__GLIBC__)
// Whether a thread waits for the mutex; where the C library keeps that is its own business, hence the condition.
bool isAwaited(pthread_mutex_t* mutex) { return __atomic_load_n(&mutex->__data.__lock, __ATOMIC_RELAXED) == 2; }

TEST_F(Order, SynchronisedUnboxedLists_AreNotReadOutsideTheirLock) {
  for (const char* name : {"ArrayListSync", "LinkedListSync"}) {
    const Handle left = list(name, {integer("Int", 1)});
    const Handle right = list(name, {integer("Int", 2)});
    const Handle three = integer("Int", 3);
    pthread_mutex_t* mutex = getListData(right)->mutex;
    ASSERT_EQ(pthread_mutex_lock(mutex), 0);
    bool less = false;
    Beside comparing([&] { Vorn_collectionObjectsLess(left, right, less); });
    // The other thread has read the left list and waits for the right one. The left list, which it must not look at any
    // more, is free to change.
    while (!isAwaited(mutex)) std::this_thread::yield();
    vorn_collections_ArrayList_operator_index_eq(left, 0, three);
    pthread_mutex_unlock(mutex);
    comparing.join();
    EXPECT_TRUE(less) << name;
  }
}
#endif

TEST_F(Order, UnboxedAgainstBoxedElements_ByValue) {
  const Handle unboxed = list("ArrayList<Int>", {integer("Int", 1), integer("Int", 5)});
  EXPECT_EQ(relationOf(unboxed, list("LinkedList", {integer("Int", 1), integer("Int", 6)})), "<");
  EXPECT_EQ(relationOf(unboxed, list("LinkedList", {integer("Int", 1), integer("Int", 4)})), ">");
  EXPECT_EQ(relationOf(unboxed, list("LinkedList", {integer("Int", 1), nullptr})), ">");
  EXPECT_EQ(relationOf(unboxed, list("LinkedList", {integer("Int", 1), string("a")})), "=");
  EXPECT_EQ(relationOf(unboxed, list("LinkedList", {integer("Int", 1)})), ">");
}

}  // namespace
}  // namespace vorn::tests
