// What a map or set keeps alive. Only the stress heap frees exactly what no root reaches.
#include "tests/keyed/keyed_cases.h"
#include "tests/support/heap_statistics.h"

namespace vorn::tests {
namespace {

constexpr std::uint64_t kBig = 100000;

Handle bigText() { return string(std::string(kBig, 'x')); }

class Liveness : public RuntimeTest {
 protected:
  void SetUp() override {
    if (!onStressHeap()) GTEST_SKIP() << "only the stress heap frees at once what no root reaches";
  }
};

TEST_F(Liveness, Map_KeepsKeysAndValuesUntilTheyAreRemoved) {
  for (const char* type : kMapTypes) {
    SCOPED_TRACE(type);
    const Handle map = object(type);
    vorn_collections_Map_put(map, number(0), nullptr);
    const std::uint64_t before = liveBytes();
    vorn_collections_Map_put(map, bigText(), bigText());
    EXPECT_GE(liveBytes(), before + 2 * kBig);
    EXPECT_TRUE(vorn_collections_Map_remove(map, bigText()));
    EXPECT_LT(liveBytes(), before + kBig);
  }
}

TEST_F(Liveness, Map_ReplacedValueIsLetGo) {
  for (const char* type : kMapTypes) {
    SCOPED_TRACE(type);
    const Handle map = object(type);
    vorn_collections_Map_put(map, number(0), nullptr);
    const std::uint64_t before = liveBytes();
    vorn_collections_Map_put(map, number(0), bigText());
    vorn_collections_Map_put(map, number(0), nullptr);
    EXPECT_LT(liveBytes(), before + kBig);
  }
}

TEST_F(Liveness, Map_ClearLetsEverythingGo) {
  for (const char* type : kMapTypes) {
    SCOPED_TRACE(type);
    const Handle map = object(type);
    const std::uint64_t before = liveBytes();
    for (int i = 0; i < 20; ++i) vorn_collections_Map_put(map, number(i), bigText());
    EXPECT_GE(liveBytes(), before + 20 * kBig);
    vorn_collections_Map_clear(map);
    EXPECT_LT(liveBytes(), before + kBig);
  }
}

TEST_F(Liveness, Map_MemoryFollowsWhatIsLeft) {
  for (const char* type : {"Map", "HashMapSync"}) {
    SCOPED_TRACE(type);
    const Handle map = object(type);
    const std::uint64_t before = liveBytes();
    for (int i = 0; i < 3000; ++i) vorn_collections_Map_put(map, number(i), nullptr);
    const std::uint64_t filled = liveBytes();
    EXPECT_GE(filled, before + 3000 * 40);
    for (int i = 0; i < 2990; ++i) EXPECT_TRUE(vorn_collections_Map_remove(map, number(i)));
    EXPECT_LT(liveBytes(), before + 4000);
    for (int i = 0; i < 3000; ++i) vorn_collections_Map_put(map, number(i), nullptr);
    vorn_collections_Map_clear(map);
    EXPECT_LT(liveBytes(), before + 2000);
  }
}

TEST_F(Liveness, Set_KeepsElementsUntilTheyAreRemoved) {
  for (const char* type : kSetTypes) {
    SCOPED_TRACE(type);
    const Handle set = object(type);
    vorn_collections_HashSet_add(set, number(0));
    const std::uint64_t before = liveBytes();
    vorn_collections_HashSet_add(set, bigText());
    EXPECT_GE(liveBytes(), before + kBig);
    EXPECT_TRUE(vorn_collections_HashSet_remove(set, bigText()));
    EXPECT_LT(liveBytes(), before + kBig);
    vorn_collections_HashSet_add(set, bigText());
    vorn_collections_HashSet_clear(set);
    EXPECT_LT(liveBytes(), before + kBig);
  }
}

}  // namespace
}  // namespace vorn::tests
