// What a missing mutex does, and where locks are held. That every native takes and releases them is in tests/nets.
#include <csignal>

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

TEST_F(Lock, SynchronisedListWithoutAMutex_EndsTheProcess) {
  const Handle target = list("ArrayListSync<Int>", {integer("Int", 1)});
  EXPECT_EXIT(
      {
        getListData(target)->mutex = nullptr;
        vorn_collections_ArrayList_size(target);
      },
      ::testing::KilledBySignal(SIGABRT), "");
}

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
