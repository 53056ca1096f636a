// Keys of a user class whose hooks raise, change the very collection, or answer inconsistently.
#include <algorithm>
#include <stdexcept>

#include "collections/core/port/keys.h"
#include "collections/core/port/object_layout.h"
#include "collections/keyed/keyed_validation.h"
#include "collections/keyed/map_lookup.h"
#include "tests/keyed/keyed_cases.h"
#include "tests/support/error_texts.h"
#include "tests/support/sequences.h"

namespace vorn::tests {
namespace {

constexpr const char* kNotFound = error_texts::kKeyNotFound;

// Lets a test run some code in each comparison of user keys, whichever hook the collection's storage asks.
void duringComparisons(const std::function<void()>& action) {
  userHooks.equals = [=](void* self, void* other) {
    const bool equal = vorn_is_instance(other, "app.Key") != 0 && idOf(self) == idOf(other);
    action();
    return equal;
  };
  userHooks.compare = [=](void* self, void* other, bool*) {
    const auto order = static_cast<int>(idOf(self) - idOf(other));
    action();
    return order;
  };
}

class UserKeys : public MapTest {
 protected:
  // A map of the user keys 0 ... count - 1, all of one hash, and the keys themselves.
  Handle userMap(int count) {
    Handle map = object(type());
    for (int i = 0; i < count; ++i) {
      keys_.push_back(userKey(i));
      vorn_collections_Map_put(map, keys_.back(), number(i));
    }
    EXPECT_EQ(vorn_collections_Map_size(map), count);
    return map;
  }
  std::vector<Handle> keys_;
};
INSTANTIATE_MAP_TESTS(UserKeys);

TEST_P(UserKeys, EqualKeys_AreFoundReplacedAndRemoved) {
  const Handle map = userMap(20);
  for (int i = 0; i < 20; ++i) EXPECT_EQ(valueOf(vorn_collections_Map__get(map, userKey(i))), i);
  EXPECT_EQ(vorn_collections_Map__get(map, userKey(20)), nullptr);
  vorn_collections_Map_put(map, userKey(7), string("new"));
  EXPECT_EQ(vorn_collections_Map_size(map), 20);
  EXPECT_TRUE(vorn_collections_Map_remove(map, userKey(7)));
  EXPECT_FALSE(vorn_collections_Map_remove(map, userKey(7)));
  EXPECT_EQ(vorn_collections_Map_size(map), 19);
  EXPECT_MAP_AT_REST(map);
}

TEST_P(UserKeys, AHookThatThrows_LeavesNullInTheSlotOfALookup) {
  const Handle map = userMap(3);
  const Handle key = userKey(1);
  void* slot = nullptr;
  const auto expectNull = [&](const char* what, const auto& lookUp) {
    slot = map;
    EXPECT_THROW(lookUp(), std::runtime_error) << what;
    EXPECT_EQ(slot, nullptr) << what;
  };
  const auto expectAll = [&](const char* hook) {
    SCOPED_TRACE(hook);
    expectNull("tryMapLookupObjectValue", [&] { tryMapLookupObjectValue(map, key, &slot); });
    expectNull("tryGet", [&] { vorn_collections_Map_tryGet(map, key, &slot); });
  };
  const NativeCollectionKey madeBefore = makeNativeCollectionKey(key);
  duringComparisons([] { throw std::runtime_error("thrown by a hook"); });
  expectAll("a comparison");
  expectNull("tryMapLookupStorageValue", [&] { tryMapLookupStorageValue(map, madeBefore, &slot); });
  userHooks = {};
  if (sorted()) return;
  userHooks.hash = [](void*) -> std::uint64_t { throw std::runtime_error("thrown by a hook"); };
  expectAll("hash");
  userHooks = {};
}

TEST_P(UserKeys, SortedMapsListThemInTheirOrder) {
  const Handle map = object(type());
  for (const int id : {3, 1, 2, 0}) vorn_collections_Map_put(map, userKey(id), number(id));
  std::vector<long long> ids = listedIntegers(vorn_collections_Map_values(map));
  if (!sorted()) std::sort(ids.begin(), ids.end());
  EXPECT_EQ(ids, (std::vector<long long>{0, 1, 2, 3}));
}

// ---- Raising --------------------------------------------------------------------------------------------------------

TEST_P(UserKeys, HashThatRaises_SortedMapsDoNotAskIt) {
  if (!sorted()) GTEST_SKIP() << "hash maps hash";
  userHooks.hash = [](void*) { return vorn_raise("Hook", "hash"), std::uint64_t{1}; };
  const Handle map = userMap(5);
  void* slot = nullptr;
  vorn_collections_Map_put(map, userKey(1), string("v"));
  vorn_collections_Map__set(map, userKey(7), string("v"));
  vorn_collections_Map_operator_index_eq(map, userKey(8), string("v"));
  EXPECT_NE(vorn_collections_Map__get(map, userKey(1)), nullptr);
  EXPECT_TRUE(vorn_collections_Map_tryGet(map, userKey(2), &slot));
  EXPECT_TRUE(vorn_collections_Map_operator_in(map, userKey(3)));
  EXPECT_NE(vorn_collections_Map_operator_index(map, userKey(4)), nullptr);
  EXPECT_TRUE(vorn_collections_Map_remove(map, userKey(0)));
  EXPECT_EQ(listed(vorn_collections_Map_keys(map)).size(), 6U);
  const Handle tuple = tupleOf({userKey(1), userKey(2)});
  vorn_collections_Map_put(map, tuple, nullptr);
  EXPECT_TRUE(vorn_collections_Map_operator_in(map, tuple));
  // Maps in one order are compared place by place.
  const Handle other = object("SortedMap");
  for (const Handle& key : listed(vorn_collections_Map_keys(map))) {
    vorn_collections_Map_put(other, key, vorn_collections_Map__get(map, key));
  }
  EXPECT_TRUE(vorn_collections_Map_operator_eq(map, other));
  vorn_collections_Map_remove(other, userKey(2));
  vorn_collections_Map_put(other, userKey(9), number(2));
  EXPECT_FALSE(vorn_collections_Map_operator_eq(map, other));
  EXPECT_EQ(hookCalls(Hook::Hash), 0);
  EXPECT_MAP_AT_REST(map);
}

TEST_P(UserKeys, HashThatRaises_EveryNativeIsNeutral) {
  if (sorted()) GTEST_SKIP() << "sorted maps never hash";
  const Handle map = userMap(5);
  const MapState before(map);
  userHooks.hash = [](void*) { return vorn_raise("Hook", "hash"), std::uint64_t{1}; };
  void* slot = map;
  vorn_collections_Map_put(map, keys_[1], string("v"));
  EXPECT_RAISED("Hook: hash");
  EXPECT_EQ(vorn_collections_Map__get(map, keys_[1]), nullptr);
  EXPECT_RAISED("Hook: hash");
  EXPECT_FALSE(vorn_collections_Map_tryGet(map, keys_[1], &slot));
  EXPECT_EQ(slot, nullptr);
  EXPECT_RAISED("Hook: hash");
  EXPECT_FALSE(vorn_collections_Map_operator_in(map, keys_[1]));
  EXPECT_RAISED("Hook: hash");
  EXPECT_FALSE(vorn_collections_Map_remove(map, keys_[1]));
  EXPECT_RAISED("Hook: hash");
  EXPECT_EQ(vorn_collections_Map_operator_index(map, keys_[1]), nullptr);
  EXPECT_EQ(takeErrors(), (std::vector<std::string>{"Hook: hash", kNotFound}));
  EXPECT_EQ(MapState(map), before);
  EXPECT_MAP_AT_REST(map);
}

TEST_P(UserKeys, ComparisonThatRaises_EndsTheSearchAndChangesNothing) {
  const Handle map = userMap(8);
  const MapState before(map);
  int comparisons = 0;
  int allowed = 0;
  duringComparisons([&] {
    if (++comparisons > allowed) vorn_raise("Hook", "comparison");
  });
  for (allowed = 0; allowed < 3; ++allowed) {
    const auto raisedOnce = [&](const char* what) {
      EXPECT_EQ(takeErrors(), std::vector<std::string>{"Hook: comparison"}) << what;
      EXPECT_EQ(comparisons, allowed + 1) << what;
      EXPECT_EQ(MapState(map), before) << what;
      EXPECT_MAP_AT_REST(map);
      comparisons = 0;
    };
    void* slot = map;
    vorn_collections_Map_put(map, userKey(100), string("v"));
    raisedOnce("put");
    EXPECT_EQ(vorn_collections_Map__get(map, userKey(100)), nullptr);
    raisedOnce("_get");
    EXPECT_FALSE(vorn_collections_Map_tryGet(map, userKey(100), &slot));
    EXPECT_EQ(slot, nullptr);
    raisedOnce("tryGet");
    EXPECT_FALSE(vorn_collections_Map_operator_in(map, userKey(100)));
    raisedOnce("in");
    EXPECT_FALSE(vorn_collections_Map_remove(map, userKey(100)));
    raisedOnce("remove");
    EXPECT_EQ(vorn_collections_Map_operator_index(map, userKey(100)), nullptr);
    EXPECT_EQ(takeErrors(), (std::vector<std::string>{"Hook: comparison", kNotFound}));
    comparisons = 0;
  }
}

TEST_P(UserKeys, ComparisonThatRaisesWhileTrue_IsNotFound) {
  const Handle map = userMap(1);
  const MapState before(map);
  userHooks.equals = [](void*, void*) { return vorn_raise("Hook", "equals"), true; };
  userHooks.compare = [](void*, void*, bool*) { return vorn_raise("Hook", "equals"), 0; };
  EXPECT_FALSE(vorn_collections_Map_remove(map, userKey(0)));
  EXPECT_RAISED("Hook: equals");
  vorn_collections_Map_put(map, userKey(0), nullptr);
  EXPECT_RAISED("Hook: equals");
  EXPECT_EQ(MapState(map), before);
}

TEST_P(UserKeys, ContainsValueThatRaises_IsFalseAndUnlocked) {
  const Handle map = object(type());
  for (int i = 0; i < 5; ++i) vorn_collections_Map_put(map, number(i), userKey(i));
  int comparisons = 0;
  userHooks.equals = [&](void*, void*) {
    ++comparisons;
    vorn_raise("Hook", "equals");
    return true;
  };
  EXPECT_FALSE(vorn_collections_Map_containsValue(map, userKey(3)));
  EXPECT_RAISED("Hook: equals");
  EXPECT_EQ(comparisons, 1);
  EXPECT_MAP_AT_REST(map);
}

// ---- Changing the collection ----------------------------------------------------------------------------------------

// Over the maps without a lock: a hook that enters the synchronised map it is called from waits for itself.
class ChangingKeys : public UserKeys {
 protected:
  // What a hook does to the map, in turns.
  void change(void* map, int turn) {
    const Inside inside(this);
    switch (turn % 6) {
      case 0:
        vorn_collections_Map_put(map, number(1000 + turn), number(turn));
        break;
      case 1:
        vorn_collections_Map_remove(map, number(1000 + turn - 1));
        break;
      case 2:
        for (int i = 0; i < 40; ++i) vorn_collections_Map_put(map, number(2000 + i), nullptr);
        break;
      case 3:
        vorn_collections_Map_clear(map);
        vorn_collections_Map_put(map, number(turn), nullptr);
        break;
      case 4:
        vorn_collections_Map_reserve(map, 100 + 300 * (turn % 5));
        break;
      default:
        for (const Handle& key : keys_) vorn_collections_Map_put(map, key, number(turn));
    }
    EXPECT_EQ(collections::validateMapData(*getMapData(map)), "");
  }

