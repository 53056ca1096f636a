// That every native lets go of the locks that it takes, however it ends.
#include "tests/nets/catalogue.h"
#include "tests/nets/stage.h"

namespace vorn::tests::nets {
namespace {

// Whether there are receivers with a lock.
bool hasLock(const Native& native) {
  return !subjectsOf(native, Which::Synchronised).empty() && native.takesReceiver();
}

bool locks(const Native& native) { return hasLock(native) && native.locks == Locks::WholeBody; }

// ---- After a raise --------------------------------------------------------------------------------------------------

class LocksAfterRaise : public NativeTest {};
class LocksAfterRaiseExcuses : public NativeTest {};
INSTANTIATE_NET(LocksAfterRaise, [](const Native& native) { return hasLock(native) && native.raises; });

// Every call ends with a look at the locks of all that took part.
TEST_P(LocksAfterRaise, AreFree) {
  int raised = 0;
  for (const Subject& subject : subjectsOf(native(), Which::Synchronised)) {
    for (const Choices& choices : combinations(native(), subject)) {
      SCOPED_TRACE(nameOf(subject) + ": " + nameOf(native(), choices));
      Stage stage(native(), subject, choices);
      const Ending ending = stage.run();
      if (ending.errors.empty()) continue;
      ++raised;
      EXPECT_FALSE(isLocked(stage.type(), stage.receiver()));
      if (HasFailure()) return;
    }
  }
  expectSeen(raised > 0, true, "raises");
}

TEST_P(LocksAfterRaiseExcuses, ThereIsNoLockOrNothingIsRaised) {
  if (native().raises) {
    EXPECT_FALSE(hasLock(native()));
    return;
  }
  for (const Subject& subject : subjectsOf(native(), Which::Synchronised)) {
    for (const Choices& choices : oneAtATime(native(), subject)) {
      Stage stage(native(), subject, choices);
      EXPECT_EQ(stage.run().errors, Texts{}) << nameOf(subject) << ": " << nameOf(native(), choices);
    }
  }
}

// ---- After an exception ---------------------------------------------------------------------------------------------

// The exception that every native which locks can throw: that of a lock that cannot be had. Those of failing allocations
// and of hooks are in the nets of these.
class LocksAfterException : public NativeTest {
 protected:
  // A null key is in no map, nothing equals null but null, and a number of elements may be none.
  static bool looksAtArgumentsFirst() {
    return native().has(Role::Key) || native().has(Role::Other) || native().has(Role::Count);
  }
};
class LocksAfterExceptionExcuses : public NativeTest {};
INSTANTIATE_NET(LocksAfterException, locks);

TEST_P(LocksAfterException, AreFree_AndNothingHasChanged) {
  int threw = 0;
  for (const Subject& subject : subjectsOf(native(), Which::Synchronised)) {
    for (const Choices& choices : oneAtATime(native(), subject)) {
      SCOPED_TRACE(nameOf(subject) + ": " + nameOf(native(), choices));
      Stage stage(native(), subject, choices);
      const Ending ending = stage.runWhileHeld(stage.receiver());
      EXPECT_EQ(stage.state(), stage.stateBefore());
      if (!ending.threw.empty()) {
        ++threw;
      } else {
        // Only what is refused by a look at the arguments, or is nothing to do, needs no lock.
        Stage free(native(), subject, choices);
        const Ending unhindered = free.run();
        EXPECT_TRUE(!unhindered.errors.empty() || (!native().reads && free.state() == free.stateBefore()) ||
                    looksAtArgumentsFirst())
            << "without a lock it " << textOf(ending);
      }
      if (HasFailure()) return;
    }
  }
  expectSeen(threw > 0, true, "takes the lock of its receiver");
}

// The field for a lock of a collection that has none is not looked at.
TEST_P(LocksAfterException, OfAPlainReceiver_IsNeverTaken) {
  for (const Subject& subject : subjectsOf(native(), Which::Plain)) {
    if (subject.type->family == Family::Tuple) continue;
    SCOPED_TRACE(nameOf(subject));
    const Choices choices = ordinary(native(), subject);
    Stage free(native(), subject, choices);
    const Ending expected = free.run();
    Stage stage(native(), subject, choices);
    const Ending ending = stage.runWhileHeld(stage.receiver());
    EXPECT_TRUE(native().random || textOf(ending) == textOf(expected)) << textOf(ending);
    if (HasFailure()) return;
  }
}

// With the lock of its other collection, which it takes first, or second.
TEST_P(LocksAfterException, OfTheOtherCollection_AreFree) {
  int threw = 0;
  for (const Which which : {Which::Plain, Which::Synchronised}) {
    for (const Subject& subject : subjectsOf(native(), which)) {
      for (const Choices& choices : oneAtATime(native(), subject)) {
        SCOPED_TRACE(nameOf(subject) + ": " + nameOf(native(), choices));
        Stage stage(native(), subject, choices);
        const CollectionClass* const type = classOf(stage.other());
        if (type == nullptr || !type->synchronised || stage.other() == stage.receiver()) continue;
        const Ending ending = stage.runWhileHeld(stage.other());
        if (ending.threw.empty()) continue;
        ++threw;
        EXPECT_EQ(ending.threw, "system_error");
        EXPECT_TRUE(native().constructor || stage.state() == stage.stateBefore());
        if (HasFailure()) return;
      }
    }
  }
  expectSeen(threw > 0, native().locksOther, "takes the lock of its other collection");
}

// The excuses: no receiver has a lock, or the native is one of the few that take none. That is seen by its getting along
// with the lock held.
TEST_P(LocksAfterExceptionExcuses, NoLockIsTaken) {
  if (!hasLock(native())) {
    EXPECT_EQ(native().receivers & ~(kImmutables | kTuples), 0U);
    return;
  }
  EXPECT_EQ(native().locks, Locks::Never);
  for (const Subject& subject : subjectsOf(native(), Which::Synchronised)) {
    for (const Choices& choices : oneAtATime(native(), subject)) {
      SCOPED_TRACE(nameOf(subject) + ": " + nameOf(native(), choices));
      Stage stage(native(), subject, choices);
      EXPECT_EQ(stage.runWhileHeld(stage.receiver()).threw, "");
    }
  }
}

}  // namespace
}  // namespace vorn::tests::nets
