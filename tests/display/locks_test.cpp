// Which locks a display or join holds, and what it keeps alive, while what, and what it leaves to the runtime. The test
// program is linked so that the calls that make Strings and boxes and ask for the texts of objects come here first.
#include <cerrno>
#include <functional>
#include <string_view>
#include <system_error>

#include "collections/core/port/object_layout.h"
#include "collections/core/port/values.h"
#include "tests/display/display_cases.h"
#include "tests/support/before.h"
#include "tests/support/runtime_test.h"
#include "tests/support/user_objects.h"
#include "tests/support/values.h"

namespace vorn::tests {
namespace {
std::function<void()>* onString = nullptr;
std::function<void()>* onBox = nullptr;
std::function<void()>* onObjectText = nullptr;
}  // namespace
}  // namespace vorn::tests

// NOLINTBEGIN(bugprone-reserved-identifier)
void* realAllocString(std::string_view text) asm(
    "__real__Z16Vorn_allocStringSt17basic_string_viewIcSt11char_traitsIcEE");
void* wrapAllocString(std::string_view text) asm(
    "__wrap__Z16Vorn_allocStringSt17basic_string_viewIcSt11char_traitsIcEE");
void* realBoxInteger(RuntimeTypeName type, long long value) asm("__real__Z19boxIntegerLikeLocal15RuntimeTypeNamex");
void* wrapBoxInteger(RuntimeTypeName type, long long value) asm("__wrap__Z19boxIntegerLikeLocal15RuntimeTypeNamex");
std::string realObjectText(void* object, std::string_view className) asm(
    "__real__Z19formatObjectDefaultB5cxx11PvSt17basic_string_viewIcSt11char_traitsIcEE");
std::string wrapObjectText(void* object, std::string_view className) asm(
    "__wrap__Z19formatObjectDefaultB5cxx11PvSt17basic_string_viewIcSt11char_traitsIcEE");
// NOLINTEND(bugprone-reserved-identifier)

void* wrapAllocString(std::string_view text) {
  if (vorn::tests::onString != nullptr) (*vorn::tests::onString)();
  return realAllocString(text);
}
void* wrapBoxInteger(RuntimeTypeName type, long long value) {
  if (vorn::tests::onBox != nullptr) (*vorn::tests::onBox)();
  return realBoxInteger(type, value);
}
std::string wrapObjectText(void* object, std::string_view className) {
  if (vorn::tests::onObjectText != nullptr) (*vorn::tests::onObjectText)();
  return realObjectText(object, className);
}

namespace vorn::tests {
namespace {

// Gives a synchronised collection an error-checking mutex for a scope, which locking twice fails with EDEADLK.
class ErrorCheckingMutex {
 public:
  ErrorCheckingMutex(const Kind& kind, void* collection)
      : place_(mutexOf(kind.family, collection)), original_(*place_) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
    pthread_mutex_init(&mutex_, &attributes);
    pthread_mutexattr_destroy(&attributes);
    *place_ = &mutex_;
  }
  ~ErrorCheckingMutex() {
    *place_ = original_;
    EXPECT_EQ(pthread_mutex_destroy(&mutex_), 0) << "the mutex is still locked";
  }
  ErrorCheckingMutex(const ErrorCheckingMutex&) = delete;
  ErrorCheckingMutex& operator=(const ErrorCheckingMutex&) = delete;

  pthread_mutex_t& mutex() { return mutex_; }

