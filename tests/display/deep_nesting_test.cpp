// Collections nested deeply, and more deeply than the stack allows.
#include <pthread.h>

#include <functional>
#include <stdexcept>

#include "collections/display/display_buffer.h"
#include "runtime/heap/sanitizers.h"
#include "tests/display/display_cases.h"

namespace vorn::tests {
namespace {

using DeepNesting = KindTest;
INSTANTIATE_KIND_TESTS(DeepNesting);

// The stress heap looks at all that lives at every allocation.
int depthOrLess(int depth, int onStress) { return onStressHeap() ? onStress : depth; }

// AddressSanitizer makes frames several times as large.
#ifdef VORN_ASAN
constexpr std::size_t kUsualStack = std::size_t{64} << 20;
#else
constexpr std::size_t kUsualStack = std::size_t{8} << 20;
#endif

// ThreadSanitizer keeps some 200 KB of its own on each thread's stack.
#ifdef __SANITIZE_THREAD__
constexpr std::size_t kSmallStack = std::size_t{1} << 20;
#else
constexpr std::size_t kSmallStack = std::size_t{256} << 10;
#endif

Handle nested(const Kind& kind, int depth) {
  Handle inner = collectionFor(kind, 0);
  for (int i = 1; i < depth; ++i) {
    const Handle outer = collectionFor(kind, 1);
    put(kind, outer, 0, inner);
    inner = outer;
  }
  return inner;
}

std::string shownNested(const Kind& kind, int depth) {
  std::string opening;
  std::string closing;
  const std::string one = shown(kind, {"*"});
  const std::size_t place = one.find('*');
  for (int i = 1; i < depth; ++i) {
    opening += one.substr(0, place);
    closing += one.substr(place + 1);
  }
  return opening + shown(kind, {}) + closing;
}

// Runs a function on a thread with a stack of the given size.
void onStack(std::size_t stack, std::size_t guard, const std::function<void()>& function) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, stack), 0);
  ASSERT_EQ(pthread_attr_setguardsize(&attributes, guard), 0);
  const auto run = [](void* argument) -> void* {
    (*static_cast<const std::function<void()>*>(argument))();
    return nullptr;
  };
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&function)), 0);
  pthread_attr_destroy(&attributes);
  ASSERT_EQ(pthread_join(thread, nullptr), 0);
}

void expectTooDeep(const Kind& kind, void* deep) {
  try {
    kind.toString(deep);
    ADD_FAILURE() << "no exception";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "collections are nested too deeply to display");
  }
  EXPECT_EQ(faultOf(kind, deep), "");
}

TEST_P(DeepNesting, FiveThousand_ShowInFull) {
  const int depth = depthOrLess(5000, 100);
  const Handle deep = nested(kind(), depth);
  onStack(kUsualStack, 4096, [&] { EXPECT_EQ(valueToDisplayString(deep), shownNested(kind(), depth)); });
}

TEST_P(DeepNesting, OnASmallStack_EndsInAnException) {
  const int depth = depthOrLess(20000, 900);
  const Handle deep = nested(kind(), depth);
  const Handle flat = filled(kind(), {integer("Int", 1)});
  onStack(kSmallStack, 4096, [&] {
    EXPECT_EQ(valueToDisplayString(flat), shown(kind(), {"1"}));
    expectTooDeep(kind(), deep);
    EXPECT_EQ(valueToDisplayString(flat), shown(kind(), {"1"}));
    expectTooDeep(kind(), deep);
  });
}

// The guard area must not be taken for stack that is left.
TEST_P(DeepNesting, OnAStackWithALargeGuardArea_EndsInAnException) {
  if (onStressHeap()) return;  // a matter of the stack alone
  const Handle deep = nested(kind(), 20000);
  onStack(kSmallStack + (std::size_t{512} << 10), std::size_t{512} << 10, [&] { expectTooDeep(kind(), deep); });
}

TEST_P(DeepNesting, LevelsLeftBehind_ShowInFullAgain) {
  const int depth = depthOrLess(3000, 700);
  const int shallow = 20;
  const Handle bottom = nested(kind(), shallow);
  Handle deep = bottom;
  for (int i = 0; i < depth; ++i) {
    const Handle outer = collectionFor(kind(), 1);
    put(kind(), outer, 0, deep);
    deep = outer;
  }
  onStack(kSmallStack, 4096, [&] {
    expectTooDeep(kind(), deep);
    EXPECT_EQ(valueToDisplayString(bottom), shownNested(kind(), shallow));
  });
}

TEST(DeepNestingOfLists, AMillion_EndsInAnException) {
  // Small stacks show the same on the stress heap.
  if (onStressHeap()) return;
  expectTooDeep(kKinds[0], nested(kKinds[0], 1000000));
}

TEST(DisplayBuffers, TextBeyondTheLargestString_IsALengthError) {
  collections::DisplayBuffer text;
  text.append("some");
  for (const std::size_t count : {SIZE_MAX, SIZE_MAX / 2, SIZE_MAX - 4}) {
    try {
      text.room(count);
      ADD_FAILURE() << "no exception";
    } catch (const std::length_error& error) {
      EXPECT_STREQ(error.what(), "basic_string::append");
    }
  }
  EXPECT_THROW(text.room(SIZE_MAX / 4), std::bad_alloc);
  text.append(" text");
  EXPECT_EQ(text.view(), "some text");
}

}  // namespace
}  // namespace vorn::tests
