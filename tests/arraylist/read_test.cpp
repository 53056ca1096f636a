// The reads: operator_index, getInt and its kin, getDouble, size and sizeFast.
#include <cmath>
#include <limits>

#include "collections/core/port/object_layout.h"
#include "tests/arraylist/list_cases.h"

namespace vorn::tests {
namespace {

class Read : public RuntimeTest {};

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

long long getInt(void* target, long long index) {
  const long long value = vorn_collections_ArrayList_getInt(target, index);
  EXPECT_EQ(vorn_collections_ArrayList_getIntFast(target, index), value);
  EXPECT_EQ(vorn_collections_ArrayList_getIntFromData(getListData(target), index), value);
  return value;
}
double getDouble(void* target, long long index) { return vorn_collections_ArrayList_getDouble(target, index); }

TEST_F(Read, GetInt_CountsFromTheEnd) {
  for (const char* type : {"ArrayList<Int>", "LinkedList<Int>", "ArrayListSync"}) {
    const Handle target = list(type, {integer("Int", 10), integer("Int", 20), integer("Int", 30)});
    EXPECT_EQ(getInt(target, -1), 30);
    EXPECT_EQ(getInt(target, -3), 10);
    EXPECT_EQ(vorn_collections_ArrayList_getInt(target, 3), 0);
    EXPECT_RAISED(kIndexError);
    EXPECT_EQ(vorn_collections_ArrayList_getIntFast(target, 3), 0);
    EXPECT_RAISED(kIndexError);
  }
}

TEST_F(Read, OperatorIndex_UnboxedStorage_GivesANewBoxOnEveryRead) {
  for (const std::string& name : primitiveNames()) {
    SCOPED_TRACE(name);
    const Handle target = list("ArrayList<" + name + ">", {box(name, 1)});
    const Handle first = vorn_collections_ArrayList_operator_index(target, 0);
    const Handle second = vorn_collections_ArrayList_operator_index(target, 0);
    EXPECT_EQ(vorn_type_name(first), "vorn." + name);
    EXPECT_EQ(describe(first), describe(box(name, 1)));
    EXPECT_EQ(describe(second), describe(first));
    EXPECT_EQ(first.get() == second.get(), name == "Boolean");  // the two Booleans are shared
    EXPECT_EQ(storageOf(target), name);
  }
}

TEST_F(Read, OperatorIndex_BoxedStorage_GivesTheStoredHandle) {
  for (const char* type : {"ArrayList", "LinkedList", "ArrayListSync", "LinkedListSync"}) {
    const Handle values[] = {string("a"), text("b"), nullptr, item(1), integer("Int", 5)};
    const Handle target = list(type, {values[0], values[1], values[2], values[3], values[4]});
    for (int i = 0; i < 5; ++i) EXPECT_EQ(vorn_collections_ArrayList_operator_index(target, i), values[i].get());
    EXPECT_NOTHING_RAISED();
  }
}

TEST_F(Read, NullElements_RaiseOnUnboxedReads) {
  for (const char* type : {"ArrayList", "LinkedList", "ArrayListSync", "LinkedListSync"}) {
    const Handle target = list(type, {string("a"), nullptr});
    const Snapshot before(target);
    for (const long long index : {1LL, -1LL}) {
      EXPECT_EQ(vorn_collections_ArrayList_operator_index(target, index), nullptr);
      EXPECT_NOTHING_RAISED();
      EXPECT_EQ(vorn_collections_ArrayList_getInt(target, index), 0);
      EXPECT_RAISED(kIntItemError);
      EXPECT_EQ(vorn_collections_ArrayList_getIntFast(target, index), 0);
      EXPECT_RAISED(kIntItemError);
      EXPECT_EQ(vorn_collections_ArrayList_getIntFromData(getListData(target), index), 0);
      EXPECT_RAISED(kIntItemError);
      EXPECT_EQ(getDouble(target, index), 0.0);
      EXPECT_RAISED(kFloatingItemError);
      EXPECT_UNTOUCHED(target, before);
    }
  }
}

TEST_F(Read, GetInt_FloatingElements_TruncateTowardZero) {
  const double values[] = {3.9,    -3.9,    0.5,   -0.5,   kNaN,   kInfinity, -kInfinity,
                           9.3e18, -9.3e18, 1e300, 0x1p62, 0x1p63, -0x1p63};
  const long long expected[] = {3,         -3,        0,         0,         LLONG_MIN, LLONG_MIN, LLONG_MIN,
                                LLONG_MIN, LLONG_MIN, LLONG_MIN, 1LL << 62, LLONG_MIN, LLONG_MIN};
  const Handle target = object("ArrayList<Double>");
  for (const double value : values) vorn_collections_ArrayList_addPrimitiveDouble(target, value, nullptr);
  for (std::size_t i = 0; i < std::size(values); ++i) {
    EXPECT_EQ(getInt(target, static_cast<long long>(i)), expected[i]) << values[i];
  }
  const Handle floats = object("ArrayList<Float>");
  for (const double value : {2.75, kNaN, 1e30}) vorn_collections_ArrayList_addPrimitiveDouble(floats, value, nullptr);
  EXPECT_EQ(getInt(floats, 0), 2);
  EXPECT_EQ(getInt(floats, 1), LLONG_MIN);
  EXPECT_EQ(getInt(floats, 2), LLONG_MIN);
  EXPECT_NOTHING_RAISED();
}

TEST_F(Read, GetDouble_UnboxedStorage) {
  const Handle doubles = object("ArrayList<Double>");
  for (const double value : {0.1, kInfinity, kNaN, -0.0}) {
    vorn_collections_ArrayList_addPrimitiveDouble(doubles, value, nullptr);
  }
  EXPECT_EQ(getDouble(doubles, 0), 0.1);
  EXPECT_EQ(getDouble(doubles, 1), kInfinity);
  EXPECT_TRUE(std::isnan(getDouble(doubles, 2)));
  EXPECT_TRUE(std::signbit(getDouble(doubles, 3)));
  const Handle flags = list("ArrayList<Boolean>", {boolean(true), boolean(false)});
  EXPECT_EQ(getDouble(flags, 0), 1.0);
  EXPECT_EQ(getDouble(flags, 1), 0.0);
  const Handle longs = list("ArrayList<Long>", {integer("Long", (1LL << 53) + 1)});
  EXPECT_EQ(getDouble(longs, 0), 0x1p53);
}

TEST_F(Read, UnsignedLong_ReadsAsItsSignedBits) {
  const Handle target = list("ArrayList", {integer("ULong", LLONG_MIN), integer("ULong", -1)});
  ASSERT_EQ(storageOf(target), "ULong");
  EXPECT_EQ(getInt(target, 0), LLONG_MIN);
  EXPECT_EQ(getInt(target, 1), -1);
  EXPECT_EQ(getDouble(target, 0), -0x1p63);
  EXPECT_EQ(getDouble(target, 1), -1.0);
  EXPECT_EQ(elementsOf(target), (Elements{describe(integer("ULong", LLONG_MIN)), describe(integer("ULong", -1))}));
}

TEST_F(Read, SignedAndUnsignedKinds_ExtendBySign) {
  for (const auto& [name, value] : {std::pair("SByte", -1LL),
                                    {"Short", -1LL},
                                    {"Int", -1LL},
                                    {"Long", -1LL},
                                    {"Byte", 255LL},
                                    {"UShort", 65535LL},
                                    {"UInt", 4294967295LL}}) {
    const Handle target = object(std::string("ArrayList<") + name + ">");
    vorn_collections_ArrayList_addPrimitiveI64(target, -1, name);
    EXPECT_EQ(getInt(target, 0), value);
    EXPECT_EQ(getDouble(target, 0), static_cast<double>(value));
  }
}

TEST_F(Read, BoxedElements_ReadByTheirOwnType) {
  for (const char* type : {"ArrayList", "LinkedList"}) {
    const Handle target =
        list(type, {string("x"), integer("Byte", 200), floating("Double", 3.75), floating("Float", -0.5), boolean(true),
                    integer("Char", 'A'), integer("CodeUnit", 'B'), integer("Long", LLONG_MIN), text("12"), item(3)});
    const long long whole[] = {0, 200, 3, 0, 1, 'A', 'B', LLONG_MIN, 0, 0};
    const double real[] = {0.0, 200.0, 3.75, -0.5, 1.0, 65.0, 66.0, -0x1p63, 0.0, 0.0};
    for (int i = 0; i < 10; ++i) {
      EXPECT_EQ(getInt(target, i), whole[i]) << i;
      EXPECT_EQ(getDouble(target, i), real[i]) << i;
    }
    EXPECT_NOTHING_RAISED();
  }
}

TEST_F(Read, Reads_LeaveTheStorageAlone) {
  const Handle target = list("ArrayList", {integer("Int", 1), integer("Int", 2)});
  const Snapshot before(target);
  getDouble(target, 0);
  getInt(target, 1);
  EXPECT_EQ(elementsOf(target).size(), 2U);
  EXPECT_EQ(vorn_collections_ArrayList_sizeFast(target), 2);
  EXPECT_UNTOUCHED(target, before);
}

TEST_F(Read, Size_CountsTheLiveStorage) {
  for (const bool linked : {false, true}) {
    for (const bool synchronised : {false, true}) {
      const Handle target = object(className(linked, synchronised));
      for (long long i = 0; i < 5; ++i) {
        EXPECT_EQ(vorn_collections_ArrayList_size(target), i);
        EXPECT_EQ(vorn_collections_ArrayList_sizeFast(target), i);
        vorn_collections_ArrayList_addInt(target, i);
      }
      vorn_collections_ArrayList_add(target, nullptr);
      EXPECT_EQ(vorn_collections_ArrayList_size(target), 6);
      EXPECT_EQ(vorn_collections_ArrayList_sizeFast(target), 6);
    }
  }
}

TEST_F(Read, ClassesSetTheFlags) {
  for (const bool linked : {false, true}) {
    for (const bool synchronised : {false, true}) {
      const Handle target = object(className(linked, synchronised, "Int"));
      EXPECT_EQ(getListData(target)->linked, linked);
      EXPECT_EQ(getListData(target)->synchronized, synchronised);
      EXPECT_TRUE(!synchronised || getListData(target)->mutex != nullptr);
      EXPECT_AT_REST(target);
    }
  }
}

}  // namespace
}  // namespace vorn::tests
