// Hooks of keys that look keys up themselves, in the very map or set that called them: they are asked afresh, however
// often a pair is being compared further out, and still everything ends.
#include <algorithm>

#include "collections/keyed/keyed_validation.h"
#include "tests/keyed/keyed_cases.h"
#include "tests/support/sequences.h"

namespace vorn::tests {
namespace {

class NestedLookups : public MapTest {
 protected:
  // Lets both hooks run code before they answer that the keys differ.
  static void whileTellingApart(const std::function<void(void* self)>& action) {
    userHooks.equals = [=](void* self, void* other) {
      action(self);
      return self == other;
    };
    userHooks.compare = [=](void* self, void* other, bool*) {
      action(self);
      return self == other ? 0 : (self < other ? -1 : 1);
    };
  }

  // Expects the keys to be there once each, with their values.
  static void expectEntries(void* map, const std::vector<std::pair<Handle, std::int64_t>>& expected) {
    userHooks = {};
    userHooks.equals = [](void* self, void* other) { return self == other; };
    userHooks.compare = [](void* self, void* other, bool*) { return self == other ? 0 : (self < other ? -1 : 1); };
    EXPECT_EQ(vorn_collections_Map_size(map), static_cast<long long>(expected.size()));
    for (const auto& [key, value] : expected) {
      const auto entries = entriesOf(map);
      EXPECT_EQ(std::count_if(entries.begin(), entries.end(),
                              [wanted = key.get()](const Entry& e) { return e.key == wanted; }),
                1);
      void* const found = vorn_collections_Map__get(map, key);
      ASSERT_NE(found, nullptr);
      EXPECT_EQ(valueOf(found), value);
    }
    EXPECT_MAP_AT_REST(map);
  }
};
INSTANTIATE_MAP_TESTS(NestedLookups);

TEST_P(NestedLookups, APutOfTheComparedKey_IsNotMisledByTheComparisonInProgress) {
  const Handle map = object(type());
  const Handle present = userKey(1);
  const Handle added = userKey(1);
  vorn_collections_Map_put(map, present, number(1));
  int depth = 0;
  whileTellingApart([&](void*) {
    if (depth > 0) return;
    ++depth;
    vorn_collections_Map_put(map, added, number(42));
    EXPECT_EQ(collections::validateMapData(*getMapData(map)), "");
  });
  vorn_collections_Map_put(map, added, number(2));
  expectEntries(map, {{present, 1}, {added, 2}});
}

TEST_P(NestedLookups, ALookupOfTheComparedKey_FindsWhatIsThere) {
  const Handle map = object(type());
  const Handle present = userKey(1);
  const Handle absent = userKey(1);
  vorn_collections_Map_put(map, present, number(1));
  int depth = 0;
  int nested = 0;
  whileTellingApart([&](void*) {
    if (depth > 0) return;
    ++depth;
    ++nested;
    EXPECT_FALSE(vorn_collections_Map_operator_in(map, absent));
    EXPECT_TRUE(vorn_collections_Map_operator_in(map, present));
    --depth;
  });
  EXPECT_FALSE(vorn_collections_Map_operator_in(map, absent));
  EXPECT_GE(nested, 1);
}

TEST_P(NestedLookups, KeysInsideTuples_AreAskedAfreshToo) {
  for (const bool nestedTuples : {false, true}) {
    const auto wrapped = [&](const Handle& key) {
      const Handle inner = tupleOf({key, key});
      return nestedTuples ? tupleOf({inner}) : inner;
    };
    const Handle map = object(type());
    const Handle present = wrapped(userKey(1));
    const Handle absent = wrapped(userKey(1));
    vorn_collections_Map_put(map, present, number(1));
    int depth = 0;
    whileTellingApart([&](void*) {
      if (depth > 0) return;
      ++depth;
      EXPECT_FALSE(vorn_collections_Map_operator_in(map, absent));
      --depth;
    });
    EXPECT_FALSE(vorn_collections_Map_operator_in(map, absent));
    userHooks = {};
  }
}

TEST_P(NestedLookups, ThatNeverCease_EndByIdentity) {
  const Handle map = object(type());
  std::vector<Handle> keys;
  for (int i = 0; i < 12; ++i) {
    keys.push_back(userKey(i));
    vorn_collections_Map_put(map, keys.back(), number(i));
  }
  const Handle absent = userKey(100);
  int calls = 0;
  // Two lookups each: were only their depth bounded, there would be no end in sight.
  whileTellingApart([&](void*) {
    ++calls;
    EXPECT_FALSE(vorn_collections_Map_operator_in(map, absent));
    EXPECT_FALSE(vorn_collections_Map_operator_in(map, absent));
  });
  EXPECT_FALSE(vorn_collections_Map_operator_in(map, absent));
  EXPECT_GT(calls, 12);
  EXPECT_LT(calls, 12 * 2000);
  EXPECT_MAP_AT_REST(map);
}

TEST_P(NestedLookups, PutsThatNeverCease_End) {
  const Handle map = object(type());
  const Handle present = userKey(1);
  const Handle added = userKey(1);
  vorn_collections_Map_put(map, present, number(1));
  int calls = 0;
  whileTellingApart([&](void*) {
    ++calls;
    vorn_collections_Map_put(map, added, number(7));
  });
  vorn_collections_Map_put(map, added, number(2));
  EXPECT_LT(calls, 20000);
  expectEntries(map, {{present, 1}, {added, 2}});
}

TEST_F(RuntimeTest, NestedLookupsInAnotherSet_AskTheHookAfresh) {
  // Both sets hold one of two keys that are not equal; a comparison in one leads to the same pair in the other.
  const Handle one = userKey(1);
  const Handle other = userKey(1);
  const Handle outer = object("HashSet");
  const Handle inner = object("HashSet");
  vorn_collections_HashSet_add(outer, one);
  vorn_collections_HashSet_add(inner, one);
  int depth = 0;
  userHooks.equals = [&](void* self, void* with) {
    if (depth++ == 0) {
      EXPECT_FALSE(vorn_collections_HashSet_operator_in(inner, other));
    }
    return self == with;
  };
  EXPECT_FALSE(vorn_collections_HashSet_operator_in(outer, other));
  EXPECT_EQ(depth, 2);
}

TEST_F(RuntimeTest, ComparisonsThatAHookGoesOnWith_StillTakeThePairInProgressForEqual) {
  // Keys that refer to each other, compared by what they refer to.
  const Handle one = userKey(1);
  const Handle other = userKey(1);
  int calls = 0;
  userHooks.equals = [&](void* self, void* with) {
    ++calls;
    return vorn_equals(self, with) != 0;
  };
  const Handle set = object("HashSet");
  vorn_collections_HashSet_add(set, one);
  EXPECT_TRUE(vorn_collections_HashSet_operator_in(set, other));
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace vorn::tests
