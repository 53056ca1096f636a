// Joins of lists and arrays of handles.
#include "collections/core/port/values.h"
#include "tests/display/display_cases.h"
#include "tests/support/runtime_test.h"
#include "tests/support/user_objects.h"

namespace vorn::tests {
namespace {

// Everything that joins: the list classes in boxed storage, and arrays.
struct Joined {
  const char* name;
  const Kind& kind;
  void* (*join)(void* collection, const char* separator);
};
constexpr Joined kJoined[] = {
    {"ArrayList", kKinds[0], vorn_collections_ArrayList_join},
    {"ArrayListSync", kKinds[1], vorn_collections_ArrayList_join},
    {"LinkedList", kKinds[2], vorn_collections_ArrayList_join},
    {"LinkedListSync", kKinds[3], vorn_collections_ArrayList_join},
    {"ImmutableList", kKinds[4], vorn_collections_ArrayList_join},
    {"Array", kKinds[12], vorn_collections_Array_join},
    {"ArraySync", kKinds[13], vorn_collections_Array_join},
};

class Joins : public RuntimeTest, public ::testing::WithParamInterface<Joined> {
 protected:
  void TearDown() override {
    EXPECT_TRUE(gCollectionDisplayStack.empty());
    RuntimeTest::TearDown();
  }
  static std::string join(const std::vector<Handle>& elements, const char* separator) {
    const Handle collection = filled(GetParam().kind, elements);
    std::string text = textOf(GetParam().join(collection, separator));
    EXPECT_EQ(faultOf(GetParam().kind, collection), "");
    return text;
  }
};
INSTANTIATE_TEST_SUITE_P(Kinds, Joins, ::testing::ValuesIn(kJoined),
                         [](const auto& param) { return std::string(param.param.name); });

TEST_P(Joins, Null_GivesTheEmptyText) {
  EXPECT_EQ(textOf(GetParam().join(nullptr, ", ")), "");
  EXPECT_EQ(textOf(GetParam().join(nullptr, nullptr)), "");
}

TEST_P(Joins, Empty_GivesTheEmptyText) { EXPECT_EQ(join({}, ", "), ""); }

TEST_P(Joins, OneElement_HasNoSeparator) { EXPECT_EQ(join({string("a")}, ", "), "a"); }

TEST_P(Joins, Separator_StandsBetweenNeighboursOnly) {
  EXPECT_EQ(join({string("a"), string("b"), string("c")}, " and "), "a and b and c");
  EXPECT_EQ(join({string(""), string(""), string("")}, ","), ",,");
}

TEST_P(Joins, NullOrEmptySeparator_LeavesNothingBetween) {
  EXPECT_EQ(join({string("a"), string("b")}, nullptr), "ab");
  EXPECT_EQ(join({string("a"), string("b")}, ""), "ab");
}

// Texts that end before, at and behind the sixteen bytes that are copied at once, and separators as well.
TEST_P(Joins, TextsAndSeparators_OfEveryLength) {
  std::vector<Handle> elements;
  for (const std::size_t length : {3, 0, 1, 7, 8, 9, 15, 16, 17, 31, 100, 2}) {
    elements.push_back(string(std::string(length, static_cast<char>('a' + length % 26))));
  }
  for (const std::size_t length : {0, 1, 2, 15, 16, 17, 40}) {
    const std::string separator(length, '-');
    std::string expected;
    for (const Handle& element : elements) {
      if (!expected.empty()) expected += separator;
      expected += vorn_string_text(element);
    }
    EXPECT_EQ(join(elements, separator.c_str()), expected);
  }
}

TEST_P(Joins, StringsWithANul_EndThere) {
  std::vector<Handle> elements;
  std::string expected;
  for (const std::size_t before : {0, 1, 7, 8, 15, 16, 17, 30}) {
    const std::string start(before, 'x');
    elements.push_back(string(start + std::string("\0after", 6)));
    elements.push_back(string(start + std::string(1, '\0')));
    for (int i = 0; i < 2; ++i) expected += start + ";";
  }
  expected.pop_back();
  EXPECT_EQ(join(elements, ";"), expected);
}

TEST_P(Joins, NullElements_ShowAsNull) { EXPECT_EQ(join({Handle(), string("a"), Handle()}, "-"), "null-a-null"); }

TEST_P(Joins, Texts_AreNeitherQuotedNorEscaped) {
  EXPECT_EQ(join({text("say \"a\""), string("b\\\n"), text("")}, ","), "say \"a\",b\\\n,");
}

TEST_P(Joins, OtherElements_ShowTheirLanguageText) {
  EXPECT_EQ(join({Handle(), floating("Float", 1), integer("ULong", -1), boolean(true), integer("Char", 'x'),
                  list("ArrayList", {string("q")}), plain(1), hooked(2)},
                 "; "),
            R"(null; 1.0; 18446744073709551615; true; x; ["q"]; Plain(id=1, next=null); #2)");
}

TEST_P(Joins, ElementWithoutAText_ShowsAsNull) {
  userHooks.toString = [](void*) -> void* { return nullptr; };
  EXPECT_EQ(join({Handle(), hooked(1), string("a")}, ","), "null,null,a");
}

TEST_P(Joins, ElementThatRaises_ShowsAsNullAndEndsNothing) {
  userHooks.toString = [](void*) -> void* {
    vorn_raise("app.Broken", "no text");
    return vorn_text_new("ignored");
  };
  EXPECT_EQ(join({Handle(), hooked(1), string("a")}, ","), "null,null,a");
  EXPECT_RAISED("app.Broken: no text");
}

// Inside a synchronised one the display would wait for the lock that the join holds.
TEST_F(RuntimeTest, JoinOfAnUnsynchronisedCollectionInItself_ShowsItsWholeDisplay) {
  for (const Joined& joined : kJoined) {
    if (joined.kind.synchronised) continue;
    const Handle collection = collectionFor(joined.kind, 2);
    put(joined.kind, collection, 0, Handle());
    put(joined.kind, collection, 1, collection);
    EXPECT_EQ(textOf(joined.join(collection, "+")), "null+" + shown(joined.kind, {"null", joined.kind.cycle}));
  }
}

TEST_P(Joins, SweepOfFailingAllocations_LeavesNoLockAndNoMark) {
  const Handle collection = filled(GetParam().kind, {Handle(), string("a"), hooked(1), integer("Int", 5)});
  std::string joined;
  int failures = 0;
  for (bool through = false; !through; ++failures) {
    ASSERT_LT(failures, 100);
    vorn_heap_fail_allocation(failures);
    try {
      joined = stringValueFromPtr(GetParam().join(collection, ","));
    } catch (const std::bad_alloc&) {
      joined = "failed";
    }
    through = vorn_heap_failure_happened() == 0;
    vorn_heap_fail_allocation(-1);
    ASSERT_EQ(faultOf(GetParam().kind, collection), "");
    // The embedding API reports a failure inside the hook as null.
    if (!through) {
      EXPECT_TRUE(joined == "failed" || joined == "null,a,null,5") << joined;
    }
  }
  EXPECT_EQ(joined, "null,a,#1,5");
  EXPECT_GT(failures, 2);
}

using JoinsUnderChange = RuntimeTest;

// The joined list changes while its elements make their texts.
TEST_F(JoinsUnderChange, ListClearedByAnElement_EndsTheJoin) {
  for (const char* type : {"ArrayList", "LinkedList"}) {
    const Handle made = list(type, {string("a"), hooked(1), string("b"), string("c")});
    userHooks.toString = [&](void*) {
      vorn_collections_ArrayList_clear(made);
      return vorn_text_new("gone");
    };
    EXPECT_EQ(textOf(vorn_collections_ArrayList_join(made, ",")), "a,gone");
    EXPECT_VALID_LIST(made);
  }
}

TEST_F(JoinsUnderChange, ListThatGrows_JoinsWhatWasAdded) {
  for (const char* type : {"ArrayList", "LinkedList"}) {
    const Handle made = list(type, {hooked(1)});
    const Handle added = string("added");
    userHooks.toString = [&](void*) {
      for (int i = 0; i < 3; ++i) vorn_collections_ArrayList_add(made, added);
      return vorn_text_new("one");
    };
    EXPECT_EQ(textOf(vorn_collections_ArrayList_join(made, ",")), "one,added,added,added");
    EXPECT_VALID_LIST(made);
  }
}

TEST_F(JoinsUnderChange, ListThatIsRefilledUnboxed_EndsTheJoin) {
  const Handle made = list("ArrayList", {Handle(), hooked(1), string("b"), string("c")});
  userHooks.toString = [&](void*) {
    vorn_collections_ArrayList_clear(made);
    for (int i = 0; i < 8; ++i) vorn_collections_ArrayList_addInt(made, i);
    return vorn_text_new("refilled");
  };
  EXPECT_EQ(textOf(vorn_collections_ArrayList_join(made, ",")), "null,refilled");
  EXPECT_VALID_LIST(made);
}

TEST_F(JoinsUnderChange, ArrayConstructedAnew_EndsTheJoin) {
  const Handle array = filled(kKinds[12], {Handle(), hooked(1), string("b"), string("c")});
  userHooks.toString = [&](void*) {
    vorn_collections_Array_ctor(array, 1);
    return vorn_text_new("anew");
  };
  EXPECT_EQ(textOf(vorn_collections_Array_join(array, ",")), "null,anew");
}

TEST_F(JoinsUnderChange, ElementThatOnlyTheListHeld_LivesUntilItsTextIsMade) {
  for (const char* type : {"ArrayList", "LinkedList"}) {
    const Handle made = object(type);
    vorn_collections_ArrayList_add(made, hooked(1));
    userHooks.toString = [&](void* self) {
      vorn_collections_ArrayList_clear(made);
      vorn_heap_collect();
      return vorn_text_new(std::to_string(idOf(self)).c_str());
    };
    EXPECT_EQ(textOf(vorn_collections_ArrayList_join(made, ",")), "1");
  }
}

}  // namespace
}  // namespace vorn::tests
