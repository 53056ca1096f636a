// Whether the lock of a synchronised collection is held while hooks run: tried by another thread, from inside them.
#include "tests/user_code/hostile_cases.h"

namespace vorn::tests {
namespace {

class LocksDuringHooks : public HostileTest {};
INSTANTIATE_HOSTILE_TESTS(LocksDuringHooks, hostileCases(true));

TEST_P(LocksDuringHooks, AreHeldExactlyWhereTheyShould) {
  const Scene target = scene();
  // A key is made before the lock is taken.
  const bool expected = native().locksDuringHooks && hook() != Hook::Hash;
  int looked = 0;
  const Ending ending = run(target, atCall(0, [&](void*, void*) {
                              if (looked++ >= 5) return;
                              EXPECT_EQ(isLocked(type(), target.collection), expected);
                              EXPECT_FALSE(isLocked(type(), target.twin)) << "of another collection";
                            }));
  EXPECT_GT(looked, 0);
  EXPECT_EQ(ending.errors, Texts{});
}

}  // namespace
}  // namespace vorn::tests
