// Hooks that use, change or empty the very collection that a native is working on.
#include <set>

#include "tests/user_code/hostile_cases.h"

namespace vorn::tests {
namespace {

// What a hook does to the collection. One that only reads must not change what the native finds.
struct Action {
  const char* name;
  bool onlyReads;
  void (*run)(const Scene& scene);
};

// Another value than any in the scene.
Handle stranger(const Scene& scene, int id = 50) { return element(scene.shape, id); }

constexpr const char* kForeignType = "app.Foreign";
constexpr int kForeignSize = 25;

Handle doubles(int count) {
  Handle array = object("Array<Double>");
  vorn_collections_Array_ctor(array, count);
  for (int i = 0; i < count; ++i) vorn_collections_Array_setDouble(array, i, 1.5);
  return array;
}

void expectFoundInside(long long index, const Scene& scene) {
  const auto place = std::find(scene.ids.begin(), scene.ids.end(), 5);
  EXPECT_EQ(index, place - scene.ids.begin()) << "found by the hook's own search";
}

const std::vector<Action> kListActions = {
    {"add", false, [](const Scene& s) { vorn_collections_ArrayList_add(s.collection, stranger(s)); }},
    {"addAt", false, [](const Scene& s) { vorn_collections_ArrayList_addAt(s.collection, 0, stranger(s)); }},
    {"removeAt", false,
     [](const Scene& s) {
       if (vorn_collections_ArrayList_size(s.collection) > 0) vorn_collections_ArrayList_removeAt(s.collection, 0);
     }},
    {"remove", false, [](const Scene& s) { vorn_collections_ArrayList_remove(s.collection, s.wantedAgain); }},
    {"clear", false, [](const Scene& s) { vorn_collections_ArrayList_clear(s.collection); }},
    {"replaceAll", false,
     [](const Scene& s) {
       vorn_collections_ArrayList_clear(s.collection);
       for (int id = 60; id < 66; ++id) vorn_collections_ArrayList_add(s.collection, stranger(s, id));
     }},
    {"unbox", false,
     [](const Scene& s) {
       vorn_collections_ArrayList_clear(s.collection);
       for (int i = 0; i < 25; ++i) vorn_collections_ArrayList_addInt(s.collection, i);
     }},
    {"sort", false, [](const Scene& s) { vorn_collections_ArrayList_sort(s.collection); }},
    {"reverse", false, [](const Scene& s) { vorn_collections_ArrayList_reverse(s.collection); }},
    {"addAllOfItself", false,
     [](const Scene& s) {
       if (vorn_collections_ArrayList_size(s.collection) < 50) {
         vorn_collections_ArrayList_addAll(s.collection, s.collection);
       }
     }},
    {"search", true,
     [](const Scene& s) {
       expectFoundInside(vorn_collections_ArrayList_indexOf(s.collection, s.wantedAgain, 0), s);
       EXPECT_EQ(vorn_collections_ArrayList_count(s.collection, s.wantedAgain), 1);
     }},
    {"sortNew", true, [](const Scene& s) { vorn_collections_ArrayList_sortNew(s.collection); }},
    {"show", true,
     [](const Scene& s) {
       vorn_collections_ArrayList_toString(s.collection);
       vorn_collections_ArrayList_join(s.collection, ",");
     }},
};

const std::vector<Action> kImmutableActions = {
    {"emptyAnew", false, [](const Scene& s) { vorn_collections_ImmutableList_ctor(s.collection, nullptr); }},
    {"constructAnew", false,
     [](const Scene& s) {
       const Handle source = object("ArrayList");
       for (int i = 0; i < 25; ++i) vorn_collections_ArrayList_addInt(source, i);
       vorn_collections_ImmutableList_ctor(s.collection, source);
     }},
    {"search", true,
     [](const Scene& s) {
       expectFoundInside(vorn_collections_ImmutableList_lastIndexOf(s.collection, s.wantedAgain, -1), s);
     }},
    {"sortNew", true, [](const Scene& s) { vorn_collections_ImmutableList_sortNew(s.collection); }},
    {"show", true, [](const Scene& s) { vorn_collections_ImmutableList_toString(s.collection); }},
};

const std::vector<Action> kArrayActions = {
    {"shrink", false, [](const Scene& s) { vorn_collections_Array_ctor(s.collection, 1); }},
    {"grow", false, [](const Scene& s) { vorn_collections_Array_ctor(s.collection, 50); }},
    {"constructFromDoubles", false, [](const Scene& s) { vorn_collections_Array_copyCtor(s.collection, doubles(25)); }},
    {"constructFromInstances", false,
     [](const Scene& s) {
       // Slots of handles again, but of a type that takes none of the elements.
       const Handle source = object(std::string("Array<") + kForeignType + ">");
       vorn_collections_Array_ctor(source, kForeignSize);
       vorn_collections_Array_copyCtor(s.collection, source);
     }},
    {"constructFromTwin", false, [](const Scene& s) { vorn_collections_Array_copyCtor(s.collection, s.twin); }},
    {"overwrite", false,
     [](const Scene& s) {
       const long long size = vorn_collections_Array_size(s.collection);
       for (long long i = 0; i < size; ++i) vorn_collections_Array_operator_index_eq(s.collection, i, nullptr);
     }},
    {"sort", false, [](const Scene& s) { vorn_collections_Array_sort(s.collection); }},
    {"reverse", false, [](const Scene& s) { vorn_collections_Array_reverse(s.collection); }},
    {"search", true,
     [](const Scene& s) {
       expectFoundInside(vorn_collections_Array_indexOf(s.collection, s.wantedAgain, 0), s);
       EXPECT_EQ(vorn_collections_Array_count(s.collection, s.wantedAgain), 1);
     }},
    {"sortNew", true, [](const Scene& s) { vorn_collections_Array_sortNew(s.collection); }},
    {"show", true,
     [](const Scene& s) {
       vorn_collections_Array_toString(s.collection);
       vorn_collections_Array_join(s.collection, ",");
     }},
};

const std::vector<Action> kMapActions = {
    {"putSame", false, [](const Scene& s) { vorn_collections_Map_put(s.collection, s.wanted, stranger(s)); }},
    {"putAnotherSame", false,
     [](const Scene& s) { vorn_collections_Map_put(s.collection, s.wantedAgain, stranger(s)); }},
    {"putMany", false,
     [](const Scene& s) {
       for (int id = 60; id < 90; ++id) vorn_collections_Map_put(s.collection, stranger(s, id), nullptr);
     }},
    {"putNumbers", false,
     [](const Scene& s) {
       for (int i = 0; i < 40; ++i) vorn_collections_Map_put(s.collection, integer("Int", i), nullptr);
     }},
    {"remove", false, [](const Scene& s) { vorn_collections_Map_remove(s.collection, s.wanted); }},
    {"clear", false, [](const Scene& s) { vorn_collections_Map_clear(s.collection); }},
    {"replaceAll", false,
     [](const Scene& s) {
       vorn_collections_Map_clear(s.collection);
       for (int id = 1; id < 7; ++id) vorn_collections_Map_put(s.collection, stranger(s, id), stranger(s, 200 + id));
     }},
    {"reserve", false, [](const Scene& s) { vorn_collections_Map_reserve(s.collection, 1000); }},
    {"lookUp", true,
     [](const Scene& s) {
       void* value = nullptr;
       EXPECT_TRUE(vorn_collections_Map_operator_in(s.collection, s.wanted)) << "inside the hook";
       EXPECT_TRUE(vorn_collections_Map_tryGet(s.collection, s.wanted, &value)) << "inside the hook";
       EXPECT_FALSE(vorn_collections_Map_operator_in(s.collection, stranger(s))) << "inside the hook";
       for (const int id : s.ids) {
         EXPECT_EQ(say(vorn_collections_Map__get(s.collection, stranger(s, id))),
                   describeById(stranger(s, static_cast<int>(valueId(id)))))
             << "inside the hook";
       }
     }},
    {"containsValue", true,
     [](const Scene& s) {
       EXPECT_TRUE(vorn_collections_Map_containsValue(s.collection, stranger(s, 105))) << "inside the hook";
       EXPECT_FALSE(vorn_collections_Map_containsValue(s.collection, stranger(s))) << "inside the hook";
     }},
    {"list", true,
     [](const Scene& s) {
       EXPECT_EQ(elementsOfList(Handle(vorn_collections_Map_keys(s.collection))).size(), s.ids.size());
       EXPECT_EQ(elementsOfList(Handle(vorn_collections_Map_values(s.collection))).size(), s.ids.size());
       EXPECT_EQ(elementsOfList(Handle(vorn_collections_Map_items(s.collection))).size(), s.ids.size());
     }},
    {"compare", true,
     [](const Scene& s) { EXPECT_TRUE(vorn_collections_Map_operator_eq(s.twin, s.collection)) << "inside the hook"; }},
    {"show", true, [](const Scene& s) { vorn_collections_Map_toString(s.collection); }},
};

const std::vector<Action> kSetActions = {
    {"addSame", false, [](const Scene& s) { vorn_collections_HashSet_add(s.collection, s.wanted); }},
    {"addAnotherSame", false, [](const Scene& s) { vorn_collections_HashSet_add(s.collection, s.wantedAgain); }},
    {"addMany", false,
     [](const Scene& s) {
       for (int id = 60; id < 90; ++id) vorn_collections_HashSet_add(s.collection, stranger(s, id));
     }},
    {"remove", false, [](const Scene& s) { vorn_collections_HashSet_remove(s.collection, s.wanted); }},
    {"clear", false, [](const Scene& s) { vorn_collections_HashSet_clear(s.collection); }},
    {"replaceAll", false,
     [](const Scene& s) {
       vorn_collections_HashSet_clear(s.collection);
       for (int id = 1; id < 7; ++id) vorn_collections_HashSet_add(s.collection, stranger(s, id));
     }},
    {"reserve", false, [](const Scene& s) { vorn_collections_HashSet_reserve(s.collection, 1000); }},
    {"lookUp", true,
     [](const Scene& s) {
       EXPECT_TRUE(vorn_collections_HashSet_operator_in(s.collection, s.wanted)) << "inside the hook";
       EXPECT_EQ(vorn_collections_HashSet_count(s.collection, s.wantedAgain), 1) << "inside the hook";
       EXPECT_FALSE(vorn_collections_HashSet_operator_in(s.collection, stranger(s))) << "inside the hook";
     }},
    {"list", true,
     [](const Scene& s) {
       EXPECT_EQ(elementsOfList(Handle(vorn_collections_HashSet_items(s.collection))).size(), s.ids.size());
       EXPECT_NE(vorn_collections_HashSet_operator_index(s.collection, -1), nullptr);
     }},
    {"compare", true, [](const Scene& s) { EXPECT_TRUE(vorn_equals(s.twin, s.collection)) << "inside the hook"; }},
    {"show", true, [](const Scene& s) { vorn_collections_HashSet_toString(s.collection); }},
};

const std::vector<Action> kTupleActions = {
    {"constructAnew", false,
     [](const Scene& s) {
       const Handle source = object("ArrayList");
       for (int i = 0; i < 25; ++i) vorn_collections_ArrayList_addInt(source, i);
       vorn_collections_Tuple_ctor(s.collection, source);
     }},
    {"emptyAnew", false, [](const Scene& s) { vorn_collections_Tuple_ctor(s.collection, object("ArrayList")); }},
    {"show", true, [](const Scene& s) { vorn_collections_Tuple_toString(s.collection); }},
    {"compare", true, [](const Scene& s) { EXPECT_TRUE(vorn_equals(s.twin, s.collection)) << "inside the hook"; }},
};

const std::vector<Action>& actionsOf(Family family) {
  switch (family) {
    case Family::List:
      return kListActions;
    case Family::Immutable:
      return kImmutableActions;
    case Family::Array:
      return kArrayActions;
    case Family::Map:
      return kMapActions;
    case Family::Set:
      return kSetActions;
    case Family::Tuple:
      break;
  }
  return kTupleActions;
}

// The keys in "#5:#105", or the elements themselves.
Texts keysOf(const Texts& contents) {
  Texts keys;
  for (const std::string& text : contents) keys.push_back(text.substr(0, text.find(':')));
  return keys;
}

class ReentrantHooks : public HostileTest {
 protected:
  // A hook that runs under a lock of its own thread can only get in where the mutex is recursive. It would wait for
  // itself otherwise, so this is asked first.
  static bool canReenter() {
    if (!type().synchronised || !native().locksDuringHooks) return true;
    const Handle collection = object(type().name);
    return isRecursive(*mutexOf(type().family, collection));
  }

