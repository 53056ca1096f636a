// Every native while its first, second, ... allocation fails, until it succeeds: those on the collector's heap, and those
// by operator new.
#include <new>

#include "tests/nets/stage.h"

namespace vorn::tests::nets {
namespace {

class AllocationFailures : public NativeTest {
 protected:
  // Numbers of elements decide what is allocated, positions do not.
  static std::vector<Choice> othersThan(const Native& native, std::size_t place, const Subject& subject) {
    const Role role = native.roles[place];
    if (isIndex(role) && role != Role::Count && role != Role::Written && role != Role::Step) return {};
    return choicesOf(native, place, subject);
  }

  // Runs the sweep for one sort of memory, and returns how many allocations failed.
  static int sweep(const Subject& subject, const Choices& choices, Memory memory) {
    constexpr int kMost = 400;
    Stage untroubled(native(), subject, choices);
    const Ending expected = untroubled.run();
    for (int failing = 0; failing < kMost; ++failing) {
      SCOPED_TRACE((memory == Memory::Collected ? "block " : "operator new ") + std::to_string(failing));
      Stage stage(native(), subject, choices);
      failAllocation(memory, failing);
      const Ending ending = stage.run();
      if (!allocationFailed()) {
        EXPECT_TRUE(native().random || textOf(ending) == textOf(expected)) << textOf(ending);
        return failing;
      }
      SCOPED_TRACE(textOf(ending) + " instead of: " + textOf(expected));
      if (native().doesWithout && ending == expected) {
        EXPECT_EQ(stage.elements(), untroubled.elements());
        continue;
      }
      EXPECT_TRUE(ending.threw == "bad_alloc" || ending.outcome.starts_with("null") ||
                  ending.outcome == "no pointer, and null")
          << "an exception, or no object";
      EXPECT_TRUE(ending.errors.empty() || ending.errors == expected.errors) << "of the arguments, not of the memory";
      // What becomes of a used collection that is constructed once more is not promised.
      if (!native().constructor || subject.content == contents().data()) {
        EXPECT_EQ(stage.state(), stage.stateBefore());
      }
      if (HasFailure()) return failing;
    }
    ADD_FAILURE() << "the native never succeeds";
    return kMost;
  }
};
class AllocationFailuresExcuses : public NativeTest {};
INSTANTIATE_NET(AllocationFailures, [](const Native&) { return true; });

TEST_P(AllocationFailures, LeaveTheCollectionAsItWas) {
  int failures = 0;
  // User code that finds no memory says so, as the natives do.
  UserHooks hooks;
  hooks.toString = [](void* self) {
    void* const text = honestText(self);
    if (text == nullptr) throw std::bad_alloc();
    return text;
  };
  const ScopedHooks scope(hooks);
  for (const Which which : {Which::Plain, Which::Synchronised}) {
    if (which == Which::Synchronised && !native().takesReceiver()) continue;
    for (const Subject& subject : subjectsOf(native(), which)) {
      for (const Choices& choices : oneAtATime(native(), subject, othersThan)) {
        SCOPED_TRACE(nameOf(subject) + ": " + nameOf(native(), choices));
        for (const Memory memory : {Memory::Collected, Memory::OperatorNew}) {
          failures += sweep(subject, choices, memory);
          if (HasFailure()) return;
        }
      }
    }
  }
  expectSeen(failures > 0, native().allocates, "allocates");
}

TEST_P(AllocationFailuresExcuses, ThereAreNone) { FAIL() << native().name; }

}  // namespace
}  // namespace vorn::tests::nets
