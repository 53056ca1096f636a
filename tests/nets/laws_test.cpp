// What holds of every native, whatever it is called with.
#include "tests/nets/stage.h"

namespace vorn::tests::nets {
namespace {

class Laws : public NativeTest {};
class LawsExcuses : public NativeTest {};
INSTANTIATE_NET(Laws, [](const Native&) { return true; });

TEST_P(Laws, Hold) {
  int calls = 0;
  int raised = 0;
  for (const Subject& subject : subjectsOf(native())) {
    for (const Choices& choices : combinations(native(), subject)) {
      SCOPED_TRACE(nameOf(subject) + ": " + nameOf(native(), choices));
      ++calls;
      Stage first(native(), subject, choices);
      const Ending ending = first.run();
      SCOPED_TRACE(textOf(ending));
      EXPECT_EQ(ending.threw, "") << "what a program may pass";
      if (!ending.errors.empty()) ++raised;
      if (subject.type != nullptr) {
        if (!ending.errors.empty() && !native().keepsPart && !native().constructor) {
          EXPECT_EQ(first.state(), first.stateBefore()) << "an error leaves the receiver as it was";
        }
        if (native().reads && !native().restores) {
          EXPECT_EQ(first.state(), first.stateBefore()) << "a reader leaves the receiver as it was";
        }
      }
      // On an equal receiver with equal arguments it does the same again, and behind a lock too.
      Stage again(native(), subject, choices);
      const Ending second = again.run();
      if (!native().random) {
        EXPECT_EQ(textOf(second), textOf(ending)) << "again";
        EXPECT_EQ(again.elements(), first.elements()) << "again";
      }
      const CollectionClass* const locked = subject.type != nullptr ? synchronisedTwin(*subject.type) : nullptr;
      if (locked != nullptr && !native().random && !native().rawPointer) {
        Stage behindLock(native(), {locked, subject.content}, choices);
        EXPECT_EQ(withoutLocks(textOf(behindLock.run())), withoutLocks(textOf(ending))) << "with a lock";
        EXPECT_EQ(withoutLocks(behindLock.elements()), withoutLocks(first.elements())) << "with a lock";
      }
      if (HasFailure()) return;
    }
  }
  EXPECT_GT(calls, 0);
  expectSeen(raised > 0, native().raises, "raises");
}

// A search may box what it searches, but leaves the elements.
TEST_P(Laws, ReadersThatBox_LeaveTheElements) {
  if (!native().restores) return;
  for (const Subject& subject : subjectsOf(native())) {
    for (const Choices& choices : oneAtATime(native(), subject)) {
      SCOPED_TRACE(nameOf(subject) + ": " + nameOf(native(), choices));
      Stage stage(native(), subject, choices);
      const auto elements = [](const std::string& description) {
        return description.substr(0, description.rfind(']'));
      };
      stage.run();
      EXPECT_EQ(elements(stage.elements()), elements(stage.elementsBefore()));
    }
  }
}

TEST_P(LawsExcuses, ThereAreNone) { FAIL() << native().name; }

}  // namespace
}  // namespace vorn::tests::nets
