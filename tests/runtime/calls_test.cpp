// vorn_call: shapes, results, and what becomes of errors and exceptions.
#include <pthread.h>
#include <vorn/collections/array_list.h>
#include <vorn/collections/map.h>

#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/runtime/heap_probe.h"
#include "tests/support/runtime_test.h"

namespace vorn::tests {
namespace {

using CallsTest = RuntimeTest;
using Errors = std::vector<std::string>;

template <class Result, class... Parameters>
vorn_function asFunction(Result (*function)(Parameters...)) {
  return reinterpret_cast<vorn_function>(function);
}

vorn_word handleWord(void* handle) { return {.handle = handle}; }
vorn_word textWord(const char* text) { return {.handle = const_cast<char*>(text)}; }
vorn_word integerWord(std::int64_t integer) { return {.integer = integer}; }
vorn_word floatingWord(double floating) {
  vorn_word word;
  word.floating = floating;
  return word;
}

TEST_F(CallsTest, Call_PassesEveryLetterAndGivesEveryResult) {
  struct Seen {
    void* handle = nullptr;
    long long integer = 0;
    double floating = 0;
    bool truth = false;
  };
  static Seen seen;
  seen = {};
  int something = 0;
  vorn_word result = integerWord(-1);

  const vorn_word floating[] = {handleWord(&something), floatingWord(-2.5), handleWord(&seen)};
  EXPECT_EQ(vorn_call("v(hdh)", asFunction(+[](void* a, double b, void* c) {
                        seen = {a == c ? nullptr : a, 0, b, false};
                      }),
                      floating, nullptr),
            0);
  EXPECT_EQ(seen.handle, &something);
  EXPECT_EQ(seen.floating, -2.5);

  const vorn_word truth[] = {handleWord(nullptr), integerWord(INT64_MIN), integerWord(1)};
  EXPECT_EQ(vorn_call("v(hib)", asFunction(+[](void* a, long long b, bool c) {
                        seen = {a, b, 0, c};
                      }),
                      truth, &result),
            0);
  EXPECT_EQ(seen.integer, INT64_MIN);
  EXPECT_TRUE(seen.truth);
  EXPECT_EQ(result.integer, -1) << "there was no result";

  const vorn_word none[] = {handleWord(&something), handleWord(nullptr)};
  EXPECT_EQ(vorn_call("h(h)", asFunction(+[](void* a) { return a; }), none, &result), 0);
  EXPECT_EQ(result.handle, &something);
  EXPECT_EQ(vorn_call("i(h)", asFunction(+[](void*) { return -5LL; }), none, &result), 0);
  EXPECT_EQ(result.integer, -5);
  EXPECT_EQ(vorn_call("n(h)", asFunction(+[](void*) { return -6; }), none, &result), 0);
  EXPECT_EQ(result.integer, -6);
  EXPECT_EQ(vorn_call("d(h)", asFunction(+[](void*) { return 0.25; }), none, &result), 0);
  EXPECT_EQ(result.floating, 0.25);
  EXPECT_EQ(vorn_call("b(hh)", asFunction(+[](void*, void*) { return true; }), none, &result), 0);
  EXPECT_EQ(result.integer, 1);
  EXPECT_EQ(vorn_call("b(hh)", asFunction(+[](void*, void*) { return true; }), none, nullptr), 0);
}

TEST_F(CallsTest, Call_OfNatives_WritesHandlesToRootedSlots) {
  void* list = nullptr;
  void* element = nullptr;
  vorn_root_add(&list);
  vorn_root_add(&element);
  const vorn_word name = textWord("ArrayList<String>");
  ASSERT_EQ(vorn_call("h(h)", asFunction(vorn_object_new), &name, reinterpret_cast<vorn_word*>(&list)), 0);
  for (int i = 0; i < 20; ++i) {
    const vorn_word text[] = {textWord("some text"), integerWord(9)};
    ASSERT_EQ(vorn_call("h(hi)", asFunction(vorn_string_new), text, reinterpret_cast<vorn_word*>(&element)), 0);
    const vorn_word both[] = {handleWord(list), handleWord(element)};
    ASSERT_EQ(vorn_call("v(hh)", asFunction(vorn_collections_ArrayList_add), both, nullptr), 0);
  }
  vorn_heap_collect();
  EXPECT_EQ(vorn_collections_ArrayList_size(list), 20);
  EXPECT_STREQ(vorn_string_text(element), "some text");
  vorn_root_remove(&element);
  vorn_root_remove(&list);
}

TEST_F(CallsTest, Call_WithAnUnknownShape_CallsNothing) {
  vorn_word result = integerWord(77);
  const vorn_word arguments[7] = {};
  for (const char* shape :
       {"", "h", "h(", "x(h)", "h(h) ", " h(h)", "v(hhhhhhhh)", "vh(hiiihhh)", "v(hiiihhhv(hiiihhh)", "v(hiiihhh"}) {
    EXPECT_EQ(vorn_call(shape, asFunction(+[] { vorn_raise("Exception", "called"); }), arguments, &result), -1)
        << shape;
  }
  EXPECT_EQ(result.integer, 77);
  EXPECT_EQ(takeErrors(), Errors{});
}

TEST_F(CallsTest, Call_CountsTheErrorsThatItRaised) {
  vorn_raise("app.Older", "before");
  vorn_word result = integerWord(77);
  const vorn_word arguments[] = {handleWord(nullptr), handleWord(nullptr), handleWord(nullptr)};
  EXPECT_EQ(vorn_call("v(hh)", asFunction(vorn_collections_ArrayList_add), arguments, &result), 1);
  EXPECT_EQ(vorn_call("i(h)", asFunction(vorn_collections_ArrayList_size), arguments, &result), 0);
  EXPECT_EQ(vorn_call("v()", asFunction(+[] {
                        vorn_raise("A", "first");
                        vorn_raise("B", "second");
                      }),
                      nullptr, nullptr),
            2);
  EXPECT_EQ(vorn_call("v()", asFunction(+[] {
                        vorn_errors_clear();
                        vorn_raise("C", "third");
                      }),
                      nullptr, nullptr),
            1);
  EXPECT_EQ(takeErrors(), Errors{"C: third"});
}

TEST_F(CallsTest, Call_TurnsExceptionsIntoErrors) {
  vorn_word result = integerWord(77);
  const auto thrown = [&result](vorn_function function) {
    result.integer = 77;
    EXPECT_EQ(vorn_call("h()", function, nullptr, &result), 1);
    EXPECT_EQ(result.handle, nullptr);
    return takeErrors();
  };
  EXPECT_EQ(thrown(asFunction(+[]() -> void* { throw std::bad_alloc(); })),
            Errors{"MemoryException: there is not enough memory"});
  EXPECT_EQ(thrown(asFunction(+[]() -> void* { throw std::length_error("too long"); })),
            Errors{"MemoryException: the size is beyond what memory can hold"});
  EXPECT_EQ(thrown(asFunction(+[]() -> void* { throw std::runtime_error("why"); })), Errors{"NativeException: why"});
  EXPECT_EQ(thrown(asFunction(+[]() -> void* { throw 5; })),
            Errors{"NativeException: an exception of an unknown type"});
}

TEST_F(CallsTest, Call_ReportsExhaustedMemoryOfNatives) {
  void* map = vorn_object_new("Map");
  vorn_root_add(&map);
  const vorn_word arguments[] = {handleWord(map), integerWord(INT64_MAX)};
  EXPECT_EQ(vorn_call("v(hi)", asFunction(vorn_collections_Map_reserve), arguments, nullptr), 1);
  EXPECT_EQ(takeErrors(), Errors{"MemoryException: the size is beyond what memory can hold"});
  vorn_root_remove(&map);
}

// Exiting a thread unwinds its stack by an exception that nobody may stop.
TEST_F(CallsTest, Call_LetsAThreadExit) {
  static int status = 0;
  const auto run = [](void*) -> void* {
    vorn_call("v()", asFunction(+[] { pthread_exit(&status); }), nullptr, nullptr);
    return nullptr;
  };
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, nullptr, run, nullptr), 0);
  void* result = nullptr;
  ASSERT_EQ(pthread_join(thread, &result), 0);
  EXPECT_EQ(result, &status) << "the thread went on behind the call";
}

}  // namespace
}  // namespace vorn::tests
