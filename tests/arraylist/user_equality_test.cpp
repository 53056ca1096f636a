// Searches whose equality is user code that changes the list, raises, lies, allocates or collects.
#include <algorithm>
#include <random>
#include <tuple>

#include "tests/arraylist/list_cases.h"

namespace vorn::tests {
namespace {

struct SearchNative {
  const char* name;
  // Whether listValuesEqual gets the wanted value first.
  bool valueFirst;
  bool backward;
  long long neutral;
  long long (*run)(void* target, void* value);
};

const SearchNative kSearches[] = {
    {"count", true, false, 0,
     [](void* target, void* value) { return vorn_collections_ArrayList_count(target, value); }},
    {"operator_in", true, false, 0,
     [](void* target, void* value) -> long long { return vorn_collections_ArrayList_operator_in(target, value); }},
    {"remove", false, false, 0,
     [](void* target, void* value) -> long long { return vorn_collections_ArrayList_remove(target, value); }},
    {"indexOf", true, false, -1,
     [](void* target, void* value) { return vorn_collections_ArrayList_indexOf(target, value, 0); }},
    {"lastIndexOf", true, true, -1,
     [](void* target, void* value) { return vorn_collections_ArrayList_lastIndexOf(target, value, -1); }},
};

std::ostream& operator<<(std::ostream& out, const SearchNative& search) { return out << search.name; }

// A search over object or linked storage of unsynchronised lists of five items.
class UserEquality : public RuntimeTest, public ::testing::WithParamInterface<std::tuple<SearchNative, bool>> {
 protected:
  static const SearchNative& search() { return std::get<0>(GetParam()); }
  static bool linked() { return std::get<1>(GetParam()); }
  static Handle makeList() {
    return list(className(linked(), false, "app.Item"), {item(1), item(2), item(3), item(4), item(5)});
  }
  static Handle makeSynchronisedList() {
    return list(className(linked(), true, "app.Item"), {item(1), item(2), item(3), item(4), item(5)});
  }

