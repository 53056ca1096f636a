// Hooks that raise, with and without an error from before, and hooks that throw.
#include <stdexcept>

#include "tests/user_code/hostile_cases.h"

namespace vorn::tests {
namespace {

constexpr const char* kOlder = "Exception: older";
constexpr const char* kNewer = "Hook: newer";

class RaisingHooks : public HostileTest {
 protected:
  // What the native is after an error that counts: neutral, and the collection unchanged.
  static void expectEnded(const Ending& raised, const Texts& before) {
    EXPECT_EQ(raised.outcome, native().neutral);
    EXPECT_EQ(raised.contents, before);
  }
  // The error that the native itself adds where its key is not found.
  static bool missesKey() { return std::string(native().name) == "operator_index"; }

  // The ids of the objects that a hook is asked about, in either order; -1 for one that there is not.
  using Asked = std::pair<std::int64_t, std::int64_t>;
  static Asked idsOf(void* self, void* other) { return std::minmax({idOf(self), other != nullptr ? idOf(other) : -1}); }
  static Asked askedInCall(int call) {
    Asked asked;
    run(scene(), atCall(call, [&](void* self, void* other) { asked = idsOf(self, other); }));
    return asked;
  }
  // Raises whenever the hook is asked about these, and checks that it is not asked again where that ends the native.
  static Ending raiseFor(const Scene& scene, const Asked& asked) {
    bool raised = false;
    int askedAgain = 0;
    const Ending ending = run(scene, atCall(0, [&](void* self, void* other) {
                                if (raised) ++askedAgain;
                                if (idsOf(self, other) != asked) return;
                                vorn_raise("Hook", "newer");
                                raised = true;
                              }));
    if (native().onError == OnError::EndsIt) {
      EXPECT_EQ(askedAgain, 0) << "asked again after the error";
    }
    return ending;
  }

  static Ending raiseAt(const Scene& scene, int call) {
    return run(scene, atCall(call, [](void*, void*) { vorn_raise("Hook", "newer"); }));
  }
};
INSTANTIATE_HOSTILE_TESTS(RaisingHooks, hostileCases());

TEST_P(RaisingHooks, NewError_EndsTheNativeWhereItShould) {
  const Ending honest = honestRun();
  for (const int call : someCalls(honest)) {
    SCOPED_TRACE("raised in call " + std::to_string(call));
    const Scene target = scene();
    const Texts before = target.contents();
    const Ending raised = raiseAt(target, call);
    EXPECT_FALSE(raised.threw);
    EXPECT_EQ(raised.errors, missesKey() ? (Texts{kNewer, kNotFound}) : Texts{kNewer});
    if (native().onError == OnError::EndsIt) {
      expectEnded(raised, before);
      EXPECT_EQ(raised.calls, call) << "the hook is not asked again";
    } else {
      EXPECT_GE(raised.calls, call);
    }
    if (native().effect == Effect::Sorts) {
      Texts sorted = raised.contents;
      Texts given = before;
      std::sort(sorted.begin(), sorted.end());
      std::sort(given.begin(), given.end());
      EXPECT_EQ(sorted, given) << "no element is lost";
    }
    expectWorksAgain(target, honest);
  }
}

// The older error must not hide the newer one: the native ends as with the newer one alone. Sorts may ask about a pair
// less often once an error is pending, so that the newer error goes by the objects that are asked and not by the number
// of the call.
TEST_P(RaisingHooks, NewErrorOnTopOfAnOlderOne_EndsTheNativeAsItDoesAlone) {
  const Ending honest = honestRun();
  for (const int call : someCalls(honest)) {
    const Asked asked = askedInCall(call);
    SCOPED_TRACE("raised for " + std::to_string(asked.first) + " and " + std::to_string(asked.second));
    const Ending alone = raiseFor(scene(), asked);
    const Scene target = scene();
    vorn_raise("Exception", "older");
    const Ending both = raiseFor(target, asked);
    EXPECT_EQ(both.outcome, alone.outcome);
    EXPECT_EQ(both.contents, alone.contents);
    Texts expected = {kOlder};
    expected.insert(expected.end(), alone.errors.begin(), alone.errors.end());
    if (native().makesKey && hook() != Hook::Hash) {
      // The older error counts as soon as the key is made, so that no key is compared.
      std::erase(expected, kNewer);
      EXPECT_EQ(both.calls, 0);
    }
    EXPECT_EQ(both.errors, expected);
    expectWorksAgain(target, honest);
  }
}

TEST_P(RaisingHooks, OlderErrorAlone_CountsOnlyWhereAKeyIsMade) {
  const Ending honest = honestRun();
  const Scene target = scene();
  const Texts before = target.contents();
  vorn_raise("Exception", "older");
  const Ending older = run(target, {});
  if (native().makesKey) {
    expectEnded(older, before);
    EXPECT_EQ(older.errors, missesKey() ? (Texts{kOlder, kNotFound}) : Texts{kOlder});
  } else {
    EXPECT_EQ(older.outcome, honest.outcome);
    EXPECT_EQ(older.contents, honest.contents);
    EXPECT_EQ(older.errors, Texts{kOlder});
  }
  expectWorksAgain(target, honest);
}

class ThrowingHooks : public HostileTest {};
INSTANTIATE_HOSTILE_TESTS(ThrowingHooks, hostileCases());

TEST_P(ThrowingHooks, ExceptionPassesThrough_AndTheCollectionIsAsItWas) {
  const Ending honest = honestRun();
  for (const int call : someCalls(honest)) {
    SCOPED_TRACE("thrown in call " + std::to_string(call));
    const Scene target = scene();
    const Texts before = target.contents();
    const Ending thrown = run(target, atCall(call, [](void*, void*) { throw std::runtime_error("thrown by a hook"); }));
    EXPECT_TRUE(thrown.threw);
    EXPECT_EQ(thrown.what, "thrown by a hook");
    EXPECT_EQ(thrown.calls, call);
    EXPECT_EQ(thrown.contents, before);
    EXPECT_EQ(thrown.errors, Texts{});
    expectWorksAgain(target, honest);
  }
}

}  // namespace
}  // namespace vorn::tests