  static void expectSound(const Scene& target, const Ending& ending) {
    EXPECT_FALSE(ending.threw) << ending.what;
    const bool mayMiss = std::string(native().name) == "operator_index";
    if (type().family == Family::Array &&
        std::string(getArrayData(target.collection)->elementType.get()) == kForeignType) {
      EXPECT_EQ(ending.contents, Texts(kForeignSize, "null")) << "slots of another type took the old elements";
    }
    EXPECT_TRUE(ending.errors.empty() || (mayMiss && ending.errors == Texts{kNotFound})) << join(ending.errors);
    if (type().family != Family::Map && type().family != Family::Set) return;
    const Texts keys = keysOf(ending.contents);
    EXPECT_EQ(std::set<std::string>(keys.begin(), keys.end()).size(), keys.size())
        << "a key is there twice: " << join(keys);
    const bool has = std::find(keys.begin(), keys.end(), describeById(target.wanted)) != keys.end();
    EXPECT_TRUE(has || native().effect != Effect::Adds) << "what was put is not there";
    EXPECT_TRUE(!has || native().effect != Effect::Removes) << "what was removed is there";
  }
};
INSTANTIATE_HOSTILE_TESTS(ReentrantHooks, hostileCases());

TEST_P(ReentrantHooks, OneUseOfTheCollection_LeavesItSound) {
  ASSERT_TRUE(canReenter()) << "the mutex is not recursive";
  const Ending honest = honestRun();
  for (const Action& action : actionsOf(type().family)) {
    for (const int call : someCalls(honest)) {
      SCOPED_TRACE(std::string(action.name) + " in call " + std::to_string(call));
      const Scene target = scene();
      const Ending ending = run(target, atCall(call, [&](void*, void*) {
                                  action.run(target);
                                  vorn_heap_collect();
                                }));
      EXPECT_GE(ending.calls, call);
      EXPECT_LE(ending.calls, 2000);
      expectSound(target, ending);
      if (action.onlyReads) {
        EXPECT_EQ(ending.outcome, honest.outcome);
        EXPECT_EQ(ending.contents, honest.contents);
      }
      expectWorksAgain(target, honest);
    }
  }
}

// The hook stops changing the collection after a while, so that a search of a growing one ends.
TEST_P(ReentrantHooks, UsesInManyCalls_LeaveItSound) {
  ASSERT_TRUE(canReenter()) << "the mutex is not recursive";
  const Ending honest = honestRun();
  const int uses = onStressHeap() ? 8 : 50;
  for (const Action& action : actionsOf(type().family)) {
    SCOPED_TRACE(action.name);
    const Scene target = scene();
    int used = 0;
    const Ending ending = run(target, atCall(0, [&](void*, void*) {
                                if (used++ < uses) action.run(target);
                              }));
    EXPECT_GT(used, 0);
    EXPECT_LE(used, 20000);
    expectSound(target, ending);
    if (action.onlyReads) {
      EXPECT_EQ(ending.outcome, honest.outcome);
      EXPECT_EQ(ending.contents, honest.contents);
    }
    expectWorksAgain(target, honest);
  }
}

// All actions in turn, another in every call.
TEST_P(ReentrantHooks, AnotherUseInEveryCall_LeavesItSound) {
  ASSERT_TRUE(canReenter()) << "the mutex is not recursive";
  const Ending honest = honestRun();
  const std::vector<Action>& actions = actionsOf(type().family);
  for (std::size_t first = 0; first < actions.size(); first += onStressHeap() ? 4 : 1) {
    SCOPED_TRACE(std::string("from ") + actions[first].name);
    const Scene target = scene();
    std::size_t used = 0;
    const Ending ending = run(target, atCall(0, [&](void*, void*) {
                                if (used >= 40) return;
                                const Action& action = actions[(first + used++) % actions.size()];
                                if (!action.onlyReads) action.run(target);
                              }));
    expectSound(target, ending);
    expectWorksAgain(target, honest);
  }
}

std::vector<HostileCase> keyedCases() {
  std::vector<HostileCase> cases = hostileCases();
  std::erase_if(cases, [](const HostileCase& hostile) {
    return hostile.hook == Hook::Hash || !(hostile.native.makesKey || hostile.type.family == Family::Map);
  });
  return cases;
}

class RestlessHooks : public ReentrantHooks {};
INSTANTIATE_HOSTILE_TESTS(RestlessHooks, keyedCases());

// Searches of maps and sets start again when the collection has changed, but not for ever. What they find in the end is
// not promised then.
TEST_P(RestlessHooks, ChangesWithoutEnd_TheSearchEnds) {
  ASSERT_TRUE(canReenter()) << "the mutex is not recursive";
  const Ending honest = honestRun();
  const Scene target = scene();
  int fresh = 1000;
  const Ending ending = run(target, atCall(0, [&](void*, void*) {
                              const Handle key = integer("Int", fresh++);
                              if (type().family == Family::Map) {
                                vorn_collections_Map_put(target.collection, key, nullptr);
                              } else {
                                vorn_collections_HashSet_add(target.collection, key);
                              }
                            }));
  EXPECT_FALSE(ending.threw);
  EXPECT_LE(ending.calls, 2000);
  EXPECT_TRUE(ending.errors.empty() || ending.errors == Texts{kNotFound}) << join(ending.errors);
  expectWorksAgain(target, honest);
}

}  // namespace
}  // namespace vorn::tests
