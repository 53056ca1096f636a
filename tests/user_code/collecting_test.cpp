// Hooks that allocate, collect, and keep what they see.
#include "tests/user_code/hostile_cases.h"

namespace vorn::tests {
namespace {

class CollectingHooks : public HostileTest {};
INSTANTIATE_HOSTILE_TESTS(CollectingHooks, hostileCases());

TEST_P(CollectingHooks, ChangeNothing_AndWhatTheyKeepLives) {
  const Ending honest = honestRun();
  const Scene target = scene();
  Handle kept[2];
  std::string described[2];
  const Ending ending = run(target, atCall(0, [&](void* self, void* other) {
                              kept[0] = self;
                              kept[1] = other;
                              for (int i = 0; i < 2; ++i) described[i] = describeById(kept[i]);
                              const Handle garbage = list("LinkedList", {string("garbage"), text("garbage")});
                              vorn_collections_ArrayList_sortNew(garbage);
                              vorn_heap_collect();
                              vorn_string_new("garbage in place of what has died", SIZE_MAX);
                            }));
  EXPECT_EQ(ending.outcome, honest.outcome);
  EXPECT_EQ(ending.contents, honest.contents);
  EXPECT_EQ(ending.errors, honest.errors);
  EXPECT_EQ(ending.calls, honest.calls);
  expectWorksAgain(target, honest);
  vorn_heap_collect();
  for (int i = 0; i < 2; ++i) EXPECT_EQ(describeById(kept[i]), described[i]);
}

// An allocation of the hook's own fails: with a null result inside the hook, and nothing of it outside.
TEST_P(CollectingHooks, FailingAllocationInsideTheHook_StaysThere) {
  const Ending honest = honestRun();
  for (const int call : someCalls(honest)) {
    const Scene target = scene();
    bool failed = false;
    const Ending ending = run(target, atCall(call, [&](void*, void*) {
                                vorn_heap_fail_allocation(0);
                                failed = vorn_string_new("no memory", SIZE_MAX) == nullptr;
                                vorn_heap_fail_allocation(-1);
                              }));
    EXPECT_TRUE(failed);
    EXPECT_EQ(ending.outcome, honest.outcome);
    EXPECT_EQ(ending.contents, honest.contents);
  }
}

}  // namespace
}  // namespace vorn::tests
