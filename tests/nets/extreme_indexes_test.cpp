// Every index, bound, step, number of elements and raw integer at the ends of what 32 and 64 bits hold, and next to the
// ends of the collection.
#include "tests/nets/stage.h"

namespace vorn::tests::nets {
namespace {

class ExtremeIndexes : public NativeTest {};
class ExtremeIndexesExcuses : public NativeTest {};
INSTANTIATE_NET(ExtremeIndexes, [](const Native& native) { return native.takesIndex(); });

bool takesCount() {
  return ExtremeIndexes::GetParam()->has(Role::Count) || ExtremeIndexes::GetParam()->has(Role::Written);
}

TEST_P(ExtremeIndexes, AreRefusedOrTakenLikeAnyOther) {
  for (const Which which : {Which::Plain, Which::Synchronised}) {
    for (const Subject& subject : subjectsOf(native(), which)) {
      for (const Choices& choices : oneAtATime(native(), subject, extremesOf)) {
        SCOPED_TRACE(nameOf(subject) + ": " + nameOf(native(), choices));
        Stage stage(native(), subject, choices);
        const Ending ending = stage.run();
        // Only a number of elements can be more than there is memory for.
        EXPECT_TRUE(ending.threw.empty() ||
                    (takesCount() && (ending.threw == "length_error" || ending.threw == "bad_alloc")))
            << textOf(ending);
        EXPECT_TRUE(ending.errors.empty() || ending.threw.empty()) << textOf(ending);
        const bool failed = !ending.errors.empty() || !ending.threw.empty();
        if (subject.type != nullptr && (failed || native().reads) && !native().restores && !native().keepsPart) {
          EXPECT_EQ(stage.state(), stage.stateBefore()) << textOf(ending);
        }
        if (HasFailure()) return;
      }
    }
  }
}

TEST_P(ExtremeIndexesExcuses, TheyTakeNoInteger) {
  for (const Role role : native().roles) EXPECT_FALSE(isIndex(role));
}

}  // namespace
}  // namespace vorn::tests::nets