  // Runs the search under an equality that finds nothing equal until it changes the list at the given call, and then
  // answers by id. The record must stay whole, and what must stay is named.
  void runChanging(int atCall, bool answer, const std::function<void(void*)>& change, const Elements& mustStay) {
    SCOPED_TRACE("change at call " + std::to_string(atCall) + ", answer " + std::to_string(answer));
    const Handle target = makeList();
    const Handle wanted = item(3);
    int calls = 0;
    long long result = 0;
    {
      const ScopedEquality equality([&](void* self, void* other) {
        ++calls;
        if (calls < atCall) return false;
        if (calls > atCall) return idOf(self) == idOf(other);
        change(target);
        return answer;
      });
      result = search().run(target, wanted);
    }
    EXPECT_VALID_LIST(target);
    EXPECT_NOTHING_RAISED();
    EXPECT_LE(calls, 16);
    EXPECT_GE(result, search().neutral);
    EXPECT_LE(result, 16);
    const Elements left = elementsOf(target);
    for (const std::string& element : mustStay) {
      EXPECT_NE(std::find(left.begin(), left.end(), element), left.end()) << element << " is missing";
    }
  }
};

TEST_P(UserEquality, ArgumentsComeInTheDocumentedOrder) {
  const Handle target = makeList();
  const Handle wanted = item(100);
  std::vector<long long> selves;
  std::vector<long long> others;
  const ScopedEquality equality([&](void* self, void* other) {
    selves.push_back(idOf(self));
    others.push_back(idOf(other));
    return false;
  });
  EXPECT_EQ(search().run(target, wanted), search().neutral);
  const std::vector<long long> values(5, 100);
  const std::vector<long long> elements =
      search().backward ? std::vector<long long>{5, 4, 3, 2, 1} : std::vector<long long>{1, 2, 3, 4, 5};
  EXPECT_EQ(selves, search().valueFirst ? values : elements);
  EXPECT_EQ(others, search().valueFirst ? elements : values);
}

TEST_P(UserEquality, FirstMatchEndsTheSearchExceptForCount) {
  const Handle target = makeList();
  const Handle wanted = item(3);
  const std::string name = search().name;
  EXPECT_EQ(search().run(target, wanted), search().neutral < 0 ? 2 : 1);
  EXPECT_EQ(hookCalls(Hook::Equality), name == "count" ? 5 : 3);
  EXPECT_EQ(vorn_collections_ArrayList_size(target), name == "remove" ? 4 : 5);
}

TEST_P(UserEquality, RaisedError_EndsTheSearchWithTheNeutralResult) {
  for (const bool synchronised : {false, true}) {
    for (const bool answer : {false, true}) {
      const Handle target = synchronised ? makeSynchronisedList() : makeList();
      const Handle wanted = item(1);
      const Snapshot before(target);
      int calls = 0;
      const ScopedEquality equality([&](void*, void*) {
        if (++calls < 3) return false;
        vorn_raise("ValueException", "cannot compare");
        return answer;
      });
      EXPECT_EQ(search().run(target, wanted), search().neutral);
      EXPECT_EQ(calls, 3);
      EXPECT_RAISED("ValueException: cannot compare");
      EXPECT_UNTOUCHED(target, before);
    }
  }
}

TEST_P(UserEquality, ErrorAfterEarlierMatches_StillGivesTheNeutralResult) {
  const Handle target = makeList();
  const Handle wanted = item(1);
  const Snapshot before(target);
  int calls = 0;
  const ScopedEquality equality([&](void*, void*) {
    ++calls;
    if (calls == 5) vorn_raise("ValueException", "at the last element");
    return std::string(search().name) == "count";
  });
  EXPECT_EQ(search().run(target, wanted), search().neutral);
  EXPECT_RAISED("ValueException: at the last element");
  EXPECT_UNTOUCHED(target, before);
}

TEST_P(UserEquality, ErrorPendingBefore_DoesNotEndTheSearch) {
  const Handle target = makeList();
  const Handle wanted = item(3);
  vorn_raise("Exception", "earlier");
  EXPECT_EQ(search().run(target, wanted), search().neutral < 0 ? 2 : 1);
  EXPECT_RAISED("Exception: earlier");
  EXPECT_AT_REST(target);
}

TEST_P(UserEquality, ClearsTheList) {
  for (int call = 1; call <= 5; ++call) {
    for (const bool answer : {false, true}) {
      runChanging(call, answer, [](void* target) { vorn_collections_ArrayList_clear(target); }, {});
    }
  }
}

TEST_P(UserEquality, ClearsAndRefillsTheList) {
  // The new elements stand where the compared ones stood; none of them may go.
  for (int call = 1; call <= 5; ++call) {
    runChanging(call, true,
                [](void* target) {
                  vorn_collections_ArrayList_clear(target);
                  for (int id = 11; id <= 15; ++id) vorn_collections_ArrayList_add(target, item(id));
                },
                {"Item 11", "Item 12", "Item 13", "Item 14", "Item 15"});
  }
}

TEST_P(UserEquality, AppendsToTheList) {
  for (int call = 1; call <= 5; ++call) {
    runChanging(call, false,
                [](void* target) {
                  for (int id = 11; id <= 20; ++id) vorn_collections_ArrayList_add(target, item(id));
                },
                {"Item 1", "Item 2", "Item 4", "Item 5", "Item 11", "Item 20"});
  }
}

TEST_P(UserEquality, RemovesFromTheList) {
  for (int call = 1; call <= 5; ++call) {
    for (const bool answer : {false, true}) {
      for (const long long index : {0LL, -1LL}) {
        runChanging(call, answer,
                    [index](void* target) {
                      vorn_collections_ArrayList_removeAt(target, index);
                      vorn_collections_ArrayList_removeAt(target, index);
                    },
                    {});
      }
    }
  }
}

TEST_P(UserEquality, InsertsIntoTheList) {
  for (int call = 1; call <= 5; ++call) {
    runChanging(call, false,
                [](void* target) {
                  vorn_collections_ArrayList_addAt(target, 0, item(11));
                  vorn_collections_ArrayList_addAt(target, 3, item(12));
                },
                {"Item 1", "Item 2", "Item 4", "Item 5", "Item 11", "Item 12"});
  }
}

TEST_P(UserEquality, MatchThatNoLongerStandsAtItsPlace_TakesNothingElseAway) {
  // The comparison with item 3 is the third in both directions.
  runChanging(3, true, [](void* target) { vorn_collections_ArrayList_removeAt(target, 0); },
              {"Item 2", "Item 4", "Item 5"});
  runChanging(3, true, [](void* target) { vorn_collections_ArrayList_addAt(target, 0, item(11)); },
              {"Item 1", "Item 2", "Item 4", "Item 5", "Item 11"});
  runChanging(3, true, [](void* target) { vorn_collections_ArrayList_operator_index_eq(target, 2, item(11)); },
              {"Item 1", "Item 2", "Item 11", "Item 4", "Item 5"});
  runChanging(3, true, [](void* target) { vorn_collections_ArrayList_removeAt(target, 2); },
              {"Item 1", "Item 2", "Item 4", "Item 5"});
  runChanging(3, true,
              [](void* target) {
                vorn_collections_ArrayList_removeAt(target, 2);
                vorn_collections_ArrayList_addAt(target, 2, item(11));
              },
              {"Item 1", "Item 2", "Item 11", "Item 4", "Item 5"});
  runChanging(3, true,
              [](void* target) {
                while (vorn_collections_ArrayList_size(target) > 1) vorn_collections_ArrayList_removeAt(target, -1);
              },
              {"Item 1"});
}

TEST_P(UserEquality, ChangesTheListAtEveryCall) {
  // Grows and shrinks in turn, so that the search ends.
  for (const bool growFirst : {false, true}) {
    const Handle target = makeList();
    const Handle wanted = item(100);
    int calls = 0;
    const ScopedEquality equality([&](void*, void*) {
      ++calls;
      if ((calls % 2 == 0) == growFirst || calls > 20) {
        if (vorn_collections_ArrayList_size(target) > 0) vorn_collections_ArrayList_removeAt(target, 0);
      } else {
        vorn_collections_ArrayList_addAt(target, 0, wanted);
      }
      return false;
    });
    search().run(target, wanted);
    EXPECT_VALID_LIST(target);
    EXPECT_LE(calls, 60);
  }
}

TEST_P(UserEquality, ReplacesTheListsElementsByUnboxedOnes) {
  // A cleared array-backed list may take unboxed storage while the search is under way.
  for (int call = 1; call <= 5; ++call) {
    for (const bool answer : {false, true}) {
      SCOPED_TRACE(call);
      const Handle target = list(className(linked(), false), {item(1), item(2), item(3), item(4), item(5)});
      const Handle wanted = item(100);
      int calls = 0;
      long long result = 0;
      {
        const ScopedEquality equality([&](void*, void*) {
          if (++calls != call) return false;
          vorn_collections_ArrayList_clear(target);
          for (int i = 0; i < 6; ++i) vorn_collections_ArrayList_addInt(target, i);
          return answer;
        });
        result = search().run(target, wanted);
      }
      EXPECT_GE(result, search().neutral);
      EXPECT_LE(result, 6);
      EXPECT_VALID_LIST(target);
      EXPECT_EQ(elementsOf(target), (Elements{"Int 0", "Int 1", "Int 2", "Int 3", "Int 4", "Int 5"}));
    }
  }
}

TEST_P(UserEquality, SearchesTheSameListInside) {
  // The inner search looks for another item: a pair whose comparison is under way counts as equal.
  const Handle target = makeList();
  const Handle wanted = item(3);
  const Handle wantedInside = item(3);
  bool inside = false;
  const ScopedEquality equality([&](void* self, void* other) {
    if (!inside) {
      inside = true;
      search().run(target, wantedInside);
      inside = false;
    }
    return idOf(self) == idOf(other);
  });
  search().run(target, wanted);
  EXPECT_VALID_LIST(target);
  const bool removes = std::string(search().name) == "remove";
  EXPECT_EQ(elementsOf(target), removes ? (Elements{"Item 1", "Item 2", "Item 4", "Item 5"})
                                        : (Elements{"Item 1", "Item 2", "Item 3", "Item 4", "Item 5"}));
}

TEST_P(UserEquality, AllocatesAndCollects) {
  const Handle target = makeList();
  const Handle wanted = item(3);
  const ScopedEquality equality([&](void* self, void* other) {
    const Handle garbage = string("garbage");
    list("LinkedList", {garbage, garbage});
    vorn_heap_collect();
    return idOf(self) == idOf(other);
  });
  EXPECT_EQ(search().run(target, wanted), search().neutral < 0 ? 2 : 1);
  EXPECT_AT_REST(target);
  EXPECT_EQ(elementsOf(target), std::string(search().name) == "remove"
                                    ? (Elements{"Item 1", "Item 2", "Item 4", "Item 5"})
                                    : (Elements{"Item 1", "Item 2", "Item 3", "Item 4", "Item 5"}));
}

TEST_P(UserEquality, RaisesOnTopOfAnOlderError_EndsTheSearchAllTheSame) {
  const Handle target = makeSynchronisedList();
  const Handle wanted = item(3);
  const Snapshot before(target);
  int calls = 0;
  const ScopedEquality equality([&](void*, void*) {
    if (++calls == 1) vorn_raise("Exception", "from equality");
    return true;
  });
  vorn_raise("Exception", "older");
  EXPECT_EQ(search().run(target, wanted), search().neutral);
  EXPECT_EQ(takeErrors(), (Elements{"Exception: older", "Exception: from equality"}));
  EXPECT_EQ(calls, 1);
  EXPECT_UNTOUCHED(target, before);
}

TEST_P(UserEquality, AnOlderErrorAlone_StopsNothing) {
  const Handle target = makeSynchronisedList();
  const Handle wanted = item(3);
  vorn_raise("Exception", "older");
  EXPECT_GT(search().run(target, wanted), search().neutral);
  EXPECT_RAISED("Exception: older");
}

TEST_P(UserEquality, UsesTheSynchronisedListItIsCalledFrom) {
  // The lock lets its own thread in again, so that the list behaves as a plain one.
  const Handle target = makeSynchronisedList();
  const Handle wanted = item(3);
  int calls = 0;
  {
    const ScopedEquality equality([&](void* self, void* other) {
      if (++calls == 1) vorn_collections_ArrayList_removeAt(target, -1);
      return idOf(self) == idOf(other);
    });
    EXPECT_GT(search().run(target, wanted), search().neutral);
  }
  EXPECT_EQ(vorn_collections_ArrayList_size(target), std::string(search().name) == "remove" ? 3 : 4);
  EXPECT_AT_REST(target);
}

TEST_P(UserEquality, AListThatHoldsItself_IsSearchedToTheEnd) {
  for (const char* type : {"ArrayListSync", "LinkedListSync"}) {
    const Handle target = object(type);
    vorn_collections_ArrayList_add(target, target);
    const Handle wanted = list("ArrayListSync", {string("x")});
    EXPECT_EQ(search().run(target, wanted), search().neutral) << type;
    EXPECT_AT_REST(target);
  }
}

TEST_P(UserEquality, AnswersAtRandom) {
  std::mt19937 random(7);
  for (int round = 0; round < 10; ++round) {
    const Handle target = makeSynchronisedList();
    const Handle wanted = item(3);
    int matches = 0;
    const ScopedEquality equality([&](void*, void*) {
      const bool answer = random() % 3 == 0;
      matches += answer ? 1 : 0;
      return answer;
    });
    const long long result = search().run(target, wanted);
    const std::string name = search().name;
    EXPECT_EQ(result > search().neutral, matches > 0);
    EXPECT_TRUE(name != "count" || result == matches);
    EXPECT_EQ(vorn_collections_ArrayList_size(target), name == "remove" && matches > 0 ? 4 : 5);
    EXPECT_AT_REST(target);
  }
}

TEST_P(UserEquality, UnboxedListAndUserValue) {
  // The index searches never run user code on unboxed storage; the others materialise and then may.
  if (linked()) return;  // a linked list has no unboxed storage
  const Handle target = list("ArrayList<Int>", {integer("Int", 1), integer("Int", 2), integer("Int", 3)});
  const Handle wanted = item(1);
  int calls = 0;
  {
    const ScopedEquality equality([&](void*, void*) {
      ++calls;
      vorn_collections_ArrayList_clear(target);
      vorn_collections_ArrayList_addInt(target, 9);
      return false;
    });
    EXPECT_EQ(search().run(target, wanted), search().neutral);
  }
  EXPECT_VALID_LIST(target);
  if (search().neutral < 0) {
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(storageOf(target), "Int");
    EXPECT_EQ(vorn_collections_ArrayList_size(target), 3);
  } else if (calls > 0) {
    EXPECT_EQ(elementsOf(target), (Elements{"Int 9"}));
  }
}

INSTANTIATE_TEST_SUITE_P(Searches, UserEquality, ::testing::Combine(::testing::ValuesIn(kSearches), ::testing::Bool()),
                         [](const auto& param) {
                           return std::string(std::get<0>(param.param).name) +
                                  (std::get<1>(param.param) ? "_Linked" : "_Objects");
                         });

class UserEqualityOrder : public RuntimeTest {};

TEST_F(UserEqualityOrder, ListThatGrowsMeanwhile_IsSearchedToItsNewEnd) {
  const Handle wanted = item(7);
  for (const bool linked : {false, true}) {
    for (const int search : {0, 1, 2}) {
      const Handle target = list(className(linked, false), {item(0), item(1)});
      const ScopedEquality equality([&](void* self, void* other) {
        if (vorn_collections_ArrayList_size(target) == 2) vorn_collections_ArrayList_add(target, item(7));
        return idOf(self) == idOf(other);
      });
      if (search == 0) {
        EXPECT_EQ(vorn_collections_ArrayList_count(target, wanted), 1);
      }
      if (search == 1) {
        EXPECT_TRUE(vorn_collections_ArrayList_operator_in(target, wanted));
      }
      if (search == 2) {
        EXPECT_EQ(vorn_collections_ArrayList_indexOf(target, wanted, 0), 2);
      }
    }
  }
}

// The matching element is the new last one, before which the search already was.
TEST_F(UserEqualityOrder, ListThatShrinksMeanwhile_IsSearchedFromItsNewEnd) {
  const Handle wanted = item(7);
  for (const bool linked : {false, true}) {
    const Handle target = list(className(linked, false), {item(7), item(1), item(2), item(3), item(4)});
    int calls = 0;
    const ScopedEquality equality([&](void* self, void* other) {
      ++calls;
      while (vorn_collections_ArrayList_size(target) > 1) vorn_collections_ArrayList_removeAt(target, 1);
      return idOf(self) == idOf(other);
    });
    EXPECT_EQ(vorn_collections_ArrayList_lastIndexOf(target, wanted, -1), 0);
    EXPECT_EQ(calls, 2) << "for the element that was last, and for the one that is";
  }
}

TEST_F(UserEqualityOrder, IdenticalHandlesMatchWithoutUserCode) {
  const Handle wanted = item(1);
  const Handle target = list("LinkedList", {wanted, nullptr});
  const ScopedEquality equality([](void*, void*) {
    ADD_FAILURE() << "identical handles need no comparison";
    return false;
  });
  for (const SearchNative& search : kSearches) {
    EXPECT_EQ(search.run(target, wanted), search.neutral < 0 ? 0 : 1) << search.name;
    if (vorn_collections_ArrayList_size(target) == 1) vorn_collections_ArrayList_addAt(target, 0, wanted);
  }
}

}  // namespace
}  // namespace vorn::tests
