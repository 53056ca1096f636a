// The marks of running displays: they leave on every path, belong to one thread, and user code cannot confuse them.
#include <barrier>
#include <new>
#include <stdexcept>

#include "collections/core/port/values.h"
#include "tests/display/display_cases.h"
#include "tests/support/runtime_test.h"
#include "tests/support/threads.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

// Runs over all kinds, with hooks.
class Guards : public RuntimeTest, public ::testing::WithParamInterface<Kind> {
 protected:
  void TearDown() override {
    EXPECT_TRUE(gCollectionDisplayStack.empty());
    RuntimeTest::TearDown();
  }
  static const Kind& kind() { return GetParam(); }
};
INSTANTIATE_KIND_TESTS(Guards);

TEST_P(Guards, SweepOfFailingAllocations_LeavesNoLockAndNoMark) {
  const Handle inner = list("LinkedListSync", {string("quoted"), integer("Char", 'x')});
  const Handle collection = filled(kind(), {Handle(), string("a"), hooked(1), inner});
  const std::string quotedA = kind().family == Family::Set ? "a" : R"("a")";
  const std::string whole = shown(kind(), {"null", quotedA, "#1", R"(ls:["quoted", x])"});
  int failures = 0;
  for (bool through = false; !through; ++failures) {
    ASSERT_LT(failures, 200);
    vorn_heap_fail_allocation(failures);
    bool thrown = false;
    std::string text;
    try {
      text = stringValueFromPtr(kind().toString(collection));
    } catch (const std::bad_alloc&) {
      thrown = true;
    }
    through = vorn_heap_failure_happened() == 0;
    vorn_heap_fail_allocation(-1);
    SCOPED_TRACE("failing allocation " + std::to_string(failures));
    ASSERT_EQ(faultOf(kind(), collection), "");
    ASSERT_FALSE(isLocked(kKinds[3], inner));
    // A failure inside the hook is a null result there, which leaves the object without a text of its own.
    if (!thrown && !through) {
      const std::string own = kind().family == Family::Set ? "null" : "Hooked(id=1, next=null)";
      EXPECT_EQ(text, shown(kind(), {"null", quotedA, own, R"(ls:["quoted", x])"}));
    }
    ASSERT_EQ(display(kind(), collection), whole);
  }
  EXPECT_GT(failures, 3);
}

TEST_P(Guards, ExceptionOutOfAToString_LeavesNoMark) {
  const Handle collection = filled(kind(), {Handle(), tupleOf({hooked(1)})});
  userHooks.toString = [](void*) -> void* { throw std::domain_error("thrown by a hook"); };
  EXPECT_THROW(kind().toString(collection), std::domain_error);
  EXPECT_THROW(valueToDisplayString(collection), std::domain_error);
  EXPECT_EQ(faultOf(kind(), collection), "");
  userHooks = {};
  EXPECT_EQ(display(kind(), collection), shown(kind(), {"null", "(#1,)"}));
}

TEST_P(Guards, ToStringThatShowsTheCollection_SeesTheCycleMarker) {
  const Handle collection = filled(kind(), {Handle(), hooked(1)});
  userHooks.toString = [&](void*) { return kind().toString(collection); };
  EXPECT_EQ(display(kind(), collection), shown(kind(), {"null", kind().cycle}));
  userHooks.toString = [&](void*) { return vorn_text_new(valueToDisplayString(collection).c_str()); };
  EXPECT_EQ(display(kind(), collection), shown(kind(), {"null", kind().cycle}));
}

TEST_P(Guards, ToStringThatShowsAnotherCollection_SeesItInFull) {
  const Handle collection = filled(kind(), {Handle(), hooked(1)});
  const Handle other = filled(kind(), {integer("Int", 7)});
  userHooks.toString = [&](void*) { return kind().toString(other); };
  EXPECT_EQ(display(kind(), collection), shown(kind(), {"null", shown(kind(), {"7"})}));
}

TEST_P(Guards, ToStringThatAllocatesALot_HarmsNothing) {
  const Handle collection = filled(kind(), {Handle(), hooked(1), hooked(2), string("last")});
  userHooks.toString = [&](void* self) {
    for (int i = 0; i < 20; ++i) vorn_string_new("garbage", SIZE_MAX);
    vorn_heap_collect();
    return vorn_string_new(std::to_string(idOf(self)).c_str(), SIZE_MAX);
  };
  EXPECT_EQ(display(kind(), collection),
            shown(kind(), {"null", "1", "2", kind().family == Family::Set ? "last" : R"("last")"}));
}

