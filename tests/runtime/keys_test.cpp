// What makes two handles one key of a map or set.
#include <cmath>
#include <limits>

#include "collections/core/port/keys.h"
#include "collections/core/port/object_layout.h"
#include "collections/core/port/type_names.h"
#include "collections/keyed/map_data.h"
#include "tests/runtime/key_support.h"
#include "tests/runtime/special_numbers.h"
#include "tests/support/heap_statistics.h"
#include "tests/support/held_mutex.h"

namespace vorn::tests {
namespace {

using Keys = RuntimeTest;

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

TEST_F(Keys, Numbers_ByValueWhateverTheirType) {
  for (const char* type : {"SByte", "Byte", "Short", "UShort", "Int", "UInt", "Long", "ULong"}) {
    EXPECT_TRUE(sameKey(integer("Int", 1), integer(type, 1))) << type;
    EXPECT_TRUE(sameKey(floating("Double", 1.0), integer(type, 1))) << type;
    EXPECT_TRUE(sameKey(floating("Float", 1.0), integer(type, 1))) << type;
    EXPECT_FALSE(sameKey(integer("Int", 2), integer(type, 1))) << type;
  }
  EXPECT_TRUE(sameKey(floating("Double", -0.0), integer("Int", 0)));
  EXPECT_TRUE(sameKey(floating("Double", -0x1p63), integer("Long", kLeast)));
  EXPECT_TRUE(sameKey(floating("Float", 0.5), floating("Double", 0.5)));
  EXPECT_FALSE(sameKey(floating("Double", 0.5), integer("Int", 0)));
}

TEST_F(Keys, Integers_KeepAll64Bits) {
  EXPECT_TRUE(sameKey(integer("Byte", 300), integer("Int", 300)));
  EXPECT_FALSE(sameKey(integer("Byte", 300), integer("Byte", 300 - 256)));
  EXPECT_FALSE(sameKey(integer("Long", (1LL << 53) + 1), floating("Double", 0x1p53)));
}

TEST_F(Keys, LargeUnsigned_AreNotTheNegativeNumbersOfTheirBits) {
  EXPECT_EQ(keyFor(integer("ULong", kLeast)).tag, KeyTag::Unsigned);
  EXPECT_FALSE(sameKey(integer("ULong", -1), integer("Long", -1)));
  EXPECT_TRUE(sameKey(integer("ULong", kLeast), floating("Double", 0x1p63)));
  EXPECT_FALSE(sameKey(integer("ULong", -1), floating("Double", 0x1p64)));
}

TEST_F(Keys, FloatingNumbers_ThatNoIntegerHoldsAreTheirOwn) {
  for (const double value : {0.5, -1e300, 0x1p64, kInfinity, -kInfinity}) {
    EXPECT_EQ(keyFor(floating("Double", value)).tag, KeyTag::Floating) << value;
    EXPECT_TRUE(sameKey(floating("Double", value), floating("Double", value))) << value;
  }
  EXPECT_FALSE(sameKey(floating("Double", kInfinity), floating("Double", -kInfinity)));
}

TEST_F(Keys, Nans_AreOneKey) {
  EXPECT_TRUE(sameKey(floating("Double", kNan), floating("Double", std::nan("7"))));
  EXPECT_TRUE(sameKey(floating("Double", kNan), floating("Double", -kNan)));
  EXPECT_TRUE(sameKey(floating("Float", kNan), floating("Double", kNan)));
  EXPECT_FALSE(sameKey(floating("Double", kNan), integer("Int", 0)));
}

TEST_F(Keys, CharactersAndBooleans_AmongThemselvesOnly) {
  const Handle values[] = {integer("Int", 1), integer("Char", 1), integer("CodeUnit", 1), boolean(true), string("1")};
  for (const Handle& left : values) {
    for (const Handle& right : values) EXPECT_EQ(sameKey(left, right), &left == &right);
  }
  EXPECT_TRUE(sameKey(integer("Char", 'a'), integer("Char", 'a')));
  EXPECT_TRUE(sameKey(integer("CodeUnit", 'a'), integer("CodeUnit", 'a')));
  EXPECT_TRUE(sameKey(boolean(false), boolean(false)));
  EXPECT_FALSE(sameKey(boolean(false), boolean(true)));
}

TEST_F(Keys, Texts_ByBytesInEitherForm) {
  for (const std::size_t length : {0, 1, 2, 3, 4, 5, 7, 8, 9, 11, 15, 16, 17, 31, 32, 100, 1000}) {
    std::string bytes;
    for (std::size_t i = 0; i < length; ++i) bytes += static_cast<char>('a' + i % 26);
    EXPECT_TRUE(sameKey(string(bytes), string(bytes))) << length;
    EXPECT_TRUE(sameKey(string(bytes), text(bytes))) << length;
    const NativeCollectionKey fromText = makeNativeStringCollectionKey(bytes);
    const Handle handle = string(bytes);
    EXPECT_TRUE(NativeCollectionKeyEqual()(fromText, keyFor(handle))) << length;
    EXPECT_EQ(fromText.hash, keyFor(handle).hash) << length;
    EXPECT_EQ(fromText.text(), bytes) << length;
    EXPECT_EQ(fromText.tag, length <= 16 ? KeyTag::ShortText : KeyTag::LongText) << length;
    for (std::size_t i = 0; i < length; ++i) {
      std::string other = bytes;
      other[i] = '#';
      EXPECT_FALSE(sameKey(string(bytes), string(other))) << length << " " << i;
    }
    EXPECT_FALSE(sameKey(string(bytes), string(bytes + "a"))) << length;
  }
}

TEST_F(Keys, Texts_NulBytesCount) {
  EXPECT_FALSE(sameKey(string("a"), string(std::string("a\0", 2))));
  EXPECT_FALSE(sameKey(string(std::string("a\0b", 3)), string(std::string("a\0c", 3))));
  EXPECT_FALSE(sameKey(string(std::string(16, '\0')), string(std::string(15, '\0'))));
  EXPECT_FALSE(sameKey(string(std::string(17, '\0')), string(std::string(18, '\0'))));
}

TEST_F(Keys, ShortTexts_ArePaddedWithZeros) {
  const std::string bytes = "abcdefghijklmnop";
  for (std::size_t length = 0; length <= 16; ++length) {
    // Surroundings that must not get into the key.
    const std::string around = "#" + bytes.substr(0, length) + "################";
    const NativeCollectionKey key = makeNativeStringCollectionKey(std::string_view(around).substr(1, length));
    char expected[16] = {};
    bytes.copy(expected, length);
    EXPECT_EQ(std::memcmp(key.words, expected, 16), 0) << length;
  }
}

TEST_F(Keys, Null_IsAKeyOfSets) {
  EXPECT_EQ(makeNativeSetCollectionKey(nullptr).tag, KeyTag::Null);
  EXPECT_TRUE(sameKey(nullptr, nullptr));
  for (const Handle& other : {integer("Int", 0), string(""), boolean(false), tupleOf({})}) {
    EXPECT_FALSE(sameKey(nullptr, other));
  }
}

TEST_F(Keys, MutableCollectionsTypesAndPlainObjects_ByIdentity) {
  for (const char* type :
       {"ArrayList", "ArrayListSync", "LinkedList", "Map", "SortedMap", "HashSet", "HashSetSync", "Type", "Object"}) {
    const Handle one = object(type);
    const Handle other = object(type);
    EXPECT_TRUE(sameKey(one, one)) << type;
    EXPECT_FALSE(sameKey(one, other)) << type;
    EXPECT_EQ(keyFor(one).tag, KeyTag::Identity) << type;
  }
  EXPECT_FALSE(sameKey(plain(1), plain(1)));
  EXPECT_EQ(keyFor(plain(1)).tag, KeyTag::Identity);
}

TEST_F(Keys, ValuesAndTexts_AreMadeWithoutAllocating) {
  const Handle handles[] = {integer("Int", 7),
                            floating("Double", 0.5),
                            boolean(true),
                            string("short"),
                            string(std::string(100, 'x')),
                            text("bare"),
                            tupleOf({integer("Int", 1), string("a")})};
  for (const Handle& handle : handles) {
    const std::uint64_t allocations = allocationsOf([&] {
      const NativeCollectionKey key = keyFor(handle);
      NativeCollectionKeyEqual()(key, keyFor(handle));
    });
    EXPECT_EQ(allocations, 0U) << vorn_type_name(handle);
  }
}

// ---- Instances ------------------------------------------------------------------------------------------------------

TEST_F(Keys, Instances_ByHashAndEqualityHooks) {
  userHooks.hash = [](void* self) { return static_cast<std::uint64_t>(idOf(self)); };
  EXPECT_TRUE(sameKey(userKey(3), userKey(3)));
  EXPECT_FALSE(sameKey(userKey(3), userKey(4)));
  EXPECT_NE(keyFor(userKey(3)).hash, keyFor(userKey(4)).hash);
  EXPECT_EQ(keyFor(userKey(3)).tag, KeyTag::Instance);
  EXPECT_FALSE(sameKey(userKey(3), hooked(3)));
}

TEST_F(Keys, Instances_EqualityWithoutHashHook_OneHashPerClass) {
  EXPECT_TRUE(sameKey(hooked(3), hooked(3)));
  EXPECT_FALSE(sameKey(hooked(3), hooked(4)));
  EXPECT_EQ(keyFor(hooked(3)).hash, keyFor(hooked(4)).hash);
}

TEST_F(Keys, Instances_OfADerivedClassMayEqualThoseOfItsBase) {
  const Handle base = hooked(3);
  vorn_class_definition definition = {};
  definition.name = "app.DerivedHooked";
  definition.base_name = "app.Hooked";
  defineClass(definition);
  const Handle derived = object("app.DerivedHooked");
  vorn_field_set_integer(derived, "id", 3);
  EXPECT_EQ(keyFor(base).hash, keyFor(derived).hash);
  userHooks.equals = [](void* self, void* other) { return idOf(self) == idOf(other); };
  EXPECT_TRUE(sameKey(base, derived));
}

TEST_F(Keys, Instances_TheHashIsSpread) {
  userHooks.hash = [](void*) { return std::uint64_t{3}; };
  EXPECT_EQ(keyFor(userKey(3)).hash, mixedKeyHash(3));
}

TEST_F(Keys, Instances_AHashHookThatRaisesLeavesTheErrorPending) {
  const Handle instance = userKey(1);
  userHooks.hash = [](void*) {
    vorn_raise("Exception", "no hash");
    return std::uint64_t{1};
  };
  makeNativeCollectionKey(instance);
  EXPECT_RAISED("Exception: no hash");
  makeNativeSetCollectionKey(tupleOf({integer("Int", 1), instance, instance}));
  EXPECT_RAISED("Exception: no hash");
}

TEST_F(Keys, Instances_AnEqualityHookThatRaisesMakesThemDiffer) {
  userHooks.equals = [](void*, void*) {
    vorn_raise("Exception", "no equality");
    return true;
  };
  const Handle one = userKey(1);
  const Handle other = userKey(1);
  EXPECT_FALSE(NativeCollectionKeyEqual()(keyFor(one), keyFor(other)));
  EXPECT_RAISED("Exception: no equality");
  const Handle oneTuple = tupleOf({one});
  const Handle otherTuple = tupleOf({other});
  EXPECT_FALSE(NativeCollectionKeyEqual()(keyFor(oneTuple), keyFor(otherTuple)));
  EXPECT_RAISED("Exception: no equality");
}

TEST_F(Keys, Instances_ErrorsPendingBeforeDoNotCount) {
  const Handle one = userKey(1);
  const Handle other = userKey(1);
  vorn_raise("Exception", "before");
  EXPECT_TRUE(NativeCollectionKeyEqual()(keyFor(one), keyFor(other)));
  EXPECT_RAISED("Exception: before");
}

// ---- Sequences ------------------------------------------------------------------------------------------------------

TEST_F(Keys, Sequences_ByElementsAsKeys) {
  EXPECT_TRUE(sameKey(tupleOf({}), tupleOf({})));
  EXPECT_TRUE(sameKey(tupleOf({integer("Int", 1), string("a")}), tupleOf({floating("Double", 1.0), text("a")})));
  EXPECT_TRUE(sameKey(tupleOf({nullptr, floating("Double", kNan)}), tupleOf({nullptr, floating("Double", kNan)})));
  EXPECT_FALSE(sameKey(tupleOf({integer("Int", 1)}), tupleOf({integer("Int", 1), nullptr})));
  EXPECT_FALSE(
      sameKey(tupleOf({integer("Int", 1), integer("Int", 2)}), tupleOf({integer("Int", 2), integer("Int", 1)})));
  EXPECT_FALSE(sameKey(tupleOf({integer("Int", 1)}), tupleOf({boolean(true)})));
  EXPECT_TRUE(sameKey(boxedImmutable({integer("Int", 1)}), boxedImmutable({integer("Long", 1)})));
}

TEST_F(Keys, Sequences_TypeArgumentsDoNotMatter) {
  const std::vector<Handle> items = {string("a"), integer("Int", 1)};
  EXPECT_TRUE(sameKey(tupleOf(items, "Tuple<String,Int>"), tupleOf(items, "Tuple<Object,Object>")));
  EXPECT_TRUE(sameKey(list("ImmutableList<Int>", {integer("Int", 1)}), list("ImmutableList", {integer("Int", 1)})));
}

TEST_F(Keys, Sequences_TuplesAndImmutableListsAreNeverOne) {
  EXPECT_FALSE(sameKey(tupleOf({}), object("ImmutableList")));
  EXPECT_FALSE(sameKey(tupleOf({integer("Int", 1)}), boxedImmutable({integer("Int", 1)})));
  EXPECT_NE(keyFor(tupleOf({integer("Int", 1)})).hash, keyFor(boxedImmutable({integer("Int", 1)})).hash);
  EXPECT_FALSE(sameKey(tupleOf({tupleOf({})}), tupleOf({object("ImmutableList")})));
}

TEST_F(Keys, Sequences_NestedMutableListsCountByIdentity) {
  const Handle inner = list("ArrayList", {integer("Int", 1)});
  EXPECT_TRUE(sameKey(tupleOf({inner}), tupleOf({inner})));
  EXPECT_FALSE(sameKey(tupleOf({inner}), tupleOf({list("ArrayList", {integer("Int", 1)})})));
  const Handle key = tupleOf({inner});
  const std::uint32_t hash = keyFor(key).hash;
  vorn_collections_ArrayList_add(inner, integer("Int", 2));
  EXPECT_EQ(keyFor(key).hash, hash);
}

TEST_F(Keys, Sequences_UnboxedElementsCountAsTheirBoxes) {
  const std::pair<const char*, std::vector<std::int64_t>> cases[] = {
      {"SByte", {-1, 0, 127}},     {"Byte", {0, 255}},        {"Short", {-5}}, {"UShort", {65535}},
      {"CodeUnit", {'a', 0xFFFF}}, {"Int", {-1, 0, 1}},       {"UInt", {7}},   {"Char", {'a', 0x1F600}},
      {"Long", {kLeast}},          {"ULong", {1, -1, kLeast}}};
  for (const auto& [type, values] : cases) {
    std::vector<Handle> boxes;
    for (const std::int64_t value : values) boxes.push_back(integer(type, value));
    EXPECT_TRUE(sameKey(unboxedImmutable(type, values), boxedImmutable(boxes))) << type;
    boxes.back() = nullptr;
    EXPECT_FALSE(sameKey(unboxedImmutable(type, values), boxedImmutable(boxes))) << type;
  }
  EXPECT_TRUE(sameKey(unboxedFloatingImmutable("Double", {0.5, kNan, -0.0}),
                      boxedImmutable({floating("Float", 0.5), floating("Double", kNan), integer("Int", 0)})));
  EXPECT_TRUE(sameKey(unboxedFloatingImmutable("Double", {1, 2}), unboxedImmutable("Int", {1, 2})));
  EXPECT_FALSE(sameKey(unboxedImmutable("Char", {'a'}), unboxedImmutable("UInt", {'a'})));
  EXPECT_FALSE(sameKey(unboxedImmutable("Int", {1, 2}), unboxedImmutable("Int", {1, 3})));
  EXPECT_FALSE(sameKey(unboxedImmutable("Int", {1, 2}), unboxedImmutable("Int", {1})));
}

TEST_F(Keys, Sequences_UnboxedBooleansCountAsTheirBoxes) {
  const Handle source = object("ArrayList");
  vorn_collections_ArrayList_addPrimitiveBool(source, true);
  const Handle unboxed = object("ImmutableList");
  vorn_collections_ImmutableList_ctor(unboxed, source);
  EXPECT_TRUE(sameKey(unboxed, boxedImmutable({boolean(true)})));
  EXPECT_FALSE(sameKey(unboxed, boxedImmutable({integer("Int", 1)})));
}

TEST_F(Keys, Sequences_UnboxedElementsInsideOthers) {
  EXPECT_TRUE(sameKey(tupleOf({unboxedImmutable("Int", {1, 2})}),
                      tupleOf({boxedImmutable({integer("Long", 1), integer("Long", 2)})})));
}

TEST_F(Keys, Sequences_InstancesInsideByHook) {
  EXPECT_TRUE(sameKey(tupleOf({userKey(1), hooked(2)}), tupleOf({userKey(1), hooked(2)})));
  EXPECT_FALSE(sameKey(tupleOf({userKey(1)}), tupleOf({userKey(2)})));
  EXPECT_TRUE(sameKey(boxedImmutable({tupleOf({userKey(1)})}), boxedImmutable({tupleOf({userKey(1)})})));
}

TEST_F(Keys, Sequences_AHookThatChangesTheSequenceIsSurvived) {
  const Handle tuple = tupleOf({userKey(1), userKey(2), userKey(3)});
  const Handle list = boxedImmutable({userKey(1), userKey(2), userKey(3)});
  userHooks.hash = [&](void* self) {
    vorn_field_set_integer(tuple, "size", 1);
    vorn_field_set_handle(tuple, "_0", nullptr);
    vorn_field_set_handle(tuple, "_100", nullptr);
    vorn_collections_ArrayList_clear(list);
    vorn_heap_collect();
    return static_cast<std::uint64_t>(idOf(self));
  };
  keyFor(tuple);
  keyFor(list);
}

constexpr int kLevels = 100'000;
int levels() { return onStressHeap() ? 300 : kLevels; }

TEST_F(Keys, Sequences_DeepOnesHashAndCompareWithoutStack) {
  const Handle one = deepTuple(levels(), integer("Int", 1));
  const Handle same = deepTuple(levels(), floating("Double", 1.0));
  const Handle other = deepTuple(levels(), integer("Int", 2));
  EXPECT_TRUE(sameKey(one, same));
  EXPECT_FALSE(sameKey(one, other));
  EXPECT_EQ(order(one, same), 0);
  EXPECT_EQ(order(one, other), -1);
}

TEST_F(Keys, Sequences_CyclesHashAndCompareToAnEnd) {
  const auto endless = [](int length) {
    const Handle first = tupleOf({nullptr});
    Handle last = first;
    for (int i = 1; i < length; ++i) last = tupleOf({last});
    EXPECT_EQ(vorn_field_set_handle(first, "_0", last), 1);
    return last;
  };
  EXPECT_TRUE(sameKey(endless(1), endless(1)));
  EXPECT_TRUE(sameKey(endless(2), endless(3)));
  EXPECT_EQ(order(endless(2), endless(3)), 0);
  EXPECT_FALSE(sameKey(endless(1), deepTuple(50, nullptr)));
}

TEST_F(Keys, Sequences_SharedPartsAreNotWalkedAgainAndAgain) {
  const auto doubled = [](int times) {
    Handle tuple = tupleOf({integer("Int", 1)});
    for (int i = 0; i < times; ++i) tuple = tupleOf({tuple, tuple});
    return tuple;
  };
  EXPECT_TRUE(sameKey(doubled(60), doubled(60)));
  EXPECT_FALSE(sameKey(doubled(60), doubled(59)));
}

TEST_F(Keys, Sequences_WideAndNestedHashABoundedPart) {
  std::vector<Handle> elements(300, integer("Int", 1));
  Handle nested = boxedImmutable(elements);
  for (int i = 0; i < 8; ++i) nested = boxedImmutable(std::vector<Handle>(300, nested));
  keyFor(nested);  // 300^9 elements if all were looked at
  EXPECT_TRUE(sameKey(nested, nested));
}

TEST_F(Keys, SynchronisedLists_AreLockedOnlyWhileTheyAreRead) {
  // An immutable list has no lock by its class; a record that has one is treated as any other.
  const Handle list = boxedImmutable({userKey(1)});
  const Handle lender = object("ArrayListSync");
  getListData(list)->mutex = getListData(lender)->mutex;
  getListData(list)->synchronized = true;
  int tries = 0;
  userHooks.hash = [&](void* self) {
    EXPECT_FALSE(isRecordLocked(*getListData(list)));
    ++tries;
    return static_cast<std::uint64_t>(idOf(self));
  };
  keyFor(list);
  EXPECT_EQ(tries, 1);
}

// ---- Keys without hashes --------------------------------------------------------------------------------------------

TEST_F(Keys, OrderedKeys_AreMadeWithoutAHashHookAndOrderAsOthers) {
  const Handle one = userKey(1);
  const Handle two = userKey(2);
  userHooks.hash = [](void*) { return vorn_raise("Exception", "no hash"), std::uint64_t{1}; };
  const NativeCollectionKey first = makeNativeOrderedCollectionKey(one);
  const NativeCollectionKey second = makeNativeOrderedCollectionKey(two);
  EXPECT_LT(compareNativeCollectionKeys(first, second), 0);
  const Handle tuple = tupleOf({one, two});
  const Handle greater = tupleOf({two, one});
  EXPECT_LT(compareNativeCollectionKeys(makeNativeOrderedCollectionKey(tuple), makeNativeOrderedCollectionKey(greater)),
            0);
  EXPECT_EQ(compareNativeCollectionKeys(makeNativeOrderedCollectionKey(integer("Int", 3)), integerCollectionKey(3)), 0);
  EXPECT_EQ(hookCalls(Hook::Hash), 0);
}

// ---- Type names and texts of map keys -------------------------------------------------------------------------------

TEST_F(Keys, MapKeyTypeName_IsShort) {
  EXPECT_EQ(mapKeyRuntimeTypeName(integer("Int", 1)), "Int");
  EXPECT_EQ(mapKeyRuntimeTypeName(string("a")), "String");
  EXPECT_EQ(mapKeyRuntimeTypeName(text("a")), "String");
  EXPECT_EQ(mapKeyRuntimeTypeName(hooked(1)), "Hooked");
  EXPECT_EQ(mapKeyRuntimeTypeName(tupleOf({}, "Tuple<String,Int>")), "Tuple<String,Int>");
  EXPECT_EQ(mapKeyRuntimeTypeName(nullptr), "");
}

TEST_F(Keys, MapKeyString_IsTheTextOfAFloatingNumber) {
  EXPECT_EQ(mapKeyString(floating("Double", 0.5)), "0.5");
  EXPECT_EQ(mapKeyString(floating("Float", 3)), "3.0");
  EXPECT_EQ(mapKeyString(floating("Double", kNan)), "NaN");
  EXPECT_EQ(mapKeyString(integer("Int", 1)), "");
  EXPECT_EQ(mapKeyString(string("a")), "");
  EXPECT_EQ(mapKeyString(nullptr), "");
}

TEST_F(Keys, KeyTypeOfAMap_IsTheRecordedOneOrObject) {
  const Handle map = object("HashMapSync<String,Int>");
  EXPECT_EQ(resolveMapKeyTypeName(map), "Object");
  getMapData(map)->keyType = internRuntimeTypeName("String");
  EXPECT_EQ(resolveMapKeyTypeName(map), "String");
}

}  // namespace
}  // namespace vorn::tests
