// Every native on a null list.
#include "tests/arraylist/list_cases.h"

namespace vorn::tests {
namespace {

class NullReceiver : public RuntimeTest {};

TEST_F(NullReceiver, Add_Raises) {
  vorn_collections_ArrayList_add(nullptr, nullptr);
  EXPECT_RAISED(kAddOnNullError);
  const Handle value = integer("Int", 1);
  vorn_collections_ArrayList_add(nullptr, value);
  EXPECT_RAISED(kAddOnNullError);
}

TEST_F(NullReceiver, RawAppends_DoNothing) {
  vorn_collections_ArrayList_addInt(nullptr, LLONG_MIN);
  vorn_collections_ArrayList_addPrimitiveI64(nullptr, 1, "Int");
  vorn_collections_ArrayList_addPrimitiveI64(nullptr, 0xD800, "Char");
  vorn_collections_ArrayList_addPrimitiveI64(nullptr, 1, nullptr);
  vorn_collections_ArrayList_addPrimitiveDouble(nullptr, 1.5, "Double");
  vorn_collections_ArrayList_addPrimitiveDouble(nullptr, 1.5, nullptr);
  vorn_collections_ArrayList_addPrimitiveBool(nullptr, true);
  vorn_collections_ArrayList_addIntToData(nullptr, 1);
  EXPECT_NOTHING_RAISED();
}

TEST_F(NullReceiver, OtherChanges_DoNothing) {
  const Handle value = integer("Int", 1);
  for (const long long index : {LLONG_MIN, -1LL, 0LL, 1LL, LLONG_MAX}) {
    vorn_collections_ArrayList_addAt(nullptr, index, value);
    vorn_collections_ArrayList_addAt(nullptr, index, nullptr);
    vorn_collections_ArrayList_operator_index_eq(nullptr, index, value);
    vorn_collections_ArrayList_operator_index_eq(nullptr, index, nullptr);
    vorn_collections_ArrayList_removeAt(nullptr, index);
  }
  EXPECT_FALSE(vorn_collections_ArrayList_remove(nullptr, value));
  EXPECT_FALSE(vorn_collections_ArrayList_remove(nullptr, nullptr));
  vorn_collections_ArrayList_clear(nullptr);
  EXPECT_NOTHING_RAISED();
}

TEST_F(NullReceiver, Reads_GiveTheNeutralResult) {
  for (const long long index : {LLONG_MIN, -1LL, 0LL, 1LL, LLONG_MAX}) {
    EXPECT_EQ(vorn_collections_ArrayList_operator_index(nullptr, index), nullptr);
    EXPECT_EQ(vorn_collections_ArrayList_getInt(nullptr, index), 0);
    EXPECT_EQ(vorn_collections_ArrayList_getIntFast(nullptr, index), 0);
    EXPECT_EQ(vorn_collections_ArrayList_getIntFromData(nullptr, index), 0);
    EXPECT_EQ(vorn_collections_ArrayList_getDouble(nullptr, index), 0.0);
  }
  EXPECT_EQ(vorn_collections_ArrayList_size(nullptr), 0);
  EXPECT_EQ(vorn_collections_ArrayList_sizeFast(nullptr), 0);
  EXPECT_NOTHING_RAISED();
}

TEST_F(NullReceiver, Searches_FindNothing) {
  const Handle value = integer("Int", 1);
  for (void* wanted : {value.get(), static_cast<void*>(nullptr)}) {
    EXPECT_EQ(vorn_collections_ArrayList_count(nullptr, wanted), 0);
    EXPECT_FALSE(vorn_collections_ArrayList_operator_in(nullptr, wanted));
    for (const long long start : {LLONG_MIN, -1LL, 0LL, LLONG_MAX}) {
      EXPECT_EQ(vorn_collections_ArrayList_indexOf(nullptr, wanted, start), -1);
      EXPECT_EQ(vorn_collections_ArrayList_lastIndexOf(nullptr, wanted, start), -1);
    }
  }
  EXPECT_NOTHING_RAISED();
}

TEST_F(NullReceiver, PendingError_StaysAlone) {
  vorn_raise("Exception", "earlier");
  for (const NativeCase& native : natives()) {
    if (std::string(native.name) != "add") native.call(nullptr, nullptr);
  }
  EXPECT_RAISED("Exception: earlier");
}

}  // namespace
}  // namespace vorn::tests
