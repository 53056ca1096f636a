// Natives that look at elements without asking them anything.
#include "tests/user_code/hostile_cases.h"

namespace vorn::tests {
namespace {

// Hooks that fail the test when they are called.
Hostility unwelcome(unsigned hooks) {
  Hostility hostility;
  hostility.during = [hooks](Hook hook, void*, void*) {
    EXPECT_EQ(hooks & bit(hook), 0U) << kHookNames[static_cast<unsigned>(hook)] << " was asked";
  };
  return hostility;
}
constexpr unsigned kAny = kEquality | kOrder | kHash | kText;

class UnaskedHooks : public RuntimeTest, public ::testing::WithParamInterface<CollectionClass> {
 protected:
  static const CollectionClass& type() { return GetParam(); }
};

std::vector<CollectionClass> classes(bool keyed) {
  std::vector<CollectionClass> result;
  for (const CollectionClass& type : kCollectionClasses) {
    if ((type.family == Family::Map || type.family == Family::Set) == keyed) result.push_back(type);
  }
  return result;
}
std::string className(const ::testing::TestParamInfo<CollectionClass>& param) { return param.param.name; }

class UnaskedElements : public UnaskedHooks {};
INSTANTIATE_TEST_SUITE_P(Classes, UnaskedElements, ::testing::ValuesIn(classes(false)), className);
class UnaskedKeys : public UnaskedHooks {};
INSTANTIATE_TEST_SUITE_P(Classes, UnaskedKeys, ::testing::ValuesIn(classes(true)), className);

TEST_P(UnaskedElements, WhileTheyAreStoredAndRead) {
  for (const Shape shape : {Shape::Direct, Shape::InTuple}) {
    const Scene target(type(), shape, {3, 1, 5, 2});
    const Hostility hostility = unwelcome(kAny);
    const ScopedHostility scope(hostility);
    target.refill();
    EXPECT_EQ(target.contents().size(), 4U);
    EXPECT_EQ(faultOf(type(), target.collection), "");
  }
}

TEST_P(UnaskedKeys, WhileTheyAreListedAndDropped) {
  for (const Shape shape : {Shape::Direct, Shape::InTuple}) {
    const Scene target(type(), shape, {3, 1, 5, 2});
    const Hostility hostility = unwelcome(kAny);
    const ScopedHostility scope(hostility);
    const std::size_t roots = rootCount();
    if (type().family == Family::Map) {
      EXPECT_EQ(elementsOfList(Handle(vorn_collections_Map_keys(target.collection))).size(), 4U);
      EXPECT_EQ(elementsOfList(Handle(vorn_collections_Map_values(target.collection))).size(), 4U);
      EXPECT_EQ(elementsOfList(Handle(vorn_collections_Map_items(target.collection))).size(), 4U);
      vorn_collections_Map_reserve(target.collection, 500);
      vorn_collections_Map_clear(target.collection);
    } else {
      EXPECT_EQ(elementsOfList(Handle(vorn_collections_HashSet_items(target.collection))).size(), 4U);
      EXPECT_NE(vorn_collections_HashSet_operator_index(target.collection, 3), nullptr);
      vorn_collections_HashSet_reserve(target.collection, 500);
      vorn_collections_HashSet_clear(target.collection);
    }
    EXPECT_EQ(rootCount(), roots);
    EXPECT_EQ(faultOf(type(), target.collection), "");
  }
}

class SortedMapKeys : public RuntimeTest {};

TEST_F(SortedMapKeys, AreNeverHashed) {
  for (const CollectionClass& type : kCollectionClasses) {
    if (!type.sorted()) continue;
    for (const Shape shape : {Shape::Direct, Shape::InTuple}) {
      for (const Native& native : nativesOf(type, shape)) {
        SCOPED_TRACE(std::string(type.name) + " " + native.name);
        const Scene target(type, shape, {3, 1, 5, 2});
        const Hostility hostility = unwelcome(kHash);
        const ScopedHostility scope(hostility);
        native.call(target);
      }
    }
  }
}

}  // namespace
}  // namespace vorn::tests