 private:
  pthread_mutex_t** place_;
  pthread_mutex_t* original_;
  pthread_mutex_t mutex_;
};

// Runs over the six synchronised kinds.
class Locks : public RuntimeTest, public ::testing::WithParamInterface<Kind> {
 protected:
  static const Kind& kind() { return GetParam(); }
  // What the table of locks says: sets and arrays are locked while their elements are shown.
  static bool locksWhileFormatting() { return kind().family == Family::Set || kind().family == Family::Array; }
};
INSTANTIATE_TEST_SUITE_P(Kinds, Locks,
                         ::testing::Values(kKinds[1], kKinds[3], kKinds[7], kKinds[9], kKinds[11], kKinds[13]),
                         [](const auto& param) { return std::string(param.param.name); });

TEST_P(Locks, WhileElementsAreFormatted_AreHeldBySetsAndArraysOnly) {
  const Handle collection = filled(kind(), {Handle(), hooked(1)});
  int calls = 0;
  userHooks.toString = [&](void*) {
    ++calls;
    EXPECT_EQ(isLocked(kind(), collection), locksWhileFormatting());
    EXPECT_TRUE(gCollectionDisplayStack.contains(collection.get()));
    return vorn_text_new("x");
  };
  EXPECT_EQ(display(kind(), collection), shown(kind(), {"null", "x"}));
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(faultOf(kind(), collection), "");
}

TEST_P(Locks, OfTheCollectionAround_FollowTheSameRule) {
  const Handle inner = list("ArrayList", {Handle(), hooked(1)});
  const Handle collection = filled(kind(), {inner});
  userHooks.toString = [&](void*) {
    EXPECT_EQ(isLocked(kind(), collection), locksWhileFormatting());
    return vorn_text_new("x");
  };
  EXPECT_EQ(display(kind(), collection), shown(kind(), {"[null, x]"}));
}

TEST_P(Locks, ADisplayTakesIt) {
  const Handle collection = filled(kind(), {Handle(), string("a")});
  const std::string before = display(kind(), collection);
  {
    ErrorCheckingMutex checked(kind(), collection);
    pthread_mutex_lock(&checked.mutex());
    try {
      kind().toString(collection);
      ADD_FAILURE() << "no lock was taken";
    } catch (const std::system_error& error) {
      EXPECT_EQ(error.code().value(), EDEADLK);
    }
    EXPECT_TRUE(gCollectionDisplayStack.empty());
    pthread_mutex_unlock(&checked.mutex());
  }
  EXPECT_EQ(display(kind(), collection), before);
}

TEST_P(Locks, AreTakenOnceByACollectionInItself) {
  const Handle collection = collectionFor(kind(), 1);
  put(kind(), collection, 0, collection);
  ErrorCheckingMutex checked(kind(), collection);
  EXPECT_EQ(display(kind(), collection), shown(kind(), {kind().cycle}));
}

TEST_P(Locks, AreTakenOnceByCollectionsInEachOther) {
  for (const Kind& other : kKinds) {
    if (!other.synchronised) continue;
    SCOPED_TRACE(other.name);
    const Handle outer = collectionFor(kind(), 1);
    const Handle inner = collectionFor(other, 1);
    put(kind(), outer, 0, inner);
    put(other, inner, 0, outer);
    ErrorCheckingMutex outerChecked(kind(), outer);
    ErrorCheckingMutex innerChecked(other, inner);
    EXPECT_EQ(display(kind(), outer), shown(kind(), {shown(other, {kind().cycle})}));
  }
}

TEST_P(Locks, ExceptionOutOfAToString_ReleasesThem) {
  const Handle collection = filled(kind(), {Handle(), hooked(1), list("LinkedListSync", {hooked(2)})});
  userHooks.toString = [](void*) -> void* { throw std::domain_error("thrown by a hook"); };
  EXPECT_THROW(kind().toString(collection), std::domain_error);
  EXPECT_EQ(faultOf(kind(), collection), "");
  userHooks = {};
  EXPECT_EQ(display(kind(), collection), shown(kind(), {"null", "#1", "ls:[#2]"}));
}

TEST_P(Locks, CollectionUsedByAToString_DoesNotWaitInListsAndMaps) {
  if (locksWhileFormatting()) return;
  const Handle collection = filled(kind(), {Handle(), hooked(1)});
  userHooks.toString = [&](void*) -> void* {
    // Not held, so that what follows cannot wait.
    EXPECT_FALSE(isLocked(kind(), collection));
    if (isLocked(kind(), collection)) return nullptr;
    EXPECT_EQ(stringValueFromPtr(kind().toString(collection)), kind().cycle);
    if (kind().family == Family::Map) {
      vorn_collections_Map_clear(collection);
    } else {
      vorn_collections_ArrayList_clear(collection);
    }
    vorn_heap_collect();
    return vorn_text_new("cleared");
  };
  EXPECT_EQ(display(kind(), collection), shown(kind(), {"null", "cleared"}));
  EXPECT_EQ(display(kind(), collection), shown(kind(), {}));
}

using LocksOfLists = RuntimeTest;

TEST_F(LocksOfLists, UnboxedList_IsLockedUntilTheStringExists) {
  for (const char* type : {"ArrayListSync<Int>", "ArrayListSync<Char>"}) {
    const Handle made = list(type);
    vorn_collections_ArrayList_add(made, type[14] == 'I' ? integer("Int", 7) : integer("Char", '7'));
    ASSERT_NE(getListData(made)->primitiveKind, ListData::PrimitiveKind::None);
    int strings = 0;
    int boxes = 0;
    const auto expectLocked = [&](int& count) {
      ++count;
      EXPECT_TRUE(isLocked(kKinds[1], made));
    };
    const Before string(onString, [&] { expectLocked(strings); });
    const Before box(onBox, [&] { expectLocked(boxes); });
    void* const text = vorn_collections_ArrayList_toString(made);
    EXPECT_EQ(stringValueFromPtr(text), "s:[7]");
    EXPECT_EQ(strings, 1);
    EXPECT_EQ(boxes, type[14] == 'I' ? 0 : 1);
    EXPECT_EQ(faultOf(kKinds[1], made), "");
  }
}

TEST_F(LocksOfLists, Mark_StaysUntilTheStringExists) {
  for (const Kind& kind : kKinds) {
    SCOPED_TRACE(kind.name);
    const Handle collection = filled(kind, {integer("Int", 1)});
    bool marked = false;
    {
      const Before string(onString, [&] { marked = gCollectionDisplayStack.contains(collection.get()); });
      kind.toString(collection);
    }
    EXPECT_TRUE(marked);
    EXPECT_TRUE(gCollectionDisplayStack.empty());
  }
}

using LocksOfJoins = RuntimeTest;

TEST_F(LocksOfJoins, BoxedListsAndArrays_AreLockedWhileElementsMakeTheirTextsAndUntilTheStringExists) {
  for (const int number : {1, 3, 13}) {
    const Kind& kind = kKinds[number];
    SCOPED_TRACE(kind.name);
    const Handle collection = filled(kind, {Handle(), hooked(1)});
    const Handle result = text("x");
    int calls = 0;
    userHooks.toString = [&](void*) {
      ++calls;
      EXPECT_TRUE(isLocked(kind, collection));
      return result.get();
    };
    const Before string(onString, [&] {
      ++calls;
      EXPECT_TRUE(isLocked(kind, collection));
    });
    void* const joined = kind.family == Family::Array ? vorn_collections_Array_join(collection, ",")
                                                      : vorn_collections_ArrayList_join(collection, ",");
    EXPECT_EQ(stringValueFromPtr(joined), "null,x");
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(faultOf(kind, collection), "");
  }
}

TEST_F(LocksOfJoins, UnboxedListsAndArrays_AreLockedUntilTheStringExists) {
  const Handle made = list("ArrayListSync<Int>", {integer("Int", 7)});
  const Handle array = object("ArraySync<Int>");
  vorn_collections_Array_ctor(array, 1);
  int strings = 0;
  const Before string(onString, [&] {
    EXPECT_TRUE(isLocked(strings == 0 ? kKinds[1] : kKinds[13], strings == 0 ? made : array));
    ++strings;
  });
  EXPECT_EQ(stringValueFromPtr(vorn_collections_ArrayList_join(made, ",")), "7");
  EXPECT_EQ(stringValueFromPtr(vorn_collections_Array_join(array, ",")), "0");
  EXPECT_EQ(strings, 2);
}

TEST_F(LocksOfJoins, ExceptionOutOfAToString_ReleasesThem) {
  for (const int number : {1, 3, 13}) {
    const Kind& kind = kKinds[number];
    const Handle collection = filled(kind, {Handle(), hooked(1)});
    userHooks.toString = [](void*) -> void* { throw std::domain_error("thrown by a hook"); };
    const auto join = kind.family == Family::Array ? vorn_collections_Array_join : vorn_collections_ArrayList_join;
    EXPECT_THROW(join(collection, ","), std::domain_error);
    EXPECT_EQ(faultOf(kind, collection), "");
    userHooks = {};
    EXPECT_EQ(textOf(join(collection, ",")), "null,#1");
  }
}

// What a join or display has locked, a toString on the same thread may use all the same. An error-checking mutex, which
// its thread cannot lock again, shows that the lock is held.
TEST_F(LocksOfJoins, CollectionUsedByAToString_IsLockedAndLetsItsThreadIn) {
  for (const int number : {1, 3, 7, 13}) {
    const Kind& kind = kKinds[number];
    SCOPED_TRACE(kind.name);
    const Handle collection = filled(kind, {Handle(), hooked(1)});
    userHooks.toString = [&](void*) -> void* {
      if (kind.family == Family::Set) vorn_collections_HashSet_size(collection);
      if (kind.family == Family::List) vorn_collections_ArrayList_size(collection);
      if (kind.family == Family::Array) vorn_collections_Array_size(collection);
      return nullptr;
    };
    const auto run = kind.family == Family::Set     ? [](void* c) { return vorn_collections_HashSet_toString(c); }
                     : kind.family == Family::Array ? [](void* c) { return vorn_collections_Array_join(c, ","); }
                                                    : [](void* c) { return vorn_collections_ArrayList_join(c, ","); };
    EXPECT_NE(run(collection), nullptr);
    EXPECT_EQ(faultOf(kind, collection), "");
    ErrorCheckingMutex checked(kind, collection);
    EXPECT_THROW(run(collection), std::system_error);
    EXPECT_EQ(faultOf(kind, collection), "");
  }
}

// ---- What is kept alive ---------------------------------------------------------------------------------------------

using RootsOfJoins = RuntimeTest;

// A runtime may collect before it reads what it is to make a text of.
TEST_F(RootsOfJoins, UnboxedCharacters_KeepTheBoxThatTheRuntimeMakesTheTextOf) {
  const Handle letters = list("ArrayList<Char>", {integer("Char", 'a'), integer("Char", 'b')});
  int calls = 0;
  std::function<void()> collect = [&] {
    ++calls;
    vorn_heap_collect();
  };
  onObjectText = &collect;
  const Handle joined(vorn_collections_ArrayList_join(letters, ","));
  onObjectText = nullptr;
  EXPECT_EQ(describe(joined), "String a,b");
  EXPECT_EQ(calls, 2);
}

// ---- What the runtime is asked --------------------------------------------------------------------------------------

using ObjectTexts = RuntimeTest;

// The default text of an object is that of what is no number, text or collection: of these a runtime need not know it.
TEST_F(ObjectTexts, OfNumbersTextsAndCollections_AreNotAskedFor) {
  std::vector<Handle> values = {boolean(true), string("a"), text("a"), floating("Float", 1), floating("Double", 1)};
  for (const char* type : {"Int", "UInt", "Long", "ULong", "Short", "UShort", "Byte", "SByte"}) {
    values.push_back(integer(type, 1));
  }
  for (const Kind& kind : kKinds) values.push_back(collectionFor(kind, 0));
  int calls = 0;
  std::function<void()> count = [&] { ++calls; };
  onObjectText = &count;
  for (const Handle& value : values) {
    calls = 0;
    const std::string text = valueToDisplayString(value);
    EXPECT_EQ(calls, 0) << text;
  }
  valueToDisplayString(plain(1));
  onObjectText = nullptr;
  EXPECT_EQ(calls, 1) << "an object of another class";
}

}  // namespace
}  // namespace vorn::tests