// Clears what is being shown; elements that only the collection held must live on. The display shows those that were
// there at its start, a tuple and an array the ones that are there when their turn comes.
TEST_P(Guards, ToStringThatEmptiesTheCollection_HarmsNothing) {
  if (kind().synchronised && (kind().family == Family::Set || kind().family == Family::Array)) return;  // would wait
  const Handle collection = collectionFor(kind(), 3);
  put(kind(), collection, 0, nullptr);
  put(kind(), collection, 1, hooked(1));
  put(kind(), collection, 2, string("last"));
  userHooks.toString = [&](void* self) {
    switch (kind().family) {
      case Family::List:
      case Family::Immutable:
        vorn_collections_ArrayList_clear(collection);
        break;
      case Family::Set:
        vorn_collections_HashSet_clear(collection);
        break;
      case Family::Map:
        vorn_collections_Map_clear(collection);
        break;
      case Family::Array:
        vorn_collections_Array_ctor(collection, 0);
        break;
      case Family::Tuple:
        EXPECT_EQ(vorn_field_set_handle(collection, "_1", nullptr), 1);
        EXPECT_EQ(vorn_field_set_handle(collection, "_2", nullptr), 1);
        break;
    }
    vorn_heap_collect();
    return vorn_text_new(("key " + std::to_string(idOf(self))).c_str());
  };
  std::string last = kind().family == Family::Set ? "last" : R"("last")";
  if (kind().family == Family::Tuple) last = "null";
  std::vector<std::string> expected = {"null", "key 1", last};
  if (kind().family == Family::Array) expected.pop_back();
  EXPECT_EQ(display(kind(), collection), shown(kind(), expected));
  EXPECT_EQ(faultOf(kind(), collection), "");
}

TEST_P(Guards, TwoThreads_DoNotSeeEachOthersMarks) {
  if (kind().synchronised && (kind().family == Family::Set || kind().family == Family::Array)) {
    return;  // their lock keeps the second thread out
  }
  const Handle collection = filled(kind(), {Handle(), hooked(1)});
  const Handle answer = text("both");
  std::barrier bothInside(2);
  userHooks.toString = [&](void*) {
    bothInside.arrive_and_wait();
    EXPECT_EQ(gCollectionDisplayStack.size(), 1U);
    bothInside.arrive_and_wait();
    return answer.get();
  };
  std::string texts[2];
  runTogether(2, [&](int number) { texts[number] = valueToDisplayString(collection); });
  const std::string expected = shown(kind(), {"null", "both"});
  EXPECT_EQ(texts[0], expected);
  EXPECT_EQ(texts[1], expected);
}

TEST_P(Guards, MarksOfAThread_EndWithIt) {
  const Handle collection = collectionFor(kind(), 1);
  put(kind(), collection, 0, collection);
  for (int i = 0; i < 3; ++i) {
    std::string text;
    onAnotherThread([&] {
      EXPECT_TRUE(gCollectionDisplayStack.empty());
      text = valueToDisplayString(collection);
      EXPECT_TRUE(gCollectionDisplayStack.empty());
    });
    EXPECT_EQ(text, shown(kind(), {kind().cycle}));
  }
}

TEST_P(Guards, ErrorsRaisedByToStrings_StayPendingAndEndNothing) {
  const Handle collection = filled(kind(), {Handle(), hooked(1), hooked(2), integer("Int", 3)});
  userHooks.toString = [](void* self) -> void* {
    vorn_raise("app.Broken", std::to_string(idOf(self)).c_str());
    return nullptr;
  };
  const bool isSet = kind().family == Family::Set;
  EXPECT_EQ(display(kind(), collection), shown(kind(), {"null", isSet ? "null" : "Hooked(id=1, next=null)",
                                                        isSet ? "null" : "Hooked(id=2, next=null)", "3"}));
  EXPECT_EQ(takeErrors(), (std::vector<std::string>{"app.Broken: 1", "app.Broken: 2"}));
}

TEST(Guard, NestedMarkOfTheSameHandle_LeavesItToTheOuterOne) {
  const int handle = 0;
  {
    const CollectionDisplayGuard outer(&handle);
    EXPECT_TRUE(CollectionDisplayGuard::isDisplaying(&handle));
    { const CollectionDisplayGuard inner(&handle); }
    EXPECT_TRUE(CollectionDisplayGuard::isDisplaying(&handle));
  }
  EXPECT_FALSE(CollectionDisplayGuard::isDisplaying(&handle));
  EXPECT_EQ(gCollectionDisplayStack.max_load_factor(), 1.0F);
}

}  // namespace
}  // namespace vorn::tests