  // Comparisons inside the hook's own calls run no hook, or they would never end.
  class Inside {
   public:
    explicit Inside(ChangingKeys* owner) : owner_(owner) { owner_->inside_ = true; }
    ~Inside() { owner_->inside_ = false; }
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;

   private:
    ChangingKeys* owner_;
  };
  bool inside_ = false;
};
INSTANTIATE_TEST_SUITE_P(Kinds, ChangingKeys, ::testing::Values("Map", "SortedMap"),
                         [](const auto& param) { return std::string(param.param); });

TEST_P(ChangingKeys, OneChangeDuringTheSearch_TheResultIsThatOfTheChangedMap) {
  for (int turn = 0; turn < 6; ++turn) {
    SCOPED_TRACE(turn);
    userHooks = {};
    keys_.clear();
    const Handle map = userMap(10);
    bool done = false;
    duringComparisons([&] {
      if (std::exchange(done, true)) return;
      change(map, turn);
    });
    vorn_collections_Map_put(map, userKey(5), string("new"));
    userHooks = {};
    EXPECT_TRUE(vorn_collections_Map_operator_in(map, userKey(5)));
    EXPECT_EQ(std::string(vorn_string_text(vorn_collections_Map__get(map, userKey(5)))), "new");
    EXPECT_EQ(vorn_collections_Map_size(map), turn == 0 ? 11 : turn == 2 ? 50 : turn == 3 ? 2 : 10);
    EXPECT_MAP_AT_REST(map);
  }
}

TEST_P(ChangingKeys, BucketsComeOrGoDuringTheSearch_TheResultIsThatOfTheChangedMap) {
  for (const int count : {7, 15, 16, 17, 20}) {
    for (const bool shrinks : {false, true}) {
      SCOPED_TRACE(count);
      userHooks = {};
      keys_.clear();
      const Handle map = userMap(count);
      bool done = false;
      duringComparisons([&] {
        if (std::exchange(done, true)) return;
        for (int i = 0; i < 4 && !shrinks; ++i) vorn_collections_Map_put(map, number(1000 + i), nullptr);
        for (int i = 6; i < count && shrinks; ++i) vorn_collections_Map_remove(map, keys_[static_cast<std::size_t>(i)]);
        if (shrinks) vorn_collections_Map_reserve(map, 1);
        EXPECT_EQ(collections::validateMapData(*getMapData(map)), "");
      });
      vorn_collections_Map_put(map, userKey(5), string("new"));
      userHooks = {};
      EXPECT_TRUE(done);
      EXPECT_EQ(vorn_collections_Map_size(map), shrinks ? 6 : count + 4);
      EXPECT_EQ(std::string(vorn_string_text(vorn_collections_Map__get(map, userKey(5)))), "new");
      EXPECT_TRUE(!shrinks || getMapData(map)->hash.bucketCount() == 0);
      EXPECT_MAP_AT_REST(map);
    }
  }
}

TEST_P(ChangingKeys, ChangesAtEveryComparison_EveryNativeEnds) {
  const Handle map = userMap(10);
  int turn = 0;
  duringComparisons([&] {
    if (!inside_) change(map, turn++);
  });
  void* slot = nullptr;
  for (int round = 0; round < (onStressHeap() ? 2 : 20); ++round) {
    vorn_collections_Map_put(map, userKey(100 + round), number(round));
    EXPECT_MAP_AT_REST(map);
    vorn_collections_Map__get(map, keys_[static_cast<std::size_t>(round % 10)]);
    vorn_collections_Map_tryGet(map, userKey(3), &slot);
    vorn_collections_Map_operator_in(map, userKey(4));
    vorn_collections_Map_remove(map, userKey(5));
    EXPECT_MAP_AT_REST(map);
  }
  EXPECT_GT(turn, 0);
}

TEST_P(ChangingKeys, EndlessInsertions_TheLastSearchGoesByIdentity) {
  const Handle map = userMap(3);
  long long comparisons = 0;
  std::int64_t fresh = 5000;
  duringComparisons([&] {
    ++comparisons;
    vorn_collections_Map_put(map, number(fresh++), nullptr);
  });
  EXPECT_TRUE(vorn_collections_Map_operator_in(map, keys_[1])) << "the same object is found without asking it";
  EXPECT_FALSE(vorn_collections_Map_operator_in(map, userKey(1))) << "an equal one would have to be asked";
  EXPECT_LE(comparisons, 200);
  const long long before = vorn_collections_Map_size(map);
  comparisons = 0;
  vorn_collections_Map_put(map, keys_[2], string("same"));
  EXPECT_EQ(vorn_collections_Map_size(map), before + comparisons) << "replaced, beside the hook's own insertions";
  userHooks = {};
  EXPECT_MAP_AT_REST(map);
}

TEST_P(ChangingKeys, TheComparedKeyIsRemovedMeanwhile_NothingDangles) {
  const Handle map = object(type());
  for (int i = 0; i < 6; ++i) vorn_collections_Map_put(map, userKey(i), number(i));  // only the map keeps them
  duringComparisons([&] {
    vorn_collections_Map_clear(map);
    vorn_heap_collect();
    for (int i = 0; i < 20; ++i) string("garbage in place of what has died");
  });
  EXPECT_EQ(vorn_collections_Map__get(map, userKey(3)), nullptr);
  EXPECT_EQ(vorn_collections_Map_size(map), 0);
  EXPECT_MAP_AT_REST(map);
}

TEST_P(ChangingKeys, TheComparedKeyIsRemovedMeanwhile_TheHookStillReadsIt) {
  const Handle map = object(type());
  for (int i = 0; i < 6; ++i) vorn_collections_Map_put(map, userKey(i), number(i));  // only the map keeps them
  const Handle wanted = userKey(7);
  int comparisons = 0;
  const auto drop = [&](void* self, void* other) {
    ++comparisons;
    const std::int64_t sum = idOf(self) + idOf(other);
    vorn_collections_Map_clear(map);
    vorn_heap_collect();
    for (int i = 0; i < 20; ++i) userKey(100 + i);
    EXPECT_EQ(idOf(self) + idOf(other), sum);
  };
  userHooks.equals = [&](void* self, void* other) { return drop(self, other), false; };
  userHooks.compare = [&](void* self, void* other, bool*) { return drop(self, other), 1; };
  EXPECT_EQ(vorn_collections_Map__get(map, wanted), nullptr);
  userHooks = {};
  EXPECT_EQ(comparisons, 1);
  EXPECT_MAP_AT_REST(map);
}

TEST_P(ChangingKeys, ContainsValue_SurvivesEveryChange) {
  for (int endless = 0; endless < 2; ++endless) {
    const Handle map = object(type());
    for (int i = 0; i < 10; ++i) vorn_collections_Map_put(map, number(i), userKey(i));
    int turn = 0;
    userHooks.equals = [&](void*, void*) {
      if (endless == 1) {
        ++turn;
        vorn_collections_Map_put(map, number(100 + turn), userKey(turn));
      } else if (turn++ == 3) {
        vorn_collections_Map_clear(map);
      }
      return false;
    };
    EXPECT_FALSE(vorn_collections_Map_containsValue(map, userKey(77)));
    EXPECT_LE(turn, 200);
    EXPECT_MAP_AT_REST(map);
  }
}

TEST_P(ChangingKeys, ContainsValue_EndlessChanges_TheLastWalkGoesByIdentity) {
  const Handle map = object(type());
  const Handle value = userKey(5);
  vorn_collections_Map_put(map, number(-1), userKey(1));
  vorn_collections_Map_put(map, number(0), value);
  int turn = 0;
  userHooks.equals = [&](void*, void*) {
    vorn_collections_Map_put(map, number(100 + turn++), nullptr);
    return false;
  };
  EXPECT_TRUE(vorn_collections_Map_containsValue(map, value));
}

// ---- Answering inconsistently ---------------------------------------------------------------------------------------

TEST_P(UserKeys, InconsistentAnswers_LeaveTheRecordWhole) {
  std::uint64_t state = 88172645463325252ULL;
  const auto random = [&] {
    state ^= state << 13;
    state ^= state >> 7;
    state ^= state << 17;
    return state >> 20;
  };
  const Handle map = object(type());
  std::vector<Handle> keys;
  for (int i = 0; i < 30; ++i) keys.push_back(userKey(i));
  userHooks.equals = [&](void*, void*) { return random() % 5 == 0; };
  userHooks.compare = [&](void*, void*, bool* comparable) {
    *comparable = random() % 7 != 0;
    return static_cast<int>(random() % 3) - 1;
  };
  userHooks.hash = [&](void*) { return random() % 3; };
  for (int step = 0; step < (onStressHeap() ? 100 : 3000); ++step) {
    void* const key = keys[random() % keys.size()];
    if (random() % 3 == 0) {
      vorn_collections_Map_remove(map, key);
    } else {
      vorn_collections_Map_put(map, key, key);
    }
    vorn_collections_Map__get(map, keys[random() % keys.size()]);
    if (step % 10 == 0) {
      EXPECT_MAP_AT_REST(map);
    }
  }
  userHooks = {};
  EXPECT_EQ(listed(vorn_collections_Map_keys(map)).size(), static_cast<std::size_t>(vorn_collections_Map_size(map)));
  EXPECT_MAP_AT_REST(map);
}

// ---- Sets -----------------------------------------------------------------------------------------------------------

class UserElements : public SetTest {
 protected:
  static Handle userSet(int count) {
    Handle set = object(type());
    for (int i = 0; i < count; ++i) vorn_collections_HashSet_add(set, userKey(i));
    EXPECT_EQ(vorn_collections_HashSet_size(set), count);
    return set;
  }
};
INSTANTIATE_SET_TESTS(UserElements);

TEST_P(UserElements, HashOrEqualityThatRaises_EveryNativeIsNeutral) {
  const Handle set = userSet(5);
  const std::vector<void*> before = elementsOfSet(set);
  for (const bool byHash : {true, false}) {
    userHooks = {};
    const Handle key = userKey(100);
    if (byHash) {
      userHooks.hash = [](void*) { return vorn_raise("Hook", "raised"), std::uint64_t{1}; };
    } else {
      userHooks.equals = [](void*, void*) { return vorn_raise("Hook", "raised"), true; };
    }
    vorn_collections_HashSet_add(set, key);
    EXPECT_RAISED("Hook: raised");
    EXPECT_FALSE(vorn_collections_HashSet_remove(set, key));
    EXPECT_RAISED("Hook: raised");
    EXPECT_FALSE(vorn_collections_HashSet_operator_in(set, key));
    EXPECT_RAISED("Hook: raised");
    EXPECT_EQ(vorn_collections_HashSet_count(set, key), 0);
    EXPECT_RAISED("Hook: raised");
    EXPECT_EQ(elementsOfSet(set), before);
    EXPECT_SET_AT_REST(set);
  }
}

TEST_F(RuntimeTest, ChangesOfASetDuringEquality_EveryNativeEnds) {
  const Handle set = object("HashSet");
  for (int i = 0; i < 6; ++i) vorn_collections_HashSet_add(set, userKey(i));
  int turn = 0;
  bool inside = false;
  duringComparisons([&] {
    if (inside) return;
    inside = true;
    ++turn;
    if (turn % 4 == 0) vorn_collections_HashSet_clear(set);
    if (turn % 4 == 1) vorn_collections_HashSet_add(set, number(turn));
    if (turn % 4 == 2) vorn_collections_HashSet_reserve(set, turn * 10);
    if (turn % 4 == 3) vorn_collections_HashSet_add(set, userKey(turn));
    EXPECT_EQ(collections::validateSetData(*getSetData(set)), "");
    inside = false;
  });
  for (int round = 0; round < 10; ++round) {
    vorn_collections_HashSet_add(set, userKey(100 + round));
    vorn_collections_HashSet_operator_in(set, userKey(3));
    vorn_collections_HashSet_remove(set, userKey(100 + round));
    EXPECT_SET_AT_REST(set);
  }
  EXPECT_GT(turn, 0);
}

}  // namespace
}  // namespace vorn::tests
