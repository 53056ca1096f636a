// Which natives lock, what a failing or missing mutex does, and that every lock is released.
#include <cerrno>
#include <csignal>
#include <system_error>

#include "collections/core/port/object_layout.h"
#include "tests/arraylist/list_cases.h"
#include "tests/support/lists.h"

namespace vorn::tests {
namespace {

// One list of each storage, with an element and a value that it accepts.
struct Storage {
  Handle list;
  Handle value;
};

std::vector<Storage> storages(bool synchronised) {
  const Handle one = integer("Int", 1);
  const Handle word = string("word");
  return {{list(className(false, synchronised, "Int"), {one, one}), one},
          {list(className(false, synchronised), {word, one}), word},
          {list(className(true, synchronised), {one, word}), word},
          {list(className(true, synchronised, "Int"), {one}), one}};
}

class Lock : public RuntimeTest {};
class NativeLock : public RuntimeTest, public ::testing::WithParamInterface<NativeCase> {};

TEST_P(NativeLock, FailingMutex_IsASystemErrorAndLeavesTheListUnchanged) {
  if (!GetParam().locks) return;  // sizeFast: see SizeFast_NeverLocks
  for (const Storage& storage : storages(true)) {
    const Snapshot before(storage.list);
    {
      const HeldMutex held(storage.list);
      try {
        GetParam().call(storage.list, storage.value);
        ADD_FAILURE() << GetParam().name << " did not lock";
      } catch (const std::system_error& error) {
        EXPECT_EQ(error.code().value(), EDEADLK);
      }
      EXPECT_EQ(Snapshot(storage.list), before);
    }
    EXPECT_UNTOUCHED(storage.list, before);
    GetParam().call(storage.list, storage.value);  // and it works again
    EXPECT_AT_REST(storage.list);
  }
}

TEST_P(NativeLock, SynchronisedListWithoutAMutex_EndsTheProcess) {
  if (!GetParam().locks) return;
  const Handle one = integer("Int", 1);
  const Handle target = list("ArrayListSync<Int>", {one});
  EXPECT_EXIT(
      {
        getListData(target)->mutex = nullptr;
        GetParam().call(target, one);
      },
      ::testing::KilledBySignal(SIGABRT), "");
}

TEST_P(NativeLock, UnsynchronisedList_NeverTouchesItsMutex) {
  for (const Storage& storage : storages(false)) {
    const HeldMutex held(storage.list);
    GetParam().call(storage.list, storage.value);
    EXPECT_VALID_LIST(storage.list);
  }
}

TEST_P(NativeLock, SynchronisedList_IsUnlockedAfterwards) {
  for (const Storage& storage : storages(true)) {
    GetParam().call(storage.list, storage.value);
    EXPECT_AT_REST(storage.list);
    vorn_collections_ArrayList_clear(storage.list);
    GetParam().call(storage.list, storage.value);
    takeErrors();  // the indexed reads find no element
    EXPECT_AT_REST(storage.list);
  }
}

INSTANTIATE_TEST_SUITE_P(Natives, NativeLock, ::testing::ValuesIn(natives()),
                         [](const auto& param) { return std::string(param.param.name); });

TEST_F(Lock, SizeFast_NeverLocks) {
  for (const Storage& storage : storages(true)) {
    const long long size = vorn_collections_ArrayList_size(storage.list);
    const HeldMutex held(storage.list);
    EXPECT_EQ(vorn_collections_ArrayList_sizeFast(storage.list), size);
  }
  const Handle target = list("ArrayListSync<Int>", {integer("Int", 1)});
  pthread_mutex_t* const mutex = getListData(target)->mutex;
  getListData(target)->mutex = nullptr;
  EXPECT_EQ(vorn_collections_ArrayList_sizeFast(target), 1);
  getListData(target)->mutex = mutex;
}

TEST_F(Lock, NullReceiver_NeedsNoLock) {
  for (const NativeCase& native : natives()) native.call(nullptr, nullptr);
  EXPECT_RAISED(kAddOnNullError);
}

TEST_F(Lock, IsReleasedAfterEveryRaise) {
  const Handle typed = list("ArrayListSync<Int>", {integer("Int", 1)});
  const Handle holed = list("LinkedListSync", {nullptr});
  const Handle word = string("x");
  const auto expectReleased = [](void* target, const std::string& error) {
    EXPECT_RAISED(error);
    EXPECT_TRUE(isUnlocked(target));
  };
  const std::string refused = listTypeError("Int", "vorn.String");
  vorn_collections_ArrayList_add(typed, word);
  expectReleased(typed, refused);
  vorn_collections_ArrayList_addAt(typed, 0, word);
  expectReleased(typed, refused);
  vorn_collections_ArrayList_operator_index_eq(typed, 0, word);
  expectReleased(typed, refused);
  vorn_collections_ArrayList_operator_index_eq(typed, 1, word);
  expectReleased(typed, refused);
  vorn_collections_ArrayList_getInt(holed, 0);
  expectReleased(holed, kIntItemError);
  vorn_collections_ArrayList_getIntFast(holed, 0);
  expectReleased(holed, kIntItemError);
  vorn_collections_ArrayList_getIntFromData(getListData(holed), 0);
  expectReleased(holed, kIntItemError);
  vorn_collections_ArrayList_getDouble(holed, 0);
  expectReleased(holed, kFloatingItemError);
  vorn_collections_ArrayList_removeAt(typed, 1);
  expectReleased(typed, kIndexError);
}

TEST_F(Lock, IsReleasedAfterMemoryExhaustion) {
  const Handle word = string("x");
  const auto expectReleased = [](void* target, const auto& operation) {
    const Snapshot before(target);
    vorn_heap_fail_allocation(0);
    EXPECT_THROW(operation(), std::bad_alloc);
    vorn_heap_fail_allocation(-1);
    EXPECT_UNTOUCHED(target, before);
  };
  const Handle linked = object("LinkedListSync");
  expectReleased(linked, [&] { vorn_collections_ArrayList_add(linked, word); });
  expectReleased(linked, [&] { vorn_collections_ArrayList_addInt(linked, 1); });
  const Handle full = list("ArrayListSync", {word, word, word, word});
  expectReleased(full, [&] { vorn_collections_ArrayList_add(full, word); });
  expectReleased(full, [&] { vorn_collections_ArrayList_addAt(full, 0, word); });
  const Handle unboxed = list("ArrayListSync<Int>", {integer("Int", 1)});
  expectReleased(unboxed, [&] { vorn_collections_ArrayList_operator_index(unboxed, 0); });
  expectReleased(unboxed, [&] { vorn_collections_ArrayList_operator_in(unboxed, word); });
}

TEST_F(Lock, IsHeldWhileUserEqualityRuns) {
  for (const bool linked : {false, true}) {
    const Handle target = list(className(linked, true), {item(1), item(2)});
    const Handle wanted = item(2);
    int calls = 0;
    const ScopedEquality equality([&](void* self, void* other) {
      ++calls;
      EXPECT_TRUE(isRecordLocked(*getListData(target)));
      return idOf(self) == idOf(other);
    });
    EXPECT_EQ(vorn_collections_ArrayList_count(target, wanted), 1);
    EXPECT_TRUE(vorn_collections_ArrayList_operator_in(target, wanted));
    EXPECT_EQ(vorn_collections_ArrayList_indexOf(target, wanted, 0), 1);
    EXPECT_EQ(vorn_collections_ArrayList_lastIndexOf(target, wanted, -1), 1);
    EXPECT_TRUE(vorn_collections_ArrayList_remove(target, wanted));
    EXPECT_EQ(calls, 9);
    EXPECT_AT_REST(target);
  }
}

TEST_F(Lock, IsReleasedWhenUserEqualityRaises) {
  for (const bool linked : {false, true}) {
    const Handle target = list(className(linked, true), {item(1), item(2)});
    const Handle wanted = item(2);
    const Snapshot before(target);
    const ScopedEquality equality([&](void*, void*) {
      vorn_raise("Exception", "from equality");
      return true;
    });
    const auto expectReleased = [&] {
      EXPECT_RAISED("Exception: from equality");
      EXPECT_UNTOUCHED(target, before);
    };
    EXPECT_EQ(vorn_collections_ArrayList_count(target, wanted), 0);
    expectReleased();
    EXPECT_FALSE(vorn_collections_ArrayList_operator_in(target, wanted));
    expectReleased();
    EXPECT_FALSE(vorn_collections_ArrayList_remove(target, wanted));
    expectReleased();
    EXPECT_EQ(vorn_collections_ArrayList_indexOf(target, wanted, 0), -1);
    expectReleased();
    EXPECT_EQ(vorn_collections_ArrayList_lastIndexOf(target, wanted, -1), -1);
    expectReleased();
  }
}

}  // namespace
}  // namespace vorn::tests
