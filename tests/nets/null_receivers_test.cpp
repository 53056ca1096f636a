// Every native on null: the neutral result, and an error only where it is promised.
#include "tests/nets/stage.h"
#include "tests/support/error_texts.h"

namespace vorn::tests::nets {
namespace {

class NullReceivers : public NativeTest {};
class NullReceiversExcuses : public NativeTest {};
INSTANTIATE_NET(NullReceivers, [](const Native& native) { return native.takesReceiver(); });

bool matches(const std::string& outcome, const std::string& expected) {
  return expected.ends_with('*') ? outcome.starts_with(expected.substr(0, expected.size() - 1)) : outcome == expected;
}

TEST_P(NullReceivers, GiveTheNeutralResult) {
  const std::string name(native().name);
  const bool compares = name.ends_with("operator_eq") || name.ends_with("operator_ne");
  for (const Subject& subject : subjectsOf(native())) {
    if (subject.content->name != std::string("Ints") && subject.content->name != std::string("a mixture")) continue;
    for (const auto& choices : {oneAtATime(native(), subject), oneAtATime(native(), subject, extremesOf)}) {
      for (const Choices& choice : choices) {
        SCOPED_TRACE(nameOf(subject) + ": " + nameOf(native(), choice));
        Stage stage(native(), subject, choice);
        stage.leaveOutReceiver();
        const Ending ending = stage.run();
        EXPECT_EQ(ending.threw, "");
        const Texts raised = native().raisedForNull != nullptr ? Texts{native().raisedForNull} : Texts{};
        const bool refused = native().looksAtSourceFirst && ending.errors == Texts{error_texts::kAddAllSource};
        EXPECT_TRUE(ending.errors == raised || refused) << textOf(ending);
        const bool nullToo = compares && stage.other() == nullptr;
        if (!nullToo) {
          EXPECT_TRUE(matches(ending.outcome, native().ofNull)) << ending.outcome;
        }
        EXPECT_EQ(stage.state(), stage.stateBefore()) << "of a collection that was not passed";
        if (HasFailure()) return;
      }
    }
  }
}

TEST_P(NullReceiversExcuses, TheyMakeACollectionOfTheirArguments) {
  EXPECT_FALSE(native().has(Role::Receiver) || native().has(Role::Record));
  EXPECT_EQ(native().receivers, 0U);
}

}  // namespace
}  // namespace vorn::tests::nets
